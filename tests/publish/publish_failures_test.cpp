// A publish run that doesn't go through: what the user is asked and told, and what the next run finds.
#include "publish_fixture.h"
#include "support/failing_files.h"

namespace kv {
namespace {

using test::asText;
using Names = std::vector<std::string>;
using Kind = test::FtpFault::Kind;

class APublishRunInTrouble : public test::PublishFixture {
 protected:
  APublishRunInTrouble() {
    write("online/a.htm", "aaa");
    write("online/b.htm", "bbb");
  }
  /// The only thing the user has seen since the last call.
  std::string told() {
    std::string all;
    for (const test::Shown& one : user.shown) all += asText(one) + "\n";
    user.shown.clear();
    return all;
  }
};

const char* const folderQuestion =
    "La cartella specificata (www/negozio)\nnon è presente sul server. Si desidera crearla?\n";

TEST_F(APublishRunInTrouble, AsksBeforeItMakesTheFolderAndThenSendsEverything) {
  write("scripts/b.php", "1");
  ASSERT_EQ(publish(), PublishOutcome::Done);
  server.removeFolders();
  server.makeFolder("/casa/cgi");
  user.answers = {Answer::Yes};
  EXPECT_EQ(publish(), PublishOutcome::Done) << "whatever MODE says";
  EXPECT_EQ(told(), std::string("[Question, YesNo, No -> Yes] ") + folderQuestion);
  EXPECT_EQ(server.file("/casa/www/negozio/a.htm"), "aaa");
  EXPECT_EQ(server.file("/casa/www/negozio/b.htm"), "bbb");
  EXPECT_EQ(server.commands("MKD"), (Names{"MKD www", "MKD negozio"}));
  EXPECT_EQ(sent(), (Names{"a.htm", "b.htm", "b.php"})) << "the second folder too";
  EXPECT_EQ(tableRows(), "127.0.0.1/cgi/b.php|1\n127.0.0.1/www/negozio/a.htm|3\n127.0.0.1/www/negozio/b.htm|3\n");
}

TEST_F(APublishRunInTrouble, TakesNoFolderThatCantBeListedForAnEmptyOne) {
  write("scripts/b.php", "1");
  bool updated = false;
  steps.updateDatabase = [&] {
    updated = true;
    return std::string("OK");
  };
  for (const std::string folder : {"/online", "/scripts"}) {
    test::FailingFiles gate(1, test::AfterFailure::FailsToo);
    gate.onlyAt({FileStep::List});
    gate.onlyFor(folder);
    EXPECT_EQ(publish(), PublishOutcome::Failed) << folder;
    EXPECT_EQ(told(), "[Exclamation, Ok, Ok -> Ok] La cartella '" + root.path() + folder +
                          "': si è verificato un errore imprevisto.\nNulla è stato modificato: riprovare o riavviare "
                          "il programma.\n\nDettaglio: " +
                          root.path() + folder + ": Input/output error\n");
    EXPECT_FALSE(filesToSend(job, uploadOptions(job, settings, way))) << folder;
  }
  EXPECT_FALSE(updated) << "the host would load what was not sent";
}

TEST_F(APublishRunInTrouble, ForgetsWhatWasSentToAFolderThatHasGoneAlsoWhenItIsNotMade) {
  ASSERT_EQ(publish(), PublishOutcome::Done);
  server.removeFolders();
  server.makeFolder("/casa");
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(told(), std::string("[Question, YesNo, No -> No] ") + folderQuestion) << "and nothing more is said";
  EXPECT_EQ(tableRows(), "");
  EXPECT_EQ(server.commands("MKD"), Names{});
}

TEST_F(APublishRunInTrouble, MakesAnAbsoluteFolderFromTheRootLevelByLevel) {
  job.folderFTP = "/srv/web/negozio";
  user.answers = {Answer::Yes};
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(server.commands("CWD"), (Names{"CWD /srv/web/negozio", "CWD /", "CWD srv", "CWD srv", "CWD web", "CWD web",
                                           "CWD negozio", "CWD negozio", "CWD /", "CWD /srv/web/negozio"}));
  EXPECT_EQ(server.commands("MKD"), (Names{"MKD srv", "MKD web", "MKD negozio"}));
}

TEST_F(APublishRunInTrouble, SaysSoWhenTheFolderCannotBeMade) {
  server.removeFolders();
  server.makeFolder("/casa");
  server.fail({.verb = "MKD", .reply = "550 vietato\r\n"});
  user.answers = {Answer::Yes};
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(told(), std::string("[Question, YesNo, No -> Yes] ") + folderQuestion +
                        "[Exclamation, Ok, Ok -> Ok] Impossibile posizionarsi nella cartella specificata\n");
}

TEST_F(APublishRunInTrouble, StopsAtAFolderThatCannotBeMadeForAnotherReason) {
  server.removeFolders();
  server.makeFolder("/casa");
  server.fail({.verb = "MKD", .reply = "553 nome vietato\r\n"});
  user.answers = {Answer::Yes};
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(user.shown.back().text, "Errore: 553 nome vietato");
}

TEST_F(APublishRunInTrouble, TellsAFailureOnceAndSendsTheRestTheNextTime) {
  server.fail({.verb = "STOR", .reply = "552 disco pieno\r\n", .occurrence = 2});
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(told(), "[Exclamation, Ok, Ok -> Ok] Errore: 552 disco pieno\n");
  EXPECT_EQ(tableRows(), "127.0.0.1/www/negozio/a.htm|3\n") << "the row comes with the end of the upload";
  EXPECT_EQ(reportText(report), "File inviati: 1 (3 byte), già presenti: 0, non inviato: b.htm");
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), Names{"b.htm"});
}

TEST_F(APublishRunInTrouble, PointsAtTheOtherModeWhenNoDataConnectionComesAbout) {
  server.fail({.verb = "STOR", .kind = Kind::RefuseData});
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(told(),
            "[Exclamation, Ok, Ok -> Ok] Errore: 425 nessuna connessione dati\n"
            "Provare a cambiare la modalità di connessione (attiva/passiva)\n"
            "nelle proprietà FTP avanzate (scheda \"Internet\", pulsante \"Avanzate\")\n");
}

TEST_F(APublishRunInTrouble, IgnoresThatAFileToBeReplacedIsNotThere) {
  for (const char* reply : {"550 manca\r\n", "500 che cosa?\r\n", "553 vietato\r\n"}) {
    server.fail({.verb = "DELE", .reply = reply});
    settings.onlyModified = false;
    EXPECT_EQ(publish(), PublishOutcome::Done) << reply;
  }
  server.fail({.verb = "DELE", .kind = Kind::Close});
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(told(), "[Exclamation, Ok, Ok -> Ok] Errore: il server ha chiuso la connessione\n");
}

TEST_F(APublishRunInTrouble, IsRefusedByAServerThatKnowsNobodyOrIsNotThere) {
  job.login.password = "sbagliata";
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(told(), "[Exclamation, Ok, Ok -> Ok] Errore: 530 password errata\n");
  way.ftpPort = "1";
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(told(), "[Exclamation, Ok, Ok -> Ok] Errore: 127.0.0.1 (porta 1): connessione rifiutata\n");
}

TEST_F(APublishRunInTrouble, EndsAfterTheTimeOfSilenceAtWhateverCommand) {
  for (const char* verb : {"", "USER", "PASS", "PWD", "CWD", "DELE", "TYPE", "EPSV", "STOR"}) {
    server.fail({.verb = verb, .kind = Kind::Missing});
    settings.onlyModified = false;
    EXPECT_EQ(publish(), PublishOutcome::Failed) << verb;
    EXPECT_EQ(told(), "[Exclamation, Ok, Ok -> Ok] Errore: il server non risponde da 1 secondi\n") << verb;
    server.forgetFaults();
  }
  EXPECT_EQ(publish(), PublishOutcome::Done) << "and the next clean run sends all";
  EXPECT_EQ(sent(), (Names{"a.htm", "b.htm"}));
}

TEST_F(APublishRunInTrouble, IsLeftAtOnceAndWithoutAWordWhenItIsCancelled) {
  server.fail({.verb = "STOR", .kind = Kind::Missing});
  user.cancelAtYield = 20;
  EXPECT_EQ(publish(), PublishOutcome::Cancelled);
  EXPECT_TRUE(user.shown.empty());
  EXPECT_EQ(server.commands("QUIT"), Names{});
}

TEST_F(APublishRunInTrouble, CanBeCancelledAtEveryYieldAndIsRightTheNextTime) {
  write("scripts/c.php", "ccc");
  int wanted = 0;  // what the site is to hold
  steps.exportSql = [&](UserPort& asked) {
    if (!asked.yield()) return false;
    write("online/db.sql", "sql " + std::to_string(wanted), wanted);
    return asked.yield();
  };
  settings.contentCheck = true;
  PublishOutcome left = PublishOutcome::Cancelled;
  while (left == PublishOutcome::Cancelled) {
    ++wanted;
    write("online/a.htm", "pagina " + std::to_string(wanted), wanted);
    user.yields = 0;
    user.cancelAtYield = wanted;
    left = publish();
    EXPECT_EQ(told(), "") << wanted;
    user.cancelAtYield = 0;
    ASSERT_EQ(publish(), PublishOutcome::Done) << wanted;
    EXPECT_EQ(server.file("/casa/www/negozio/a.htm"), "pagina " + std::to_string(wanted));
    EXPECT_EQ(server.file("/casa/www/negozio/db.sql"), "sql " + std::to_string(wanted));
    EXPECT_EQ(server.file("/casa/cgi/c.php"), "ccc");
  }
  EXPECT_EQ(left, PublishOutcome::Done);
  EXPECT_GT(wanted, 10) << "before the first yield of a wait there are those of the files";
}

TEST_F(APublishRunInTrouble, SendsAgainWhatBrokeOffAlthoughItWasNotNewer) {
  ASSERT_EQ(publish(), PublishOutcome::Done);
  settings.onlyModified = false;
  server.fail({.verb = "STOR", .kind = Kind::CutData, .bytes = 1});
  ASSERT_EQ(publish(), PublishOutcome::Failed);
  settings.onlyModified = true;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), (Names{"a.htm", "b.htm"})) << "and what came next to it";
  EXPECT_EQ(server.file("/casa/www/negozio/a.htm"), "aaa");
}

TEST_F(APublishRunInTrouble, LoadsNoDatabaseUnlessBothFoldersAreThere) {
  int updates = 0;
  steps.updateDatabase = [&updates] {
    ++updates;
    return "OK";
  };
  write("scripts/c.php", "1");
  server.fail({.verb = "STOR", .reply = "552 disco pieno\r\n", .occurrence = 3});
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(updates, 0);
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(updates, 1);
}

TEST_F(APublishRunInTrouble, TellsWhatBecameOfTheDatabase) {
  std::string tag = "OK";
  int opened = 0;
  steps.updateDatabase = [&tag] { return tag; };
  steps.openSite = [&opened] { ++opened; };
  const std::string question =
      "Aggiornamento del negozio terminato. Vuoi vedere il sito?\n"
      "(aggiornare la pagina del browser se necessario)\n";
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(told(), "[Question, YesNo, Yes -> Yes] " + question);
  user.answers = {Answer::No};
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(told(), "[Question, YesNo, Yes -> No] " + question);
  EXPECT_EQ(opened, 1);
  tag = "accesso al database non autorizzato";
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(told(), "[Exclamation, Ok, Ok -> Ok] accesso al database non autorizzato\n");
  tag = "";
  EXPECT_EQ(publish(), PublishOutcome::Cancelled);
  EXPECT_EQ(told(), "[Exclamation, Ok, Ok -> Ok] Aggiornamento interrotto\n");
}

TEST_F(APublishRunInTrouble, WithoutFtpNamesBothFoldersInTurnAndLoadsTheDatabaseAllTheSame) {
  write("scripts/c.php", "1");
  settings.disabled = true;
  job.login.host = "ftp://127.0.0.1/";
  int updates = 0;
  steps.updateDatabase = [&updates] {
    ++updates;
    return "";
  };
  const auto question = [](const std::string& local, const std::string& remote) {
    return "Tutti i file contenuti nella cartella locale: \n\"" + local +
           "\"\n\ndevono essere trasferiti manualmente sul server ftp://127.0.0.1/ nella cartella:\n\"" + remote +
           "\"\n\nEseguire adesso il trasferimento manuale\ne premere OK solo quando è stato completato\n";
  };
  user.answers = {Answer::Ok, Answer::Ok};
  EXPECT_EQ(publish(), PublishOutcome::Cancelled);
  EXPECT_EQ(told(), "[Question, OkCancel, Cancel -> Ok] " + question(root / "online", "www/negozio") +
                        "[Question, OkCancel, Cancel -> Ok] " + question(root / "scripts", "cgi") +
                        "[Exclamation, Ok, Ok -> Ok] Aggiornamento interrotto\n");
  EXPECT_EQ(updates, 1);
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(user.shown.size(), 1U) << "a refusal is the end";
  EXPECT_EQ(updates, 1);
  EXPECT_EQ(server.connections(), 0);
}

TEST_F(APublishRunInTrouble, LeavesNoRowThatLiesWhenTheFileTableCannotBeWritten) {
  ASSERT_TRUE(writeBytes(root / "kvftp.mdb", "questa non è una tabella"));
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(server.connections(), 0);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text.substr(0, 32), "kvftp.mdb: il file è danneggiat");
}

}  // namespace
}  // namespace kv
