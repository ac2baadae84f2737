#pragma once
// firewall.net of a shop folder: the way to the server of files. It holds a password in the clear, so that it is
// readable by its owner alone.

#include <string>
#include <string_view>

#include "platform/database/database.h"
#include "platform/ports/result.h"
#include "platform/transfer/connection_settings.h"

namespace kv {

inline constexpr std::string_view firewallSettingsFile = "firewall.net";
inline constexpr std::string_view usualFtpPort = "21", usualSftpPort = "22", usualImplicitPort = "990";

/// What the file says. TLSM and PROT are later additions, written after the others where they differ from the default.
struct FirewallSettings {
  bool passive = true;                                ///< MODE: PASV; else PORT
  std::string host;                                   ///< HOST: of the firewall
  FirewallKind kind = FirewallKind::None;             ///< TYPE
  std::string port;                                   ///< PORT: of the firewall; a text that is no number stays
  std::string ftpPort{usualFtpPort};                  ///< FPRT: of the server; a text that is no number stays
  std::string user;                                   ///< USER: at the firewall
  std::string password;                               ///< PASS: in the clear
  bool reconnects = false;                            ///< DISC: the second folder gets a connection of its own
  TlsMode tls = TlsMode::IfOffered;                   ///< TLSM
  TransferProtocol protocol = TransferProtocol::Ftp;  ///< PROT: 1 is SFTP
  friend bool operator==(const FirewallSettings&, const FirewallSettings&) = default;
};

/// The settings in a text of "KEY: value" lines; what it doesn't name, or names with a number out of range, keeps its
/// default.
FirewallSettings parseFirewallSettings(std::string_view text);
/// The text of firewall.net in UTF-8. Ports that are numbers are written as such, without leading zeros.
std::string firewallSettingsText(const FirewallSettings& settings);

/// The settings of a shop; the default ones where there is no file or it can't be read.
FirewallSettings readFirewallSettings(const std::string& shopFolder);
/// Replaces firewall.net, readable by its owner alone. Failures as writeBytes, and the old file stays.
Result<> writeFirewallSettings(const std::string& shopFolder, const FirewallSettings& settings);
/// Deletes firewall.net; one that isn't there is no failure.
Result<> deleteFirewallSettings(const std::string& shopFolder);

/// Who logs in where, as the columns `hostname`, `username` and `password` hold it.
struct ServerLogin {
  std::string host, user, password;
};

/// The login of an open shop. Failures as Database::prepare.
Result<ServerLogin> readServerLogin(Database& catalogue);

/// The settings of a connection: login and way to the server. The host is normalised by serverHost, the user is
/// trimmed. SFTP, and TLS from the first byte, have their usual port where the settings have that of FTP.
/// silenceSeconds: how long the server may say nothing.
ConnectionSettings connectionOf(const ServerLogin& login, const FirewallSettings& way, int silenceSeconds);

}  // namespace kv
