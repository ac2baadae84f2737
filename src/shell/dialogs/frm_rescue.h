#pragma once
// The choice when no shop is open: restore a copy, open another shop, make a new one, or leave.

#include "platform/qt/frm_dialog.h"
#include "shell/dialogs/shop_rescue.h"

namespace kv {

/// Four buttons one below the other; Escape and the close box leave the program.
class frmRescue final : public FormDialog {
 public:
  /// `shopFolder`: of the shop that could not be opened. `hasCopies`: whether there are dated copies of it; without any
  /// the first button is disabled.
  frmRescue(const std::string& shopFolder, bool hasCopies, QWidget* parent = nullptr);

  /// What was chosen by the last exec().
  Rescue choice() const;
};

}  // namespace kv
