#pragma once
// The dialog in which a template package is chosen, with its picture and its note.

#include <string>

#include "platform/qt/frm_dialog.h"
#include "tags/package/template_choice.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace kv {

/// The tag is the first 50 characters of the chosen name.
class frmTemplate final : public FormDialog {
 public:
  /// `current`: the package that is selected at first. `help` opens the page about templates; it may be empty.
  frmTemplate(const std::string& applicationFolder, const std::string& current, HelpOpener help = {},
              QWidget* parent = nullptr);

 protected:
  // Both scale the picture to its room.
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  QWidget* makeList();    // the left side: edit field and list
  QWidget* makeSample();  // the right side: picture and note
  void showChoice();      // name, note and picture of the selected package
  void showPreview();     // the picture alone
  void choose();          // closes with the result

  TemplateChoice choice_;  // what the controls show
  // Controls under their given names; Qt owns them.
  QLineEdit* txtTemplate_ = nullptr;
  QListWidget* lstTemplate_ = nullptr;
  QLabel* picPreview_ = nullptr;
  QPlainTextEdit* txtNote_ = nullptr;
  QPushButton* ok_ = nullptr;
};

}  // namespace kv
