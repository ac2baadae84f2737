#pragma once
// A port on 127.0.0.1 that the system chose, for the servers that a test plays itself.

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>

namespace kv::test {

/// The address of a port on this machine; 0 lets the system choose.
inline sockaddr_in localAddress(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

/// Listens from its first to its last moment.
class LocalListener {
 public:
  LocalListener() : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address = localAddress(0);
    socklen_t size = sizeof address;
    ::bind(descriptor_, reinterpret_cast<sockaddr*>(&address), size);
    ::listen(descriptor_, 8);
    ::getsockname(descriptor_, reinterpret_cast<sockaddr*>(&address), &size);
    port_ = ntohs(address.sin_port);
  }
  ~LocalListener() { ::close(descriptor_); }
  LocalListener(const LocalListener&) = delete;
  LocalListener& operator=(const LocalListener&) = delete;
  int descriptor() const { return descriptor_; }
  int port() const { return port_; }
  /// The connection of the next client.
  int accept() const { return ::accept(descriptor_, nullptr, nullptr); }

 private:
  int descriptor_;
  int port_ = 0;
};

}  // namespace kv::test
