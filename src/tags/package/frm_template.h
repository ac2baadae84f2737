#pragma once
// The choice of the shop's template package, with its picture and its note.

#include <string>

#include "platform/qt/frm_dialog.h"
#include "tags/package/template_choice.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace kv {

/// The tag is the first 50 letters of the name chosen.
class frmTemplate final : public FormDialog {
 public:
  /// `help`: for the page of the templates; may be empty.
  frmTemplate(const std::string& applicationFolder, const std::string& current, HelpOpener help = {},
              QWidget* parent = nullptr);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  QWidget* makeList();
  QWidget* makeSample();
  void showChoice();
  void showPreview();
  void choose();

  TemplateChoice choice_;
  QLineEdit* txtTemplate_ = nullptr;
  QListWidget* lstTemplate_ = nullptr;
  QLabel* picPreview_ = nullptr;
  QPlainTextEdit* txtNote_ = nullptr;
  QPushButton* ok_ = nullptr;
};

}  // namespace kv
