#pragma once
// The window of a publish run: how far it has come in files, bytes and time, beside the operation and the dialogue with
// the server.

#include "publish/run/frm_transfer.h"

class QProgressBar;

namespace kv {

/// What a run works with. References outlive the window.
struct PublishServices {
  Transfer& transfer;
  UserPort& user;
  Clock& clock;
};

/// exec() publishes once. The tag is "OK" when the shop is online, and empty when it failed or was cancelled.
class frmFTP final : public TransferWindow {
 public:
  frmFTP(PublishJob job, UploadOptions options, PublishServices services, QWidget* parent = nullptr);

  /// The steps of the run that belong to others, set before exec(). A step may open a window over this one.
  PublishSteps steps;
  /// How the run ended; Cancelled before it has run.
  PublishOutcome outcome() const { return outcome_; }
  /// What was sent; all 0 before the run.
  const PublishReport& report() const { return report_; }

 protected:
  std::string run() override;
  void refresh() override;

 private:
  PublishJob job_;
  UploadOptions options_;
  PublishServices services_;
  PublishReport report_;
  PublishOutcome outcome_ = PublishOutcome::Cancelled;
  // Controls, owned by the window.
  QLabel* lblAvanzamento_ = nullptr;
  QProgressBar* prgBarra_ = nullptr;
};

}  // namespace kv
