#pragma once
// The price that a visitor pays, VAT included, beside the net one that the catalogue stores.

#include <optional>
#include <string>
#include <string_view>

namespace kv {

/// The price with VAT, rounded to two decimals. Both texts as the store has them; `percent`: the department's VAT,
/// "22". Computed as the pages compute it, through single precision. None when there is no price or no VAT, or when one
/// of them is no number.
std::optional<double> numberWithVat(std::string_view price, std::string_view percent);

/// The same with its two decimals, "17.90"; empty where there is none.
std::string priceWithVat(std::string_view price, std::string_view percent);

}  // namespace kv
