// The search that is blind to white space, by examples and against a plain one over seeded random texts.
#include <gtest/gtest.h>

#include <random>

#include "store/upgrade/script_search.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

std::string found(std::string_view text, std::string_view search, std::size_t start = 0) {
  const PatchMatch match = TrovaPatch(text, search, start);
  return match.isFound() ? std::string(text.substr(match.position, match.length)) : "(none)";
}

TEST(TheScriptSearch, FindsATextWithOtherSpacesAndLineBreaks) {
  EXPECT_EQ(found("x;\r\n\tif ( $a==1 )\r\n {y", "if ($a == 1) {"), "if ( $a==1 )\r\n {");
  EXPECT_EQ(found("i f($a==1){", "if ($a == 1) {"), "i f($a==1){");
}

TEST(TheScriptSearch, StartsAtACharacterAndEndsAtOne) {
  const PatchMatch match = TrovaPatch("  \t ab \n c  ", " a b c ");
  EXPECT_EQ(match.position, 4U);
  EXPECT_EQ(match.length, 6U);
}

TEST(TheScriptSearch, DoesNotFindAReorderedTextOrAnotherCase) {
  EXPECT_EQ(found("$b = $a;", "$a = $b;"), "(none)");
  EXPECT_EQ(found("GLOBAL $x;", "global $x;"), "(none)");
}

TEST(TheScriptSearch, FindsAMatchInsideAWord) { EXPECT_EQ(found("xglobal $y;z", "global $y;"), "global $y;"); }

TEST(TheScriptSearch, GoesOnFromAStart) {
  EXPECT_EQ(TrovaPatch("ab ab", "ab", 1).position, 3U);
  EXPECT_FALSE(TrovaPatch("ab ab", "ab", 4).isFound());
  EXPECT_FALSE(TrovaPatch("ab", "ab", 99).isFound());
}

TEST(TheScriptSearch, FindsNothingWithoutASearchText) {
  EXPECT_EQ(found("abc", ""), "(none)");
  EXPECT_EQ(found("a b", " \t\r\n"), "(none)");
}

TEST(TheScriptReplacement, KeepsTheSpacesAroundAMatch) {
  EXPECT_EQ(SostituisciPatch("a\r\n  b\r\n  c", "b", "\tX"), "a\r\n  \tX\r\n  c");
}

TEST(TheScriptReplacement, DoesNotSearchWhatItHasPutIn) {
  EXPECT_EQ(SostituisciPatch("a a", "a", "aa"), "aa aa");
  EXPECT_EQ(SostituisciPatch("abab", "ab", "xabx"), "xabxxabx");
}

TEST(TheScriptReplacement, LeavesATextWithoutAMatchByteForByte) {
  const std::string text("\xE8\0\r\r\n z", 7);
  EXPECT_EQ(SostituisciPatch(text, "y", "w"), text);
}

TEST(TheScriptReplacement, EqualsAPlainOneOnCompactTexts) {
  std::mt19937 chance(seed());
  const auto pick = [&](std::string_view from, int length) {
    std::string text;
    for (int i = 0; i < length; ++i) text += from[chance() % from.size()];
    return text;
  };
  for (int round = 0; round < operationsOf(500); ++round) {
    const std::string compact = pick("abc", 30);
    const std::string search = pick("ab", 1 + static_cast<int>(chance() % 3));
    std::string spaced;
    for (const char character : compact) spaced += pick(" \t\r\n", static_cast<int>(chance() % 3)) + character;
    std::string wanted;
    for (std::size_t at = 0; at < compact.size();) {
      const bool here = compact.compare(at, search.size(), search) == 0;
      wanted += here ? "X" : compact.substr(at, 1);
      at += here ? search.size() : 1;
    }
    EXPECT_EQ(withoutSpace(SostituisciPatch(spaced, search, "X")), wanted) << compact << " / " << search;
  }
}

}  // namespace
}  // namespace kv::test
