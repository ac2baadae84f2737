// korvane-cli import-table and export-table: what they print and write, and how they end.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "platform/database/database.h"
#include "platform/database/rows.h"
#include "platform/files/files.h"
#include "shell/cli/cli_program.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using ::testing::HasSubstr;

class TablesOnTheCommandLine : public ::testing::Test {
 protected:
  TablesOnTheCommandLine() : shop(home / "negozio"), application(home / "app"), sheet(home / "foglio.csv") {
    const std::string data = KORVANE_APP_DATA;
    for (const char* folder : {"new", "template", "languages"}) {
      EXPECT_TRUE(copyTree(data + "/" + folder, application + "/" + folder));
    }
    EXPECT_TRUE(copyTree(data + "/new", shop));
    for (const char* working : {"work", "online", "scripts", "db"}) EXPECT_TRUE(createFolders(shop + "/" + working));
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    EXPECT_TRUE(catalogue && catalogue->execute("UPDATE articoli SET codice = 'x' || ID;"
                                                "UPDATE articoli SET codice = 'primo', prezzo = 15000 WHERE ID = "
                                                "(SELECT MIN(ID) FROM articoli)"));
  }
  CliOutcome run(std::vector<std::string> arguments) {
    out.str("");
    err.str("");
    arguments.insert(arguments.end(), {"--app", application});
    ConsoleOptions screen;
    screen.cancelled = [this] { return isCancelled; };
    return runCommandLine(arguments, {out, err, screen, ""});
  }
  bool inCatalogue(const std::string& sql) const {
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    return catalogue && catalogue->execute(sql);
  }
  /// The first field of each row of a selection, a line for each.
  std::string rowsOf(const std::string& sql) const {
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    std::string text;
    const bool isRead = catalogue && forEachRow(*catalogue, sql,
                                                [&](const Statement& row) { text += std::string(row.text(0)) + "\n"; });
    EXPECT_TRUE(isRead) << sql;
    return text;
  }
  std::string priceOfFirst() const {
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    const auto value = catalogue ? catalogue->scalar("SELECT prezzo FROM articoli WHERE codice = 'primo'")
                                 : Result<Value>(fail(catalogue.error()));
    return value ? asText(*value) : "none";
  }

  test::TempFolder home;
  std::string shop, application, sheet;
  bool isCancelled = false;
  std::ostringstream out, err;
};

TEST_F(TablesOnTheCommandLine, ImportsTheGoodRowsAndTellsTheOthersWithTheirReason) {
  ASSERT_TRUE(writeBytes(sheet, "Codice;Prezzo\nprimo;2,75\nmai;1\n"));
  isCancelled = true;
  EXPECT_EQ(run({"import-table", shop, sheet, "--mode", "change"}), CliOutcome::Cancelled) << err.str();
  EXPECT_EQ(priceOfFirst(), "1.5");
  isCancelled = false;
  EXPECT_EQ(run({"import-table", shop, sheet, "--mode", "change"}), CliOutcome::Done) << err.str();
  EXPECT_EQ(out.str(),
            "Articoli: 0 nuovi, 1 modificati, 0 invariati, 1 tralasciati\nriga 3\tmai\tnon è nel catalogo\n");
  EXPECT_EQ(priceOfFirst(), "2.75");
}

TEST_F(TablesOnTheCommandLine, TellsWhatWouldChangeAndChangesNothingInADryRun) {
  ASSERT_TRUE(writeBytes(sheet, "Cod;Euro\nprimo;2,75\n"));
  ASSERT_TRUE(writeBytes(home / "mappa.txt", "Cod=codice\nEuro=prezzo\n"));
  EXPECT_EQ(run({"import-table", shop, sheet, "--dry-run", "--map", home / "mappa.txt"}), CliOutcome::Done);
  EXPECT_EQ(out.str(),
            "foglio.csv: CSV, UTF-8, separatore \";\", fine riga LF, decimali \",\", migliaia nessuno\n"
            "  Cod = codice\n  Euro = prezzo\nArticoli: 0 nuovi, 1 modificati, 0 invariati, 0 tralasciati\n"
            "Prezzo: 1 importo cambia, in tutto da 1,50 a 2,75\n"
            "riga 2\tmodificato\tprimo\n\tPrezzo: \"1,50\" -> \"2,75\"\n");
  EXPECT_EQ(priceOfFirst(), "1.5");
}

TEST_F(TablesOnTheCommandLine, FindsTheHeadersBelowATitleOrTakesTheLineThatIsGiven) {
  ASSERT_TRUE(writeBytes(sheet, "Listino 2026;\nCodice;Prezzo\nCodice;Titolo\nprimo;2,75\n"));
  EXPECT_EQ(run({"import-table", shop, sheet, "--dry-run"}), CliOutcome::Done) << err.str();
  EXPECT_THAT(out.str(),
              HasSubstr("migliaia nessuno, intestazioni alla riga 2\n  Codice = codice\n  Prezzo = prezzo\n"));
  EXPECT_EQ(run({"import-table", shop, sheet, "--dry-run", "--header", "3"}), CliOutcome::Done) << err.str();
  EXPECT_THAT(out.str(), HasSubstr("intestazioni alla riga 3\n  Codice = codice\n  Titolo = titolo\n"));
  for (const char* line : {"0", "9", "due", "2x"}) {
    EXPECT_EQ(run({"import-table", shop, sheet, "--dry-run", "--header", line}), CliOutcome::WrongUsage) << line;
    EXPECT_THAT(err.str(), HasSubstr("valore non ammesso per --header: " + std::string(line)));
  }
  EXPECT_EQ(run({"import-table", shop, sheet, "--mode", "change"}), CliOutcome::Done) << err.str();
  EXPECT_EQ(priceOfFirst(), "2.75");
}

TEST_F(TablesOnTheCommandLine, AddsAndChangesByItsMode) {
  ASSERT_TRUE(inCatalogue("UPDATE articoli SET fuoricatalogo = 0"));
  const std::string department = rowsOf("SELECT ID FROM categorie ORDER BY ID LIMIT 1"),
                    listed = rowsOf("SELECT COUNT(*) FROM articoli");
  const std::string ID = department.substr(0, department.size() - 1);
  struct Run {
    const char* mode;
    const char *price, *added, *out;  // of the first article, how many new ones, how many articles out of the catalogue
  };
  std::string own = rowsOf("SELECT catID FROM articoli WHERE codice = 'primo'");
  own.pop_back();
  const std::string others = std::to_string(std::stoi(listed) - 1);
  int round = 0;
  for (const Run& run : {Run{"change", "2.75", "0", "0"}, Run{"add", "1.5", "1", "0"}, Run{"all", "2.75", "1", "0"},
                         Run{"sync", "2.75", "1", others.c_str()}, Run{"", "2.75", "1", "0"}}) {
    SCOPED_TRACE(run.mode);
    const std::string code = "nuovo" + std::to_string(++round);
    ASSERT_TRUE(
        inCatalogue("UPDATE articoli SET fuoricatalogo = 0; UPDATE articoli SET prezzo = 15000 WHERE codice = "
                    "'primo'"));
    ASSERT_TRUE(writeBytes(sheet, "Codice;Prezzo;Reparto\nprimo;2,75;" + own + "\n" + code + ";1;" + ID + "\n"));
    std::vector<std::string> arguments{"import-table", shop, sheet};
    if (*run.mode != '\0') arguments.insert(arguments.end(), {"--mode", run.mode});
    EXPECT_EQ(this->run(arguments), CliOutcome::Done) << err.str();
    EXPECT_EQ(priceOfFirst(), run.price);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM articoli WHERE codice = '" + code + "'"), std::string(run.added) + "\n");
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM articoli WHERE fuoricatalogo"), std::string(run.out) + "\n");
    ASSERT_TRUE(inCatalogue("DELETE FROM articoli WHERE codice = '" + code + "'"));
  }
}

TEST_F(TablesOnTheCommandLine, TakesTheColumnsThatAFileNames) {
  ASSERT_TRUE(writeBytes(sheet, "Cod;Euro;Titolo\nprimo;2,75;Altro\n"));
  ASSERT_TRUE(writeBytes(home / "mappa.txt", "# mia\nCod=codice\nEuro=prezzo\nTitolo=\n"));
  const std::string title = rowsOf("SELECT titolo FROM articoli WHERE codice = 'primo'");
  EXPECT_EQ(run({"import-table", shop, sheet, "--map", home / "mappa.txt"}), CliOutcome::Done) << err.str();
  EXPECT_EQ(priceOfFirst(), "2.75");
  EXPECT_EQ(rowsOf("SELECT titolo FROM articoli WHERE codice = 'primo'"), title) << "a column that the file takes out";
  const std::string inUtf16("\xFF\xFE\x43\0o\0d\0=\0c\0o\0d\0i\0c\0e\0", 22);
  for (const std::string& marked : {std::string("\xEF\xBB\xBFTitolo=\r\nCod=codice\r\n"), inUtf16}) {
    ASSERT_TRUE(writeBytes(home / "mappa.txt", marked));
    EXPECT_EQ(run({"import-table", shop, sheet, "--map", home / "mappa.txt", "--dry-run"}), CliOutcome::Done)
        << "as editors save it: " << err.str();
  }
  ASSERT_TRUE(writeBytes(home / "mappa.txt", "Cod=codice\nEuro=nessuna\n"));
  EXPECT_EQ(run({"import-table", shop, sheet, "--map", home / "mappa.txt"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("Riga non valida in "));
  EXPECT_THAT(err.str(), HasSubstr(": Euro=nessuna"));
  ASSERT_TRUE(writeBytes(home / "mappa.txt", std::string(5000, 'x')));
  EXPECT_EQ(run({"import-table", shop, sheet, "--map", home / "mappa.txt"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr(": " + std::string(80, 'x') + "...\n"));
  EXPECT_EQ(run({"import-table", shop, sheet, "--map", home / "manca.txt"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("manca.txt non può essere letto"));
}

TEST_F(TablesOnTheCommandLine, TellsInADryRunWhichArticlesWouldGoOutOfTheCatalogue) {
  ASSERT_TRUE(writeBytes(sheet, "Codice;Prezzo\nprimo;1,5\n"));
  ASSERT_TRUE(inCatalogue("UPDATE articoli SET titolo = 'Vaso' || ID"));
  ASSERT_EQ(run({"import-table", shop, sheet, "--mode", "sync", "--dry-run"}), CliOutcome::Done) << err.str();
  const std::string others = rowsOf(
      "SELECT 'fuori catalogo' || char(9) || codice || '  ' || titolo FROM articoli "
      "WHERE codice <> 'primo' AND NOT COALESCE(fuoricatalogo, 0) ORDER BY ID");
  EXPECT_FALSE(others.empty());
  EXPECT_TRUE(out.str().ends_with(" fuori catalogo\n" + others)) << out.str();
}

TEST_F(TablesOnTheCommandLine, ExportsASheetThatChangesNothingWhenItIsImported) {
  const std::string exported = home / "articoli.xlsx";
  isCancelled = true;
  EXPECT_EQ(run({"export-table", shop, exported}), CliOutcome::Cancelled) << err.str();
  EXPECT_FALSE(fileExists(exported));
  isCancelled = false;
  ASSERT_EQ(run({"export-table", shop, exported, "--columns", "codice, titolo,prezzo, reparto"}), CliOutcome::Done);
  EXPECT_THAT(out.str(), HasSubstr("articoli.xlsx: "));
  ASSERT_EQ(run({"import-table", shop, exported, "--dry-run"}), CliOutcome::Done) << err.str();
  EXPECT_THAT(out.str(), HasSubstr("Articoli: 0 nuovi, 0 modificati, "));
  EXPECT_THAT(out.str(), HasSubstr(" invariati, 0 tralasciati\n"));
}

TEST_F(TablesOnTheCommandLine, RefusesWhatIsNoSheetAndOptionsThatMakeNoSense) {
  ASSERT_TRUE(writeBytes(sheet, "\xD0\xCF\x11\xE0"));
  EXPECT_EQ(run({"import-table", shop, sheet}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("Il foglio \"foglio.csv\" è protetto, o nel formato di un vecchio programma"));
  EXPECT_EQ(run({"import-table", shop, sheet, "--table", "clienti"}), CliOutcome::WrongUsage);
  EXPECT_EQ(run({"import-table", shop, sheet, "--mode", "mai"}), CliOutcome::WrongUsage);
  EXPECT_EQ(run({"export-table", shop, sheet, "--columns", "costo"}), CliOutcome::WrongUsage);
  EXPECT_THAT(err.str(), HasSubstr("valore non ammesso per --columns: costo"));
  EXPECT_EQ(run({"export-table", shop, sheet, "--columns", ","}), CliOutcome::WrongUsage);
  EXPECT_EQ(run({"export-table", shop, home / "."}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("è una cartella. Indicare il nome di un foglio"));
}

}  // namespace
}  // namespace kv
