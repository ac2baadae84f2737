// Editing through a record set: an edit collects fields and is written as one statement by the row's number.

#include <algorithm>

#include "platform/database/recordset.h"
#include "platform/database/recordset_state.h"

namespace kv {
namespace {

bool isAutomatic(const ColumnInfo& column) { return (column.attributes & autoIncrement) != 0; }

}  // namespace

void Recordset::State::endDraft() {
  draft = Draft::None;
  drafted.clear();
}

/// Reserves the next automatic number for good: it is stored before the row is, so that it is used only once, even if
/// the row is abandoned or a second record set adds rows.
Result<std::int64_t> Recordset::State::reserveKey() {
  const std::string highest = "coalesce((SELECT max(_rowid_) FROM " + qualifiedTable() + "), 0)";
  const std::string sequence = engine::quoted(shape->schema) + ".sqlite_sequence";
  const std::string name = engine::literal(shape->table);
  auto raise = prepare("UPDATE " + sequence + " SET seq = max(seq, " + highest + ") + 1 WHERE name = " + name +
                       " RETURNING seq");
  if (!raise) return fail(raise.error());
  auto raised = raise->step();
  if (!raised) return fail(raised.error());
  if (*raised) {
    const std::int64_t number = raise->integer(0);
    // The engine writes only when the statement has run to its end.
    if (auto ended = raise->step(); !ended) return fail(ended.error());
    return number;
  }
  auto begin =
      prepare("INSERT INTO " + sequence + " (name, seq) SELECT " + name + ", " + highest + " + 1" + " RETURNING seq");
  if (!begin) return fail(begin.error());
  auto begun = begin->step();
  if (!begun) return fail(begun.error());
  const std::int64_t number = begin->integer(0);
  if (auto ended = begin->step(); !ended) return fail(ended.error());
  return number;
}

Result<Value> Recordset::State::evaluateDefault(const ColumnInfo& column) const {
  auto evaluated = prepare("SELECT " + column.defaultValue);
  // A bare word is no expression, and means itself.
  if (!evaluated && (evaluated.error().number & 0xff) == SQLITE_ERROR) return Value(column.defaultValue);
  if (!evaluated) return fail(evaluated.error());
  auto stepped = evaluated->step();
  if (!stepped) return fail(stepped.error());
  auto value = engine::valueForColumn(column, evaluated->value(0), where());
  return value ? value : Value(Null{});
}

Result<> Recordset::edit() {
  State& state = *state_;
  if (state.memory) return fail(ErrorKind::ReadOnly, state.where(), "these rows cannot be changed");
  if (sqlite3_db_readonly(state.handle, state.shape->schema.c_str()) == 1) {
    return fail(ErrorKind::ReadOnly, state.where(), sqlite3_errstr(SQLITE_READONLY), SQLITE_READONLY);
  }
  if (!state.onRow()) return fail(ErrorKind::Missing, state.where(), "no current row");
  state.draft = State::Draft::Edit;
  state.drafted.assign(state.shape->columns.size(), std::nullopt);
  return {};
}

Result<> Recordset::addNew() {
  State& state = *state_;
  if (state.memory) return fail(ErrorKind::ReadOnly, state.where(), "these rows cannot be changed");
  std::vector<std::optional<Value>> fields(state.shape->columns.size());
  for (std::size_t at = 0; at < fields.size(); ++at) {
    const ColumnInfo& column = state.shape->columns[at];
    if (isAutomatic(column)) {
      auto number = state.reserveKey();
      if (!number) return fail(number.error());
      fields[at] = *number;
    } else if (!column.defaultValue.empty()) {
      auto value = state.evaluateDefault(column);
      if (!value) return fail(value.error());
      fields[at] = std::move(*value);
    }
  }
  state.draft = State::Draft::Add;
  state.drafted = std::move(fields);
  return {};
}

Result<> Recordset::set(std::string_view column, const Value& value) {
  State& state = *state_;
  const int at = columnIndex(column);
  if (at < 0) return fail(ErrorKind::Missing, state.where(), "no such column: " + std::string(column));
  if (state.draft == State::Draft::None) return fail(ErrorKind::Other, state.where(), "no edit has begun");
  const auto index = static_cast<std::size_t>(at);
  if (state.draft == State::Draft::Edit && isAutomatic(state.shape->columns[index])) {
    return fail(ErrorKind::Other, state.where(), "the automatic key of a row cannot be changed");
  }
  auto held = engine::valueForColumn(state.shape->columns[index], value, state.where());
  if (!held) return fail(held.error());
  state.drafted[index] = std::move(*held);
  return {};
}

/// Writes the fields that were set, by INSERT or UPDATE. The last statement is kept for an edit of the same columns.
std::string Recordset::State::writeSql() const {
  std::string names;
  std::string marks;
  std::string pairs;
  for (std::size_t each = 0; each < drafted.size(); ++each) {
    if (!drafted[each]) continue;
    const std::string name = engine::quoted(shape->origins[each]);
    const char* comma = names.empty() ? "" : ", ";
    names += comma + name;
    marks += std::string(comma) + "?";
    pairs += comma + name + " = ?";
  }
  if (draft != Draft::Add) return "UPDATE " + qualifiedTable() + " SET " + pairs + " WHERE _rowid_ = ?";
  if (names.empty()) return "INSERT INTO " + qualifiedTable() + " DEFAULT VALUES";
  return "INSERT INTO " + qualifiedTable() + " (" + names + ") VALUES (" + marks + ")";
}

Result<> Recordset::State::write() {
  const bool adding = draft == Draft::Add;
  const bool changes = std::any_of(drafted.begin(), drafted.end(), [](const auto& field) { return field.has_value(); });
  if (!changes && !adding) return {};
  std::string sql = writeSql();
  if (sql != writingSql) {
    auto prepared = prepare(sql);
    if (!prepared) return fail(prepared.error());
    writing = std::move(*prepared);
    writingSql = std::move(sql);
  }
  int index = 0;
  for (const auto& field : drafted) {
    if (field) writing.bind(++index, *field);
  }
  if (!adding) writing.bind(++index, key());
  if (auto written = writing.execute(); !written) return written;
  if (sqlite3_changes64(handle) == 0) return fail(ErrorKind::Missing, where(), "the row is gone");
  return {};
}

Result<> Recordset::update() {
  State& state = *state_;
  if (state.draft == State::Draft::None) return fail(ErrorKind::Other, state.where(), "no edit has begun");
  if (auto written = state.write(); !written) return written;
  if (state.draft == State::Draft::Add) {
    const std::int64_t added = sqlite3_last_insert_rowid(state.handle);
    if (!state.indexOfKey.empty()) state.indexOfKey.emplace(added, state.keys.size());
    state.keys.push_back(added);
    state.cursor = static_cast<std::ptrdiff_t>(state.keys.size()) - 1;
  }
  state.endDraft();
  return {};
}

void Recordset::cancelUpdate() { state_->endDraft(); }

Result<> Recordset::remove() {
  State& state = *state_;
  if (state.memory) return fail(ErrorKind::ReadOnly, state.where(), "these rows cannot be changed");
  if (!state.onRow()) return fail(ErrorKind::Missing, state.where(), "no current row");
  auto removal = state.prepare("DELETE FROM " + state.qualifiedTable() + " WHERE _rowid_ = ?1");
  if (!removal) return fail(removal.error());
  removal->bind(1, state.key());
  if (auto removed = removal->execute(); !removed) return removed;
  state.endDraft();
  state.keys.erase(state.keys.begin() + state.cursor);
  state.rowAt = -2;
  state.forgetFound();
  return {};
}

}  // namespace kv
