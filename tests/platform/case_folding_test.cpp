// Comparison without regard to case.
#include <gtest/gtest.h>

#include "platform/text/text.h"

namespace kv {
namespace {

TEST(CaseFolding, LowersEveryLetterOfTheCodePage) {
  EXPECT_EQ(foldCase("ABZ 019 @[`{"), "abz 019 @[`{");
  EXPECT_EQ(foldCase("ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖØÙÚÛÜÝÞ"), "àáâãäåæçèéêëìíîïðñòóôõöøùúûüýþ");
  EXPECT_EQ(foldCase("ŠŒŽŸ"), "šœžÿ");
}

TEST(CaseFolding, LowerCaseOfTheCodePageStaysInTheCodePage) {
  for (int i = 0; i < 256; ++i) {
    const std::string byte(1, static_cast<char>(static_cast<unsigned char>(i)));
    EXPECT_EQ(toWindows1252(foldCase(fromWindows1252(byte))).size(), 1U) << i;
  }
}

TEST(CaseFolding, SignsThatLookLikeCapitalsStay) { EXPECT_EQ(foldCase("× ß µ ÿ ¼"), "× ß µ ÿ ¼"); }

TEST(CaseFolding, LettersOfOtherScriptsAreFoldedToo) {
  EXPECT_EQ(foldCase("ΣΑΣ"), foldCase("σας"));
  EXPECT_TRUE(equalsIgnoringCase("ПРИВЕТ", "привет"));
}

TEST(CaseFolding, TheTurkishKindsOfIAreNotAnI) {
  EXPECT_FALSE(equalsIgnoringCase("İ", "i"));
  EXPECT_FALSE(equalsIgnoringCase("ı", "I"));
}

TEST(CaseFolding, BytesThatAreNoUtf8Stay) { EXPECT_EQ(foldCase("A\xE9\xC9Z"), "a\xE9\xC9z"); }

TEST(CaseFolding, FoldingTwiceChangesNothingMore) {
  for (char32_t character = 1; character < 0x3000; ++character) {
    std::string text;
    text += fromWindows1252("A");
    if (character < 0x800) {
      text += static_cast<char>(0xC0 | (character >> 6));
    } else {
      text += static_cast<char>(0xE0 | (character >> 12));
      text += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    }
    text += static_cast<char>(0x80 | (character & 0x3F));
    const std::string once = foldCase(text);
    EXPECT_EQ(foldCase(once), once) << static_cast<std::uint32_t>(character);
    EXPECT_EQ(characterCount(once), characterCount(text));
  }
}

TEST(CaseFolding, EqualTextsDifferInCaseAlone) {
  EXPECT_TRUE(equalsIgnoringCase("Perché", "PERCHÉ"));
  EXPECT_FALSE(equalsIgnoringCase("perche", "perché"));
  EXPECT_FALSE(equalsIgnoringCase("a", "ab"));
  EXPECT_TRUE(equalsIgnoringCase("", ""));
}

TEST(CaseFolding, OrderIsThatOfTheFoldedTexts) {
  const std::string texts[] = {"", "0", "A", "a_", "ab", "B", "É", "z", "zÀ", "_", "\xE9", "à", "ß"};
  const auto sign = [](int value) { return (value > 0) - (value < 0); };
  for (const std::string& a : texts) {
    for (const std::string& b : texts) {
      EXPECT_EQ(sign(compareIgnoringCase(a, b)), sign(foldCase(a).compare(foldCase(b)))) << a << " " << b;
    }
  }
}

TEST(CaseFolding, StartAndEndAreFoundWithoutCase) {
  EXPECT_TRUE(startsWithIgnoringCase("KVAN_col_0.gif", "kvan_COL_"));
  EXPECT_TRUE(startsWithIgnoringCase("ÈÀx", "èà"));
  EXPECT_FALSE(startsWithIgnoringCase("kva", "kvan"));
  EXPECT_TRUE(endsWithIgnoringCase("Pagina.HTM", ".htm"));
  EXPECT_TRUE(endsWithIgnoringCase("città", "TÀ"));
  EXPECT_FALSE(endsWithIgnoringCase("m", ".htm"));
  EXPECT_TRUE(startsWithIgnoringCase("a", "") && endsWithIgnoringCase("a", ""));
}

TEST(CaseFolding, StartAndEndMayBeOfAnotherLengthInBytes) {
  const std::string kelvin = "\u212A";  // folds to k
  EXPECT_TRUE(startsWithIgnoringCase(kelvin + "m", "km"));
  EXPECT_TRUE(endsWithIgnoringCase("1 " + kelvin, "1 K"));
}

}  // namespace
}  // namespace kv
