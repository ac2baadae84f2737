// ReplaceString, and the one pass that does its work for a whole list of names.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tags/engine/tag_engine.h"
#include "tags/naive_tags.h"

namespace kv {
namespace {

TEST(ReplaceString, EachPairOfDelimitersMakesAReference) {
  for (const char* form : {"\"@\"", "'@'", " @ ", "=@ ", "=@>", " @>"}) {
    std::string text = form;
    std::string wanted = form;
    text.replace(text.find('@'), 1, "logo.gif");
    wanted.replace(wanted.find('@'), 1, "logo<<1-IDlingua>>.gif");
    EXPECT_EQ(ReplaceString(text, "logo.gif", ".php"), wanted);
  }
}

TEST(ReplaceString, OtherCharactersAroundANameMakeNoReference) {
  for (const char* text : {"\"logo.gif'", "(logo.gif)", "\"img/logo.gif\"", "=logo.gif\"", "logo.gif", ">logo.gif<"}) {
    EXPECT_EQ(ReplaceString(text, "logo.gif", ".php"), text);
  }
}

TEST(ReplaceString, AReferenceIsFoundInAnyCaseAndTakesTheCaseOfTheFile) {
  EXPECT_EQ(ReplaceString("src=\"LOGO.Gif\"", "Logo.gif", ".php"), "src=\"Logo<<1-IDlingua>>.gif\"");
  EXPECT_EQ(ReplaceString("\"CITTÀ.gif\"", "città.gif", ".php"), "\"città<<1-IDlingua>>.gif\"");
}

TEST(ReplaceString, APageTakesThePageExtension) {
  EXPECT_EQ(ReplaceString("href=\"cart.htm\"", "cart.htm", ".php"), "href=\"cart<<1-IDlingua>>.php\"");
  EXPECT_EQ(ReplaceString("href=\"cart.htm\"", "cart.htm", ""), "href=\"cart<<1-IDlingua>>.htm\"");
  EXPECT_EQ(ReplaceString("href=\"cart.htm\"", "cart.htm", ".htm"), "href=\"cart<<1-IDlingua>>.htm\"");
}

TEST(ReplaceString, OnlyHtmAndWhatFollowsItWithoutALetterOrDigitIsAPage) {
  EXPECT_EQ(ReplaceString("\"a.html\"", "a.html", ".php"), "\"a<<1-IDlingua>>.html\"");
  EXPECT_EQ(ReplaceString("\"a.htm4\"", "a.htm4", ".php"), "\"a<<1-IDlingua>>.htm4\"");
  EXPECT_EQ(ReplaceString("\"a.htm.bak\"", "a.htm.bak", ".php"), "\"a<<1-IDlingua>>.php.bak\"");
  EXPECT_EQ(ReplaceString("\"a.HTM\"", "a.HTM", ".php"), "\"a<<1-IDlingua>>.php\"");
}

TEST(ReplaceString, AResultsPageKeepsItsExtension) {
  EXPECT_EQ(ReplaceString("\"results.htm\"", "results.htm", ".php"), "\"results<<1-IDlingua>>.htm\"");
  EXPECT_EQ(ReplaceString("\"MyResults.htm\"", "MyResults.htm", ".php"), "\"MyResults<<1-IDlingua>>.htm\"");
  EXPECT_EQ(ReplaceString("\"results2.htm\"", "results2.htm", ".php"), "\"results2<<1-IDlingua>>.php\"");
}

TEST(ReplaceString, TheTagIsBeforeTheFirstDotAndAtTheEndWithoutOne) {
  EXPECT_EQ(ReplaceString("'a.b.gif'", "a.b.gif", ".php"), "'a<<1-IDlingua>>.b.gif'");
  EXPECT_EQ(ReplaceString("'leggimi'", "leggimi", ".php"), "'leggimi<<1-IDlingua>>'");
}

TEST(ReplaceString, ANameWithSpacesIsFoundWithPercentCodesToo) {
  EXPECT_EQ(ReplaceString("\"a b.gif\" 'a%20B.gif'", "a b.gif", ".php"),
            "\"a b<<1-IDlingua>>.gif\" 'a%20b<<1-IDlingua>>.gif'");
  EXPECT_EQ(ReplaceString("'a%20b.gif'", "a.gif", ".php"), "'a%20b.gif'");
}

TEST(ReplaceString, NeighboursThatShareADelimiterAreBothReferences) {
  EXPECT_EQ(ReplaceString(" x x ", "x", ".php"), " x<<1-IDlingua>> x<<1-IDlingua>> ");
}

TEST(ReplaceString, ATextWithoutReferencesStays) {
  EXPECT_EQ(ReplaceString("", "a.gif", ".php"), "");
  EXPECT_EQ(ReplaceString("abc", "", ".php"), "abc");
}

TEST(ReferenceReplacer, TheFirstOfTwoNamesThatDifferInCaseGivesTheSpelling) {
  const ReferenceReplacer replacer({"Logo.gif", "LOGO.gif", "logo.gif"}, ".php");
  EXPECT_EQ(replacer.apply("'logo.gif'"), "'Logo<<1-IDlingua>>.gif'");
}

TEST(ReferenceReplacer, ANameInsideANameWithSpacesFollowsTheOrderOfTheList) {
  EXPECT_EQ(ReferenceReplacer({"b.gif", "a b.gif"}, ".php").apply("=a b.gif "), "=a b<<1-IDlingua>>.gif ");
  EXPECT_EQ(ReferenceReplacer({"a b.gif", "b.gif"}, ".php").apply("=a b.gif "), "=a b<<1-IDlingua>>.gif ");
  EXPECT_EQ(ReferenceReplacer({"a.x b.gif", "B.gif"}, ".php").apply("=a.x b.gif "),
            "=a<<1-IDlingua>>.x B<<1-IDlingua>>.gif ");
}

TEST(ReferenceReplacer, AnEmptyListChangesNothing) {
  EXPECT_EQ(ReferenceReplacer({}, ".php").apply("\"cart.htm\""), "\"cart.htm\"");
}

std::string anyOf(const std::vector<std::string>& pieces, std::mt19937& random, unsigned most) {
  std::string text;
  for (auto left = random() % most; left > 0; --left) text += pieces[random() % pieces.size()];
  return text;
}

TEST(ReferenceReplacer, AnyListGivesWhatItsNamesOneByOneGive) {
  const std::vector<std::string> letters{"a", "b", "A", ".", ".htm", " ", "x", "results", "%20", ".gif", ".HTM"};
  const std::vector<std::string> odd{"a", "b", ".", " ", "=", ">", "'", "\"", ".htm", "<", "1", "<<1-IDlingua", ".php"};
  const std::vector<std::string> env{"\"", "'", " ", "=", ">", " ", "=", "z", "%20", "a b", "\r\n", "<"};
  std::mt19937 random(11);
  int changed = 0;
  for (int i = 0; i < 40'000; ++i) {
    const bool isOdd = i % 4 == 0;
    std::vector<std::string> names;
    for (auto left = random() % 6; left > 0; --left) {
      std::string name = anyOf(isOdd ? odd : letters, random, 6);
      if (!name.empty()) names.push_back(name);
      if (!names.empty() && random() % 5 == 0) names.push_back(names[random() % names.size()]);
      if (names.size() > 1 && random() % 4 == 0) names.push_back(names[0] + " " + names[1]);
    }
    std::string text;
    for (auto left = random() % 16; left > 0; --left) {
      text += !names.empty() && random() % 2 == 0 ? names[random() % names.size()] : anyOf(env, random, 3);
      if (random() % 8 == 0) text += anyOf(isOdd ? odd : letters, random, 4);
    }
    const std::string extension = random() % 5 == 0 ? "" : ".php";
    std::string wanted = text;
    std::string oneByOne = text;
    for (const std::string& name : names) {
      wanted = test::naiveReplaceString(wanted, name, extension);
      oneByOne = ReplaceString(oneByOne, name, extension);
    }
    ASSERT_EQ(oneByOne, wanted) << "[" << text << "] " << ::testing::PrintToString(names);
    ASSERT_EQ(ReferenceReplacer(names, extension).apply(text), wanted)
        << "[" << text << "] " << ::testing::PrintToString(names);
    changed += wanted != text ? 1 : 0;
  }
  EXPECT_GT(changed, 5'000);
}

}  // namespace
}  // namespace kv
