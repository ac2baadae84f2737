#pragma once
// What the sources of this folder share and no other file includes: failures of the engine as Error, names and types
// as SQL writes them, and the set-up of a connection.

#include <sqlite3.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/statement_cache.h"
#include "platform/database/table_info.h"
#include "platform/database/value.h"

namespace kv::engine {

/// Closes a connection with what it kept, at the latest when its last statement is gone.
void closeConnection(sqlite3* handle);
struct Closer {
  void operator()(sqlite3* handle) const { closeConnection(handle); }
};
/// An SQLite connection that closes itself.
using Connection = std::unique_ptr<sqlite3, Closer>;

/// The error kind of an engine code, plain or extended.
ErrorKind kindOf(int code);
/// The failure of the last call on a connection. `code` is what that call returned.
Error errorOf(sqlite3* handle, int code, std::string where);

/// Asks the gate for a call, which is then made or was made before: the engine's SQLITE_OK, or what the gate says.
int ask(std::string_view sql);
/// Prepares the first statement of a text and makes one step of a statement, unless the gate refuses it. Every
/// statement of the store comes through these two, or borrow. The engine's code, or the gate's; the statement is null
/// then.
/// flags: SQLITE_PREPARE_*; `tail`, if given, becomes the end of the statement in `sql`.
int prepare(sqlite3* handle, std::string_view sql, unsigned flags, sqlite3_stmt** statement,
            const char** tail = nullptr);
int step(sqlite3_stmt* statement);
/// As prepare, for a statement that lives long or is needed again: one of the same text that was given back is used
/// again if the schema is still the same. Such a statement looks like a new one. It goes to giveBack, not to the
/// engine.
int borrow(sqlite3* handle, std::string_view sql, sqlite3_stmt** statement, const char** tail = nullptr);
/// Ends the use of a statement: what it reads and what is bound to it is let go at once. Null is none.
void giveBack(sqlite3_stmt* statement);
/// What a connection keeps; null for one without the store's functions.
StatementCache* cacheOf(sqlite3* handle);

/// Runs statements without parameters and ignores their rows. The engine's code, SQLITE_OK when all went well.
int run(sqlite3* handle, std::string_view sql);

/// Gives a connection the store's comparison (NOCASE beyond ASCII) and its LIKE. The engine's code.
int addFunctions(sqlite3* handle);
/// The change counter of a connection: it differs after any row was written or a change was rolled back through the
/// connection. Only equality has a meaning.
std::int64_t changeCounter(sqlite3* handle);
/// Counts the rollback of an inner transaction, which the engine doesn't report, in the change counter.
void noteUndone(sqlite3* handle);
/// Has `goOn` asked while statements of the connection run, as Database::askWhileRunning says.
void askWhileRunning(sqlite3* handle, std::function<bool()> goOn);
/// A connection to a database in memory alone, with addFunctions done.
Result<Connection> openMemory();
/// Opens an existing file in the way that Database::open describes. Failures as there.
Result<Connection> openFile(const std::string& path, OpenMode mode);
/// ReadOnly when a file or its folder may not be written. Permission bits count for root, too.
Result<> checkWritable(const std::string& path);

/// A name as SQL needs it: plain where possible, else in double quotes.
std::string quoted(std::string_view name);
/// A text as an SQL literal, in single quotes.
std::string literal(std::string_view text);

/// A column's type as its declaration gives it.
struct DeclaredType {
  ColumnType type = ColumnType::Memo;
  int size = 0;  ///< characters or bytes; 0 when none is declared
};
/// The type that a declaration names. Names in files of other programs are judged by the engine's affinity rules.
/// Source: SQLite, "Datatypes In SQLite", section 3.1.
DeclaredType declaredType(std::string_view declaration);
/// Whether a column type holds text.
bool isTextual(ColumnType type);

/// A value brought to what a column holds: numbers rounded to the column's kind, texts read as numbers. TextInNumber
/// and Malformed as Recordset::set describes.
Result<Value> valueForColumn(const ColumnInfo& column, const Value& value, const std::string& where);

/// What readColumns asks the engine, prepared once and stepped once for each column and once more.
constexpr std::string_view columnsSql = "SELECT name, type, \"notnull\", dflt_value, pk FROM pragma_table_info(?1, ?2)";
/// The columns of a table in their order; empty when there is no such table. `schema` is "main" or an attached name.
Result<std::vector<ColumnInfo>> readColumns(sqlite3* handle, std::string_view schema, std::string_view table);

}  // namespace kv::engine
