#include "shell/workbench/fields/field_store.h"
#include "platform/database/recordset.h"

#include <algorithm>

#include "platform/text/text.h"

namespace kv {
namespace {

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

bool isReverseRate(const Editor& editor) { return editor.column == reverseRateField; }

Editor rateEditor() {
  Editor row = *editorOf(EditedSet::Generale, reverseRateField);
  row.column = "cambio";
  return row;
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

bool FieldStore::onRow(EditedSet set) {
  if (!sets_.isBound()) return false;
  const Recordset& rows = sets_.edited(set);
  return !rows.bof() && !rows.eof();
}

const ColumnInfo* FieldStore::columnInfo(const Editor& editor) {
  const Recordset& rows = sets_.edited(editor.set);
  const int place = rows.columnIndex(columnOf(editor, listino_));
  return place < 0 ? nullptr : &rows.columns()[static_cast<std::size_t>(place)];
}

std::string FieldStore::shown(const Editor& editor) {
  if (!onRow(editor.set)) return {};
  if (isReverseRate(editor)) return reverseRate(shown(rateEditor()), separator_);
  if (editor.column == shopAddressField) return addresses().shop;
  if (editor.column == backOfficeAddressField) return addresses().backOffice;
  if (editor.control == Control::Variant) return variantNames()[static_cast<std::size_t>(editor.number - 1)];
  const ColumnInfo* info = columnInfo(editor);
  if (info == nullptr) return {};
  const Value value = sets_.edited(editor.set).get(info->name);
  if (editor.control == Control::Check) return asFlag(value) ? "1" : "0";
  if (editor.control == Control::Choice) return std::to_string(asInteger(value));
  const std::string text = asText(value);
  if (editor.control == Control::Memo) return replaceAll(text, "\r\n", "\n");
  return isNumberType(info->type) && !text.empty() ? shownNumber(text, separator_) : text;
}

int FieldStore::widest(const Editor& editor) {
  constexpr int smallDigits = 4;
  constexpr int longDigits = 9;
  if (!onRow(editor.set)) return 0;
  const ColumnInfo* info = columnInfo(editor);
  if (info == nullptr) return 0;
  if (info->type == ColumnType::Text) return info->size;
  if (editor.kind == FieldKind::WholeNumber) return info->type == ColumnType::Int ? smallDigits : longDigits;
  return 0;
}

Result<Value> FieldStore::valueOf(const Editor& editor, const std::string& text, bool& recovered) {
  const ColumnInfo* info = columnInfo(editor);
  if (info == nullptr) return fail(ErrorKind::Missing, std::string(editor.column), "no such column");
  if (info->type == ColumnType::Bool) return Value(text == "1");
  // The pages turn a line end into a break where it is CR LF.
  if (editor.control == Control::Memo) return Value(replaceAll(text, "\n", "\r\n"));
  if (!isNumberType(info->type)) return Value(text);
  if (editor.control == Control::Choice) return Value(std::int64_t{std::atoi(text.c_str())});
  const bool number = isFieldNumber(text, separator_);
  if (!number && becomesZero(editor)) {
    recovered = true;
    return Value(std::int64_t{0});
  }
  if (trim(text).empty()) return Value(Null{});
  return Value(storedNumber(text, separator_));
}

FieldStore::Outcome FieldStore::leave(const Editor& editor, const std::string& text) {
  if (!onRow(editor.set)) return {};
  if (isReverseRate(editor)) {
    const std::string rate = reverseRate(text, separator_);
    // Both fields show six decimals: what was only looked at doesn't wear the rate down.
    if (rate.empty() || text == shown(editor)) return {};
    return leave(rateEditor(), rate);
  }
  const std::string before = shown(editor);
  if (text == before) return {};
  std::string after = leftText(editor.kind, text, before, separator_);
  if (editor.kind == FieldKind::SideBySide && after.empty()) after = " ";
  Outcome outcome;
  auto value = valueOf(editor, after, outcome.recovered);
  if (!value) {
    outcome.done = fail(value.error());
    return outcome;
  }
  if (after == before) return outcome;
  const std::string step = "Modifica " + plainLabel(editor.label);
  outcome.done = history_.record(step, [&] { return write(editor, *value, before); });
  outcome.written = outcome.done.has_value();
  if (editor.column.starts_with("valuta") && currencySignNote(before).empty()) {
    outcome.note = std::string(currencySignNote(after));
  }
  return outcome;
}

Result<> FieldStore::write(const Editor& editor, const Value& value, const std::string& oldText) {
  const std::string column = columnOf(editor, listino_);
  if (auto stored = sets_.store(editor.set, column, value); !stored) return stored;
  return editor.set == EditedSet::Generale ? settleWeb(editor, oldText) : Result<>();
}

/// What follows from a change of the connection: the web folder worked out from the FTP folder, and the names of the
/// scripts, which go back to their defaults.
Result<> FieldStore::settleWeb(const Editor& editor, const std::string& oldText) {
  const bool serverNT = setting("serverNT");
  std::string column(editor.column);
  if (column == "folderFTP" || column == "folderCGI") {
    const std::string web = column == "folderFTP" ? "cartella" : "cartellaCGI";
    const std::string current = settingText(web);
    const std::string wanted = suggestedWebFolder(current, oldText, settingText(column), serverNT);
    if (wanted == current) return {};
    if (auto stored = storeSetting(web, wanted); !stored) return stored;
    column = web;
  }
  if (column != "URL" && column != "cartella" && column != "serverNT") return {};
  if (auto stored = storeSetting("CGIsearch", std::string(defaultCGIsearch)); !stored) return stored;
  return storeSetting("CGIordine", std::string(defaultCGIordine));
}

Result<> FieldStore::storeSetting(std::string_view column, const std::string& text) {
  if (settingText(column) == text) return {};
  return sets_.store(EditedSet::Generale, column, Value(text));
}

Result<> FieldStore::storePicture(EditedSet set, int number, const std::string& name, ImageSize size) {
  if (!onRow(set)) return {};
  Recordset& rows = sets_.edited(set);
  const std::string digit = std::to_string(number);
  const std::array<std::pair<std::string, Value>, 3> fields{{{"immagine" + digit, Value(name)},
                                                             {"imgX" + digit, Value(std::int64_t{size.width})},
                                                             {"imgY" + digit, Value(std::int64_t{size.height})}}};
  if (auto begun = rows.edit(); !begun) return begun;
  Result<> done;
  for (const auto& [column, value] : fields) {
    if (done) done = rows.set(column, value);
  }
  if (done) done = rows.update();
  if (!done) rows.cancelUpdate();
  return done;
}

std::string FieldStore::picture(EditedSet set, int number) {
  return onRow(set) ? asText(sets_.edited(set).get("immagine" + std::to_string(number))) : std::string();
}

bool FieldStore::setting(std::string_view column) {
  return onRow(EditedSet::Generale) && asFlag(sets_.dataGenerale().get(column));
}

std::string FieldStore::settingText(std::string_view column) {
  return onRow(EditedSet::Generale) ? asText(sets_.dataGenerale().get(column)) : std::string();
}

FullAddresses FieldStore::addresses() {
  return NormalizzaURL({settingText("URL"), settingText("cartella"), settingText("cartellaCGI")});
}

std::array<std::string, 4> FieldStore::variantNames() {
  std::array<std::string, 4> names;
  if (!onRow(EditedSet::Articoli)) return names;
  const Session& session = sets_.session();
  auto row = sets_.session().catalogue.prepare(SelezionaLingua("opzioni", session.currentLanguage, "WHERE ID = ?"));
  if (!row) return names;
  int column = 0;
  while (column < row->columnCount() && row->columnName(column) != "nome") ++column;
  for (int slot = 1; slot <= 4; ++slot) {
    const Value held = sets_.dataArticoli().get(variantColumn(slot, listino_));
    row->bind(1, isNull(held) ? std::int64_t{1} : asInteger(held));
    const auto found = row->step();
    if (found && *found) names[static_cast<std::size_t>(slot - 1)] = std::string(row->text(column));
    row->reset();
  }
  return names;
}

std::vector<std::string> FieldStore::relatedWords() {
  std::vector<std::string> words;
  if (!sets_.isBound()) return words;
  auto rows = sets_.session().catalogue.prepare("SELECT DISTINCT correlazione FROM articoli WHERE correlazione <> ''");
  if (!rows) return words;
  for (;;) {
    const auto row = rows->step();
    if (!row || !*row) break;
    std::string word(rows->text(0));
    if (!trim(word).empty()) words.push_back(std::move(word));
  }
  return words;
}

}  // namespace kv
