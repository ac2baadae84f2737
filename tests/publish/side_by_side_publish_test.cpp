// A publish over several connections: each file once, kinds in their order, and every failure as with one connection.
#include <algorithm>
#include <set>

#include "platform/transfer/side_by_side.h"
#include "publish_fixture.h"
#include "support/tls_server.h"

namespace kv {
namespace {

using Names = std::vector<std::string>;
using Kind = test::FtpFault::Kind;

class SeveralConnections : public test::PublishFixture {
 protected:
  explicit SeveralConnections(int allowed = 8, const test::TlsServer* tls = nullptr)
      : PublishFixture({.home = "/casa", .atOnce = allowed, .tls = tls}) {
    settings.connections = 4;
    settings.silenceSeconds = 2;
    for (int i = 10; i < 40; ++i) {
      const std::string number = std::to_string(i);
      write("online/p" + number + ".htm", "pagina " + number);
      write("online/f" + number + ".gif", std::string(2000, 'x') + number);
    }
    write("scripts/c.php", "ccc");
    steps.exportSql = [this](UserPort&) {
      write("online/db.sql", "sql", sqlTime);
      return true;
    };
  }
  /// The positions of the commands whose file ends in `type`: first and last.
  std::pair<std::ptrdiff_t, std::ptrdiff_t> span(const std::string& type) const {
    const Names names = sent();
    const auto has = [&](const std::string& name) { return name.ends_with(type); };
    const auto first = std::find_if(names.begin(), names.end(), has);
    const auto last = std::find_if(names.rbegin(), names.rend(), has);
    return {first - names.begin(), names.rend() - last - 1};
  }
  void expectAllOnServer() const {
    EXPECT_EQ(server.fileNames().size(), 62U);
    for (int i = 10; i < 40; ++i) {
      const std::string number = std::to_string(i);
      EXPECT_EQ(server.file("/casa/www/negozio/p" + number + ".htm"), "pagina " + number);
      EXPECT_EQ(server.file("/casa/www/negozio/f" + number + ".gif"), std::string(2000, 'x') + number);
    }
    EXPECT_EQ(server.file("/casa/www/negozio/db.sql"), "sql");
    EXPECT_EQ(server.file("/casa/cgi/c.php"), "ccc");
  }
  int sqlTime = 0;
};

TEST_F(SeveralConnections, SendEachFileOnceAndNoneTheSecondTime) {
  ASSERT_EQ(publish(), PublishOutcome::Done);
  expectAllOnServer();
  EXPECT_EQ(sent().size(), 62U);
  EXPECT_EQ(report.sent, 62);
  EXPECT_EQ(server.connections(), 4);
  const int before = server.connections();
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(sent(), Names{});
  EXPECT_EQ(server.connections(), before + 1) << "where nothing has changed the others are not opened";
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(SeveralConnections, KeepTheOrderOfTheKinds) {
  settings.safeUpload = true;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  expectAllOnServer();
  EXPECT_LT(span(".gif").second, span(".htm").first);
  EXPECT_LT(span(".htm").second, span("db.sql").first);
}

TEST_F(SeveralConnections, AreOneInAnUntouchedShopAndForPasswordLists) {
  EXPECT_EQ(uploadOptions(job, {}, way).connections, 1);
  job.otpMode = OtpMode::Append;
  EXPECT_EQ(uploadOptions(job, settings, way).connections, 1);
}

TEST_F(SeveralConnections, StopTogetherWhenOneIsRefusedAndTellItOnce) {
  server.fail({.verb = "STOR", .reply = "552 disco pieno\r\n", .occurrence = 7});
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(user.texts(), Names{"Errore: 552 disco pieno"});
  EXPECT_LT(sent().size(), 15U);
  EXPECT_EQ(report.failedFile.empty(), false);
  ASSERT_EQ(publish(), PublishOutcome::Done);
  expectAllOnServer();
}

TEST_F(SeveralConnections, AreRepairedByTheNextRunAfterAnyFault) {
  settings.onlyModified = false;
  for (const char* verb : {"DELE", "EPSV", "STOR", "TYPE"}) {
    for (const Kind kind : {Kind::Close, Kind::RefuseData, Kind::CutData, Kind::Reply}) {
      server.forgetFaults();
      user.shown.clear();
      server.fail({.verb = verb, .kind = kind, .reply = "500 no\r\n", .occurrence = 3, .bytes = 1});
      const PublishOutcome outcome = publish();
      EXPECT_EQ(outcome == PublishOutcome::Failed, !user.shown.empty()) << verb << static_cast<int>(kind);
      server.forgetFaults();
      ASSERT_EQ(publish(), PublishOutcome::Done);
      expectAllOnServer();
    }
  }
}

TEST_F(SeveralConnections, GoOnAfterAConnectionBreaksWhenThatIsWanted) {
  server.fail({.verb = "STOR", .kind = Kind::Close, .occurrence = 5});
  server.fail({.verb = "STOR", .kind = Kind::CutData, .occurrence = 9, .bytes = 1});
  UploadOptions options = uploadOptions(job, settings, way);
  options.retryPauses = {1, 1, 1};
  const auto transfer = makeTransfer();
  EXPECT_EQ(publishShop(job, options, {*transfer, user, view, clock, steps}, &report), PublishOutcome::Done);
  expectAllOnServer();
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(SeveralConnections, EndTogetherWhenTheServerFallsSilentForOne) {
  server.fail({.verb = "STOR", .kind = Kind::Missing, .occurrence = 4});
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(user.texts(), Names{"Errore: il server non risponde da 2 secondi"});
  EXPECT_EQ(server.fileNames().size(), 29U) << "the others went on with the kind in hand";
}

TEST_F(SeveralConnections, AreLeftAtOnceByACancel) {
  user.cancelAtYield = 60;
  EXPECT_EQ(publish(), PublishOutcome::Cancelled);
  EXPECT_TRUE(user.shown.empty());
  user.cancelAtYield = 0;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  expectAllOnServer();
}

TEST_F(SeveralConnections, AreMarkedInTheDialogueAndHideThePassword) {
  ASSERT_EQ(publish(), PublishOutcome::Done);
  EXPECT_NE(log(1).find("[2] PASS (hidden)\r\n"), std::string::npos);
  EXPECT_EQ(log(1).find("segreto"), std::string::npos);
}

struct WithCertificate {
  test::TlsServer tls;
};

class SeveralEncryptedConnections : protected WithCertificate, public SeveralConnections {
 protected:
  SeveralEncryptedConnections() : SeveralConnections(8, &tls) {}
};

TEST_F(SeveralEncryptedConnections, AskOnceAboutTheCertificateThatAllOfThemMeet) {
  user.answers = {Answer::Yes};
  way.reconnects = true;
  ASSERT_EQ(publish(), PublishOutcome::Done);
  expectAllOnServer();
  EXPECT_EQ(server.commands("AUTH").size(), 5U) << "four for the first folder and one for the second";
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].preset, Answer::No);
}

TEST_F(SeveralEncryptedConnections, AreNeverOpenedAfterANoToTheCertificate) {
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(server.connections(), 1);
  EXPECT_EQ(server.commands("USER"), Names{});
}

/// Notes whether it was ever called within a job of a connection, whose stack is none for windows.
class HomeUser final : public UserPort {
 public:
  void message(const std::string& text, Icon) override {
    note();
    texts.push_back(text);
  }
  Answer question(const Question& question) override {
    note();
    return question.preset;
  }
  std::string chooseFolder(const std::string&, const std::string&) override { return {}; }
  void progress(const Progress&) override { note(); }
  bool yield() override {
    note();
    return true;
  }
  Names texts;
  int calls = 0, strayed = 0;

 private:
  void note() {
    ++calls;
    if (isSideBySide()) ++strayed;
  }
};

/// The same for the window of the run.
class HomeView final : public PublishView {
 public:
  void title(const std::string&) override { note(); }
  void operation(const std::string&) override { note(); }
  void dialogue(const std::string&) override { note(); }
  void progress(const PublishProgress&) override { note(); }
  int calls = 0, strayed = 0;

 private:
  void note() {
    ++calls;
    if (isSideBySide()) ++strayed;
  }
};

TEST_F(SeveralConnections, AskTellAndProcessEventsOnTheMainStackAlone) {
  server.fail({.verb = "STOR", .reply = "552 disco pieno\r\n", .occurrence = 20});
  HomeUser home;
  HomeView window;
  const auto transfer = makeTransfer();
  EXPECT_EQ(publishShop(job, uploadOptions(job, settings, way), {*transfer, home, window, clock, steps}, &report),
            PublishOutcome::Failed);
  EXPECT_EQ(home.texts, Names{"Errore: 552 disco pieno"});
  EXPECT_GT(home.calls, 20);
  EXPECT_EQ(home.strayed, 0);
  EXPECT_GT(window.calls, 50);
  EXPECT_EQ(window.strayed, 0);
}

class TwoConnectionsAllowed : public SeveralConnections {
 protected:
  TwoConnectionsAllowed() : SeveralConnections(2) {}
};

TEST_F(TwoConnectionsAllowed, CarryAllFilesWhenMoreAreRefused) {
  ASSERT_EQ(publish(), PublishOutcome::Done);
  expectAllOnServer();
  EXPECT_TRUE(user.shown.empty());
}

}  // namespace
}  // namespace kv
