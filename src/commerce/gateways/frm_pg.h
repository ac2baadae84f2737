#pragma once
// The dialog of one payment module, made of its row in the table of modules; frmPG_Sella and its kin by object name.

#include <functional>
#include <vector>

#include "commerce/gateways/gateway_account.h"
#include "platform/qt/frm_dialog.h"

class QCheckBox;
class QFormLayout;
class QLineEdit;
class QPushButton;

namespace kv {

/// What the dialogs of the payment modules ask of the window that they belong to.
struct GatewayHooks {
  std::string shopAddress;           ///< of the shop's folder on its site
  std::function<void()> passwords;   ///< opens the list of one-time passwords (cmdPwd); empty: its button is off
  HelpOpener help;                   ///< empty: no help
  std::function<void()> language{};  ///< tells of the visitor's language (cmdLingua); empty: its button is off
  std::function<void(FileEdits)> written{};  ///< told of the files that OK has changed, for undo; empty: nobody is told
};

/// The tag is "OK" when the module's files have been written.
class frmPG final : public FormDialog {
 public:
  /// `session`, `env` and `module` outlive the dialog.
  frmPG(Session& session, Environment& env, const GatewayModule& module, const GatewayHooks& hooks,
        QWidget* parent = nullptr);

 private:
  void addField(QFormLayout& form, const AccountKey& key);
  QLineEdit* addLine(QFormLayout& form, const AccountKey& key);
  void addLines(QFormLayout& form, const AccountKey& key);
  void addFlag(QFormLayout& form, const AccountKey& key);
  void addMoment(QFormLayout& form, const AccountKey& key);
  void addCurrency(QFormLayout& form, const AccountKey& key);
  void addTest(QFormLayout& form);
  void addSecretSwitch(QFormLayout& form);
  void addModes(QFormLayout& form, const GatewayHooks& hooks);
  QPushButton* addButton(QFormLayout& form, std::string_view caption, const char* name, std::function<void()> run);
  void showTest();       // what follows the test switch
  void showAddresses();  // of the security mode
  void showSecrets();
  void accepted();

  Session& session_;
  Environment& env_;
  GatewayAccount account_;
  std::string shopAddress_;
  std::function<void(FileEdits)> written_;
  // Controls; Qt owns them.
  std::vector<std::pair<std::string, QLineEdit*>> secrets_;  ///< by key
  std::vector<QLineEdit*> addresses_;                        ///< notice, success, failure
  QLineEdit* txtTest_ = nullptr;
  QCheckBox* chkTest_ = nullptr;
  QCheckBox* chkCod_ = nullptr;
};

}  // namespace kv
