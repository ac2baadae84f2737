#pragma once
// Writes Jet databases for tests: tables with rows, in the form of Jet 3 or of Jet 4, deleted rows and long texts
// included. There are no indexes, and the catalogue has the columns that readers need.
// Source: the description of the format that comes with mdbtools (HACKING).

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "platform/database/value.h"

namespace kv::test {

enum class JetVersion : std::uint8_t { Jet3 = 0, Jet4 = 1 };

/// The types of columns, by their number in the file.
enum class JetType : std::uint8_t {
  Flag = 1,
  Byte = 2,
  Int = 3,
  Long = 4,
  Money = 5,
  Single = 6,
  Double = 7,
  Text = 10,
  Ole = 11,
  Memo = 12
};

struct JetColumn {
  std::string name;
  JetType type = JetType::Long;
};

struct JetTable {
  std::string name;
  std::vector<JetColumn> columns;
  std::vector<std::vector<Value>> rows;  ///< a field for each column; a text has at most 255 characters outside a memo
  std::set<std::size_t> deleted;         ///< indexes of rows that are in the file and have been deleted
};

/// The bytes of a database with these tables. Text is in UTF-8; in Jet 3 it becomes Windows-1252, in Jet 4 UCS-2, in
/// its short form where every character is of Latin-1.
std::string jetFile(JetVersion version, const std::vector<JetTable>& tables);

}  // namespace kv::test
