#include "commerce/prices/lowest_price.h"

#include <algorithm>
#include <cmath>

namespace kv {
namespace {

constexpr double secondsOfDay = 86400;

/// How many states come before the reduction.
std::size_t statesBefore(std::span<const PriceState> states) {
  std::size_t count = states.size();
  while (count > 0 && states[count - 1].reduced && states[count - 1].price) --count;
  return count;
}

int daysFrom(double since, double until) {
  const double days = std::ceil((until - since) / secondsOfDay);
  return static_cast<int>(std::clamp(days, 1.0, static_cast<double>(daysBeforeReduction)));
}

}  // namespace

std::optional<LowestPrice> lowestBefore(std::span<const PriceState> states, double now) {
  const std::size_t before = statesBefore(states);
  const double reduction = before < states.size() ? states[before].since : now;
  const double window = reduction - daysBeforeReduction * secondsOfDay;
  std::optional<LowestPrice> lowest;
  double since = reduction;
  double until = reduction;
  for (std::size_t i = before; i > 0 && until > window; --i) {
    const PriceState& state = states[i - 1];
    if (state.price && state.since < until) {
      if (!lowest || *state.price < lowest->price) lowest = LowestPrice{*state.price, 0};
      since = state.since;
    }
    until = state.since;
  }
  if (lowest) lowest->days = daysFrom(since, reduction);
  return lowest;
}

}  // namespace kv
