// korvane-cli import with a source of the accounting package: what it prints and writes, and how it ends.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "platform/database/database.h"
#include "platform/files/files.h"
#include "shell/cli/cli_program.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class AccountingOnTheCommandLine : public ::testing::Test {
 protected:
  AccountingOnTheCommandLine() : shop(home / "negozio"), application(home / "app"), source(home / "orsa.db") {
    const std::string data = KORVANE_APP_DATA;
    for (const char* folder : {"new", "template", "languages"}) {
      EXPECT_TRUE(copyTree(data + "/" + folder, application + "/" + folder));
    }
    EXPECT_TRUE(copyTree(data + "/new", shop));
    for (const char* working : {"work", "online", "scripts", "db"}) EXPECT_TRUE(createFolders(shop + "/" + working));
    make(source,
         "CREATE TABLE Categoria (Id INTEGER, Nome TEXT); INSERT INTO Categoria VALUES (7, 'Vasi');"
         "CREATE TABLE Articoli (Id INTEGER, IdCategoria INTEGER, Codice TEXT, Descrizione TEXT,"
         " iva DOUBLE, Vendita1 DOUBLE, Vista INTEGER);"
         "INSERT INTO Articoli VALUES (42, 7, NULL, 'Vaso', 22, 3.5, 0)");
  }
  static void make(const std::string& path, const std::string& sql) {
    auto made = Database::create(path);
    ASSERT_TRUE(made && made->execute(sql));
  }
  CliOutcome run(std::vector<std::string> arguments) {
    out.str("");
    err.str("");
    arguments.insert(arguments.end(), {"--app", application});
    ConsoleOptions screen;
    screen.cancelled = [this] { return isCancelled; };
    return runCommandLine(arguments, {out, err, screen, ""});
  }
  std::string imported() const {
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    const auto value = catalogue ? catalogue->scalar("SELECT titolo || prezzo3 FROM articoli WHERE codice = 'OG00042'")
                                 : fail(catalogue.error());
    return value ? asText(*value) : value.error().what;
  }

  test::TempFolder home;
  std::string shop, application, source;
  bool isCancelled = false;
  std::ostringstream out, err;
};

TEST_F(AccountingOnTheCommandLine, ASourceIsToldByWhatItHoldsAndImported) {
  isCancelled = true;
  EXPECT_EQ(run({"import", shop, source, "--options", "11010031000"}), CliOutcome::Cancelled) << err.str();
  EXPECT_EQ(imported(), "");
  isCancelled = false;
  EXPECT_EQ(run({"import", shop, source, "--options", "11010031000"}), CliOutcome::Done) << err.str();
  EXPECT_THAT(err.str(), HasSubstr("Importazione completata"));
  EXPECT_EQ(imported(), "*Vaso42700");
  EXPECT_EQ(readText(shop + "/og3.ini").value(), "11010031000\r\n")
      << "rows with a visibility are of the third generation";
}

TEST_F(AccountingOnTheCommandLine, ADryRunPrintsEachRowAndWritesNothing) {
  EXPECT_EQ(run({"import", shop, source, "--options", "0100003", "--variant", "0", "--dry-run"}), CliOutcome::Done);
  EXPECT_EQ(out.str(),
            "Reparti: 1 nuovi, 0 invariati\nArticoli: 1 nuovi, 0 modificati, 0 invariati, 0 tralasciati\n"
            "nuovo\tdgf7\tVasi\nnuovo\tOG00042\tVaso\t3,50\n");
  EXPECT_EQ(imported(), "");
  EXPECT_FALSE(fileExists(shop + "/og.ini"));
}

TEST_F(AccountingOnTheCommandLine, ACompanyIsChosenByItsId) {
  const std::string list = home / "nomi.db";
  make(list,
       "CREATE TABLE Nomi (ID INTEGER, nome TEXT, path TEXT);"
       "INSERT INTO Nomi VALUES (4, 'Uno', 'manca.mdb'), (9, 'Due', '" +
           source + "')");
  EXPECT_EQ(run({"import", shop, list, "--options", "0100003", "--company", "5"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("Non è stato possibile importare i dati"));
  EXPECT_EQ(run({"import", shop, list, "--options", "0100003", "--company", "9"}), CliOutcome::Done) << err.str();
  EXPECT_EQ(imported(), "Vaso35000");
}

TEST_F(AccountingOnTheCommandLine, AFolderOfTextFilesIsASourceToo) {
  const std::string folder = home / "testo";
  ASSERT_TRUE(createFolders(folder));
  ASSERT_TRUE(writeBytes(folder + "/Categoria.csv", "Id,Nome\n7,Vasi\n"));
  ASSERT_TRUE(
      writeBytes(folder + "/Articoli.csv", "Id,IdCategoria,Codice,Descrizione,iva,Vendita1\n42,7,,Vaso,22,3.5\n"));
  EXPECT_EQ(run({"import", shop, folder, "--options", "0100003", "--dry-run"}), CliOutcome::Done) << err.str();
  EXPECT_THAT(out.str(), StartsWith("Categoria.csv: Unicode, separatore di campo \",\", separatore decimale \".\"\n"));
  EXPECT_EQ(run({"import", shop, folder, "--options", "0100003"}), CliOutcome::Done) << err.str();
  EXPECT_EQ(imported(), "Vaso35000");
}

TEST_F(AccountingOnTheCommandLine, OptionsThatAreNoneAreWrongUsage) {
  EXPECT_EQ(run({"import", shop, source, "--options", "01x"}), CliOutcome::WrongUsage);
  EXPECT_EQ(run({"import", shop, source, "--options", "012345678901"}), CliOutcome::WrongUsage);
  EXPECT_EQ(run({"import", shop, source, "--variant", "6"}), CliOutcome::WrongUsage);
}

TEST_F(AccountingOnTheCommandLine, AFileOfAnotherKindCannotBeOpened) {
  ASSERT_TRUE(writeBytes(home / "testo.mdb", "niente"));
  EXPECT_EQ(run({"import", shop, home / "testo.mdb", "--options", "0100003", "--dry-run"}), CliOutcome::Failed);
  EXPECT_EQ(out.str(), "");
  EXPECT_THAT(err.str(), HasSubstr("non può essere aperto"));
  EXPECT_EQ(run({"import", shop, home / "testo.mdb", "--options", "0100003"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("non può essere aperto"));
}

}  // namespace
}  // namespace kv
