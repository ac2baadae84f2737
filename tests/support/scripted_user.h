#pragma once
// A user who answers from a list and whose every sight is recorded: what was said, with icon, buttons and default.
// A question beyond the list is answered with its default; a folder choice beyond the list is a cancel. Never yields
// "cancelled" unless told to with cancelAtYield.

#include <deque>
#include <ostream>
#include <string>
#include <vector>

#include "platform/ports/user_port.h"

namespace kv::test {

/// One message or question as the user saw it. `given` is the answer to a question, Ok for a message.
struct Shown {
  std::string text;
  Icon icon = Icon::None;
  Buttons buttons = Buttons::Ok;
  Answer preset = Answer::Ok;
  Answer given = Answer::Ok;
  friend bool operator==(const Shown&, const Shown&) = default;
};

inline const char* nameOf(Icon icon) {
  constexpr const char* names[] = {"None", "Information", "Question", "Exclamation", "Critical"};
  return names[static_cast<int>(icon)];
}
inline const char* nameOf(Answer answer) {
  constexpr const char* names[] = {"Ok", "Cancel", "Yes", "No"};
  return names[static_cast<int>(answer)];
}
inline const char* nameOf(Buttons buttons) {
  constexpr const char* names[] = {"Ok", "OkCancel", "YesNo"};
  return names[static_cast<int>(buttons)];
}

/// One line: [icon, buttons, default -> answer given] and the text.
inline std::string asText(const Shown& shown) {
  return std::string("[") + nameOf(shown.icon) + ", " + nameOf(shown.buttons) + ", " + nameOf(shown.preset) + " -> " +
         nameOf(shown.given) + "] " + shown.text;
}
inline void PrintTo(const Shown& shown, std::ostream* out) { *out << asText(shown); }

/// A request for a folder and what was returned.
struct FolderAsked {
  std::string prompt;
  std::string initial;
  std::string given;
};

/// A step of a long run as it was shown; owns its caption.
struct ProgressShown {
  std::string caption;
  double position = 0;
  double maximum = 0;
};

class ScriptedUser final : public UserPort {
 public:
  std::deque<Answer> answers;       ///< to the next questions, in order
  std::deque<std::string> folders;  ///< to the next folder choices, in order; empty text = cancelled
  int cancelAtYield = 0;            ///< the yield (from 1) at which the run is cancelled; 0 never

  std::vector<Shown> shown;                  ///< messages and questions, in order
  std::vector<FolderAsked> foldersAsked;     ///< folder choices, in order
  std::vector<ProgressShown> progressShown;  ///< every progress call, in order
  int yields = 0;

  void message(const std::string& text, Icon icon) override { shown.push_back({text, icon}); }

  Answer question(const Question& question) override {
    Answer given = question.preset;
    if (!answers.empty()) {
      given = answers.front();
      answers.pop_front();
    }
    shown.push_back({question.text, question.icon, question.buttons, question.preset, given});
    return given;
  }

  std::string chooseFolder(const std::string& prompt, const std::string& initial) override {
    std::string given;
    if (!folders.empty()) {
      given = folders.front();
      folders.pop_front();
    }
    foldersAsked.push_back({prompt, initial, given});
    return given;
  }

  void progress(const Progress& progress) override {
    progressShown.push_back({std::string(progress.caption), progress.position, progress.maximum});
  }

  bool yield() override {
    ++yields;
    return cancelAtYield == 0 || yields < cancelAtYield;
  }

  /// The texts alone, in order.
  std::vector<std::string> texts() const {
    std::vector<std::string> result;
    for (const Shown& one : shown) result.push_back(one.text);
    return result;
  }
};

}  // namespace kv::test
