// The border between the files of a shop and the text in memory.
#include <gtest/gtest.h>

#include <random>

#include "platform/text/text.h"
#include "platform/text/utf8.h"

namespace kv {
namespace {

std::string everyByte() {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(static_cast<unsigned char>(i));
  return bytes;
}

TEST(Windows1252, EveryByteSurvivesTheRoundTrip) {
  EXPECT_EQ(toWindows1252(fromWindows1252(everyByte())), everyByte());
}

TEST(Windows1252, EveryByteAloneBetweenLettersSurvivesTheRoundTrip) {
  for (const char byte : everyByte()) {
    const std::string text = std::string("abcdefgh") + byte + "ijklmnopq";
    EXPECT_EQ(toWindows1252(fromWindows1252(text)), text);
  }
}

TEST(Windows1252, TheUpperControlsBecomeTheirTypographicCharacters) {
  EXPECT_EQ(fromWindows1252("\x80\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8E"), "€‚ƒ„…†‡ˆ‰Š‹ŒŽ");
  EXPECT_EQ(fromWindows1252("\x91\x92\x93\x94\x95\x96\x97\x98\x99\x9A\x9B\x9C\x9E\x9F"), "‘’“”•–—˜™š›œžŸ");
}

TEST(Windows1252, TheFiveFreeCodesBecomeControlCharacters) {
  EXPECT_EQ(fromWindows1252("\x81\x8D\x8F\x90\x9D"), "\u0081\u008D\u008F\u0090\u009D");
}

TEST(Windows1252, LatinLettersAreOneByteEach) { EXPECT_EQ(toWindows1252("perché £ ÿ"), "perch\xE9 \xA3 \xFF"); }

TEST(Windows1252, ACharacterOutsideBecomesANumericReference) {
  EXPECT_EQ(toWindows1252("₪ → 😀"), "&#8362; &#8594; &#128512;");
  EXPECT_EQ(toWindows1252("\u0080"), "&#128;");
}

TEST(Windows1252, EachByteThatIsNoUtf8BecomesAQuestionMark) {
  EXPECT_EQ(toWindows1252("a\xE9z"), "a?z");
  EXPECT_EQ(toWindows1252("\xE2\x82"), "??") << "cut off";
  EXPECT_EQ(toWindows1252("\xC0\xAF"), "??") << "longer than need be";
  EXPECT_EQ(toWindows1252("\xED\xA0\x80"), "???") << "a surrogate";
  EXPECT_EQ(toWindows1252("\xF4\x90\x80\x80"), "????") << "beyond the last character";
}

TEST(Windows1252, ZeroBytesAndLineEndsStayAsTheyAre) {
  const std::string text("a\0b\r\nc\rd\n", 9);
  EXPECT_EQ(fromWindows1252(text), text);
  EXPECT_EQ(toWindows1252(text), text);
}

TEST(Windows1252, RandomBytesSurviveTheRoundTripAtEveryLength) {
  std::mt19937 random(1);
  for (std::size_t length = 0; length < 300; ++length) {
    std::string bytes;
    for (std::size_t i = 0; i < length; ++i) bytes += static_cast<char>(random() % 3 == 0 ? random() % 256 : 'a');
    EXPECT_EQ(toWindows1252(fromWindows1252(bytes)), bytes);
  }
}

TEST(Utf8, EveryCharacterIsReadBackAsItWasWritten) {
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    if (character >= 0xD800 && character <= 0xDFFF) continue;
    std::string text;
    utf8::append(text, character);
    const utf8::Unit unit = utf8::unitAt(text, 0);
    ASSERT_TRUE(unit.valid && unit.character == character && unit.length == text.size())
        << static_cast<std::uint32_t>(character);
  }
}

}  // namespace
}  // namespace kv
