#pragma once
// Tables, columns and indexes of a database as values: what the schema view returns, and what a table is created from.
//
// Column types are declared by name and recognised by it (see columnTypeName): TEXT(n), LONGTEXT, BOOLEAN, TINYINT,
// SMALLINT, INTEGER, MONEY_INTEGER (a count of ten-thousandths), FLOAT (rounded to single precision), DOUBLE,
// DATETIME (text "YYYY-MM-DD HH:MM:SS"), BLOB(n), LONGBLOB. An automatic key is "INTEGER PRIMARY KEY AUTOINCREMENT".

#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// Column types with the codes that the SQL export's type map goes by.
enum class ColumnType {
  Bool = 1,
  Byte = 2,
  Int = 3,
  Long = 4,
  Money = 5,
  Single = 6,
  Double = 7,
  DateTime = 8,
  Binary = 9,
  Text = 10,
  LongBinary = 11,
  Memo = 12
};

constexpr unsigned autoIncrement = 16;        ///< column attribute: the automatic key
constexpr unsigned hiddenTable = 1;           ///< table attribute
constexpr unsigned systemTable = 0x80000002;  ///< table attribute mask

/// One column of a table.
struct ColumnInfo {
  std::string name;
  ColumnType type = ColumnType::Text;
  int size = 0;              ///< characters of Text, bytes of Binary; 0 otherwise
  unsigned attributes = 0;   ///< 0 or autoIncrement
  bool required = false;     ///< NOT NULL
  std::string defaultValue;  ///< as declared; empty when none
};
/// One index of a table.
struct IndexInfo {
  std::string name;
  bool primary = false;              ///< it is the primary key
  bool unique = false;               ///< no two rows have equal columns
  std::vector<std::string> columns;  ///< names, in the order of the index
};
/// One table; columns and indexes in the order of creation.
struct TableInfo {
  std::string name;
  unsigned attributes = 0;  ///< hiddenTable, systemTable or 0
  std::vector<ColumnInfo> columns;
  std::vector<IndexInfo> indexes;

  /// Index of a column, case ignored; -1 when there is none.
  int columnIndex(std::string_view column) const;
};

/// The declared type of a column: "TEXT(50)", "LONGTEXT", "MONEY_INTEGER" ...
std::string columnTypeName(ColumnType type, int size);

}  // namespace kv
