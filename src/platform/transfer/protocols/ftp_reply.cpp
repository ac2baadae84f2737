#include "platform/transfer/protocols/ftp_reply.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace kv {
namespace {

constexpr std::size_t quotedStart = 80;

tl::unexpected<Error> malformedReply(std::string_view line) {
  return fail(ErrorKind::Malformed, "ftp", std::string(line.substr(0, quotedStart)));
}

bool isDigit(char one) { return one >= '0' && one <= '9'; }

/// The code at the start of a line; 0 when there is none.
int codeOf(std::string_view line) {
  if (line.size() < 3 || line[0] < '1' || line[0] > '5' || !isDigit(line[1]) || !isDigit(line[2])) return 0;
  return (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
}

/// What divides the code of a line from its text: a hyphen when more lines follow.
char dividerOf(std::string_view line) { return line.size() > 3 ? line[3] : ' '; }
bool isDivider(char one) { return one == ' ' || one == '-'; }
std::string_view afterCode(std::string_view line) { return line.substr(std::min<std::size_t>(line.size(), 4)); }

/// The number at the start of `text`, which it is cut off from; nothing when there is none up to `most`.
std::optional<unsigned> takeNumber(std::string_view& text, unsigned most) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || number > most) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

/// Six numbers with commas between at the start of a text.
std::optional<std::array<unsigned, 6>> sixNumbers(std::string_view text) {
  std::array<unsigned, 6> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0) {
      if (text.empty() || text.front() != ',') return std::nullopt;
      text.remove_prefix(1);
    }
    const auto number = takeNumber(text, 255);
    if (!number) return std::nullopt;
    numbers.at(i) = *number;
  }
  return numbers;
}

}  // namespace

Result<std::optional<FtpReply>> FtpReplyParser::take(std::string_view line) {
  const int code = codeOf(line);
  const char next = dividerOf(line);
  if (open_.code == 0) {
    if (code == 0 || !isDivider(next)) return malformedReply(line);
    FtpReply reply{code, std::string(afterCode(line))};
    if (next == ' ') return std::optional<FtpReply>(std::move(reply));
    open_ = std::move(reply);
    return std::optional<FtpReply>();
  }
  if (open_.text.size() + line.size() > longest) return malformedReply(line);
  open_.text += '\n';
  if (code != open_.code || next != ' ') {
    // Lines in the middle may repeat the code with a hyphen, or have none.
    open_.text += code == open_.code && next == '-' ? afterCode(line) : line;
    return std::optional<FtpReply>();
  }
  open_.text += afterCode(line);
  return std::optional<FtpReply>(std::exchange(open_, {}));
}

Result<std::uint16_t> passivePort(std::string_view text) {
  // Some servers leave the parentheses out, so the first six numbers count wherever they are.
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!isDigit(text[at]) || (at > 0 && isDigit(text[at - 1]))) continue;
    const auto numbers = sixNumbers(text.substr(at));
    if (!numbers) continue;
    const unsigned port = (*numbers)[4] * 256 + (*numbers)[5];
    if (port == 0) break;
    return static_cast<std::uint16_t>(port);
  }
  return malformedReply(text);
}

Result<std::uint16_t> extendedPassivePort(std::string_view text) {
  const std::size_t open = text.find('(');
  if (open == std::string_view::npos || text.size() - open < 6) return malformedReply(text);
  const char mark = text[open + 1];
  if (isDigit(mark) || text[open + 2] != mark || text[open + 3] != mark) return malformedReply(text);
  text.remove_prefix(open + 4);
  const auto port = takeNumber(text, 65535);
  if (!port || *port == 0 || text.empty() || text.front() != mark) return malformedReply(text);
  return static_cast<std::uint16_t>(*port);
}

Result<std::string> quotedFolder(std::string_view text) {
  std::size_t at = text.find('"');
  if (at == std::string_view::npos) return malformedReply(text);
  std::string folder;
  for (++at; at < text.size(); ++at) {
    if (text[at] != '"') {
      folder += text[at];
    } else if (at + 1 < text.size() && text[at + 1] == '"') {
      folder += text[at++];
    } else {
      return folder;
    }
  }
  return malformedReply(text);
}

}  // namespace kv
