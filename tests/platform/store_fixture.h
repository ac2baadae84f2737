#pragma once
// What the tests of the store share: databases in a fresh folder, and rows as a page of text.

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <string_view>
#include <utility>

#include "platform/database/database.h"
#include "platform/database/table_info.h"
#include "support/row_text.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv::test {

template <class T>
ErrorKind kindOf(const Result<T>& result) {
  if (!result) return result.error().kind;
  ADD_FAILURE() << "no failure";
  return ErrorKind::Other;
}

inline void run(Database& database, std::string_view sql) {
  const auto done = database.execute(sql);
  if (!done) ADD_FAILURE() << sql << "\n" << done.error().what;
}

/// What the engine gives without the store's functions, as any other SQLite program would see it.
inline std::string rowsOfPlainEngine(const std::string& path, const char* sql) {
  sqlite3* handle = nullptr;
  if (sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI, nullptr) != SQLITE_OK)
    return "cannot open";
  std::string text;
  const auto add = [](void* to, int count, char** fields, char**) {
    for (int at = 0; at < count; ++at) {
      *static_cast<std::string*>(to) += (at > 0 ? "|" : "") + std::string(fields[at] == nullptr ? "null" : fields[at]);
    }
    *static_cast<std::string*>(to) += '\n';
    return 0;
  };
  char* message = nullptr;
  if (sqlite3_exec(handle, sql, add, &text, &message) != SQLITE_OK) text += message;
  sqlite3_free(message);
  sqlite3_close(handle);
  return text;
}

inline ColumnInfo column(std::string name, ColumnType type, int size = 0) {
  return {std::move(name), type, size, 0, false, {}};
}
inline ColumnInfo automaticKey(std::string name) {
  return {std::move(name), ColumnType::Long, 0, autoIncrement, false, {}};
}

/// A test with a folder of its own and an empty database in it.
class StoreTest : public ::testing::Test {
 protected:
  TempFolder folder_;
  std::string path_ = folder_ / "catalog.mdb";
  Database database_ = valueOf(Database::create(path_));
};

}  // namespace kv::test
