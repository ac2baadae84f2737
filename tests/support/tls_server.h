#pragma once
// The server's side of TLS, with a certificate of the test's own for 127.0.0.1, which nobody else has signed.

#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

namespace kv::test {

/// Shakes hands with each connection, and leaves the rest to the test.
class TlsServer {
 public:
  TlsServer() : key_(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"), &EVP_PKEY_free), certificate_(sign()) {
    SSL_CTX_use_certificate(context_.get(), certificate_.get());
    SSL_CTX_use_PrivateKey(context_.get(), key_.get());
  }
  /// In the server's thread, which a client that has gone away must not end. To be freed by SSL_free. tickets: how many
  /// sessions of TLS 1.3 the client is offered to resume.
  SSL* shakeHands(int descriptor, std::size_t tickets = 2) const {
    sigset_t pipe;
    ::sigemptyset(&pipe);
    ::sigaddset(&pipe, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
    SSL* const ssl = SSL_new(context_.get());
    SSL_set_fd(ssl, descriptor);
    SSL_set_num_tickets(ssl, tickets);
    SSL_accept(ssl);
    return ssl;
  }
  /// Speaks TLS 1.3 alone from now on.
  void speakNewestAlone() { SSL_CTX_set_min_proto_version(context_.get(), TLS1_3_VERSION); }
  /// The certificate as a file of trusted ones.
  void writeTo(const std::string& path) const {
    FILE* const file = std::fopen(path.c_str(), "w");
    PEM_write_X509(file, certificate_.get());
    std::fclose(file);
  }

 private:
  using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
  using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;
  using Context = std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)>;

  static void add(X509* certificate, int kind, const char* value) {
    X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value);
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
  }
  Certificate sign() const {
    constexpr long day = 86400;
    Certificate made(X509_new(), &X509_free);
    X509_set_version(made.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(made.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(made.get()), -day);
    X509_gmtime_adj(X509_getm_notAfter(made.get()), day);
    X509_NAME* const name = X509_get_subject_name(made.get());
    const auto* common = reinterpret_cast<const unsigned char*>("prova");
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, common, -1, -1, 0);
    X509_set_issuer_name(made.get(), name);
    X509_set_pubkey(made.get(), key_.get());
    add(made.get(), NID_subject_alt_name, "IP:127.0.0.1");
    add(made.get(), NID_basic_constraints, "critical,CA:TRUE");
    X509_sign(made.get(), key_.get(), EVP_sha256());
    return made;
  }

  Key key_;
  Certificate certificate_;
  Context context_{SSL_CTX_new(TLS_server_method()), &SSL_CTX_free};
};

/// What has come over a connection, waiting for it; empty at its end.
inline std::string readSome(SSL* ssl) {
  std::array<char, 65536> piece{};
  const int count = SSL_read(ssl, piece.data(), static_cast<int>(piece.size()));
  return {piece.data(), static_cast<std::size_t>(std::max(count, 0))};
}

}  // namespace kv::test
