#pragma once
// The dialog of the way to the server: kind of connection, encryption, firewall.

#include <functional>
#include <string>

#include "platform/ports/user_port.h"
#include "platform/qt/frm_dialog.h"
#include "publish/settings/firewall_choice.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QRadioButton;

namespace kv {

/// The tag is "OK" when firewall.net has been written.
class frmFirewall final : public FormDialog {
 public:
  /// Tries the connection with the settings as shown, and tells what was found.
  using Verifier = std::function<void(const FirewallSettings& settings)>;

  /// `user` outlives the dialog. Without a verifier there is no button for it.
  frmFirewall(std::string shopFolder, UserPort& user, Verifier verify = {}, QWidget* parent = nullptr);

 private:
  QWidget* makeConnection();
  QWidget* makeFirewall();
  /// Shows settings.
  void show(const FirewallSettings& settings);
  /// What is shown.
  FirewallSettings shown() const;
  void enable();  // the fields of the firewall by its kind, those of FTP by the protocol
  void changePort();
  void changeProtocol();
  /// The protocol that is chosen.
  TransferProtocol protocol() const;
  void save();  // writes the file and closes, or shows the failure

  std::string shopFolder_;
  UserPort& user_;
  FirewallSettings settings_;
  // Controls under their names; Qt owns them.
  QRadioButton* optPassiva_ = nullptr;
  QRadioButton* optAttiva_ = nullptr;
  QComboBox* cboProtocollo_ = nullptr;
  QLineEdit* txtPortaFTP_ = nullptr;
  QComboBox* cboTLS_ = nullptr;
  QCheckBox* chkDisc_ = nullptr;
  QComboBox* cboTipo_ = nullptr;
  QLineEdit* txtHost_ = nullptr;
  QLineEdit* txtPorta_ = nullptr;
  QLineEdit* txtUser_ = nullptr;
  QLineEdit* txtPassword_ = nullptr;
};

}  // namespace kv
