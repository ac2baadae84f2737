// Opening a record set: distinguishing the rows of a single table from other sources, and reading which rows there
// are.

#include "platform/database/recordset.h"
#include "platform/database/recordset_state.h"
#include "platform/database/sql_reader.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr const char* copyTableName = "rows";

const char* orEmpty(const char* text) { return text == nullptr ? "" : text; }

std::string trimmedSelect(std::string_view source) {
  while (!source.empty() && std::string_view(" \t\r\n;").find(source.back()) != std::string_view::npos) {
    source.remove_suffix(1);
  }
  return std::string(source);
}

/// How what follows the table of a source orders its rows, and where its LIMIT, or its end, is.
struct SourceOrder {
  bool ordered = false;
  bool counted = false;  ///< by the number of a column
  std::size_t end = 0;
};

SourceOrder orderOf(std::string_view tail) {
  engine::SqlReader reader(tail);
  engine::SqlToken token = reader.next();
  SourceOrder order;
  while (token.kind != engine::SqlToken::Kind::End && !(token.depth == 0 && token.isWord("LIMIT"))) {
    order.ordered = order.ordered || (token.depth == 0 && token.isWord("ORDER"));
    order.counted = order.counted || (order.ordered && token.text[0] >= '0' && token.text[0] <= '9');
    token = reader.next();
  }
  order.end = token.position;
  return order;
}

/// The query for the numbers of a single table's rows. Rows that the source does not order, or orders as
/// equal, come in the table's own order, whichever index the engine reads them by. The engine carries the inner ORDER
/// BY outwards and computes none of the columns that are not asked for. Where the source's names are the table's own,
/// they need not be listed at all; but "ORDER BY 2" counts them.
std::string keysSqlOf(std::string_view select, const engine::TableSelect& parts) {
  const std::string_view tail = select.substr(parts.end);
  const SourceOrder order = orderOf(tail);
  const std::string rows = std::string(select.substr(parts.from, parts.end - parts.from + order.end)) +
                           (order.ordered ? "\n, kv_row " : "\nORDER BY kv_row ") + std::string(tail.substr(order.end));
  if (parts.allColumns && !order.counted) return "SELECT _rowid_ AS kv_row " + rows;
  return "SELECT kv_row FROM (" + std::string(select.substr(0, parts.from)) + ", _rowid_ AS kv_row " + rows + "\n)";
}

/// Whether every column of a statement is one of the table.
bool readsOnly(const std::string& table, sqlite3_stmt* rows) {
  for (int each = 0; each < sqlite3_column_count(rows); ++each) {
    const char* origin = sqlite3_column_table_name(rows, each);
    if (origin == nullptr || !equalsIgnoringCase(origin, table)) return false;
  }
  return true;
}

/// The type of a computed column, by its value in the first row.
ColumnType typeOfStored(int stored) {
  switch (stored) {
    case SQLITE_INTEGER:
      return ColumnType::Long;
    case SQLITE_FLOAT:
      return ColumnType::Double;
    case SQLITE_BLOB:
      return ColumnType::LongBinary;
    default:
      return ColumnType::Memo;
  }
}

/// A column of the copy: of its declared type, or as its first field is stored when nothing is declared.
ColumnInfo copiedColumn(std::string_view name, const std::string& declaration, ColumnType stored) {
  ColumnInfo column;
  column.name = name;
  column.type = stored;
  if (declaration.empty()) return column;
  const engine::DeclaredType type = engine::declaredType(declaration);
  column.type = type.type;
  column.size = type.size;
  return column;
}

/// Adds the statements that read rows of a shape with its columns, and finds its columns by their names.
/// ownNames: the source's names count; else those of the table, which is a copy.
void addStatements(engine::RecordsetShape& shape, bool ownNames) {
  std::string fields;
  std::string named;
  for (std::size_t each = 0; each < shape.origins.size(); ++each) {
    const std::string& name = shape.columns[each].name;
    const std::string origin = engine::quoted(shape.origins[each]);
    fields += (each == 0 ? "" : ", ") + origin;
    named += origin + " AS " + engine::quoted(ownNames ? name : shape.origins[each]) + ", ";
    shape.columnIndexes.try_emplace(name, each);
  }
  const std::string table = engine::quoted(shape.schema) + "." + engine::quoted(shape.table);
  // The name after the parentheses lets a condition say "articoli.ID".
  const std::string from = shape.wholeTable ? table : "(SELECT " + named + "_rowid_ AS kv_row FROM " + table + ")";
  shape.rowsSql = std::string("SELECT ") + (shape.wholeTable ? "_rowid_ AS " : "") + "kv_row FROM " + from + " AS " +
                  engine::quoted(shape.table) + " WHERE ";
  shape.fetchSql = "SELECT " + fields + " FROM " + table + " WHERE _rowid_ = ?1";
  shape.versionSql = "PRAGMA " + engine::quoted(shape.schema) + ".data_version";
}

}  // namespace

Result<Statement> Recordset::State::prepare(std::string_view sql) const {
  sqlite3_stmt* statement = nullptr;
  const int code = engine::borrow(rowsHandle(), sql, &statement);
  if (code != SQLITE_OK) return fail(engine::errorOf(rowsHandle(), code, where()));
  return Statement(statement, where());
}

/// The columns depend on what comes before WHERE and ORDER BY alone, so a known shape serves every department's rows.
Result<> Recordset::State::open() {
  const auto parts = engine::singleTableOf(source);
  const std::string_view head = parts ? std::string_view(source).substr(0, parts->end) : std::string_view();
  const auto known = parts ? openKnown(head) : Result<bool>(false);
  if (!known) return fail(known.error());
  if (!*known) {
    if (auto opened = openNew(parts); !opened) return opened;
  }
  if (auto ready = prepareReading(); !ready) return ready;
  keysSql =
      memory ? std::string("SELECT _rowid_ FROM ") + copyTableName + " ORDER BY _rowid_" : keysSqlOf(source, *parts);
  return readKeys();
}

/// Takes the shape that is kept for the head of a source; false when there is none. The gate is asked as often as if
/// the shape had to be found.
Result<bool> Recordset::State::openKnown(std::string_view head) {
  engine::StatementCache* cache = engine::cacheOf(handle);
  if (cache == nullptr || !cache->refresh(handle)) return false;
  auto found = cache->shape(head);
  if (found == nullptr) return false;
  int code = engine::ask(source);
  for (std::size_t call = 0; code == SQLITE_OK && call < found->factCalls; ++call)
    code = engine::ask(engine::columnsSql);
  if (code != SQLITE_OK) return fail(engine::errorOf(handle, code, path));
  shape = std::move(found);
  return true;
}

/// Determines what the source is. It is the rows of one table when the statement is of that kind and every column of it
/// is a column of the table.
Result<> Recordset::State::openNew(const std::optional<engine::TableSelect>& parts) {
  sqlite3_stmt* raw = nullptr;
  const int code = engine::prepare(handle, source, 0, &raw);
  if (code != SQLITE_OK) return fail(engine::errorOf(handle, code, path));
  Statement rows(raw, path);
  const bool oneTable = parts && readsOnly(parts->table, raw);
  auto found = oneTable ? tableShape(rows) : copyShape(rows);
  if (!found) return fail(found.error());
  found->wholeTable = oneTable && parts->allColumns;
  addStatements(*found, oneTable);
  shape = std::make_shared<const engine::RecordsetShape>(std::move(*found));
  engine::StatementCache* cache = oneTable ? engine::cacheOf(handle) : nullptr;
  if (cache != nullptr && cache->refresh(handle)) cache->keepShape(source.substr(0, parts->end), shape);
  return {};
}

Result<engine::RecordsetShape> Recordset::State::tableShape(Statement& sourceRows) const {
  sqlite3_stmt* raw = sourceRows.handle_;
  engine::RecordsetShape found;
  found.schema = orEmpty(sqlite3_column_database_name(raw, 0));
  found.table = orEmpty(sqlite3_column_table_name(raw, 0));
  const auto base = engine::readColumns(handle, found.schema, found.table);
  if (!base) return fail(base.error());
  found.factCalls = base->size() + 2;
  engine::ByColumnName<const ColumnInfo*> named;
  for (const ColumnInfo& column : *base) named.emplace(column.name, &column);
  for (int each = 0; each < sourceRows.columnCount(); ++each) {
    const std::string origin = orEmpty(sqlite3_column_origin_name(raw, each));
    const auto original = named.find(origin);
    if (original == named.end()) {
      return fail(ErrorKind::Missing, path + ": " + found.table, "no such column: " + origin);
    }
    ColumnInfo column = *original->second;
    column.name = sourceRows.columnName(each);
    found.columns.push_back(std::move(column));
    found.origins.push_back(origin);
  }
  return found;
}

/// Creates the table in memory. Its columns keep their declarations and with them their types and comparisons.
Result<engine::RecordsetShape> Recordset::State::copyShape(Statement& sourceRows) {
  auto opened = engine::openMemory();
  if (!opened) return fail(opened.error());
  memory = std::move(*opened);
  engine::RecordsetShape found;
  found.schema = "main";
  found.table = copyTableName;
  auto first = sourceRows.step();
  if (!first) return fail(first.error());
  std::string declared;
  engine::ByColumnName<int> taken;
  for (int each = 0; each < sourceRows.columnCount(); ++each) {
    const std::string declaration = orEmpty(sqlite3_column_decltype(sourceRows.handle_, each));
    const ColumnType stored = *first ? typeOfStored(sqlite3_column_type(sourceRows.handle_, each)) : ColumnType::Memo;
    ColumnInfo column = copiedColumn(sourceRows.columnName(each), declaration, stored);
    std::string name = column.name;
    for (int copy = 1; !taken.emplace(name, each).second; ++copy) name = column.name + ":" + std::to_string(copy);
    const bool compares = !declaration.empty() && engine::isTextual(column.type);
    declared +=
        (each == 0 ? "" : ", ") + engine::quoted(name) + " " + declaration + (compares ? " COLLATE NOCASE" : "");
    found.columns.push_back(std::move(column));
    found.origins.push_back(std::move(name));
  }
  sourceRows.reset();
  const int code = engine::run(memory.get(), std::string("CREATE TABLE ") + copyTableName + " (" + declared + ")");
  if (code != SQLITE_OK) return fail(engine::errorOf(memory.get(), code, path + ": " + found.table));
  return found;
}

/// Copies the rows that the source gives now.
Result<> Recordset::State::refill() {
  engine::run(memory.get(), "ROLLBACK");  // of a copy that failed halfway
  engine::run(memory.get(), std::string("DELETE FROM ") + copyTableName);
  sqlite3_stmt* raw = nullptr;
  const int code = engine::prepare(handle, source, 0, &raw);
  if (code != SQLITE_OK) return fail(engine::errorOf(handle, code, path));
  Statement from(raw, path);
  std::string marks;
  for (std::size_t each = 0; each < shape->columns.size(); ++each) marks += each == 0 ? "?" : ",?";
  auto into = prepare(std::string("INSERT INTO ") + copyTableName + " VALUES (" + marks + ")");
  if (!into) return fail(into.error());
  engine::run(memory.get(), "BEGIN");
  for (;;) {
    auto more = from.step();
    if (!more) return fail(more.error());
    if (!*more) break;
    for (int each = 0; each < from.columnCount(); ++each) {
      sqlite3_bind_value(into->handle_, each + 1, sqlite3_column_value(raw, each));
    }
    if (auto written = into->execute(); !written) return written;
  }
  engine::run(memory.get(), "COMMIT");
  return {};
}

Result<> Recordset::State::prepareReading() {
  auto fetching = prepare(shape->fetchSql);
  if (!fetching) return fail(fetching.error());
  fetch = std::move(*fetching);
  auto versioning = prepare(shape->versionSql);
  if (!versioning) return fail(versioning.error());
  version = std::move(*versioning);
  return {};
}

/// Reads the numbers of the rows in the order of the source and moves the cursor to the first one.
Result<> Recordset::State::readKeys() {
  endDraft();
  forgetFound();
  keys.clear();
  cursor = 0;
  rowAt = -2;
  if (memory) {
    if (auto filled = refill(); !filled) return filled;
  }
  auto list = prepare(keysSql);
  if (!list) return fail(list.error());
  for (;;) {
    auto more = list->step();
    if (!more) return fail(more.error());
    if (!*more) return {};
    keys.push_back(list->integer(0));
  }
}

Result<Recordset> Database::openRecordset(std::string_view source) {
  auto state = std::make_unique<Recordset::State>();
  state->handle = handle_;
  state->path = path_;
  if (engine::isSelect(source)) {
    state->source = trimmedSelect(source);
  } else {
    const engine::SqlToken name = engine::SqlReader(source).next();
    auto info = table(name.kind == engine::SqlToken::Kind::QuotedName ? name.name() : std::string(trim(source)));
    if (!info) return fail(info.error());
    state->source = "SELECT * FROM main." + engine::quoted(info->name);
  }
  if (auto opened = state->open(); !opened) return fail(opened.error());
  return Recordset(std::move(state));
}

}  // namespace kv
