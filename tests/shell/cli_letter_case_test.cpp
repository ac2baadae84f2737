// A shop that comes from a medium whose names are all upper case: each command finds its files, and lays no others
// beside them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "platform/database/database.h"
#include "platform/files/files.h"
#include "platform/text/text.h"
#include "shell/cli/cli_program.h"
#include "store/shop/backup_copies.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

std::string upperCase(std::string name) {
  for (char& c : name) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  return name;
}

std::vector<std::string> entriesOf(const std::string& folder) {
  std::vector<std::string> names = listFiles(folder, "*");
  for (std::string& name : listFolders(folder)) names.push_back(std::move(name));
  return names;
}

void raiseNames(const std::string& folder) {
  for (const std::string& name : entriesOf(folder)) {
    if (upperCase(name) == name) continue;
    ASSERT_TRUE(renameFile(joinPath(folder, name), joinPath(folder, upperCase(name)))) << name;
  }
}

/// Names that a medium that ignores case would take for one.
std::string twins(const std::string& folder) {
  std::set<std::string> known;
  std::string found;
  for (const std::string& name : entriesOf(folder)) {
    if (!known.insert(foldCase(name)).second) found += name + " ";
  }
  return found;
}

class ShopInUpperCase : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* folder : {"new", "template", "languages", "code"}) {
      const std::string from = std::string(KORVANE_APP_DATA) + "/" + folder;
      if (folderExists(from)) {
        ASSERT_TRUE(copyTree(from, home / "app/" + folder));
      }
    }
    ASSERT_EQ(run({"new"}), CliOutcome::Done) << err.str();
    change("catalog.mdb", "UPDATE generale SET hostname='127.0.0.1', username='u', folderFTP='www', folderCGI='cgi'");
    ASSERT_EQ(run({"build"}), CliOutcome::Done) << err.str();
    usual = site("online");
    page = readBytes(shop() + "/online/index.php").value_or("none");
    raiseNames(shop() + "/db");
    raiseNames(shop());
    for (const std::string& package : listFolders(home / "app/template")) {
      for (const std::string& model : listFiles(home / "app/template/" + package, "modello*.htm")) {
        const std::string folder = home / "app/template/" + package;
        ASSERT_TRUE(renameFile(joinPath(folder, model), joinPath(folder, upperCase(model))));
      }
    }
    raiseNames(home / "app/template");
    raiseNames(home / "app");
    // The model of new shops is the program's own.
    ASSERT_TRUE(renameFile(home / "app/NEW", home / "app/new"));
  }
  std::string shop() const { return home / "shop"; }
  /// The files of the site but the mark of one build, which has a name of its own.
  std::vector<std::string> site(const char* folder) const {
    std::vector<std::string> names = listFiles(shop() + "/" + folder, "*");
    std::erase_if(names, [](const std::string& name) { return name.ends_with(".sc"); });
    return names;
  }
  CliOutcome run(const std::vector<std::string>& words) { return runOn(shop(), words); }
  CliOutcome runOn(const std::string& folder, std::vector<std::string> words) {
    out.str("");
    err.str("");
    words.insert(words.begin() + 1, folder);
    words.insert(words.begin(), {"--app", home / "app"});
    return runCommandLine(words, {out, err, {}, ""});
  }
  void change(const std::string& catalogue, const std::string& sql) const {
    auto database = Database::open(joinPath(shop(), catalogue), OpenMode::Exclusive);
    ASSERT_TRUE(database && database->execute(sql)) << sql;
  }
  void expectNoTwins() const {
    EXPECT_EQ(twins(shop()), "");
    EXPECT_EQ(twins(shop() + "/DB"), "");
    EXPECT_EQ(twins(home / "app"), "");
  }

  test::TempFolder home;
  std::ostringstream out, err;
  std::vector<std::string> usual;  ///< the files of the site as they are built from names in lower case
  std::string page;                ///< the first page, likewise
};

TEST_F(ShopInUpperCase, IsCheckedAndExamined) {
  EXPECT_EQ(run({"check"}), CliOutcome::Done) << err.str();
  run({"doctor", "--json"});
  EXPECT_THAT(out.str(), HasSubstr("\"check\""));
  EXPECT_THAT(out.str(), Not(HasSubstr("picture.missing")));
  expectNoTwins();
}

TEST_F(ShopInUpperCase, IsBuiltAsEver) {
  ASSERT_EQ(run({"build"}), CliOutcome::Done) << err.str();
  EXPECT_EQ(site("ONLINE"), usual);
  EXPECT_EQ(readBytes(shop() + "/ONLINE/index.php").value_or(""), page);
  expectNoTwins();
}

TEST_F(ShopInUpperCase, IsExportedAsSqlAndWouldBePublished) {
  ASSERT_EQ(run({"export-sql"}), CliOutcome::Done) << err.str();
  EXPECT_TRUE(fileExists(shop() + "/ONLINE/db.sql"));
  ASSERT_EQ(run({"publish", "--dry-run"}), CliOutcome::Done) << err.str();
  EXPECT_THAT(out.str(), HasSubstr("www/db.sql\n"));
  EXPECT_THAT(out.str(), HasSubstr("www/index.php\n"));
  expectNoTwins();
}

TEST_F(ShopInUpperCase, IsExportedWholeToAShopThatCanBeChecked) {
  ASSERT_EQ(run({"export", home / "copia", "--with", "TLR"}), CliOutcome::Done) << err.str();
  EXPECT_EQ(twins(home / "copia"), "");
  EXPECT_EQ(entriesOf(home / "copia/work").size(), entriesOf(shop() + "/WORK").size());
  EXPECT_EQ(runOn(home / "copia", {"check"}), CliOutcome::Done) << err.str();
}

TEST_F(ShopInUpperCase, IsUpgradedAfterADatedCopy) {
  const std::string backups = shop() + "/" + upperCase(std::string(backupFolder));
  const std::size_t before = listFiles(backups, "*").size();
  change("CATALOG.MDB", "UPDATE articoli SET ordinamento = ordinamento + 7; UPDATE generale SET versione = 1001");
  ASSERT_EQ(run({"build"}), CliOutcome::Done) << err.str();
  EXPECT_GT(backupCopies(shop()).size(), 0U);
  EXPECT_FALSE(folderExists(joinPath(shop(), backupFolder)));
  EXPECT_GT(listFiles(backups, "*").size(), before);
  auto catalogue = Database::open(shop() + "/CATALOG.MDB", OpenMode::ReadOnly);
  ASSERT_TRUE(catalogue);
  EXPECT_EQ(asInteger(catalogue->scalar("SELECT MIN(ordinamento) FROM articoli").value_or(Value(Null{}))), 100);
  expectNoTwins();
}

}  // namespace
}  // namespace kv
