#include "platform/database/jet/jet_file.h"

#include <algorithm>

#include "platform/database/jet/jet_reader.h"
#include "platform/database/jet/jet_stream.h"
#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {
namespace {

// After the version of the file format, which is the same in all.
constexpr std::string_view jetMark("\0\1\0\0Standard Jet DB", jetStartSize);
// What a stream may have more than the file: marks and lengths of fields, and characters of two bytes or three.
constexpr std::size_t streamGrowth = 8;
constexpr std::size_t streamLeast = std::size_t{16} << 20;
constexpr std::size_t bytesPerSecond = std::size_t{2} << 20;

IsolationLimits limitsFor(std::size_t fileBytes) {
  IsolationLimits limits;
  limits.output = streamLeast + streamGrowth * fileBytes;
  limits.seconds += static_cast<unsigned>(fileBytes / bytesPerSecond);
  return limits;
}

Result<std::vector<std::vector<Value>>> readApart(const std::string& path, std::size_t columns,
                                                  const std::function<void(const IsolatedOutput&)>& work) {
  const auto file = fileStamp(path);
  if (!file) return fail(file.error());
  const auto stream = runIsolated(limitsFor(static_cast<std::size_t>(file->size)), work);
  if (!stream) return fail(stream.error().kind, path, stream.error().what, stream.error().number);
  auto rows = jetRows(*stream, columns);
  if (!rows && rows.error().where.empty()) return fail(rows.error().kind, path, rows.error().what);
  return rows;
}

/// The types have the same numbers here as in the file.
ColumnType typeOf(std::int64_t number) {
  const bool isKnown =
      number >= static_cast<std::int64_t>(ColumnType::Bool) && number <= static_cast<std::int64_t>(ColumnType::Memo);
  return isKnown ? static_cast<ColumnType>(number) : ColumnType::Text;
}

std::string insertInto(const JetTableInfo& table) {
  std::string values;
  for (std::size_t i = 1; i <= table.columns.size(); ++i) {
    values += (i == 1 ? "?" : ", ?") + std::to_string(i);
  }
  return "INSERT INTO \"" + replaceAll(table.name, "\"", "\"\"") + "\" VALUES (" + values + ")";
}

}  // namespace

bool isJetStart(std::string_view start) { return start.starts_with(jetMark); }

Result<JetFile> JetFile::open(const std::string& path) {
  const auto start = readStart(path, jetStartSize);
  if (!start) return fail(start.error());
  if (!isJetStart(*start)) return fail(ErrorKind::Malformed, path, "no Jet database");
  const auto columns = readApart(path, 3, [&](const IsolatedOutput& output) { listJetColumns(path, output); });
  if (!columns) return fail(columns.error());
  JetFile file(path);
  for (const auto& row : *columns) {
    const std::string table = asText(row[0]);
    if (file.tables_.empty() || file.tables_.back().name != table) file.tables_.push_back({table, {}, {}});
    file.tables_.back().columns.push_back(asText(row[1]));
    file.tables_.back().types.push_back(typeOf(asInteger(row[2])));
  }
  return file;
}

Result<std::vector<std::vector<Value>>> JetFile::rows(std::string_view table,
                                                      const std::vector<std::string>& columns) const {
  const auto found =
      std::ranges::find_if(tables_, [&](const JetTableInfo& one) { return equalsIgnoringCase(one.name, table); });
  if (found == tables_.end()) return fail(ErrorKind::Missing, path_, std::string(table));
  for (const std::string& column : columns) {
    const auto isIt = [&](const std::string& name) { return equalsIgnoringCase(name, column); };
    if (std::ranges::none_of(found->columns, isIt)) return fail(ErrorKind::Missing, found->name, column);
  }
  if (columns.empty()) return std::vector<std::vector<Value>>();
  const JetQuery query{found->name, columns};
  return readApart(path_, columns.size(), [&](const IsolatedOutput& output) { readJetTable(path_, query, output); });
}

Result<> JetFile::copyTable(const JetTableInfo& table, Database& target) const {
  const auto found = rows(table.name, table.columns);
  if (!found) return fail(found.error());
  TableInfo made{table.name, 0, {}, {}};
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    ColumnInfo column;
    column.name = table.columns[i];
    column.type = table.types[i];
    made.columns.push_back(std::move(column));
  }
  if (auto created = target.createTable(made); !created) return created;
  auto insert = target.prepare(insertInto(table));
  if (!insert) return fail(insert.error());
  for (const auto& row : *found) {
    for (std::size_t i = 0; i < row.size(); ++i) insert->bind(static_cast<int>(i) + 1, row[i]);
    if (auto written = insert->execute(); !written) return written;
  }
  return {};
}

}  // namespace kv
