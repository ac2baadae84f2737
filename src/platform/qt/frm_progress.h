#pragma once
// How far a long work has come, in a small window with a bar and Annulla.

#include <QElapsedTimer>
#include <QPointer>
#include <optional>

#include "platform/ports/user_port.h"
#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_user.h"

class QProgressDialog;

namespace kv {

/// How the window of a work looks.
struct ProgressLook {
  std::string_view name = "frmAvanzamento";  ///< of the window
  std::string_view title;
  std::string_view bar = "Avanzamento";  ///< the name of the bar for screen readers
  int delay = 0;  ///< milliseconds of work before the window opens: a short one passes without it, and can't be
                  ///< cancelled
};

/// The user during a work: progress is shown in a window of its own, which can cancel; all else passes through.
class WatchedUser final : public UserPort {
 public:
  /// `user` and `parent` outlive it; the window opens over the modal dialog, or over `parent` where there is none.
  WatchedUser(UserPort& user, QWidget* parent, const ProgressLook& look) : user_(user), parent_(parent), look_(look) {}
  WatchedUser(const WatchedUser&) = delete;
  WatchedUser& operator=(const WatchedUser&) = delete;
  ~WatchedUser() override;

  void message(const std::string& text, Icon icon) override { user_.message(text, icon); }
  Answer question(const Question& question) override { return user_.question(question); }
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override {
    return user_.chooseFolder(prompt, initial);
  }
  /// Shows the window with the first caption, and takes it away with an empty one. The bar only moves to and fro while
  /// `maximum` is 0.
  void progress(const Progress& progress) override;
  /// Processes events when it is time. False once Annulla was chosen, until the next work begins.
  bool yield() override;

 private:
  void open();
  void end();
  /// Moves the bar of the open window; `isNew`: it was opened for this.
  void showBar(const Progress& progress, bool isNew);

  UserPort& user_;
  QWidget* parent_;
  ProgressLook look_;
  QPointer<QProgressDialog> window_;
  std::optional<UsualCursor> pointer_;  // over the window
  QElapsedTimer begun_;                 // not valid between two works
  EventPump pump_;
};

}  // namespace kv
