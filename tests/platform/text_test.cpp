// The text operations that know no case and no code page.
#include "platform/text/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Text, ReplaceAllTakesOccurrencesFromTheLeftOnly) {
  EXPECT_EQ(replaceAll("aaaa", "aa", "a"), "aa");
  EXPECT_EQ(replaceAll("aaa", "aa", "b"), "ba");
}

TEST(Text, ReplaceAllDoesNotLookAgainIntoWhatItPutIn) { EXPECT_EQ(replaceAll("x|y", "|", "||"), "x||y"); }

TEST(Text, ReplaceAllLeavesATextWithoutOccurrenceAsItIs) {
  EXPECT_EQ(replaceAll("abc", "x", "y"), "abc");
  EXPECT_EQ(replaceAll("", "x", "y"), "");
}

TEST(Text, ReplaceAllTakesTheOccurrencesAtBothEnds) { EXPECT_EQ(replaceAll("|a|", "|", "\""), "\"a\""); }

TEST(Text, TrimTakesSpacesAndNothingElse) {
  EXPECT_EQ(trim("  a b  "), "a b");
  EXPECT_EQ(trim("\ta\r\n"), "\ta\r\n");
  EXPECT_EQ(trim("\u00A0a"), "\u00A0a");
  EXPECT_EQ(trim("   "), "");
}

TEST(Text, LinesEndInAnyOfTheThreeWays) { EXPECT_THAT(splitLines("a\r\nb\nc\rd"), ElementsAre("a", "b", "c", "d")); }

TEST(Text, AnEndAtTheEndOpensNoFurtherLine) {
  EXPECT_THAT(splitLines("a\r\n"), ElementsAre("a"));
  EXPECT_THAT(splitLines("a\r\n\r\n"), ElementsAre("a", ""));
  EXPECT_THAT(splitLines(""), IsEmpty());
}

TEST(Text, ACarriageReturnBeforeAPairIsALineOfItsOwn) {
  EXPECT_THAT(splitLines("a\r\r\nb"), ElementsAre("a", "", "b"));
}

TEST(Text, CharactersAreCountedNotBytes) {
  EXPECT_EQ(characterCount("perché €"), 8U);
  EXPECT_EQ(characterCount(""), 0U);
  EXPECT_EQ(characterCount("a\xE9z"), 3U) << "a stray byte counts as one";
}

TEST(Text, TheFirstCharactersAreNeverCutWithinOne) {
  EXPECT_EQ(firstCharacters("àèìòù", 2), "àè");
  EXPECT_EQ(firstCharacters("àè", 5), "àè");
  EXPECT_EQ(firstCharacters("àè", 0), "");
  EXPECT_EQ(firstCharacters("abcdefghijklmnopè", 17), "abcdefghijklmnopè");
}

TEST(Text, SearchIgnoresTheCaseOfAsciiLetters) {
  EXPECT_EQ(findIgnoringCase("Una <KV_start> due <kv_START>", "<KV_START>"), 4U);
  EXPECT_EQ(findIgnoringCase("Una <KV_start> due <kv_START>", "<kv_start>", 5), 19U);
}

TEST(Text, SearchDoesNotFoldWhatIsNoLetter) {
  EXPECT_EQ(findIgnoringCase("a@b`c", "`"), 3U);
  EXPECT_EQ(findIgnoringCase("[", "{"), std::string_view::npos);
}

TEST(Text, SearchThatFindsNothingSaysSo) {
  EXPECT_EQ(findIgnoringCase("abc", "abcd"), std::string_view::npos);
  EXPECT_EQ(findIgnoringCase("abc", "a", 1), std::string_view::npos);
  EXPECT_EQ(findIgnoringCase("abc", "a", 9), std::string_view::npos);
  EXPECT_EQ(findIgnoringCase("", "a"), std::string_view::npos);
}

TEST(Text, SearchFindsAnOccurrenceAtTheVeryEnd) { EXPECT_EQ(findIgnoringCase("xxAB", "ab"), 2U); }

TEST(Text, SearchForAnEmptyTextIsFoundAtOnce) { EXPECT_EQ(findIgnoringCase("abc", "", 2), 2U); }

TEST(Text, SearchAgreesWithASearchOfTheLoweredTexts) {
  const std::string letters = "aAbB";
  for (unsigned code = 0; code < 4096; ++code) {
    std::string text;
    for (unsigned i = 0; i < 6; ++i) text += letters[(code >> (2 * i)) & 3U];
    for (const std::string what : {"a", "B", "Ab", "aBa"}) {
      EXPECT_EQ(findIgnoringCase(text, what), foldCase(text).find(foldCase(what))) << text << " " << what;
    }
  }
}

}  // namespace
}  // namespace kv
