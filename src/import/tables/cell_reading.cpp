#include "import/tables/cell_reading.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "import/sheets/sheet_number.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {
namespace {

// As Italian, English, French and German sheets have them.
constexpr std::array<std::string_view, 12> yesWords{"1",   "sì", "si",   "s",   "vero", "true",
                                                    "yes", "x",  "vrai", "oui", "wahr", "ja"};
constexpr std::array<std::string_view, 11> noWords{"0", "no",   "n",   "falso",  "false", "-",
                                                   "f", "faux", "non", "falsch", "nein"};
constexpr double highestPercent = 100;

CellValue refused(std::string why) { return {Null{}, std::move(why)}; }
std::string quoted(std::string_view text) {
  constexpr std::size_t most = 40;
  return "\"" + beginningOf(text, most) + "\"";
}

std::optional<float> singleOf(std::string_view digits) {
  float number = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (read.ec != std::errc() || read.ptr != digits.data() + digits.size()) return std::nullopt;
  return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<std::int64_t> wholeOf(std::string_view digits) {
  std::int64_t number = 0;
  // A sheet may know whole numbers as "3.0" alone.
  const std::size_t point = std::min(digits.find('.'), digits.size());
  const bool isWhole = digits.find_first_not_of('0', std::min(point + 1, digits.size())) == std::string_view::npos;
  const auto read = std::from_chars(digits.data(), digits.data() + point, number);
  if (!isWhole || read.ec != std::errc() || read.ptr != digits.data() + point) return std::nullopt;
  return number;
}

std::int64_t mostOf(ColumnType type) {
  constexpr std::int64_t byte = 255, small = 32767, usual = 2147483647;
  return type == ColumnType::Byte ? byte : type == ColumnType::Int ? small : usual;
}

/// Numbers as an export writes them: every digit that the column holds.
std::string singleText(float number) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed).ptr;
  return {text.data(), end};
}

/// A number with "." for decimals as the merchant writes it.
std::string withComma(std::string number) {
  std::ranges::replace(number, '.', ',');
  return number;
}

std::string moneyText(Money amount) {
  constexpr std::int64_t unit = 10000;
  const std::int64_t count = amount.tenThousandths();
  const bool isNegative = count < 0;
  const std::uint64_t size = isNegative ? 0 - static_cast<std::uint64_t>(count) : static_cast<std::uint64_t>(count);
  std::string text = (isNegative ? "-" : "") + std::to_string(size / unit);
  if (size % unit == 0) return text;
  std::string decimals = std::to_string(unit + size % unit).substr(1);
  decimals.erase(decimals.find_last_not_of('0') + 1);
  return text + "." + decimals;
}

template <std::size_t size>
bool isAmong(const std::array<std::string_view, size>& words, std::string_view text) {
  return std::ranges::any_of(words, [&](auto word) { return equalsIgnoringCase(word, text); });
}

/// Whether a formula failed in the cell, which shows this instead of a text.
bool isFailedFormula(std::string_view text) {
  constexpr std::array<std::string_view, 12> shown{"#N/A",    "#N/D",   "#REF!",  "#RIF!",  "#VALUE!", "#VALORE!",
                                                   "#DIV/0!", "#NAME?", "#NOME?", "#NULL!", "#NULLO!", "#NUM!"};
  constexpr std::size_t digits = 3;
  const bool isNumbered = text.starts_with("Err:") && text.size() == std::string_view("Err:").size() + digits;
  return isNumbered || isAmong(shown, text);
}

bool hasLineEnds(std::string_view text) {
  return text.find('\n') != std::string_view::npos || text.find('\r') != std::string_view::npos;
}

std::string withCrLf(std::string_view text) {
  if (!hasLineEnds(text)) return std::string(text);
  return replaceAll(replaceAll(replaceAll(text, "\r\n", "\n"), "\r", "\n"), "\n", "\r\n");
}

/// Whether two texts are equal; their line ends come back from some programs as LF alone.
bool isSameText(std::string_view a, std::string_view b) { return a == b || withCrLf(a) == withCrLf(b); }

/// Whether a cell holds nothing for a column: spaces count in texts alone.
bool isNothing(const TableColumn& column, std::string_view text) {
  if (text.empty()) return true;
  const bool keepsSpaces = column.field == CellField::Text || column.field == CellField::Lines;
  return !keepsSpaces && text.front() == ' ' && trim(text).empty();
}

/// The value of a column of whole numbers. text: the cell as it was read; digits: its number.
CellValue readWhole(const TableColumn& column, std::string_view text, std::string_view digits) {
  const auto number = wholeOf(digits);
  if (!number) return refused(column.italian + ": " + quoted(text) + " non è un numero intero");
  if (std::abs(*number) > mostOf(column.type)) {
    return refused(column.italian + ": " + std::string(digits) + " è troppo grande");
  }
  return {*number, {}};
}

/// The value of a flag, or of a mark, which is stored as ".".
CellValue readFlag(const TableColumn& column, std::string_view text) {
  const auto flag = yesOrNo(text);
  if (!flag) return refused(column.italian + ": " + quoted(text) + " non è né sì né no");
  if (column.field == CellField::Mark) return {std::string(*flag ? "." : ""), {}};
  return {*flag, {}};
}

}  // namespace

std::string beginningOf(std::string_view text, std::size_t most) {
  const std::string_view start = firstCharacters(text, most);
  return std::string(start) + (start.size() < text.size() ? "..." : "");
}

std::optional<bool> yesOrNo(std::string_view text) {
  if (text == "0" || text == "1") return text == "1";
  text = trim(text);
  if (text.empty() || isAmong(noWords, text)) return false;
  if (isAmong(yesWords, text)) return true;
  return std::nullopt;
}

std::string shownAmount(Money amount) { return withComma(formatNumber(amount, "0.00##")); }

bool isNumberField(CellField field) {
  return field == CellField::Money || field == CellField::Percent || field == CellField::Number ||
         field == CellField::Whole;
}

std::optional<std::string_view> CellReader::digitsOf(const SheetCell& cell, std::string& kept) const {
  if (cell.isNumber) return cell.text;
  if (const auto digits = simpleNumber(cell.text, signs_.decimalSeparator, kept)) return digits;
  auto number = sheetNumber(cell.text, signs_);
  if (!number) return std::nullopt;
  kept = std::move(*number);
  return kept;
}

CellValue CellReader::readNumber(const TableColumn& column, const SheetCell& cell) const {
  std::string kept;
  const auto digits = digitsOf(cell, kept);
  const auto none = [&] { return refused(column.italian + ": " + quoted(cell.text) + " non è un numero"); };
  if (!digits) return none();
  if (!column.isSigned && digits->starts_with('-'))
    return refused(column.italian + ": " + std::string(*digits) + " è negativo");
  if (column.field == CellField::Money) {
    const auto amount = Money::parse(*digits);
    return amount ? CellValue{*amount, {}} : none();
  }
  if (column.field == CellField::Whole) return readWhole(column, cell.text, *digits);
  const auto number = singleOf(*digits);
  if (!number) return none();
  if (column.field == CellField::Percent && *number > highestPercent) {
    return refused(column.italian + ": " + std::string(*digits) + " è più di 100");
  }
  return {static_cast<double>(*number), {}};
}

CellValue CellReader::readText(const TableColumn& column, std::string_view text) const {
  if (isFailedFormula(text)) return refused(column.italian + ": " + quoted(text) + " è l'errore di una formula");
  std::string value = column.field == CellField::Lines ? withCrLf(text) : std::string(text);
  if (column.size > 0 && value.size() > column.size && characterCount(value) > column.size) {
    return refused(column.italian + ": più di " + std::to_string(column.size) + " caratteri");
  }
  return {std::move(value), {}};
}

CellValue CellReader::readNamed(const TableColumn& column, std::string_view text) const {
  const bool isDepartment = column.field == CellField::Department;
  CatalogueName found = isDepartment ? names_.department(text) : names_.variant(text);
  // Exports of shop programs name several departments; the first one counts.
  if (isDepartment && found.ID.empty()) found = names_.department(text.substr(0, text.find_first_of(",|;")));
  const std::string what = isDepartment ? "Il reparto " : "La variante ";
  if (found.ID.empty()) return refused(what + quoted(text) + " non esiste");
  if (found.isAmbiguous) return refused(what + quoted(text) + " c'è più volte");
  if (isDepartment) return {std::move(found.ID), {}};
  return {wholeOf(found.ID).value_or(0), {}};
}

CellValue CellReader::read(const TableColumn& column, const SheetCell& cell) const {
  if (column.field == CellField::Flag || column.field == CellField::Mark) return readFlag(column, cell.text);
  if (isNothing(column, cell.text)) return {};
  switch (column.field) {
    case CellField::Money:
    case CellField::Percent:
    case CellField::Number:
    case CellField::Whole:
      return readNumber(column, cell);
    case CellField::Department:
    case CellField::Variant:
    case CellField::OwnVariant:
      return readNamed(column, cell.text);
    default:
      return readText(column, cell.text);
  }
}

std::string CellReader::refusal(const TableColumn& column, const SheetCell& cell) const {
  const bool isText = column.field == CellField::Text || column.field == CellField::Lines;
  const bool isLong = column.size > 0 && (cell.text.size() > column.size || hasLineEnds(cell.text));
  const bool mayRefuse = !isText || isLong || isFailedFormula(cell.text);
  return mayRefuse ? read(column, cell).refusal : std::string();
}

std::string CellReader::shown(const TableColumn& column, const Statement& row, int index) const {
  if (row.isNull(index)) return {};
  switch (column.field) {
    case CellField::Money:
      return moneyText(row.money(index));
    case CellField::Percent:
    case CellField::Number:
      return singleText(row.single(index));
    case CellField::Whole:
      return std::to_string(row.integer(index));
    case CellField::Flag:
      return row.flag(index) ? "1" : "0";
    case CellField::Mark:
      return row.text(index).empty() ? "0" : "1";
    case CellField::Department:
    case CellField::OwnPath:
      return std::string(names_.pathOf(row.text(index)));
    case CellField::Variant:
    case CellField::OwnVariant:
      return std::string(names_.variantName(row.integer(index)));
    default:
      return std::string(row.text(index));
  }
}

std::string CellReader::plainValue(const TableColumn& column, const Value& value) const {
  switch (column.field) {
    case CellField::Department:
      return std::string(names_.pathOf(asText(value)));
    case CellField::Variant:
      return std::string(names_.variantName(asInteger(value)));
    case CellField::Money:
      return shownAmount(asMoney(value));
    case CellField::Whole:
      return std::to_string(asInteger(value));
    case CellField::Flag:
      return asFlag(value) ? "sì" : "no";
    case CellField::Mark:
      return asText(value).empty() ? "no" : "sì";
    case CellField::Percent:
    case CellField::Number:
      return withComma(singleText(static_cast<float>(asNumber(value))));
    default:
      return asText(value);
  }
}

std::string CellReader::plain(const TableColumn& column, const SheetCell& cell) const {
  const bool isFlag = column.field == CellField::Flag || column.field == CellField::Mark;
  const bool isName = column.field == CellField::Department || column.field == CellField::Variant;
  if (!isFlag && isNothing(column, cell.text)) return {};
  if (!isFlag && !isName && !isNumberField(column.field)) return std::string(cell.text);
  const CellValue value = read(column, cell);
  if (!value.refusal.empty()) return std::string(cell.text);
  return isNull(value.value) ? std::string() : plainValue(column, value.value);
}

std::optional<bool> CellReader::isSameShown(const TableColumn& column, const Statement& row, int index,
                                            const SheetCell& cell) const {
  switch (column.field) {
    case CellField::RowKey:
    case CellField::OwnPath:
      return true;
    case CellField::Picture:
      return isSameText(row.text(index), cell.text) ||
             (isNothing(column, row.text(index)) && isNothing(column, cell.text));
    case CellField::Text:
    case CellField::Lines:
      return isSameText(row.text(index), cell.text);
    case CellField::Flag:
      return yesOrNo(cell.text) == row.flag(index);
    case CellField::Mark:
      return yesOrNo(cell.text) == !row.text(index).empty();
    case CellField::Department:
    case CellField::Variant:
    case CellField::OwnVariant:
      return isSameText(shown(column, row, index), cell.text) ? std::optional(true) : std::nullopt;
    default:
      return std::nullopt;
  }
}

bool CellReader::isSame(const TableColumn& column, const Statement& row, int index, const SheetCell& cell) const {
  if (const auto same = isSameShown(column, row, index, cell)) return *same;
  const CellValue value = read(column, cell);
  if (!value.refusal.empty()) return false;
  if (isNull(value.value) || row.isNull(index)) return isNull(value.value) && row.isNull(index);
  if (column.field == CellField::Money) return asMoney(value.value) == row.money(index);
  if (column.field == CellField::Department) return equalsIgnoringCase(asText(value.value), row.text(index));
  const bool isSingle = column.field == CellField::Percent || column.field == CellField::Number;
  return isSingle ? static_cast<float>(asNumber(value.value)) == row.single(index)
                  : asInteger(value.value) == row.integer(index);
}

std::string CellReader::keyText(const TableColumn& column, const SheetCell& cell) const {
  if (column.field == CellField::Department || column.field == CellField::OwnPath) return plainPath(cell.text);
  return foldCase(trim(cell.text));
}

std::string CellReader::keyText(const TableColumn& column, const Statement& row, int index) const {
  const std::string text = shown(column, row, index);
  return keyText(column, SheetCell{text});
}

}  // namespace kv
