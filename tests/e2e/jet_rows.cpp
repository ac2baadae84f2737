// Writes a Jet database by chance, and prints its rows as this program reads them, for readers of other make to
// compare. jet_rows FILE 3|4 SEED COUNT
#include <cstdio>
#include <iostream>

#include "platform/database/jet/jet_file.h"
#include "platform/files/files.h"
#include "support/jet_samples.h"

namespace {

using namespace std::string_literals;

/// A field as JSON: amounts as texts, since they have more digits than a number of JSON.
std::string jsonOf(const kv::Value& value) {
  if (kv::isNull(value)) return "null";
  if (const auto* number = std::get_if<double>(&value)) {
    char digits[64];
    std::snprintf(digits, sizeof digits, "%.17g", *number);
    return digits;
  }
  if (const auto* amount = std::get_if<kv::Money>(&value)) return std::to_string(amount->tenThousandths());
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return std::to_string(*whole);
  std::string text = "\"";
  for (const char c : kv::asText(value)) text += (c == '"' || c == '\\' ? "\\"s : ""s) + c;
  return text + "\"";
}

int printRows(const std::string& path, const kv::test::JetTable& table) {
  std::vector<std::string> columns;
  for (const auto& column : table.columns) columns.push_back(column.name);
  const auto file = kv::JetFile::open(path);
  const auto rows = file ? file->rows(table.name, columns) : kv::fail(file.error());
  if (!rows) {
    std::cerr << rows.error().what << '\n';
    return 1;
  }
  for (const auto& row : *rows) {
    std::string line;
    for (const auto& field : row) line += (line.empty() ? "[" : ",") + jsonOf(field);
    std::cout << line << "]\n";
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 5) return 2;
  const std::string path = arguments[1];
  const auto version = arguments[2] == "3"s ? kv::test::JetVersion::Jet3 : kv::test::JetVersion::Jet4;
  const auto table =
      kv::test::chanceArticles(static_cast<unsigned>(std::stoul(arguments[3])), std::stoul(arguments[4]));
  if (!kv::writeBytes(path, kv::test::jetFile(version, {kv::test::categoriesTable(), table}))) return 1;
  return printRows(path, table);
}
