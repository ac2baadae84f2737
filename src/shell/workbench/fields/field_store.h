#pragma once
// Reading and writing the current rows through the editors: from the column's value to the text a field shows, and back
// by the rules of its kind, with what follows from a change (addresses, script names, web folders). Flags are "1" and
// "0", choices their place.

#include <array>
#include <string>
#include <vector>

#include "platform/image/image.h"
#include "shell/workbench/fields/editor_table.h"
#include "shell/workbench/fields/web_address.h"
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
    bool written = false;    ///< a row was changed
    bool recovered = false;  ///< what was no number became 0
    std::string note;        ///< to be told to the user
  };
  /// Leaving the field with this text: brings it to its form and saves the row; nothing happens when it says what the
  /// row says. One step of the history.
  Outcome leave(const Editor& editor, const std::string& text);

  /// The most letters that the column takes; 0: any number.
  int widest(const Editor& editor);

  /// Sets a picture of the current row: its file in `work` and its size; an empty name clears the three columns.
  Result<> storePicture(EditedSet set, int number, const std::string& name, ImageSize size);
  /// The file name of a picture of the current row; empty when there is none.
  std::string picture(EditedSet set, int number);

  /// Whether a flag of the settings is on; false while no shop is open.
  bool setting(std::string_view column);
  std::string settingText(std::string_view column);
  /// The full addresses of shop and back office.
  FullAddresses addresses();

  /// The names of the four variants of the current article in the price list being edited.
  std::array<std::string, 4> variantNames();
  /// The words by which articles are related, in use in this shop.
  std::vector<std::string> relatedWords();

 private:
  bool onRow(EditedSet set);
  const ColumnInfo* columnInfo(const Editor& editor);
  Result<Value> valueOf(const Editor& editor, const std::string& text, bool& recovered);
  Result<> write(const Editor& editor, const Value& value, const std::string& oldText);
  Result<> settleWeb(const Editor& editor, const std::string& oldText);
  Result<> storeSetting(std::string_view column, const std::string& text);

  CatalogueSets& sets_;
  UndoHistory& history_;
  char separator_;
  int listino_ = 0;
};

/// A label without the mark of its key and without its colon.
std::string plainLabel(std::string_view label);

}  // namespace kv
