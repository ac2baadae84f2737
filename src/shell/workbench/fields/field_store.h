#pragma once
// Reading and writing the current rows through the editors: from the column's value to the text a field shows, and back
// by the rules of its kind. Flags are "1" and "0", choices their index.

#include <string>
#include <string_view>

#include "shell/workbench/fields/editor_table.h"
#include "store/catalogue/undo_history.h"

namespace kv {

class FieldStore {
 public:
  /// The sets and the history outlive it.
  FieldStore(CatalogueSets& sets, UndoHistory& history, char decimalSeparator)
      : sets_(sets), history_(history), separator_(decimalSeparator) {}

  char separator() const { return separator_; }
  /// The price list that fields with a column for each list show and write, 0 to 9.
  int listino() const { return listino_; }
  void selectListino(int listino) { listino_ = listino; }

  /// What the field shows of the current row, in the language and price list being edited; empty on no row.
  std::string shown(const Editor& editor);

  struct Outcome {
    Result<> done;
    bool written = false;  ///< a row was changed
    std::string note;      ///< to be told to the user
  };
  /// Leaving the field with this text: brings it to its form and saves the row; nothing happens when it says what the
  /// row says. One step of the history.
  Outcome leave(const Editor& editor, const std::string& text);

  /// The most characters that the column takes; 0: any number.
  int widest(const Editor& editor);

 private:
  const ColumnInfo* columnInfo(const Editor& editor);
  Outcome leaveReverseRate(const Editor& editor, const std::string& text);
  Result<> write(const Editor& editor, const Value& value, const std::string& oldText);

  CatalogueSets& sets_;
  UndoHistory& history_;
  char separator_;
  int listino_ = 0;
};

/// A label without the mark of its key and without its colon.
std::string plainLabel(std::string_view label);

}  // namespace kv
