#pragma once
// The window of a run that talks with a server: it starts the run once it is painted, shows the operation and the
// dialogue, and takes the cancel. The run lives in the thread of the window, which processes events each time the run
// yields.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/qt/frm_dialog.h"
#include "publish/run/publish_run.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace kv {

/// What the windows of a publish run and of a transfer of passwords share.
class TransferWindow : public FormDialog {
 public:
  ~TransferWindow() override;

  /// cmdAnnulla, Escape and the close box: the run leaves at once.
  void reject() override;

 protected:
  /// user: asks and tells what the run has for it. It outlives the window.
  TransferWindow(std::string_view title, UserPort& user, QWidget* parent);

  /// Lays the controls out: the operation, `between` one below the other, the dialogue. The size is in characters.
  void build(const std::vector<QWidget*>& between, int columns, int rows);
  /// Starts the run after the window's first paint.
  void showEvent(QShowEvent* event) override;
  /// The run itself; what it returns is the tag of the window.
  virtual std::string run() = 0;
  /// Brings the controls up to date with what the run has told.
  virtual void refresh();
  /// Paints what the run has told, before a step that doesn't yield.
  void showNow();
  /// What the run asks.
  UserPort& runUser();
  /// What the run tells.
  PublishView& runView();
  /// How far the run has come.
  const PublishProgress& latest() const;

 private:
  class RunPorts;
  void start();
  /// Whether the run may go on, after the events that are due were processed.
  bool processEvents();

  std::unique_ptr<RunPorts> ports_;
  // Controls, owned by the window.
  QLabel* lblStato_ = nullptr;
  QPlainTextEdit* txtLog_ = nullptr;
  QPushButton* cmdAnnulla_ = nullptr;
  bool started_ = false;
  bool running_ = false;
  bool cancelled_ = false;
};

}  // namespace kv
