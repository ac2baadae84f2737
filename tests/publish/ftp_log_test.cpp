// The dialogue with the server as it may be shown, and as much of it as is.
#include "publish/run/ftp_log.h"

#include <gtest/gtest.h>

#include "platform/text/text.h"

namespace kv {
namespace {

TEST(ALineOfTheDialogue, HidesThePasswordWhateverItIs) {
  EXPECT_EQ(shownLine("PASS segreto"), "PASS (hidden)");
  EXPECT_EQ(shownLine("PASS "), "PASS (hidden)");
  EXPECT_EQ(shownLine("331 PASS?"), "331 PASS?");
}

TEST(ALineOfTheDialogue, ThatTellsNothingIsDropped) {
  EXPECT_EQ(shownLine("Send"), std::nullopt);
  EXPECT_EQ(shownLine("Sending"), "Sending");
}

TEST(TheVisibleLog, KeepsTheLast32000CharactersAfterEachLine) {
  VisibleLog log;
  std::string all;
  for (int i = 0; i < 5000; ++i) {
    const std::string line = std::to_string(i) + " città";
    log.add(line);
    all += line + "\n";
    if (i % 500 != 499) continue;
    const std::size_t count = characterCount(all);
    const std::size_t cut = count > 32'000 ? firstCharacters(all, count - 32'000).size() : 0;
    ASSERT_EQ(log.text(), all.substr(cut)) << i;
  }
}

}  // namespace
}  // namespace kv
