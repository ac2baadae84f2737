#pragma once
// The window of the transfer of one-time passwords: a shape moves while the host works, beside the operation and the
// dialogue with the server.

#include "publish/passwords/password_run.h"
#include "publish/run/frm_transfer.h"

namespace kv {

class BusyFrame;

/// What the transfer works with. References outlive the window.
struct PasswordServices {
  Transfer& transfer;
  HttpClient& http;
  UserPort& user;
};

/// exec() sends one script. The tag is "OK" when the passwords are loaded, and empty when that failed or was cancelled.
class frmFTPOTP final : public TransferWindow {
 public:
  /// script: its name in the online folder of the job.
  frmFTPOTP(PasswordJob job, std::string script, PasswordServices services, QWidget* parent = nullptr);

 protected:
  std::string run() override;

 private:
  void setBusy(bool busy);

  PasswordJob job_;
  std::string script_;
  PasswordServices services_;
  BusyFrame* picBusy_ = nullptr;  // owned by the window
};

}  // namespace kv
