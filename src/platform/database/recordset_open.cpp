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

/// The query for the numbers of a single table's rows. Rows that the source does not order, or orders as
/// equal, come in the table's own order, whichever index the engine reads them by. The engine carries the inner ORDER
/// BY outwards and computes none of the columns that are not asked for.
std::string keysSql(std::string_view select) {
  engine::SqlReader reader(select);
  engine::SqlToken token = reader.next();
  while (!(token.depth == 0 && token.isWord("FROM"))) token = reader.next();
  const std::size_t from = token.position;
  bool ordered = false;
  while (token.kind != engine::SqlToken::Kind::End && !(token.depth == 0 && token.isWord("LIMIT"))) {
    ordered = ordered || (token.depth == 0 && token.isWord("ORDER"));
    token = reader.next();
  }
  const std::string rows(select.substr(from, token.position - from));
  return "SELECT kv_row FROM (" + std::string(select.substr(0, from)) + ", _rowid_ AS kv_row " + rows +
         (ordered ? "\n, kv_row " : "\nORDER BY kv_row ") + std::string(select.substr(token.position)) + "\n)";
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

}  // namespace

std::size_t ColumnNameHash::operator()(std::string_view name) const {
  // FNV-1a over the ASCII characters in lower case. Those beyond ASCII may fold to each other, so only the comparison
  // looks at them.
  std::size_t hash = 14695981039346656037U;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) hash = (hash ^ (byte >= 'A' && byte <= 'Z' ? byte + 32U : byte)) * 1099511628211U;
  }
  return hash;
}

bool ColumnNameEqual::operator()(std::string_view a, std::string_view b) const {
  return a == b || equalsIgnoringCase(a, b);
}

Result<Statement> Recordset::State::prepare(std::string_view sql) const {
  sqlite3_stmt* statement = nullptr;
  const int code = engine::prepare(rowsHandle(), sql, SQLITE_PREPARE_PERSISTENT, &statement);
  if (code != SQLITE_OK) return fail(engine::errorOf(rowsHandle(), code, where()));
  return Statement(statement, where());
}

/// Determines what the source is. It is the rows of one table when the statement is of that kind and every column of it
/// is a column of the table.
Result<> Recordset::State::open() {
  sqlite3_stmt* raw = nullptr;
  const int code = engine::prepare(handle, source, 0, &raw);
  if (code != SQLITE_OK) return fail(engine::errorOf(handle, code, path));
  Statement rows(raw, path);
  const auto single = engine::singleTableOf(source);
  bool oneTable = single.has_value();
  for (int each = 0; oneTable && each < rows.columnCount(); ++each) {
    const char* origin = sqlite3_column_table_name(raw, each);
    oneTable = origin != nullptr && equalsIgnoringCase(origin, *single);
  }
  Result<> opened = oneTable ? openTable(rows) : openCopy(rows);
  if (!opened) return opened;
  columnIndexes.clear();
  for (std::size_t each = 0; each < columns.size(); ++each) columnIndexes.try_emplace(columns[each].name, each);
  if (auto ready = prepareReading(); !ready) return ready;
  return readKeys();
}

Result<> Recordset::State::openTable(Statement& sourceRows) {
  sqlite3_stmt* raw = sourceRows.handle_;
  schema = orEmpty(sqlite3_column_database_name(raw, 0));
  table = orEmpty(sqlite3_column_table_name(raw, 0));
  const auto base = engine::readColumns(handle, schema, table);
  if (!base) return fail(base.error());
  std::unordered_map<std::string_view, const ColumnInfo*, ColumnNameHash, ColumnNameEqual> named;
  for (const ColumnInfo& column : *base) named.emplace(column.name, &column);
  for (int each = 0; each < sourceRows.columnCount(); ++each) {
    const std::string origin = orEmpty(sqlite3_column_origin_name(raw, each));
    const auto found = named.find(origin);
    if (found == named.end()) return fail(ErrorKind::Missing, where(), "no such column: " + origin);
    ColumnInfo column = *found->second;
    column.name = sourceRows.columnName(each);
    columns.push_back(std::move(column));
    origins.push_back(origin);
  }
  return {};
}

/// Creates the table in memory. Its columns keep their declarations and with them their types and comparisons.
Result<> Recordset::State::openCopy(Statement& sourceRows) {
  auto opened = engine::openMemory();
  if (!opened) return fail(opened.error());
  memory = std::move(*opened);
  schema = "main";
  table = copyTableName;
  auto first = sourceRows.step();
  if (!first) return fail(first.error());
  std::string declared;
  for (int each = 0; each < sourceRows.columnCount(); ++each) {
    const std::string declaration = orEmpty(sqlite3_column_decltype(sourceRows.handle_, each));
    const ColumnType stored = *first ? typeOfStored(sqlite3_column_type(sourceRows.handle_, each)) : ColumnType::Memo;
    ColumnInfo column = copiedColumn(sourceRows.columnName(each), declaration, stored);
    std::string name = column.name;
    for (int copy = 1; columnIndexes.contains(name); ++copy) name = column.name + ":" + std::to_string(copy);
    columnIndexes.emplace(name, origins.size());
    const bool compares = !declaration.empty() && engine::isTextual(column.type);
    declared +=
        (each == 0 ? "" : ", ") + engine::quoted(name) + " " + declaration + (compares ? " COLLATE NOCASE" : "");
    columns.push_back(std::move(column));
    origins.push_back(std::move(name));
  }
  sourceRows.reset();
  const int code = engine::run(memory.get(), std::string("CREATE TABLE ") + copyTableName + " (" + declared + ")");
  if (code != SQLITE_OK) return fail(engine::errorOf(memory.get(), code, where()));
  return {};
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
  for (std::size_t each = 0; each < columns.size(); ++each) marks += each == 0 ? "?" : ",?";
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
  std::string fields;
  std::string named;
  for (std::size_t each = 0; each < origins.size(); ++each) {
    const std::string origin = engine::quoted(origins[each]);
    fields += (each == 0 ? "" : ", ") + origin;
    named += origin + " AS " + engine::quoted(memory ? origins[each] : columns[each].name) + ", ";
  }
  // The name after the parentheses lets a condition say "articoli.ID".
  rowsSql = "SELECT kv_row FROM (SELECT " + named + "_rowid_ AS kv_row FROM " + qualifiedTable() + ") AS " +
            engine::quoted(table) + " WHERE ";
  auto fetching = prepare("SELECT " + fields + " FROM " + qualifiedTable() + " WHERE _rowid_ = ?1");
  if (!fetching) return fail(fetching.error());
  fetch = std::move(*fetching);
  auto versioning = prepare("PRAGMA " + engine::quoted(schema) + ".data_version");
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
  std::string sql = std::string("SELECT _rowid_ FROM ") + copyTableName + " ORDER BY _rowid_";
  if (memory) {
    if (auto filled = refill(); !filled) return filled;
  } else {
    sql = keysSql(source);
  }
  auto list = prepare(sql);
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
