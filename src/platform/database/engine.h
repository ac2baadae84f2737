#pragma once
// What the files of the store share and no other file includes: failures of the engine as Error, names and types as
// they stand in SQL, and the set-up of a connection.

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/table_info.h"
#include "platform/database/value.h"

namespace kv::engine {

struct Closer {
  void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
};
using Connection = std::unique_ptr<sqlite3, Closer>;

/// The condition that an engine code (plain or extended) stands for.
ErrorKind kindOf(int code);
/// The failure of the last call on a connection. `code` is what that call returned.
Error errorOf(sqlite3* handle, int code, std::string where);

/// Prepares the first statement of a text and makes one step of a statement, unless the gate refuses it. Every
/// statement of the store comes through these two. The engine's code, or the gate's; the statement is null then.
/// flags: SQLITE_PREPARE_*; `tail`, if given, becomes the end of the statement in `sql`.
int prepare(sqlite3* handle, std::string_view sql, unsigned flags, sqlite3_stmt** statement,
            const char** tail = nullptr);
int step(sqlite3_stmt* statement);

/// Runs statements without parameters, rows ignored; the engine's code.
int run(sqlite3* handle, std::string_view sql);

/// Gives a connection the store's comparison (NOCASE over every letter) and its LIKE. The engine's code.
int addFunctions(sqlite3* handle);
/// A number that is another one after any row was written or a change undone through the connection.
std::int64_t changeStamp(sqlite3* handle);
/// Counts the undoing of a part of a transaction, which the engine reports to nobody.
void noteUndone(sqlite3* handle);
/// A connection to nothing but memory, with addFunctions done.
Result<Connection> openMemory();
/// Opens an existing file as Database::open tells.
Result<Connection> openFile(const std::string& path, OpenMode mode);
/// The failure why a file or its folder may not be written, if there is one. Permission bits count for root, too.
Result<> checkWritable(const std::string& path);

/// A name as it stands in SQL: plain where it can be, else in double quotes.
std::string quoted(std::string_view name);
/// A text as an SQL literal.
std::string literal(std::string_view text);

struct DeclaredType {
  ColumnType type = ColumnType::Memo;
  int size = 0;
};
/// The type that a declaration names. Names of other makers' files are taken by the engine's affinity rules.
/// Source: SQLite, "Datatypes In SQLite", section 3.1.
DeclaredType declaredType(std::string_view declaration);
bool isTextual(ColumnType type);

/// A value brought to what a column holds: numbers rounded to the column's kind, texts read as numbers. TextInNumber
/// and Malformed as Recordset::set tells.
Result<Value> valueForColumn(const ColumnInfo& column, const Value& value, const std::string& where);

/// The columns of a table in their order; empty when there is no such table. `schema` is "main" or an attached name.
Result<std::vector<ColumnInfo>> readColumns(sqlite3* handle, std::string_view schema, std::string_view table);

}  // namespace kv::engine
