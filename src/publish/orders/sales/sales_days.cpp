#include "publish/orders/sales/sales_days.h"

#include <array>
#include <cstdio>

#include "publish/orders/values/order_texts.h"

namespace kv {
namespace {

constexpr std::chrono::days daysOfWeek(7);

std::optional<int> numberAt(std::string_view text, std::size_t at, std::size_t count) {
  if (text.size() < at + count) return std::nullopt;
  int value = 0;
  for (const char c : text.substr(at, count)) {
    if (c < '0' || c > '9') return std::nullopt;
    constexpr int ten = 10;
    value = value * ten + (c - '0');
  }
  return value;
}

std::string shownDay(std::chrono::sys_days day) { return orderDate(dayText(day), false); }

std::chrono::sys_days firstOfMonth(std::chrono::sys_days day) {
  const std::chrono::year_month_day date(day);
  return date.year() / date.month() / 1;
}
std::chrono::sys_days firstOfYear(std::chrono::sys_days day) {
  return std::chrono::year_month_day(day).year() / std::chrono::January / 1;
}

SalesSpan closedSpan(std::chrono::sys_days from, std::chrono::sys_days to) { return {dayText(from), dayText(to)}; }

}  // namespace

std::optional<std::chrono::sys_days> dayOf(std::string_view text) {
  const auto year = numberAt(text, 0, 4), month = numberAt(text, 5, 2), day = numberAt(text, 8, 2);
  if (!year || !month || !day || text[4] != '-' || text[7] != '-') return std::nullopt;
  const std::chrono::year_month_day date(std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day)));
  if (!date.ok()) return std::nullopt;
  return std::chrono::sys_days(date);
}

std::string dayText(std::chrono::sys_days day) {
  const std::chrono::year_month_day date(day);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return text.data();
}

std::chrono::sys_days startOfTime(std::chrono::sys_days day, SalesBy by) {
  if (by == SalesBy::Week) return day - (std::chrono::weekday(day) - std::chrono::Monday);
  return by == SalesBy::Month ? firstOfMonth(day) : day;
}

std::chrono::sys_days nextTime(std::chrono::sys_days start, SalesBy by) {
  if (by == SalesBy::Month) return std::chrono::year_month_day(start) + std::chrono::months(1);
  return start + (by == SalesBy::Week ? daysOfWeek : std::chrono::days(1));
}

std::string timeLabel(std::chrono::sys_days start, SalesBy by) {
  constexpr std::array names{"gennaio", "febbraio", "marzo",     "aprile",  "maggio",   "giugno",
                             "luglio",  "agosto",   "settembre", "ottobre", "novembre", "dicembre"};
  if (by == SalesBy::Week)
    return "dal " + shownDay(start) + " al " + shownDay(start + daysOfWeek - std::chrono::days(1));
  if (by != SalesBy::Month) return shownDay(start);
  const std::chrono::year_month_day date(start);
  return std::string(names.at(static_cast<unsigned>(date.month()) - 1)) + " " +
         std::to_string(static_cast<int>(date.year()));
}

SalesSpan spanOf(SalesPeriod period, std::chrono::sys_days today) {
  constexpr std::chrono::days lastDays(30);
  const std::chrono::sys_days month = firstOfMonth(today), year = firstOfYear(today);
  switch (period) {
    case SalesPeriod::LastDays:
      return closedSpan(today - lastDays + std::chrono::days(1), today);
    case SalesPeriod::ThisMonth:
      return closedSpan(month, std::chrono::sys_days(std::chrono::year_month_day(month) + std::chrono::months(1)) -
                                   std::chrono::days(1));
    case SalesPeriod::LastMonth:
      return closedSpan(std::chrono::year_month_day(month) - std::chrono::months(1), month - std::chrono::days(1));
    case SalesPeriod::ThisYear:
      return closedSpan(year, std::chrono::sys_days(std::chrono::year_month_day(year) + std::chrono::years(1)) -
                                  std::chrono::days(1));
    case SalesPeriod::LastYear:
      return closedSpan(std::chrono::year_month_day(year) - std::chrono::years(1), year - std::chrono::days(1));
    default:
      return {};
  }
}

std::string_view periodName(SalesPeriod period) {
  constexpr std::string_view names[] = {"Ultimi 30 giorni", "Questo mese", "Mese scorso",   "Quest'anno",
                                        "Anno scorso",      "Tutto",       "Dal ... al ..."};
  return names[static_cast<std::size_t>(period)];
}

}  // namespace kv
