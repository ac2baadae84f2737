// The recorder uses the engine's pre-update hook. Of a changed row only the fields that were changed are kept while
// statements run, as they first were: a bulk change touches every row of the widest table. The present fields are read
// when the changes are taken, so a rollback needs no bookkeeping of its own.
// Source: SQLite, "The pre-update hook".

#define SQLITE_ENABLE_PREUPDATE_HOOK 1
#include "platform/database/changes/changes.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "platform/database/changes/change_rows.h"
#include "platform/database/changes/written_columns.h"

namespace kv {
namespace {

using Key = std::pair<std::size_t, std::int64_t>;  ///< index of the table's name, number of the row

using Image = RowImage RowChange::*;

/// What is kept of a row as it first was.
struct FirstImage {
  Key key;
  bool whole = true;                 ///< of all its fields; an empty image: there was no row
  std::vector<std::size_t> columns;  ///< of a row that isn't whole: its fields that were changed, in the order of that
  RowImage image;
};

/// The change from one whole image to another.
RowChange changeOf(RowChange change, RowImage before, RowImage after) {
  if (before.size() != after.size()) {
    change.before = std::move(before);
    change.after = std::move(after);
    return change;
  }
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] == after[i]) continue;
    change.columns.push_back(i);
    change.before.push_back(std::move(before[i]));
    change.after.push_back(std::move(after[i]));
  }
  return change;
}

/// The change of the fields that were kept; nothing when they are as they were.
std::optional<RowChange> changeOfFields(RowChange change, FirstImage first, RowImage now) {
  if (first.image == now) return std::nullopt;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < now.size(); ++i) {
    if (first.image[i] == now[i]) continue;
    if (kept != i) {
      first.columns[kept] = first.columns[i];
      first.image[kept] = std::move(first.image[i]);
      now[kept] = std::move(now[i]);
    }
    ++kept;
  }
  for (RowImage* image : {&first.image, &now}) image->resize(kept);
  first.columns.resize(kept);
  change.columns = std::move(first.columns);
  change.before = std::move(first.image);
  change.after = std::move(now);
  return change;
}

/// Whether a row is as an image of all its fields says. Columns that it got since then hold nothing.
bool isRow(const RowImage& present, const RowImage& image) {
  if (image.size() > present.size() || image.empty() != present.empty()) return false;
  const auto added = present.begin() + static_cast<std::ptrdiff_t>(image.size());
  return std::equal(image.begin(), image.end(), present.begin()) &&
         std::all_of(added, present.end(), [](const Cell& cell) { return cell == Cell(); });
}

template <class T>
std::size_t sizeOfBoxed(const T& value) {
  return value.empty() ? 0 : sizeof(T) + value.size();
}

std::size_t sizeOf(const RowImage& image) {
  std::size_t size = image.size() * sizeof(Cell);
  for (const Cell& cell : image) {
    if (const auto* text = std::get_if<BoxedText>(&cell)) size += sizeOfBoxed(**text);
    if (const auto* bytes = std::get_if<BoxedBytes>(&cell)) size += sizeOfBoxed(**bytes);
  }
  return size;
}

}  // namespace

std::size_t sizeInMemory(const RowChange& change) {
  return sizeof(RowChange) + change.table.size() + change.columns.size() * sizeof(std::size_t) + sizeOf(change.before) +
         sizeOf(change.after);
}

struct ChangeRecorder::State {
  Database& database;
  sqlite3* handle;
  std::function<bool(std::string_view)> watched;
  std::vector<std::string> tables;     ///< names that keys refer to
  std::vector<FirstImage> first;       ///< in the order of the first touch
  std::map<Key, std::size_t> seen;     ///< indexes into `first`
  std::vector<std::size_t> differing;  ///< fields of the row in hand
  bool paused = false;

  void hear(int operation, const char* table, std::int64_t oldRow, std::int64_t newRow);
  std::size_t tableIndex(std::string_view name);
  FirstImage* firstTouched(const Key& key);
  void noteMissing(const Key& key);
  void noteWhole(const Key& key);
  void noteFields(const Key& key);
  void noteDiffering(const FirstImage& image, std::size_t column);
  Result<std::optional<RowChange>> changeSince(FirstImage image, ChangeRows& rows) const;
  Result<RowImage> target(const RowChange& change, Image from, Image to, RowImage present) const;
  Result<> check(const RowChange& change, Image from, ChangeRows& rows) const;
  Result<> exchange(const RowChanges& changes, Image from, Image to) const;
  Result<> exchangeWhole(const std::vector<const RowChange*>& changes, Image from, Image to, ChangeRows& rows) const;
  Result<> move(const RowChanges& changes, Image from, Image to);
  tl::unexpected<Error> hasChangedSince(const std::string& table) const {
    return fail(ErrorKind::Malformed, database.path(), "a row of " + table + " has changed since");
  }
};

std::size_t ChangeRecorder::State::tableIndex(std::string_view name) {
  for (std::size_t i = 0; i < tables.size(); ++i) {
    if (tables[i] == name) return i;
  }
  tables.emplace_back(name);
  return tables.size() - 1;
}

/// The image of a row, for a row that is touched for the first time a new one; nothing when it needs no more.
FirstImage* ChangeRecorder::State::firstTouched(const Key& key) {
  // Rows mostly come by rising numbers, and then end() is where they go.
  const auto entry = seen.try_emplace(seen.end(), key, first.size());
  if (entry->second == first.size()) return &first.emplace_back(FirstImage{key, false, {}, {}});
  FirstImage& image = first[entry->second];
  return image.whole ? nullptr : &image;
}

void ChangeRecorder::State::noteMissing(const Key& key) {
  // A row that was there before has been deleted, and is whole.
  FirstImage* image = firstTouched(key);
  if (image != nullptr && image->columns.empty()) image->whole = true;
}

void ChangeRecorder::State::noteWhole(const Key& key) {
  FirstImage* image = firstTouched(key);
  if (image == nullptr) return;
  const auto count = static_cast<std::size_t>(sqlite3_preupdate_count(handle));
  RowImage cells(count);
  for (std::size_t i = 0; i < count; ++i) {
    sqlite3_value* value = nullptr;
    if (sqlite3_preupdate_old(handle, static_cast<int>(i), &value) == SQLITE_OK && value != nullptr) {
      cells[i] = cellOf(value);
    }
  }
  for (std::size_t i = 0; i < image->columns.size(); ++i) cells[image->columns[i]] = std::move(image->image[i]);
  *image = {key, true, {}, std::move(cells)};
}

/// Notes a field in `differing` when it changes and is not kept yet.
void ChangeRecorder::State::noteDiffering(const FirstImage& image, std::size_t column) {
  sqlite3_value *before = nullptr, *after = nullptr;
  const auto index = static_cast<int>(column);
  const bool known = sqlite3_preupdate_old(handle, index, &before) == SQLITE_OK && before != nullptr &&
                     sqlite3_preupdate_new(handle, index, &after) == SQLITE_OK && after != nullptr;
  if (!known || isSameValue(before, after)) return;
  if (std::find(image.columns.begin(), image.columns.end(), column) == image.columns.end()) {
    differing.push_back(column);
  }
}

void ChangeRecorder::State::noteFields(const Key& key) {
  FirstImage* image = firstTouched(key);
  if (image == nullptr) return;
  differing.clear();
  if (const auto* written = WrittenColumns::of(database, tables[key.first])) {
    for (const std::size_t column : *written) noteDiffering(*image, column);
  } else {
    const auto count = static_cast<std::size_t>(sqlite3_preupdate_count(handle));
    for (std::size_t column = 0; column < count; ++column) noteDiffering(*image, column);
  }
  image->columns.reserve(image->columns.size() + differing.size());
  image->image.reserve(image->image.size() + differing.size());
  for (const std::size_t column : differing) {
    sqlite3_value* before = nullptr;
    sqlite3_preupdate_old(handle, static_cast<int>(column), &before);
    image->columns.push_back(column);
    image->image.push_back(cellOf(before));
  }
}

void ChangeRecorder::State::hear(int operation, const char* table, std::int64_t oldRow, std::int64_t newRow) {
  if (paused || !watched(table)) return;
  const std::size_t index = tableIndex(table);
  if (operation == SQLITE_INSERT) return noteMissing({index, newRow});
  if (operation == SQLITE_UPDATE && newRow == oldRow) return noteFields({index, oldRow});
  noteWhole({index, oldRow});
  if (operation == SQLITE_UPDATE) noteMissing({index, newRow});
}

Result<std::optional<RowChange>> ChangeRecorder::State::changeSince(FirstImage image, ChangeRows& rows) const {
  RowChange change{tables[image.key.first], image.key.second, {}, {}, {}};
  if (!image.whole && image.columns.empty()) return std::nullopt;
  auto now =
      image.whole ? rows.read(change.table, change.row) : rows.readFields(change.table, change.row, image.columns);
  if (!now) return fail(now.error());
  if (!image.whole) {
    // The engine reports every deletion, so that a row whose fields were kept is there.
    if (now->empty()) return hasChangedSince(change.table);
    return changeOfFields(std::move(change), std::move(image), std::move(*now));
  }
  if (*now == image.image) return std::nullopt;
  return changeOf(std::move(change), std::move(image.image), std::move(*now));
}

/// The row that `change` leads to, computed from the present one. Malformed when that isn't what `from` says.
Result<RowImage> ChangeRecorder::State::target(const RowChange& change, Image from, Image to, RowImage present) const {
  const RowImage& expected = change.*from;
  bool same = change.columns.empty() ? isRow(present, expected) : !present.empty();
  for (std::size_t i = 0; same && i < change.columns.size(); ++i) {
    same = change.columns[i] < present.size() && present[change.columns[i]] == expected[i];
  }
  if (!same) return hasChangedSince(change.table);
  if (change.columns.empty()) return change.*to;
  for (std::size_t i = 0; i < change.columns.size(); ++i) present[change.columns[i]] = (change.*to)[i];
  return present;
}

/// Malformed when the fields of a changed row aren't what `from` says.
Result<> ChangeRecorder::State::check(const RowChange& change, Image from, ChangeRows& rows) const {
  const auto present = rows.readFields(change.table, change.row, change.columns);
  if (!present) return fail(present.error());
  if (*present != change.*from) return hasChangedSince(change.table);
  return {};
}

/// Checks rows, then deletes all of them and inserts the wanted ones. A row by row update could meet the unique key of
/// another row that is to change as well.
Result<> ChangeRecorder::State::exchangeWhole(const std::vector<const RowChange*>& changes, Image from, Image to,
                                              ChangeRows& rows) const {
  std::vector<RowImage> wanted;
  for (const RowChange* change : changes) {
    auto present = rows.read(change->table, change->row);
    if (!present) return fail(present.error());
    auto image = target(*change, from, to, std::move(*present));
    if (!image) return fail(image.error());
    wanted.push_back(std::move(*image));
  }
  for (const RowChange* change : changes) {
    if (auto done = rows.remove(change->table, change->row); !done) return done;
  }
  for (std::size_t i = 0; i < changes.size(); ++i) {
    if (wanted[i].empty()) continue;
    if (auto done = rows.insert(changes[i]->table, changes[i]->row, wanted[i]); !done) return done;
  }
  return {};
}

/// Fields that are no part of a unique key are written in their rows; the other rows are exchanged whole.
Result<> ChangeRecorder::State::exchange(const RowChanges& changes, Image from, Image to) const {
  ChangeRows rows(handle, database.path());
  std::vector<const RowChange*> whole, fields;
  for (const RowChange& change : changes) {
    const auto keyed = change.columns.empty() ? Result<bool>(true) : rows.areKeys(change.table, change.columns);
    if (!keyed) return fail(keyed.error());
    (*keyed ? whole : fields).push_back(&change);
  }
  for (const RowChange* change : fields) {
    if (auto done = check(*change, from, rows); !done) return done;
  }
  if (auto done = exchangeWhole(whole, from, to, rows); !done) return done;
  for (const RowChange* change : fields) {
    if (auto done = rows.update(change->table, change->row, change->columns, change->*to); !done) return done;
  }
  return {};
}

Result<> ChangeRecorder::State::move(const RowChanges& changes, Image from, Image to) {
  if (auto begun = database.begin(); !begun) return begun;
  paused = true;
  auto done = exchange(changes, from, to);
  if (done) {
    done = database.commit();
  } else {
    database.rollback();
  }
  paused = false;
  return done;
}

ChangeRecorder::ChangeRecorder(Database& database, std::function<bool(std::string_view)> watched)
    : state_(new State{database, database.handle_, std::move(watched), {}, {}, {}, {}, false}) {
  sqlite3_preupdate_hook(
      state_->handle,
      [](void* context, sqlite3*, int operation, const char* schema, const char* table, sqlite3_int64 oldRow,
         sqlite3_int64 newRow) {
        if (std::string_view(schema) == "main") static_cast<State*>(context)->hear(operation, table, oldRow, newRow);
      },
      state_.get());
}

ChangeRecorder::~ChangeRecorder() {
  if (state_->database.isOpen()) sqlite3_preupdate_hook(state_->handle, nullptr, nullptr);
}

Result<RowChanges> ChangeRecorder::take() {
  RowChanges changes;
  ChangeRows rows(state_->handle, state_->database.path());
  state_->seen.clear();
  std::vector<FirstImage> first;
  first.swap(state_->first);
  for (FirstImage& image : first) {
    auto change = state_->changeSince(std::move(image), rows);
    if (!change) return fail(change.error());
    if (*change) changes.push_back(std::move(**change));
  }
  return changes;
}

bool ChangeRecorder::touched() const { return !state_->first.empty(); }

Result<> ChangeRecorder::revert(const RowChanges& changes) {
  return state_->move(changes, &RowChange::after, &RowChange::before);
}

Result<> ChangeRecorder::revertAsChange(Database& database, const RowChanges& changes) {
  const State state{database, database.handle_, {}, {}, {}, {}, {}, false};
  if (auto begun = database.begin(); !begun) return begun;
  if (auto done = state.exchange(changes, &RowChange::after, &RowChange::before); !done) {
    database.rollback();
    return done;
  }
  return database.commit();
}

Result<> ChangeRecorder::repeat(const RowChanges& changes) {
  return state_->move(changes, &RowChange::before, &RowChange::after);
}

}  // namespace kv
