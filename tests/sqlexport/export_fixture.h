#pragma once
// A database of the test's own rows, exported into a fresh folder.

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/database/database.h"
#include "platform/database/table_info.h"
#include "platform/files/files.h"
#include "platform/text/text.h"
#include "sqlexport/full_export.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv::test {

/// The lines of a file as a test writes them: "\n" for CR LF, and a failure where there is a lone CR or LF.
inline std::string plainLines(std::string_view bytes) {
  const std::string text = replaceAll(bytes, "\r\n", "\n");
  EXPECT_EQ(text.find('\r'), std::string::npos);
  EXPECT_EQ(replaceAll(text, "\n", "\r\n"), bytes) << "a line end without CR";
  return text;
}

inline ColumnInfo column(std::string name, ColumnType type, int size = 0) {
  ColumnInfo made;
  made.name = std::move(name);
  made.type = type;
  made.size = size;
  return made;
}

class ExportTest : public ::testing::Test {
 protected:
  ExportTest() {
    EXPECT_TRUE(Database::create(path));
    auto opened = Database::open(path, OpenMode::Shared);
    EXPECT_TRUE(opened);
    if (opened) database = std::move(*opened);
  }

  void sql(std::string_view statements) {
    const auto done = database.execute(statements);
    ASSERT_TRUE(done) << done.error().what;
  }
  /// A table with an INTEGER column for each name, without rows.
  void table(const std::string& name, const std::vector<std::string>& columns = {"n"}) {
    std::string list;
    for (const std::string& one : columns) list += (list.empty() ? "" : ", ") + one + " INTEGER";
    sql("CREATE TABLE " + name + " (" + list + ")");
  }

  /// Exports, and returns the load file.
  std::string load(std::string_view suffix = "") {
    exported =
        ExportDatabaseSql({path, folder / "db.sc", folder / "dbdel.sc", std::string(suffix), "secsecsec"}, style, user);
    const auto bytes = readBytes(folder / "db.sc");
    return bytes ? plainLines(*bytes) : "(missing)";
  }
  std::string drop() {
    const auto bytes = readBytes(folder / "dbdel.sc");
    return bytes ? plainLines(*bytes) : "(missing)";
  }
  /// The load file after the definitions: from the first INSERT or LOCK on.
  std::string rows() {
    const std::string text = load();
    return text.substr(std::min(text.size(), text.find(");\n\n") + 4));
  }

  TempFolder folder;
  std::string path = folder / "sql.mdb";
  Database database;
  SqlStyle style{";", false, TARGET};
  ScriptedUser user;
  bool exported = false;
};

}  // namespace kv::test
