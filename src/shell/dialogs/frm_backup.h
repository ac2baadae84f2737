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
/// Empty when the dialog was left or there is no copy. The dialog itself changes nothing in the shop.
class frmBackup final : public FormDialog {
 public:
  /// `env` outlives the dialog.
  /// `shopFolder`: that of the shop whose copies are listed, newest first; they are read once, here.
  frmBackup(const std::string& shopFolder, Environment& env, QWidget* parent = nullptr);

 private:
  /// The table of the copies: time of the copy, time the catalogue was saved, size. The first row is selected.
  QWidget* makeList();
  /// Asks, and ends the dialog with the copy that is selected.
  /// Nothing without a selected row, and the dialog stays open after No. A double click does the same.
  void choose();

  Environment& env_;                ///< asks whether to restore
  std::vector<BackupCopy> copies_;  ///< in the order of the rows
  QTableWidget* lstCopie_ = nullptr;
  QPushButton* cmdRipristina_ = nullptr;  ///< disabled while there is no copy
};

}  // namespace kv
