// Replies of a server: what is one, what is none, and what single ones hold.
#include "platform/transfer/protocols/ftp_reply.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace kv {
namespace {

/// "code text" of the reply that the lines make, or what else comes of them.
std::string replyOf(std::initializer_list<const char*> lines) {
  FtpReplyParser parser;
  for (const char* line : lines) {
    auto whole = parser.take(line);
    if (!whole) return "malformed: " + whole.error().what;
    if (*whole) return std::to_string((*whole)->code) + " " + (*whole)->text;
  }
  return "unfinished";
}

TEST(AnFtpReply, OfOneLineIsACodeAndAText) {
  EXPECT_EQ(replyOf({"220 pronto"}), "220 pronto");
  EXPECT_EQ(replyOf({"220"}), "220 ");
}

TEST(AnFtpReply, OfSeveralLinesEndsWithItsCodeAndASpace) {
  EXPECT_EQ(replyOf({"230-uno", "due", " 230 tre", "230-quattro", "231 cinque", "230 sei"}),
            "230 uno\ndue\n 230 tre\nquattro\n231 cinque\nsei");
  EXPECT_EQ(replyOf({"230-uno", "due"}), "unfinished");
}

TEST(AnFtpReply, WithoutThreeDigitsIsMalformed) {
  for (const char* line : {"", "22", "ciao", "2x0 a", "020 a", "620 a", "220:a", "SSH-2.0-OpenSSH"}) {
    EXPECT_EQ(replyOf({line}), "malformed: " + std::string(line));
  }
}

TEST(AnFtpReply, WithoutAnEndIsRefusedBeforeItFillsTheMemory) {
  FtpReplyParser parser;
  const std::string line(1000, 'x');
  ASSERT_TRUE(parser.take("230-inizio"));
  bool refused = false;
  for (int i = 0; i < 300 && !refused; ++i) refused = !parser.take(line);
  EXPECT_TRUE(refused);
}

TEST(APassiveReply, GivesItsPortWhateverItsAddress) {
  EXPECT_EQ(passivePort("Entering Passive Mode (127,0,0,1,4,1)").value_or(0), 1025);
  EXPECT_EQ(passivePort("Entering Passive Mode 10,0,0,1,255,255").value_or(0), 65535);
  EXPECT_EQ(passivePort("2 modi: =127,0,0,1,4,1").value_or(0), 1025);
}

TEST(APassiveReply, WithoutSixNumbersUpTo255IsMalformed) {
  for (const char* text : {"", "Passive", "(127,0,0,1,4)", "(127,0,0,1,4,)", "(127,0,0,1,256,1)", "(127,0,0,1,0,0)"}) {
    EXPECT_FALSE(passivePort(text)) << text;
  }
}

TEST(AnExtendedPassiveReply, GivesItsPort) {
  EXPECT_EQ(extendedPassivePort("Extended Passive Mode (|||1025|)").value_or(0), 1025);
  EXPECT_EQ(extendedPassivePort("(!!!65535!)").value_or(0), 65535);
  for (const char* text : {"", "(|||)", "(|||0|)", "(|||65536|)", "(||1025|)", "(|||1025", "|||1025|", "(11110251)"}) {
    EXPECT_FALSE(extendedPassivePort(text)) << text;
  }
}

TEST(ACurrentFolder, HasItsDoubledQuotesOnce) {
  EXPECT_EQ(quotedFolder("\"/a \"\"b\"\"\" is current").value_or("-"), "/a \"b\"");
  EXPECT_EQ(quotedFolder("\"\"").value_or("-"), "");
  EXPECT_FALSE(quotedFolder("/a"));
  EXPECT_FALSE(quotedFolder("\"/a"));
}

}  // namespace
}  // namespace kv
