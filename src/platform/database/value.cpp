// Fields of a row as text, number, money or flag; and the reverse, what a column holds of a value that is set.

#include <cmath>
#include <limits>
#include <type_traits>

#include "platform/database/engine.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {
namespace {

/// The nearest whole number, a tie to the even one; empty when it is out of the range of 64 bits.
std::optional<std::int64_t> wholeNumber(double value) {
  const double rounded = std::nearbyint(value);
  if (!(rounded >= -0x1p63 && rounded < 0x1p63)) return std::nullopt;
  return static_cast<std::int64_t>(rounded);
}

/// Singles arrive as doubles. A fraction that a single holds exactly is written as one: ".1", not ".100000001490116".
std::string realText(double value) {
  const auto single = static_cast<float>(value);
  if (static_cast<double>(single) == value && value != std::trunc(value)) return trimmedNumber(single);
  return trimmedNumber(value);
}

std::string fieldText(const Null&) { return {}; }
std::string fieldText(bool flag) { return flag ? "1" : "0"; }
std::string fieldText(std::int64_t number) { return trimmedNumber(number); }
std::string fieldText(double number) { return realText(number); }
std::string fieldText(Money amount) { return trimmedNumber(amount); }
std::string fieldText(const std::string& text) { return text; }
std::string fieldText(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

bool isWhole(ColumnType type) {
  return type == ColumnType::Byte || type == ColumnType::Int || type == ColumnType::Long;
}

bool fitsColumn(ColumnType type, std::int64_t number) {
  if (type == ColumnType::Byte) return number >= 0 && number <= 255;
  if (type == ColumnType::Int) return number == static_cast<std::int16_t>(number);
  return number == static_cast<std::int32_t>(number);
}

std::optional<Money> moneyOfText(const std::string& text) {
  if (const auto exact = Money::parse(replaceAll(trim(text), ",", "."))) return exact;
  const auto number = toNumber(text);
  return number ? Money::of(*number) : std::nullopt;
}

/// "YYYY-MM-DD", with " HH:MM:SS" or without.
bool isDateTime(std::string_view text) {
  constexpr std::string_view form = "0000-00-00 00:00:00";
  if (text.size() != form.size() && text.size() != form.find(' ')) return false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool digit = text[at] >= '0' && text[at] <= '9';
    if (form[at] == '0' ? !digit : text[at] != form[at]) return false;
  }
  return true;
}

class ColumnValue {
 public:
  ColumnValue(const ColumnInfo& column, const std::string& where) : column_(column), where_(where) {}

  Result<Value> of(const Value& value) const {
    if (isNull(value)) return value;
    switch (column_.type) {
      case ColumnType::Text:
      case ColumnType::Memo:
        return text(value);
      case ColumnType::DateTime:
        return moment(value);
      case ColumnType::Binary:
      case ColumnType::LongBinary:
        return binary(value);
      default:
        return numeric(value);
    }
  }

 private:
  auto refuse(ErrorKind kind, const char* what) const { return fail(kind, where_, column_.name + ": " + what); }

  Result<Value> text(const Value& value) const {
    std::string field = asText(value);
    if (column_.size > 0 && characterCount(field) > static_cast<std::size_t>(column_.size)) {
      return refuse(ErrorKind::Malformed, "text too long");
    }
    return Value(std::move(field));
  }

  Result<Value> moment(const Value& value) const {
    const auto* field = std::get_if<std::string>(&value);
    if (field == nullptr || !isDateTime(*field)) return refuse(ErrorKind::Malformed, "no date");
    return value;
  }

  Result<Value> binary(const Value& value) const {
    Bytes field;
    if (const auto* bytes = std::get_if<Bytes>(&value)) {
      field = *bytes;
    } else {
      const std::string bytesOfText = asText(value);
      field.assign(bytesOfText.begin(), bytesOfText.end());
    }
    if (column_.size > 0 && field.size() > static_cast<std::size_t>(column_.size)) {
      return refuse(ErrorKind::Malformed, "too many bytes");
    }
    return Value(std::move(field));
  }

  Result<Value> numeric(const Value& value) const {
    if (std::holds_alternative<Bytes>(value)) return refuse(ErrorKind::TextInNumber, "no number");
    const auto* field = std::get_if<std::string>(&value);
    if (field != nullptr && !isNumeric(*field)) return refuse(ErrorKind::TextInNumber, "no number");
    if (column_.type == ColumnType::Bool) return Value(asFlag(value));
    if (column_.type == ColumnType::Money) return money(value);
    if (isWhole(column_.type)) return whole(value);
    return real(asNumber(value));
  }

  Result<Value> money(const Value& value) const {
    std::optional<Money> amount;
    if (const auto* exact = std::get_if<Money>(&value)) amount = *exact;
    if (const auto* field = std::get_if<std::string>(&value)) amount = moneyOfText(*field);
    if (const auto* number = std::get_if<double>(&value)) amount = Money::of(*number);
    if (const auto* flag = std::get_if<bool>(&value)) amount = Money::ofUnits(*flag ? 1 : 0);
    if (const auto* units = std::get_if<std::int64_t>(&value)) amount = Money::parse(std::to_string(*units));
    if (!amount) return refuse(ErrorKind::Malformed, "number out of range");
    return Value(*amount);
  }

  Result<Value> whole(const Value& value) const {
    std::optional<std::int64_t> number;
    if (const auto* exact = std::get_if<std::int64_t>(&value)) {
      number = *exact;
    } else {
      number = wholeNumber(asNumber(value));
    }
    // An automatic key may use all of the engine's 64 bits.
    const bool fits = number && ((column_.attributes & autoIncrement) != 0 || fitsColumn(column_.type, *number));
    if (!fits) return refuse(ErrorKind::Malformed, "number out of range");
    return Value(*number);
  }

  Result<Value> real(double number) const {
    if (column_.type == ColumnType::Single) number = static_cast<double>(static_cast<float>(number));
    if (!std::isfinite(number)) return refuse(ErrorKind::Malformed, "number out of range");
    return Value(number);
  }

  const ColumnInfo& column_;
  const std::string& where_;
};

}  // namespace

std::string asText(const Value& value) {
  return std::visit([](const auto& field) { return fieldText(field); }, value);
}

double asNumber(const Value& value) {
  if (const auto* number = std::get_if<double>(&value)) return *number;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  if (const auto* amount = std::get_if<Money>(&value)) return amount->toDouble();
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
  if (const auto* text = std::get_if<std::string>(&value)) return toNumber(*text).value_or(0);
  return 0;
}

std::int64_t asInteger(const Value& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return *whole;
  return wholeNumber(asNumber(value)).value_or(0);
}

Money asMoney(const Value& value) {
  if (const auto* amount = std::get_if<Money>(&value)) return *amount;
  if (const auto* text = std::get_if<std::string>(&value)) return moneyOfText(*text).value_or(Money());
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    return Money::parse(std::to_string(*whole)).value_or(Money());
  }
  return Money::of(asNumber(value)).value_or(Money());
}

bool asFlag(const Value& value) {
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* amount = std::get_if<Money>(&value)) return *amount != Money();
  return asNumber(value) != 0;
}

namespace engine {

Result<Value> valueForColumn(const ColumnInfo& column, const Value& value, const std::string& where) {
  return ColumnValue(column, where).of(value);
}

}  // namespace engine
}  // namespace kv
