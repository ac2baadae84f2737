#include "shell/sheet/row_order.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace kv {
namespace {

constexpr std::size_t wordSize = sizeof(std::uint64_t);
constexpr std::size_t fewItems = 12;  // so many are compared with each other at once
constexpr int byteBits = 8;

/// A number whose order as a whole number is that of the given ones; 0 and -0 are equal.
std::uint64_t orderedBits(double number) {
  constexpr std::uint64_t sign = std::uint64_t{1} << 63;
  const auto bits = std::bit_cast<std::uint64_t>(number + 0.0);
  return (bits & sign) != 0 ? ~bits : bits | sign;
}

}  // namespace

void RowOrder::add(const ShopPlace& place, std::string_view text) {
  rows_.push_back({place, texts_.size(), text.size()});
  texts_ += text;
}

void RowOrder::add(const ShopPlace& place, double number) {
  std::array<char, wordSize> text{};
  std::uint64_t bits = orderedBits(number);
  for (std::size_t i = wordSize; i-- > 0; bits >>= byteBits) text[i] = static_cast<char>(bits);
  add(place, std::string_view(text.data(), text.size()));
}

std::string_view RowOrder::textOf(const Item& item) const {
  const Row& row = rows_[item.row];
  return std::string_view(texts_).substr(row.begin, row.size);
}

std::uint64_t RowOrder::wordAt(const Item& item, std::size_t depth) const {
  const std::string_view text = textOf(item);
  std::uint64_t word = 0;
  for (std::size_t i = depth; i < depth + wordSize; ++i) {
    word = word << byteBits | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
  }
  return descending_ ? ~word : word;
}

void RowOrder::readWords(std::span<Item> items, std::size_t depth) const {
  for (Item& item : items) item.word = wordAt(item, depth);
}

void RowOrder::sortWhole(std::span<Item> items) const {
  std::ranges::sort(items, [&](const Item& one, const Item& other) {
    const int difference = textOf(one).compare(textOf(other));
    if (difference != 0) return (difference < 0) != descending_;
    return rows_[one.row].place < rows_[other.row].place;
  });
}

void RowOrder::sortFrom(std::span<Item> items, std::size_t depth) const {
  const auto hasEnded = [&](const Item& item) { return rows_[item.row].size < depth; };
  const auto differs = [&](const Item& item) { return item.word != items.front().word; };
  for (;; depth += wordSize) {
    // An end and a zero byte give the same word, so what has ended is compared as a whole.
    if (items.size() <= fewItems || std::ranges::any_of(items, hasEnded)) return sortWhole(items);
    readWords(items, depth);
    if (std::ranges::any_of(items, differs)) break;
  }
  std::ranges::sort(items, {}, &Item::word);
  for (auto from = items.begin(); from != items.end();) {
    const auto end = std::find_if(from, items.end(), [&](const Item& item) { return item.word != from->word; });
    if (end - from > 1) sortFrom({from, end}, depth + wordSize);
    from = end;
  }
}

std::vector<std::int64_t> RowOrder::sorted(bool descending) {
  descending_ = descending;
  std::vector<Item> items(rows_.size());
  for (std::size_t i = 0; i < items.size(); ++i) items[i].row = i;
  sortFrom(items, 0);
  std::vector<std::int64_t> order(items.size());
  std::ranges::transform(items, order.begin(), [&](const Item& item) { return rows_[item.row].place.ID; });
  return order;
}

}  // namespace kv
