#pragma once
// Writes a plan of a sheet into the catalogue, inside the transaction of its caller.

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "import/tables/cell_reading.h"
#include "import/tables/picture_taking.h"
#include "import/tables/table_plan.h"

namespace kv {

/// What a plan is written with; all of it outlives the writer.
struct TableWork {
  Database& catalogue;
  TablePlan& plan;  ///< its names grow by what is added
  const ReadSheet& sheet;
  const TableRequest& request;
  PictureTaking& pictures;
};

/// Writes rows of a plan. New articles wait for one another, so that one statement adds several of them; finish()
/// writes the last ones.
class TableWriter {
 public:
  /// What the work names outlives the writer.
  explicit TableWriter(const TableWork& work) : work_(work), reader_(work.plan.signs, work.plan.names) {}

  /// Writes a row; nothing unless it is new or changed, and chosen.
  Result<> write(const PlannedRow& row);
  /// Writes what waits, and takes the articles that the sheet doesn't list out of the shop's pages.
  Result<> finish();

 private:
  /// Columns of the catalogue, whose names live as long as the writer, and their values.
  using Fields = std::vector<std::pair<std::string_view, Value>>;

  /// The columns that a row changes, with their values; pictures are taken over for it.
  Result<Fields> fieldsOf(const PlannedRow& row);
  /// The name and the size of a picture; none for an empty cell.
  Result<> addPicture(Fields& fields, const TableColumn& column, const std::string& cell);
  /// The ID of a variant by its name; one that doesn't exist yet is made.
  Result<Value> ownVariant(std::string_view name);
  /// A new article, at the end of its department.
  Result<> insertArticle(Fields fields);
  /// Lets an article wait; those that wait are written when their columns differ, or are many.
  Result<> addWaiting(Fields fields);
  /// Writes the articles that wait by one statement.
  Result<> writeWaiting();
  /// A new department under the one that its path names.
  Result<> insertDepartment(const PlannedRow& row, Fields fields);
  /// Gives an article of a department the order after the last one there.
  Result<> moveToEnd(Fields& fields);
  /// Writes one row by itself.
  Result<> insert(std::string_view table, const Fields& fields);
  /// Writes the changed columns of a row of the catalogue.
  Result<> update(const PlannedRow& row, const Fields& fields);
  /// A statement that is prepared once for all rows that need it.
  Result<Statement*> prepared(const std::string& sql);
  /// Runs such a statement with these values, and the key where it isn't 0.
  Result<> run(const std::string& sql, const Fields& fields, std::int64_t key);
  /// The first field that a query with one text gives; Null where it gives no row.
  Result<Value> ask(std::string_view sql, const std::string& text);

  TableWork work_;
  CellReader reader_;
  std::unordered_map<std::string, Statement> statements_;
  std::vector<Value> waiting_;                            // of new articles, one after the other
  std::vector<std::string_view> waitingColumns_;          // of each of them
  std::string fullInsert_;                                // the statement for as many as may wait
  std::unordered_set<std::string> names_;                 // of columns that aren't the table's own
  std::unordered_map<std::string, std::int64_t> orders_;  // folded department -> the highest of its articles
};

}  // namespace kv
