#pragma once
// The dialog of the compact privacy policy.

#include <functional>
#include <string>

#include "commerce/settings/privacy_policy.h"
#include "platform/qt/frm_dialog.h"
#include "store/shop/session.h"

class QLineEdit;

namespace kv {

/// The tag is "OK" when the policy has been stored.
class frmP3P final : public FormDialog {
 public:
  /// Opens an address in the browser.
  using AddressOpener = std::function<void(const std::string& address)>;
  /// `session` and `env` outlive the dialog. An empty `help`: no help.
  frmP3P(Session& session, Environment& env, AddressOpener open, HelpOpener help = {}, QWidget* parent = nullptr);

 private:
  void store();  // stores and closes, or tells the failure

  Session& session_;
  Environment& env_;
  QLineEdit* txtP3P_ = nullptr;  // Qt owns it
};

}  // namespace kv
