#pragma once
// What the editors of the main window let the user type, what a change does to a field, and what leaving it does.
// Texts are those of the field as shown; numbers are in them with the decimal separator of the user's locale.

#include <string>
#include <string_view>

#include "platform/database/value.h"
#include "platform/numbers/number_reading.h"
#include "platform/numbers/typed_number.h"

namespace kv {

enum class FieldKind {
  Price,            ///< money of a price list; "*" types three zeros
  Weight,           ///< typed like a price
  Percent,          ///< 0 to 100
  Amount,           ///< a number of the shop's settings, which goes back to the last good one
  Rate,             ///< an exchange rate or its reverse
  Vat,              ///< a percent from a drop-down
  WholeNumber,      ///< digits
  Code,             ///< 50 characters
  Heading,          ///< title and subtitle of an article: 200 characters
  Link,             ///< 255 characters
  DepartmentTitle,  ///< 100 characters, shown in the tree at once
  ShortText,        ///< 50 characters
  Folder,           ///< a folder of the server
  SideBySide,       ///< articles side by side; empty is a space
  PlainText         ///< any other text, of any length
};

/// Whether the field holds a number with decimals.
bool isDecimalKind(FieldKind kind);

struct KeyAnswer {
  bool accepted = false;
  std::string inserted;  ///< what the key puts into the field
};
/// What typing one character (UTF-8) does. Control keys are not asked for.
KeyAnswer keyTyped(FieldKind kind, std::string_view character, char decimalSeparator);
/// A text that is pasted, without the characters that could not be typed; a folder keeps its "-" and ".". Of a text for
/// one line; numbers go through pastedNumber().
std::string pasted(FieldKind kind, std::string_view text, char decimalSeparator);
/// Whether the field takes digits only, with or without decimals.
bool isNumberKind(FieldKind kind);
/// The text of a number field after something was pasted into it, read as a number in either notation; a field of whole
/// numbers keeps the integer part.
NumberReading pastedNumber(FieldKind kind, std::string_view text, char decimalSeparator);
/// What to say beside a field that refuses a character (UTF-8), in Italian.
std::string refusedKeyNote(FieldKind kind, std::string_view character);
/// What to say beside a field that has taken a pasted text without some of its characters, in Italian: each of them
/// once. Empty when it took all of them, and for numbers, of which pastedNumber() speaks.
std::string droppedNote(FieldKind kind, std::string_view text, char decimalSeparator);

/// The field's text after a change: what is too high is brought to the limit, what is no number goes back to
/// `lastGood` where the kind says so.
std::string changedText(FieldKind kind, const std::string& text, const std::string& lastGood, char decimalSeparator);
/// How a column stores what its field says.
enum class ColumnForm {
  Text,
  Lines,  ///< text with CR LF at its line ends, which the pages turn into breaks
  Flag,
  Index,  ///< of a choice
  Number
};

/// All that decides what becomes of a text when its field is left.
struct FieldForm {
  FieldKind kind = FieldKind::PlainText;
  ColumnForm stored = ColumnForm::Text;
  bool zeroUnlessNumber = false;  ///< what is no number is stored as 0; else the store refuses it
  char decimalSeparator = ',';
  bool wholeNumbers = false;  ///< the column stores no decimals
};

/// A field that has been left: what was typed, read once, as the field shows it and as the column stores it.
struct FieldText {
  std::string text;
  Value value = {};
  bool valid = true;         ///< false: it is no number, and 0 is stored
  std::string refusal = {};  ///< why the field doesn't take what was typed, in Italian; empty when it does
  std::string note = {};     ///< what to say beside the field once it is stored, in Italian; empty: nothing
};
/// Reads the text of a field that is left: cut to its length, or brought to the form of a number; an amount that is
/// none goes back to `lastGood`. An empty number is stored as null. Prices, weights, rates and VAT refuse what is no
/// number; a percent that is none becomes 0, with a note. text and value are there whatever is refused.
FieldText leftField(const FieldForm& form, const std::string& text, const std::string& lastGood);

/// The other of a pair of exchange rates: 1 / value, six decimals; empty when the value is no number or zero, and the
/// other field then stays.
std::string reverseRate(std::string_view text, char decimalSeparator);

/// The note that the euro sign in a currency label brings; empty for any other text.
std::string_view currencySignNote(std::string_view label);

}  // namespace kv
