// A Primo shop whose catalogue is a Jet database, as its own program kept it: imported like the same rows in the form
// of this program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "platform/database/database.h"
#include "platform/files/files.h"
#include "shell/cli/cli_program.h"
#include "support/jet_writer.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

/// A table as Jet keeps it; what its writer has no type for is a text.
JetTable jetTableOf(Database& catalogue, const TableInfo& info) {
  JetTable table{info.name, {}, {}, {}};
  for (const ColumnInfo& column : info.columns) {
    const bool isOther = column.type == ColumnType::DateTime || column.type == ColumnType::Binary;
    table.columns.push_back({column.name, isOther ? JetType::Text : static_cast<JetType>(column.type)});
  }
  auto rows = checked(catalogue.prepare("SELECT * FROM \"" + info.name + "\""));
  EXPECT_TRUE(rows);
  for (auto row = rows->step(); row && *row; row = rows->step()) {
    table.rows.emplace_back();
    for (int i = 0; i < rows->columnCount(); ++i) table.rows.back().push_back(rows->value(i));
  }
  return table;
}

class PrimoInJet : public ::testing::Test {
 protected:
  PrimoInJet() : application(home / "app"), source(home / "primo") {
    const std::string data = KORVANE_APP_DATA;
    for (const char* folder : {"new", "template", "languages"}) {
      EXPECT_TRUE(copyTree(data + "/" + folder, application + "/" + folder));
    }
    EXPECT_TRUE(copyTree(data + "/new", source));
    auto catalogue = checked(Database::open(source + "/catalog.mdb", OpenMode::Shared));
    EXPECT_TRUE(catalogue);
    EXPECT_TRUE(
        catalogue->execute("UPDATE generale SET versione = 250, titolo = 'Città'; DELETE FROM dettagliop;"
                           "UPDATE opzioni SET opzione3 = 'rosso', prezzo3 = 25000 WHERE ID > 1"));
  }
  CliOutcome import(const std::string& shop, const std::string& option = "--app") {
    EXPECT_TRUE(copyTree(std::string(KORVANE_APP_DATA) + "/new", shop));
    out.str("");
    std::vector<std::string> words{"import", shop, source};
    if (option != "--app") words.push_back(option);
    words.insert(words.end(), {"--app", application});
    return runCommandLine(words, {out, err, {}, ""});
  }
  void turnSourceIntoJet() const {
    std::vector<JetTable> tables;
    {
      auto catalogue = Database::open(source + "/catalog.mdb", OpenMode::Shared);
      ASSERT_TRUE(catalogue);
      const auto infos = catalogue->tables();
      ASSERT_TRUE(infos);
      for (const TableInfo& info : *infos) tables.push_back(jetTableOf(*catalogue, info));
    }
    ASSERT_TRUE(writeBytes(source + "/catalog.mdb", jetFile(JetVersion::Jet4, tables)));
  }
  /// The fields of a table, Null like an empty text and flags like numbers.
  static std::string rowsOf(const std::string& shop, const std::string& table) {
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    if (!catalogue) return "not opened";
    auto rows = checked(catalogue->prepare("SELECT * FROM " + table));
    std::string text;
    for (auto row = rows->step(); row && *row; row = rows->step()) {
      for (int i = 0; i < rows->columnCount(); ++i) {
        const std::string field = asText(rows->value(i));
        text += (field == "0" ? "" : field) + "|";
      }
      text += "\n";
    }
    return text;
  }

  TempFolder home;
  std::string application, source;
  std::ostringstream out, err;
};

TEST_F(PrimoInJet, GivesTheRowsThatTheSameShopGivesInOurForm) {
  const std::string one = home / "uno", two = home / "due";
  ASSERT_EQ(import(one), CliOutcome::Done) << err.str();
  turnSourceIntoJet();
  ASSERT_EQ(import(two), CliOutcome::Done) << err.str();
  for (const char* table :
       {"articoli", "categorie", "lingue", "paesi", "pagamento", "zona1", "opzioni", "dettagliop"}) {
    EXPECT_EQ(rowsOf(two, table), rowsOf(one, table)) << table;
  }
  EXPECT_NE(rowsOf(two, "dettagliop"), "");
}

TEST_F(PrimoInJet, HasAPreviewToo) {
  turnSourceIntoJet();
  EXPECT_EQ(import(home / "uno", "--dry-run"), CliOutcome::Done) << err.str();
  EXPECT_THAT(out.str(), HasSubstr("Versione del negozio di origine: 250\narticoli: 0 nuove, "));
}

TEST_F(PrimoInJet, ThatIsDamagedIsToldAndChangesNothing) {
  turnSourceIntoJet();
  const std::string bytes = valueOf(readBytes(source + "/catalog.mdb"));
  ASSERT_TRUE(writeBytes(source + "/catalog.mdb", bytes.substr(0, bytes.size() / 2)));
  EXPECT_EQ(import(home / "uno"), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("Impossibile importare a causa del seguente errore: \n"));
}

}  // namespace
}  // namespace kv::test
