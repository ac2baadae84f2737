#include "platform/transfer/protocols/ftp_control.h"

#include <array>
#include <utility>

#include "platform/text/text.h"
#include "platform/text/utf8.h"
#include "platform/transfer/transfer.h"

namespace kv {
namespace {

constexpr std::string_view passwordCommand = "PASS ";
constexpr std::string_view hidden = "(hidden)";
constexpr int leave = 421;
constexpr std::size_t longestLine = std::size_t{64} * 1024;
constexpr int mostPreliminary = 100;
constexpr int linesBetweenPauses = 64;
constexpr std::size_t longestQuotation = 1000;  // characters
constexpr char telnetEscape = '\xff';

/// So much of a refusal as a message can show.
std::string quotation(const std::string& text) {
  const std::string_view start = firstCharacters(text, longestQuotation);
  return start.size() == text.size() ? text : std::string(start) + " ...";
}

bool isUtf8(std::string_view bytes) {
  for (std::size_t at = utf8::endOfAscii(bytes, 0); at < bytes.size();) {
    const utf8::Unit unit = utf8::unitAt(bytes, at);
    if (!unit.valid) return false;
    at += unit.length;
  }
  return true;
}

}  // namespace

std::string serverText(std::string_view bytes) { return isUtf8(bytes) ? std::string(bytes) : fromWindows1252(bytes); }

tl::unexpected<Error> replyFailure(const FtpReply& reply) {
  int code = transferOther + reply.code;
  // "Bad sequence of commands" is no failure of a data connection, whose code this would be.
  if (code == transferNoData) code = transferFileCommand;
  if (reply.code == 425 || reply.code == 426) code = transferNoData;
  return transferFailure(code, std::to_string(reply.code) + " " + quotation(serverText(reply.text)));
}

void FtpControl::open(Wire wire) {
  wire_ = std::move(wire);
  wire_.keepAlive();
  unread_.clear();
}

void FtpControl::close() {
  wire_.close();
  unread_.clear();
}

std::string FtpControl::withoutSecrets(std::string text) const {
  for (const std::string& secret : secrets) {
    if (!secret.empty()) text = replaceAll(text, secret, hidden);
  }
  return text;
}

void FtpControl::showLine(const std::string& text) const {
  if (!onLine) return;
  if (startsWithIgnoringCase(text, passwordCommand)) {
    onLine(std::string(passwordCommand) + std::string(hidden));
  } else {
    onLine(withoutSecrets(serverText(text)));
  }
}

Result<> FtpControl::send(const std::string& command, Patience& patience) {
  if (command.find_first_of(std::string_view("\r\n\0", 3)) != std::string::npos) {
    return transferFailure(transferOther, "un nome contiene un carattere non ammesso");
  }
  showLine(command);
  // Source: RFC 959, section 4.1.3: the control connection is a Telnet one, in which this byte is doubled.
  const std::string bytes = replaceAll(command, std::string(1, telnetEscape), std::string(2, telnetEscape));
  return wire_.write(bytes + "\r\n", patience);
}

Result<std::string> FtpControl::line(Patience& patience) {
  std::size_t searched = 0;
  for (;;) {
    const std::size_t end = unread_.find('\n', searched);
    if (end != std::string::npos) {
      std::string found = unread_.substr(0, end);
      unread_.erase(0, end + 1);
      if (found.ends_with('\r')) found.pop_back();
      return found;
    }
    searched = unread_.size();
    if (searched > longestLine) return transferFailure(transferNoConnection, "risposta del server troppo lunga");
    std::array<char, 4096> piece{};
    const auto count = wire_.read(piece.data(), piece.size(), patience);
    if (!count) return fail(count.error());
    if (*count == 0) return transferFailure(transferNoConnection, "il server ha chiuso la connessione");
    unread_.append(piece.data(), *count);
  }
}

Result<FtpReply> FtpControl::reply(Patience& patience) {
  FtpReplyParser parser;
  for (;;) {
    const auto text = line(patience);
    if (!text) return fail(text.error());
    // A server that never stops talking doesn't make anybody wait, so that no wait would let events be processed.
    if (++linesRead_ % linesBetweenPauses == 0) {
      linesRead_ = 0;
      if (auto paused = patience.pause(); !paused) return fail(paused.error());
    }
    showLine(*text);
    auto whole = parser.take(*text);
    if (!whole) {
      return transferFailure(transferNoConnection, "risposta del server non valida: " + serverText(whole.error().what));
    }
    if (!*whole) continue;
    FtpReply& reply = **whole;
    if (reply.code == leave) return replyFailure(reply);
    return std::move(reply);
  }
}

Result<FtpReply> FtpControl::finalReply(Patience& patience) {
  for (int seen = 0; seen < mostPreliminary; ++seen) {
    auto received = reply(patience);
    if (!received || !received->isPreliminary()) return received;
  }
  return transferFailure(transferNoConnection, "il server non arriva alla risposta");
}

Result<FtpReply> FtpControl::command(const std::string& command, Patience& patience) {
  if (auto sent = send(command, patience); !sent) return fail(sent.error());
  return finalReply(patience);
}

Result<FtpReply> FtpControl::require(const std::string& command, Patience& patience) {
  auto received = this->command(command, patience);
  if (received && received->isRefusal()) return replyFailure(*received);
  return received;
}

}  // namespace kv
