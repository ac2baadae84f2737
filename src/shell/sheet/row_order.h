#pragma once
// Puts the rows of a sheet in order by what one column holds; rows that hold the same stay in the order of the shop.
// Texts are compared eight bytes at a time as whole numbers, which a hundred thousand rows need to be sorted at once.

#include <compare>
#include <cstddef>
#include <cstdint>
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
    std::size_t begin = 0, size = 0;  ///< of its text in `texts_`
  };
  struct Item {
    std::uint64_t word = 0;  ///< eight bytes of the text, the first one highest
    std::size_t row = 0;
  };

  std::string_view textOf(const Item& item) const;
  std::uint64_t wordAt(const Item& item, std::size_t depth) const;
  void readWords(std::span<Item> items, std::size_t depth) const;
  /// Sorts items whose texts are equal up to a depth, as far as they are that long.
  void sortFrom(std::span<Item> items, std::size_t depth) const;
  void sortWhole(std::span<Item> items) const;

  std::vector<Row> rows_;
  std::string texts_;
  bool descending_ = false;
};

}  // namespace kv
