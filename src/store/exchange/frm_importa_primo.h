#pragma once
// The choice of a shop of the earlier product line to import, with what the import would do.

#include "platform/qt/frm_dialog.h"
#include "store/exchange/primo_import.h"

class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace kv {

/// The tag is the folder of the shop to import; empty when the dialog was left. importPrimoShop imports it once the
/// dialog is closed, for the main window is loaded again on the way. Nothing is written here.
class frmImportaPrimo final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmImportaPrimo(Session& session, Environment& env, QWidget* parent = nullptr);
  /// Hides the window while its fields still have something to be left for.
  ~frmImportaPrimo() override { hide(); }

 private:
  /// Asks for a folder; one without a catalogue is told and not taken.
  void browse();
  /// OK is enabled when the field isn't empty.
  void pathChanged();
  /// Shows what the import of this folder would do, or why there is none; nothing for the folder it shows already.
  void showPreview();

  Session& session_;
  Environment& env_;
  std::string previewed_;  // the folder that the preview is of
  QLineEdit* txtPercorso_ = nullptr;
  QPlainTextEdit* txtAnteprima_ = nullptr;
  QPushButton* cmdOk_ = nullptr;
};

}  // namespace kv
