#include "shell/workbench/fields/field_store.h"

#include "platform/database/recordset.h"
#include "platform/text/text.h"
#include "shell/workbench/fields/connection_settings.h"
#include "shell/workbench/fields/current_row.h"
#include "shell/workbench/fields/field_forms.h"
#include "shell/workbench/fields/identity_fields.h"
#include "shell/workbench/fields/side_editors.h"
#include "shell/workbench/fields/variant_names.h"

namespace kv {
namespace {

/// A page has one to six articles side by side; a department without a number of its own takes that of the shop.
bool isSideBySideAllowed(const Editor& editor, std::string_view text) {
  if (editor.column != "affiancati") return true;
  text = trim(text);
  if (text.empty()) return editor.set == EditedSet::Categorie;
  return text.size() == 1 && text[0] >= '1' && text[0] <= '6';
}

bool isReverseRate(const Editor& editor) { return editor.column == reverseRateField; }

Editor rateEditor() {
  Editor row = *editorOf(EditedSet::Generale, reverseRateField);
  row.column = "cambio";
  return row;
}

/// The text that the current row of a set has in the first language; empty when it can't be read.
std::string textInFirstLanguage(CatalogueSets& sets, EditedSet set, const std::string& column) {
  const bool isArticle = set == EditedSet::Articoli;
  std::string query = "SELECT \"" + column + "\" FROM ";
  query += set == EditedSet::Generale ? "generale" : isArticle ? "articoli WHERE ID = ?" : "categorie WHERE ID = ?";
  auto row = sets.session().catalogue.prepare(query);
  if (!row) return {};
  const std::string department = sets.department();
  if (set == EditedSet::Categorie) row->bind(1, department);
  if (isArticle) row->bind(1, sets.article());
  const auto found = row->step();
  return found && *found ? std::string(row->text(0)) : std::string();
}

}  // namespace

std::string plainLabel(std::string_view label) {
  std::string plain;
  for (const char c : label) {
    if (c != '&') plain += c;
  }
  while (plain.ends_with(':')) plain.pop_back();
  return plain;
}

const ColumnInfo* FieldStore::columnInfo(const Editor& editor) {
  const Recordset& rows = sets_.edited(editor.set);
  const int index = rows.columnIndex(columnOf(editor, listino_));
  return index < 0 ? nullptr : &rows.columns()[static_cast<std::size_t>(index)];
}

std::string FieldStore::shown(const Editor& editor) {
  if (!isOnRow(sets_, editor.set)) return {};
  if (isIdentityField(editor)) return identityText(sets_, editor);
  if (isReverseRate(editor)) return reverseRate(shown(rateEditor()), separator_);
  if (editor.column == shopAddressField) return addressesOf(sets_).shop;
  if (editor.column == backOfficeAddressField) return addressesOf(sets_).backOffice;
  if (isSideEditor(editor)) return shownSideValue(editor);
  if (editor.control == Control::Variant) return MostraVarianti(sets_, listino_, editor.number);
  const ColumnInfo* info = columnInfo(editor);
  if (info == nullptr) return {};
  const Value value = sets_.edited(editor.set).get(info->name);
  return shownValue(editor, *info, value, separator_);
}

std::string FieldStore::shownSideValue(const Editor& editor) const {
  const std::string text = asText(sideValue(sets_, editor, sets_.session().currentLanguage));
  return isNumberKind(editor.kind) && !text.empty() ? shownNumber(text, separator_) : text;
}

std::string FieldStore::firstLanguageText(const Editor& editor) {
  const bool isText = editor.control == Control::Line || editor.control == Control::Memo;
  if (sets_.session().currentLanguage == 1 || !isText || !isOnRow(sets_, editor.set)) return {};
  if (sideWidth(editor) > 0) return shown(editor).empty() ? asText(sideValue(sets_, editor, 1)) : std::string();
  const ColumnInfo* info = columnInfo(editor);
  if (info == nullptr || isNumberType(info->type) || !shown(editor).empty()) return {};
  // A column that all languages share is empty here too.
  return textInFirstLanguage(sets_, editor.set, info->name);
}

int FieldStore::widest(const Editor& editor) {
  constexpr int smallDigits = 4;
  constexpr int longDigits = 9;
  if (!isOnRow(sets_, editor.set)) return 0;
  if (const int width = sideWidth(editor); width > 0) return width;
  const ColumnInfo* info = columnInfo(editor);
  if (info == nullptr) return 0;
  if (info->type == ColumnType::Text) return info->size;
  if (editor.kind == FieldKind::WholeNumber) return info->type == ColumnType::Int ? smallDigits : longDigits;
  return 0;
}

FieldText FieldStore::readText(const Editor& editor, const ColumnInfo* column, const std::string& text,
                               const std::string& before) const {
  if (isIdentityField(editor)) return {.text = std::string(trim(text))};
  const bool isSide = isSideEditor(editor);
  if (column != nullptr && !isSide) return readField(editor, *column, text, before, separator_);
  const bool isNumber = isSide && isNumberKind(editor.kind);
  return leftField({editor.kind, isNumber ? ColumnForm::Number : ColumnForm::Text, false, separator_}, text, before);
}

FieldStore::Reading FieldStore::read(const Editor& editor, const std::string& text) {
  Reading reading;
  reading.isOnRow = isOnRow(sets_, editor.set);
  reading.before = shown(editor);
  const ColumnInfo* column = reading.isOnRow ? columnInfo(editor) : nullptr;
  reading.isStored = column != nullptr || isIdentityField(editor) || isSideEditor(editor);
  reading.field = readText(editor, column, text, reading.before);
  reading.isChanged = text != reading.before;
  if (!reading.isOnRow || !reading.isChanged) {
    reading.field.refusal.clear();
  } else if (!isSideBySideAllowed(editor, text)) {
    reading.field.refusal = "Gli articoli affiancati vanno da 1 a 6: è rimasto il valore precedente.";
  }
  return reading;
}

FieldStore::Outcome FieldStore::leave(const Editor& editor, const Reading& reading) {
  const FieldText& field = reading.field;
  // Both rates show six decimals: what was only looked at doesn't wear the rate down.
  if (!reading.isOnRow || !reading.isChanged) return {};
  if (isReverseRate(editor)) return leaveReverseRate(field.text);
  Outcome outcome;
  if (!reading.isStored) {
    outcome.done = fail(ErrorKind::Missing, std::string(editor.column), "no such column");
    return outcome;
  }
  if (field.text == reading.before) return outcome;
  if (isSideEditor(editor)) return leaveSide(editor, field.value);
  if (isIdentityField(editor)) {
    outcome.done = storeIdentity(sets_, history_, editor, field.text);
  } else {
    const std::string step = "Modifica " + plainLabel(editor.label);
    outcome.done = history_.record(step, [&] { return write(editor, field.value, reading.before); });
  }
  outcome.written = outcome.done.has_value();
  if (editor.column.starts_with("valuta") && currencySignNote(reading.before).empty()) {
    outcome.note = std::string(currencySignNote(field.text));
  }
  return outcome;
}

FieldStore::Outcome FieldStore::leaveReverseRate(const std::string& reverse) {
  const std::string rate = reverseRate(reverse, separator_);
  return rate.empty() ? Outcome() : leave(rateEditor(), rate);
}

FieldStore::Outcome FieldStore::leaveSide(const Editor& editor, const Value& value) {
  Outcome outcome;
  outcome.done = prepareSideField(sets_.session().catalogue, sideFieldOf(editor));
  if (!outcome.done) return outcome;
  const std::string step = "Modifica " + plainLabel(editor.label);
  outcome.done = history_.record(step, [&] { return storeSideValue(sets_, editor, value); });
  outcome.written = outcome.done.has_value();
  return outcome;
}

Result<> FieldStore::write(const Editor& editor, const Value& value, const std::string& oldText) {
  const std::string column = columnOf(editor, listino_);
  if (auto stored = sets_.store(editor.set, column, value); !stored) return stored;
  return editor.set == EditedSet::Generale ? followConnection(sets_, editor.column, oldText) : Result<>();
}

}  // namespace kv
