#pragma once
// Seed files: the readable rows from which the shipped databases are made. UTF-8, one section for each row or list.
//
//   # a comment; empty lines between sections are free
//   [every categorie]            columns that each later row of the table has unless it says otherwise
//   maxarticoli: 12
//   [categorie ceramiche]        one row; other rows refer to it as @ceramiche
//   titolo: Ceramiche
//   descrizione:                 a long text, each line indented by two blanks; its lines are joined by a blank,
//     First line                 and an empty line begins a new paragraph
//     goes on.
//   firma_email: |               the same with its lines kept as they are
//     Bottega Montelune
//     Montelune
//   [list paesi]                 many short rows: the column names, then one line for each row, cells parted by "|"
//   paese  | zona
//   Italia | 1
//
// An empty cell of a list, like a column that is not named, leaves the column to its default.

#include <string>
#include <string_view>
#include <vector>

#include "platform/result.h"

namespace kv {

struct SeedField {
  std::string column;
  std::string text;  ///< UTF-8; line ends are CR LF
  int line = 0;      ///< of the file, from 1
};

struct SeedRow {
  std::string table;
  std::string name;  ///< what "@name" refers to; empty when the row has none
  std::string file;
  int line = 0;
  std::vector<SeedField> fields;

  /// The field of a column, or nullptr.
  const SeedField* find(std::string_view column) const;
};

/// "file:line", for messages.
std::string placeOf(const SeedRow& row, int line);

/// The rows of one seed file in order, with the columns of [every] added behind their own.
/// Malformed, with "file:line" as the place, at the first line that fits nothing, a column given twice, a list row
/// with more cells than columns, or a character that Windows-1252 lacks.
Result<std::vector<SeedRow>> parseSeed(const std::string& file, std::string_view text);

}  // namespace kv
