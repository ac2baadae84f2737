#include "commerce/prices/price_rule.h"

#include <algorithm>

#include "platform/numbers/number_format.h"

namespace kv {
namespace {

constexpr double mostPercent = 100;

/// A count rounded to a multiple of `unit`, a tie to the even multiple.
std::int64_t roundedCount(std::int64_t count, std::int64_t unit) {
  std::int64_t whole = count / unit;
  const std::int64_t rest = count % unit;
  const std::int64_t twice = 2 * (rest < 0 ? -rest : rest);
  if (twice > unit || (twice == unit && whole % 2 != 0)) whole += count < 0 ? -1 : 1;
  return whole * unit;
}

constexpr std::int64_t cent = 100;    // in ten-thousandths
constexpr std::int64_t unit = 10000;  // in ten-thousandths

}  // namespace

PriceRule ruleOfPercentage(double percentage, bool whole) {
  return {std::max(0.0F, static_cast<float>(percentage / mostPercent + 1)), whole};
}

std::optional<double> readPercentage(std::string_view text) {
  const auto number = toNumber(text);
  if (!number || *number < -mostPercent || *number > mostPercent) return std::nullopt;
  return number;
}

bool isTypedPercentage(std::string_view text, char decimalSeparator) {
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
  int separators = 0;
  for (const char character : text) {
    if (character == decimalSeparator) {
      ++separators;
    } else if (character < '0' || character > '9') {
      return false;
    }
  }
  return separators <= 1;
}

Money Trasforma(std::optional<Money> price, const PriceRule& rule) {
  if (!price) return {};
  const auto product = multiplyThroughSingle(*price, rule.factor);
  return product ? roundedPrice(*product, rule.whole) : Money();
}

Money roundedPrice(Money price, bool whole) {
  std::int64_t count = roundedCount(price.tenThousandths(), cent);
  if (whole) count = roundedCount(count, unit);
  return Money::ofTenThousandths(count);
}

bool isBeyondMoney(std::optional<Money> price, const PriceRule& rule) {
  return price && !multiplyThroughSingle(*price, rule.factor);
}

}  // namespace kv
