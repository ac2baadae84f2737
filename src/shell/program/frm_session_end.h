#pragma once
// The end of the desktop session, a terminal that closes, Ctrl-C: the window closes as its own menu closes it, so that
// what has been typed is stored.

#include <QObject>
#include <QTimer>

namespace kv {

/// While it lives, the first SIGINT, SIGTERM or SIGHUP closes all windows and ends the event loop. A window that can't
/// close at once, because a build has to come to a safe point first, is asked again until it does. A second signal of
/// the same kind ends the process at once. One object at a time.
class SessionEnd final : public QObject {
 public:
  /// Installs the handlers of the three signals; one that was ignored when the program started stays ignored.
  explicit SessionEnd(QObject* parent = nullptr);
  /// Gives the signals their default effect again.
  ~SessionEnd() override;
  SessionEnd(const SessionEnd&) = delete;
  SessionEnd& operator=(const SessionEnd&) = delete;

 private:
  QTimer again_;  ///< asks a window again that could not close
};

}  // namespace kv
