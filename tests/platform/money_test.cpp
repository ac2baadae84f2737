// Money: exact sums, exact ties, and the rounding of a product through single precision.
#include "platform/numbers/money.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "platform/numbers/number_format.h"

namespace kv {
namespace {

constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();

std::optional<std::int64_t> parsed(std::string_view text) {
  const auto amount = Money::parse(text);
  return amount ? std::optional(amount->tenThousandths()) : std::nullopt;
}
std::optional<std::int64_t> converted(double value) {
  const auto amount = Money::of(value);
  return amount ? std::optional(amount->tenThousandths()) : std::nullopt;
}

TEST(MoneyText, IsReadExactly) {
  EXPECT_EQ(parsed("1234.5"), 12345000);
  EXPECT_EQ(parsed("-.25"), -2500);
  EXPECT_EQ(parsed(" 7 "), 70000);
  EXPECT_EQ(parsed("+0.0001"), 1);
  EXPECT_EQ(parsed("1E+03"), 10000000);
  EXPECT_EQ(parsed("0"), 0);
}

TEST(MoneyText, DecimalsBeyondTheFourthAreRoundedHalfToEven) {
  EXPECT_EQ(parsed("0.00005"), 0);
  EXPECT_EQ(parsed("0.00015"), 2);
  EXPECT_EQ(parsed("0.00025"), 2);
  EXPECT_EQ(parsed("0.000250000000000000000000000000001"), 3);
  EXPECT_EQ(parsed("-0.00015"), -2);
  EXPECT_EQ(parsed("0.00004999"), 0);
  EXPECT_EQ(parsed("9.99995"), 100000);
}

TEST(MoneyText, ReachesBothEndsOfTheRangeAndNotBeyond) {
  EXPECT_EQ(parsed("922337203685477.5807"), most);
  EXPECT_EQ(parsed("-922337203685477.5808"), least);
  EXPECT_EQ(parsed("922337203685477.58074"), most);
  EXPECT_EQ(parsed("922337203685477.5808"), std::nullopt);
  EXPECT_EQ(parsed("-922337203685477.5809"), std::nullopt);
  EXPECT_EQ(parsed("9999999999999999999999"), std::nullopt);
  EXPECT_EQ(parsed("1E+90000"), std::nullopt);
  EXPECT_EQ(parsed("1E-90000"), 0);
}

TEST(MoneyText, ThatIsNoNumberIsRefused) {
  for (const char* text : {"", "-", "1,5", "1.2.3", "12a", "€ 1", "1E"}) EXPECT_EQ(parsed(text), std::nullopt) << text;
}

TEST(MoneyOfADouble, IsTheExactBinaryValueRoundedHalfToEven) {
  EXPECT_EQ(converted(0.1), 1000);
  EXPECT_EQ(converted(0.00005), 1) << "the nearest double lies above the tie";
  EXPECT_EQ(converted(0.00015), 1) << "the nearest double lies below the tie";
  EXPECT_EQ(converted(0.03125), 312) << "a tie in binary";
  EXPECT_EQ(converted(0.09375), 938) << "a tie in binary";
  EXPECT_EQ(converted(-0.03125), -312);
  EXPECT_EQ(converted(-0.09375), -938);
  EXPECT_EQ(converted(-1.5), -15000);
  EXPECT_EQ(converted(1e-300), 0);
  EXPECT_EQ(converted(-1e-300), 0);
}

TEST(MoneyOfADouble, IsEmptyOutOfRange) {
  EXPECT_EQ(converted(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
  EXPECT_EQ(converted(std::numeric_limits<double>::infinity()), std::nullopt);
  EXPECT_EQ(converted(922337203685477.5), 9223372036854775000);
  EXPECT_EQ(converted(922337203685477.625), std::nullopt);
  EXPECT_EQ(converted(-922337203685477.5), -9223372036854775000);
  EXPECT_EQ(converted(-922337203685477.625), std::nullopt);
  EXPECT_EQ(converted(1e15), std::nullopt);
}

TEST(MoneyOfADouble, IsExactInBothDirections) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 20000; ++i) {
    const auto count = static_cast<std::int64_t>(random()) >> (12 + random() % 50);
    const Money amount = Money::ofTenThousandths(count);
    EXPECT_EQ(converted(amount.toDouble()), count);
    EXPECT_EQ(parsed(plainNumber(amount)), count);
  }
}

TEST(MoneyOfADouble, AgreesWithTheLongDoubleRounding) {
  std::mt19937_64 random(5);
  for (int i = 0; i < 20000; ++i) {
    const double value = std::ldexp(static_cast<double>(static_cast<std::int64_t>(random()) >> 11), -40);
    // 53 + 14 bits are more than a long double holds, so let the low bits of the number be free.
    const double shortValue = static_cast<double>(static_cast<float>(value));
    const long double exact = static_cast<long double>(shortValue) * 10000.0L;
    EXPECT_EQ(converted(shortValue), static_cast<std::int64_t>(std::nearbyint(exact)));
  }
}

TEST(MoneyProduct, IsRoundedThroughSinglePrecision) {
  const Money amount = Money::parse("1234567.89").value();
  EXPECT_EQ(multiplyThroughSingle(amount, 0.2F)->tenThousandths(), 2469135781)
      << "246913.5817 lies between singles that are a sixty-fourth apart";
}

TEST(MoneyProduct, OfASmallAmountIsWhatOneExpects) {
  EXPECT_EQ(multiplyThroughSingle(Money::ofUnits(100), 0.2F), Money::ofUnits(20));
  EXPECT_EQ(multiplyThroughSingle(Money::parse("19.9").value(), 0.9F), Money::parse("17.91"));
  EXPECT_EQ(multiplyThroughSingle(Money::ofUnits(50), 1.0F), Money::ofUnits(50));
  EXPECT_EQ(multiplyThroughSingle(Money::ofUnits(50), 0.0F), Money());
}

TEST(MoneyProduct, LosesTheDigitsThatASingleCannotHold) {
  EXPECT_EQ(multiplyThroughSingle(Money::parse("16777217").value(), 1.0F), Money::ofUnits(16777216));
}

TEST(MoneyProduct, IsEmptyOutOfRange) {
  EXPECT_EQ(multiplyThroughSingle(Money::ofTenThousandths(most), 2.0F), std::nullopt);
  EXPECT_EQ(multiplyThroughSingle(Money::ofTenThousandths(most), 3e38F), std::nullopt);
  EXPECT_EQ(multiplyThroughSingle(Money::ofUnits(1), std::numeric_limits<float>::quiet_NaN()), std::nullopt);
}

TEST(MoneySum, IsExactAndEmptyOutOfRange) {
  EXPECT_EQ(add(Money::parse(".1").value(), Money::parse(".2").value()), Money::parse(".3"));
  EXPECT_EQ(add(Money::ofTenThousandths(most), Money::ofTenThousandths(1)), std::nullopt);
  EXPECT_EQ(add(Money::ofTenThousandths(least), Money::ofTenThousandths(-1)), std::nullopt);
  EXPECT_EQ(add(Money::ofTenThousandths(most), Money::ofTenThousandths(least)), Money::ofTenThousandths(-1));
}

}  // namespace
}  // namespace kv
