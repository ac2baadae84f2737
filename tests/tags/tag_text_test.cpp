// The replacements in texts around tags: brackets, quotes, codes.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tags/engine/tag_engine.h"
#include "tags/naive_tags.h"

namespace kv {
namespace {

TEST(NormalizzaTag, EachEscapedPairOfBracketsIsRestored) {
  EXPECT_EQ(NormalizzaTag("&lt;&lt; <&lt; &lt;<"), "<< << <<");
  EXPECT_EQ(NormalizzaTag("&gt;&gt; >&gt; &gt;>"), ">> >> >>");
  EXPECT_EQ(NormalizzaTag("%3C%3C <%3C %3C< %3c%3C"), "<< << << <<");
  EXPECT_EQ(NormalizzaTag("%3E%3E >%3E %3E> %3e%3E"), ">> >> >> >>");
}

TEST(NormalizzaTag, ASingleEscapedBracketStays) {
  EXPECT_EQ(NormalizzaTag("a &lt; b &gt; c &lt;b>"), "a &lt; b &gt; c &lt;b>");
}

TEST(NormalizzaTag, EntitiesAreExactInCase) { EXPECT_EQ(NormalizzaTag("&LT;&LT;1-a&Gt;&gt;"), "&LT;&LT;1-a&Gt;&gt;"); }

TEST(NormalizzaTag, LowerCasePercentCodesOfBracketsBecomeUpperCaseEverywhere) {
  EXPECT_EQ(NormalizzaTag("x=%3cb%3e&y=%3a"), "x=%3Cb%3E&y=%3a");
}

TEST(NormalizzaTag, EntitiesComeBeforePercentCodes) {
  EXPECT_EQ(NormalizzaTag("&lt;%3C"), "&lt;%3C");
  EXPECT_EQ(NormalizzaTag("&lt;&lt;%3C"), "<<<");
}

TEST(NormalizzaTag, AnyTextGivesWhatTheStepsOneByOneGive) {
  const std::vector<std::string> pieces{"&lt;", "&gt;", "<",  ">", "%3C", "%3c", "%3E", "%3e",
                                        "&l",   "t;",   "%3", "c", "E",   "&",   "a",   "1-"};
  std::mt19937 random(7);
  for (int i = 0; i < 100'000; ++i) {
    std::string text;
    for (auto left = random() % 16; left > 0; --left) text += pieces[random() % pieces.size()];
    const std::string wanted = test::naiveNormalizzaTag(text);
    ASSERT_EQ(NormalizzaTag(text), wanted) << text;
    ASSERT_TRUE(needsNormalizzaTag(text) || wanted == text) << text;
  }
}

TEST(MettiVirgolette, EachBarBecomesADoubleQuote) {
  EXPECT_EQ(MettiVirgolette("<a href=|x|>'</a>"), "<a href=\"x\">'</a>");
}

TEST(NoVirgolette, EachDoubleQuoteBecomesAnApostrophe) { EXPECT_EQ(NoVirgolette("\"a|\""), "'a|'"); }

TEST(InterpretaCodice, NineCharactersBecomePercentCodes) {
  EXPECT_EQ(InterpretaCodice("%[]|?#=<>"), "%25%5B%5D%7C%3F%23%3D%3C%3E");
  EXPECT_EQ(InterpretaCodice("A-1 è \"'&"), "A-1 è \"'&");
  EXPECT_EQ(InterpretaCodice("%5B"), "%255B");
}

TEST(StripCodice, ABarBecomesASpaceAndMarksAreRemoved) {
  EXPECT_EQ(StripCodice("a|b?c#d=e<f>g\"h"), "a bcdefgh");
  EXPECT_EQ(StripCodice("?#=<>\""), "");
  EXPECT_EQ(StripCodice("[%]'è"), "[%]'è");
}

}  // namespace
}  // namespace kv
