#pragma once
// A note for the settings of the gateway of Banca Sella: what sending the language means.

#include "platform/qt/frm_dialog.h"

namespace kv {

class frmInfoLingua final : public FormDialog {
 public:
  explicit frmInfoLingua(QWidget* parent = nullptr);
};

}  // namespace kv
