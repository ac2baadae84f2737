#include "shell/workbench/fields/field_rules.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "platform/numbers/money.h"
#include "platform/numbers/number_format.h"
#include "platform/text/single_line.h"
#include "platform/text/text.h"
#include "platform/text/typed_notes.h"
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

bool isDigit(std::string_view character) { return character.size() == 1 && character[0] >= '0' && character[0] <= '9'; }

/// Money beyond the range becomes the end of the range.
std::string clippedMoney(const std::string& text, char decimalSeparator) {
  const std::string stored = storedNumber(text, decimalSeparator);
  const auto number = toNumber(stored);
  if (!number || Money::parse(stored)) return text;
  const Money end = *number < 0 ? Money::ofTenThousandths(INT64_MIN) : Money::ofTenThousandths(INT64_MAX);
  return shownNumber(trimmedNumber(end), decimalSeparator);
}

/// Digits with at most one decimal separator, as the keys of a field type it.
bool isTypedNumber(std::string_view text, char decimalSeparator) {
  const auto isDecimal = [&](char c) { return c == decimalSeparator; };
  return std::ranges::any_of(text, [](char c) { return c >= '0' && c <= '9'; }) &&
         std::ranges::all_of(text, [&](char c) { return (c >= '0' && c <= '9') || isDecimal(c); }) &&
         std::ranges::count_if(text, isDecimal) <= 1;
}

/// The text cut to the length of its kind. Articles side by side are never none: a space is the column's "as usual".
std::string cutText(FieldKind kind, const std::string& text) {
  if (kind == FieldKind::Folder) return std::string(trim(text));
  if (kind == FieldKind::SideBySide && text.empty()) return " ";
  const std::size_t most = longest(kind);
  return most == unlimited ? text : std::string(firstCharacters(text, most));
}

Value storedValue(ColumnForm stored, const std::string& text) {
  switch (stored) {
    case ColumnForm::Flag:
      return Value(text == "1");
    case ColumnForm::Lines:
      return Value(replaceAll(text, "\n", "\r\n"));
    case ColumnForm::Index:
      return Value(std::int64_t{std::atoi(text.c_str())});
    default:
      return Value(text);
  }
}

/// A text that a field is left with, read as a number.
struct TypedNumber {
  std::string stored;            ///< as the store takes it
  std::optional<double> number;  ///< none when it isn't one
  bool isEmpty = true;
};

TypedNumber readTyped(const std::string& text, char decimalSeparator) {
  std::string stored = storedNumber(text, decimalSeparator);
  const auto number = toNumber(stored);
  const bool isEmpty = stored.empty();
  return {std::move(stored), number, isEmpty};
}

std::string refusalOf(const FieldForm& form, const std::string& text, const TypedNumber& typed) {
  if (!isNumberKind(form.kind) || typed.isEmpty) return {};
  const std::string quoted = "\"" + text + "\"";
  if (!isTypedNumber(trim(text), form.decimalSeparator)) {
    if (form.kind == FieldKind::Percent || form.kind == FieldKind::Amount) return {};
    return quoted + " non è un numero: è rimasto il valore precedente.";
  }
  if (!form.wholeNumbers || !typed.number || std::trunc(*typed.number) == *typed.number) return {};
  return quoted + " non è un numero intero: è rimasto il valore precedente.";
}

FieldText leftNumber(const FieldForm& form, const std::string& text, const std::string& lastGood, TypedNumber typed) {
  FieldText field;
  field.text = text;
  std::string number = std::move(typed.stored);
  field.valid = typed.number.has_value();
  if (form.kind == FieldKind::Amount) {
    const auto money = Money::parse(number);
    field.text = money ? shownNumber(trimmedNumber(*money), form.decimalSeparator) : lastGood;
    number = storedNumber(field.text, form.decimalSeparator);
    field.valid = isNumeric(number);
  }
  if (form.kind == FieldKind::Percent && !field.valid) {
    if (!typed.isEmpty) field.note = "\"" + text + "\" non è un numero: il valore è ora 0.";
    field.text = number = "0";
    field.valid = true;
  }
  if (form.stored != ColumnForm::Number) {
    field.value = storedValue(form.stored, field.text);
  } else if (form.zeroUnlessNumber && !field.valid) {
    field.value = Value(std::int64_t{0});
  } else {
    field.value = number.empty() ? Value(Null{}) : Value(number);
  }
  return field;
}

/// Whether a character may be typed into a field.
bool isKeyOf(FieldKind kind, std::string_view character, char decimalSeparator) {
  if (kind == FieldKind::WholeNumber) return isDigit(character);
  if (kind == FieldKind::Folder) return isFolderKey(character);
  if (!isDecimalKind(kind)) return character != "|" && character != "[" && character != "]";
  return isDigit(character) || (character.size() == 1 && character[0] == decimalSeparator);
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

KeyAnswer keyTyped(FieldKind kind, std::string_view character, char decimalSeparator) {
  const bool accepted = isKeyOf(kind, character, decimalSeparator);
  if ((kind == FieldKind::Price || kind == FieldKind::Weight) && character == "*") return {true, "000"};
  return {accepted, accepted ? std::string(character) : std::string()};
}

std::string pasted(FieldKind kind, std::string_view text, char decimalSeparator) {
  std::string kept;
  while (!text.empty()) {
    const std::string_view character = firstCharacters(text, 1);
    const bool ofFolder = kind == FieldKind::Folder && (character == "-" || character == ".");
    kept += ofFolder ? std::string(character) : keyTyped(kind, character, decimalSeparator).inserted;
    text.remove_prefix(character.size());
  }
  return kept;
}

bool isNumberKind(FieldKind kind) { return kind == FieldKind::WholeNumber || isDecimalKind(kind); }

NumberReading pastedNumber(FieldKind kind, std::string_view text, char decimalSeparator) {
  if (trim(text).empty()) return {};
  NumberReading reading = readNumber(text, decimalSeparator);
  if (kind == FieldKind::WholeNumber) reading.text = reading.text.substr(0, reading.text.find(decimalSeparator));
  return reading;
}

std::string refusedKeyNote(FieldKind kind, std::string_view character) {
  if (kind == FieldKind::Folder && (character == "-" || character == ".")) {
    return "Il carattere \"" + std::string(character) +
           "\" non si può digitare qui; un testo incollato o una cartella scelta lo conservano.";
  }
  return "Il carattere \"" + std::string(character) + "\" non è ammesso in questo campo.";
}

std::string droppedNote(FieldKind kind, std::string_view text, char decimalSeparator) {
  if (isNumberKind(kind)) return {};
  return droppedNote(text, [&](std::string_view one) { return !pasted(kind, one, decimalSeparator).empty(); });
}

std::string changedText(FieldKind kind, const std::string& text, const std::string& lastGood, char decimalSeparator) {
  switch (kind) {
    case FieldKind::Price:
    case FieldKind::Weight:
      return clippedMoney(text, decimalSeparator);
    case FieldKind::Percent: {
      const auto number = toNumber(storedNumber(text, decimalSeparator));
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

FieldText leftField(const FieldForm& form, const std::string& text, const std::string& lastGood) {
  const bool isNumber =
      form.stored == ColumnForm::Number || form.kind == FieldKind::Percent || form.kind == FieldKind::Amount;
  const bool isLine = !isNumber && form.stored == ColumnForm::Text;
  const std::string cut = cutText(form.kind, isLine ? singleLine(text) : text);
  if (!isNumber && !isNumberKind(form.kind)) return {cut, storedValue(form.stored, cut)};
  TypedNumber typed = readTyped(isNumber ? cut : text, form.decimalSeparator);
  std::string refusal = refusalOf(form, text, typed);
  FieldText field =
      isNumber ? leftNumber(form, cut, lastGood, std::move(typed)) : FieldText{cut, storedValue(form.stored, cut)};
  field.refusal = std::move(refusal);
  return field;
}

std::string reverseRate(std::string_view text, char decimalSeparator) {
  const auto rate = toNumber(storedNumber(text, decimalSeparator));
  if (!rate || *rate == 0) return {};
  return shownNumber(trimmedNumber(roundHalfAway(1 / *rate, rateDecimals)), decimalSeparator);
}

std::string_view currencySignNote(std::string_view label) {
  if (label.find("€") == std::string_view::npos) return {};
  return "Attenzione: il carattere \"€\" non è supportato da tutti i browser e dalle e-mail,\n"
         "e potrebbe quindi creare problemi.\n\n"
         "Si consiglia di utilizzare invece la notazione estesa \"Euro\" o l'abbreviazione ufficiale \"EUR\".";
}

}  // namespace kv
