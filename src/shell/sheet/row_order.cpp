#include "shell/sheet/row_order.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace kv {
namespace {

constexpr std::size_t numberSize = sizeof(double);
constexpr std::size_t wordSize = 7;   // bytes of a text in a word; the last byte of the word counts what is left
constexpr std::size_t fewItems = 12;  // so many are compared with each other at once
constexpr std::size_t blockSize = std::size_t{1} << 20;
constexpr int byteBits = 8;
constexpr std::uint64_t byteMask = 0xff;

/// A number whose order as a whole number is that of the given ones; 0 and -0 are equal.
std::uint64_t orderedBits(double number) {
  constexpr std::uint64_t sign = std::uint64_t{1} << 63;
  const auto bits = std::bit_cast<std::uint64_t>(number + 0.0);
  return (bits & sign) != 0 ? ~bits : bits | sign;
}

}  // namespace

std::string_view RowOrder::kept(std::string_view text) {
  if (blocks_.empty() || blocks_.back().capacity() - blocks_.back().size() < text.size()) {
    blocks_.emplace_back().reserve(std::max(blockSize, text.size()));
  }
  std::string& block = blocks_.back();
  block += text;
  return std::string_view(block).substr(block.size() - text.size());
}

void RowOrder::add(const ShopPlace& place, std::string_view text) { rows_.push_back({place, kept(text)}); }

void RowOrder::add(const ShopPlace& place, double number) {
  std::array<char, numberSize> text{};
  std::uint64_t bits = orderedBits(number);
  for (std::size_t i = numberSize; i-- > 0; bits >>= byteBits) text[i] = static_cast<char>(bits);
  add(place, std::string_view(text.data(), text.size()));
}

std::uint64_t RowOrder::wordAt(const Item& item, std::size_t depth) const {
  const std::string_view text = textOf(item).substr(depth);
  const std::size_t size = std::min(text.size(), wordSize + 1);
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < wordSize; ++i) {
    word = word << byteBits | (i < size ? static_cast<unsigned char>(text[i]) : 0U);
  }
  word = word << byteBits | size;
  return descending_ ? ~word : word;
}

std::size_t RowOrder::commonDepth(std::span<const Item> items, std::size_t depth) const {
  const std::string_view first = textOf(items.front());
  std::size_t common = first.size();
  for (const Item& item : items) {
    const std::string_view text = textOf(item).substr(0, common);
    const std::size_t size = text.size();
    if (text.substr(depth) == first.substr(depth, size - depth)) {
      common = size;
    } else {
      common = static_cast<std::size_t>(std::ranges::mismatch(text, first).in1 - text.begin());
    }
  }
  return common;
}

bool RowOrder::hasEnded(const Item& item) const {
  return ((descending_ ? ~item.word : item.word) & byteMask) <= wordSize;
}

void RowOrder::sortByPlace(std::span<Item> items) const {
  std::ranges::sort(items, {}, [&](const Item& item) -> const ShopPlace& { return rows_[item.row].place; });
}

void RowOrder::sortWhole(std::span<Item> items, std::size_t depth) const {
  std::ranges::sort(items, [&](const Item& one, const Item& other) {
    const int difference = textOf(one).substr(depth).compare(textOf(other).substr(depth));
    if (difference != 0) return (difference < 0) != descending_;
    return rows_[one.row].place < rows_[other.row].place;
  });
}

void RowOrder::sortFrom(std::span<Item> items, std::size_t depth) const {
  if (items.size() <= fewItems) return sortWhole(items, depth);
  depth = commonDepth(items, depth);
  for (Item& item : items) item.word = wordAt(item, depth);
  std::ranges::sort(items, {}, &Item::word);
  for (auto from = items.begin(); from != items.end();) {
    const auto end = std::find_if(from, items.end(), [&](const Item& item) { return item.word != from->word; });
    if (hasEnded(*from)) {
      sortByPlace({from, end});
    } else if (end - from > 1) {
      sortFrom({from, end}, depth + wordSize);
    }
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
