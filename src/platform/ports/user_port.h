#pragma once
// The one port through which the core asks questions, shows messages and progress, and yields. Windows, the command
// line and tests each implement it; the core never prints and never opens a window.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// The picture of a message box.
enum class Icon { None, Information, Question, Exclamation, Critical };
/// The set of buttons of a question.
enum class Buttons { Ok, OkCancel, YesNo };
/// The button with which the user answered.
enum class Answer { Ok, Cancel, Yes, No };

/// A question as the user sees it.
struct Question {
  std::string text;  ///< lines separated by "\n"
  Buttons buttons = Buttons::YesNo;
  Answer preset = Answer::No;  ///< the default button; No or Cancel wherever data could be destroyed
  Icon icon = Icon::Question;
};

/// How far a long run has come.
struct Progress {
  std::string_view caption;  ///< shown above the bar; empty hides the display
  double position = 0;       ///< steps done, of `maximum`
  double maximum = 0;
};

/// Whoever sits in front of the program, or a script in that role.
class UserPort {
 public:
  virtual ~UserPort() = default;
  /// Shows a message box with OK and waits until it is closed. Lines are separated by "\n".
  virtual void message(const std::string& text, Icon icon) = 0;
  /// Asks a question and waits for the answer, which is one of its buttons.
  virtual Answer question(const Question& question) = 0;
  /// Lets the user choose a folder, starting at `initial`. Its path, or an empty text when cancelled.
  virtual std::string chooseFolder(const std::string& prompt, const std::string& initial) = 0;
  /// Shows how far a run has come. Does not wait.
  virtual void progress(const Progress& progress) = 0;
  /// Processes the events that are pending, called often during a long run; false when the user has cancelled it.
  virtual bool yield() = 0;
};

}  // namespace kv
