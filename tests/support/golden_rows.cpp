#include "support/golden_rows.h"
#include "platform/database/recordset.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "support/golden_blocks.h"

namespace kv::test {
namespace {

Result<Value> valueOf(const TableInfo& table, const std::string& column, std::string_view text) {
  const int index = table.columnIndex(column);
  if (index < 0) return fail(ErrorKind::Missing, table.name, "no column " + column);
  if (text == "null") return Value(Null{});
  if (text.size() > 1 && text.front() == '"' && text.back() == '"') text = text.substr(1, text.size() - 2);
  switch (table.columns[static_cast<std::size_t>(index)].type) {
    case ColumnType::Text:
    case ColumnType::Memo:
      return Value(std::string(text));
    case ColumnType::Bool:
      return Value(text == "true");
    case ColumnType::Money:
      if (const auto amount = Money::parse(text)) return Value(*amount);
      break;
    case ColumnType::Single:  // as the program stores it: in the precision of the column
      if (const auto number = toNumber(text)) return Value(static_cast<double>(static_cast<float>(*number)));
      break;
    case ColumnType::Double:
      if (const auto number = toNumber(text)) return Value(*number);
      break;
    default:
      if (const auto number = toNumber(text)) return Value(static_cast<std::int64_t>(*number));
      break;
  }
  return fail(ErrorKind::TextInNumber, table.name, column + " = " + std::string(text));
}

Result<> insertRow(Database& database, const TableInfo& table, const RowBlock& block, int n) {
  std::string columns, places;
  std::vector<Value> values;
  for (const auto& [column, text] : block.fields) {
    auto value = valueOf(table, column, replaceAll(text, "{n}", std::to_string(n)));
    if (!value) return fail(value.error());
    columns += (columns.empty() ? "" : ", ") + ("\"" + column + "\"");
    places += places.empty() ? "?" : ", ?";
    values.push_back(std::move(*value));
  }
  const std::string what =
      values.empty() ? " DEFAULT VALUES" : std::string(" (") + columns + ") VALUES (" + places + ")";
  auto statement = database.prepare("INSERT INTO " + table.name + what);
  if (!statement) return fail(statement.error());
  for (std::size_t i = 0; i < values.size(); ++i) statement->bind(static_cast<int>(i) + 1, values[i]);
  return statement->execute();
}

// The text after a column's name: "=value", or ":" and the lines of a text that has several.
std::string shown(const Value& value, ColumnType type) {
  if (type == ColumnType::Bool) return asFlag(value) ? "=1" : "=0";
  if (type == ColumnType::Single) return "=" + trimmedNumber(static_cast<float>(asNumber(value)));
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr) return "=" + asText(value);
  constexpr std::string_view digits = "0123456789abcdef";
  std::string out;
  bool several = false;
  for (std::size_t i = 0; i < text->size(); ++i) {
    const auto byte = static_cast<unsigned char>((*text)[i]);
    if (byte == '\r' && i + 1 < text->size() && (*text)[i + 1] == '\n') {
      several = true;
      out += "\n  |";
      ++i;
    } else if (byte < 0x20) {
      out += std::string("\\x") + digits[byte / 16] + digits[byte % 16];
    } else {
      out += (*text)[i];
    }
  }
  return several ? ":\n  |" + out : "=" + out;
}

std::string stem(const std::string& column) { return column.substr(0, column.find_last_not_of("0123456789_") + 1); }

// The columns of one row: runs of three and more of one family with equal values are one.
std::vector<std::string> joined(const std::vector<std::pair<std::string, std::string>>& fields) {
  std::vector<std::string> out;
  for (std::size_t at = 0; at < fields.size();) {
    std::size_t end = at + 1;
    while (end < fields.size() && fields[end].second == fields[at].second &&
           stem(fields[end].first) == stem(fields[at].first))
      ++end;
    if (end - at < 3) end = at + 1;
    out.push_back(fields[at].first + (end - at > 1 ? ".." + fields[end - 1].first : "") + fields[at].second);
    at = end;
  }
  return out;
}

std::string fullText(const std::string& table, const std::vector<std::string>& fields) {
  std::string text = "[" + table + "]\n";
  for (const std::string& field : fields) text += field + "\n";
  return text + "\n";
}

// A row with as many columns to a line as it can hold; a text of several lines is on lines of its own. Empty for a row
// that has nothing to show but its ID.
std::string briefText(const std::string& table, const std::vector<std::string>& fields) {
  constexpr std::size_t longestLine = 118;
  if (std::ranges::all_of(fields, [](const std::string& field) { return field.starts_with("ID="); })) return {};
  std::string text, line = "[" + table + "]";
  bool first = true, full = false;
  for (const std::string& field : fields) {
    const bool several = field.find('\n') != std::string::npos;
    const std::string longer = line + (first ? " " : " | ") + field;
    if (!first && (full || several || longer.size() > longestLine)) {
      text += line + "\n";
      line = field;
    } else {
      line = longer;
    }
    first = false;
    full = several;
  }
  return text + line + "\n";
}

// Whether a list separated by "," names something; an empty one names everything.
bool isListed(const std::string& list, const std::string& name) {
  return list.empty() || ("," + list + ",").find("," + name + ",") != std::string::npos;
}

}  // namespace

Result<> insertRows(Database& database, std::string_view text) {
  if (auto begun = database.begin(); !begun) return begun;
  const auto blocks = readBlocks(text);
  if (!blocks) return fail(blocks.error());
  for (const RowBlock& block : *blocks) {
    auto table = database.table(block.table);
    if (!table) return fail(table.error());
    for (int n = 1; n <= block.count; ++n) {
      if (auto inserted = insertRow(database, *table, block, n); !inserted) return inserted;
    }
  }
  return database.commit();
}

Result<> setField(Database& database, const std::string& table, const std::string& key, const std::string& column,
                  std::string_view value) {
  auto info = database.table(table);
  if (!info) return fail(info.error());
  auto field = valueOf(*info, column, value);
  if (!field) return fail(field.error());
  auto statement =
      database.prepare("UPDATE " + table + " SET " + column + " = ?1" + (key == "*" ? "" : " WHERE ID = ?2"));
  if (!statement) return fail(statement.error());
  statement->bind(1, *field);
  if (key != "*") statement->bind(2, key);
  return statement->execute();
}

Result<std::string> dumpTable(Database& database, const TableInfo& table, const DumpOptions& options,
                              std::size_t* count) {
  const bool hasIds = table.columnIndex("ID") >= 0;
  const std::string order = hasIds ? " ORDER BY ID" : "";
  auto rows = database.openRecordset("SELECT * FROM " + table.name + order);
  if (!rows) return fail(rows.error());
  std::string out;
  for (; !rows->eof(); rows->moveNext()) {
    if (hasIds && !isListed(options.ids, asText(rows->get("ID")))) continue;
    std::vector<std::pair<std::string, std::string>> fields;
    for (const ColumnInfo& column : table.columns) {
      const Value value = rows->get(column.name);
      // A flag knows no null: it reads as off.
      const bool nothing =
          kv::isNull(value) ? column.type != ColumnType::Bool : options.hideEmpty && asText(value).empty();
      if (isListed(options.only, column.name) && !nothing) fields.emplace_back(column.name, shown(value, column.type));
    }
    out += options.brief ? briefText(table.name, joined(fields)) : fullText(table.name, joined(fields));
    if (count != nullptr) ++*count;
  }
  return out;
}

}  // namespace kv::test
