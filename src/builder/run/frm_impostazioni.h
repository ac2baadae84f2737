#pragma once
// The dialog of how the shop is built.

#include "builder/run/build_settings.h"
#include "platform/qt/frm_dialog.h"

class QCheckBox;
class QLineEdit;

namespace kv {

/// The tag is "OK" when the settings have been stored.
class frmImpostazioni final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmImpostazioni(Session& session, Environment& env, QWidget* parent = nullptr);

 private:
  void show(const BuildSettings& settings);
  void store();  // stores and closes, or tells the failure

  Session& session_;
  Environment& env_;
  // Controls; Qt owns them.
  QCheckBox* chkSelettiva_ = nullptr;
  QLineEdit* txtEstensione_ = nullptr;
  QCheckBox* chkLeggere_ = nullptr;
};

}  // namespace kv
