#include "publish/orders/sales_days.h"

#include <array>
#include <cstdio>

#include "publish/orders/order_texts.h"

namespace kv {
namespace {

using std::chrono::days;
using std::chrono::months;
using std::chrono::sys_days;
using std::chrono::year_month_day;
using std::chrono::years;

constexpr days week(7);

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

std::string shownDay(sys_days day) { return orderDate(dayText(day), false); }

sys_days firstOfMonth(sys_days day) {
  const year_month_day date(day);
  return date.year() / date.month() / 1;
}
sys_days firstOfYear(sys_days day) { return year_month_day(day).year() / std::chrono::January / 1; }

SalesSpan closedSpan(sys_days from, sys_days to) { return {dayText(from), dayText(to)}; }

}  // namespace

std::optional<sys_days> dayOf(std::string_view text) {
  const auto year = numberAt(text, 0, 4), month = numberAt(text, 5, 2), day = numberAt(text, 8, 2);
  if (!year || !month || !day || text[4] != '-' || text[7] != '-') return std::nullopt;
  const year_month_day date(std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                            std::chrono::day(static_cast<unsigned>(*day)));
  if (!date.ok()) return std::nullopt;
  return sys_days(date);
}

std::string dayText(sys_days day) {
  const year_month_day date(day);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return text.data();
}

sys_days startOfTime(sys_days day, SalesBy by) {
  if (by == SalesBy::Week) return day - (std::chrono::weekday(day) - std::chrono::Monday);
  return by == SalesBy::Month ? firstOfMonth(day) : day;
}

sys_days nextTime(sys_days start, SalesBy by) {
  if (by == SalesBy::Month) return year_month_day(start) + months(1);
  return start + (by == SalesBy::Week ? week : days(1));
}

std::string timeLabel(sys_days start, SalesBy by) {
  constexpr std::array names{"gennaio", "febbraio", "marzo",     "aprile",  "maggio",   "giugno",
                             "luglio",  "agosto",   "settembre", "ottobre", "novembre", "dicembre"};
  if (by == SalesBy::Week) return "dal " + shownDay(start) + " al " + shownDay(start + week - days(1));
  if (by != SalesBy::Month) return shownDay(start);
  const year_month_day date(start);
  return std::string(names.at(static_cast<unsigned>(date.month()) - 1)) + " " +
         std::to_string(static_cast<int>(date.year()));
}

SalesSpan spanOf(SalesPeriod period, sys_days today) {
  constexpr days lastDays(30);
  const sys_days month = firstOfMonth(today), year = firstOfYear(today);
  switch (period) {
    case SalesPeriod::LastDays:
      return closedSpan(today - lastDays + days(1), today);
    case SalesPeriod::ThisMonth:
      return closedSpan(month, sys_days(year_month_day(month) + months(1)) - days(1));
    case SalesPeriod::LastMonth:
      return closedSpan(year_month_day(month) - months(1), month - days(1));
    case SalesPeriod::ThisYear:
      return closedSpan(year, sys_days(year_month_day(year) + years(1)) - days(1));
    case SalesPeriod::LastYear:
      return closedSpan(year_month_day(year) - years(1), year - days(1));
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
