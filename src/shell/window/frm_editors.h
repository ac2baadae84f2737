#pragma once
// One row of the editor table as controls: it shows the current row, lets through what may be typed, and hands the text
// to the workbench when the field is left.

#include <QLabel>
#include <QObject>
#include <functional>

#include "platform/database/recordset.h"
#include "shell/workbench/workbench.h"

class QAction;
class QLayout;

namespace kv {

class PicturePreview;

/// The window's actions by the names of their commands.
using CommandActions = std::function<QAction*(std::string_view name)>;

/// One editor on a page. What was typed and not saved yet is never overwritten by the row.
class EditorBinding final : public QObject {
  Q_OBJECT
 public:
  EditorBinding(const Editor& editor, Workbench& workbench, const CommandActions& actions, QWidget* parent);

  /// The row of the table that this is.
  const Editor& editor() const { return editor_; }
  /// The control itself, named after its column.
  QWidget* field() const { return field_; }
  /// The field with what is beside it, a unit or a button; null for a field alone. Not a widget around
  /// them: a reader of the screen finds the label of a field among its neighbours.
  QLayout* row() const { return row_; }
  /// The label beside the control, which is dimmed with it.
  void setLabel(QLabel* label) { label_ = label; }
  /// Whether the label is part of the control itself.
  bool labelsItself() const { return editor_.control == Control::Check; }

  /// Shows the current row, unless something typed still waits to be saved.
  void show();
  /// The control is enabled as the workbench says, its label and unit with it.
  void refreshEnabled();
  /// Hands what was typed to the workbench.
  void commit();
  /// Shows a text that follows from another field that is being typed.
  void preview(const QString& text);

 signals:
  void typed(const QString& text);  ///< at each change by the user
  void entered();                   ///< Enter was typed

 private:
  void makeLine(bool hidden);
  void makeMemo();
  void makeCheck();
  void makeChoice();
  void makePick();
  void makeCombo();
  void makePicture(const CommandActions& actions);
  void makeVariant(const CommandActions& actions);
  void makeShown();
  void adopt(QWidget* field);
  void edited();
  void addUnit(QWidget* field);

  const Editor& editor_;
  Workbench& workbench_;
  QWidget* parent_;
  QWidget* field_ = nullptr;
  QLayout* row_ = nullptr;
  QLabel* unit_ = nullptr;
  QLabel* label_ = nullptr;
  // How the text of the control is read and set, whatever it is.
  std::function<QString()> read_;
  std::function<void(const QString&)> write_;
  bool dirty_ = false;    ///< typed into and not saved
  bool loading_ = false;  ///< the program changes it, not the user
};

}  // namespace kv
