#include "publish/passwords/frm_ftp_otp.h"

#include <utility>

#include "publish/update/frm_busy_frame.h"

namespace kv {
namespace {

constexpr std::string_view passwordTransferTitle = "Korvane - Trasferimento file";
constexpr int passwordColumns = 70;
constexpr int passwordRows = 18;

}  // namespace

frmFTPOTP::frmFTPOTP(PasswordJob job, std::string script, PasswordServices services, QWidget* parent)
    : TransferWindow(passwordTransferTitle, services.user, parent),
      job_(std::move(job)),
      script_(std::move(script)),
      services_(services) {
  picBusy_ = new BusyFrame();
  build({picBusy_}, passwordColumns, passwordRows);
}

std::string frmFTPOTP::run() {
  PasswordRun transfer(
      job_, {services_.transfer, services_.http, runUser(), runView(), [this](bool busy) { setBusy(busy); }});
  return transfer.send(script_) ? "OK" : "";
}

void frmFTPOTP::setBusy(bool busy) {
  refresh();
  picBusy_->setBusy(busy);
}

}  // namespace kv
