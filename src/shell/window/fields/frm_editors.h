#pragma once
// One row of the editor table as controls: it shows the current row, lets through what may be typed, and hands the text
// to the workbench when the field is left.

#include <QLabel>
#include <QObject>
#include <functional>

#include "platform/database/recordset.h"
#include "platform/qt/frm_reference_note.h"
#include "shell/workbench/workbench.h"

class QAction;
class QLayout;

namespace kv {

class FieldLine;
class FieldMark;
class PictureField;

/// The window's actions by the names of their commands.
/// Null for a name that isn't in the table.
using CommandActions = std::function<QAction*(std::string_view name)>;

/// One editor on a page. What was typed and not saved yet is never overwritten by the row.
/// Saving happens when a line or memo loses the focus, at once for a check box or a choice, and whenever the window
/// finishes its edits.
class EditorBinding final : public QObject {
  Q_OBJECT
 public:
  /// Makes the control as a child of `parent`, which owns the binding too. Editor and workbench outlive it. `actions`
  /// is asked for the buttons of pictures and variants.
  EditorBinding(const Editor& editor, Workbench& workbench, const CommandActions& actions, QWidget* parent);

  /// The row of the table that this is.
  const Editor& editor() const { return editor_; }
  /// The control itself, named after its column.
  QWidget* field() const { return field_; }
  /// The field with what is beside it, a unit or a button; null for a field alone. Not a widget around
  /// them: a reader of the screen finds the label of a field among its neighbours.
  QLayout* row() const { return row_; }
  /// The label beside the control, which is dimmed with it.
  /// It belongs to the page; without one nothing is dimmed.
  void setLabel(QLabel* label) { label_ = label; }
  /// Whether the label is part of the control itself.
  bool labelsItself() const { return editor_.control == Control::Check; }

  /// Shows the current row, unless something typed still waits to be saved.
  /// Also limits what can be typed to what the column takes. Called whenever the row or its fields changed.
  void show();
  /// The control is enabled as the workbench says, its label and unit with it.
  /// Called when a mask or a setting that it depends on has changed.
  void refreshEnabled();
  /// Hands what was typed to the workbench.
  /// Nothing when nothing was typed since the last time. False when it could not be saved: the workbench has told the
  /// user, and the field keeps what was typed, with a mark.
  bool commit();
  /// Whether something was typed that isn't stored yet.
  bool isUnsaved() const { return dirty_; }
  /// Shows a text that follows from another field that is being typed.
  /// It isn't saved, and does nothing while this field itself has something to be saved.
  void preview(const QString& text);

 signals:
  void typed(const QString& text);  ///< at each change by the user
  void entered();                   ///< Enter was typed

 private:
  // One of these makes the control, by the kind that the table gives it. `hidden`: dots instead of the text.
  void makeLine(bool hidden);
  void makeMemo();
  void makeCheck();
  /// The row holds the index of the choice.
  void makeChoice();
  /// The row holds the text; one that isn't offered any more is shown all the same.
  void makePick();
  /// A choice or any text that its kind allows.
  void makeCombo();
  void makePicture(const CommandActions& actions);
  void makeVariant(const CommandActions& actions);
  /// Text that can be copied and not edited.
  void makeShown();
  /// Puts the button of the row's command beside the control; nothing for a row without one.
  void addButton(const CommandActions& actions);
  /// Takes the control over and names it, for tests, the guide and screen readers.
  void adopt(QWidget* field);
  /// The user changed the control: it is to be saved. Nothing while the program changes it.
  void edited();
  /// Escape was typed: the field shows the row again.
  void giveUp();
  /// Connects what a line says about its text.
  void follow(FieldLine* line);
  /// Opens a long text in a larger window, and stores it when that is left by OK.
  void enlarge();
  /// Ends the field's own undo: what was typed has been stored.
  void forgetTyping();
  /// Shows what goes with a price after its field, and the first language's text in an empty one.
  void showBeside();
  /// Puts the unit of the table after the control; nothing for a row without one.
  void addUnit(QWidget* field);

  const Editor& editor_;
  Workbench& workbench_;
  QWidget* parent_;           ///< owns the controls
  QWidget* field_ = nullptr;  ///< set by adopt()
  QLayout* row_ = nullptr;
  QLabel* unit_ = nullptr;     ///< null: none
  QWidget* larger_ = nullptr;  ///< the button of a long text; null: none
  QLabel* label_ = nullptr;    ///< null: none, or a part of the control
  // How the text of the control is read and set, whatever it is.
  std::function<QString()> read_;
  std::function<void(const QString&)> write_;
  FieldMark* mark_ = nullptr;  ///< set by adopt() at the latest
  ReferenceNote references_;
  bool dirty_ = false;    ///< typed into and not saved
  bool saving_ = false;   ///< the workbench has been handed the text
  bool noted_ = false;    ///< something was said of the text that is being typed
  bool loading_ = false;  ///< the program changes it, not the user
};

}  // namespace kv
