#pragma once
// The data connection of one FTP command, passive or active. For the sources of platform/transfer.

#include <functional>
#include <string>
#include <vector>

#include "platform/transfer/protocols/ftp_session.h"

namespace kv {

/// A data connection on its way: agreed upon with the server, not yet used.
class FtpData {
 public:
  /// Agrees with the server: it tells a port, which is connected to, or it is told one. transferNoData when that
  /// fails.
  static Result<FtpData> prepare(FtpSession& session, Patience& patience);
  /// The connection, after the server's preliminary reply; with TLS where the session has it. transferNoData.
  Result<Wire> open(FtpSession& session, Patience& patience);

 private:
  Wire wire_;      // passive: connected; active: none yet
  Wire listener_;  // active
};

/// How a data connection has ended whose bytes are all written or read.
enum class DataEnd {
  Closed,
  Reset  ///< broken off: what was written may not have arrived, although the server says so
};

/// Runs a command with a data connection: agrees on one, sends the command, has `use` send or read the bytes, and
/// reads the closing reply. The failure of the server's reply counts before that of the connection.
Result<DataEnd> withData(FtpSession& session, const std::string& command,
                         const std::function<Result<>(Wire& wire, Patience& patience)>& use, Patience& patience);

}  // namespace kv
