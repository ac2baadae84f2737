#pragma once
// The build database `db/sql.mdb`: the rows that the shop's scripts read at request time, until the export turns them
// into MySQL text. It starts as a copy of the shop's `new.mdb`, is filled within one transaction and belongs to one
// run.

#include <string>
#include <string_view>
#include <vector>

#include "builder/article/derived_row.h"
#include "builder/page/page_text.h"
#include "platform/database/database.h"
#include "platform/database/statement.h"
#include "platform/database/table_info.h"
#include "platform/ports/result.h"

namespace kv {

/// The only writer of the build database.
class RowTables {
 public:
  /// Replaces the database of the shop by an empty one and begins. Failures as copyFile, Database::open,
  /// Database::begin.
  Result<> create(const std::string& shopFolder);
  /// Whether there is a database to write to.
  bool isOpen() const { return build_.isOpen(); }

  /// Opens the tables that get the articles of a language. Failures as DerivedRowWriter::open.
  Result<> startLanguage(std::string_view lingua);
  /// The statement that appends rows to a table: one parameter per column, in the order given.
  Result<Statement> insertInto(std::string_view table, const std::vector<std::string>& columns);
  /// Adds a table that only some shops have. Failures as Database::createTable.
  Result<> addTable(const TableInfo& table) { return build_.createTable(table); }
  /// Hands the database to a reader of what was written so far.
  Database& written() { return build_; }
  /// Appends the articles of a sub-page, with the code around each cell of a grid of `affiancati` columns. The tables
  /// that all languages share get them in the first language alone. Failures as Statement::execute.
  Result<> writeArticles(const PageIdentity& page, int affiancati, const DerivedRows& rows);

  /// Ends the transaction; what was written stays. Failures as Database::commit.
  Result<> commit() { return build_.commit(); }
  /// Closes the file, without a commit.
  void close() { build_.close(); }

  /// The columns of the rows that writeArticles takes.
  const DerivedColumns& columns() const { return columns_; }

 private:
  Database build_;  // declared before the writers, whose statements it outlives
  DerivedColumns columns_;
  DerivedRowWriter articles_;         // of the language
  DerivedRowWriter details_, order_;  // shared by all languages
  bool firstLanguage_ = true;
};

}  // namespace kv
