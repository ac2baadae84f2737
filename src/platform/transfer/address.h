#pragma once
// Names of hosts and ports as addresses. For the sources of platform/transfer.

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/transfer/patience.h"

namespace kv {

/// One address of a host with its port.
struct SocketAddress {
  sockaddr_storage bytes{};
  socklen_t size = 0;

  const sockaddr* get() const;
  sockaddr* get();
  /// The kind of address: AF_INET, AF_INET6.
  int family() const { return bytes.ss_family; }
  /// The port in the order of this machine.
  std::uint16_t port() const;
  void setPort(std::uint16_t port);
  /// Whether both are of the same host, whatever their ports.
  bool hasHostOf(const SocketAddress& other) const;
  /// "127.0.0.1" or "::1".
  std::string hostText() const;
};

/// The addresses of a host, in the order in which they should be tried; never an empty list. `port` is a number or the
/// name of a service. transferNoConnection when the name or the port isn't known. The caller's events go on meanwhile.
Result<std::vector<SocketAddress>> resolve(const std::string& host, const std::string& port, Patience& patience);

/// The number of a port that is written as one, 1 to 65535.
std::optional<std::uint16_t> portNumber(const std::string& text);

}  // namespace kv
