#pragma once
// The user port of the command line: messages go to one stream, questions are answered from the
// arguments, progress is a bar on a terminal and an occasional line anywhere else. It never reads the keyboard.

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/ports/clock.h"
#include "platform/ports/user_port.h"

namespace kv {

/// What the program knows of the terminal, and what the arguments answer.
struct ConsoleOptions {
  bool terminal = false;              ///< whether the stream is a terminal: a bar drawn again over itself
  int width = 80;                     ///< columns of the terminal
  std::vector<Answer> answers{};      ///< see CommandLine::answers
  std::string folder{};               ///< what the first chooseFolder returns; each later one is a cancel
  std::function<bool()> cancelled{};  ///< asked at each yield; none means never
};

class ConsoleUser final : public UserPort {
 public:
  /// `out` (in practice standard error) and `clock` outlive this object.
  ConsoleUser(std::ostream& out, Clock& clock, ConsoleOptions options);
  ~ConsoleUser() override;
  ConsoleUser(const ConsoleUser&) = delete;
  ConsoleUser& operator=(const ConsoleUser&) = delete;

  /// Prints the text, whatever the icon; "?" for each control character but line ends and tabs.
  void message(const std::string& text, Icon icon) override;
  /// Prints the question and the answer it got. Yes and Ok are the same consent, No and Cancel the same refusal,
  /// whichever pair the question offers.
  Answer question(const Question& question) override;
  /// Prints the prompt; the answer is the folder of the options, once.
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override;
  /// Terminal: redraws the bar at most ten times a second. Elsewhere: one line for each new tenth of the way and for
  /// each new language, which is the caption's part before the colon. A maximum of 1 or less counts as unknown.
  void progress(const Progress& progress) override;
  /// False once the options say that the run was cancelled.
  bool yield() override;

 private:
  void drawBar(const Progress& progress);
  void writeLine(const Progress& progress);
  void clearBar();
  Answer nextAnswer(const Question& question);

  std::ostream& out_;
  Clock& clock_;
  ConsoleOptions options_;
  std::size_t asked_ = 0;  ///< how many answers have been used
  bool barShown_ = false;  ///< the last thing on the terminal is the bar
  double drawnAt_ = 0;     ///< seconds of the clock
  int tenths_ = -1;        ///< of the way, as last printed
  std::string stage_;      ///< part of the caption before its colon, as last printed
};

/// A progress bar of `width` columns without a line end: "[####    ]  50 % caption", the caption cut to what fits
/// without splitting a character.
std::string progressBar(const Progress& progress, int width);

}  // namespace kv
