#include "import/accounting/accounting_price.h"

#include <cmath>
#include <string>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {
namespace {

__extension__ using WideCount = __int128;

constexpr int priceDecimals = 8;
constexpr double priceScale = 1e8;
constexpr int percentDecimals = 4;
constexpr double percentScale = 1e4;
constexpr std::int64_t wholePercent = 1'000'000;  // 100 percent
// Units of the product, 1e-8 of the price times 1e-6 of the rate, in one hundredth.
constexpr WideCount unitsOfCent = 1'000'000'000'000;
constexpr double mostPrice = 9e10;
constexpr double mostPercent = 1e6;
constexpr std::int64_t centCount = 100;  // ten-thousandths in one hundredth

std::optional<double> numberOf(const Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr) return asNumber(value);
  if (trim(*text).empty()) return 0.0;
  return toNumber(*text);
}

WideCount roundedToEven(WideCount count, WideCount unit) {
  const bool negative = count < 0;
  const WideCount size = negative ? -count : count;
  WideCount quotient = size / unit;
  const WideCount twice = 2 * (size % unit);
  if (twice > unit || (twice == unit && quotient % 2 == 1)) ++quotient;
  return negative ? -quotient : quotient;
}

}  // namespace

std::optional<Money> importedPrice(const Value& price, const Value& vat) {
  const auto amount = numberOf(price), percent = numberOf(vat);
  if (!amount || !percent) return std::nullopt;
  if (!(std::abs(*amount) < mostPrice) || !(std::abs(*percent) < mostPercent)) return std::nullopt;
  const std::int64_t units = std::llround(roundHalfEven(*amount, priceDecimals) * priceScale);
  const std::int64_t rate = wholePercent + std::llround(roundHalfEven(*percent, percentDecimals) * percentScale);
  const WideCount cents = roundedToEven(WideCount{units} * rate, unitsOfCent);
  constexpr std::int64_t mostCents = std::int64_t{9'000'000'000'000'000};
  if (cents > mostCents || cents < -mostCents) return std::nullopt;
  return Money::ofTenThousandths(static_cast<std::int64_t>(cents) * centCount);
}

}  // namespace kv
