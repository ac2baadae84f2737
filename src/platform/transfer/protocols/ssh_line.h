#pragma once
// An SSH connection with one SFTP channel in it: handshake, the server's key, login, and calls of the library that wait
// without blocking. For the sources of platform/transfer.
// Source: RFC 4253, RFC 4252, RFC 4256; draft-ietf-secsh-filexfer-02 (version 3 of SFTP).

#include <libssh2.h>
#include <libssh2_sftp.h>

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

#include "platform/transfer/connection_settings.h"
#include "platform/transfer/transfer.h"
#include "platform/transfer/wire.h"

namespace kv {

class HostKey;

/// What the library has allocated for one session. It loses a file's memory when the connection ends in the middle of
/// that file, so that what is left is freed with the session. It keeps each answer that nobody has asked for, so that
/// what it may have is limited. And this holds the answer to the server's questions.
struct SshMemory {
  SshMemory() = default;
  SshMemory(const SshMemory&) = delete;
  SshMemory& operator=(const SshMemory&) = delete;
  ~SshMemory() { release(); }
  void release();
  std::unordered_map<void*, std::size_t> live;  // with the bytes of each
  std::size_t bytes = 0;
  std::string password;
};

/// A connection by SSH with its channel for files, and the calls of the library that wait on it.
class SshLine {
 public:
  /// A call of the library: what it returns, LIBSSH2_ERROR_EAGAIN while it has to wait.
  using Call = std::function<ssize_t()>;

  SshLine() = default;
  SshLine(const SshLine&) = delete;
  SshLine& operator=(const SshLine&) = delete;
  ~SshLine() { close(); }

  /// Whom to ask about a key that isn't known; not set: it is refused.
  std::function<bool(const UntrustedServer&)> trust;

  /// Opens the connection and makes sure of the server's key. transferNoConnection; transferNotTrusted for a key that
  /// the user refuses, or that isn't the one remembered.
  Result<> open(const ConnectionSettings& settings, Patience& patience);
  /// Logs in with the password, as such or as the answer to the server's question, and opens the SFTP channel.
  /// transferOther + 530 when the server doesn't accept it.
  Result<> logIn(const ConnectionSettings& settings, Patience& patience);
  /// Whether there is a connection.
  bool isOpen() const { return session_ != nullptr; }
  /// The channel for files; null before logging in.
  LIBSSH2_SFTP* sftp() const { return sftp_; }

  /// Repeats a call until it needn't wait; its result when that isn't negative. A failure has the code of what went
  /// wrong: transferNoConnection, or for a refusal of the server that of statusFailure.
  Result<ssize_t> complete(const Call& call, Patience& patience);
  /// The same for calls that return a pointer, null while they wait or when they have failed.
  template <class Handle>
  Result<Handle*> obtain(const std::function<Handle*()>& call, Patience& patience);
  /// Says good-bye, as far as that needs no waiting.
  void leave();
  /// Breaks the connection off and frees what belongs to it.
  void close();

 private:
  /// Judges the key that the server shows.
  Result<> trustKey(const ConnectionSettings& settings);
  /// Prefers the kinds of keys that are known of this server, which may have further ones.
  Result<> preferKnownKeys(const ConnectionSettings& settings);
  /// Asks about a key that isn't known, and remembers it; one that has changed is refused.
  Result<> askAbout(const ConnectionSettings& settings, const HostKey& key);
  /// Opens the channel for files.
  Result<> openChannel(Patience& patience);
  /// Logs in by password, given as such or as the answer to a question.
  Result<> givePassword(const ConnectionSettings& settings, Patience& patience);
  /// The names of the ways to log in, comma-separated; empty when the server is content with the user's name.
  Result<std::string> offeredMethods(const std::string& user, Patience& patience);
  /// False when the server refuses the password; a failure for whatever else goes wrong.
  Result<bool> tryToLogIn(const Call& call, Patience& patience);
  /// The failure for a code of the library.
  tl::unexpected<Error> failure(ssize_t code) const;

  Wire wire_;
  SshMemory memory_;
  LIBSSH2_SESSION* session_ = nullptr;
  LIBSSH2_SFTP* sftp_ = nullptr;
};

/// The failure for a status of SFTP (LIBSSH2_FX_...): transferFolderMissing when something isn't there, else a code
/// from transferFileCommand on.
tl::unexpected<Error> statusFailure(unsigned long status);

template <class Handle>
Result<Handle*> SshLine::obtain(const std::function<Handle*()>& call, Patience& patience) {
  Handle* found = nullptr;
  const auto done = complete(
      [&]() -> ssize_t {
        found = call();
        return found != nullptr ? 0 : libssh2_session_last_errno(session_);
      },
      patience);
  if (!done) return fail(done.error());
  return found;
}

}  // namespace kv
