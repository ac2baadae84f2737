#pragma once
// The rows of the sheet: the articles that a filter lets through, in the order that was chosen. Keys are read at once,
// the cells of a row when it is looked at, so that a sheet of a hundred thousand rows opens at once.

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "shell/sheet/row_order.h"
#include "shell/sheet/sheet_columns.h"
#include "shell/sheet/sheet_names.h"
#include "tags/syntax/tag_index.h"

namespace kv {

/// Which articles the sheet shows. All conditions hold together.
struct SheetFilter {
  std::string text = {};        ///< in the code or in a title of any language, in any case; empty: all
  std::string department = {};  ///< ID; empty: all
  bool subDepartments = true;   ///< with what is under the department
  std::string flag = {};        ///< a flag of `articoli` that is on; empty: any
  bool untranslated = false;    ///< without a title in one of the languages
  bool withoutPicture = false;
  bool zeroPrice = false;  ///< without a price, or with price 0, in price list 0
};

/// By what the sheet is sorted.
struct SheetOrder {
  std::optional<std::size_t> column;  ///< index of the column; none: the order of the shop
  bool descending = false;
};

class SheetRows {
 public:
  /// The session's catalogue stays open as long as it is used; `columns` outlive it.
  SheetRows(Session& session, std::span<const SheetColumn> columns, char decimalSeparator)
      : session_(session), columns_(columns), separator_(decimalSeparator) {}

  /// Reads the keys of the articles in their order. A failure leaves the rows as they were.
  Result<> refresh(const SheetFilter& filter, const SheetOrder& order);
  /// Forgets what cells said; each row is read again when it is looked at.
  void forget() { cells_.clear(); }

  std::size_t size() const { return keys_.size(); }
  /// The article of a row.
  std::int64_t article(std::size_t row) const { return keys_[row]; }
  /// The row of an article; none when the sheet doesn't show it.
  std::optional<std::size_t> rowOf(std::int64_t ID) const;
  /// What the cells of a row show, one text for each column; empty texts when it can't be read.
  const std::vector<std::string>& cells(std::size_t row);
  /// What the cells of a column are chosen from, as of the last refresh: the departments in the order of the tree, the
  /// variants in that of their IDs; none of any other column.
  const std::vector<std::string>& choices(const SheetColumn& column) const;

 private:
  static constexpr std::size_t lastRank = static_cast<std::size_t>(-1);  ///< of what is in no department of the tree
  struct Department {
    std::string path, vat;
    std::size_t rank = lastRank;
  };

  Result<> readLookups();
  Result<> readDepartments();
  Result<> readVariants();
  /// ID, department, order number, sort field and the texts that are searched.
  Result<Statement> select(const SheetFilter& filter, const SheetColumn* by) const;
  void addTo(RowOrder& order, const SheetColumn* by, const Statement& row) const;
  std::vector<std::string> readCells(std::int64_t ID);
  std::string textOf(const SheetColumn& column, const Value& stored, const Department& department) const;
  const Department& departmentOf(std::string_view ID) const;
  const std::string& variantName(std::int64_t ID) const;

  Session& session_;
  std::span<const SheetColumn> columns_;
  char separator_;
  std::vector<std::int64_t> keys_;
  std::unordered_map<std::int64_t, std::vector<std::string>> cells_;                    ///< the rows looked at, by ID
  std::unordered_map<std::string, Department, TextHash, std::equal_to<>> departments_;  ///< by ID
  SheetNames names_;
  std::unordered_map<std::int64_t, std::string> variantNames_;
  std::vector<std::string> departmentChoices_, variantChoices_;
};

}  // namespace kv
