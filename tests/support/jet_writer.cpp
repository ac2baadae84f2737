#include "support/jet_writer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

#include "platform/text/text.h"
#include "platform/text/utf8.h"

namespace kv::test {
namespace {

constexpr std::size_t pageHead = 8;      // of a page that continues a table definition
constexpr std::size_t memoHead = 12;     // in a row, before a text that is kept inside it
constexpr std::size_t inlineMemo = 64;   // bytes
constexpr std::size_t mostRows = 255;    // of a page: a pointer has one byte for the row
constexpr std::size_t smallMap = 64;     // bytes of a map of pages inside its row
constexpr unsigned deletedRow = 0xC000;  // in the offset of a row
constexpr std::uint32_t systemTable = 0x80000000;

void put(std::string& bytes, std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>((value >> (8 * i)) & 0xFF);
}
void putAt(std::string& bytes, std::size_t at, std::uint64_t value, std::size_t size) {
  std::string field;
  put(field, value, size);
  bytes.replace(at, size, field);
}

/// The stream cipher under which the head of every Jet file is kept, with the same key for all.
void cipher(std::string& bytes, std::size_t at, std::size_t size) {
  constexpr std::array<std::uint8_t, 4> key{0xC7, 0xDA, 0x39, 0x6B};
  std::array<std::uint8_t, 256> state{};
  std::iota(state.begin(), state.end(), std::uint8_t{0});
  for (unsigned i = 0, j = 0; i < state.size(); ++i) {
    j = (j + state[i] + key[i % key.size()]) % state.size();
    std::swap(state[i], state[j]);
  }
  unsigned a = 0, b = 0;
  for (std::size_t i = at; i < at + size; ++i) {
    a = (a + 1) % state.size();
    b = (b + state[a]) % state.size();
    std::swap(state[a], state[b]);
    bytes[i] = static_cast<char>(static_cast<std::uint8_t>(bytes[i]) ^ state[(state[a] + state[b]) % state.size()]);
  }
}

bool isFixed(JetType type) { return type < JetType::Text; }
bool isLong(JetType type) { return type == JetType::Memo || type == JetType::Ole; }

std::size_t sizeOf(JetType type) {
  switch (type) {
    case JetType::Flag:
      return 0;
    case JetType::Byte:
      return 1;
    case JetType::Int:
      return 2;
    case JetType::Long:
    case JetType::Single:
      return 4;
    case JetType::Money:
    case JetType::Double:
      return 8;
    case JetType::Text:
      return 510;
    case JetType::Ole:
    case JetType::Memo:
      break;
  }
  return 0;
}

std::string fixedField(JetType type, const Value& value) {
  std::string field;
  if (type == JetType::Money) {
    put(field, static_cast<std::uint64_t>(asMoney(value).tenThousandths()), 8);
  } else if (type == JetType::Double) {
    const double number = asNumber(value);
    field.resize(sizeof number);
    std::memcpy(field.data(), &number, sizeof number);
  } else if (type == JetType::Single) {
    const auto number = static_cast<float>(asNumber(value));
    field.resize(sizeof number);
    std::memcpy(field.data(), &number, sizeof number);
  } else {
    put(field, static_cast<std::uint64_t>(asInteger(value)), sizeOf(type));
  }
  return field;
}

/// Text in UCS-2; in one byte a character after a mark, where that is possible and `mayShorten`.
std::string unicodeText(std::string_view text, bool mayShorten) {
  std::string wide, narrow = "\xFF\xFE";
  bool fits = !text.empty();
  for (std::size_t at = 0; at < text.size();) {
    const utf8::Unit unit = utf8::unitAt(text, at);
    put(wide, unit.character, 2);
    fits = fits && unit.character < 0x100;
    narrow += static_cast<char>(unit.character);
    at += unit.length;
  }
  return mayShorten && fits ? narrow : wide;
}

class JetWriter {
 public:
  explicit JetWriter(JetVersion version)
      : isJet4_(version == JetVersion::Jet4), pageSize_(isJet4_ ? 4096 : 2048), wordSize_(isJet4_ ? 2 : 1) {
    addHead();
    addDataPage(0);  // page 1: the map of all pages
    putRow(pages_[1], std::string(5 + smallMap, '\0'));
    pages_.emplace_back();  // page 2: the definition of the catalogue
  }

  std::string write(const std::vector<JetTable>& tables) {
    JetTable catalogue{"MSysObjects",
                       {{"Id", JetType::Long},
                        {"ParentId", JetType::Long},
                        {"Name", JetType::Text},
                        {"Type", JetType::Int},
                        {"Flags", JetType::Long},
                        {"LvProp", JetType::Ole}},
                       {},
                       {}};
    const auto enter = [&](const std::string& name, std::size_t page, std::uint32_t flags) {
      catalogue.rows.push_back({static_cast<std::int64_t>(page), std::int64_t{0x0F000001}, name, std::int64_t{1},
                                static_cast<std::int64_t>(flags), Null{}});
    };
    enter("MSysObjects", 2, systemTable);
    for (const JetTable& table : tables) {
      const std::size_t page = pages_.size();
      pages_.emplace_back();
      addTable(table, page);
      enter(table.name, page, 0);
    }
    addTable(catalogue, 2);
    std::string file;
    for (const std::string& page : pages_) file += page;
    return file;
  }

 private:
  void addHead() {
    std::string head(pageSize_, '\0');
    head.replace(0, 20, std::string("\0\1\0\0Standard Jet DB\0", 20));
    putAt(head, 0x14, isJet4_ ? 1 : 0, 1);
    putAt(head, isJet4_ ? 0x6E : 0x3A, 0x0409, 2);  // the order of sorting
    putAt(head, 0x3C, 1252, 2);
    cipher(head, 0x18, isJet4_ ? 128 : 126);
    pages_.push_back(std::move(head));
  }

  std::size_t rowCountAt() const { return isJet4_ ? 12 : 8; }
  std::size_t addDataPage(std::size_t owner) {
    std::string page(pageSize_, '\0');
    putAt(page, 0, 0x0101, 2);
    putAt(page, 4, owner, 4);
    putAt(page, 2, pageSize_ - rowCountAt() - 2, 2);
    pages_.push_back(std::move(page));
    return pages_.size() - 1;
  }
  static std::size_t fieldAt(const std::string& page, std::size_t at) {
    return static_cast<std::uint8_t>(page[at]) + 256U * static_cast<std::uint8_t>(page[at + 1]);
  }
  /// Puts a row before the ones that a page has; false when there is no room.
  bool putRow(std::string& page, const std::string& row, unsigned flags = 0) const {
    const std::size_t count = fieldAt(page, rowCountAt()), offsets = rowCountAt() + 2;
    const std::size_t end = count == 0 ? pageSize_ : fieldAt(page, offsets + 2 * (count - 1)) & 0x1FFF;
    if (count == mostRows || offsets + 2 * (count + 1) + row.size() > end) return false;
    page.replace(end - row.size(), row.size(), row);
    putAt(page, offsets + 2 * count, (end - row.size()) | flags, 2);
    putAt(page, rowCountAt(), count + 1, 2);
    putAt(page, 2, end - row.size() - offsets - 2 * (count + 1), 2);
    return true;
  }

  void addTable(const JetTable& table, std::size_t page) {
    std::vector<std::size_t> used;
    for (std::size_t i = 0; i < table.rows.size(); ++i) {
      const std::string row = rowOf(table, table.rows[i]);
      const unsigned flags = table.deleted.contains(i) ? deletedRow : 0;
      if (!used.empty() && putRow(pages_[used.back()], row, flags)) continue;
      used.push_back(addDataPage(page));
      putRow(pages_.back(), row, flags);
    }
    const std::string map = mapOf(used);
    const std::size_t maps = addDataPage(1);
    putRow(pages_[maps], map);
    putRow(pages_[maps], std::string(5 + smallMap, '\0'));
    putDefinition(definitionOf(table, maps), page);
  }

  std::string mapOf(const std::vector<std::size_t>& used) {
    const std::size_t first = used.empty() ? 0 : used.front();
    if (used.empty() || used.back() - first < 8 * smallMap) {
      std::string map(5 + smallMap, '\0');
      putAt(map, 1, first, 4);
      for (const std::size_t page : used) setBit(map, 5, page - first);
      return map;
    }
    const std::size_t bits = 8 * (pageSize_ - 4);
    std::string map("\1", 1);
    for (std::size_t from = 0; from <= used.back(); from += bits) {
      std::string bitmap(pageSize_, '\0');
      putAt(bitmap, 0, 0x0105, 2);
      for (const std::size_t page : used) {
        if (page >= from && page < from + bits) setBit(bitmap, 4, page - from);
      }
      put(map, pages_.size(), 4);
      pages_.push_back(std::move(bitmap));
    }
    map.resize(5 + smallMap, '\0');
    return map;
  }
  static void setBit(std::string& bytes, std::size_t from, std::size_t bit) {
    bytes[from + bit / 8] = static_cast<char>(bytes[from + bit / 8] | (1 << (bit % 8)));
  }

  /// A definition that is longer than a page goes on in others.
  void putDefinition(std::string definition, std::size_t page) {
    putAt(definition, 8, definition.size() - pageHead, 4);
    std::size_t at = pageHead;
    for (std::size_t current = page; at < definition.size();) {
      std::string bytes(pageSize_, '\0');
      const std::size_t size = std::min(pageSize_ - pageHead, definition.size() - at);
      putAt(bytes, 0, 0x0102, 2);
      putAt(bytes, 2, isJet4_ ? pageSize_ - pageHead - size : 0x4356, 2);
      bytes.replace(pageHead, size, definition.substr(at, size));
      at += size;
      const std::size_t next = at < definition.size() ? pages_.size() : 0;
      putAt(bytes, 4, next, 4);
      pages_[current] = std::move(bytes);
      if (next != 0) pages_.emplace_back();
      current = next;
    }
  }
  std::string definitionOf(const JetTable& table, std::size_t maps) const {
    const auto variable = static_cast<std::size_t>(
        std::ranges::count_if(table.columns, [](const JetColumn& column) { return !isFixed(column.type); }));
    std::string bytes(isJet4_ ? 63 : 43, '\0');
    putAt(bytes, isJet4_ ? 16 : 12, table.rows.size() - table.deleted.size(), 4);
    const std::size_t kind = isJet4_ ? 40 : 20;
    putAt(bytes, kind, table.name.starts_with("MSys") ? 0x53 : 0x4E, 1);
    putAt(bytes, kind + 1, table.columns.size(), 2);
    putAt(bytes, kind + 3, variable, 2);
    putAt(bytes, kind + 5, table.columns.size(), 2);
    putAt(bytes, kind + 15, maps << 8, 4);
    putAt(bytes, kind + 19, (maps << 8) | 1, 4);
    std::size_t number = 0, fixedAt = 0, variableAt = 0;
    for (const JetColumn& column : table.columns) {
      bytes += columnOf(column.type, number++, isFixed(column.type) ? fixedAt : variableAt);
      (isFixed(column.type) ? fixedAt : variableAt) += isFixed(column.type) ? sizeOf(column.type) : 1;
    }
    for (const JetColumn& column : table.columns) {
      const std::string name = isJet4_ ? unicodeText(column.name, false) : toWindows1252(column.name);
      put(bytes, name.size(), wordSize_);
      bytes += name;
    }
    put(bytes, 0xFFFF, 2);
    return bytes;
  }
  std::string columnOf(JetType type, std::size_t number, std::size_t offset) const {
    std::string bytes(isJet4_ ? 25 : 18, '\0');
    const std::size_t at = isJet4_ ? 5 : 1, flags = isJet4_ ? 15 : 13, fixed = isJet4_ ? 21 : 14;
    putAt(bytes, 0, static_cast<std::uint8_t>(type), 1);
    putAt(bytes, at, number, 2);
    putAt(bytes, at + 2, isFixed(type) ? 0 : offset, 2);
    putAt(bytes, at + 4, number, 2);
    if (!isFixed(type)) putAt(bytes, at + 6, 0x0409, 2);
    if (!isFixed(type) && !isJet4_) putAt(bytes, at + 8, 1252, 2);
    putAt(bytes, flags, isFixed(type) ? 3 : 2, 1);
    if (!isFixed(type) && isJet4_) putAt(bytes, flags + 1, 1, 1);
    putAt(bytes, fixed, isFixed(type) ? offset : 0, 2);
    putAt(bytes, fixed + 2, isLong(type) ? 0 : sizeOf(type) / (isJet4_ || isFixed(type) ? 1 : 2), 2);
    return bytes;
  }

  std::string rowOf(const JetTable& table, const std::vector<Value>& fields) {
    std::string row, mask((table.columns.size() + 7) / 8, '\0');
    put(row, table.columns.size(), wordSize_);
    std::vector<std::size_t> offsets;
    for (const bool fixed : {true, false}) {
      for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const JetType type = table.columns[i].type;
        if (isFixed(type) != fixed) continue;
        if (type == JetType::Flag ? asFlag(fields[i]) : !isNull(fields[i])) setBit(mask, 0, i);
        if (fixed) {
          row += fixedField(type, fields[i]);
          continue;
        }
        offsets.push_back(row.size());
        if (!isNull(fields[i])) row += isLong(type) ? memoOf(asText(fields[i])) : textOf(asText(fields[i]));
      }
    }
    if (!offsets.empty()) addOffsets(row, offsets, mask.size());
    return row + mask;
  }
  std::string textOf(const std::string& text) const { return isJet4_ ? unicodeText(text, true) : toWindows1252(text); }
  void addOffsets(std::string& row, std::vector<std::size_t> offsets, std::size_t maskSize) const {
    const std::size_t count = offsets.size(), end = row.size();
    offsets.push_back(end);
    for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) put(row, *offset, wordSize_);
    if (!isJet4_) addJumps(row, offsets, maskSize);
    put(row, count, wordSize_);
  }
  /// In Jet 3 an offset has one byte; which field is the first one after each further 256 bytes is told beside them.
  static void addJumps(std::string& row, const std::vector<std::size_t>& offsets, std::size_t maskSize) {
    std::size_t jumps = 0;
    while ((row.size() + jumps + maskSize) / 256 > jumps) ++jumps;
    for (std::size_t jump = jumps; jump > 0; --jump) {
      const auto first = std::ranges::find_if(offsets, [&](std::size_t offset) { return offset >= 256 * jump; });
      put(row, first == offsets.end() ? 0xFF : static_cast<std::size_t>(first - offsets.begin()), 1);
    }
  }

  std::string memoOf(const std::string& text) {
    const std::string bytes = isJet4_ ? unicodeText(text, characterCount(text) <= 1024) : toWindows1252(text);
    std::string field;
    if (bytes.size() <= inlineMemo) {
      put(field, bytes.size() | 0x80000000, 4);
      field.resize(memoHead, '\0');
      return field + bytes;
    }
    const std::size_t room = pageSize_ - rowCountAt() - 4;
    const bool isOnePage = bytes.size() <= room;
    put(field, bytes.size() | (isOnePage ? 0x40000000 : 0), 4);
    put(field, isOnePage ? longValue(bytes) : chainOf(bytes, room - 4), 4);
    field.resize(memoHead, '\0');
    return field;
  }
  /// A page with one long value; gives the pointer to it.
  std::uint64_t longValue(const std::string& bytes) {
    const std::size_t page = addDataPage(0);
    pages_[page].replace(4, 4, "LVAL");
    putRow(pages_[page], bytes);
    return page << 8;
  }
  std::uint64_t chainOf(const std::string& bytes, std::size_t room) {
    std::uint64_t next = 0;
    for (std::size_t part = (bytes.size() + room - 1) / room; part > 0; --part) {
      std::string piece;
      put(piece, next, 4);
      next = longValue(piece + bytes.substr((part - 1) * room, room));
    }
    return next;
  }

  bool isJet4_;
  std::size_t pageSize_, wordSize_;
  std::vector<std::string> pages_;
};

}  // namespace

std::string jetFile(JetVersion version, const std::vector<JetTable>& tables) {
  return JetWriter(version).write(tables);
}

}  // namespace kv::test
