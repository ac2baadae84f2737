#pragma once
// Money: fixed point with four decimals, held as a 64-bit count of ten-thousandths, so that sums are exact over the
// whole range of -922,337,203,685,477.5808 to 922,337,203,685,477.5807.

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kv {

/// An amount of money in the shop's currency, which is not part of the value. Zero by default.
class Money {
 public:
  constexpr Money() = default;
  /// The amount of `count` ten-thousandths: 12345 is 1.2345.
  static constexpr Money ofTenThousandths(std::int64_t count) { return Money(count); }
  /// A whole amount: 3 is 3.0000. `units` is within the range of Money.
  static constexpr Money ofUnits(std::int64_t units) { return Money(units * 10000); }
  /// The exact binary value, rounded half to even at the fourth decimal; empty when out of range or not a number.
  static std::optional<Money> of(double value);
  /// Reads "1234.5", " -.25", "1E+03"; decimals beyond the fourth are rounded half to even, digit by digit and not
  /// through a double. Empty when it is no number or is out of range.
  static std::optional<Money> parse(std::string_view text);

  /// The amount as a count of ten-thousandths, exact.
  constexpr std::int64_t tenThousandths() const { return count_; }
  /// The nearest double, in units. Not exact for amounts of more than 15 digits.
  double toDouble() const { return static_cast<double>(count_) / 10000.0; }
  /// Amounts compare as numbers.
  constexpr auto operator<=>(const Money&) const = default;

 private:
  constexpr explicit Money(std::int64_t count) : count_(count) {}
  std::int64_t count_ = 0;  // of ten-thousandths
};

/// Sum; empty when out of range.
std::optional<Money> add(Money a, Money b);
/// Product of money and a rate: computed in double precision, rounded to single precision, then brought to four
/// decimals (half to even). Empty when out of range.
std::optional<Money> multiplyThroughSingle(Money amount, float rate);

}  // namespace kv
