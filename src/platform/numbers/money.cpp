#include "platform/numbers/money.h"

#include <cmath>
#include <limits>

#include "platform/numbers/decimal.h"
#include "platform/text/text.h"

namespace kv {
namespace {

__extension__ using Wide = __int128;

// value times 2 to the power -shift, a tie to the even number. Exact for |value| < 2^126.
Wide shiftedHalfEven(Wide value, int shift) {
  if (shift > 120) return 0;
  const Wide unit = Wide{1} << shift;
  Wide whole = value >> shift;  // rounds down, so the rest isn't negative
  const Wide rest = value - whole * unit;
  const Wide half = unit / 2;
  if (rest > half || (rest == half && (whole & 1) != 0)) ++whole;
  return whole;
}

constexpr int ten = 10;

/// Puts digits at the end of a number; false when one of them is none.
bool appendDigits(std::int64_t& count, std::string_view digits) {
  for (const char c : digits) {
    if (c < '0' || c > '9') return false;
    count = count * ten + (c - '0');
  }
  return true;
}

constexpr std::size_t mostDigits = 14, decimals = 4;

bool hasPlainLengths(std::string_view whole, std::string_view part) {
  return !whole.empty() && whole.size() <= mostDigits && part.size() <= decimals;
}

/// The ten-thousandths of what most amounts are: digits with at most four decimals. Nothing for any other text.
std::optional<std::int64_t> plainCount(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative) text.remove_prefix(1);
  const std::size_t point = std::min(text.find('.'), text.size());
  const std::string_view whole = text.substr(0, point);
  const std::string_view part = text.substr(std::min(point + 1, text.size()));
  const bool endsAtPoint = part.empty() && point < text.size();
  if (endsAtPoint || !hasPlainLengths(whole, part)) return std::nullopt;
  std::int64_t count = 0;
  if (!(appendDigits(count, whole) && appendDigits(count, part))) return std::nullopt;
  for (std::size_t at = part.size(); at < decimals; ++at) count *= ten;
  return isNegative ? -count : count;
}

}  // namespace

std::optional<Money> Money::of(double value) {
  constexpr double beyond = 1e15;  // more than the range; keeps the integers below it small
  if (!(std::abs(value) < beyond)) return std::nullopt;
  int exponent = 0;
  constexpr int bits = std::numeric_limits<double>::digits;
  const auto mantissa = static_cast<std::int64_t>(std::ldexp(std::frexp(value, &exponent), bits));
  // The value is mantissa * 2^(exponent - bits) to the last bit, and exponent is at most 50 here.
  const Wide count = shiftedHalfEven(Wide{mantissa} * 10000, bits - exponent);
  if (count > std::numeric_limits<std::int64_t>::max() || count < std::numeric_limits<std::int64_t>::min()) {
    return std::nullopt;
  }
  return Money(static_cast<std::int64_t>(count));
}

std::optional<Money> Money::parse(std::string_view text) {
  text = trim(text);
  if (const auto plain = plainCount(text)) return Money(*plain);
  const ScannedNumber scanned = scanNumber(text, ".");
  if (scanned.length == 0 || scanned.length != text.size()) return std::nullopt;
  const std::optional<std::int64_t> count = toTenThousandths(scanned.number);
  if (!count) return std::nullopt;
  return Money(*count);
}

std::optional<Money> add(Money a, Money b) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(a.tenThousandths(), b.tenThousandths(), &sum)) return std::nullopt;
  return Money::ofTenThousandths(sum);
}

std::optional<Money> multiplyThroughSingle(Money amount, float rate) {
  const double product = amount.toDouble() * static_cast<double>(rate);
  if (!(std::abs(product) <= static_cast<double>(std::numeric_limits<float>::max()))) return std::nullopt;
  return Money::of(static_cast<double>(static_cast<float>(product)));
}

}  // namespace kv
