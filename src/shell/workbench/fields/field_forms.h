#pragma once
// How a column and its editor belong together: what a field shows of a stored value, and what is stored of a text.

#include <string>

#include "platform/database/table_info.h"
#include "platform/database/value.h"
#include "shell/workbench/fields/editor_table.h"

namespace kv {

/// Whether the column stores numbers.
bool isNumberType(ColumnType type);
/// Whether it stores numbers without decimals.
bool isWholeNumberType(ColumnType type);

/// What the field of an editor shows of a value: a flag is "1" or "0", a choice its index, a number has the decimal
/// separator, lines end with "\n".
std::string shownValue(const Editor& editor, const ColumnInfo& column, const Value& value, char decimalSeparator);
/// Reads a text that a field is left with, by its rules; `before`: what it showed.
FieldText readField(const Editor& editor, const ColumnInfo& column, const std::string& text, const std::string& before,
                    char decimalSeparator);

}  // namespace kv
