#include "import/tables/column_mapping.h"

#include <algorithm>

#include "platform/text/text.h"
#include "store/shop/session.h"

namespace kv {
namespace {

constexpr std::string_view keptPrefix = "foglio-";

/// A number by which two sets of headers are told apart: 64-bit FNV-1a.
std::uint64_t headersNumber(std::string_view text) {
  constexpr std::uint64_t start = 14695981039346656037U, prime = 1099511628211U;
  std::uint64_t number = start;
  for (const char c : text) number = (number ^ static_cast<unsigned char>(c)) * prime;
  return number;
}

/// How well a header names a column: 0 not at all, the higher the better. As it is written it comes first: "Immagine 1"
/// is the header of one column, "immagine1" the name of another.
int nameRank(const TableColumn& column, std::string_view header, const std::string& plain) {
  constexpr int exactOwn = 6, exactHeader = 5, own = 4, italian = 3, english = 2, other = 1;
  if (equalsIgnoringCase(header, column.name)) return exactOwn;
  for (const std::string* name : {&column.italian, &column.english, &column.formerItalian}) {
    if (equalsIgnoringCase(header, *name)) return exactHeader;
  }
  if (plain == plainHeader(column.name)) return own;
  if (plain == plainHeader(column.italian) || plain == plainHeader(column.formerItalian)) return italian;
  if (plain == plainHeader(column.english)) return english;
  const auto others = exportHeaders(column.name);
  return std::ranges::any_of(others, [&](auto each) { return plain == plainHeader(each); }) ? other : 0;
}

std::optional<std::size_t> columnFor(const SheetTable& table, std::string_view header) {
  const std::string plain = plainHeader(header);
  if (plain.empty()) return std::nullopt;
  std::optional<std::size_t> best;
  int rank = 0;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const int found = nameRank(table.columns[i], trim(header), plain);
    if (found <= rank) continue;
    rank = found;
    best = i;
  }
  return best;
}

std::string settingOf(const SheetTable& table, const std::vector<std::string>& headers) {
  std::string all = table.name;
  for (const std::string& header : headers) all += "\n" + foldCase(header);
  return std::string(keptPrefix) + std::to_string(headersNumber(all));
}

}  // namespace

std::string plainHeader(std::string_view header) {
  std::string folded = foldCase(trim(header));
  if (folded.starts_with("g:")) folded.erase(0, 2);
  std::erase_if(folded, [](char c) {
    const bool isWord = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= 0x80;
    return !isWord;
  });
  return folded;
}

ColumnMapping mappingByHeaders(const SheetTable& table, const std::vector<std::string>& headers) {
  ColumnMapping mapping;
  for (const std::string& header : headers) {
    auto column = columnFor(table, header);
    if (column && sourceOf(mapping, *column)) column.reset();
    mapping.push_back(column);
  }
  return mapping;
}

Result<> applyMapping(std::string_view lines, const SheetTable& table, const std::vector<std::string>& headers,
                      ColumnMapping& mapping) {
  for (const std::string_view line : splitLines(lines)) {
    if (trim(line).empty() || line.starts_with('#')) continue;
    const std::size_t equals = line.rfind('=');
    const std::string_view header = trim(line.substr(0, equals));
    const auto found =
        std::ranges::find_if(headers, [&](const auto& each) { return equalsIgnoringCase(each, header); });
    if (equals == std::string_view::npos || found == headers.end()) {
      return fail(ErrorKind::Malformed, "", std::string(line));
    }
    const std::string_view name = trim(line.substr(equals + 1));
    const auto column = table.columnIndex(name);
    if (!name.empty() && !column) return fail(ErrorKind::Malformed, "", std::string(line));
    // A column has one source: the one that is named.
    if (column) std::ranges::replace(mapping, std::optional(*column), std::optional<std::size_t>());
    mapping[static_cast<std::size_t>(found - headers.begin())] = column;
  }
  return {};
}

std::optional<ColumnMapping> keptMapping(const Settings& settings, const SheetTable& table,
                                         const std::vector<std::string>& headers) {
  const std::string kept = settings.get(settingsSection, settingOf(table, headers));
  if (kept.empty()) return std::nullopt;
  ColumnMapping mapping;
  for (std::size_t at = 0; at <= kept.size();) {
    const std::size_t end = std::min(kept.find(';', at), kept.size());
    mapping.push_back(table.columnIndex(std::string_view(kept).substr(at, end - at)));
    at = end + 1;
  }
  mapping.resize(headers.size());
  return mapping;
}

Result<> keepMapping(Settings& settings, const SheetTable& table, const std::vector<std::string>& headers,
                     const ColumnMapping& mapping) {
  std::string kept;
  for (std::size_t i = 0; i < mapping.size(); ++i) {
    if (i > 0) kept += ';';
    kept += mapping[i] ? table.columns[*mapping[i]].name : "-";
  }
  return settings.set(settingsSection, settingOf(table, headers), kept);
}

std::optional<std::size_t> sourceOf(const ColumnMapping& mapping, std::size_t column) {
  const auto found = std::ranges::find(mapping, std::optional(column));
  if (found == mapping.end()) return std::nullopt;
  return static_cast<std::size_t>(found - mapping.begin());
}

const TableKey* keyFor(const SheetTable& table, const ColumnMapping& mapping) {
  const auto isMapped = [&](const TableKey& key) {
    return std::ranges::all_of(key.columns, [&](const std::string& column) {
      const auto index = table.columnIndex(column);
      return index && sourceOf(mapping, *index);
    });
  };
  const TableKey* const byID = table.key("id");
  if (byID != nullptr && isMapped(*byID)) return byID;
  const auto found = std::ranges::find_if(table.keys, isMapped);
  return found == table.keys.end() ? nullptr : &*found;
}

}  // namespace kv
