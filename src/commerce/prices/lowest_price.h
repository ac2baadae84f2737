#pragma once
// The lowest price of the time before a reduction, which has to be told beside a reduced price.
// Source: Directive 98/6/EC, article 6a, as inserted by Directive (EU) 2019/2161: the lowest price applied during a
// period of thirty days before the reduction; of a reduction that grows step by step, the price before its first step.

#include <optional>
#include <span>

#include "platform/numbers/money.h"

namespace kv {

/// What an article cost in one price list from a moment on, until the next state.
struct PriceState {
  double since = 0;            ///< seconds since 1970-01-01 00:00 UTC at which the shop began to show it
  std::optional<Money> price;  ///< asked, without VAT; empty: the article had no price or was not in the shop
  bool reduced = false;        ///< less was asked than the list price

  bool operator==(const PriceState&) const = default;
};

/// The lowest price, and in how many days.
struct LowestPrice {
  Money price;   ///< without VAT
  int days = 0;  ///< 30; fewer, at least 1, for an article that was not on sale that long
};

/// The days before a reduction that count.
inline constexpr int daysBeforeReduction = 30;

/// The lowest price of the 30 days before the reduction that is shown at `now` or begins then. It began where an
/// unbroken series of reduced states up to the last one did; at `now` when the last one is not reduced.
/// states: of one article and price list, in the order of time, none after `now`.
/// Empty when nothing was on sale in those days: there is no earlier price to tell.
std::optional<LowestPrice> lowestBefore(std::span<const PriceState> states, double now);

}  // namespace kv
