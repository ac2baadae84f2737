#pragma once
// The reminder to build before publishing.

#include "platform/qt/frm_dialog.h"
#include "shell/workbench/build_reminder.h"

class QCheckBox;

namespace kv {

/// The tag is "OK" when the user goes on with Sì. Whether it is to be shown at all: wantsReminder.
/// No and the close box leave an empty tag, so nothing is published. Only the two buttons store the check box: whoever
/// closes the dialog otherwise is asked again next time.
class frmAvviso final : public FormDialog {
 public:
  /// `settings` outlives the dialog.
  explicit frmAvviso(Settings& settings, QWidget* parent = nullptr);

 private:
  /// Stores the check box and ends the dialog. A setting that can't be stored only brings the reminder once more.
  void answer(bool yes);

  Settings& settings_;           ///< takes `NoShow`
  QCheckBox* chkMai_ = nullptr;  ///< "not again"; off at the start
};

}  // namespace kv
