#pragma once
// The choice of a dated copy of the catalogue to go back to.

#include <vector>

#include "platform/qt/frm_dialog.h"
#include "store/shop/backup_copies.h"

class QTableWidget;
class QPushButton;

namespace kv {

/// The tag is the name of the copy that the user chose and confirmed; RipristinaCopia restores it once the dialog
/// is closed, for the main window is loaded again on the way.
class frmBackup final : public FormDialog {
 public:
  /// `env` outlives the dialog.
  frmBackup(const std::string& shopFolder, Environment& env, QWidget* parent = nullptr);

 private:
  QWidget* makeList();
  /// Asks, and ends the dialog with the copy that is selected.
  void choose();

  Environment& env_;
  std::vector<BackupCopy> copies_;
  QTableWidget* lstCopie_ = nullptr;
  QPushButton* cmdRipristina_ = nullptr;
};

}  // namespace kv
