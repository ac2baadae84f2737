#pragma once
// The history of published prices, as far as the shop's folder is concerned: its rows are
// commerce/prices/price_history.h.

#include <string_view>

namespace kv {

/// The file of a shop folder that holds what was published at which price, by the numbers of articles.
inline constexpr std::string_view priceHistoryFile = "prezzi.mdb";

}  // namespace kv
