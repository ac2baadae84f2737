// Values are written from the engine's row into the file's buffer without a copy in between: a dump of a large shop is
// a few million values, and one allocation each would be most of its time.

#include "sqlexport/sql_rows.h"

#include <array>
#include <charconv>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t longestLineRow = 3;  // more columns are spread over lines
constexpr std::string_view lineEnd = "\r\n";

void appendText(OutputFile& out, std::string_view utf8) {
  out.append('\'');
  appendQuotedText(out, utf8);
  out.append('\'');
}

void appendBytes(OutputFile& out, std::string_view bytes) {
  out.append('\'');
  appendQuotedBinary(out, bytes);
  out.append('\'');
}

constexpr std::ptrdiff_t widestNumber = 24;

void appendWhole(OutputFile& out, std::int64_t number) {
  char* end = out.room(widestNumber);
  char* const last = end + widestNumber;
  if (number >= 0) *end++ = ' ';
  out.filled(std::to_chars(end, last, number).ptr);
}

/// The plain number format of an amount, written directly: no zero before the decimal separator, none at the end.
void appendMoney(OutputFile& out, std::int64_t tenThousandths) {
  constexpr std::uint64_t unit = 10000;
  const auto bits = static_cast<std::uint64_t>(tenThousandths);
  const std::uint64_t amount = tenThousandths < 0 ? 0 - bits : bits;
  char* end = out.room(widestNumber);
  char* const last = end + widestNumber;
  *end++ = tenThousandths < 0 ? '-' : ' ';
  if (amount >= unit || amount == 0) end = std::to_chars(end, last, amount / unit).ptr;
  auto rest = static_cast<unsigned>(amount % unit);
  if (rest != 0) *end++ = '.';
  for (unsigned digit = 1000; rest != 0; digit /= 10) {
    *end++ = static_cast<char>('0' + rest / digit);
    rest %= digit;
  }
  out.filled(end);
}

void appendReal(OutputFile& out, double number, ColumnType type) {
  out.append(type == ColumnType::Single ? plainNumber(static_cast<float>(number)) : plainNumber(number));
}

/// A field that isn't stored as its column is declared, as in files that other programs have written.
void appendNumberOf(OutputFile& out, const Value& value, ColumnType type) {
  if (const auto* flag = std::get_if<bool>(&value)) return out.append(*flag ? '1' : '0');
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return appendWhole(out, *whole);
  if (const auto* amount = std::get_if<Money>(&value)) return appendMoney(out, amount->tenThousandths());
  if (type == ColumnType::Bool) return out.append(asFlag(value) ? '1' : '0');
  if (type == ColumnType::Money) return appendMoney(out, asMoney(value).tenThousandths());
  appendReal(out, asNumber(value), type);
}

/// A date and time in the format "YYYY-MM-DD HH:MM:SS"; a date without a time gets midnight.
void appendDateTime(OutputFile& out, std::string_view text) {
  constexpr std::size_t dayLength = 10;
  out.append('\'');
  appendQuotedText(out, text);
  if (text.size() == dayLength) out.append(" 00:00:00");
  out.append('\'');
}

/// A time alone, the last part of a date and time.
void appendTime(OutputFile& out, std::string_view text) {
  constexpr std::size_t length = 8;
  appendText(out, text.substr(text.size() - std::min(text.size(), length)));
}

/// A field of a numeric column, by how the engine stores it.
void appendNumber(OutputFile& out, const Statement& row, int at, ColumnType type) {
  const StoredAs stored = row.storedAs(at);
  const bool real = type == ColumnType::Single || type == ColumnType::Double;
  if (stored == StoredAs::Real && real) return appendReal(out, row.number(at), type);
  if (stored != StoredAs::Integer || real) return appendNumberOf(out, row.value(at), type);
  if (type == ColumnType::Bool) return out.append(row.flag(at) ? '1' : '0');
  if (type == ColumnType::Money) return appendMoney(out, row.integer(at));
  appendWhole(out, row.integer(at));
}

/// What the fields of a column are written as.
enum class FieldForm { Text, DateTime, Time, Bytes, Number };

FieldForm formOf(ColumnType type) {
  switch (static_cast<int>(type)) {
    case static_cast<int>(ColumnType::Text):
    case static_cast<int>(ColumnType::Memo):
    case charCode:
      return FieldForm::Text;
    case static_cast<int>(ColumnType::DateTime):
    case timestampCode:
      return FieldForm::DateTime;
    case timeCode:
      return FieldForm::Time;
    case static_cast<int>(ColumnType::Binary):
    case static_cast<int>(ColumnType::LongBinary):
    case varBinaryCode:
      return FieldForm::Bytes;
    default:
      return FieldForm::Number;
  }
}

/// A column of the table: how its fields are written, and what follows each of them.
struct ColumnForm {
  ColumnType type = ColumnType::Text;
  FieldForm form = FieldForm::Text;
  std::string tail;
};

void appendField(OutputFile& out, const Statement& row, int at, const ColumnForm& column) {
  if (row.storedAs(at) == StoredAs::Null) return out.append("NULL");
  switch (column.form) {
    case FieldForm::Text:
      return appendText(out, row.text(at));
    case FieldForm::DateTime:
      return appendDateTime(out, row.text(at));
    case FieldForm::Time:
      return appendTime(out, row.text(at));
    case FieldForm::Bytes:
      return appendBytes(out, row.bytes(at));
    case FieldForm::Number:
      return appendNumber(out, row, at, column.type);
  }
}

/// The text around the values of each row, computed once for a table.
struct RowFormat {
  std::string start;
  std::string rowEnd;  ///< after each row and its warnings
  std::vector<ColumnForm> columns;
};

Result<RowFormat> rowFormat(const TableInfo& table, const std::string& name, const SqlStyle& style,
                            ExportWarnings& warnings) {
  const bool spread = table.columns.size() > longestLineRow;
  RowFormat format;
  format.start = "INSERT INTO " + name;
  if (style.target == SqlTarget::M1) {
    std::string names;
    for (const ColumnInfo& column : table.columns) {
      auto ident = SqlIdent(column.name, warnings);
      if (!ident) return fail(ident.error());
      names += (names.empty() ? "" : ", ") + *ident;
    }
    format.start += " (" + names + ")";
  }
  format.start = toWindows1252(format.start) + (spread ? "\r\nVALUES (\r\n" : " VALUES (");
  for (const ColumnInfo& column : table.columns) {
    format.columns.push_back({column.type, formOf(column.type), spread ? ", \r\n" : ", "});
  }
  if (spread) format.rowEnd = lineEnd;
  format.columns.back().tail = (spread ? " )" : ")") + toWindows1252(style.separator) + std::string(lineEnd);
  return format;
}

void writeRow(OutputFile& out, const Statement& row, const RowFormat& format, ExportWarnings& warnings) {
  out.append(format.start);
  for (int at = 0; const ColumnForm& column : format.columns) {
    appendField(out, row, at++, column);
    out.append(column.tail);
  }
  writeWarnings(out, warnings);
  out.append(format.rowEnd);
}

/// The lines around the rows of a table that is locked; empty for one that isn't.
struct TableLock {
  std::string before, after;
};

TableLock lockOf(const std::string& name, const SqlStyle& style) {
  if (!style.lockTables) return {};
  return {toWindows1252("LOCK TABLES " + name + " WRITE" + style.separator + "\r\n"),
          toWindows1252("UNLOCK TABLES" + style.separator + "\r\n")};
}

}  // namespace

std::string storeName(std::string_view name) { return "\"" + replaceAll(name, "\"", "\"\"") + "\""; }

Result<std::int64_t> writeRows(OutputFile& out, Database& database, const TableInfo& table, const SqlStyle& style,
                               ExportWarnings& warnings) {
  auto name = SqlIdent(table.name, warnings);
  if (!name) return fail(name.error());
  auto format = rowFormat(table, *name, style, warnings);
  if (!format) return fail(format.error());
  // Without an order the engine might read the rows from an index that holds every column.
  auto row = database.prepare("SELECT * FROM " + storeName(table.name) + " NOT INDEXED");
  if (!row) return fail(row.error());
  const TableLock lock = lockOf(*name, style);
  std::int64_t count = 0;
  auto found = row->step();
  for (; found && *found && !out.failed(); found = row->step()) {
    if (count++ == 0) out.append(lock.before);
    writeRow(out, *row, *format, warnings);
  }
  if (!found) return fail(found.error());
  if (count > 0) out.append(lock.after);
  return count;
}

}  // namespace kv
