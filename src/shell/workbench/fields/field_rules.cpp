#include "shell/workbench/fields/field_rules.h"

#include <algorithm>
#include <optional>

#include "platform/numbers/money.h"
#include "platform/numbers/number_form.h"
#include "platform/text/text.h"
#include "shell/workbench/fields/web_address.h"

namespace kv {
namespace {

constexpr std::size_t unlimited = 0;
constexpr int rateDecimals = 6;

std::size_t longest(FieldKind kind) {
  switch (kind) {
    case FieldKind::Code:
    case FieldKind::ShortText:
      return 50;
    case FieldKind::DepartmentTitle:
      return 100;
    case FieldKind::Heading:
      return 200;
    case FieldKind::Link:
      return 255;
    default:
      return unlimited;
  }
}

bool isDigit(std::string_view letter) { return letter.size() == 1 && letter[0] >= '0' && letter[0] <= '9'; }

std::optional<double> numberOf(std::string_view text, char decimalSeparator) {
  return toNumber(storedNumber(text, decimalSeparator));
}

std::string withSeparator(std::string number, char decimalSeparator) {
  std::replace(number.begin(), number.end(), '.', decimalSeparator);
  if (number.starts_with(decimalSeparator)) number.insert(0, 1, '0');
  if (number.starts_with(std::string("-") + decimalSeparator)) number.insert(1, 1, '0');
  return number;
}

/// Money beyond the range becomes the end of the range.
std::string clippedMoney(const std::string& text, char decimalSeparator) {
  const auto number = numberOf(text, decimalSeparator);
  if (!number || Money::parse(storedNumber(text, decimalSeparator))) return text;
  const Money end = *number < 0 ? Money::ofTenThousandths(INT64_MIN) : Money::ofTenThousandths(INT64_MAX);
  return withSeparator(trimmedNumber(end), decimalSeparator);
}

std::string normalMoney(const std::string& text, const std::string& lastGood, char decimalSeparator) {
  const auto money = Money::parse(storedNumber(text, decimalSeparator));
  return money ? withSeparator(trimmedNumber(*money), decimalSeparator) : lastGood;
}

}  // namespace

bool isDecimalKind(FieldKind kind) {
  switch (kind) {
    case FieldKind::Price:
    case FieldKind::Weight:
    case FieldKind::Percent:
    case FieldKind::Amount:
    case FieldKind::Rate:
    case FieldKind::Vat:
      return true;
    default:
      return false;
  }
}

KeyAnswer keyTyped(FieldKind kind, std::string_view letter, char decimalSeparator) {
  const bool isSeparator = letter.size() == 1 && letter[0] == decimalSeparator;
  bool accepted = letter != "|" && letter != "[" && letter != "]";
  if (isDecimalKind(kind)) accepted = isDigit(letter) || isSeparator;
  if (kind == FieldKind::WholeNumber) accepted = isDigit(letter);
  if (kind == FieldKind::Folder) accepted = isFolderKey(letter);
  if ((kind == FieldKind::Price || kind == FieldKind::Weight) && letter == "*") return {true, "000"};
  return {accepted, accepted ? std::string(letter) : std::string()};
}

std::string pasted(FieldKind kind, std::string_view text, char decimalSeparator) {
  std::string kept;
  // Of a number with decimals the integer part is kept, not all of its digits.
  if (kind == FieldKind::WholeNumber) text = text.substr(0, text.find(decimalSeparator));
  while (!text.empty()) {
    const std::string_view letter = firstCharacters(text, 1);
    kept += keyTyped(kind, letter, decimalSeparator).inserted;
    text.remove_prefix(letter.size());
  }
  return kept;
}

std::string changedText(FieldKind kind, const std::string& text, const std::string& lastGood, char decimalSeparator) {
  switch (kind) {
    case FieldKind::Price:
      return clippedMoney(text, decimalSeparator);
    case FieldKind::Percent: {
      const auto number = numberOf(text, decimalSeparator);
      return number && *number > 100 ? "100" : text;
    }
    case FieldKind::Amount:
      return text.empty() || isFieldNumber(text, decimalSeparator) ? text : lastGood;
    case FieldKind::WholeNumber:
      return text.substr(0, text.find_first_of(".,"));
    case FieldKind::SideBySide:
      return text.empty() ? " " : text;
    default:
      return text;
  }
}

std::string leftText(FieldKind kind, const std::string& text, const std::string& lastGood, char decimalSeparator) {
  if (kind == FieldKind::Percent) return isFieldNumber(text, decimalSeparator) ? text : "0";
  if (kind == FieldKind::Amount) return normalMoney(text, lastGood, decimalSeparator);
  if (kind == FieldKind::Folder) return std::string(trim(text));
  const std::size_t most = longest(kind);
  return most == unlimited ? text : std::string(firstCharacters(text, most));
}

bool isFieldNumber(std::string_view text, char decimalSeparator) {
  return isNumeric(storedNumber(text, decimalSeparator));
}

std::string storedNumber(std::string_view text, char decimalSeparator) {
  std::string stored(trim(text));
  std::replace(stored.begin(), stored.end(), decimalSeparator, '.');
  return stored;
}

std::string shownNumber(std::string_view stored, char decimalSeparator) {
  return withSeparator(std::string(trim(stored)), decimalSeparator);
}

std::string reverseRate(std::string_view text, char decimalSeparator) {
  const auto rate = numberOf(text, decimalSeparator);
  if (!rate || *rate == 0) return {};
  return withSeparator(trimmedNumber(roundHalfAway(1 / *rate, rateDecimals)), decimalSeparator);
}

std::string_view currencySignNote(std::string_view label) {
  if (label.find("€") == std::string_view::npos) return {};
  return "Attenzione: il carattere \"€\" non è supportato da tutti i browser e dalle e-mail,\n"
         "e potrebbe quindi creare problemi.\n\n"
         "Si consiglia di utilizzare invece la notazione estesa \"Euro\" o l'abbreviazione ufficiale \"EUR\".";
}

}  // namespace kv
