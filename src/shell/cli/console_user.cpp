#include "shell/cli/console_user.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "platform/text/text.h"

namespace kv {
namespace {

constexpr double redrawSeconds = 0.1;
constexpr int barColumns = 30;

/// 0 to 100; -1 while the total is unknown.
int percentOf(const Progress& progress) {
  if (progress.maximum <= 1) return -1;
  const double part = std::clamp(progress.position / progress.maximum, 0.0, 1.0);
  return static_cast<int>(std::floor(part * 100));
}

bool isConsent(Answer answer) { return answer == Answer::Yes || answer == Answer::Ok; }

/// The first `columns` characters of a UTF-8 text, one column each.
std::string_view cut(std::string_view text, int columns) {
  std::size_t end = 0;
  for (; end < text.size(); ++end) {
    const bool starts = (static_cast<unsigned char>(text[end]) & 0xC0U) != 0x80U;
    if (starts && columns-- <= 0) break;
  }
  return text.substr(0, end);
}

/// The text without what a terminal takes for a command: texts of servers and of files reach it, too.
std::string printable(std::string_view text) {
  constexpr unsigned char firstCharacter = ' ', deletion = 0x7f;
  std::string shown;
  for (const char byte : replaceAll(text, "\r\n", "\n")) {
    const auto code = static_cast<unsigned char>(byte);
    const bool isKept = byte == '\n' || byte == '\t' || (code >= firstCharacter && code != deletion);
    shown += isKept ? byte : '?';
  }
  return shown;
}

std::string_view nameOf(Answer answer) {
  switch (answer) {
    case Answer::Ok:
      return "OK";
    case Answer::Cancel:
      return "Annulla";
    case Answer::Yes:
      return "Sì";
    case Answer::No:
      return "No";
  }
  return "";
}

}  // namespace

std::string progressBar(const Progress& progress, int width) {
  const int percent = std::max(percentOf(progress), 0);
  const auto filled = static_cast<std::size_t>(percent * barColumns / 100);
  const auto number = std::to_string(percent);
  std::string line = "[" + std::string(filled, '#') + std::string(barColumns - filled, ' ') + "] ";
  line += std::string(3 - std::min<std::size_t>(number.size(), 3), ' ') + number + " % ";
  const int left = width - static_cast<int>(line.size());
  if (left > 0) line += cut(progress.caption, left);
  return line;
}

ConsoleUser::ConsoleUser(std::ostream& out, Clock& clock, ConsoleOptions options)
    : out_(out), clock_(clock), options_(std::move(options)) {}

ConsoleUser::~ConsoleUser() { clearBar(); }

void ConsoleUser::message(const std::string& text, Icon) {
  clearBar();
  out_ << printable(text) << '\n' << std::flush;
}

Answer ConsoleUser::question(const Question& question) {
  clearBar();
  const Answer answer = nextAnswer(question);
  out_ << printable(question.text) << "\n> " << nameOf(answer) << '\n' << std::flush;
  return answer;
}

Answer ConsoleUser::nextAnswer(const Question& question) {
  if (options_.answers.empty()) return question.preset;
  const Answer wanted = options_.answers[std::min(asked_++, options_.answers.size() - 1)];
  switch (question.buttons) {
    case Buttons::Ok:
      return Answer::Ok;
    case Buttons::OkCancel:
      return isConsent(wanted) ? Answer::Ok : Answer::Cancel;
    case Buttons::YesNo:
      return isConsent(wanted) ? Answer::Yes : Answer::No;
  }
  return question.preset;
}

std::string ConsoleUser::chooseFolder(const std::string&, const std::string&) {
  return std::exchange(options_.folder, std::string());
}

void ConsoleUser::progress(const Progress& progress) {
  if (options_.terminal) {
    drawBar(progress);
  } else {
    writeLine(progress);
  }
}

bool ConsoleUser::yield() { return !options_.cancelled || !options_.cancelled(); }

void ConsoleUser::drawBar(const Progress& progress) {
  const double now = clock_.now();
  const bool finished = progress.maximum > 1 && progress.position >= progress.maximum;
  if (barShown_ && !finished && now >= drawnAt_ && now - drawnAt_ < redrawSeconds) return;
  drawnAt_ = now;
  barShown_ = true;
  // One column stays free: a full line would wrap on some terminals.
  out_ << '\r' << progressBar(progress, options_.width - 1) << "\x1b[K" << std::flush;
}

void ConsoleUser::clearBar() {
  if (!barShown_) return;
  barShown_ = false;
  out_ << "\r\x1b[K" << std::flush;
}

void ConsoleUser::writeLine(const Progress& progress) {
  const int percent = percentOf(progress);
  const auto stage = progress.caption.substr(0, progress.caption.find(':'));
  const int tenths = percent < 0 ? -1 : percent / 10;
  if (progress.caption.empty() || (stage == stage_ && tenths <= tenths_)) return;
  stage_ = stage;
  tenths_ = tenths;
  if (percent >= 0) out_ << percent << " % ";
  out_ << progress.caption << '\n' << std::flush;
}

}  // namespace kv
