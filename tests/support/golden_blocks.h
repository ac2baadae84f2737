#pragma once
// Rows as a golden case writes them, before a database knows their columns.
//
//   [generale]                                    a block: the columns of one row, as many to a line as read well
//   URL = example.it | decimali1 = true
//   home1 <<<                                     a text of several lines, up to ">>>"
//   Prima riga
//   seconda riga
//   >>>
//   [articoli x 200]                              a block for 200 rows; "{n}" is the number of the row among them
//   [dettagliop: OpID | testo | prezzo]           a table: the columns, then a row a line
//   2 | " S " | 0
//   2 | "M|L" |                                   the price is left out: null, or what a key counts on to
//   [articoli: x | titolo | catID = cat001]       a column "x" is the number of such rows; each row has the catID
//   200 | A{n}
//
// Cells are separated by "|", and spaces around a cell don't count. A cell that begins with a double quote goes on to
// the first double quote with "|" or the line's end after it: only so can it hold "|" or spaces at its ends, be empty,
// or be the text "null". An empty line ends nothing, a line with "#" in front is a remark. Tables of one row, such as
// generale, may come in several blocks: a later one adds its columns, or replaces them.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ports/result.h"

namespace kv::test {

struct RowBlock {
  std::string table;
  int count = 1;                                            ///< how many rows are made of it
  std::vector<std::pair<std::string, std::string>> fields;  ///< column and value, the value in its quotes
};

/// The cells of a line, each as it is written, without the spaces around it.
std::vector<std::string> splitCells(std::string_view line);
/// The blocks of a text, one for each line of a table. Malformed, quoting the line, if a row hasn't as many cells as
/// its table has columns, or a line is neither head nor column.
Result<std::vector<RowBlock>> readBlocks(std::string_view text);

}  // namespace kv::test
