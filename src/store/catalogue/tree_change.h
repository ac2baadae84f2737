#pragma once
// What the commands of the tree share: a transaction that is undone unless it is kept, what is shown when it is, and
// small statements with values. Private to store/.
//
// A command reads what it writes by, writes, reads what is to be shown, keeps the change, and shows: whatever fails
// before the keeping leaves catalogue, lists and cursors as they were, and nothing can fail after it.

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "store/catalogue/catalogue_sets.h"

namespace kv {

/// Holds the listener back, and everything written in one transaction. What isn't kept is rolled back.
/// The handlers of the cursors don't run while it lives: nothing is shown until one of the keep functions.
class TreeChange {
 public:
  /// Begins the transaction; the catalogue is open.
  explicit TreeChange(CatalogueSets& sets) : sets_(sets), begun_(sets.session().catalogue.begin()) {
    sets_.suppress(true);
  }
  TreeChange(const TreeChange&) = delete;
  TreeChange& operator=(const TreeChange&) = delete;
  /// Rolls back what wasn't kept, and lets the handlers work again.
  ~TreeChange() {
    if (begun_ && !kept_) sets_.session().catalogue.rollback();
    sets_.suppress(false);
  }

  /// Whether there is a transaction to write in; InUse as Database::begin.
  const Result<>& begun() const { return begun_; }
  /// Commits, and lets the handlers of the cursors work again. A failure has rolled back.
  Result<> keep();
  /// Keeps, and shows the catalogue as it now is, the cursors on a department ("###": on none) and its first article.
  /// recounted: whether the number of the shop's articles may have changed.
  /// A failure to read what is to be shown keeps nothing.
  Result<> keepAndShow(const std::string& department, bool recounted = false);
  /// Keeps, and shows the articles of the current department, the cursor on one of them.
  /// `department`: its ID; the number of the shop's articles is counted again.
  Result<> keepAndShowArticle(const std::string& department, std::int64_t article);
  /// The same with the cursor on a position of the list, from 0: on the last article when it isn't that long.
  Result<> keepAndShowPosition(const std::string& department, std::size_t position);

 private:
  /// Keeps, and shows these rows with the cursor where it is in them.
  Result<> keepArticles(Recordset articles);

  CatalogueSets& sets_;
  Result<> begun_;
  bool kept_ = false;  ///< committed, or the commit has failed
};

/// A department as a command finds it in the catalogue.
struct CurrentDepartment {
  std::int64_t contatore = 0;  ///< serial number
  std::string ID;              ///< "cat007"
  std::string genitore;        ///< ID of the parent; "###" for the root, also where none is stored
  std::int64_t livello = 1;    ///< depth in the tree, 1 at the top level
  bool hafigli = false;        ///< has sub-departments
};
/// The one that the cursor is on; it is on one.
/// A row that can't be read is a failure, not a department of empty fields.
Result<CurrentDepartment> readCurrent(CatalogueSets& sets);

/// Runs a statement with values in place of its question marks.
/// For a statement that returns no rows.
Result<> runWith(Database& database, std::string_view sql, std::initializer_list<Value> values);
/// The first field of its first row; Null when there is none.
Result<Value> scalarWith(Database& database, std::string_view sql, std::initializer_list<Value> values);

/// A list in its order: the keys of the rows (articles: ID, departments: contatore) and their order numbers.
struct OrderedList {
  std::vector<std::int64_t> keys, orders;  ///< of equal length

  /// Where a key is, from 0; none when it isn't there.
  std::optional<std::size_t> positionOf(std::int64_t key) const;
};
/// The rows of a query for a key and an order number, `value` at its question mark.
Result<OrderedList> readOrder(Database& database, std::string_view sql, const Value& value);
/// For the articles of a department.
inline constexpr std::string_view articlesInOrder =
    "SELECT ID, ordinamento FROM articoli WHERE catID = ? ORDER BY ordinamento, ID";
/// For the departments under a parent; those without any are under the root.
inline constexpr std::string_view siblingsInOrder =
    "SELECT contatore, ordinamento FROM categorie WHERE genitore = ?1 OR (genitore IS NULL AND ?1 = '###') "
    "ORDER BY livello, ordinamento, contatore";

/// Gives rows their new order numbers, key by key. `update` takes the number and the key, and outlives it.
/// It prepares `update` once, however many rows are written.
class OrderWriter {
 public:
  OrderWriter(Database& database, std::string_view update) : database_(database), update_(update) {}
  /// Writes one number; the first prepares the statement. Failures: as Database::prepare and Statement::execute.
  Result<> write(std::int64_t key, std::int64_t order);

 private:
  Database& database_;
  std::string_view update_;
  std::optional<Statement> statement_;  ///< none before the first write
};
/// Moves a group of a list one position further in a direction, -1 up, +1 down; at the end of the list it stays
/// together. `update`: as OrderWriter's.
Result<> writeShifted(Database& database, const OrderedList& list, const std::vector<std::int64_t>& group,
                      int direzione, std::string_view update);
/// The statements for the two lists.
inline constexpr std::string_view writeArticleOrder = "UPDATE articoli SET ordinamento = ? WHERE ID = ?";
inline constexpr std::string_view writeDepartmentOrder = "UPDATE categorie SET ordinamento = ? WHERE contatore = ?";

}  // namespace kv
