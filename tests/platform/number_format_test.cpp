// Numbers as text, and texts as numbers.
#include "platform/numbers/number_format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "platform/text/text.h"

namespace kv {
namespace {

Money money(std::string_view text) { return Money::parse(text).value(); }

template <class Number>
struct Form {
  Number value;
  std::string_view text;
};

TEST(PlainNumber, OfASingleFollowsItsTable) {
  const Form<float> forms[] = {{0.0F, " 0"},
                               {-0.0F, " 0"},
                               {1.0F, " 1"},
                               {20.0F, " 20"},
                               {-1.5F, "-1.5"},
                               {0.2F, " .2"},
                               {-0.5F, "-.5"},
                               {0.1F, " .1"},
                               {0.01F, " .01"},
                               {0.001F, " .001"},
                               {0.0001F, " .0001"},
                               {0.00001F, " 1E-05"},
                               {0.0000001F, " 1E-07"},
                               {0.001234567F, " 1.234567E-03"},
                               {0.0123F, " .0123"},
                               {0.01234567F, " 1.234567E-02"},
                               {0.1234567F, " .1234567"},
                               {1.0F / 3.0F, " .3333333"},
                               {2.0F / 3.0F, " .6666667"},
                               {1.936270F, " 1.93627"},
                               {1936.27F, " 1936.27"},
                               {123456.7F, " 123456.7"},
                               {1234567.0F, " 1234567"},
                               {9999999.0F, " 9999999"},
                               {1e7F, " 1E+07"},
                               {1.0e20F, " 1E+20"},
                               {123456789.0F, " 1.234568E+08"},
                               {-123456789.0F, "-1.234568E+08"},
                               {16777216.0F, " 1.677722E+07"},
                               {std::numeric_limits<float>::max(), " 3.402823E+38"},
                               {std::numeric_limits<float>::infinity(), " 0"},
                               {std::numeric_limits<float>::quiet_NaN(), " 0"}};
  for (const auto& form : forms) EXPECT_EQ(plainNumber(form.value), form.text);
}

TEST(PlainNumber, OfADoubleFollowsItsTable) {
  const Form<double> forms[] = {{0.0, " 0"},
                                {-0.0, " 0"},
                                {0.2, " .2"},
                                {-0.5, "-.5"},
                                {100.0, " 100"},
                                {0.1 + 0.2, " .3"},
                                {1.0 / 3.0, " .333333333333333"},
                                {2.0 / 3.0, " .666666666666667"},
                                {1.0 / 30.0, " 3.33333333333333E-02"},
                                {0.0001, " .0001"},
                                {0.00001, " 1E-05"},
                                {0.00012345678901, " .00012345678901"},
                                {1234567.891, " 1234567.891"},
                                {1e7, " 10000000"},
                                {999999999999999.0, " 999999999999999"},
                                {1e15, " 1E+15"},
                                {-1e15, "-1E+15"},
                                {1234567890123456.0, " 1.23456789012346E+15"},
                                {1e20, " 1E+20"},
                                {1e100, " 1E+100"},
                                {5e-324, " 4.94065645841247E-324"},
                                {static_cast<double>(0.2F), " .200000002980232"}};
  for (const auto& form : forms) EXPECT_EQ(plainNumber(form.value), form.text);
}

TEST(PlainNumber, AnExponentIsWrittenWhenTheRoundedNumberHasTooManyDigits) {
  EXPECT_EQ(plainNumber(9999999.4), " 9999999.4");
  EXPECT_EQ(plainNumber(std::nextafter(1e7F, 0.0F)), " 9999999");
  EXPECT_EQ(plainNumber(999999999999999.4), " 999999999999999");
  EXPECT_EQ(plainNumber(999999999999999.6), " 1E+15");
}

TEST(PlainNumber, OfMoneyIsExact) {
  const Form<std::string_view> forms[] = {{"0", " 0"},
                                          {"1234.5", " 1234.5"},
                                          {".2", " .2"},
                                          {"-.0001", "-.0001"},
                                          {"12.3400", " 12.34"},
                                          {"-7", "-7"},
                                          {"922337203685477.5807", " 922337203685477.5807"},
                                          {"-922337203685477.5808", "-922337203685477.5808"}};
  for (const auto& form : forms) EXPECT_EQ(plainNumber(money(form.value)), form.text);
}

TEST(PlainNumber, OfAWholeNumberIsExact) {
  EXPECT_EQ(plainNumber(0), " 0");
  EXPECT_EQ(plainNumber(-12), "-12");
  EXPECT_EQ(plainNumber(std::numeric_limits<std::int64_t>::max()), " 9223372036854775807");
  EXPECT_EQ(plainNumber(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(PlainNumber, TrimmedHasNoSpaceInFront) {
  EXPECT_EQ(trimmedNumber(0.2F), ".2");
  EXPECT_EQ(trimmedNumber(-1.5), "-1.5");
  EXPECT_EQ(trimmedNumber(0), "0");
  EXPECT_EQ(trimmedNumber(money("10")), "10");
}

TEST(PlainNumber, IsReadBackAsTheSameNumber) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> digits(-1, 1);
  for (int i = 0; i < 20000; ++i) {
    const auto value = static_cast<float>(digits(random) * std::pow(10.0, static_cast<int>(random() % 24) - 12));
    const std::string text = plainNumber(value);
    EXPECT_EQ(plainNumber(static_cast<float>(toNumber(text).value())), text);
    EXPECT_EQ(leadingNumber(text), toNumber(text).value());
  }
}

struct Masked {
  std::string_view value, mask, text;
};

TEST(NumberMask, OfMoneyFollowsItsTable) {
  const Masked forms[] = {
      {"1234.5", "###,###,###,##0.00", "1,234.50"},
      {"0", "###,###,###,##0.00", "0.00"},
      {".005", "###,###,###,##0.00", "0.01"},
      {"-.005", "###,###,###,##0.00", "-0.01"},
      {"-.004", "###,###,###,##0.00", "0.00"},
      {"999.995", "###,###,###,##0.00", "1,000.00"},
      {"-1234567.891", "###,###,###,##0.00", "-1,234,567.89"},
      {"922337203685477.5807", "###,###,###,##0.00", "922,337,203,685,477.58"},
      {"-922337203685477.5808", "###,###,###,##0.00", "-922,337,203,685,477.58"},
      {"123", "###,###,###,##0", "123"},
      {"1234.5", "###,###,###,##0", "1,235"},
      {"1233.5", "###,###,###,##0", "1,234"},
      {"1234.5", "##################0.00", "1234.50"},
      {".2", "##################0.00", "0.20"},
      {"1936.27", "##################0", "1936"},
      {".4", "##################0", "0"},
      {"-.4", "##################0", "0"},
      {".5", "##################0", "1"},
  };
  for (const Masked& form : forms) EXPECT_EQ(formatNumber(money(form.value), form.mask), form.text) << form.value;
}

TEST(NumberMask, OfAWholeNumberFollowsItsTable) {
  struct Row {
    int value;
    std::string_view mask, text;
  };
  const Row rows[] = {
      {0, "#####", ""},
      {7, "#####", "7"},
      {123456, "#####", "123456"},
      {0, "##################", ""},
      {12, "##################", "12"},
      {0, "0", "0"},
      {12, "0", "12"},
      {7, "000", "007"},
      {1234, "000", "1234"},
      {7, "###000", "007"},
      {123, "###000", "123"},
      {1234, "###000", "1234"},
      {0, "###0", "0"},
      {480, "###0", "480"},
      {0, "####0", "0"},
      {33, "####0", "33"},
      {5, "######0", "5"},
      {12, "#####0", "12"},
      {21, "#######", "21"},
      {0, "#0", "0"},
      {6, "#0", "6"},
      {5, "00", "05"},
      {-7, "###000", "-007"},
      {1234567, "#,##0", "1,234,567"},
      {5, "000,000", "000,005"},
      {7, "cat###000", "cat007"},
      {5, "0.00", "5.00"},
      {5, "0.##", "5."},
      {-1, "#####", "-1"},
      {1000, "###,###,###,##0", "1,000"},
      {12, ".00", "12.00"},
      {12, "n.d.", "n.d."},
      {1500, "0,", "1500"},
      {12, "0 pz", "12 pz"},
  };
  for (const Row& row : rows) EXPECT_EQ(formatNumber(row.value, row.mask), row.text) << row.value << " " << row.mask;
}

TEST(NumberMask, ADoubleCountsByItsFifteenDigits) {
  EXPECT_EQ(formatNumber(2.675, "0.00"), "2.68");
  EXPECT_EQ(formatNumber(1.005, "0.00"), "1.01");
  EXPECT_EQ(formatNumber(-2.675, "0.00"), "-2.68");
  EXPECT_EQ(formatNumber(0.4, "0"), "0");
  EXPECT_EQ(formatNumber(0.5, "0"), "1");
  EXPECT_EQ(formatNumber(1.5, "0"), "2");
  EXPECT_EQ(formatNumber(2.5, "0"), "3");
  EXPECT_EQ(formatNumber(-0.4, "0.00"), "-0.40");
  EXPECT_EQ(formatNumber(-0.001, "0.00"), "0.00");
  EXPECT_EQ(formatNumber(0.1 + 0.2, "0.################"), "0.3");
  EXPECT_EQ(formatNumber(1e20, "#,##0"), "100,000,000,000,000,000,000");
  EXPECT_EQ(formatNumber(std::numeric_limits<double>::quiet_NaN(), "0"), "0");
}

TEST(NumberMask, AnOptionalDecimalIsLeftOutAtTheEnd) {
  EXPECT_EQ(formatNumber(1.5, "0.0#"), "1.5");
  EXPECT_EQ(formatNumber(1.0, "0.0#"), "1.0");
  EXPECT_EQ(formatNumber(1.05, "0.##"), "1.05");
  EXPECT_EQ(formatNumber(0.05, "#.##"), ".05");
}

TEST(NumberMask, WithSeparatorsIsTheMaskWithoutThemPlusSeparators) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 20000; ++i) {
    const Money amount = Money::ofTenThousandths(static_cast<std::int64_t>(random()) >> (random() % 60));
    const std::string grouped = formatNumber(amount, "###,###,###,##0.00");
    const std::string plain = formatNumber(amount, "##################0.00");
    ASSERT_EQ(replaceAll(grouped, ",", ""), plain);
    const std::size_t digits = plain.find('.') - (plain[0] == '-' ? 1 : 0);
    ASSERT_EQ(grouped.size(), plain.size() + (digits - 1) / 3) << grouped;
    ASSERT_TRUE(grouped[0] != ',' && grouped.substr(0, 2) != "-,");
  }
}

TEST(NumericTest, AcceptsANumberAsAWhole) {
  for (const char* text : {"0", "12", "-1", "+1", "1.5", "1,5", ".5", ",5", "5.", "-.25", " 12 ", "1E3", "1e-3",
                           "2.5E+02", "000", "-0", "1E-999"}) {
    EXPECT_TRUE(isNumeric(text)) << text;
  }
}

TEST(NumericTest, RefusesEverythingElse) {
  for (const char* text :
       {"",   " ",  "x",  "12a", "a12",   "1 2",   "1.2.3", "1,234.5", ".",   ",",   "-",   "+",   "--1", "- 1",
        "1-", "E5", "1E", "1E+", "1E5.5", "1E999", "0x10",  "inf",     "nan", "1\t", "1D5", "€ 5", "١"}) {
    EXPECT_FALSE(isNumeric(text)) << text;
  }
}

TEST(NumericTest, GivesTheNumberItAccepts) {
  EXPECT_EQ(toNumber(" -1,25 ").value(), -1.25);
  EXPECT_EQ(toNumber("1E-999").value(), 0.0);
  EXPECT_EQ(toNumber("0.1").value(), 0.1);
  EXPECT_EQ(toNumber("123456789012345678901234567890").value(), 123456789012345678901234567890.0);
  EXPECT_EQ(toNumber("1E5").value(), 1e5);
}

TEST(LeadingNumber, TakesTheNumberAtTheStart) {
  EXPECT_EQ(leadingNumber("12abc"), 12.0);
  EXPECT_EQ(leadingNumber("  -3.5 kg"), -3.5);
  EXPECT_EQ(leadingNumber("1 250 kg"), 1250.0);
  EXPECT_EQ(leadingNumber("1,5"), 1.0);
  EXPECT_EQ(leadingNumber("1.2.3"), 1.2);
  EXPECT_EQ(leadingNumber("1E2x"), 100.0);
  EXPECT_EQ(leadingNumber("1E"), 1.0);
  EXPECT_EQ(leadingNumber("+7"), 7.0);
}

TEST(LeadingNumber, IsZeroWhereThereIsNone) {
  for (const char* text : {"", "x", "-", ".", "E5", "1E999"}) EXPECT_EQ(leadingNumber(text), 0.0) << text;
}

TEST(Rounding, ATieGoesToTheEvenDigit) {
  EXPECT_EQ(roundHalfEven(0.125, 2), 0.12);
  EXPECT_EQ(roundHalfEven(0.135, 2), 0.14);
  EXPECT_EQ(roundHalfEven(2.675, 2), 2.68);
  EXPECT_EQ(roundHalfEven(2.665, 2), 2.66);
  EXPECT_EQ(roundHalfEven(0.5, 0), 0.0);
  EXPECT_EQ(roundHalfEven(1.5, 0), 2.0);
  EXPECT_EQ(roundHalfEven(2.5, 0), 2.0);
  EXPECT_EQ(roundHalfEven(-2.5, 0), -2.0);
  EXPECT_EQ(roundHalfEven(2.5000001, 0), 3.0);
}

TEST(Rounding, ATieGoesAwayFromZero) {
  EXPECT_EQ(roundHalfAway(0.125, 2), 0.13);
  EXPECT_EQ(roundHalfAway(1.005, 2), 1.01);
  EXPECT_EQ(roundHalfAway(-2.5, 0), -3.0);
  EXPECT_EQ(roundHalfAway(2.4999999, 0), 2.0);
  EXPECT_EQ(roundHalfAway(9.999, 2), 10.0);
}

TEST(Rounding, ANumberWithFewerDecimalsStaysToTheLastBit) {
  EXPECT_EQ(roundHalfEven(0.1 + 0.2, 15), 0.1 + 0.2);
  EXPECT_EQ(roundHalfAway(1e300, 2), 1e300);
  EXPECT_EQ(roundHalfEven(0.0, 2), 0.0);
  EXPECT_TRUE(std::isinf(roundHalfEven(std::numeric_limits<double>::infinity(), 2)));
}

}  // namespace
}  // namespace kv
