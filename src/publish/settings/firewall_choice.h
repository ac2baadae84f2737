#pragma once
// What the dialog of the way to the server shows: the rules of frmFirewall.

#include <array>
#include <string>
#include <string_view>

#include "platform/ports/user_port.h"
#include "publish/settings/firewall_settings.h"

namespace kv {

/// The names of the kinds, in the order of their numbers.
inline constexpr std::array<std::string_view, 8> firewallKinds{
    "Nessun firewall", "Socks 4", "Socks 5", "Proxy USER", "Proxy SITE", "Proxy PROXY", "Proxy OPEN", "Simple Pipe"};
/// The names of the choices of encryption, in the order of their numbers.
inline constexpr std::array<std::string_view, 4> tlsModes{"Mai", "Se il server la offre", "Obbligatoria",
                                                          "Dall'inizio (porta 990)"};

/// The names of the protocols, in the order of their numbers.
inline constexpr std::array<std::string_view, 2> protocolNames{"FTP", "SFTP (SSH)"};

/// The settings as the dialog shows them: an FTP port that is no number is shown as 21, and that one as the usual port
/// of what is chosen.
FirewallSettings shownFirewall(const FirewallSettings& settings);
/// Whether host, port, user and password of the firewall can be typed.
bool areFirewallFieldsEnabled(FirewallKind kind);

/// What only FTP has: the kind of the data connection, its own encryption and the FTP proxies.
bool areFtpFieldsEnabled(TransferProtocol protocol);
/// Whether a kind of firewall carries a protocol.
bool carries(FirewallKind kind, TransferProtocol protocol);
/// The port after a change of protocol or encryption: a usual one becomes that of the new choice, another one stays.
std::string portAfterChange(const std::string& port, TransferProtocol protocol, TlsMode tls);

/// cmdReset: asks, with Cancel as default, and deletes the file. False when the answer was no, or the file could not be
/// deleted, which the user has been told.
bool resetFirewall(const std::string& shopFolder, UserPort& user);

}  // namespace kv
