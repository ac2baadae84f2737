// Numbers pasted from elsewhere, in either notation.

#include "platform/numbers/number_reading.h"

#include <gtest/gtest.h>

#include "platform/text/single_line.h"

namespace kv::test {
namespace {

struct ReadingCase {
  const char* text;
  const char* comma;  ///< what it says where the comma is the decimal separator; null: no number
  const char* point;  ///< and where the point is
};

TEST(NumberReading, BothNotationsAreUnderstood) {
  const ReadingCase cases[] = {
      {"12.50", "12,50", "12.50"},
      {"12,50", "12,50", "12.50"},
      {"1.250,75", "1250,75", "1250.75"},
      {"1,250.75", "1250,75", "1250.75"},
      {"1.250.000", "1250000", "1250000"},
      {"1 250 000,5", "1250000,5", "1250000.5"},
      {"1'250.50", "1250,50", "1250.50"},
      {" € 12,50 ", "12,50", "12.50"},
      {"12.50 EUR\r\n", "12,50", "12.50"},
      {"1\xC2\xA0"
       "250,5",
       "1250,5", "1250.5"},
      {"0.125", "0,125", "0.125"},
      {"1250.125", "1250,125", "1250.125"},
      {"007", "007", "007"},
      {",5", ",5", ".5"},
      {"-5", nullptr, nullptr},
      {"1e5", nullptr, nullptr},
      {"1,2,3", nullptr, nullptr},
      {"1.2.3", nullptr, nullptr},
      {"1.250.00", nullptr, nullptr},
      {"1,25.00", nullptr, nullptr},
      {"1.250,000,5", nullptr, nullptr},
      {"12 50", nullptr, nullptr},
      {"12 pezzi", nullptr, nullptr},
      {".", nullptr, nullptr},
      {"", nullptr, nullptr},
  };
  for (const auto& [text, comma, point] : cases) {
    for (const char separator : {',', '.'}) {
      const char* wanted = separator == ',' ? comma : point;
      const NumberReading reading = readNumber(text, separator);
      EXPECT_EQ(reading.isNumber, wanted != nullptr) << text;
      EXPECT_EQ(reading.text, wanted != nullptr ? wanted : "") << text << " with " << separator;
      EXPECT_EQ(reading.note.empty(), reading.isNumber) << text << ": " << reading.note;
    }
  }
}

TEST(NumberReading, WhatCouldBeEitherSaysHowItWasRead) {
  const NumberReading reading = readNumber("1.250", ',');
  EXPECT_EQ(reading.text, "1250");
  EXPECT_EQ(reading.note, "\"1.250\" è stato letto come 1250. Se era 1,250, correggerlo.");
  EXPECT_EQ(readNumber("1,250", '.').text, "1250");
  EXPECT_FALSE(readNumber("1,250", '.').note.empty());
  EXPECT_EQ(readNumber("1,250", ',').text, "1,250");
  EXPECT_TRUE(readNumber("1,250", ',').note.empty());
}

TEST(NumberReading, AMinusBeforeTheNumberStaysWhereItMayBeNegative) {
  EXPECT_EQ(readSignedNumber(" -1.250,50", ',').text, "-1250,50");
  EXPECT_EQ(readSignedNumber("- 5", ',').text, "-5");
  EXPECT_EQ(readSignedNumber("5.5", ',').text, "5,5");
  for (const char* text : {"-", "--5", "5-", "-abc"}) EXPECT_FALSE(readSignedNumber(text, ',').isNumber) << text;
}

TEST(NumberReading, LineEndsAndTabsAreOneSpaceInsideAndNoneAtTheEnds) {
  EXPECT_EQ(singleLine("TR-77\r\n"), "TR-77");
  EXPECT_EQ(singleLine("\t a \r\n\r\n b\t"), "a b");
  EXPECT_EQ(singleLine(" a  b "), " a  b ");
  EXPECT_EQ(singleLine("\n"), "");
}

}  // namespace
}  // namespace kv::test
