#pragma once
// Puts the rows of a sheet in order by what one column holds; rows that hold the same stay in the order of the shop.
// Texts are compared seven bytes at a time as whole numbers, which a hundred thousand rows need to be sorted at once.

#include <compare>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// Where the shop shows an article.
struct ShopPlace {
  std::size_t rank = 0;       ///< of the department in the tree
  std::int64_t position = 0;  ///< in the department
  std::int64_t ID = 0;

  auto operator<=>(const ShopPlace&) const = default;
};

class RowOrder {
 public:
  /// Adds a row by a text, of which the bytes are compared.
  void add(const ShopPlace& place, std::string_view text);
  /// Adds a row by a number.
  void add(const ShopPlace& place, double number);

  /// The IDs in their order. Rows that hold the same stay in the order of the shop, whichever way the others go.
  /// Nothing can be added afterwards.
  std::vector<std::int64_t> sorted(bool descending);

 private:
  struct Row {
    ShopPlace place;
    std::string_view text;  ///< in `blocks_`
  };
  struct Item {
    std::uint64_t word = 0;  ///< seven bytes of the text, the first one highest, then how many it has from there
    std::size_t row = 0;
  };

  std::string_view kept(std::string_view text);
  std::string_view textOf(const Item& item) const { return rows_[item.row].text; }
  std::uint64_t wordAt(const Item& item, std::size_t depth) const;
  /// Up to where all texts are equal, of which those of a depth are known to be.
  std::size_t commonDepth(std::span<const Item> items, std::size_t depth) const;
  bool hasEnded(const Item& item) const;
  /// Sorts items whose texts are that long at least and equal up to there.
  void sortFrom(std::span<Item> items, std::size_t depth) const;
  void sortWhole(std::span<Item> items, std::size_t depth) const;
  void sortByPlace(std::span<Item> items) const;

  std::vector<Row> rows_;
  std::deque<std::string> blocks_;  ///< none grows beyond what it has room for, so no text moves
  bool descending_ = false;
};

}  // namespace kv
