#include "platform/database/changes/change_rows.h"

#include <algorithm>
#include <cstring>

#include "platform/database/engine.h"

namespace kv {
namespace {

// Rows of a bulk change differ in which fields changed; so many kinds of them are kept prepared.
constexpr std::size_t mostUpdates = 200;

struct CellBinder {
  sqlite3_stmt* statement;
  int index;
  int operator()(std::monostate) const { return sqlite3_bind_null(statement, index); }
  int operator()(std::int64_t number) const { return sqlite3_bind_int64(statement, index, number); }
  int operator()(double number) const { return sqlite3_bind_double(statement, index, number); }
  int operator()(const BoxedText& text) const {
    return sqlite3_bind_text64(statement, index, text->data(), text->size(), SQLITE_STATIC, SQLITE_UTF8);
  }
  int operator()(const BoxedBytes& bytes) const {
    if (bytes->empty()) return sqlite3_bind_zeroblob(statement, index, 0);
    return sqlite3_bind_blob64(statement, index, bytes->data(), bytes->size(), SQLITE_STATIC);
  }
};

bool haveSameBytes(sqlite3_value* a, const void* first, sqlite3_value* b, const void* second) {
  const int size = sqlite3_value_bytes(a);
  if (size != sqlite3_value_bytes(b)) return false;
  return size == 0 || std::memcmp(first, second, static_cast<std::size_t>(size)) == 0;
}

}  // namespace

Cell cellOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return std::int64_t{sqlite3_value_int64(value)};
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    case SQLITE_TEXT: {
      // Asked of a number, its size would make a text of it first.
      const auto* text = static_cast<const char*>(static_cast<const void*>(sqlite3_value_text(value)));
      return std::string(text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
    }
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_value_blob(value));
      const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
      Bytes field;
      if (size > 0) field.assign(bytes, bytes + size);
      return BoxedBytes(std::move(field));
    }
    default:
      return std::monostate{};
  }
}

bool isSameValue(sqlite3_value* a, sqlite3_value* b) {
  const int type = sqlite3_value_type(a);
  if (type != sqlite3_value_type(b)) return false;
  switch (type) {
    case SQLITE_INTEGER:
      return sqlite3_value_int64(a) == sqlite3_value_int64(b);
    case SQLITE_FLOAT:
      return sqlite3_value_double(a) == sqlite3_value_double(b);
    case SQLITE_TEXT:
      return haveSameBytes(a, sqlite3_value_text(a), b, sqlite3_value_text(b));
    case SQLITE_BLOB:
      return haveSameBytes(a, sqlite3_value_blob(a), b, sqlite3_value_blob(b));
    default:
      return true;
  }
}

void ChangeRows::Finisher::operator()(sqlite3_stmt* statement) const { engine::giveBack(statement); }

tl::unexpected<Error> ChangeRows::failed(int code) const { return fail(engine::errorOf(handle_, code, path_)); }

Result<ChangeRows::Prepared> ChangeRows::prepare(const std::string& sql) const {
  sqlite3_stmt* statement = nullptr;
  const int code = engine::borrow(handle_, sql, &statement);
  if (code != SQLITE_OK) return failed(code);
  return Prepared(statement);
}

/// Whether there is a row of this number, to which the statement is moved then.
Result<bool> ChangeRows::stepTo(sqlite3_stmt* statement, std::int64_t row) const {
  sqlite3_bind_int64(statement, 1, row);
  const int code = engine::step(statement);
  if (code == SQLITE_ROW) return true;
  sqlite3_reset(statement);
  if (code != SQLITE_DONE) return failed(code);
  return false;
}

Result<RowImage> ChangeRows::read(const std::string& table, std::int64_t row) {
  Prepared& reader = readers_[table];
  if (!reader) {
    auto made = prepare("SELECT * FROM main." + engine::quoted(table) + " WHERE rowid = ?1");
    if (!made) return fail(made.error());
    reader = std::move(*made);
  }
  const auto found = stepTo(reader.get(), row);
  if (!found) return fail(found.error());
  if (!*found) return RowImage();
  RowImage image(static_cast<std::size_t>(sqlite3_column_count(reader.get())));
  for (std::size_t i = 0; i < image.size(); ++i) {
    image[i] = cellOf(sqlite3_column_value(reader.get(), static_cast<int>(i)));
  }
  sqlite3_reset(reader.get());
  return image;
}

bool ChangeRows::FieldReader::reads(const Columns& wanted) const {
  return std::ranges::all_of(wanted, [this](std::size_t one) { return one < indexes.size() && indexes[one] >= 0; });
}

/// Null when the table lacks one of the columns.
Result<const ChangeRows::FieldReader*> ChangeRows::fieldReader(const std::string& table, const Columns& columns) {
  FieldReader& reader = fieldReaders_[table];
  if (reader.reads(columns)) return &reader;
  const auto names = namesOf(table);
  if (!names) return fail(names.error());
  const std::size_t count = (*names)->size();
  if (std::ranges::any_of(columns, [count](std::size_t one) { return one >= count; })) return nullptr;
  reader.columns.insert(columns.begin(), columns.end());
  reader.indexes.assign(count, -1);
  std::string fields;
  int index = 0;
  for (const std::size_t column : reader.columns) {
    fields += (index > 0 ? ", " : "") + (**names)[column];
    reader.indexes[column] = index++;
  }
  auto made = prepare("SELECT " + fields + " FROM main." + engine::quoted(table) + " WHERE rowid = ?1");
  if (!made) return fail(made.error());
  reader.statement = std::move(*made);
  return &reader;
}

Result<RowImage> ChangeRows::readFields(const std::string& table, std::int64_t row, const Columns& columns) {
  const auto reader = fieldReader(table, columns);
  if (!reader) return fail(reader.error());
  if (*reader == nullptr) return RowImage();
  sqlite3_stmt* statement = (*reader)->statement.get();
  const auto found = stepTo(statement, row);
  if (!found) return fail(found.error());
  if (!*found) return RowImage();
  RowImage image;
  image.reserve(columns.size());
  for (const std::size_t column : columns) {
    image.push_back(cellOf(sqlite3_column_value(statement, (*reader)->indexes[column])));
  }
  sqlite3_reset(statement);
  return image;
}

Result<> ChangeRows::run(sqlite3_stmt* statement, std::int64_t row, const RowImage& image) const {
  int code = sqlite3_bind_int64(statement, 1, row);
  for (std::size_t i = 0; code == SQLITE_OK && i < image.size(); ++i) {
    code = std::visit(CellBinder{statement, static_cast<int>(i) + 2}, image[i]);
  }
  if (code == SQLITE_OK) code = engine::step(statement);
  sqlite3_reset(statement);
  if (code != SQLITE_DONE) return failed(code);
  return {};
}

Result<> ChangeRows::remove(const std::string& table, std::int64_t row) {
  Prepared& deletion = deletions_[table];
  if (!deletion) {
    auto made = prepare("DELETE FROM main." + engine::quoted(table) + " WHERE rowid = ?1");
    if (!made) return fail(made.error());
    deletion = std::move(*made);
  }
  return run(deletion.get(), row, {});
}

Result<const ChangeRows::Names*> ChangeRows::namesOf(const std::string& table) {
  Names& names = names_[table];
  if (!names.empty()) return &names;
  auto shape = prepare("SELECT * FROM main." + engine::quoted(table) + " LIMIT 0");
  if (!shape) return fail(shape.error());
  for (int i = 0; i < sqlite3_column_count(shape->get()); ++i) {
    names.push_back(engine::quoted(sqlite3_column_name(shape->get(), i)));
  }
  return &names;
}

Result<> ChangeRows::insert(const std::string& table, std::int64_t row, const RowImage& image) {
  Prepared& insertion = insertions_[{table, image.size()}];
  if (!insertion) {
    const auto columns = namesOf(table);
    if (!columns) return fail(columns.error());
    if (image.size() > (*columns)->size()) return fail(ErrorKind::Malformed, path_, "a row of " + table + " was wider");
    std::string names = "rowid", parameters = "?1";
    for (std::size_t i = 0; i < image.size(); ++i) {
      names += ", " + (**columns)[i];
      parameters += ", ?" + std::to_string(i + 2);
    }
    auto made = prepare("INSERT INTO main." + engine::quoted(table) + " (" + names + ") VALUES (" + parameters + ")");
    if (!made) return fail(made.error());
    insertion = std::move(*made);
  }
  return run(insertion.get(), row, image);
}

Result<sqlite3_stmt*> ChangeRows::updater(const std::string& table, const Columns& columns) {
  if (const auto found = updates_.find({table, columns}); found != updates_.end()) return found->second.get();
  const auto names = namesOf(table);
  if (!names) return fail(names.error());
  std::string fields;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    fields += (i > 0 ? ", " : "") + (**names)[columns[i]] + " = ?" + std::to_string(i + 2);
  }
  auto made = prepare("UPDATE main." + engine::quoted(table) + " SET " + fields + " WHERE rowid = ?1");
  if (!made) return fail(made.error());
  if (updates_.size() >= mostUpdates) updates_.clear();
  return updates_.emplace(std::pair(table, columns), std::move(*made)).first->second.get();
}

Result<> ChangeRows::update(const std::string& table, std::int64_t row, const Columns& columns, const RowImage& image) {
  const auto statement = updater(table, columns);
  if (!statement) return fail(statement.error());
  return run(*statement, row, image);
}

Result<ChangeRows::Keys> ChangeRows::findKeys(const std::string& table) const {
  auto query = prepare(
      "SELECT i.cid, l.partial FROM pragma_index_list(?1, 'main') AS l, pragma_index_info(l.name, 'main') AS i "
      "WHERE l.\"unique\"");
  if (!query) return fail(query.error());
  sqlite3_bind_text(query->get(), 1, table.c_str(), -1, SQLITE_STATIC);
  Keys keys{std::in_place};
  int code = engine::step(query->get());
  for (; code == SQLITE_ROW; code = engine::step(query->get())) {
    const int column = sqlite3_column_int(query->get(), 0);
    // An expression, or a condition on other fields.
    if (column < 0 || sqlite3_column_int(query->get(), 1) != 0) return Keys();
    keys->insert(static_cast<std::size_t>(column));
  }
  if (code != SQLITE_DONE) return failed(code);
  return keys;
}

Result<bool> ChangeRows::areKeys(const std::string& table, const Columns& columns) {
  auto found = keys_.find(table);
  if (found == keys_.end()) {
    auto keys = findKeys(table);
    if (!keys) return fail(keys.error());
    found = keys_.emplace(table, std::move(*keys)).first;
  }
  const Keys& keys = found->second;
  return !keys || std::any_of(columns.begin(), columns.end(), [&](std::size_t one) { return keys->contains(one); });
}

}  // namespace kv
