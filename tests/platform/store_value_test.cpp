// Fields as text, number, money and flag.

#include <gtest/gtest.h>

#include "platform/database/value.h"

namespace kv {
namespace {

TEST(StoreValue, ANullReadsAsEmptyAsZeroAndAsFalse) {
  const Value value = Null{};
  EXPECT_EQ(asText(value), "");
  EXPECT_EQ(asNumber(value), 0);
  EXPECT_EQ(asInteger(value), 0);
  EXPECT_EQ(asMoney(value), Money());
  EXPECT_FALSE(asFlag(value));
}

TEST(StoreValue, AFlagReadsAsOneOrZero) {
  EXPECT_EQ(asText(Value(true)), "1");
  EXPECT_EQ(asText(Value(false)), "0");
  EXPECT_EQ(asInteger(Value(true)), 1);
}

TEST(StoreValue, ASingleReadAsADoubleShowsTheDigitsOfASingle) {
  EXPECT_EQ(asText(Value(static_cast<double>(0.1F))), ".1");
  EXPECT_EQ(asText(Value(static_cast<double>(19.6F))), "19.6");
  EXPECT_EQ(asText(Value(0.1)), ".1");
  EXPECT_EQ(asText(Value(16777216.0)), "16777216");
}

TEST(StoreValue, MoneyIsExactAtBothEndsOfItsRange) {
  const Money most = Money::ofTenThousandths(INT64_MAX);
  const Money least = Money::ofTenThousandths(INT64_MIN);
  EXPECT_EQ(asText(Value(most)), "922337203685477.5807");
  EXPECT_EQ(asText(Value(least)), "-922337203685477.5808");
  EXPECT_EQ(asMoney(Value(std::string("922337203685477.5807"))), most);
}

TEST(StoreValue, ATextThatIsNoNumberReadsAsZero) {
  const Value value = std::string("dodici");
  EXPECT_EQ(asNumber(value), 0);
  EXPECT_EQ(asInteger(value), 0);
  EXPECT_EQ(asMoney(value), Money());
  EXPECT_FALSE(asFlag(value));
}

TEST(StoreValue, ATextThatIsANumberReadsAsIt) {
  EXPECT_EQ(asNumber(Value(std::string("2.5"))), 2.5);
  EXPECT_EQ(asInteger(Value(std::string("12"))), 12);
  EXPECT_EQ(asMoney(Value(std::string("12,5"))), Money::ofTenThousandths(125000));
}

TEST(StoreValue, AWholeNumberOfARealOneGoesToTheEvenSide) {
  EXPECT_EQ(asInteger(Value(2.5)), 2);
  EXPECT_EQ(asInteger(Value(3.5)), 4);
  EXPECT_EQ(asInteger(Value(1e300)), 0);
}

}  // namespace
}  // namespace kv
