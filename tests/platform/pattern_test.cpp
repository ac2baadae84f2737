// The patterns of the LIKE operator and those of file names.
#include <gtest/gtest.h>

#include "platform/text/text.h"

namespace kv {
namespace {

struct Case {
  std::string_view text, pattern;
  bool matches;
};

TEST(LikePattern, FollowsItsTable) {
  const Case cases[] = {
      {"", "", true},
      {"", "*", true},
      {"", "?", false},
      {"a", "", false},
      {"abc", "a*", true},
      {"abc", "*c", true},
      {"abc", "*b*", true},
      {"abc", "a*c*", true},
      {"abc", "a*d", false},
      {"abc", "a?c", true},
      {"ac", "a?c", false},
      {"aXbXc", "a*X?", true},
      {"js4.js", "js#.js", true},
      {"js10.js", "js#.js", false},
      {"jsa.js", "js#.js", false},
      {"nome3", "nome?", true},
      {"<b>Sale</b>", "*<*>*", true},
      {"1 < 2", "*<*>*", false},
      {"> <", "*<*>*", false},
      {"è", "?", true},
      {"È", "è", true},
      {"a\r\nb", "a*b", true},
      {"b", "[abc]", true},
      {"d", "[abc]", false},
      {"m", "[a-z]", true},
      {"M", "[a-z]", true},
      {"5", "[a-z]", false},
      {"5", "[!a-z]", true},
      {"m", "[!a-z]", false},
      {"x7", "[a-cx-z][0-9]", true},
      {"-", "[-a]", true},
      {"-", "[a-]", true},
      {"*", "[*]", true},
      {"x", "[*]", false},
      {"?", "[?]", true},
      {"#", "[#]", true},
      {"[", "[[]", true},
      {"!", "[!]", true},
      {"x", "[z-a]", false},
      {"a", "[]", false},
      {"[abc", "[abc", false},
      {"a", "[", false},
      {"", "[", false},
      {"x", "*[", false},
      {"ò", "[à-ù]", true},
      {"]", "]", true},
      {"C:\\", "?:\\", true},
  };
  for (const Case& c : cases) EXPECT_EQ(matchesLike(c.text, c.pattern), c.matches) << c.text << " like " << c.pattern;
}

TEST(LikePattern, AStrayByteIsOneCharacterAndEqualsNoOther) {
  EXPECT_TRUE(matchesLike("\xE9", "?"));
  EXPECT_FALSE(matchesLike("\xE9", "é"));
  EXPECT_TRUE(matchesLike("\xE9", "\xE9"));
}

TEST(LikePattern, ManyStarsStayQuick) {
  const std::string text(3000, 'a');
  std::string pattern;
  for (int i = 0; i < 40; ++i) pattern += "*a";
  EXPECT_FALSE(matchesLike(text, pattern + "b"));
  EXPECT_TRUE(matchesLike(text, pattern + "*"));
}

// What a pattern means, without regard to time.
bool meansMatch(std::string_view text, std::string_view pattern) {
  if (pattern.empty()) return text.empty();
  if (pattern[0] == '*') {
    return meansMatch(text, pattern.substr(1)) || (!text.empty() && meansMatch(text.substr(1), pattern));
  }
  if (text.empty()) return false;
  const bool one = pattern[0] == '?' || pattern[0] == text[0] || (pattern[0] == '#' && text[0] == '1');
  return one && meansMatch(text.substr(1), pattern.substr(1));
}

TEST(LikePattern, EveryShortPatternAgreesWithItsMeaning) {
  const std::string_view textLetters = "ab1", patternLetters = "a*?#";
  const auto word = [](std::string_view letters, unsigned code, unsigned length) {
    std::string text;
    for (unsigned i = 0; i < length; ++i, code /= static_cast<unsigned>(letters.size())) {
      text += letters[code % letters.size()];
    }
    return text;
  };
  for (unsigned t = 0; t < 81; ++t) {
    for (unsigned p = 0; p < 1024; ++p) {
      const std::string text = word(textLetters, t, 4), pattern = word(patternLetters, p, 5);
      ASSERT_EQ(matchesLike(text, pattern), meansMatch(text, pattern)) << text << " like " << pattern;
    }
  }
}

TEST(WildcardPattern, KnowsStarAndQuestionMarkAlone) {
  EXPECT_TRUE(matchesWildcard("Modello1.HTM", "modello*.htm"));
  EXPECT_TRUE(matchesWildcard("a[1]#.txt", "a[1]#.*"));
  EXPECT_FALSE(matchesWildcard("a1.txt", "a[1].txt"));
  EXPECT_FALSE(matchesWildcard("a1.txt", "a#.txt"));
}

}  // namespace
}  // namespace kv
