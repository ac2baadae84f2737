#pragma once
// The port to a server of files: one connection, one command at a time. There is no thread: a command waits in short
// steps and lets the caller process events between them, so that a cancel is answered at once even while the server
// says nothing. A password reaches neither a protocol line nor a failure's text.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/transfer/connection_settings.h"

namespace kv {

// The codes of a completed command. 0 is success; the numbers of the failures are those that callers tell apart.
constexpr int transferDone = 0;
/// The folder isn't there, or the file isn't; for makeFolder: there is one of this name already.
constexpr int transferFolderMissing = 20550;
/// No data connection came about, or it broke.
constexpr int transferNoData = 20503;
/// The server refuses a command about a file for good: a code from here to transferFileCommandLast.
constexpr int transferFileCommand = 20500;
constexpr int transferFileCommandLast = 20599;
// Other failures: of the way to the server and of the session.
constexpr int transferOther = 20000;         ///< any other; a refusal of the server is 20000 + its reply's code
constexpr int transferNoConnection = 20001;  ///< no connection came about, or it broke
constexpr int transferSilence = 20002;       ///< the server said nothing for too long
constexpr int transferNotTrusted = 20003;    ///< the certificate or the host key was refused, or TLS isn't offered
constexpr int transferCancelled = 20004;     ///< the caller's yield said so
constexpr int transferLocalFile = 20005;     ///< the file on this machine can't be read

/// The completed event of a command.
struct TransferCompletion {
  int code = transferDone;
  /// Success of currentFolder: the folder. Else what the server said, or what happened, in Italian. UTF-8.
  std::string text;
  /// Success of list: the lines of the listing as they came, without CR and LF.
  std::vector<std::string> lines;

  bool succeeded() const { return code <= transferDone; }
};

/// Whether a code is a refusal of a command about a file, a missing folder included.
constexpr bool isFileCommandFailure(int code) { return code >= transferFileCommand && code <= transferFileCommandLast; }

/// A certificate that did not pass, or the unknown key of a server.
struct UntrustedServer {
  std::string host;         ///< as the settings name it
  std::string subject;      ///< for whom the certificate was made; empty for a key
  std::string reason;       ///< why it did not pass, in the library's English; for a key its type, "ssh-ed25519"
  std::string fingerprint;  ///< SHA-256, pairs of hexadecimal digits with ":" between; for a key as ssh-keygen shows it
  bool isKey = false;       ///< the key of an SSH server that isn't known
};

/// What a connection tells and asks during its commands. A function that isn't set is not called.
struct TransferEvents {
  /// Each line of the dialogue as it goes out or comes in, without its end; passwords replaced by "(hidden)".
  std::function<void(const std::string& line)> line;
  /// Processes events; false cancels the command, which then completes with transferCancelled and closes the
  /// connection. Called at least every 50 ms.
  std::function<bool()> yield;
  /// Bytes of the file in hand that have been sent so far.
  std::function<void(std::uint64_t bytes)> sent;
  /// Whether to go on with a server that isn't trusted. Asked once for one fingerprint; not set: no.
  std::function<bool(const UntrustedServer& server)> trust;
};

/// Whether line ends are converted: Ascii sends a lone LF as CR LF over FTP, whose servers store their own line ends;
/// SFTP stores what is sent, so that CR LF goes as LF. Binary sends the bytes.
enum class TransferMode { Binary, Ascii };

/// A connection to a server. Every command completes before it returns.
class Transfer {
 public:
  virtual ~Transfer() = default;
  /// Whom to tell and ask from now on.
  virtual void listen(TransferEvents events) = 0;
  /// Opens the connection, with firewall and TLS as the settings say, and reads the greeting. An open one is dropped.
  virtual TransferCompletion connect(const ConnectionSettings& settings) = 0;
  /// Logs in with the user and password of the settings, at the firewall first where it wants that.
  virtual TransferCompletion logIn() = 0;
  /// The current folder of the server, absolute, in the completion's text.
  virtual TransferCompletion currentFolder() = 0;
  /// Changes into a folder, absolute or relative. transferFolderMissing when it isn't there.
  virtual TransferCompletion changeFolder(const std::string& folder) = 0;
  /// Changes into the folder above.
  virtual TransferCompletion parentFolder() = 0;
  /// Makes one folder. transferFolderMissing when the server refuses, as it does for one that is there.
  virtual TransferCompletion makeFolder(const std::string& folder) = 0;
  virtual TransferCompletion deleteFile(const std::string& name) = 0;
  /// Gives a file of the server another name, over the one that has it where the server allows that.
  virtual TransferCompletion renameFile(const std::string& from, const std::string& to) = 0;
  /// Sends the file `path` of this machine as `name`, in place of what is there.
  virtual TransferCompletion upload(const std::string& path, const std::string& name, TransferMode mode) = 0;
  /// The same, its bytes added at the end of what is there.
  virtual TransferCompletion append(const std::string& path, const std::string& name, TransferMode mode) = 0;
  /// Sends a command as it is ("SITE chmod 755 a.pl"); a reply from 400 on is a failure.
  virtual TransferCompletion rawCommand(const std::string& command) = 0;
  /// The listing of the current folder, as raw lines.
  virtual TransferCompletion list() = 0;
  /// Takes leave of the server and closes the connection; nothing to do when it is closed.
  virtual TransferCompletion quit() = 0;
  /// Closes the connection at once, without a word. May be called from within an event.
  virtual void abort() = 0;
  /// Whether there is a connection.
  virtual bool isConnected() const = 0;
};

/// Waits while events go on. False as soon as `yield` says so.
bool waitFor(int milliseconds, const std::function<bool()>& yield);

/// A connection over one of the protocols. Settings that ask for the other one are refused by connect() with
/// transferOther.
std::unique_ptr<Transfer> makeTransfer(TransferProtocol protocol = TransferProtocol::Ftp);

}  // namespace kv
