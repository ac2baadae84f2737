#pragma once
// How a server of files is reached: its address, who logs in, and what is between it and this machine. A plain
// value; who reads it from a shop and its files is no matter of this room.

#include <string>

namespace kv {

/// What is between this machine and the server; the numbers are those of the shop's file.
enum class FirewallKind {
  None = 0,
  Socks4 = 1,      ///< SOCKS 4, a host name sent as SOCKS 4a
  Socks5 = 2,      ///< SOCKS 5 (RFC 1928), with the user's name and password when the proxy wants them (RFC 1929)
  ProxyUser = 3,   ///< an FTP proxy: "USER user@host" after a login of its own when there is a firewall user
  ProxySite = 4,   ///< an FTP proxy: "SITE host" after its own login
  ProxyProxy = 5,  ///< an FTP proxy: "USER user@firewall user@host", "PASS password@firewall password"
  ProxyOpen = 6,   ///< an FTP proxy: "OPEN host" after its own login
  SimplePipe = 7   ///< a machine that passes all bytes on to the server
};

/// Whether the connection is encrypted (TLS).
enum class TlsMode {
  Never = 0,
  IfOffered = 1,  ///< asked for; a server that has none is spoken to in the clear
  Required = 2,   ///< a server that has none is left before anything secret is said
  Implicit = 3    ///< TLS from the first byte, as on port 990
};

/// The protocol that is spoken with the server.
enum class TransferProtocol { Ftp = 0, Sftp = 1 };

/// How a server is reached.
struct ConnectionSettings {
  std::string host;  ///< name or number, without "ftp://" and slashes
  std::string user;
  std::string password;
  /// A number, or the name of a service. Empty: the usual port of the protocol (21, 990 implicit, 22 SFTP).
  std::string ftpPort = "21";
  bool passive = true;  ///< this machine opens the data connection; else the server does
  FirewallKind firewall = FirewallKind::None;
  std::string firewallHost;
  std::string firewallPort;  ///< as ftpPort; empty: 1080 for SOCKS, else that of the server
  std::string firewallUser;
  std::string firewallPassword;
  TlsMode tls = TlsMode::IfOffered;
  TransferProtocol protocol = TransferProtocol::Ftp;
  int silenceSeconds = 60;     ///< how long the server may say and take nothing before that is a failure
  std::string knownHostsFile;  ///< SFTP: where the keys of servers are remembered; empty: none is
};

}  // namespace kv
