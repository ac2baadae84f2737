#pragma once
// The window of the payment systems: a button for each module, which opens its dialog.

#include <vector>

#include "commerce/gateways/frm_pg.h"

class QLabel;
class QPushButton;

namespace kv {

/// The tag is "OK" when the files of any module have been written.
class frmConfiguraPG final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmConfiguraPG(Session& session, Environment& env, GatewayHooks hooks, QWidget* parent = nullptr);

  /// Closing it keeps what the dialogs of the modules have written.
  void reject() override;

 private:
  void configure(std::size_t index);
  void showStates();  // on the buttons

  Session& session_;
  Environment& env_;
  GatewayHooks hooks_;
  QLabel* lblConferma_ = nullptr;      ///< which modules want an OK
  std::vector<QPushButton*> buttons_;  ///< cmdConfigura0 to cmdConfigura14; Qt owns them
  bool changed_ = false;
};

}  // namespace kv
