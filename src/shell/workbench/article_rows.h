#pragma once
// The articles of a department as the list shows them. The keys are read at once, the columns of a row only when it is
// looked at: a list of thousands opens as quickly as a short one.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "store/catalogue/catalogue_sets.h"

namespace kv {

/// A row in the language being edited.
struct ArticleRow {
  std::int64_t ID = 0;
  std::string codice, titolo;
  std::string primo;      ///< the title in the first language while this one has none; else empty
  std::string prezzo;     ///< in the price list being edited, as stored; empty for none
  std::string offerta;    ///< its price on offer in that list, as stored; empty while it is not on offer
  std::string peso;       ///< as stored; empty for none
  bool inelenco = false;  ///< in the showcase
};

/// How the list shows the articles; the order of the shop stays what it is.
struct ArticleArrangement {
  enum class By { ShopOrder, Code, Title, Price, Offer, Weight, Showcase };
  By by = By::ShopOrder;
  bool descending = false;    ///< of a column
  std::string filter;         ///< only rows whose code or title has this text, in any case; empty: all
  bool untranslated = false;  ///< only rows without a title in the language being edited

  /// Whether all rows show in the order of the shop.
  bool isPlain() const { return by == By::ShopOrder && !isFiltered(); }
  /// Whether some rows may be left out.
  bool isFiltered() const { return !filter.empty() || untranslated; }
};

/// It is a view beside the cursor of articles and moves nothing. Rows that were read are kept until forget() or
/// refresh(), so that scrolling up and down costs nothing.
class ArticleRows {
 public:
  /// The sets outlive it. Empty until the first refresh().
  explicit ArticleRows(CatalogueSets& sets) : sets_(sets) {}

  /// How refresh() arranges the rows from now on.
  void arrange(ArticleArrangement arrangement) { arrangement_ = std::move(arrangement); }
  const ArticleArrangement& arrangement() const { return arrangement_; }
  /// Reads the keys of the current department's articles in their order; prices are those of a price list, 0 to 9.
  /// Empty without an open shop or a current department; a failure leaves the keys read until then.
  void refresh(int listino);
  /// Forgets what the rows said; keys and order stay.
  /// Called when fields of articles were written; each row is read again when it is looked at.
  void forget() { rows_.clear(); }
  /// How many articles the department has.
  std::size_t size() const { return keys_.size(); }
  /// The articles, in the order shown.
  const std::vector<std::int64_t>& keys() const { return keys_; }
  /// The row at an index from 0; an empty one when it can't be read.
  /// The reference holds until the next forget() or refresh(). Title and price are read in the session's language and
  /// the price list of refresh().
  const ArticleRow& at(std::size_t index);
  /// The index of an article; none when it is not of this department.
  /// Searches all keys in turn.
  std::optional<std::size_t> indexOf(std::int64_t ID) const;

 private:
  /// The row of an article; an empty one when it can't be read.
  const ArticleRow& rowOf(std::int64_t ID);
  /// The statement that reads rows as they are shown, by a condition with one value.
  std::string query(std::string_view condition) const;
  /// Reads every row of the department by one statement.
  void readAll();
  /// Leaves the keys that the filter lets through, sorted by the column.
  void applyArrangement();

  CatalogueSets& sets_;
  ArticleArrangement arrangement_;
  int listino_ = 0;                                    ///< 0 to 9
  std::vector<std::int64_t> keys_;                     ///< IDs in the order shown
  std::unordered_map<std::int64_t, ArticleRow> rows_;  ///< the rows looked at, by ID
};

}  // namespace kv
