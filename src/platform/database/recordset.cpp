// The cursor of a record set and the fields of its current row.

#include "platform/database/recordset.h"
#include "platform/database/recordset_state.h"

namespace kv {

Recordset::Recordset(std::unique_ptr<State> state) : state_(std::move(state)) {}
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;
Recordset::~Recordset() = default;

std::size_t Recordset::size() const { return state_->keys.size(); }
bool Recordset::bof() const { return state_->keys.empty() || state_->cursor < 0; }
bool Recordset::eof() const { return state_->cursor >= static_cast<std::ptrdiff_t>(state_->keys.size()); }

std::size_t Recordset::position() const {
  return state_->onRow() ? static_cast<std::size_t>(state_->cursor) : state_->keys.size();
}

void Recordset::State::moveTo(std::ptrdiff_t index) {
  endDraft();
  const auto end = static_cast<std::ptrdiff_t>(keys.size());
  cursor = index < -1 ? -1 : std::min(index, end);
  if (end == 0) cursor = 0;
  rowAt = -2;
}

void Recordset::moveFirst() { state_->moveTo(0); }
void Recordset::moveLast() { state_->moveTo(static_cast<std::ptrdiff_t>(state_->keys.size()) - 1); }
void Recordset::moveNext() { state_->moveTo(state_->cursor + 1); }
void Recordset::movePrevious() { state_->moveTo(state_->cursor - 1); }

void Recordset::moveTo(std::size_t position) {
  state_->moveTo(static_cast<std::ptrdiff_t>(std::min(position, state_->keys.size())));
}

const std::vector<ColumnInfo>& Recordset::columns() const { return state_->shape->columns; }

int Recordset::columnIndex(std::string_view name) const {
  const auto index = state_->shape->columnIndexes.find(name);
  return index == state_->shape->columnIndexes.end() ? -1 : static_cast<int>(index->second);
}

/// Reads the current row, unless it has been read and nothing was written through this connection since. A row that is
/// gone reads as Null; so does one that cannot be read, until the next try.
Result<> Recordset::State::readRow() {
  const std::int64_t counter = engine::changeCounter(rowsHandle());
  if (rowAt == cursor && rowCounter == counter) return {};
  rowFields.assign(shape->columns.size(), Null{});
  rowAt = -2;
  fetch.bind(1, key());
  const auto found = fetch.step();
  if (!found) return fail(found.error());
  for (std::size_t each = 0; *found && each < rowFields.size(); ++each) {
    rowFields[each] = fetch.value(static_cast<int>(each));
  }
  fetch.reset();
  rowAt = cursor;
  rowCounter = counter;
  return {};
}

const Value& Recordset::State::field(std::size_t column) {
  ignore(readRow(), "a field has no way to report it: it reads as Null");
  return rowFields[column];
}

Result<> Recordset::load() { return state_->onRow() ? state_->readRow() : Result<>(); }

Value Recordset::get(std::string_view column) const {
  const int at = columnIndex(column);
  if (at < 0) return Null{};
  const auto index = static_cast<std::size_t>(at);
  if (state_->draft != State::Draft::None && state_->drafted[index]) return *state_->drafted[index];
  if (state_->draft == State::Draft::Add || !state_->onRow()) return Null{};
  return state_->field(index);
}

Result<> Recordset::requery() { return state_->readKeys(); }

}  // namespace kv
