// The rule by which a price changes, by examples and against a decimal calculation of its own.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "commerce/prices/price_change.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

Money amountOf(const char* text) { return Money::parse(text).value(); }
std::string changed(const char* price, double percentage, bool whole = false) {
  return shownPrice(Trasforma(amountOf(price), ruleOfPercentage(percentage, whole)), '.');
}

TEST(ThePriceRule, RoundsToCentsAndThenToWholePrices) {
  EXPECT_EQ(changed("19.99", 10), "21.99");
  EXPECT_EQ(changed("19.99", 10, true), "22.00");
}

TEST(ThePriceRule, RoundsTwiceATieToTheEvenDigit) {
  EXPECT_EQ(changed("2.495", 0), "2.50");
  EXPECT_EQ(changed("2.495", 0, true), "2.00");
  EXPECT_EQ(changed("2.485", 0), "2.48");
  EXPECT_EQ(changed("3.5", 0, true), "4.00");
  EXPECT_EQ(changed("-2.495", 0), "-2.50");
}

TEST(ThePriceRule, OfMinusHundredMakesEveryPriceZero) {
  EXPECT_EQ(changed("19.99", -100), "0.00");
  EXPECT_EQ(ruleOfPercentage(-100, false).factor, 0.0F);
  EXPECT_EQ(changed("-5", -100), "0.00");
}

TEST(ThePriceRule, GoesThroughSinglePrecisionEvenAtZeroPercent) {
  EXPECT_EQ(changed("200000.01", 0), "200,000.02");
  EXPECT_EQ(changed("262144.05", 0), "262,144.06");
  EXPECT_EQ(changed("100000.01", 0), "100,000.01");
}

TEST(ThePriceRule, MakesANullPriceZero) { EXPECT_EQ(Trasforma(std::nullopt, ruleOfPercentage(10, false)), Money()); }

TEST(ThePriceRule, MakesAPriceOutOfRangeZeroAndNamesIt) {
  const PriceRule doubled = ruleOfPercentage(100, false);
  const Money huge = Money::ofUnits(900000000000000);
  EXPECT_EQ(Trasforma(huge, doubled), Money());
  EXPECT_TRUE(isBeyondMoney(huge, doubled));
  EXPECT_FALSE(isBeyondMoney(std::nullopt, doubled));
  EXPECT_FALSE(isBeyondMoney(amountOf("400000000000000"), doubled));
}

/// A whole number of units of which `part` make one, rounded by what is cut off, a tie to the even one.
std::int64_t cutOff(std::int64_t number, std::int64_t part) {
  const std::int64_t sign = number < 0 ? -1 : 1;
  const std::int64_t whole = number * sign / part;
  const std::int64_t rest = number * sign % part;
  const bool up = rest * 2 > part || (rest * 2 == part && whole % 2 == 1);
  return sign * (whole + (up ? 1 : 0));
}

TEST(ThePriceRule, EqualsADecimalCalculationWhereverASingleCanTellTheSides) {
  std::mt19937 chance(seed());
  int compared = 0;
  for (int round = 0; round < operationsOf(500); ++round) {
    const auto count = static_cast<std::int64_t>(chance() % 20000000) - 2000000;
    const int percentage = static_cast<int>(chance() % 201) - 100;
    const bool whole = chance() % 2 == 0;
    const std::int64_t millionths = count * (100 + percentage);
    // Three roundings to 24 bits, and one to the fourth decimal.
    const double doubt = std::abs(static_cast<double>(millionths)) * 2e-7 + 51;
    const double toTie = std::abs(static_cast<double>(std::abs(millionths) % 10000 - 5000));
    if (toTie <= doubt) continue;
    std::int64_t wanted = cutOff(millionths, 10000) * 100;
    if (whole) wanted = cutOff(wanted, 10000) * 10000;
    const Money result = Trasforma(Money::ofTenThousandths(count), ruleOfPercentage(percentage, whole));
    EXPECT_EQ(result.tenThousandths(), wanted) << count << " " << percentage << " " << whole;
    ++compared;
  }
  EXPECT_GT(compared, operationsOf(500) / 2);
}

TEST(ThePriceRule, NeverTurnsARisingPriceIntoALowerOne) {
  std::mt19937 chance(seed());
  for (int round = 0; round < operationsOf(500); ++round) {
    const PriceRule rule = ruleOfPercentage(static_cast<double>(chance() % 20001) / 100 - 100, false);
    const Money low = Money::ofTenThousandths(static_cast<std::int64_t>(chance()) * 10);
    const Money high = Money::ofTenThousandths(low.tenThousandths() + static_cast<std::int64_t>(chance() % 100000));
    EXPECT_LE(Trasforma(low, rule), Trasforma(high, rule));
  }
}

TEST(ThePercentage, IsANumberFromMinusToPlusHundred) {
  EXPECT_EQ(readPercentage("+10"), 10);
  EXPECT_EQ(readPercentage("-2,5"), -2.5);
  EXPECT_EQ(readPercentage("1.5"), 1.5);
  EXPECT_EQ(readPercentage("-100"), -100);
  EXPECT_EQ(readPercentage("100"), 100);
  for (const char* wrong : {"", " ", "+", "-", ",", "abc", "10%", "100,01", "-101", "1,2,3"}) {
    EXPECT_FALSE(readPercentage(wrong)) << wrong;
  }
}

TEST(ThePercentage, IsTypedAsDigitsASeparatorAndASignInFront) {
  for (const char* typed : {"", "+", "-", "+1", "12,", ",5", "-0,25", "1000"}) {
    EXPECT_TRUE(isTypedPercentage(typed, ',')) << typed;
  }
  for (const char* typed : {"1.5", "1-", "1,2,3", "++1", "1e1", " 1", "%"}) {
    EXPECT_FALSE(isTypedPercentage(typed, ',')) << typed;
  }
  EXPECT_TRUE(isTypedPercentage("1.5", '.'));
  EXPECT_FALSE(isTypedPercentage("1,5", '.'));
}

TEST(APriceInAPreview, HasTwoDecimalsAndMoreWhereItNeedsThem) {
  EXPECT_EQ(shownPrice(amountOf("1234.5")), "1.234,50");
  EXPECT_EQ(shownPrice(amountOf("0.125")), "0,125");
  EXPECT_EQ(shownPrice(std::nullopt), "-");
  EXPECT_EQ(priceName({0, 3, PriceKind::Offer, {}}), "Offerta 3");
  EXPECT_EQ(priceName({0, 0, PriceKind::Price, {}}), "Listino 0");
  EXPECT_EQ(priceName({0, 0, PriceKind::Option, {}}), "Variante");
}

}  // namespace
}  // namespace kv::test
