#pragma once
// The program as a merchant has it on the screen, without a screen's own frame: the real windows over a shop, and
// pictures of all that is open.

#include <QSize>
#include <QString>
#include <functional>
#include <memory>
#include <string>

#include "platform/files/settings.h"
#include "platform/ports/clock.h"
#include "platform/qt/frm_user.h"
#include "shell/window/frm_main.h"

namespace kv::scenes {

struct StageOptions {
  std::string applicationFolder;
  std::string shop;
  QString pictures;  ///< the folder they are written into
  QSize size;        ///< of a picture, in points
};

class Stage {
 public:
  explicit Stage(const StageOptions& options);
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  /// False when the shop can't be opened.
  bool open();
  frmMain& window() { return *window_; }
  Session& session() { return session_; }
  QtUser& user() { return user_; }
  Settings& settings() { return settings_; }
  const Environment& environment() const { return env_; }
  QSize size() const { return options_.size; }
  int taken() const { return taken_; }
  bool failed() const { return failed_; }

  /// Runs a command by its name, and processes the events that follow.
  void choose(std::string_view name);
  /// Goes to a tab.
  void show(Tab tab);
  /// Writes the picture of the windows that are open now.
  void take(const QString& name);
  /// Starts what opens a dialog or a menu and calls `meanwhile` once it is shown; it is closed afterwards.
  void during(const std::function<void()>& opens, const std::function<void(QWidget&)>& meanwhile);
  /// Says why a picture is not as it should be; the run ends with an error.
  void fail(const QString& why);
  /// Gives the windows time to lay out and paint.
  static void processEvents();

 private:
  StageOptions options_;
  QtUser user_;
  MemorySettings settings_;
  Environment env_;
  Session session_;
  std::unique_ptr<frmMain> window_;
  int taken_ = 0;
  bool failed_ = false;
};

}  // namespace kv::scenes
