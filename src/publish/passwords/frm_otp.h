#pragma once
// The dialog of the one-time passwords of a payment system: both lists are chosen, and loaded into the shop's online
// database.

#include <functional>
#include <optional>
#include <vector>

#include "platform/ports/clock.h"
#include "publish/passwords/frm_ftp_otp.h"
#include "publish/passwords/password_lists.h"

class QLineEdit;
class QRadioButton;

namespace kv {

/// The tag is "OK" when passwords have been loaded; the dialog stays open after a failure.
class frmOTP final : public FormDialog {
 public:
  /// Lets the user choose any number of files, starting in no folder in particular; empty when that was left.
  using FileChooser = std::function<std::vector<std::string>()>;

  /// `random` outlives the dialog.
  frmOTP(PasswordJob job, PasswordServices services, RandomSource& random, QWidget* parent = nullptr);

  FileChooser chooseFiles;  ///< the file dialog of Qt, unless it is set to another

 private:
  void build();
  void cmdCerca();
  void cmdAggiorna();
  bool sendInWindow(const std::string& script);

  PasswordJob job_;
  PasswordServices services_;
  RandomSource& random_;
  PasswordFiles files_;
  // Controls; Qt owns them.
  QLineEdit* txtRic_ = nullptr;
  QLineEdit* txtRis_ = nullptr;
  QRadioButton* optSostituisci_ = nullptr;
  QPushButton* cmdAggiorna_ = nullptr;
};

}  // namespace kv
