#pragma once
// The one port through which the core asks, tells, shows progress and yields. Windows, the command line and tests
// each implement it; the core never prints and never opens a window.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

enum class Icon { None, Information, Question, Exclamation, Critical };
enum class Buttons { Ok, OkCancel, YesNo };
enum class Answer { Ok, Cancel, Yes, No };

struct Question {
  std::string text;
  Buttons buttons = Buttons::YesNo;
  Answer preset = Answer::No;  ///< the default button; No or Cancel wherever data could be destroyed
  Icon icon = Icon::Question;
};

/// Where a long run stands. `position` of `maximum` steps; the caption is shown above the bar.
struct Progress {
  std::string_view caption;
  double position = 0;
  double maximum = 0;
};

class UserPort {
 public:
  virtual ~UserPort() = default;
  /// A message box with OK; lines are parted by "\n".
  virtual void message(const std::string& text, Icon icon) = 0;
  virtual Answer question(const Question& question) = 0;
  /// The chosen folder, or an empty text when cancelled.
  virtual std::string chooseFolder(const std::string& prompt, const std::string& initial) = 0;
  virtual void progress(const Progress& progress) = 0;
  /// Lets the user's clicks through; false when the run has been cancelled.
  virtual bool yield() = 0;
};

}  // namespace kv
