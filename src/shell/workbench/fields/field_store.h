#pragma once
// Reading and writing the current rows through the editors: from the column's value to the text a field shows, and back
// by the rules of its kind. Flags are "1" and "0", choices their index.

#include <string>
#include <string_view>

#include "shell/workbench/fields/editor_table.h"
#include "store/catalogue/undo_history.h"

namespace kv {

/// It knows the price list being edited, and nothing of the controls. The workbench owns it; the editors reach it
/// through the workbench.
class FieldStore {
 public:
  /// The sets and the history outlive it.
  /// `decimalSeparator`: "," or "." of the user's locale, used in every text that is shown or taken.
  FieldStore(CatalogueSets& sets, UndoHistory& history, char decimalSeparator)
      : sets_(sets), history_(history), separator_(decimalSeparator) {}

  char separator() const { return separator_; }
  /// The price list that fields with a column for each list show and write, 0 to 9.
  int listino() const { return listino_; }
  /// Changes what shown() and leave() mean from now on; the caller has the fields shown again.
  void selectListino(int listino) { listino_ = listino; }

  /// What the field shows of the current row, in the language and price list being edited; empty on no row.
  /// A flag is "1" or "0", a choice its index, a number has the decimal separator, lines end with "\n". Addresses, the
  /// reverse exchange rate and the names of variants are computed.
  std::string shown(const Editor& editor);
  /// What became of a field that was left.
  struct Outcome {
    Result<> done;         ///< a failure leaves the row as it was
    bool written = false;  ///< a row was changed
    std::string note;      ///< to be told to the user
  };
  /// A field that is left, with what it showed before.
  struct Reading {
    FieldText field;
    std::string before;
    bool isOnRow = false;    ///< false: there is nothing to write to
    bool isChanged = false;  ///< the text is not the one that was shown
    bool isStored = false;   ///< its column is there, or it is kept beside the row
  };
  /// Reads the text that a field is left with, by the rules of its kind. Nothing is refused that was shown already.
  Reading read(const Editor& editor, const std::string& text);

  /// Leaving the field with what was read: saves the row; nothing happens when it says what the row says. One step of
  /// the history.
  /// The step is called "Modifica" and the plain label. A price, quantity or percent that is no number becomes 0, an
  /// empty offer price null; other numbers fail as Recordset::set. The reverse rate is stored as the rate it follows
  /// from. On no row nothing happens.
  Outcome leave(const Editor& editor, const Reading& reading);
  Outcome leave(const Editor& editor, const std::string& text) { return leave(editor, read(editor, text)); }

  /// What the first language has in the column of a text field that is empty in the language being edited; empty for a
  /// field that isn't, and in the first language.
  std::string firstLanguageText(const Editor& editor);

  /// The most characters that the column takes; 0: any number.
  /// For texts the size of the column, for whole numbers the digits that always fit: 4 or 9.
  int widest(const Editor& editor);

 private:
  /// The column in the language and price list being edited; null when the set has none of that name.
  const ColumnInfo* columnInfo(const Editor& editor);
  /// What a field is read into by its rules and those of its column; `before`: what it showed.
  FieldText readText(const Editor& editor, const ColumnInfo* column, const std::string& text,
                     const std::string& before) const;
  /// What a field shows that is kept in a table of its own.
  std::string shownSideValue(const Editor& editor) const;
  /// Leaving a field that is kept in a table of its own.
  Outcome leaveSide(const Editor& editor, const Value& value);
  /// Writes one column, and what follows from it in the connection settings.
  Result<> write(const Editor& editor, const Value& value, const std::string& oldText);
  /// Leaving the reverse exchange rate: 1 divided by it is stored as the rate.
  Outcome leaveReverseRate(const std::string& reverse);

  CatalogueSets& sets_;
  UndoHistory& history_;
  char separator_;
  int listino_ = 0;
};

/// A label without the mark of its key and without its colon.
std::string plainLabel(std::string_view label);

}  // namespace kv
