#include "platform/transfer/wire.h"

#include <fcntl.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "platform/transfer/transfer.h"

namespace kv {
namespace {

constexpr std::size_t discardedPiece = 4096;
constexpr std::size_t mostDiscarded = std::size_t{1024} * 1024;

/// The errno with which a connection that was begun has failed; 0 when it is there.
int connectionFailure(int descriptor) {
  int failure = 0;
  socklen_t size = sizeof failure;
  return ::getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &failure, &size) == 0 ? failure : errno;
}

void setFlag(int descriptor, int level, int option, int value) {
  // An option that the system doesn't have changes no byte of the dialogue.
  ignore(::setsockopt(descriptor, level, option, &value, sizeof value),
         "a connection works without the option, slower");
}

}  // namespace

Wire::Wire(int descriptor) : descriptor_(descriptor) {
  // Commands are short, and a file is written in large pieces: nothing is gained by waiting for more.
  setFlag(descriptor_, IPPROTO_TCP, TCP_NODELAY, 1);
}

Wire::Wire(Wire&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), wasReset_(other.wasReset_), tls_(std::move(other.tls_)) {}

Wire& Wire::operator=(Wire&& other) noexcept {
  if (this != &other) {
    close();
    descriptor_ = std::exchange(other.descriptor_, -1);
    wasReset_ = other.wasReset_;
    tls_ = std::move(other.tls_);
  }
  return *this;
}

Result<Wire> Wire::connect(const SocketAddress& address, Patience& patience) {
  const int descriptor = ::socket(address.family(), SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (descriptor < 0) return transferFailure(transferNoConnection, socketText(errno));
  Wire wire(descriptor);
  if (::connect(descriptor, address.get(), address.size) != 0) {
    if (errno != EINPROGRESS) return transferFailure(transferNoConnection, socketText(errno));
    if (auto ready = patience.await(descriptor, POLLOUT); !ready) return fail(ready.error());
    if (const int failure = connectionFailure(descriptor); failure != 0) {
      return transferFailure(transferNoConnection, socketText(failure));
    }
  }
  return wire;
}

Result<Wire> Wire::connect(const std::string& host, const std::string& port, Patience& patience) {
  const auto addresses = resolve(host, port, patience);
  if (!addresses) return fail(addresses.error());
  Error last;
  for (const SocketAddress& address : *addresses) {
    auto wire = connect(address, patience);
    if (wire || wire.error().number == transferCancelled) return wire;
    last = wire.error();
  }
  return transferFailure(last.number, host + " (porta " + port + "): " + last.what);
}

SocketAddress Wire::localAddress() const {
  SocketAddress address;
  address.size = sizeof address.bytes;
  if (::getsockname(descriptor_, address.get(), &address.size) != 0) address = {};
  return address;
}

SocketAddress Wire::peerAddress() const {
  SocketAddress address;
  address.size = sizeof address.bytes;
  if (::getpeername(descriptor_, address.get(), &address.size) != 0) address = {};
  return address;
}

Result<std::size_t> Wire::read(char* to, std::size_t room, Patience& patience) {
  if (tls_) return tls_->read(to, room, descriptor_, patience);
  for (;;) {
    const ssize_t count = ::recv(descriptor_, to, room, 0);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno == EINTR) continue;
    if (errno != EAGAIN) return transferFailure(transferNoConnection, socketText(errno));
    if (auto ready = patience.await(descriptor_, POLLIN); !ready) return fail(ready.error());
  }
}

Result<> Wire::write(std::string_view bytes, Patience& patience) {
  if (tls_) return tls_->write(bytes, descriptor_, patience);
  while (!bytes.empty()) {
    const ssize_t count = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
      continue;
    }
    if (errno == EINTR) continue;
    if (errno != EAGAIN) return transferFailure(transferNoConnection, socketText(errno));
    if (auto ready = patience.await(descriptor_, POLLOUT); !ready) return ready;
  }
  return {};
}

Result<> Wire::secure(Tls& tls, const TlsPeer& peer, Patience& patience) {
  auto line = tls.open(descriptor_, peer, patience);
  if (!line) return fail(line.error());
  tls_ = std::move(*line);
  return {};
}

void Wire::finish(Patience& patience) {
  if (!isOpen()) return;
  if (tls_) ignore(SSL_shutdown(tls_->get()), "the connection is closed whatever the other side answers");
  if (::shutdown(descriptor_, SHUT_WR) != 0 || !tls_) return;
  // What the server still says are session tickets: the next connection may need them, and a server would see the
  // connection reset, and lose what it hasn't read yet, if it were closed with them unread.
  // That is little; whoever says more would be listened to for ever.
  std::array<char, discardedPiece> discarded{};
  for (std::size_t all = 0; all < mostDiscarded;) {
    const auto count = tls_->read(discarded.data(), discarded.size(), descriptor_, patience);
    wasReset_ = !count && count.error().number == transferNoConnection;
    if (!count || *count == 0) return;
    all += *count;
  }
}

bool Wire::wasReset() const {
  char byte = 0;
  return wasReset_ || (isOpen() && ::recv(descriptor_, &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0 && errno == ECONNRESET);
}

void Wire::keepAlive() const {
  constexpr int idleSeconds = 30;
  setFlag(descriptor_, SOL_SOCKET, SO_KEEPALIVE, 1);
  setFlag(descriptor_, IPPROTO_TCP, TCP_KEEPIDLE, idleSeconds);
  setFlag(descriptor_, IPPROTO_TCP, TCP_KEEPINTVL, idleSeconds);
}

void Wire::close() {
  tls_.reset();
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}

}  // namespace kv
