// Searching texts and replacing what is found.

#include "platform/text/text_search.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

TextSearch searchFor(SearchWords words) {
  auto made = TextSearch::prepare(words);
  EXPECT_TRUE(made) << made.error();
  return std::move(*made);
}

std::string replaced(const SearchWords& words, std::string_view text, std::string_view replacement) {
  return searchFor(words).replace(text, replacement);
}

TEST(TextSearch, IgnoresCaseBeyondAsciiUnlessTold) {
  EXPECT_EQ(replaced({"È"}, "è È e", "x"), "x x e");
  EXPECT_EQ(replaced({"È", false, true}, "è È e", "x"), "è x e");
}

TEST(TextSearch, TakesEachCharacterOfAPlainTextAsItself) {
  EXPECT_EQ(replaced({"1.5 (cm)"}, "1.5 (cm), 1x5 (cm)", "$1\\1"), "$1\\1, 1x5 (cm)");
}

TEST(TextSearch, FindsWholeWordsOfAnyAlphabet) {
  const SearchWords words{"caff", false, false, true};
  EXPECT_EQ(replaced(words, "caff caffè caff_ caff2 (caff)", "tè"), "tè caffè caff_ caff2 (tè)");
  EXPECT_EQ(replaced({"tà", false, false, true}, "età tà", "-"), "età -");
}

TEST(TextSearch, FillsTheGroupsOfAnExpressionIn) {
  EXPECT_EQ(replaced({"(\\d+) x (\\d+)", true}, "18 x 24, 3 x 4", "$2×\\1 $$ $0 $9"), "24×18 $ 18 x 24 , 4×3 $ 3 x 4 ");
}

TEST(TextSearch, PassesOverWhatIsEmpty) {
  EXPECT_EQ(replaced({"x*", true}, "axxb", "-"), "a-b");
  EXPECT_TRUE(searchFor({"^", true}).find("abc").empty());
}

TEST(TextSearch, FindsNothingTwice) {
  const auto hits = searchFor({"aa"}).find("aaaaa");
  ASSERT_EQ(hits.size(), 2U);
  EXPECT_EQ(hits[1].at, 2U);
}

TEST(TextSearch, RefusesWhatIsNoExpression) {
  EXPECT_FALSE(TextSearch::prepare({"(", true}));
  EXPECT_FALSE(TextSearch::prepare({"", false}));
  EXPECT_TRUE(TextSearch::prepare({"(", false}));
}

TEST(TextSearch, IsNotHeldByAnExpressionThatTriesEverything) {
  const std::string text(100000, 'a');
  EXPECT_TRUE(searchFor({"(a*)*b", true}).find(text).empty());
}

}  // namespace
}  // namespace kv
