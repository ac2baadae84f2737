#pragma once
// Seed files: the readable rows from which the shipped databases are made. UTF-8, one section for each row or list.
//
//   # a comment; empty lines between sections are free
//   [every categorie]            columns that each later row of the table has unless it says otherwise
//   maxarticoli: 12
//   [categorie ceramiche]        one row; other rows refer to it as @ceramiche
//   titolo: Ceramiche
//   descrizione:                 a long text, each line indented by two spaces; its lines are joined by a space,
//     First line                 and an empty line begins a new paragraph
//     goes on.
//   firma_email: |               the same with its lines kept as they are
//     Bottega Montelune
//     Montelune
//   [more ceramiche]             further columns of the row above that has this name, also from another file
//   titolo_l2: Ceramics
//   [list paesi]                 many short rows: the column names, then one line for each row, cells parted by "|"
//   paese  | zona
//   Italia | 1
//
// An empty cell of a list, like a column that is not named, leaves the column to its default.

#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

struct SeedField {
  std::string column;
  std::string text;  ///< UTF-8; line ends are CR LF
  std::string file;
  int line = 0;  ///< of the file, from 1
};

struct SeedRow {
  std::string table;
  std::string name;   ///< what "@name" refers to; empty when the row has none
  bool more = false;  ///< no row of its own: columns for the row of this name; the table is empty
  std::string file;
  int line = 0;
  std::vector<SeedField> fields;

  /// The field of a column, or nullptr.
  const SeedField* find(std::string_view column) const;
};

/// "file:line", for messages.
std::string lineOf(const SeedRow& row);
std::string lineOf(const SeedField& field);

/// The rows of one seed file in order, with the columns of [every] added after their own.
/// Malformed, `where` being "file:line", at the first line that fits nothing, a column given twice, a list row
/// with more cells than columns, or a character that Windows-1252 lacks.
Result<std::vector<SeedRow>> parseSeed(const std::string& file, std::string_view text);

/// The rows with those of [more] taken into the rows that they name.
/// Missing when no row above has the name, Malformed when the row has the column already; `where` is "file:line".
Result<std::vector<SeedRow>> joinRows(std::vector<SeedRow> rows);

}  // namespace kv
