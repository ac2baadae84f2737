#pragma once
// What every dialog of the program shares: the result in a text tag, buttons in Italian, labels that belong to their
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

QString toQt(std::string_view utf8);
std::string fromQt(const QString& text);

/// The whole text of a field of several lines, "\n" between them; blanks that don't break stay what they are.
std::string textOf(const QPlainTextEdit& field);

/// Opens a page of the application's `help`, named as "pagine/template.htm".
using HelpOpener = std::function<void(std::string_view page)>;

/// A dialog that returns its result in a text tag: "OK" or what its own header tells; empty when it was left by
/// Annulla, Escape or the close box.
class FormDialog : public QDialog {
 public:
  FormDialog(std::string_view title, QWidget* parent);

  const std::string& tag() const { return tag_; }
  /// Closes with a result.
  void finish(std::string tag);
  void reject() override;
  int exec() override;

 protected:
  /// A row of buttons: the default one, which the dialog connects (Ok of the row), and the one that leaves (Cancel).
  QDialogButtonBox* makeButtons(std::string_view accept = "OK", std::string_view leave = "Annulla");
  /// A row with one button that leaves.
  QDialogButtonBox* makeClose(std::string_view caption = "Chiudi");
  /// A "?" beside the buttons, and the key F1; nothing without `help`.
  void addHelp(QDialogButtonBox* buttons, HelpOpener help, std::string_view page);
  /// The size at opening, in letters and lines of the dialog's font.
  void sizeInLetters(int columns, int lines);

 private:
  std::string tag_;
};

/// A label whose "&" letter leads to the field; the field takes the label's words as its name for screen readers.
QLabel* labelFor(std::string_view text, QWidget* field);
/// A text of several lines that is only read.
QLabel* wrappedText(std::string_view text);
/// Names a control: for tests and style, and for screen readers where it has no label or caption of its own.
template <class Control>
Control* named(Control* control, std::string_view objectName, std::string_view accessibleName = {}) {
  control->setObjectName(toQt(objectName));
  if (!accessibleName.empty()) control->setAccessibleName(toQt(accessibleName));
  return control;
}

/// Gives the picture of a box a word for who can't see it, and takes the text, which is read out by itself, out of the
/// way of the Tab key.
void makeReadable(QMessageBox& box);

/// The busy pointer for as long as this stands.
class BusyPointer {
 public:
  BusyPointer();
  ~BusyPointer();
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;
};

/// The usual pointer for as long as this stands, for a box over work that goes on behind it.
class PlainPointer {
 public:
  PlainPointer();
  ~PlainPointer();
  PlainPointer(const PlainPointer&) = delete;
  PlainPointer& operator=(const PlainPointer&) = delete;

 private:
  bool busy_;
};

}  // namespace kv
