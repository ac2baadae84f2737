// Files that take the name of older ones on servers that rename over nothing: visitors keep a whole page, whatever the
// server refuses.
#include "publish_fixture.h"
#include "support/ssh_server.h"

namespace kv {
namespace {

using Names = std::vector<std::string>;

/// The model of many servers: a rename to a name that is taken is refused.
class AServerThatRenamesOverNothing : public test::PublishFixture {
 protected:
  AServerThatRenamesOverNothing() : PublishFixture({.home = "/casa", .renamesOver = false}) {
    settings.safeUpload = true;
    write("online/a.htm", "vecchia");
    EXPECT_EQ(publish(), PublishOutcome::Done);
    write("online/a.htm", "nuova", 1);
  }
  std::string page() const { return server.file("/casa/www/negozio/a.htm"); }
  Names files() const { return server.fileNames(); }
  static Names onlyThePage() { return {"/casa/www/negozio/a.htm"}; }
};

TEST_F(AServerThatRenamesOverNothing, GetsTheNewFileInExchangeForTheOld) {
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(page(), "nuova");
  EXPECT_EQ(files(), onlyThePage());
  EXPECT_EQ(server.commands("DELE"), Names{"DELE kvold-a.htm"}) << "the page has its name nearly always";
}

TEST_F(AServerThatRenamesOverNothing, LosesWhatAKilledRunHasLeftAside) {
  server.putFile("/casa/www/negozio/kvold-a.htm", "di ieri");
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(page(), "nuova");
  EXPECT_EQ(files(), onlyThePage());
}

TEST_F(AServerThatRenamesOverNothing, KeepsTheOldFileWhenItRenamesNothingAtAll) {
  server.fail({.verb = "RNFR", .reply = "502 vietato\r\n", .occurrence = 0});
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(page(), "vecchia");
  EXPECT_EQ(user.shown.back().icon, Icon::Exclamation);
  EXPECT_TRUE(user.texts().back().ends_with("502 vietato")) << user.texts().back();
  server.forgetFaults();
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(page(), "nuova") << "the run did not claim that the file was sent";
}

TEST_F(AServerThatRenamesOverNothing, GivesTheOldFileItsNameBackWhenTheNewOneIsRefused) {
  server.fail({.verb = "RNTO", .reply = "553 nome non ammesso\r\n", .occurrence = 3});
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(server.commands("RNFR"), (Names{"RNFR kvtmp-a.htm", "RNFR a.htm", "RNFR kvtmp-a.htm", "RNFR kvold-a.htm"}));
  EXPECT_EQ(page(), "vecchia");
}

TEST_F(AServerThatRenamesOverNothing, IsBroughtRightByTheNextRunAfterABreakBetweenTheRenames) {
  server.fail({.verb = "RNFR", .kind = test::FtpFault::Kind::Close, .occurrence = 3});
  EXPECT_EQ(publish(), PublishOutcome::Failed);
  EXPECT_EQ(files(), (Names{"/casa/www/negozio/kvold-a.htm", "/casa/www/negozio/kvtmp-a.htm"}));
  EXPECT_EQ(publish(), PublishOutcome::Done);
  EXPECT_EQ(page(), "nuova");
}

using ASafeUploadOverSftp = test::PublishFixture;

TEST_F(ASafeUploadOverSftp, ReplacesTheFileOfAnOpenSshServer) {
  const test::SshServer ssh;
  settings.safeUpload = true;
  settings.silenceSeconds = 10;
  job.login = {"127.0.0.1", test::SshServer::user, test::SshServer::password};
  job.folderFTP = job.folderCGI = ssh.home();
  way.protocol = TransferProtocol::Sftp;
  way.ftpPort = ssh.port();
  user.answers = {Answer::Yes, Answer::Yes};  // its key, which no file remembers here
  for (const std::string text : {"vecchia", "nuova"}) {
    write("online/a.htm", text, text == "nuova" ? 1 : 0);
    const auto transfer = makeTransfer(TransferProtocol::Sftp);
    UploadOptions options = uploadOptions(job, settings, way);
    options.connection.knownHostsFile.clear();
    ASSERT_EQ(publishShop(job, options, {*transfer, user, view, clock, steps}, &report), PublishOutcome::Done);
    EXPECT_EQ(listFiles(ssh.home(), "*"), Names{"a.htm"});
    EXPECT_EQ(readBytes(ssh.home() + "/a.htm").value_or(""), text);
  }
}

}  // namespace
}  // namespace kv
