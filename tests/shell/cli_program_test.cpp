// korvane-cli as it is started: exit statuses, what goes to which stream, and what is left on the disk.

#include "shell/cli/cli_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <sstream>

#include "platform/database/database.h"
#include "platform/files/files.h"
#include "store/shop/backup_copies.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// How one run of the program ended.
struct Ended {
  int status = -1;
  std::string out;
  std::string err;
};

class CliProgram : public ::testing::Test {
 protected:
  /// Runs the real program with arguments as a shell takes them, in a home of its own.
  Ended run(const std::string& arguments) {
    const std::string command = "cd '" + home.path() + "' && XDG_DATA_HOME='" + home / "data" + "' XDG_CONFIG_HOME='" +
                                home / "config" + "' '" KORVANE_CLI "' " + arguments + " >'" + home / "out" + "' 2>'" +
                                home / "err" + "'";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readBytes(home / "out").value(),
            readBytes(home / "err").value()};
  }

  /// The same within this process, against the shipped data.
  CliOutcome runHere(const std::vector<std::string>& arguments, ConsoleOptions screen = {}) {
    return runCommandLine(arguments, {out, err, std::move(screen), ""});
  }

  test::TempFolder home;
  std::ostringstream out;
  std::ostringstream err;
};

TEST_F(CliProgram, HelpAndVersionGoToStandardOutputWithStatusZero) {
  const Ended help = run("--help");
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, StartsWith("Uso: korvane-cli"));
  EXPECT_EQ(help.err, "");
  const Ended version = run("--version");
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out, "korvane-cli " KORVANE_VERSION "\n");
}

TEST_F(CliProgram, BadArgumentsGiveTheUsageOnStandardErrorAndStatusTwo) {
  const Ended bad = run("sell shop");
  EXPECT_EQ(bad.status, 2);
  EXPECT_EQ(bad.out, "");
  EXPECT_THAT(bad.err, StartsWith("korvane-cli: comando sconosciuto: sell\n\nUso: korvane-cli"));
  EXPECT_EQ(run("").status, 2);
}

TEST_F(CliProgram, AnApplicationFolderThatIsNotThereIsNamed) {
  const Ended lost = run("--app nowhere build shop");
  EXPECT_EQ(lost.status, 1);
  EXPECT_EQ(lost.err,
            "Impossibile preparare la cartella dell'applicazione:\n" + home / "nowhere" + ": no such folder\n");
}

TEST_F(CliProgram, AFolderWithoutAShopIsRefusedInTheWordsOfTheProgram) {
  ASSERT_TRUE(createFolder(home / "empty"));
  for (const char* command : {"build", "check"}) {
    const Ended refused = run(std::string(command) + " empty");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err,
              "La cartella selezionata non contiene un negozio\n(oppure il negozio contenuto è corrotto)\n");
  }
  EXPECT_TRUE(listFolders(home / "empty").empty());
}

TEST_F(CliProgram, TheRootOfADiskIsRefusedByEachCommandInItsOwnWords) {
  EXPECT_EQ(run("build /").err,
            "La cartella '/' è la root di un disco: non è consentito aprire un negozio in questa posizione\n");
  const Ended created = run("new /");
  EXPECT_EQ(created.status, 1);
  EXPECT_EQ(created.err, "La cartella '/' è la root di un disco, e non è consentito crearvi un nuovo negozio\n");
}

TEST_F(CliProgram, ANewShopCanBeCheckedAndBuilt) {
  const Ended created = run("new shop");
  ASSERT_EQ(created.status, 0) << created.err;
  EXPECT_EQ(created.out, "Nuovo negozio: " + home / "shop\n");

  const Ended checked = run("check shop");
  EXPECT_EQ(checked.status, 0) << checked.err;
  EXPECT_THAT(checked.out, StartsWith("Il negozio può essere costruito: articoli "));

  const Ended built = run("build shop");
  ASSERT_EQ(built.status, 0) << built.err;
  EXPECT_THAT(built.out, HasSubstr("\nPagine: " + home / "shop/online\nScript: " + home / "shop/scripts\n"));
  EXPECT_THAT(built.err, HasSubstr("Creazione del negozio terminata. Aggiornare il sito per rendere effettive le "
                                   "modifiche.\n"));
  EXPECT_FALSE(listFiles(home / "shop/online", "*.php").empty());
  EXPECT_TRUE(fileExists(home / "shop/kvftp.dat"));
  EXPECT_FALSE(folderExists(home / "shop/tmp"));
}

TEST_F(CliProgram, ABuiltShopIsExportedForEachOfItsLanguages) {
  ASSERT_EQ(run("new shop").status, 0);
  ASSERT_EQ(run("build shop").status, 0);
  ASSERT_TRUE(writeBytes(home / "shop/online/old.sql", "of another time"));
  const Ended exported = run("export-sql shop");
  ASSERT_EQ(exported.status, 0) << exported.err;
  const std::string made = exported.out;
  EXPECT_THAT(made, AllOf(StartsWith("Lingue "), HasSubstr(", righe "), HasSubstr("; file: db.sql dbdel.sql"),
                          HasSubstr(".\nCartella: " + home / "shop/online\n")));
  EXPECT_EQ(exported.err, "");
  for (const std::string& name : listFiles(home / "shop/online", "*.sql")) EXPECT_THAT(made, HasSubstr(" " + name));
  EXPECT_FALSE(fileExists(home / "shop/online/old.sql"));
  EXPECT_THAT(readBytes(home / "shop/online/db.sql").value(), HasSubstr("\r\nCREATE TABLE articoli\r\n"));
  EXPECT_THAT(run("export-sql shop").out, StartsWith("File SQL dell'esportazione precedente, ancora validi; file: "));
}

TEST_F(CliProgram, ADatedCopyIsMadeBeforeAShopIsNumberedAgain) {
  ASSERT_EQ(run("new shop").status, 0);
  const std::string orders = "SELECT MIN(ordinamento) FROM articoli";
  const auto lowest = [&](const std::string& path) {
    auto catalogue = Database::open(path, OpenMode::ReadOnly);
    const auto value = catalogue ? catalogue->scalar(orders) : Result<Value>(fail(catalogue.error()));
    return value ? asInteger(*value) : -1;
  };
  {
    auto catalogue = Database::open(home / "shop/catalog.mdb", OpenMode::Exclusive);
    ASSERT_TRUE(catalogue && catalogue->execute("UPDATE articoli SET ordinamento = ordinamento + 7"));
  }
  run("export-sql shop");
  EXPECT_EQ(lowest(home / "shop/catalog.mdb"), 100);
  const auto copies = backupCopies(home / "shop");
  ASSERT_FALSE(copies.empty());
  EXPECT_EQ(lowest(home / "shop/" + std::string(backupFolder) + "/" + copies.front().name), 107);
}

TEST_F(CliProgram, AShopThatWasNotBuiltIsNotExported) {
  ASSERT_EQ(run("new shop").status, 0);
  const Ended refused = run("export-sql shop");
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.out, "");
  EXPECT_EQ(refused.err,
            "Il negozio non è stato costruito: è necessario costruire il sito prima di esportarne il database\n");
  EXPECT_TRUE(listFiles(home / "shop/online", "*.sql").empty());
}

TEST_F(CliProgram, AnExportWhoseFileCannotBeWrittenFails) {
  ASSERT_EQ(run("new shop").status, 0);
  ASSERT_EQ(run("build shop").status, 0);
  ASSERT_TRUE(createFolder(home / "shop/online/db.sql"));
  const Ended ended = run("export-sql shop");
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, HasSubstr("Impossibile scrivere il file " + home / "shop/online/db.sql"));
}

TEST_F(CliProgram, TheLockOptionOfTheShopGovernsTheExport) {
  ASSERT_EQ(run("new shop").status, 0);
  ASSERT_EQ(run("build shop").status, 0);
  ASSERT_TRUE(writeBytes(home / "shop/kvftp.ini", "LOCK: 0\r\n"));
  ASSERT_EQ(run("export-sql shop").status, 0);
  EXPECT_EQ(test::valueOf(readBytes(home / "shop/online/db.sql")).find("LOCK TABLES"), std::string::npos);
}

TEST_F(CliProgram, AShopThatLacksAPaymentModuleGetsItWhenItIsOpened) {
  ASSERT_EQ(run("new shop").status, 0);
  ASSERT_TRUE(emptyFolder(home / "shop/code/Paypal"));
  ASSERT_TRUE(deleteFile(home / "shop/code/Paypal.kpg"));
  ASSERT_EQ(run("check shop").status, 0);
  EXPECT_TRUE(fileExists(home / "shop/code/Paypal/conf.ini"));
  EXPECT_TRUE(fileExists(home / "shop/code/Paypal.kpg"));
}

TEST_F(CliProgram, ANewShopIsNotLaidOverAnother) {
  ASSERT_EQ(run("new shop").status, 0);
  const Ended again = run("new shop");
  EXPECT_EQ(again.status, 1);
  EXPECT_EQ(again.err, "Nel percorso specificato è già presente un negozio\n");
}

TEST_F(CliProgram, BuildAndCheckLeaveTheShopOfTheProgramAsItIs) {
  ASSERT_EQ(run("new first").status, 0);
  ASSERT_EQ(run("new second").status, 0);
  const std::string remembered = home / "data/korvane/serverpath.net";
  const std::string before = readBytes(remembered).value();
  EXPECT_EQ(before, home / "second\r\n");
  ASSERT_EQ(run("check first").status, 0);
  ASSERT_EQ(run("build first").status, 0);
  EXPECT_EQ(readBytes(remembered).value(), before);
}

TEST_F(CliProgram, AwayFromATerminalTheProgressHasNoControlCharacters) {
  ASSERT_EQ(run("new shop").status, 0);
  const Ended built = run("build shop");
  EXPECT_THAT(built.err, HasSubstr("Lingua 1: Reparti "));
  EXPECT_EQ(built.err.find('\r'), std::string::npos);
  EXPECT_EQ(built.err.find('\x1b'), std::string::npos);
}

TEST_F(CliProgram, ACancelledBuildHasAStatusOfItsOwnAndSaysNothing) {
  ASSERT_EQ(run("new shop").status, 0);
  const auto outcome =
      runHere({"--app", home / "data/korvane", "build", home / "shop"}, {.cancelled = [] { return true; }});
  EXPECT_EQ(outcome, CliOutcome::Cancelled);
  EXPECT_EQ(static_cast<int>(outcome), 130);
  EXPECT_EQ(out.str(), "");
  EXPECT_EQ(err.str(), "");
}

TEST_F(CliProgram, CheckNamesEveryMissingPiece) {
  ASSERT_EQ(run("new shop").status, 0);
  ASSERT_EQ(std::system(("rm -rf '" + home / "data/korvane/template' '" + home / "data/korvane/languages'").c_str()),
            0);
  const auto outcome = runHere({"--app", home / "data/korvane", "check", home / "shop"});
  EXPECT_EQ(outcome, CliOutcome::Failed);
  EXPECT_THAT(err.str(), AllOf(HasSubstr("Per costruire il negozio è necessario scegliere un template\n"),
                               HasSubstr("I seguenti moduli linguistici non sono stati trovati:\n")));

  auto catalogue = test::valueOf(Database::open(home / "shop/catalog.mdb", OpenMode::Exclusive));
  err.str("");
  EXPECT_EQ(runHere({"--app", home / "data/korvane", "check", home / "shop"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("\n\nIl database è utilizzato da un altro utente.\n"));
  ASSERT_TRUE(catalogue.execute("DROP TABLE opzioni"));
  catalogue.close();
  err.str("");
  EXPECT_EQ(runHere({"--app", home / "data/korvane", "check", home / "shop"}), CliOutcome::Failed);
  EXPECT_EQ(err.str(), "Il database è corrotto, oppure sono stati cancellati alcuni file del programma.\n");
}

}  // namespace
}  // namespace kv
