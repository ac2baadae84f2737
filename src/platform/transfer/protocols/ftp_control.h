#pragma once
// The control connection of FTP: a command out, a reply in, each line told to the listener without its secrets. For
// the sources of platform/transfer.

#include <functional>
#include <string>
#include <vector>

#include "platform/transfer/protocols/ftp_reply.h"
#include "platform/transfer/wire.h"

namespace kv {

/// The failure that a refusing reply is: 20000 + its code, the server's words as text, a thousand characters of them.
tl::unexpected<Error> replyFailure(const FtpReply& reply);
/// Bytes of a server as UTF-8: kept when they are that, else taken for Windows-1252.
std::string serverText(std::string_view bytes);

/// The connection of commands and replies.
class FtpControl {
 public:
  /// Told of each line; may be empty.
  std::function<void(const std::string& line)> onLine;
  /// Texts that no line may show.
  std::vector<std::string> secrets;

  /// Takes over a fresh connection.
  void open(Wire wire);
  /// Closes it without a word.
  void close();
  bool isOpen() const { return wire_.isOpen(); }
  Wire& wire() { return wire_; }
  /// Whether the server has said something that wasn't read: it may not come from before TLS.
  bool hasUnread() const { return !unread_.empty(); }

  /// Sends one command line. transferOther for one with a line end or a null character in it.
  Result<> send(const std::string& command, Patience& patience);
  /// Reads one whole reply, a preliminary one too. transferNoConnection when the server has closed or says something
  /// else than FTP; 20421 when it takes its leave.
  Result<FtpReply> reply(Patience& patience);
  /// Reads the reply that ends a command, preliminary ones passed over. transferNoConnection when it doesn't come after
  /// a hundred of them.
  Result<FtpReply> finalReply(Patience& patience);
  /// Sends a command and reads its final reply.
  Result<FtpReply> command(const std::string& command, Patience& patience);
  /// The same, a refusal being the failure of replyFailure.
  Result<FtpReply> require(const std::string& command, Patience& patience);
  /// A text without the secrets.
  std::string withoutSecrets(std::string text) const;

 private:
  /// The next line that the server sends, without its end.
  Result<std::string> line(Patience& patience);
  /// Gives a line to whoever listens to the dialogue.
  void showLine(const std::string& text) const;
  Wire wire_;
  std::string unread_;  // bytes after the line that was read last
  int linesRead_ = 0;
};

}  // namespace kv
