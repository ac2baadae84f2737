// Codes of messages against the vectors of their own document, and JSON as values.
#include "platform/files/message_code.h"

#include <gtest/gtest.h>

#include "platform/database/json.h"
#include "platform/text/form_text.h"

namespace kv {
namespace {

TEST(AMessageCode, IsThatOfThePublishedVectors) {
  // RFC 4231, test cases 1, 2 and 6.
  EXPECT_EQ(hmacSha256(std::string(20, '\x0b'), "Hi There"),
            "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7");
  EXPECT_EQ(hmacSha256("Jefe", "what do ya want for nothing?"),
            "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843");
  EXPECT_EQ(hmacSha256(std::string(131, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First"),
            "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54");
  EXPECT_TRUE(isSameCode("abc", "abc"));
  EXPECT_FALSE(isSameCode("abc", "abd"));
  EXPECT_FALSE(isSameCode("abc", "abcd"));
}

TEST(HexadecimalDigits, GiveBytesOrNothing) {
  EXPECT_EQ(bytesOfHexadecimal("00fFa1"), std::string("\0\xff\xa1", 3));
  EXPECT_EQ(bytesOfHexadecimal(""), std::string());
  EXPECT_FALSE(bytesOfHexadecimal("0"));
  EXPECT_FALSE(bytesOfHexadecimal("0g"));
}

TEST(AFormValue, IsPercentEncoded) { EXPECT_EQ(formValue("a-Z_0.~ {\"è\"}&="), "a-Z_0.~%20%7B%22%C3%A8%22%7D%26%3D"); }

TEST(Json, BecomesValues) {
  const auto value =
      readJson(R"({"n":-12,"t":"è\n\"x\"\u20ac","si":true,"no":false,"nulla":null,"l":[1,[],{"a":"b"}],"r":1.50})");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->wholeOf("n"), -12);
  EXPECT_EQ(value->textOf("t"), "è\n\"x\"€");
  EXPECT_TRUE(value->flagOf("si"));
  EXPECT_FALSE(value->flagOf("no"));
  EXPECT_FALSE(value->flagOf("t"));
  EXPECT_EQ(value->textOf("nulla"), "");
  EXPECT_FALSE(value->wholeOf("t"));
  EXPECT_FALSE(value->wholeOf("r"));
  ASSERT_EQ(value->listOf("l").size(), 3U);
  EXPECT_EQ(value->listOf("l")[2].textOf("a"), "b");
  EXPECT_TRUE(value->listOf("n").empty());
  EXPECT_EQ(value->member("missing"), nullptr);
}

TEST(Json, WrittenAndReadAgainIsTheSame) {
  const std::string text = R"({"a":[1,"è","\u0001",true,false,null,{}],"b":{"c":[[]]},"":"-0.5e3","n":12345678901234})";
  const auto value = readJson(text);
  ASSERT_TRUE(value);
  EXPECT_EQ(jsonText(*value), text);
}

TEST(Json, ThatIsNoneIsMalformed) {
  for (const char* text : {"", " ", "{", "[1,]", "{\"a\" 1}", "nul", "{} x", "'a'", "<html>"}) {
    const auto value = readJson(text);
    ASSERT_FALSE(value) << text;
    EXPECT_EQ(value.error().kind, ErrorKind::Malformed) << text;
  }
  EXPECT_FALSE(readJson(std::string(33, '[') + std::string(33, ']')));
  EXPECT_TRUE(readJson(std::string(32, '[') + std::string(32, ']')));
  EXPECT_FALSE(readJson(std::string(100'000, '[')));
}

TEST(Json, WithBytesThatAreNoUtf8IsReadWithoutThem) {
  const auto value = readJson("{\"a\":\"x\xff\xc3y\"}");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->textOf("a"), "x\uFFFD\uFFFDy");
}

}  // namespace
}  // namespace kv
