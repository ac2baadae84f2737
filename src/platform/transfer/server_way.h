#pragma once
// The way to a server, whatever is spoken there: straight, through a SOCKS proxy, or to a machine before it. For the
// sources of platform/transfer.

#include <cstdint>
#include <string>

#include "platform/transfer/connection_settings.h"
#include "platform/transfer/wire.h"

namespace kv {

/// Whether the control connection goes to an FTP proxy, which has to be told where to go on.
bool isFtpProxy(FirewallKind kind);
/// Whether a SOCKS proxy makes the connections.
bool isSocks(FirewallKind kind);
/// The port of the server, the usual one of the protocol where the settings have none: 21, 990, 22.
std::string serverPort(const ConnectionSettings& settings);

/// A connection to the server, or to the FTP proxy or the pipe before it. transferNoConnection.
Result<Wire> openServerWay(const ConnectionSettings& settings, Patience& patience);
/// A connection to a port of the server through the SOCKS proxy of the settings. transferNoConnection.
Result<Wire> openThroughSocks(const ConnectionSettings& settings, std::uint16_t port, Patience& patience);

}  // namespace kv
