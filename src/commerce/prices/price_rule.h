#pragma once
// The rule by which a price is changed by a percentage, and how a percentage is typed and read.

#include <optional>
#include <string>
#include <string_view>

#include "platform/numbers/money.h"

namespace kv {

/// The message for a percentage that is no number or out of range.
inline constexpr std::string_view invalidPercentage = "Percentuale non valida (deve essere compresa tra -100 e +100)";

/// What becomes of every price of a run.
struct PriceRule {
  float factor = 1;    ///< 0 or more; single precision, as the percentages of the catalogue are
  bool whole = false;  ///< round prices: to 2 decimals and then once more to none
};

/// The rule of a percentage: its hundredth plus 1, not below 0. -100 makes every price 0.
PriceRule ruleOfPercentage(double percentage, bool whole);

/// Reads a percentage, "." or "," for decimals; empty when it is no number, or below -100, or above +100. An empty text
/// and a sign alone are no numbers.
std::optional<double> readPercentage(std::string_view text);
/// Whether a text is what typing a percentage may lead to: digits, the decimal separator once, a sign in front. An
/// empty text is one.
bool isTypedPercentage(std::string_view text, char decimalSeparator);

/// Trasforma (transform): the price after the change. The product of price and factor is rounded to single precision,
/// then to 2 decimals, half to even, then to none where the rule says so. From some 131,072 on single precision is
/// coarser than a cent: 200000.01 becomes 200000.02 even at 0 %. No price, and a product out of range, become 0.
Money Trasforma(std::optional<Money> price, const PriceRule& rule);
/// A price as every change of prices leaves it: with 2 decimals, or with none, half to even each time.
Money roundedPrice(Money price, bool whole);
/// Whether the product is out of the range of Money.
bool isBeyondMoney(std::optional<Money> price, const PriceRule& rule);

}  // namespace kv
