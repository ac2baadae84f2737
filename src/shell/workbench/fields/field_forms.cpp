#include "shell/workbench/fields/field_forms.h"

#include "platform/text/text.h"

namespace kv {
namespace {

/// Prices, quantities and percents that hold no number become 0; any other field keeps the engine's word on it.
bool becomesZero(const Editor& editor) {
  switch (editor.kind) {
    case FieldKind::Price:
    case FieldKind::Percent:
    case FieldKind::Amount:
      return true;
    case FieldKind::WholeNumber:
      return editor.column.starts_with("scqart");
    default:
      return false;
  }
}

ColumnForm columnFormOf(const Editor& editor, const ColumnInfo& info) {
  if (info.type == ColumnType::Bool) return ColumnForm::Flag;
  if (editor.control == Control::Memo) return ColumnForm::Lines;
  if (!isNumberType(info.type)) return ColumnForm::Text;
  return editor.control == Control::Choice ? ColumnForm::Index : ColumnForm::Number;
}

}  // namespace

bool isNumberType(ColumnType type) {
  switch (type) {
    case ColumnType::Byte:
    case ColumnType::Int:
    case ColumnType::Long:
    case ColumnType::Money:
    case ColumnType::Single:
    case ColumnType::Double:
      return true;
    default:
      return false;
  }
}

bool isWholeNumberType(ColumnType type) {
  return type == ColumnType::Byte || type == ColumnType::Int || type == ColumnType::Long;
}

std::string shownValue(const Editor& editor, const ColumnInfo& column, const Value& value, char decimalSeparator) {
  if (editor.control == Control::Check) return asFlag(value) ? "1" : "0";
  if (editor.control == Control::Choice) return std::to_string(asInteger(value));
  const std::string text = asText(value);
  if (editor.control == Control::Memo) return replaceAll(text, "\r\n", "\n");
  return isNumberType(column.type) && !text.empty() ? shownNumber(text, decimalSeparator) : text;
}

FieldText readField(const Editor& editor, const ColumnInfo& column, const std::string& text, const std::string& before,
                    char decimalSeparator) {
  FieldForm form{editor.kind, columnFormOf(editor, column), becomesZero(editor), decimalSeparator,
                 isWholeNumberType(column.type)};
  // An article that isn't on offer has no offer price: a 0 would be one.
  if (editor.column == "offertaprezzo" && trim(text).empty()) form.zeroUnlessNumber = false;
  return leftField(form, text, before);
}

}  // namespace kv
