#pragma once
// What the commands of one FTP connection share. For the sources of platform/transfer.

#include <string>

#include "platform/transfer/connection_settings.h"
#include "platform/transfer/protocols/ftp_control.h"
#include "platform/transfer/server_way.h"
#include "platform/transfer/tls.h"

namespace kv {

/// How the server wants names beyond ASCII.
enum class NameEncoding { NotAsked, Utf8, Windows1252 };

/// What commands of one connection share.
struct FtpSession {
  ConnectionSettings settings;
  FtpControl control;
  Tls tls;
  bool secureData = false;      ///< data connections have TLS too
  bool extendedPassive = true;  ///< until the server refuses EPSV
  char type = 'A';              ///< of the last TYPE, 'A' or 'I'; servers begin with 'A'
  NameEncoding names = NameEncoding::NotAsked;
};

/// Opens the control connection, through the firewall, with TLS where the settings want it, and reads the greeting.
Result<> openControl(FtpSession& session, Patience& patience);
/// Logs in, at the firewall first where it has a login of its own, and has data connections encrypted if the control
/// connection is.
Result<> logInto(FtpSession& session, Patience& patience);
/// A connection to a port of the server's host, by the way of the control connection.
Result<Wire> openToServer(FtpSession& session, std::uint16_t port, Patience& patience);
/// A file name as the server wants it; the first one that isn't ASCII has the server asked.
Result<std::string> encodedName(FtpSession& session, const std::string& name, Patience& patience);

}  // namespace kv
