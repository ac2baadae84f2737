#pragma once
// The user port of the windows: message boxes, the folder choice, progress, and processing of events during a long
// run.

#include <QElapsedTimer>
#include <functional>
#include <memory>
#include <string>

#include "platform/ports/user_port.h"

class QWidget;

namespace kv {

/// Processes pending events at intervals. A run asks isDue() at every step and calls processEvents() when it is true.
class EventPump {
 public:
  /// The least time between two calls of processEvents().
  static constexpr int milliseconds = 25;
  EventPump() { since_.start(); }
  /// Whether `milliseconds` have passed since the last processEvents().
  bool isDue() const { return since_.elapsed() >= milliseconds; }
  /// Processes pending events. Without `input`, keys and clicks stay in the queue: nothing could react to them.
  void processEvents(bool input);

 private:
  QElapsedTimer since_;
};

/// The user in front of the windows.
class QtUser final : public UserPort {
 public:
  /// What shows the progress of a run.
  using ProgressTarget = std::function<void(const Progress&)>;

  QtUser();
  ~QtUser() override;
  QtUser(const QtUser&) = delete;
  QtUser& operator=(const QtUser&) = delete;

  /// Sets the window over which boxes open while no other is active; null before that window is destroyed.
  void setMainWindow(QWidget* home) { home_ = home; }

  /// A message box with OK.
  void message(const std::string& text, Icon icon) override;
  /// A message box with the buttons of the question; Escape and the close button count as the last of them.
  Answer question(const Question& question) override;
  /// The folder dialog of Qt, with captions in Italian.
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override;
  /// Passes the progress to the target of the run. Outside a run: shows a small window with the caption, until an
  /// empty caption comes.
  void progress(const Progress& progress) override;
  /// Processes events when it is time. False after cancelRun. Outside a run nothing can be cancelled, and keys and
  /// clicks stay in the queue.
  bool yield() override;

  /// Starts a run: until endRun, progress goes to `target` and the run can be cancelled.
  void beginRun(ProgressTarget target);
  /// Makes the next yield() return false; called by the handler of a button.
  void cancelRun() { cancelled_ = true; }
  /// Ends the run.
  void endRun();

 private:
  QWidget* over() const;  // the parent for a box
  // The small window outside a run.
  void showStatus(const Progress& progress);

  QWidget* home_ = nullptr;
  ProgressTarget target_;
  bool running_ = false;
  bool cancelled_ = false;
  EventPump pump_;
  std::unique_ptr<QWidget> status_;
};

}  // namespace kv
