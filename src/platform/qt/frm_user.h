#pragma once
// The user port of the windows: message boxes, the folder choice, progress, and letting the user's clicks through
// while a long run is on.

#include <QElapsedTimer>
#include <functional>
#include <memory>
#include <string>

#include "platform/ports/user_port.h"

class QWidget;

namespace kv {

/// Lets the events through that have gathered. Asked at every step of a run, it does so once in `milliseconds`.
class EventPump {
 public:
  static constexpr int milliseconds = 25;
  EventPump() { since_.start(); }
  bool isDue() const { return since_.elapsed() >= milliseconds; }
  /// Without `input` keys and clicks wait: nobody listens for a cancel.
  void pump(bool input);

 private:
  QElapsedTimer since_;
};

class QtUser final : public UserPort {
 public:
  using ProgressTarget = std::function<void(const Progress&)>;

  QtUser();
  ~QtUser() override;
  QtUser(const QtUser&) = delete;
  QtUser& operator=(const QtUser&) = delete;

  /// The window over which boxes open while no other is active; it takes this back (null) before it goes.
  void setHome(QWidget* home) { home_ = home; }

  /// A message box with OK.
  void message(const std::string& text, Icon icon) override;
  /// The preset button is the default one; Escape and the close box refuse.
  Answer question(const Question& question) override;
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override;
  /// To the target of the run. Outside a run: a small window with the caption, until an empty caption comes.
  void progress(const Progress& progress) override;
  /// False after cancelRun. Outside a run nothing can be cancelled, and keys and clicks wait.
  bool yield() override;

  /// Between these two progress goes to `target` and a cancel counts.
  void beginRun(ProgressTarget target);
  void cancelRun() { cancelled_ = true; }
  void endRun();

 private:
  QWidget* over() const;
  void showStatus(const Progress& progress);

  QWidget* home_ = nullptr;
  ProgressTarget target_;
  bool running_ = false;
  bool cancelled_ = false;
  EventPump pump_;
  std::unique_ptr<QWidget> status_;
};

}  // namespace kv
