// A publish run against a server that does its part: what is sent, in which order, and what is told.
#include <unistd.h>

#include <map>

#include "publish_fixture.h"

namespace kv {
namespace {

using test::asText;
using Names = std::vector<std::string>;

class APublishRun : public test::PublishFixture {};

TEST_F(APublishRun, SendsBothFoldersOverOneConnection) {
  write("online/b.gif", "gif");
  write("online/A.htm", "pagina");
  write("scripts/kv.pl", "uno\n");
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(server.file("/casa/www/negozio/A.htm"), "pagina");
  EXPECT_EQ(server.file("/casa/www/negozio/b.gif"), "gif");
  EXPECT_EQ(server.file("/casa/cgi/kv.pl"), "uno\r\n") << "ASCII mode";
  EXPECT_EQ(server.connections(), 1);
  EXPECT_EQ(
      server.commands(),
      (Names{"AUTH TLS",   "USER mario", "PASS segreto", "PWD",        "CWD www/negozio",      "DELE A.htm", "TYPE I",
             "EPSV",       "STOR A.htm", "DELE b.gif",   "EPSV",       "STOR b.gif",           "CWD /casa",  "CWD cgi",
             "DELE kv.pl", "TYPE A",     "EPSV",         "STOR kv.pl", "SITE chmod 755 kv.pl", "QUIT"}));
  EXPECT_TRUE(user.shown.empty()) << asText(user.shown.front());
  EXPECT_EQ(view.titles,
            (Names{"Korvane - Aggiornamento cartella del negozio", "Korvane - Aggiornamento cartella del BackOffice"}));
  EXPECT_EQ(view.operations, (Names{"Preparazione database...", "Connessione a 127.0.0.1/www/negozio",
                                    "Confronto del file A.htm", "Invio del file A.htm", "Confronto del file b.gif",
                                    "Invio del file b.gif", "Connessione a 127.0.0.1/cgi", "Confronto del file kv.pl",
                                    "Invio del file kv.pl", "File inviati: 3 (13 byte), già presenti: 0"}));
}

TEST_F(APublishRun, OfAnUnchangedShopSendsNothingAndOpensNoDataConnection) {
  write("online/a.htm", "pagina");
  write("scripts/b.php", "script");
  ASSERT_EQ(publish(), PublishOutcome::Done);
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(server.commands(), (Names{"AUTH TLS", "USER mario", "PASS segreto", "PWD", "CWD www/negozio", "CWD /casa",
                                      "CWD cgi", "QUIT"}));
  EXPECT_EQ(report.sent, 0);
  EXPECT_EQ(report.skipped, 2);
}

TEST_F(APublishRun, SaysNoMoreForTenThousandFilesThatTheServerHas) {
  write("online/p0.htm", "pagina");
  ASSERT_EQ(publish(), PublishOutcome::Done);
  for (int i = 1; i < 10'000; ++i) {
    ASSERT_EQ(::link((root / "online/p0.htm").c_str(), (root / "online/p" + std::to_string(i) + ".htm").c_str()), 0);
  }
  auto table = Database::open(root / "kvftp.mdb", OpenMode::Shared);
  ASSERT_TRUE(table &&
              table->execute("WITH RECURSIVE n(i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM n WHERE i < 9999) "
                             "INSERT INTO file (nome, data, peso) SELECT replace(nome, 'p0.htm', 'p' || i || "
                             "'.htm'), data, peso FROM n, file"));
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(report.skipped, 10'000);
  EXPECT_LE(server.commands().size(), 8U);
  EXPECT_EQ(server.commands("EPSV").size() + server.commands("PASV").size(), 0U);
}

TEST_F(APublishRun, SendsAFileThatIsNewerAndNoneWithAnEqualOrOlderTime) {
  write("online/a.htm", "1", 10);
  write("online/b.htm", "1", 10);
  write("online/c.htm", "1", 10);
  ASSERT_EQ(publish(), PublishOutcome::Done);
  write("online/a.htm", "nuova", 11);
  write("online/b.htm", "altra lunghezza", 10);
  write("online/c.htm", "vecchia", 9);
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), Names{"a.htm"});
  EXPECT_EQ(tableRows(),
            "127.0.0.1/www/negozio/a.htm|5\n127.0.0.1/www/negozio/b.htm|1\n"
            "127.0.0.1/www/negozio/c.htm|1\n");
}

TEST_F(APublishRun, SendsEveryFileWhenThatIsWanted) {
  write("online/a.htm", "1", 10);
  ASSERT_EQ(publish(), PublishOutcome::Done);
  write("online/a.htm", "vecchia", 9);
  settings.onlyModified = false;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(server.file("/casa/www/negozio/a.htm"), "vecchia");
  EXPECT_EQ(tableRows(), "127.0.0.1/www/negozio/a.htm|7\n") << "one row, changed";
}

TEST_F(APublishRun, LeavesOutAPictureThatTheLastBuildDidNotWrite) {
  settings.onlyShopFiles = true;
  write("online/a.gif", "1");
  write("online/vecchia.gif", "1");
  write("kvftp.dat", "#" + (root / "online/a.gif") + "\r\n#\r\n");
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), Names{"a.gif"});
}

TEST_F(APublishRun, KnowsAServerUnderOneKeyHoweverItsNameIsTyped) {
  write("online/a.htm", "1");
  job.login.host = " FTP://127.0.0.1/ ";
  job.folderFTP = " www\\negozio/ ";
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(tableRows(), "127.0.0.1/www/negozio/a.htm|1\n");
  job.login.host = "Http://127.0.0.1";
  job.folderFTP = "www/negozio";
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), Names{});
}

TEST_F(APublishRun, TakesAnEmptyRemoteFolderForTheOneAfterLogin) {
  write("online/a.htm", "1");
  job.folderFTP = "";
  job.folderCGI = "/";
  write("scripts/b.php", "2");
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(server.file("/casa/a.htm"), "1");
  EXPECT_EQ(server.file("/b.php"), "2");
  EXPECT_EQ(view.operations[1], "Connessione a 127.0.0.1");
  EXPECT_EQ(view.operations[4], "Connessione a 127.0.0.1/");
}

TEST_F(APublishRun, ConnectsAgainForTheSecondFolderWhenTheServerWantsThat) {
  write("online/a.htm", "1");
  write("scripts/b.php", "2");
  way.reconnects = true;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(server.connections(), 2);
  EXPECT_EQ(server.commands("QUIT").size(), 2U);
  EXPECT_EQ(server.file("/casa/cgi/b.php"), "2");
}

TEST_F(APublishRun, SetsNoPermissionsOnAWindowsServer) {
  write("online/a.htm", "1");
  write("scripts/kv.pl", "2");
  job.serverNT = true;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(server.commands("SITE"), Names{});
}

TEST_F(APublishRun, WithAnEmptyScriptFolderSucceedsAndLeaves) {
  write("online/a.htm", "1");
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(server.commands("QUIT").size(), 1U);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(APublishRun, OfAShopWithoutPagesIsRefused) {
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(asText(user.shown[0]), "[Exclamation, Ok, Ok -> Ok] La cartella '" + (root / "online") +
                                       "' è vuota: è necessario costruire il sito prima di metterlo online");
  EXPECT_EQ(server.connections(), 0);
}

TEST_F(APublishRun, WritesALogOfEachFolderWithoutAPassword) {
  write("online/a.htm", "1");
  write("scripts/b.php", "2");
  write("kvftp1.log", "vecchio");
  server.fail({.verb = "PASS", .reply = "230 PASS segreto accettata\r\n"});
  publish();
  EXPECT_EQ(log(1).substr(0, 26), "220 pronto\r\nAUTH TLS\r\n502 ");
  EXPECT_NE(log(1).find("PASS (hidden)\r\n230 PASS (hidden) accettata\r\n"), std::string::npos);
  for (const std::string& text : {log(1), log(2)}) EXPECT_EQ(text.find("segreto"), std::string::npos);
  for (const std::string& line : view.lines) EXPECT_EQ(line.find("segreto"), std::string::npos);
}

TEST_F(APublishRun, DeletesOldSqlFilesBeforeTheExportMakesNewOnes) {
  write("online/a.htm", "1");
  write("online/db_l2.sql", "vecchio");
  steps.exportSql = [this](UserPort&) {
    EXPECT_FALSE(fileExists(root / "online/db_l2.sql"));
    write("online/db.sql", "nuovo");
    return true;
  };
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), (Names{"a.htm", "db.sql"}));
}

TEST_F(APublishRun, WhoseExportIsCancelledEndsWithoutAWordAndWithoutAConnection) {
  write("online/a.htm", "1");
  steps.exportSql = [](UserPort& asked) {
    while (asked.yield()) {
    }
    return false;
  };
  user.cancelAtYield = 5;
  EXPECT_EQ(publish(), PublishOutcome::Cancelled);
  EXPECT_TRUE(user.shown.empty());
  EXPECT_EQ(server.connections(), 0);
}

TEST_F(APublishRun, NamesInTheDryRunWhatItWouldSendAndChangesNothing) {
  write("online/a.htm", "1");
  write("online/b.htm", "1");
  write("scripts/c.php", "1");
  const auto wanted = filesToSend(job, uploadOptions(job, settings, way));
  ASSERT_TRUE(wanted);
  EXPECT_EQ(*wanted, (Names{"www/negozio/a.htm", "www/negozio/b.htm", "cgi/c.php"}));
  EXPECT_EQ(server.connections(), 0);
  ASSERT_EQ(publish(), PublishOutcome::Done);
  write("online/b.htm", "2", 1);
  EXPECT_EQ(filesToSend(job, uploadOptions(job, settings, way)).value(), Names{"www/negozio/b.htm"});
  settings.disabled = true;
  EXPECT_EQ(filesToSend(job, uploadOptions(job, settings, way)).value(), Names{}) << "nothing goes by FTP";
}

TEST_F(APublishRun, CanBeCancelledInTheDryRunToo) {
  settings.contentCheck = true;
  write("online/a.htm", std::string(3'000'000, 'a'));
  write("online/b.htm", "1");
  ASSERT_EQ(publish(), PublishOutcome::Done);
  write("online/a.htm", std::string(3'000'000, 'a'), 5);
  int asked = 0;
  const auto list = [&](int cancelAt) {
    asked = 0;
    return filesToSend(job, uploadOptions(job, settings, way), [&] { return ++asked != cancelAt; });
  };
  EXPECT_EQ(list(0).value(), Names{});
  const int questions = asked;
  EXPECT_GT(questions, 4) << "for each file, and within the large one";
  for (int at = 1; at <= questions; ++at) {
    const auto ended = list(at);
    EXPECT_FALSE(ended) << at;
    EXPECT_TRUE(ended || ended.error().kind == ErrorKind::Cancelled) << at;
    EXPECT_EQ(asked, at);
  }
}

TEST_F(APublishRun, AddsUpWhatItDidForTheLineUnderTheBar) {
  write("online/a.htm", std::string(2000, 'x'));
  write("online/b.htm", "1");
  clock.step = 2;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(reportText(report), "File inviati: 2 (2 KB), già presenti: 0");
  const PublishProgress& last = view.steps.back();
  EXPECT_EQ(last.filesDone, 2);
  EXPECT_EQ(last.filesTotal, 2);
  EXPECT_EQ(last.bytesSent, 2001U);
  EXPECT_GT(last.bytesPerSecond, 0);
}

TEST_F(APublishRun, TellsTheTimeThatTheFilesOfAFolderWillStillTake) {
  for (const char* name : {"online/a.htm", "online/b.htm", "online/c.htm", "online/d.htm"}) {
    write(name, std::string(1000, 'x'));
  }
  clock.step = 2;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  std::map<int, PublishProgress> last;  // by the files that are done
  for (const PublishProgress& step : view.steps) last[step.filesDone] = step;
  for (const int done : {1, 2, 3}) {
    const PublishProgress& step = last[done];
    EXPECT_DOUBLE_EQ(step.secondsLeft, (4 - done) * 1000 / step.bytesPerSecond) << done;
  }
  EXPECT_EQ(last[4].secondsLeft, 0);
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(view.steps.back().secondsLeft, 0) << "nothing is to be sent any more";
}

TEST(TheLineUnderTheBar, TellsFilesBytesSpeedAndTime) {
  PublishProgress progress;
  progress.filesDone = 3;
  progress.filesTotal = 40;
  progress.bytesSent = 12288;
  EXPECT_EQ(progressText(progress), "File 3 di 40 - 12 KB inviati");
  progress.bytesPerSecond = 87040;
  progress.secondsLeft = 12.4;
  EXPECT_EQ(progressText(progress), "File 3 di 40 - 12 KB inviati - 85 KB/s - ancora 12 s");
  progress.secondsLeft = 200;
  EXPECT_EQ(progressText(progress), "File 3 di 40 - 12 KB inviati - 85 KB/s - ancora 3 min");
}

TEST_F(APublishRun, ReplacesPasswordListsOrAddsToThem) {
  write("scripts/otp.ric", "uno\n");
  write("scripts/otp.ris", "due\n");
  write("scripts/b.php", "no");
  write("online/a.htm", "no");
  job.passwordFolder = "/casa/cgi";
  job.otpMode = OtpMode::Replace;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), (Names{"otp.ric", "otp.ris"}));
  EXPECT_EQ(server.commands("SITE"), (Names{"SITE chmod 666 otp.ric", "SITE chmod 666 otp.ris"}));
  EXPECT_EQ(view.titles, Names{"Korvane - Aggiornamento cartella password"});
  job.otpMode = OtpMode::Append;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(server.file("/casa/cgi/otp.ric"), "uno\r\nuno\r\n");
  EXPECT_EQ(asText(user.shown.back()), "[Information, Ok, Ok -> Ok] I file di password sono stati aggiornati");
}

}  // namespace
}  // namespace kv
