#pragma once
// A connected socket, in the clear or with TLS over it. Nothing blocks: whoever waits does so with Patience. For the
// sources of platform/transfer.

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "platform/transfer/address.h"
#include "platform/transfer/patience.h"
#include "platform/transfer/tls.h"

namespace kv {

/// One connection, closed with the object.
class Wire {
 public:
  Wire() = default;
  /// Takes over a connected socket.
  explicit Wire(int descriptor);
  Wire(Wire&& other) noexcept;
  Wire& operator=(Wire&& other) noexcept;
  ~Wire() { close(); }

  /// Connects to a host, its addresses in turn. transferNoConnection with the reason of the last one.
  static Result<Wire> connect(const std::string& host, const std::string& port, Patience& patience);
  /// Connects to one address.
  static Result<Wire> connect(const SocketAddress& address, Patience& patience);

  /// Whether there is a connection.
  bool isOpen() const { return descriptor_ >= 0; }
  /// Whether it is encrypted.
  bool isSecure() const { return tls_ != nullptr; }
  int descriptor() const { return descriptor_; }
  /// The TLS of this connection; null in the clear.
  TlsLine* tls() const { return tls_.get(); }
  /// The addresses of its two ends.
  SocketAddress localAddress() const;
  SocketAddress peerAddress() const;

  /// Reads what there is, at least one byte, into `to`; 0 at the end of the stream.
  Result<std::size_t> read(char* to, std::size_t room, Patience& patience);
  /// Whether bytes can be read without waiting for the network.
  bool hasBuffered() const { return tls_ != nullptr && tls_->hasBuffered(); }
  /// Writes all bytes.
  Result<> write(std::string_view bytes, Patience& patience);
  /// Puts TLS over the connection. Failures as Tls::open.
  Result<> secure(Tls& tls, const TlsPeer& peer, Patience& patience);
  /// Says that nothing more is sent, and waits until the other side has taken it. A failure there is none: what was
  /// taken is told by the server.
  void finish(Patience& patience);
  /// Whether the other side has broken the connection off instead of closing it, as far as that is known by now: bytes
  /// that were written may not have arrived.
  bool wasReset() const;
  /// Keeps the connection alive while nothing is said, so that routers on the way don't forget it.
  void keepAlive() const;
  /// Closes it at once, as after a failure.
  void close();

 private:
  int descriptor_ = -1;
  bool wasReset_ = false;  // and has told so: that is told once
  std::unique_ptr<TlsLine> tls_;
};

}  // namespace kv
