// What a publish run does beyond sending file by file: another attempt, temporary names, comparison by content.
#include "publish_fixture.h"

namespace kv {
namespace {

using Names = std::vector<std::string>;
using Kind = test::FtpFault::Kind;

class AForgivingRun : public test::PublishFixture {
 protected:
  AForgivingRun() {
    write("online/a.htm", "aaa");
    write("online/b.htm", "bbb");
    write("scripts/c.php", "ccc");
  }
  PublishOutcome publishWithRetries(std::size_t attempts) {
    UploadOptions options = uploadOptions(job, settings, way);
    options.retryPauses.assign(attempts, 1);
    const auto transfer = makeTransfer();
    return publishShop(job, options, {*transfer, user, view, clock, steps}, &report);
  }
};

TEST_F(AForgivingRun, TriesThreeTimesWithGrowingPausesAndOnlyWhenThatIsWanted) {
  EXPECT_TRUE(uploadOptions(job, settings, way).retryPauses.empty());
  settings.retry = true;
  EXPECT_EQ(uploadOptions(job, settings, way).retryPauses, (std::vector<int>{1000, 5000, 15000}));
}

TEST_F(AForgivingRun, GoesOnWithTheFileAtWhichTheConnectionBroke) {
  for (const Kind kind : {Kind::Close, Kind::RefuseData, Kind::CutData}) {
    server.forgetFaults();
    server.fail({.verb = "STOR", .kind = kind, .occurrence = 2, .bytes = 1});
    server.forgetCommands();
    settings.onlyModified = false;
    EXPECT_EQ(publishWithRetries(3), PublishOutcome::Done);
    EXPECT_EQ(sent(), (Names{"a.htm", "b.htm", "b.htm", "c.php"}));
    EXPECT_EQ(server.file("/casa/www/negozio/b.htm"), "bbb");
    EXPECT_EQ(server.file("/casa/cgi/c.php"), "ccc") << "the base folder is still known";
  }
  EXPECT_TRUE(user.shown.empty()) << "nobody needs to know";
}

TEST_F(AForgivingRun, GivesUpAfterTheLastAttemptAndTellsWhy) {
  server.fail({.verb = "STOR", .kind = Kind::Close, .occurrence = 0});
  EXPECT_EQ(publishWithRetries(2), PublishOutcome::Failed);
  EXPECT_EQ(server.connections(), 3);
  EXPECT_EQ(user.texts(), Names{"Errore: il server ha chiuso la connessione"});
}

TEST_F(AForgivingRun, TriesNothingAgainThatTheServerRefuses) {
  server.fail({.verb = "STOR", .reply = "552 disco pieno\r\n"});
  EXPECT_EQ(publishWithRetries(3), PublishOutcome::Failed);
  EXPECT_EQ(server.connections(), 1);
  EXPECT_EQ(user.texts(), Names{"Errore: 552 disco pieno"});
}

TEST_F(AForgivingRun, CanBeLeftBetweenTwoAttempts) {
  server.fail({.verb = "STOR", .kind = Kind::Close, .occurrence = 0});
  UploadOptions options = uploadOptions(job, settings, way);
  options.retryPauses = {3'600'000};
  const auto transfer = makeTransfer();
  struct Impatient final : public UserPort {
    test::RecordingView* view = nullptr;
    void message(const std::string& text, Icon) override { ADD_FAILURE() << text; }
    Answer question(const Question& question) override { return question.preset; }
    std::string chooseFolder(const std::string&, const std::string&) override { return {}; }
    void progress(const Progress&) override {}
    bool yield() override { return view->operations.back().find("nuovo tentativo") == std::string::npos; }
  } impatient;
  impatient.view = &view;
  EXPECT_EQ(publishShop(job, options, {*transfer, impatient, view, clock, steps}), PublishOutcome::Cancelled);
}

TEST_F(AForgivingRun, NeverLeavesHalfAFileWhereVisitorsAreWhenItSendsSafely) {
  settings.safeUpload = true;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), (Names{"kvtmp-a.htm", "kvtmp-b.htm", "kvtmp-c.php"}));
  EXPECT_EQ(server.commands("DELE"), Names{}) << "the old file stays until the new one takes its name";
  EXPECT_EQ(server.fileNames(), (Names{"/casa/cgi/c.php", "/casa/www/negozio/a.htm", "/casa/www/negozio/b.htm"}));
  write("online/a.htm", "nuovo", 1);
  server.fail({.verb = "STOR", .kind = Kind::CutData, .bytes = 1});
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(server.file("/casa/www/negozio/a.htm"), "aaa");
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), Names{"kvtmp-a.htm"});
  EXPECT_EQ(server.file("/casa/www/negozio/a.htm"), "nuovo");
}

TEST_F(AForgivingRun, SendsWhatPagesShowThenPagesThenSqlWhenItSendsSafely) {
  EXPECT_EQ(inSendingOrder({"a.php", "b.sql", "c.gif", "d.htm", "e.JS", "f.PHP"}),
            (Names{"c.gif", "e.JS", "a.php", "d.htm", "f.PHP", "b.sql"}));
  settings.safeUpload = true;
  write("online/db.sql", "1");
  write("online/z.gif", "1");
  ASSERT_EQ(publish(), PublishOutcome::Done);
  // The deletion of old SQL files comes first, so that none is left to be sent.
  EXPECT_EQ(sent(), (Names{"kvtmp-z.gif", "kvtmp-a.htm", "kvtmp-b.htm", "kvtmp-c.php"}));
}

TEST_F(AForgivingRun, SendsNoFileAgainThatHasTheBytesLastSent) {
  settings.contentCheck = true;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  write("online/a.htm", "aaa", 5);
  write("online/b.htm", "BBB", 5);
  EXPECT_EQ(filesToSend(job, uploadOptions(job, settings, way)).value(), Names{"www/negozio/b.htm"});
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), Names{"b.htm"});
  EXPECT_EQ(report.skipped, 2);
  settings.contentCheck = false;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), Names{}) << "its new time is known";
}

TEST_F(AForgivingRun, CanBeLeftWhileItReadsWhatItCompares) {
  settings.contentCheck = true;
  write("online/a.htm", std::string(5'000'000, 'a'));
  ASSERT_EQ(publish(), PublishOutcome::Done);
  write("online/a.htm", std::string(5'000'000, 'a'), 5);
  int cancelAt = 0;
  for (PublishOutcome left = PublishOutcome::Cancelled; left == PublishOutcome::Cancelled;) {
    user.yields = 0;
    user.cancelAtYield = ++cancelAt;
    left = publish();
    EXPECT_EQ(sent(), Names{}) << cancelAt;
    EXPECT_TRUE(left == PublishOutcome::Done || user.yields == cancelAt) << cancelAt;
  }
  EXPECT_GT(cancelAt, 5) << "once a MiB at least";
  EXPECT_TRUE(user.shown.empty()) << user.texts().front();
}

TEST_F(AForgivingRun, ComparesNoContentWithAFileThatWasSentWithoutAComparison) {
  settings.contentCheck = true;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  settings.contentCheck = false;
  write("online/a.htm", "altro", 5);
  ASSERT_EQ(publish(), PublishOutcome::Done);
  settings.contentCheck = true;
  write("online/a.htm", "aaa", 6);
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), Names{"a.htm"}) << "the bytes of the first time are not those on the server";
}

TEST_F(AForgivingRun, SendsAnSqlFileWhateverIsInIt) {
  settings.contentCheck = true;
  int second = 0;
  steps.exportSql = [&](UserPort&) {
    write("online/db.sql", "uguale", second);
    return true;
  };
  ASSERT_EQ(publish(), PublishOutcome::Done);
  second = 1;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), Names{"db.sql"});
}

}  // namespace
}  // namespace kv
