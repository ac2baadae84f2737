#pragma once
// TLS over a socket of this room: certificates are verified, one that doesn't pass is asked about once, and further
// connections reuse the session of the first, as strict servers want. For the sources of platform/transfer.

#include <openssl/ssl.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "platform/transfer/patience.h"
#include "platform/transfer/transfer.h"

namespace kv {

/// TLS on one connection.
class TlsLine {
 public:
  explicit TlsLine(SSL* ssl) : ssl_(ssl, &SSL_free) {}
  SSL* get() const { return ssl_.get(); }
  /// Whether decrypted bytes are there already.
  bool hasBuffered() const { return SSL_pending(ssl_.get()) > 0; }
  /// Reads at least one byte; 0 at the end of the stream.
  Result<std::size_t> read(char* to, std::size_t room, int descriptor, Patience& patience);
  /// Sends all of these bytes.
  Result<> write(std::string_view bytes, int descriptor, Patience& patience);
  /// SHA-256 of the other side's certificate; empty when it has shown none.
  std::string fingerprint() const;

 private:
  std::unique_ptr<SSL, decltype(&SSL_free)> ssl_;
};

/// With whom a TLS connection is made.
struct TlsPeer {
  std::string host;                ///< the name that the certificate must bear
  const TlsLine* first = nullptr;  ///< the connection whose session is reused; null for a first one
};

/// What all TLS connections to one server share.
class Tls {
 public:
  Tls() = default;
  Tls(const Tls&) = delete;
  Tls& operator=(const Tls&) = delete;
  /// Whom to ask about a certificate that doesn't pass; not set: it is refused.
  std::function<bool(const UntrustedServer&)> trust;

  /// Shakes hands on a connected socket. transferNotTrusted when the certificate doesn't pass and isn't accepted, or
  /// when a further connection shows another one than the first; transferNoConnection when there is no TLS there.
  Result<std::unique_ptr<TlsLine>> open(int descriptor, const TlsPeer& peer, Patience& patience);
  /// Whether the last handshake failed because the server speaks TLS 1.3 alone; the next one, over a new connection,
  /// then speaks it too.
  bool wantsAnother() const { return wantsAnother_; }

 private:
  /// Whether the certificate is the host's; one that isn't known is asked about.
  Result<> verify(const TlsLine& line, const TlsPeer& peer);
  /// Keeps a session that the server offers, for the next connection.
  static int keepSession(SSL* ssl, SSL_SESSION* session);
  // Made for the first connection: reading the trusted certificates takes longer than a whole dialogue in the clear.
  void prepare();
  std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_{nullptr, &SSL_CTX_free};
  /// Agrees with the other side on keys.
  Result<> shakeHands(SSL* ssl, int descriptor, Patience& patience);
  // TLS 1.2 is preferred: its session is resumed by every data connection, while a ticket of TLS 1.3 is often good
  // for one, and an upload ends before the server's next one has come.
  bool newest_ = false;
  bool wantsAnother_ = false;
  // What the next connection resumes: the server's last offer.
  std::unique_ptr<SSL_SESSION, decltype(&SSL_SESSION_free)> session_{nullptr, &SSL_SESSION_free};
  std::set<std::string> accepted_;  // fingerprints that the user has accepted
};

}  // namespace kv
