#pragma once
// The reminder to build before publishing.

#include "platform/qt/frm_dialog.h"
#include "shell/workbench/build_reminder.h"

class QCheckBox;

namespace kv {

/// The tag is "OK" when the user goes on with Sì. Whether it is to be shown at all: wantsReminder.
class frmAvviso final : public FormDialog {
 public:
  /// `settings` outlives the dialog.
  explicit frmAvviso(Settings& settings, QWidget* parent = nullptr);

 private:
  void answer(bool yes);

  Settings& settings_;
  QCheckBox* chkMai_ = nullptr;
};

}  // namespace kv
