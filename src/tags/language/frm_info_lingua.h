#pragma once
// A note for the settings of the gateway of Banca Sella: what sending the language means.

#include "platform/qt/frm_dialog.h"

namespace kv {

/// A dialog with a text and a button that closes it; it has no result and stores nothing.
class frmInfoLingua final : public FormDialog {
 public:
  /// `parent`: the dialog of the gateway's settings.
  explicit frmInfoLingua(QWidget* parent = nullptr);
};

}  // namespace kv
