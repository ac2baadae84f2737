#include "platform/transfer/tls.h"

#include <arpa/inet.h>
#include <openssl/err.h>
#include <openssl/x509v3.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace kv {
namespace {

using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;

Certificate certificateOf(SSL* ssl) { return {SSL_get1_peer_certificate(ssl), &X509_free}; }

std::string fingerprintOf(const X509* certificate) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int size = 0;
  if (certificate == nullptr || X509_digest(certificate, EVP_sha256(), digest.data(), &size) != 1) return {};
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  for (unsigned int i = 0; i < size; ++i) {
    if (i > 0) text += ':';
    text += digits[digest.at(i) >> 4U];
    text += digits[digest.at(i) & 15U];
  }
  return text;
}

std::string subjectOf(const X509* certificate) {
  std::array<char, 256> text{};
  if (certificate == nullptr) return {};
  X509_NAME_oneline(X509_get_subject_name(certificate), text.data(), static_cast<int>(text.size()));
  return text.data();
}

std::string tlsReason() {
  const unsigned long code = ERR_peek_last_error();
  const char* const reason = code == 0 ? nullptr : ERR_reason_error_string(code);
  return reason == nullptr ? "connessione interrotta" : reason;
}

/// Waits for what an operation wants; a failure when it wants nothing that can be waited for.
Result<> awaitWanted(SSL* ssl, int outcome, int descriptor, Patience& patience) {
  switch (SSL_get_error(ssl, outcome)) {
    case SSL_ERROR_WANT_READ:
      return patience.await(descriptor, POLLIN);
    case SSL_ERROR_WANT_WRITE:
      return patience.await(descriptor, POLLOUT);
    case SSL_ERROR_SYSCALL:
      return transferFailure(transferNoConnection, socketText(errno == 0 ? ECONNRESET : errno));
    default:
      return transferFailure(transferNoConnection, "errore della connessione cifrata (" + tlsReason() + ")");
  }
}

/// Whether the stream has ended: told by the other side, or by the end of the connection.
bool hasEnded(SSL* ssl, int outcome) {
  const int error = SSL_get_error(ssl, outcome);
  return error == SSL_ERROR_ZERO_RETURN || (error == SSL_ERROR_SYSCALL && errno == 0);
}

// The library's own BIO of a socket writes with write(2), which ends the process when the server has gone away.

int sendToSocket(BIO* bio, const char* bytes, int size) {
  BIO_clear_retry_flags(bio);
  const auto* const descriptor = static_cast<const int*>(BIO_get_data(bio));
  const ssize_t count = ::send(*descriptor, bytes, static_cast<std::size_t>(size), MSG_NOSIGNAL);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) BIO_set_retry_write(bio);
  return static_cast<int>(count);
}

int receiveFromSocket(BIO* bio, char* to, int room) {
  BIO_clear_retry_flags(bio);
  const auto* const descriptor = static_cast<const int*>(BIO_get_data(bio));
  const ssize_t count = ::recv(*descriptor, to, static_cast<std::size_t>(room), 0);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) BIO_set_retry_read(bio);
  if (count == 0) BIO_set_flags(bio, BIO_FLAGS_IN_EOF);
  return static_cast<int>(count);
}

long controlSocket(BIO* bio, int command, long /*number*/, void* /*pointer*/) {
  if (command == BIO_CTRL_FLUSH) return 1;
  if (command == BIO_CTRL_EOF) return BIO_test_flags(bio, BIO_FLAGS_IN_EOF) != 0 ? 1 : 0;
  return 0;
}

int freeSocket(BIO* bio) {
  delete static_cast<int*>(BIO_get_data(bio));
  return 1;
}

BIO* socketBio(int descriptor) {
  static const std::unique_ptr<BIO_METHOD, decltype(&BIO_meth_free)> method = [] {
    BIO_METHOD* const made = BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "socket");
    BIO_meth_set_write(made, &sendToSocket);
    BIO_meth_set_read(made, &receiveFromSocket);
    BIO_meth_set_ctrl(made, &controlSocket);
    BIO_meth_set_destroy(made, &freeSocket);
    return std::unique_ptr<BIO_METHOD, decltype(&BIO_meth_free)>(made, &BIO_meth_free);
  }();
  BIO* const bio = BIO_new(method.get());
  BIO_set_data(bio, new int(descriptor));
  BIO_set_init(bio, 1);
  return bio;
}

/// By a copy too: the library resumes a session of TLS 1.3 once, and a server that offers no other one with its data
/// connections may want each of them to resume that of the control connection.
void resumeSession(SSL* ssl, SSL_SESSION& session) {
  const std::unique_ptr<SSL_SESSION, decltype(&SSL_SESSION_free)> copy(SSL_SESSION_dup(&session), &SSL_SESSION_free);
  SSL_set_session(ssl, copy.get());
}

void nameHost(SSL* ssl, const std::string& host) {
  std::array<unsigned char, sizeof(in6_addr)> number{};
  const bool isNumber =
      ::inet_pton(AF_INET, host.c_str(), number.data()) == 1 || ::inet_pton(AF_INET6, host.c_str(), number.data()) == 1;
  if (isNumber) {
    X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(ssl), host.c_str());
    return;
  }
  SSL_set1_host(ssl, host.c_str());
  // The call that the macro SSL_set_tlsext_host_name makes, without its cast.
  std::string name = host;
  SSL_ctrl(ssl, SSL_CTRL_SET_TLSEXT_HOSTNAME, TLSEXT_NAMETYPE_host_name, name.data());
}

}  // namespace

Result<std::size_t> TlsLine::read(char* to, std::size_t room, int descriptor, Patience& patience) {
  for (;;) {
    ERR_clear_error();
    errno = 0;
    const int count = SSL_read(ssl_.get(), to, static_cast<int>(std::min<std::size_t>(room, 1U << 20U)));
    if (count > 0) return static_cast<std::size_t>(count);
    if (hasEnded(ssl_.get(), count)) return std::size_t{0};
    if (auto ready = awaitWanted(ssl_.get(), count, descriptor, patience); !ready) return fail(ready.error());
  }
}

Result<> TlsLine::write(std::string_view bytes, int descriptor, Patience& patience) {
  while (!bytes.empty()) {
    ERR_clear_error();
    errno = 0;
    const int count = SSL_write(ssl_.get(), bytes.data(), static_cast<int>(std::min<std::size_t>(bytes.size(), 65536)));
    if (count > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
      continue;
    }
    if (auto ready = awaitWanted(ssl_.get(), count, descriptor, patience); !ready) return ready;
  }
  return {};
}

std::string TlsLine::fingerprint() const { return fingerprintOf(certificateOf(ssl_.get()).get()); }

void Tls::prepare() {
  if (context_) return;
  context_.reset(SSL_CTX_new(TLS_client_method()));
  SSL_CTX_set_default_verify_paths(context_.get());
  // The handshake goes through in any case; verify() then judges, so that the user can be asked.
  SSL_CTX_set_verify(context_.get(), SSL_VERIFY_NONE, nullptr);
  SSL_CTX_set_session_cache_mode(context_.get(), SSL_SESS_CACHE_CLIENT | SSL_SESS_CACHE_NO_INTERNAL);
  SSL_CTX_set_app_data(context_.get(), this);
  SSL_CTX_sess_set_new_cb(context_.get(), &Tls::keepSession);
  SSL_CTX_set_mode(context_.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
  // Many servers close a data connection without a closing word; whether all arrived is told by their reply.
  SSL_CTX_set_options(context_.get(), SSL_OP_IGNORE_UNEXPECTED_EOF);
}

int Tls::keepSession(SSL* ssl, SSL_SESSION* session) {
  auto* const self = static_cast<Tls*>(SSL_CTX_get_app_data(SSL_get_SSL_CTX(ssl)));
  // A copy: the library takes from a session the right to be resumed when its connection ends without a word.
  self->session_.reset(SSL_SESSION_dup(session));
  return 0;
}

Result<std::unique_ptr<TlsLine>> Tls::open(int descriptor, const TlsPeer& peer, Patience& patience) {
  prepare();
  auto line = std::make_unique<TlsLine>(SSL_new(context_.get()));
  BIO* const bio = socketBio(descriptor);
  SSL_set_bio(line->get(), bio, bio);
  nameHost(line->get(), peer.host);
  if (peer.first == nullptr) session_.reset();
  if (session_) resumeSession(line->get(), *session_);
  if (!newest_) SSL_set_max_proto_version(line->get(), TLS1_2_VERSION);
  if (auto shaken = shakeHands(line->get(), descriptor, patience); !shaken) return fail(shaken.error());
  if (auto verified = verify(*line, peer); !verified) return fail(verified.error());
  return line;
}

Result<> Tls::shakeHands(SSL* ssl, int descriptor, Patience& patience) {
  wantsAnother_ = false;
  for (;;) {
    ERR_clear_error();
    errno = 0;
    const int outcome = SSL_connect(ssl);
    if (outcome == 1) return {};
    if (!newest_ && ERR_GET_REASON(ERR_peek_last_error()) == SSL_R_TLSV1_ALERT_PROTOCOL_VERSION) {
      newest_ = wantsAnother_ = true;
    }
    if (auto ready = awaitWanted(ssl, outcome, descriptor, patience); !ready) return ready;
  }
}

Result<> Tls::verify(const TlsLine& line, const TlsPeer& peer) {
  const Certificate certificate = certificateOf(line.get());
  const std::string fingerprint = fingerprintOf(certificate.get());
  if (peer.first != nullptr) {
    // A resumed session proves by its key that this is the server of the first connection.
    if (SSL_session_reused(line.get()) == 1 || fingerprint == peer.first->fingerprint()) return {};
    return transferFailure(transferNotTrusted, "la connessione dati presenta un certificato diverso");
  }
  const long verdict = SSL_get_verify_result(line.get());
  if (certificate && verdict == X509_V_OK) return {};
  if (!fingerprint.empty() && accepted_.count(fingerprint) > 0) return {};
  const UntrustedServer server{peer.host, subjectOf(certificate.get()), X509_verify_cert_error_string(verdict),
                               fingerprint};
  if (trust && trust(server)) {
    accepted_.insert(fingerprint);
    return {};
  }
  return transferFailure(transferNotTrusted, "il certificato del server non è valido (" + server.reason + ")");
}

}  // namespace kv
