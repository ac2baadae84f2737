#include "publish/orders/values/order_texts.h"

#include <limits>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t longestRun = 24;  // characters of a word until it may break
constexpr std::string_view breakHere = "&#8203;";
constexpr unsigned char firstOfC1 = 0xC2;  // of the two bytes of U+0080 to U+009F in UTF-8

bool isDigitAt(std::string_view text, std::size_t at) { return at < text.size() && text[at] >= '0' && text[at] <= '9'; }

/// Whether a text begins as a pattern says, in which 0 means any digit.
bool beginsAs(std::string_view text, std::string_view pattern) {
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == '0' ? !isDigitAt(text, i) : i >= text.size() || text[i] != pattern[i]) return false;
  }
  return true;
}

/// The replacement of a byte in HTML; empty where it stays.
std::string_view escapeOf(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\n':
      return "<br>";
    default:
      return {};
  }
}

/// Whether a character of UTF-8 begins here that only controls: C0, DEL, and C1 of two bytes.
bool isControlAt(std::string_view text, std::size_t at) {
  constexpr unsigned char firstPrinting = 0x20, deleteSign = 0x7F, endOfC1 = 0xA0;
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte < firstPrinting || byte == deleteSign) return true;
  return byte == firstOfC1 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < endOfC1;
}

/// A text with a space for each character that controls; `kept` stays.
std::string withoutControls(std::string_view text, char kept) {
  std::string plain;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == kept || !isControlAt(text, at)) {
      plain += text[at];
      continue;
    }
    plain += ' ';
    const bool isPair = static_cast<unsigned char>(text[at]) == firstOfC1;
    if (isPair) ++at;
  }
  return plain;
}

bool startsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }

}  // namespace

std::string decimalText(Money amount, bool grouped) {
  std::string text = formatNumber(amount, grouped ? "###,###,###,###,##0.00" : "0.00");
  for (char& c : text) {
    if (c == '.') {
      c = ',';
    } else if (c == ',') {
      c = '.';
    }
  }
  return text;
}

std::string amountText(Money amount, std::string_view currency) {
  const std::string_view name = trim(currency);
  return name.empty() ? decimalText(amount) : std::string(name) + "\u00A0" + decimalText(amount);
}

Money lineTotal(const DeskOrderLine& line) {
  std::int64_t count = 0;
  const std::int64_t price = line.price.tenThousandths();
  if (!__builtin_mul_overflow(price, line.quantity, &count)) return Money::ofTenThousandths(count);
  const bool isNegative = (price < 0) != (line.quantity < 0);
  using Limits = std::numeric_limits<std::int64_t>;
  return Money::ofTenThousandths(isNegative ? Limits::min() : Limits::max());
}

std::string orderDate(std::string_view when, bool withTime) {
  if (!beginsAs(when, "0000-00-00")) return std::string(when);
  std::string day;
  day.append(when.substr(8, 2)).append("/").append(when.substr(5, 2)).append("/").append(when.substr(0, 4));
  return withTime && beginsAs(when, "0000-00-00 00:00") ? day.append(when.substr(10, 6)) : day;
}

bool isBetweenDays(const DeskOrder& order, std::string_view from, std::string_view to) {
  constexpr std::size_t dayLength = 10;
  const std::string_view day = std::string_view(order.created).substr(0, dayLength);
  return (from.empty() || day >= from) && (to.empty() || day <= to);
}

std::string orderField(const DeskOrder& order, const std::string& name) {
  const auto found = order.fields.find(name);
  return found == order.fields.end() ? std::string() : found->second;
}

std::string shownTextOf(std::string_view text) {
  constexpr std::size_t longestShown = 500;
  const std::string_view part = firstCharacters(text, longestShown);
  return withoutControls(part, '\n') + (part.size() < text.size() ? "..." : "");
}

std::string shownLineOf(std::string_view text) { return withoutControls(text, ' '); }

std::string textAsHtml(std::string_view text) {
  std::string html;
  std::size_t run = 0;
  for (const char c : text) {
    if (c == '\r') continue;
    if (c == ' ' || c == '\n') {
      run = 0;
    } else if (startsCharacter(c) && run++ == longestRun) {
      html += breakHere;
      run = 1;
    }
    const std::string_view escape = escapeOf(c);
    if (escape.empty()) {
      html += c;
    } else {
      html += escape;
    }
  }
  return html;
}

}  // namespace kv
