#pragma once
// Prices of the accounting package as amounts of the shop: VAT added where it is wanted, two decimals.

#include <optional>

#include "platform/database/value.h"
#include "platform/numbers/money.h"

namespace kv {

/// A price as it is imported: with `vat` percent added, rounded to two decimals, a tie of the exact product to the even
/// digit. Null and an empty text count as 0. Empty when either is a text that is no number, or the amount is out of
/// range (beyond some 90,000,000,000.00 before VAT). Prices count to eight decimals, percents to four.
std::optional<Money> importedPrice(const Value& price, const Value& vat);

}  // namespace kv
