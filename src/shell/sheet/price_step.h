#pragma once
// A step of prices, as it is typed over selected cells: "+10 %", "-5", "x1,1".

#include <optional>
#include <string>
#include <string_view>

#include "commerce/prices/price_rule.h"
#include "shell/sheet/sheet_edits.h"

namespace kv {

/// What becomes of a price: it is multiplied, or an amount is added.
struct PriceStep {
  std::optional<PriceRule> product;  ///< of "+10 %" and "x1,1"; none: `added` holds
  Money added;                       ///< of "-5"
  bool whole = false;                ///< the price comes out without decimals
};

/// Reads a step. A percentage needs its sign "%" and is between -100 and +100; a factor begins with "x" or "*" and is 0
/// or more, both with "," or "." for decimals; an amount begins with "+" or "-" and reads as a price that is pasted,
/// "1.250" by the decimal separator. Empty for anything else. `whole`: prices without decimals.
std::optional<PriceStep> readPriceStep(std::string_view text, bool whole, char decimalSeparator);

/// The price after a step: a product as Trasforma() computes it; an amount is added exactly and then rounded to two
/// decimals, half to even, or to none. Never below 0. Empty when it leaves the range of Money.
std::optional<Money> steppedPrice(Money price, const PriceStep& step);

/// What a step would make of cells: those that hold a price and would get another one.
/// Failures: as the store's.
Result<std::vector<CellChange>> priceChanges(Session& session, std::span<const SheetColumn> columns,
                                             std::span<const CellText> cells, const PriceStep& step,
                                             char decimalSeparator);

}  // namespace kv
