#pragma once
// The tag database `source.mdb`: the page tags and derived rows of the page that a run made last, for programs that
// look at a build from outside. It starts as a copy of the shop's `source.new`, once per language.

#include <string>

#include "builder/article/derived_row.h"
#include "builder/page/page_tags.h"
#include "platform/database/database.h"
#include "platform/ports/result.h"

namespace kv {

/// The only writer of the tag database.
class TagDatabase {
 public:
  /// Replaces the database of the shop by an empty one. Gives the page tag row that its columns make, all empty.
  /// Failures as copyFile, Database::open and Database::table.
  Result<PageTagRow> create(const std::string& shopFolder);

  /// Replaces what the database holds by one page tag row and the derived rows of its page. Does nothing while the
  /// database is closed. Failures as Statement::execute; the old rows then stay.
  Result<> store(const PageTagRow& row, const DerivedColumns& columns, const DerivedRows& articles);

 private:
  /// Appends the one row of `categoria`. Failures as store().
  Result<> storePageTags(const PageTagRow& row);

  Database tags_;  // of the language begun last
};

}  // namespace kv
