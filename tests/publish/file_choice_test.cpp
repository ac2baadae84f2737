// Which files may be sent, and what the file table knows of them.
#include "publish/run/file_choice.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "publish/run/file_table.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using test::TempFolder;

TEST(AFileOfTheShop, IsAcceptedByItsExtensionAsAWholeOne) {
  const FileChoice choice{false, ".mdb.csv.sql.", {}};
  EXPECT_TRUE(CaricaFile("a.sql", choice));
  EXPECT_TRUE(CaricaFile("/negozio/online/A.SQL", choice));
  EXPECT_FALSE(CaricaFile("a.sq", choice)) << "the extension must be followed by a dot in the list";
  EXPECT_FALSE(CaricaFile("a.htm", choice));
}

TEST(AFileOfTheShop, WithoutADotPassesOnlyWhenAllDo) {
  EXPECT_FALSE(CaricaFile("LEGGIMI", {false, ".htm.", {}}));
  EXPECT_TRUE(CaricaFile("LEGGIMI", {false, "ALL.", {}}));
}

TEST(AFileOfTheShop, ThatIsACachedDumpNeverLeavesTheMachine) {
  EXPECT_FALSE(CaricaFile("abcdb.sc", {false, "ALL.", {}}));
  EXPECT_FALSE(CaricaFile("abcdb.SC", {false, ".sc.", {}}));
}

TEST(AFileOfTheShop, MustBeOfTheLastBuildWhenOnlyThoseAreWanted) {
  const TempFolder root;
  ASSERT_TRUE(writeBytes(root / "kvftp.dat", "#/altrove/online/Cat001.php\r\n#/altrove/online/a.gif\r\n#\r\n"));
  const FileChoice choice{true, "ALL.", CaricaListaFiles(root.path())};
  EXPECT_TRUE(CaricaFile("/negozio/online/cat001.php", choice)) << "wherever the shop was when it was built";
  EXPECT_TRUE(CaricaFile("A.GIF", choice));
  EXPECT_FALSE(CaricaFile("001.php", choice)) << "a whole name, not the end of one";
  EXPECT_FALSE(CaricaFile("vecchia.gif", choice));
}

TEST(AFileOfTheShop, IsNoneOfTheLastBuildWhenThereWasNone) {
  const TempFolder root;
  EXPECT_FALSE(CaricaFile("a.gif", {true, "ALL.", CaricaListaFiles(root.path())}));
}

TEST(TheStampOfAFile, SortsLikeItsTime) {
  EXPECT_EQ(stampText(1'500'000'000'000'000'007), "2017-07-14 02:40:00.000000007");
  EXPECT_EQ(stampText(-1), "1969-12-31 23:59:59.999999999");
  EXPECT_LT(stampText(1'500'000'000'999'999'999), stampText(1'500'000'001'000'000'000));
}

class TheFileTable : public ::testing::Test {
 protected:
  TheFileTable() : table(FileTable::open(root.path()).value()) {}
  bool has(const std::string& key) { return table.find(key).value().has_value(); }
  TempFolder root;
  FileTable table;
};

TEST_F(TheFileTable, FindsAKeyWithAQuoteInIt) {
  ASSERT_TRUE(table.add("h/www/l'olio.gif", {12, 0}));
  EXPECT_TRUE(has("h/www/l'olio.gif"));
  EXPECT_FALSE(has("h/www/l"));
}

TEST_F(TheFileTable, TellsNamesApartThatDifferInCaseAlone) {
  ASSERT_TRUE(table.add("h/www/Foto.jpg", {12, 0}));
  EXPECT_FALSE(has("h/www/foto.jpg"));
}

TEST_F(TheFileTable, LosesTheFilesOfOneFolderAndOfNoOther) {
  for (const char* key : {"h/a_b%/x", "h/a_b%/y", "h/acb%/x", "h/a_bc/x", "h/a_b%z/x", "h2/a_b%/x", "h/A_B%/x"}) {
    ASSERT_TRUE(table.add(key, {1, 0}));
  }
  ASSERT_TRUE(table.PulisciDB("h", "a_b%"));
  for (const char* key : {"h/a_b%/x", "h/a_b%/y"}) EXPECT_FALSE(has(key)) << key;
  for (const char* key : {"h/acb%/x", "h/a_bc/x", "h/a_b%z/x", "h2/a_b%/x", "h/A_B%/x"}) EXPECT_TRUE(has(key)) << key;
}

TEST_F(TheFileTable, OfTheRootFolderIsCleanedToo) {
  ASSERT_TRUE(table.add("h///x", {1, 0}));
  ASSERT_TRUE(table.add("h/www/x", {1, 0}));
  ASSERT_TRUE(table.PulisciDB("h", "/"));
  EXPECT_FALSE(has("h///x"));
  EXPECT_TRUE(has("h/www/x"));
}

}  // namespace
}  // namespace kv
