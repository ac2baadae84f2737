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

/// A socket that listens at a port the system chose; the caller closes it.
inline int listenLocally(int& port) {
  const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = localAddress(0);
  socklen_t size = sizeof address;
  ::bind(listener, reinterpret_cast<sockaddr*>(&address), size);
  ::listen(listener, 8);
  ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
  port = ntohs(address.sin_port);
  return listener;
}

/// Listens from its first to its last moment.
class LocalListener {
 public:
  LocalListener() : descriptor_(listenLocally(port_)) {}
  ~LocalListener() { ::close(descriptor_); }
  LocalListener(const LocalListener&) = delete;
  LocalListener& operator=(const LocalListener&) = delete;
  int descriptor() const { return descriptor_; }
  int port() const { return port_; }
  /// The connection of the next client.
  int accept() const { return ::accept(descriptor_, nullptr, nullptr); }

 private:
  int port_ = 0;
  int descriptor_;
};

}  // namespace kv::test
