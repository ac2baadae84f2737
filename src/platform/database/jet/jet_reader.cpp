#include "platform/database/jet/jet_reader.h"

#include <mdbtools.h>

#include <cstring>
#include <memory>

#include "platform/database/jet/jet_stream.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t mostMemoBytes = std::size_t{1} << 20;
constexpr std::size_t mostFieldBytes = 4096;  // of any other column

struct HandleCloser {
  void operator()(MdbHandle* handle) const { mdb_close(handle); }
};
struct TableFreer {
  void operator()(MdbTableDef* table) const { mdb_free_tabledef(table); }
};
struct TextFreer {
  void operator()(char* text) const { g_free(text); }
};
using JetHandle = std::unique_ptr<MdbHandle, HandleCloser>;
using JetTable = std::unique_ptr<MdbTableDef, TableFreer>;
using LibraryText = std::unique_ptr<char, TextFreer>;

/// The handle of a file with its catalogue; nothing when it can't be read.
JetHandle openJet(const std::string& path) {
  JetHandle handle(mdb_open(path.c_str(), MDB_NOFLAGS));
  if (handle == nullptr || mdb_read_catalog(handle.get(), MDB_TABLE) == nullptr) return nullptr;
  return handle;
}

void writeFailure(const IsolatedOutput& output, ErrorKind kind, const std::string& where, const std::string& what) {
  std::string stream;
  putJetFailure(stream, {kind, where, what});
  output(stream);
}

MdbCatalogEntry* entryAt(const MdbHandle& handle, unsigned index) {
  return static_cast<MdbCatalogEntry*>(g_ptr_array_index(handle.catalog, index));
}
MdbColumn* columnAt(const MdbTableDef& table, std::size_t index) {
  return static_cast<MdbColumn*>(g_ptr_array_index(table.columns, index));
}

/// A table with its columns; nothing when its definition can't be read.
JetTable openTable(MdbCatalogEntry* entry) {
  JetTable table(mdb_read_table(entry));
  if (table == nullptr || mdb_read_columns(table.get()) == nullptr) return nullptr;
  return table;
}

JetTable tableCalled(const MdbHandle& handle, const std::string& name) {
  for (unsigned i = 0; i < handle.num_catalog; ++i) {
    if (equalsIgnoringCase(entryAt(handle, i)->object_name, name)) return openTable(entryAt(handle, i));
  }
  return nullptr;
}

MdbColumn* columnCalled(const MdbTableDef& table, const std::string& name) {
  for (std::size_t i = 0; i < table.num_cols; ++i) {
    if (equalsIgnoringCase(columnAt(table, i)->name, name)) return columnAt(table, i);
  }
  return nullptr;
}

/// A fixed number of bytes of the current row as a T; Null when they are not all in the page.
template <class T, class Shown = T>
Value numberOf(const MdbHandle& handle, const MdbColumn& column) {
  T value{};
  const auto start = static_cast<std::size_t>(column.cur_value_start);
  if (column.cur_value_start < 0 || start + sizeof value > static_cast<std::size_t>(handle.fmt->pg_size)) return Null{};
  std::memcpy(&value, handle.pg_buf + start, sizeof value);
  return static_cast<Shown>(value);
}

Value textOf(MdbHandle& handle, const MdbColumn& column) {
  mdb_set_bind_size(&handle, column.col_type == MDB_MEMO ? mostMemoBytes : mostFieldBytes);
  const LibraryText text(
      mdb_col_to_string(&handle, handle.pg_buf, column.cur_value_start, column.col_type, column.cur_value_len));
  if (text == nullptr || *text == '\0') return Null{};
  return std::string(text.get());
}

/// The field of a column in the row that was fetched last. Numbers are taken from the page: as a text they lose their
/// last digits.
Value fieldOf(MdbHandle& handle, const MdbColumn& column) {
  // A flag is kept where other columns tell whether they are Null.
  if (column.col_type == MDB_BOOL) return std::int64_t{column.cur_value_len == 0 ? 1 : 0};
  if (column.cur_value_len == 0) return Null{};
  switch (column.col_type) {
    case MDB_BYTE:
      return numberOf<std::uint8_t, std::int64_t>(handle, column);
    case MDB_INT:
      return numberOf<std::int16_t, std::int64_t>(handle, column);
    case MDB_LONGINT:
      return numberOf<std::int32_t, std::int64_t>(handle, column);
    case MDB_FLOAT:
      return numberOf<float, double>(handle, column);
    case MDB_DOUBLE:
      return numberOf<double>(handle, column);
    case MDB_MONEY: {
      const Value count = numberOf<std::int64_t>(handle, column);
      return isNull(count) ? count : Value(Money::ofTenThousandths(asInteger(count)));
    }
    case MDB_OLE:
    case MDB_BINARY:
      return Null{};
    default:
      return textOf(handle, column);
  }
}

void putColumns(const MdbTableDef& table, std::string& stream) {
  for (std::size_t i = 0; i < table.num_cols; ++i) {
    putJetField(stream, std::string(table.name));
    putJetField(stream, std::string(columnAt(table, i)->name));
    putJetField(stream, std::int64_t{columnAt(table, i)->col_type});
  }
}

}  // namespace

void listJetColumns(const std::string& path, const IsolatedOutput& output) {
  const JetHandle handle = openJet(path);
  if (handle == nullptr) return writeFailure(output, ErrorKind::Malformed, path, "the catalogue can't be read");
  for (unsigned i = 0; i < handle->num_catalog; ++i) {
    if (mdb_is_user_table(entryAt(*handle, i)) == 0) continue;
    const JetTable table = openTable(entryAt(*handle, i));
    if (table == nullptr) continue;
    std::string stream;
    putColumns(*table, stream);
    output(stream);
  }
}

void readJetTable(const std::string& path, const JetQuery& query, const IsolatedOutput& output) {
  const JetHandle handle = openJet(path);
  const JetTable table = handle == nullptr ? nullptr : tableCalled(*handle, query.table);
  if (table == nullptr) return writeFailure(output, ErrorKind::Missing, path, query.table);
  std::vector<const MdbColumn*> columns;
  for (const std::string& name : query.columns) {
    columns.push_back(columnCalled(*table, name));
    if (columns.back() == nullptr) return writeFailure(output, ErrorKind::Missing, query.table, name);
  }
  mdb_rewind_table(table.get());
  unsigned count = 0;
  for (; mdb_fetch_row(table.get()) != 0; ++count) {
    std::string row;
    for (const MdbColumn* column : columns) putJetField(row, fieldOf(*handle, *column));
    output(row);
  }
  // The library passes over pages and rows that it can't make out.
  if (count < table->num_rows) writeFailure(output, ErrorKind::Malformed, query.table, "rows are missing");
}

}  // namespace kv
