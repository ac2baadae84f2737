#pragma once
// The window of a site build: it starts the build once it is painted, shows how far it has come, and takes the cancel.
// The build runs in the thread of the window, which processes events each time the build yields.

#include <functional>
#include <memory>

#include "builder/run/make_pages.h"
#include "platform/qt/frm_dialog.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace kv {

/// Ways to look at what was built, offered with the closing message; one that is not set has no button.
struct BuildViews {
  std::function<void()> openShop;    ///< "Apri il sito online": as it is published, before it is brought up to date
  std::function<void()> openFolder;  ///< "Apri la cartella": what was built, on this machine
};

/// exec() runs one build. The tag is "OK" when the build was done, and empty when it failed or was cancelled.
class frmElabora final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog. Messages of the build go to `env.user`; its closing message is a box of
  /// this window when `views` offer something to look at.
  frmElabora(Session& session, Environment& env, BuildViews views = {}, QWidget* parent = nullptr);
  ~frmElabora() override;

  /// How the build ended; Cancelled before it has run.
  BuildOutcome outcome() const { return outcome_; }
  /// What the build has done; all 0 before it has run.
  const BuildCounts& counts() const { return counts_; }

  /// Annulla, Escape and the close box: the build leaves at its next step.
  void reject() override;

 protected:
  /// Starts the build after the window's first paint.
  void showEvent(QShowEvent* event) override;

 private:
  class BuildUser;
  void start();
  void showProgress();
  /// Whether the build may go on, after the events that are due were processed.
  bool processEvents();
  void showFinished(const std::string& text);

  Session& session_;
  Environment& env_;
  BuildViews views_;
  BuildCounts counts_;
  BuildOutcome outcome_ = BuildOutcome::Cancelled;
  std::unique_ptr<BuildUser> user_;  // the user that the build sees
  // Controls, owned by the window.
  QLabel* lblStato_ = nullptr;
  QLabel* lblAvvisi_ = nullptr;  // what the shop doctor has found; hidden while there is nothing
  QProgressBar* prgBarra_ = nullptr;
  QPushButton* cmdAnnulla_ = nullptr;
  bool started_ = false;  // once, at the first paint
  bool running_ = false;
  bool cancelled_ = false;  // asked for; the build leaves at its next yield
};

}  // namespace kv
