#pragma once
// The dialog of the order form's required fields.

#include <array>

#include "commerce/settings/required_fields.h"
#include "platform/qt/frm_dialog.h"
#include "store/shop/session.h"

class QCheckBox;

namespace kv {

/// The tag is "OK" when the fields have been stored.
class frmObbligatori final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmObbligatori(Session& session, Environment& env, HelpOpener help, QWidget* parent = nullptr);

 private:
  void show(const RequiredFields& fields);
  void store();  // stores and closes, or tells the failure

  Session& session_;
  Environment& env_;
  std::array<QCheckBox*, requiredFields.size()> chkCampo_{};  // Qt owns them
};

}  // namespace kv
