#pragma once
// What the commands of the tree share: the listener held back, a transaction that is undone unless it is kept, and
// small statements with values. Private to store/.

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "store/catalogue/catalogue_sets.h"

namespace kv {

/// Holds the listener back, and everything written in one transaction. What isn't kept is rolled back.
class TreeChange {
 public:
  explicit TreeChange(CatalogueSets& sets) : sets_(sets), begun_(sets.session().catalogue.begin()) {
    sets_.suppress(true);
  }
  TreeChange(const TreeChange&) = delete;
  TreeChange& operator=(const TreeChange&) = delete;
  ~TreeChange() {
    if (begun_ && !kept_) sets_.session().catalogue.rollback();
    sets_.suppress(false);
  }

  const Result<>& begun() const { return begun_; }
  /// Commits, and lets the handlers of the cursors work again.
  Result<> keep() {
    kept_ = true;
    auto done = sets_.session().catalogue.commit();
    sets_.suppress(false);
    return done;
  }

 private:
  CatalogueSets& sets_;
  Result<> begun_;
  bool kept_ = false;
};

/// Runs a statement with values in place of its question marks.
Result<> runWith(Database& database, std::string_view sql, std::initializer_list<Value> values);
/// The first field of its first row; Null when there is none.
Result<Value> scalarWith(Database& database, std::string_view sql, std::initializer_list<Value> values);

/// A list in its order: the keys of the rows (articles: ID, departments: contatore) and their order numbers.
struct OrderedList {
  std::vector<std::int64_t> keys, orders;
};
Result<OrderedList> readOrder(Database& database, std::string_view sql, const Value& value);

/// Gives rows their new order numbers, key by key. `update` takes the number and the key.
class OrderWriter {
 public:
  OrderWriter(Database& database, std::string_view update) : statement_(database.prepare(update)) {}
  Result<> write(std::int64_t key, std::int64_t order);

 private:
  Result<Statement> statement_;
};
inline constexpr std::string_view writeArticleOrder = "UPDATE articoli SET ordinamento = ? WHERE ID = ?";
inline constexpr std::string_view writeDepartmentOrder = "UPDATE categorie SET ordinamento = ? WHERE contatore = ?";

}  // namespace kv
