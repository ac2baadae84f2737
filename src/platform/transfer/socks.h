#pragma once
// The greeting of a SOCKS proxy: after it the connection is one with the server itself. For the sources of
// platform/transfer. Source: "SOCKS 4" and "SOCKS 4A" (Ying-Da Lee), RFC 1928, RFC 1929.

#include <cstdint>
#include <string>

#include "platform/transfer/connection_settings.h"
#include "platform/transfer/wire.h"

namespace kv {

/// Where a proxy is to connect to, and who asks.
struct SocksRequest {
  FirewallKind kind = FirewallKind::Socks5;  ///< Socks4 or Socks5
  std::string host;                          ///< a name, which the proxy resolves, or a number
  std::uint16_t port = 0;
  std::string user;      ///< empty: without a name
  std::string password;  ///< SOCKS 5 alone has one
};

/// Asks the proxy at the other end of `wire` to connect. transferNoConnection, with the reason in Italian, when it
/// refuses or answers something else than a proxy.
Result<> askSocks(Wire& wire, const SocksRequest& request, Patience& patience);

}  // namespace kv
