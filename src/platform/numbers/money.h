#pragma once
// Money: fixed point with four decimals, held as a 64-bit count of ten-thousandths, so that sums are exact over the
// whole range of -922,337,203,685,477.5808 to 922,337,203,685,477.5807.

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kv {

class Money {
 public:
  constexpr Money() = default;
  static constexpr Money ofTenThousandths(std::int64_t count) { return Money(count); }
  static constexpr Money ofUnits(std::int64_t units) { return Money(units * 10000); }
  /// The exact binary value, rounded half to even at the fourth decimal; empty when out of range or not a number.
  static std::optional<Money> of(double value);
  /// Reads "1234.5", " -.25", "1E+03"; decimals beyond the fourth are rounded half to even, digit by digit and not
  /// through a double. Empty when it is no number or is out of range.
  static std::optional<Money> parse(std::string_view text);

  constexpr std::int64_t tenThousandths() const { return count_; }
  double toDouble() const { return static_cast<double>(count_) / 10000.0; }
  constexpr auto operator<=>(const Money&) const = default;

 private:
  constexpr explicit Money(std::int64_t count) : count_(count) {}
  std::int64_t count_ = 0;
};

/// Sum; empty when out of range.
std::optional<Money> add(Money a, Money b);
/// Product of money and a rate: computed in double precision, rounded to single precision, then brought to four
/// decimals (half to even). Empty when out of range.
std::optional<Money> multiplyThroughSingle(Money amount, float rate);

}  // namespace kv
