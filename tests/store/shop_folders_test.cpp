// The plain operations on shop folders.
#include <gtest/gtest.h>

#include "shop_fixture.h"
#include "store/shop/shop_folders.h"
#include "support/value_of.h"

namespace kv {
namespace {

class ShopFolders : public test::ShopFixture {};

TEST_F(ShopFolders, ATreeIsCopiedOverTheOneThere) {
  write(root / "from/a.txt", "new");
  write(root / "from/sub/deep/b.txt", "deep");
  ASSERT_TRUE(createFolders(root / "from/empty"));
  write(root / "to/a.txt", "old");
  write(root / "to/mine.txt", "mine");
  ASSERT_TRUE(CopiaAlbero(root / "from", root / "to"));
  EXPECT_EQ(readBytes(root / "to/a.txt").value(), "new");
  EXPECT_EQ(readBytes(root / "to/sub/deep/b.txt").value(), "deep");
  EXPECT_EQ(readBytes(root / "to/mine.txt").value(), "mine");
  EXPECT_TRUE(folderExists(root / "to/empty"));
}

TEST_F(ShopFolders, ATreeCanBeCopiedIntoItself) {
  write(root / "from/a.txt", "a");
  ASSERT_TRUE(CopiaAlbero(root / "from", root / "from/sub"));
  EXPECT_TRUE(fileExists(root / "from/sub/a.txt"));
  EXPECT_FALSE(folderExists(root / "from/sub/sub/sub"));
}

TEST_F(ShopFolders, AMissingTreeIsNotCopied) {
  const auto copied = CopiaAlbero(root / "gone", root / "to");
  ASSERT_FALSE(copied);
  EXPECT_EQ(copied.error().kind, ErrorKind::Missing);
  EXPECT_FALSE(folderExists(root / "to"));
}

TEST_F(ShopFolders, EmptyingKeepsTheSubfolders) {
  write(root / "f/a.txt", "");
  write(root / "f/sub/b.txt", "");
  ASSERT_TRUE(SvuotaCartella(root / "f"));
  EXPECT_FALSE(fileExists(root / "f/a.txt"));
  EXPECT_TRUE(fileExists(root / "f/sub/b.txt"));
}

TEST_F(ShopFolders, AChosenFolderLosesItsTrailingSeparatorAndARootKeepsIt) {
  user.folders = {"/home/anna/negozio/", "/", ""};
  EXPECT_EQ(ScegliCartella(user, "?", "/home"), "/home/anna/negozio");
  EXPECT_EQ(ScegliCartella(user, "?", "/home"), "/");
  EXPECT_EQ(ScegliCartella(user, "?", "/home"), "");
  EXPECT_EQ(user.foldersAsked[0].initial, "/home");
}

TEST_F(ShopFolders, AShortLookSharesTheFile) {
  const std::string shop = makeShop("uno");
  const auto first = ApriDatabase(shop + "/catalog.mdb", false);
  ASSERT_TRUE(first);
  EXPECT_TRUE(ApriDatabase(shop + "/catalog.mdb", false));
}

TEST_F(ShopFolders, TheSessionsHandleDoesNot) {
  const std::string shop = makeShop("uno");
  const auto first = ApriDatabase(shop + "/catalog.mdb", true);
  ASSERT_TRUE(first);
  const auto second = ApriDatabase(shop + "/catalog.mdb", true);
  ASSERT_FALSE(second);
  EXPECT_EQ(second.error().kind, ErrorKind::InUse);
}

TEST_F(ShopFolders, AReadOnlyFileCanBeLookedAtButNotHeld) {
  const std::string shop = makeShop("uno");
  std::filesystem::permissions(shop + "/catalog.mdb", std::filesystem::perms::owner_read);
  auto look = ApriDatabase(shop + "/catalog.mdb", false);
  ASSERT_TRUE(look) << look.error().what;
  EXPECT_EQ(test::valueOf(catalogueVersion(*look)), 1002);
  look->close();
  const auto held = ApriDatabase(shop + "/catalog.mdb", true);
  ASSERT_FALSE(held);
  EXPECT_EQ(held.error().kind, ErrorKind::ReadOnly);
}

TEST_F(ShopFolders, TheApplicationFolderIsKnownInAnyCase) {
  EXPECT_TRUE(isApplicationFolder("/Home/ANNA/App", "/home/anna/app"));
  EXPECT_TRUE(isApplicationFolder("/home/CITTÀ", "/home/città/"));
  EXPECT_FALSE(isApplicationFolder("/home/anna/app2", "/home/anna/app"));
}

}  // namespace
}  // namespace kv
