#pragma once
// The window of the transfer of one-time passwords: it starts once it is painted, shows the dialogue with the server
// and a shape that moves while the host works, and takes the cancel.

#include <memory>

#include "platform/qt/frm_dialog.h"
#include "publish/passwords/password_run.h"

class QFrame;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTimer;

namespace kv {

/// What the transfer works with. References outlive the window.
struct PasswordServices {
  Transfer& transfer;
  HttpClient& http;
  UserPort& user;
  HelpOpener help = {};  ///< opens a page of the help; empty: there is none
};

/// exec() sends one script. The tag is "OK" when the passwords are loaded, and empty when that failed or was cancelled.
class frmFTPOTP final : public FormDialog {
 public:
  /// script: its name in the online folder of the job.
  frmFTPOTP(PasswordJob job, std::string script, PasswordServices services, QWidget* parent = nullptr);
  ~frmFTPOTP() override;

  /// cmdAnnulla, Escape and the close box: the run leaves at once.
  void reject() override;

 protected:
  /// Starts the run after the window's first paint.
  void showEvent(QShowEvent* event) override;

 private:
  class RunPorts;
  void build();
  void start();
  void setBusy(bool busy);
  /// Brings the controls up to date with what the run has told.
  void refresh();
  /// Whether the run may go on, after the events that are due were processed.
  bool processEvents();

  PasswordJob job_;
  std::string script_;
  PasswordServices services_;
  std::unique_ptr<RunPorts> ports_;
  // Controls, owned by the window.
  QLabel* lblStato_ = nullptr;
  QFrame* picBusy_ = nullptr;
  QFrame* shpBusy_ = nullptr;
  QTimer* tmrBusy_ = nullptr;
  QPlainTextEdit* txtLog_ = nullptr;
  QPushButton* cmdAnnulla_ = nullptr;
  bool started_ = false;
  bool running_ = false;
  bool cancelled_ = false;
};

}  // namespace kv
