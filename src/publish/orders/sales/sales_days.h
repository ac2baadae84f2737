#pragma once
// Days, weeks and months of the sums of sales. Days are texts "yyyy-mm-dd".

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "publish/orders/sales/order_sums.h"

namespace kv {

/// The day at the start of a text; nothing when there is none, or no such day in the calendar.
std::optional<std::chrono::sys_days> dayOf(std::string_view text);
/// A day as "yyyy-mm-dd".
std::string dayText(std::chrono::sys_days day);

/// The first day of the day, the week (from Monday on) or the month in which a day is.
std::chrono::sys_days startOfTime(std::chrono::sys_days day, SalesBy by);
/// The first day of the next one.
std::chrono::sys_days nextTime(std::chrono::sys_days start, SalesBy by);
/// What such a time is called: "31/05/2026", "dal 25/05/2026 al 31/05/2026", "maggio 2026".
std::string timeLabel(std::chrono::sys_days start, SalesBy by);

/// The periods that the window offers, in its order.
enum class SalesPeriod : std::uint8_t { LastDays, ThisMonth, LastMonth, ThisYear, LastYear, Everything, Chosen };
/// From which day to which; empty texts are open ends.
struct SalesSpan {
  std::string from, to;
  friend bool operator==(const SalesSpan&, const SalesSpan&) = default;
};
/// The span of a period, seen from today; the 30 days until today for LastDays, open for Everything and Chosen.
SalesSpan spanOf(SalesPeriod period, std::chrono::sys_days today);
/// What a period is called in the window.
std::string_view periodName(SalesPeriod period);

}  // namespace kv
