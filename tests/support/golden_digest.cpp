#include "support/golden_digest.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <regex>
#include <utility>

#include "platform/text/text.h"

namespace kv::test {
namespace {

constexpr std::string_view wantedFolder = "want/", rowsPart = "want-rows", digestPart = "want-digest";
constexpr std::string_view linesFlag = "lines=", columnsFlag = "only=", idsFlag = "rows=";

bool isExcerptFlag(const std::string& flag) {
  return flag.starts_with(linesFlag) || flag.starts_with(columnsFlag) || flag.starts_with(idsFlag);
}

std::size_t numberIn(std::string_view digits) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  EXPECT_TRUE(error == std::errc() && end == digits.data() + digits.size()) << "not a line number: " << digits;
  return number;
}

// Whether "1-3,7" names a line.
bool names(std::string_view ranges, std::size_t line) {
  while (!ranges.empty()) {
    const std::string_view range = ranges.substr(0, ranges.find(','));
    ranges.remove_prefix(std::min(range.size() + 1, ranges.size()));
    const std::size_t hyphen = range.find('-');
    const std::size_t first = numberIn(range.substr(0, hyphen));
    const std::size_t last = hyphen == std::string_view::npos ? first : numberIn(range.substr(hyphen + 1));
    if (line >= first && line <= last) return true;
  }
  return false;
}

// The name of a part as a line says it: without the folder of all wanted parts, and without a space.
std::string lineName(const TxtarPart& part) { return replaceAll(part.name.substr(wantedFolder.size()), " ", "%20"); }

// What is held of a file or table: its name, then numbers and digest.
struct DigestEntry {
  std::string name, rest;
};

void addRows(const ProducedPart& part, std::vector<DigestEntry>& rows) {
  for (const TableDump& dump : part.tables)
    rows.push_back({lineName(part.whole) + " " + dump.table, std::to_string(dump.rows) + " " + sha256(dump.text)});
}

DigestEntry fileEntry(const ProducedPart& part) {
  return {lineName(part.whole), std::to_string(part.content.size()) + " " + sha256(part.content)};
}

// A line for each entry, but one line for what differs in the end of the language alone.
std::string groupedLines(const std::vector<DigestEntry>& entries) {
  static const std::regex ofLanguage(R"((.*)(_l[234])(\.[^. /]*)?)");
  std::vector<DigestEntry> lines;
  for (const DigestEntry& entry : entries) {
    std::smatch pieces;
    auto first = lines.end();
    if (std::regex_match(entry.name, pieces, ofLanguage))
      first = std::ranges::find(lines, pieces[1].str() + pieces[3].str(), &DigestEntry::name);
    if (first != lines.end()) {
      first->rest += " " + pieces[2].str() + " " + entry.rest;
    } else {
      lines.push_back(entry);
    }
  }
  std::string text;
  for (const DigestEntry& line : lines) text += line.name + " " + line.rest + "\n";
  return text;
}

}  // namespace

bool isWanted(const TxtarPart& part) {
  return part.name.starts_with(wantedFolder) || part.name == rowsPart || part.name == digestPart;
}

bool isExcerpt(const TxtarPart& part) { return std::ranges::any_of(part.flags, isExcerptFlag); }

TxtarPart excerpt(const TxtarPart& whole, const TxtarPart& wanted) {
  TxtarPart shown = whole;
  std::ranges::copy_if(wanted.flags, std::back_inserter(shown.flags), isExcerptFlag);
  const std::string ranges = wanted.value("lines");
  if (ranges.empty()) return shown;
  shown.text.clear();
  std::size_t line = 0;
  for (std::size_t at = 0; at < whole.text.size();) {
    const std::size_t end = std::min(whole.text.find('\n', at), whole.text.size() - 1) + 1;
    if (names(ranges, ++line)) shown.text += whole.text.substr(at, end - at);
    at = end;
  }
  return shown;
}

std::string sha256(std::string_view bytes) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned length = 0;
  EXPECT_EQ(EVP_Digest(bytes.data(), bytes.size(), digest.data(), &length, EVP_sha256(), nullptr), 1);
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (unsigned i = 0; i < length; ++i) text += {digits[digest[i] / 16], digits[digest[i] % 16]};
  return text;
}

std::vector<TxtarPart> condensed(const Txtar& archive, const std::vector<ProducedPart>& produced) {
  std::vector<TxtarPart> parts;
  std::vector<DigestEntry> rows, digests;
  for (const ProducedPart& part : produced) {
    const TxtarPart* wanted = archive.find(part.whole.name);
    if (wanted != nullptr) parts.push_back(part.shown);
    if (wanted != nullptr && !isExcerpt(*wanted)) continue;
    if (part.tables.empty()) {
      digests.push_back(fileEntry(part));
    } else {
      addRows(part, rows);
    }
  }
  if (!rows.empty()) parts.push_back({std::string(rowsPart), {}, groupedLines(rows)});
  if (!digests.empty()) parts.push_back({std::string(digestPart), {}, groupedLines(digests)});
  return parts;
}

}  // namespace kv::test
