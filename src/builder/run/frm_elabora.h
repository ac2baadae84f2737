#pragma once
// The window of a site build: it starts the build once it is painted, shows where it stands, and takes the cancel.

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
  std::function<void()> openFolder;  ///< "Apri la cartella"
};

/// exec() runs one build. The tag is "OK" when it came to its end.
class frmElabora final : public FormDialog {
 public:
  /// `session` and `with` outlive the dialog. Messages of the build go to `with.user`.
  frmElabora(Session& session, Environment& env, BuildViews views = {}, QWidget* parent = nullptr);
  ~frmElabora() override;

  BuildOutcome outcome() const { return outcome_; }
  const BuildCounts& counts() const { return counts_; }

  /// Annulla, Escape and the close box: the build leaves at its next step.
  void reject() override;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  class BuildUser;
  void start();
  void showProgress();
  bool letThrough();
  void tellFinished(const std::string& text);

  Session& session_;
  Environment& env_;
  BuildViews views_;
  BuildCounts counts_;
  BuildOutcome outcome_ = BuildOutcome::Cancelled;
  std::unique_ptr<BuildUser> user_;
  QLabel* lblStato_ = nullptr;
  QProgressBar* prgBarra_ = nullptr;
  QPushButton* cmdAnnulla_ = nullptr;
  bool started_ = false;
  bool running_ = false;
  bool cancelled_ = false;
};

}  // namespace kv
