#pragma once
// What all dialogs of the program share: the result as a text tag, buttons in Italian, labels that belong to their
// fields, help by F1 and "?", and sizes that follow the font.

#include <QDialog>
#include <QString>
#include <functional>
#include <string>
#include <string_view>

class QDialogButtonBox;
class QLabel;
class QMessageBox;
class QPlainTextEdit;

namespace kv {

/// A UTF-8 text as a text of Qt.
QString toQt(std::string_view utf8);
/// A text of Qt as UTF-8.
std::string fromQt(const QString& text);

/// The whole text of a field of several lines, "\n" between them; non-breaking spaces are kept.
std::string textOf(const QPlainTextEdit& field);

/// Opens a page of the application's `help`, named as "pagine/template.htm".
using HelpOpener = std::function<void(std::string_view page)>;

/// A dialog that returns its result in a text tag: "OK", or what its own header says; empty when it was left by
/// Annulla, Escape or the close button.
class FormDialog : public QDialog {
 public:
  FormDialog(std::string_view title, QWidget* parent);

  /// The result of the last exec().
  const std::string& tag() const { return tag_; }
  /// Closes the dialog with a result.
  void finish(std::string tag);
  /// Closes the dialog with an empty tag.
  void reject() override;
  /// Shows the dialog until it is closed, with the usual cursor even during work that shows the wait cursor.
  int exec() override;
  /// Adds a "?" to the row of buttons and the key F1, which open `page`, before the dialog is shown.
  void offerHelp(HelpOpener help, std::string_view page);

 protected:
  /// The dialog is within the screen when it shows, and once more when it has its frame.
  void showEvent(QShowEvent* event) override;
  /// A row of two buttons: the default one (Ok of the row), which the dialog class connects, and the one that closes
  /// without a result (Cancel).
  QDialogButtonBox* makeButtons(std::string_view accept = "OK", std::string_view leave = "Annulla");
  /// A row with one button, which closes the dialog without a result.
  QDialogButtonBox* makeClose(std::string_view caption = "Chiudi");
  /// Adds a "?" beside the buttons and the key F1, which open `page`; nothing when `help` is empty.
  void addHelp(QDialogButtonBox* buttons, HelpOpener help, std::string_view page);
  /// Sets the size at opening, in average characters and lines of the dialog's font; at least the layout's own size,
  /// at most what the screen has room for below a title.
  void sizeInCharacters(int columns, int lines);

 private:
  std::string tag_;  // empty until finish()
};

/// Gives the keyboard back to the field of a FormDialog that had it last, when a button has it now: for after a
/// refusal. Nothing for another window, and for a field that is off.
void returnToField(QWidget& dialog);

/// A label whose shortcut, the character after "&", moves to the field. The label's text becomes the name of the field
/// for screen readers, unless it has one.
QLabel* labelFor(std::string_view text, QWidget* field);
/// A label that breaks its plain text into lines.
QLabel* wrappedText(std::string_view text);
/// Names a control: for tests and style, and for screen readers where it has no label or caption of its own.
template <class Control>
Control* named(Control* control, std::string_view objectName, std::string_view accessibleName = {}) {
  control->setObjectName(toQt(objectName));
  if (!accessibleName.empty()) control->setAccessibleName(toQt(accessibleName));
  return control;
}

/// Names the picture of a message box for screen readers, and takes the text, which they read by themselves, out of the
/// order of the Tab key.
void makeReadable(QMessageBox& box);

/// Shows the wait cursor as long as this object lives.
class WaitCursor {
 public:
  /// Sets the wait cursor for all windows.
  WaitCursor();
  ~WaitCursor();
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

/// Shows the usual cursor as long as this object lives, for a dialog over work that shows the wait cursor.
class UsualCursor {
 public:
  /// Sets the usual cursor, when there is a wait cursor to cover.
  UsualCursor();
  ~UsualCursor();
  UsualCursor(const UsualCursor&) = delete;
  UsualCursor& operator=(const UsualCursor&) = delete;

 private:
  bool busy_;  // there was a wait cursor
};

}  // namespace kv
