// Each fault of a server at each command of a publish run: the run says so once, loads no database, and the next clean
// run brings everything right.
#include "publish_fixture.h"

namespace kv {
namespace {

using Kind = test::FtpFault::Kind;

/// What a server says instead of its reply; an empty text closes the connection.
struct WrongReply {
  const char* name;
  std::string text;
};

class ARunThroughFaults : public test::PublishFixture {
 protected:
  ARunThroughFaults() {
    write("online/a.htm", "aaa");
    write("scripts/kv.pl", "bbb");
    steps.updateDatabase = [this] {
      ++updates;
      return "OK";
    };
  }
  /// A run against an empty server: it asks about both folders.
  PublishOutcome publishToEmptyServer() {
    server.removeFolders();
    server.makeFolder("/casa");
    settings.onlyModified = false;
    return publishAgain();
  }
  PublishOutcome publishAgain() {
    user.shown.clear();
    user.answers = {Answer::Yes, Answer::Yes};
    updates = 0;
    return publish();
  }
  /// The messages of the last run; questions aren't.
  std::vector<std::string> told() const {
    std::vector<std::string> texts;
    for (const test::Shown& one : user.shown) {
      if (one.icon == Icon::Exclamation) texts.push_back(one.text);
    }
    return texts;
  }
  void expectToldAndRepaired(const std::string& verb, const WrongReply& wrong) {
    SCOPED_TRACE(verb + ": " + wrong.name);
    const Kind kind = wrong.text.empty() ? Kind::Close : Kind::Reply;
    server.fail({.verb = verb, .kind = kind, .reply = wrong.text});
    const bool done = publishToEmptyServer() == PublishOutcome::Done;
    EXPECT_EQ(updates, done ? 1 : 0);
    EXPECT_EQ(told().size(), done ? 0U : 1U);
    if (!done && !told().empty()) {
      EXPECT_TRUE(told().back().starts_with("Errore: ") || told().back().starts_with("Impossibile ")) << told().back();
      EXPECT_EQ(told().back().find("segreto"), std::string::npos);
    }
    server.forgetFaults();
    settings.onlyModified = true;
    ASSERT_EQ(publishAgain(), PublishOutcome::Done);
    EXPECT_EQ(server.file("/casa/www/negozio/a.htm"), "aaa");
    EXPECT_EQ(server.file("/casa/cgi/kv.pl"), "bbb");
    EXPECT_EQ(server.fileNames().size(), 2U);
  }

  const std::vector<WrongReply> wrongReplies{{"malformed", "ciao\r\n"},
                                             {"of several lines", "451-no\r\n e poi no\r\n451 no\r\n"},
                                             {"negative", "450 no\r\n"},
                                             {"none", ""}};
  int updates = 0;
};

TEST_F(ARunThroughFaults, SaysSoOnceAndIsRepairedByTheNext) {
  for (const char* verb :
       {"", "AUTH", "USER", "PASS", "PWD", "CWD", "MKD", "DELE", "TYPE", "EPSV", "STOR", "SITE", "QUIT"}) {
    for (const WrongReply& wrong : wrongReplies) expectToldAndRepaired(verb, wrong);
  }
}

TEST_F(ARunThroughFaults, OfSafeUploadsSaysSoOnceAndIsRepairedByTheNext) {
  settings.safeUpload = true;
  for (const char* verb : {"STOR", "RNFR", "RNTO"}) {
    for (const WrongReply& wrong : wrongReplies) expectToldAndRepaired(verb, wrong);
  }
}

}  // namespace
}  // namespace kv
