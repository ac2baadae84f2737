#pragma once
// The window of a publish run: it starts the run once it is painted, shows how far it has come and the dialogue with
// the server, and takes the cancel. The run lives in the thread of the window, which processes events each time the
// run yields.

#include <memory>

#include "platform/qt/frm_dialog.h"
#include "publish/run/publish_run.h"

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

namespace kv {

/// What a run works with. References outlive the window.
struct PublishServices {
  Transfer& transfer;
  UserPort& user;
  Clock& clock;
};

/// exec() publishes once. The tag is "OK" when the shop is online, and empty when it failed or was cancelled.
class frmFTP final : public FormDialog {
 public:
  frmFTP(PublishJob job, UploadOptions options, PublishServices services, QWidget* parent = nullptr);
  ~frmFTP() override;

  /// The steps of the run that belong to others, set before exec(). A step may open a window over this one.
  PublishSteps steps;
  /// How the run ended; Cancelled before it has run.
  PublishOutcome outcome() const { return outcome_; }
  /// What was sent; all 0 before the run.
  const PublishReport& report() const { return report_; }

  /// cmdAnnulla, Escape and the close box: the run leaves at once.
  void reject() override;

 protected:
  /// Starts the run after the window's first paint.
  void showEvent(QShowEvent* event) override;

 private:
  class RunUser;
  class RunView;
  void build();
  void start();
  /// Brings the controls up to date with what the run has told.
  void refresh();
  /// Whether the run may go on, after the events that are due were processed.
  bool processEvents();

  PublishJob job_;
  UploadOptions options_;
  PublishServices services_;
  std::unique_ptr<RunUser> user_;
  std::unique_ptr<RunView> view_;
  PublishReport report_;
  PublishOutcome outcome_ = PublishOutcome::Cancelled;
  // Controls, owned by the window.
  QLabel* lblStato_ = nullptr;
  QLabel* lblAvanzamento_ = nullptr;
  QProgressBar* prgBarra_ = nullptr;
  QPlainTextEdit* txtLog_ = nullptr;
  QPushButton* cmdAnnulla_ = nullptr;
  bool started_ = false;
  bool running_ = false;
  bool cancelled_ = false;
};

}  // namespace kv
