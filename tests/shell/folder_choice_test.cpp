// The two working folders: what is refused with which words, what is stored, and that one field leaves the other alone.
#include "shell/dialogs/folder_choice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "store/shop/load_shop.h"
#include "store/shop_fixture.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum BuildFolder;

class ChoosingFolders : public test::ShopFixture {
 protected:
  void SetUp() override {
    folder = makeShop("uno");
    other = root / "altra";
    ASSERT_TRUE(createFolder(other));
    session.ShopFolder = folder;
    ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
  }

  std::string column(const std::string& name) {
    const auto value = session.catalogue.scalar("SELECT " + name + " FROM generale");
    return value ? asText(*value) : "failed";
  }
  static std::string refused(const std::string& path, const std::string& why) {
    return "La cartella '" + path + "' " + why + ": l'impostazione non sarà salvata";
  }

  std::string folder, other;
};

TEST_F(ChoosingFolders, StartsOnTheFoldersOfTheSession) {
  const FolderChoice choice(session);
  EXPECT_EQ(choice.field(Online).text, folder + "/online");
  EXPECT_EQ(choice.field(Scripts).text, folder + "/scripts");
}

TEST_F(ChoosingFolders, StoresNothingForAFieldThatNobodyTouched) {
  const FolderChoice choice(session);
  EXPECT_TRUE(choice.apply(session, user));
  EXPECT_EQ(column("siteonline"), "");
  EXPECT_EQ(column("sitescript"), "");
  EXPECT_EQ(session.onlineFolder, folder + "/online");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(ChoosingFolders, StoresAFolderThatWasBrowsedFor) {
  FolderChoice choice(session);
  choice.set(Scripts, other);
  EXPECT_TRUE(choice.apply(session, user));
  EXPECT_EQ(column("sitescript"), other);
  EXPECT_EQ(session.scriptFolder, other);
  EXPECT_EQ(column("siteonline"), "");
}

TEST_F(ChoosingFolders, TrimsSpacesAndTheSeparatorAtTheEnd) {
  FolderChoice choice(session);
  choice.set(Online, "  " + other + "/ ");
  EXPECT_TRUE(choice.apply(session, user));
  EXPECT_EQ(column("siteonline"), other);
  EXPECT_EQ(session.onlineFolder, other);
}

TEST_F(ChoosingFolders, ResetEmptiesTheColumnAndGoesBackInsideTheShop) {
  FolderChoice first(session);
  first.set(Online, other);
  ASSERT_TRUE(first.apply(session, user));
  FolderChoice choice(session);
  EXPECT_EQ(choice.field(Online).text, other);
  choice.reset(Online);
  EXPECT_EQ(choice.field(Online).text, folder + "/online");
  EXPECT_TRUE(choice.apply(session, user));
  EXPECT_EQ(column("siteonline"), "");
  EXPECT_EQ(session.onlineFolder, folder + "/online");
}

TEST_F(ChoosingFolders, AfterAResetAPathCanStillBeChosen) {
  FolderChoice choice(session);
  choice.reset(Online);
  choice.set(Online, other);
  EXPECT_TRUE(choice.apply(session, user));
  EXPECT_EQ(column("siteonline"), other);
}

TEST_F(ChoosingFolders, RefusesAFolderThatDoesNotExist) {
  FolderChoice choice(session);
  choice.set(Online, " " + other + "/manca ");
  EXPECT_FALSE(choice.apply(session, user));
  EXPECT_THAT(user.shown, ElementsAre(said(refused(other + "/manca", "non esiste"), Icon::Exclamation)));
  EXPECT_EQ(column("siteonline"), "");
  EXPECT_EQ(session.onlineFolder, folder + "/online");
}

TEST_F(ChoosingFolders, RefusesAnEmptyPathAsOneThatDoesNotExist) {
  FolderChoice choice(session);
  choice.set(Online, "  ");
  EXPECT_FALSE(choice.apply(session, user));
  EXPECT_THAT(user.texts(), ElementsAre(refused("", "non esiste")));
}

TEST_F(ChoosingFolders, RefusesAFileAsAFolderThatDoesNotExist) {
  FolderChoice choice(session);
  choice.set(Online, folder + "/catalog.mdb");
  EXPECT_FALSE(choice.apply(session, user));
  EXPECT_THAT(user.texts(), ElementsAre(refused(folder + "/catalog.mdb", "non esiste")));
}

TEST_F(ChoosingFolders, RefusesTheRootOfADisk) {
  FolderChoice choice(session);
  choice.set(Scripts, "/");
  EXPECT_FALSE(choice.apply(session, user));
  EXPECT_THAT(user.shown, ElementsAre(said(refused("/", "è la root di un disco"), Icon::Exclamation)));
  EXPECT_EQ(session.scriptFolder, folder + "/scripts");
}

TEST_F(ChoosingFolders, RefusesTheShopsOwnFolderInWhateverForm) {
  std::filesystem::create_directory_symlink(folder, root / "collegamento");
  for (const std::string& path : {folder, folder + "/", folder + "/online/..", root / "collegamento"}) {
    user.shown.clear();
    FolderChoice choice(session);
    choice.set(Online, path);
    EXPECT_FALSE(choice.apply(session, user)) << path;
    EXPECT_THAT(user.shown, ElementsAre(said(refused(path, "è la cartella del negozio"), Icon::Exclamation)));
  }
}

TEST_F(ChoosingFolders, ARefusedFieldLeavesTheOtherToBeStored) {
  FolderChoice choice(session);
  choice.set(Online, "/");
  choice.set(Scripts, other);
  EXPECT_FALSE(choice.apply(session, user));
  EXPECT_EQ(column("sitescript"), other);
  EXPECT_EQ(session.scriptFolder, other);
  EXPECT_EQ(session.onlineFolder, folder + "/online");
}

TEST_F(ChoosingFolders, RefusesBothOneAfterTheOther) {
  FolderChoice choice(session);
  choice.set(Online, "/");
  choice.set(Scripts, folder);
  EXPECT_FALSE(choice.apply(session, user));
  EXPECT_THAT(user.texts(),
              ElementsAre(refused("/", "è la root di un disco"), refused(folder, "è la cartella del negozio")));
}

TEST_F(ChoosingFolders, JudgesAlsoAFolderThatHasGoneMissingSinceTheOpening) {
  std::filesystem::remove_all(folder + "/online");
  EXPECT_FALSE(FolderChoice(session).apply(session, user));
  EXPECT_THAT(user.texts(), ElementsAre(refused(folder + "/online", "non esiste")));
}

TEST_F(ChoosingFolders, StoresARelativePathInFull) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(root.path());
  FolderChoice choice(session);
  choice.set(Online, "altra");
  EXPECT_TRUE(choice.apply(session, user));
  std::filesystem::current_path(before);
  EXPECT_EQ(column("siteonline"), other);
}

}  // namespace
}  // namespace kv
