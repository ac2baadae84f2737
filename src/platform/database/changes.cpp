// The recorder uses the engine's pre-update hook. Only the first image of a row is kept while statements run; its
// present image is read when the changes are taken, so a rollback needs no bookkeeping of its own.
// Source: SQLite, "The pre-update hook".

#define SQLITE_ENABLE_PREUPDATE_HOOK 1
#include "platform/database/changes.h"

#include <map>
#include <set>
#include <utility>

#include "platform/database/engine.h"

namespace kv {
namespace {

using Key = std::pair<std::string, std::int64_t>;

Cell cellOf(sqlite3_value* value) {
  const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return std::int64_t{sqlite3_value_int64(value)};
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    case SQLITE_TEXT:
      return std::string(static_cast<const char*>(static_cast<const void*>(sqlite3_value_text(value))), size);
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_value_blob(value));
      return size == 0 ? Bytes{} : Bytes(bytes, bytes + size);
    }
    default:
      return std::monostate{};
  }
}

struct Binder {
  sqlite3_stmt* statement;
  int index;
  int operator()(std::monostate) const { return sqlite3_bind_null(statement, index); }
  int operator()(std::int64_t number) const { return sqlite3_bind_int64(statement, index, number); }
  int operator()(double number) const { return sqlite3_bind_double(statement, index, number); }
  int operator()(const std::string& text) const {
    return sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
  }
  int operator()(const Bytes& bytes) const {
    if (bytes.empty()) return sqlite3_bind_zeroblob(statement, index, 0);
    return sqlite3_bind_blob64(statement, index, bytes.data(), bytes.size(), SQLITE_STATIC);
  }
};

struct Finisher {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Prepared = std::unique_ptr<sqlite3_stmt, Finisher>;
using Statements = std::map<std::string, Prepared>;  ///< by table
using Image = RowImage RowChange::*;

RowChange changeOf(const Key& key, RowImage before, RowImage after) {
  RowChange change{key.first, key.second, {}, {}, {}};
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

std::size_t sizeOf(const RowImage& image) {
  std::size_t size = image.size() * sizeof(Cell);
  for (const Cell& cell : image) {
    if (const auto* text = std::get_if<std::string>(&cell)) size += text->size();
    if (const auto* bytes = std::get_if<Bytes>(&cell)) size += bytes->size();
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
  std::vector<std::pair<Key, RowImage>> first;  ///< images before, in the order of the first touch
  std::set<Key> seen;
  bool paused = false;

  void note(Key key, RowImage image) {
    if (seen.insert(key).second) first.emplace_back(std::move(key), std::move(image));
  }
  void hear(int operation, const char* table, std::int64_t oldRow, std::int64_t newRow);
  Result<Prepared> prepare(const std::string& sql) const;
  Result<Prepared> prepareInsert(const std::string& table) const;
  Result<RowImage> read(const Key& key, Statements& readers) const;
  Result<> write(const RowChange& change, const RowImage& image, Statements& statements) const;
  Result<RowImage> target(const RowChange& change, Image from, Image to, RowImage present) const;
  Result<> exchange(const RowChanges& changes, Image from, Image to) const;
  Result<> move(const RowChanges& changes, Image from, Image to);
};

void ChangeRecorder::State::hear(int operation, const char* table, std::int64_t oldRow, std::int64_t newRow) {
  if (paused || !watched(table)) return;
  RowImage image;
  if (operation != SQLITE_INSERT) {
    const int columns = sqlite3_preupdate_count(handle);
    image.reserve(static_cast<std::size_t>(columns));
    for (int i = 0; i < columns; ++i) {
      sqlite3_value* value = nullptr;
      if (sqlite3_preupdate_old(handle, i, &value) != SQLITE_OK || value == nullptr) return;
      image.push_back(cellOf(value));
    }
  }
  if (operation == SQLITE_INSERT) {
    note({table, newRow}, {});
  } else {
    note({table, oldRow}, std::move(image));
    if (operation == SQLITE_UPDATE && newRow != oldRow) note({table, newRow}, {});
  }
}

Result<Prepared> ChangeRecorder::State::prepare(const std::string& sql) const {
  sqlite3_stmt* statement = nullptr;
  const int code = engine::prepare(handle, sql, 0, &statement);
  if (code != SQLITE_OK) return fail(engine::errorOf(handle, code, database.path()));
  return Prepared(statement);
}

Result<RowImage> ChangeRecorder::State::read(const Key& key, Statements& readers) const {
  Prepared& reader = readers[key.first];
  if (!reader) {
    auto made = prepare("SELECT * FROM main." + engine::quoted(key.first) + " WHERE rowid = ?1");
    if (!made) return fail(made.error());
    reader = std::move(*made);
  }
  sqlite3_bind_int64(reader.get(), 1, key.second);
  RowImage image;
  const int code = engine::step(reader.get());
  if (code == SQLITE_ROW) {
    const int columns = sqlite3_column_count(reader.get());
    for (int i = 0; i < columns; ++i) image.push_back(cellOf(sqlite3_column_value(reader.get(), i)));
  }
  sqlite3_reset(reader.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) return fail(engine::errorOf(handle, code, database.path()));
  return image;
}

Result<Prepared> ChangeRecorder::State::prepareInsert(const std::string& table) const {
  auto shape = prepare("SELECT * FROM main." + engine::quoted(table) + " LIMIT 0");
  if (!shape) return fail(shape.error());
  std::string names = "rowid";
  std::string parameters = "?1";
  for (int i = 0; i < sqlite3_column_count(shape->get()); ++i) {
    names += ", " + engine::quoted(sqlite3_column_name(shape->get(), i));
    parameters += ", ?" + std::to_string(i + 2);
  }
  return prepare("INSERT INTO main." + engine::quoted(table) + " (" + names + ") VALUES (" + parameters + ")");
}

/// Runs the statement of a table for one row; prepares it for the first one.
Result<> ChangeRecorder::State::write(const RowChange& change, const RowImage& image, Statements& statements) const {
  Prepared& statement = statements[change.table];
  if (!statement) {
    auto made = image.empty() ? prepare("DELETE FROM main." + engine::quoted(change.table) + " WHERE rowid = ?1")
                              : prepareInsert(change.table);
    if (!made) return fail(made.error());
    statement = std::move(*made);
  }
  int code = sqlite3_bind_int64(statement.get(), 1, change.row);
  for (std::size_t i = 0; code == SQLITE_OK && i < image.size(); ++i) {
    code = std::visit(Binder{statement.get(), static_cast<int>(i) + 2}, image[i]);
  }
  if (code == SQLITE_OK) code = engine::step(statement.get());
  sqlite3_reset(statement.get());
  if (code != SQLITE_DONE) return fail(engine::errorOf(handle, code, database.path()));
  return {};
}

/// The row that `change` leads to, computed from the present one. Malformed when that isn't what `from` says.
Result<RowImage> ChangeRecorder::State::target(const RowChange& change, Image from, Image to, RowImage present) const {
  const RowImage& expected = change.*from;
  bool same = change.columns.empty() ? present == expected : !present.empty();
  for (std::size_t i = 0; same && i < change.columns.size(); ++i) same = present[change.columns[i]] == expected[i];
  if (!same) return fail(ErrorKind::Malformed, database.path(), "a row of " + change.table + " has changed since");
  if (change.columns.empty()) return change.*to;
  for (std::size_t i = 0; i < change.columns.size(); ++i) present[change.columns[i]] = (change.*to)[i];
  return present;
}

/// Checks all rows, then deletes all of them and inserts the wanted ones. A row by row update could meet the unique key
/// of another row that is to change as well.
Result<> ChangeRecorder::State::exchange(const RowChanges& changes, Image from, Image to) const {
  std::vector<RowImage> wanted;
  {
    Statements readers;
    for (const RowChange& change : changes) {
      auto present = read({change.table, change.row}, readers);
      if (!present) return fail(present.error());
      auto image = target(change, from, to, std::move(*present));
      if (!image) return fail(image.error());
      wanted.push_back(std::move(*image));
    }
  }
  Statements deletions;
  for (const RowChange& change : changes) {
    if (auto done = write(change, {}, deletions); !done) return done;
  }
  Statements insertions;
  for (std::size_t i = 0; i < changes.size(); ++i) {
    if (wanted[i].empty()) continue;
    if (auto done = write(changes[i], wanted[i], insertions); !done) return done;
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
    : state_(new State{database, database.handle_, std::move(watched), {}, {}, false}) {
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
  Statements readers;
  for (auto& [key, image] : state_->first) {
    auto now = state_->read(key, readers);
    if (!now) return fail(now.error());
    if (*now != image) changes.push_back(changeOf(key, std::move(image), std::move(*now)));
  }
  state_->first.clear();
  state_->seen.clear();
  return changes;
}

bool ChangeRecorder::touched() const { return !state_->first.empty(); }

Result<> ChangeRecorder::revert(const RowChanges& changes) {
  return state_->move(changes, &RowChange::after, &RowChange::before);
}

Result<> ChangeRecorder::repeat(const RowChanges& changes) {
  return state_->move(changes, &RowChange::before, &RowChange::after);
}

}  // namespace kv
