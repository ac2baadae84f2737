#pragma once
// A grid for the keyboard: Tab and Enter edit and move on, F2 edits, Ins, Del, Ctrl+D and Ctrl+V are commands of the
// dialog. Its cells are texts; what an edit comes to is for the dialog to say.

#include <QStyledItemDelegate>
#include <QTableWidget>
#include <functional>
#include <string>

#include "platform/numbers/typed_number.h"

namespace kv {

/// Which characters a cell takes.
struct CellRule {
  bool isNumber = false;
  NumberKeys keys = {};     ///< of a number
  int longest = 0;          ///< characters of a text; 0: any number
  std::string spoken = {};  ///< name of the editor for screen readers
};

/// Makes the editor of a cell.
class CellDelegate final : public QStyledItemDelegate {
 public:
  CellDelegate(CellRule rule, QObject* parent) : QStyledItemDelegate(parent), rule_(std::move(rule)) {}
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;

 private:
  CellRule rule_;
};

class VariantGrid final : public QTableWidget {
 public:
  /// What keys do; empty: nothing.
  struct Commands {
    std::function<void()> insert;                     ///< Ins
    std::function<void()> remove;                     ///< Del
    std::function<void()> duplicate;                  ///< Ctrl+D
    std::function<void(const std::string&)> paste;    ///< Ctrl+V, with the text of the clipboard
    std::function<void(int row, int column)> choose;  ///< Enter or space in a cell that can't be edited
    std::function<void(int row, int column)> edited;  ///< the user has changed the text of a cell
    std::function<void(int row)> rowChanged;          ///< the cursor is on another row; -1: on none
  };
  VariantGrid(const QStringList& headings, Commands commands);

  /// Shows a text in a cell, which can be edited or not; no command runs.
  /// spoken: what a screen reader says instead; empty: the text.
  void setCell(int row, int column, const std::string& text, bool editable, const std::string& spoken = {});
  std::string cell(int row, int column) const;
  /// Shows a text that could not be stored, with a picture and the reason as its tip.
  void setUnsaved(int row, int column, const std::string& text, const std::string& reason);
  /// Shows this many rows and goes to one of them, -1 for none, with no command run.
  void setRows(int count);
  void goTo(int row, int column);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  /// Tab goes from cell to cell and leaves the grid from its last one.
  bool focusNextPrevChild(bool next) override;

 private:
  /// Runs the command of a key; false when it has none.
  bool runKey(const QKeyEvent& event);
  /// Edits the current cell, or lets choose in one that can't be edited. False for a key that the table is to take.
  bool enterCell(const QKeyEvent& event);

  Commands commands_;
  bool filling_ = false;  ///< signals are not the user's
};

}  // namespace kv
