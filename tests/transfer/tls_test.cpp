// TLS with a server that shows a certificate of the test's own: what is trusted, what a server may do with the closing
// of a connection, and where a secret must not go.
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "platform/transfer/http_client.h"
#include "support/scripted_http_server.h"
#include "support/tls_server.h"
#include "transfer/transfer_fixture.h"

namespace kv {
namespace {

using test::LocalListener;
using test::readSome;
using test::ScriptedHttpServer;
using test::TlsServer;

/// An HTTPS server that gives one answer to all.
class HttpsServer {
 public:
  explicit HttpsServer(std::string answer) : answer_(std::move(answer)) {
    thread_ = std::thread([this] { serve(); });
  }
  HttpsServer(const HttpsServer&) = delete;
  HttpsServer& operator=(const HttpsServer&) = delete;
  ~HttpsServer() {
    ::shutdown(listener_.descriptor(), SHUT_RDWR);
    thread_.join();
  }
  std::string url() const { return "https://127.0.0.1:" + std::to_string(listener_.port()) + "/updatedb.php"; }
  const TlsServer& tls() const { return tls_; }
  int requests() const { return requests_; }

 private:
  void serve() {
    for (int client = listener_.accept(); client >= 0; client = listener_.accept()) {
      SSL* const ssl = tls_.shakeHands(client);
      if (!readSome(ssl).empty()) {
        ++requests_;
        SSL_write(ssl, answer_.data(), static_cast<int>(answer_.size()));
        SSL_shutdown(ssl);
      }
      SSL_free(ssl);
      ::close(client);
    }
  }
  std::string answer_;
  TlsServer tls_;
  LocalListener listener_;
  std::atomic<int> requests_{0};
  std::thread thread_;
};

std::string movedBy302(const std::string& address) {
  return "HTTP/1.1 302 Found\r\nLocation: " + address + "\r\nContent-Length: 0\r\n\r\n";
}

class AnHttpsRequest : public ::testing::Test {
 protected:
  void TearDown() override { ::unsetenv("SSL_CERT_FILE"); }
  void trust(const HttpsServer& server) {
    server.tls().writeTo(root / "fidati.pem");
    ::setenv("SSL_CERT_FILE", (root / "fidati.pem").c_str(), 1);
  }
  Result<HttpResponse> post(const std::string& url) {
    return client->send({.url = url, .method = "POST", .body = "sec=segreto"}, {});
  }
  test::TempFolder root;
  std::unique_ptr<HttpClient> client = makeHttpClient();
};

TEST_F(AnHttpsRequest, SaysNothingToAServerWhoseCertificateDoesNotPass) {
  HttpsServer server("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nOK");
  EXPECT_FALSE(post(server.url()));
  EXPECT_EQ(server.requests(), 0);
  trust(server);
  const auto answer = post(server.url());
  ASSERT_TRUE(answer) << answer.error().what;
  EXPECT_EQ(answer->body, "OK");
}

TEST_F(AnHttpsRequest, NeverSendsAPostOnInTheClear) {
  ScriptedHttpServer plain({"HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nOK"});
  HttpsServer server(movedBy302(plain.url("/updatedb.php")));
  trust(server);
  const auto answer = post(server.url());
  ASSERT_FALSE(answer);
  EXPECT_EQ(answer.error().what, "il sito rimanda a " + plain.url("/updatedb.php") + ": correggere l'URL del sito");
  EXPECT_EQ(server.requests(), 1);
  EXPECT_TRUE(plain.requests().empty());
}

TEST_F(AnHttpsRequest, TakesAPostThatComesFromThePlainSite) {
  HttpsServer server("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nOK");
  trust(server);
  ScriptedHttpServer plain({movedBy302(server.url())});
  const auto answer = post(plain.url("/updatedb.php"));
  ASSERT_TRUE(answer) << answer.error().what;
  EXPECT_EQ(answer->body, "OK");
}

/// An FTP server with TLS that takes files, and does something with each data connection then. Where TLS is implicit
/// it says nothing before the handshake. With its data connections it offers no further session to resume.
class CertifiedFtpServer {
 public:
  using Ending = std::function<void(SSL* data, int control)>;
  explicit CertifiedFtpServer(Ending ending, bool isImplicit = false, bool isNewestAlone = false)
      : ending_(std::move(ending)), isImplicit_(isImplicit) {
    if (isNewestAlone) tls_.speakNewestAlone();
    thread_ = std::thread([this] { serve(); });
  }
  CertifiedFtpServer(const CertifiedFtpServer&) = delete;
  CertifiedFtpServer& operator=(const CertifiedFtpServer&) = delete;
  ~CertifiedFtpServer() {
    ::shutdown(listener_.descriptor(), SHUT_RDWR);
    thread_.join();
  }
  std::string port() const { return std::to_string(listener_.port()); }

 private:
  void say(const std::string& line) {
    const std::string text = line + "\r\n";
    control_ == nullptr ? ::send(descriptor_, text.data(), text.size(), MSG_NOSIGNAL)
                        : SSL_write(control_, text.data(), static_cast<int>(text.size()));
  }
  std::string hear() {
    std::string line = unread_.empty() ? next() : std::exchange(unread_, {});
    while (!line.empty() && line.find("\r\n") == std::string::npos) line += next();
    const std::size_t end = line.find("\r\n");
    if (end == std::string::npos) return {};
    unread_ = line.substr(end + 2);
    return line.substr(0, end);
  }
  std::string next() {
    if (control_ != nullptr) return readSome(control_);
    std::array<char, 4096> piece{};
    const ssize_t count = ::recv(descriptor_, piece.data(), piece.size(), 0);
    return {piece.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
  }
  void answer(const std::string& line) {
    const std::string verb = line.substr(0, line.find(' '));
    if (verb == "AUTH") {
      say(control_ == nullptr ? "234 avanti" : "503 c'è già");
      if (control_ != nullptr) return;
      control_ = tls_.shakeHands(descriptor_);
    } else if (verb == "USER") {
      say("331 e la password");
    } else if (verb == "EPSV") {
      say("229 modo (|||" + std::to_string(data_.port()) + "|)");
    } else if (verb == "STOR") {
      store();
    } else {
      say(verb == "QUIT" ? "221 ciao" : "230 bene");
    }
  }
  void store() {
    say("150 avanti");
    const int descriptor = data_.accept();
    SSL* const data = tls_.shakeHands(descriptor, 0);
    while (!readSome(data).empty()) {
    }
    say("226 ricevuto");
    ending_(data, descriptor_);
    SSL_free(data);
    ::close(descriptor);
  }
  void serve() {
    while ((descriptor_ = listener_.accept()) >= 0) talk();
  }
  void talk() {
    if (isImplicit_) control_ = tls_.shakeHands(descriptor_);
    say("220 pronto");
    for (std::string line = hear(); !line.empty(); line = hear()) answer(line);
    SSL_free(std::exchange(control_, nullptr));
    unread_.clear();
    ::close(descriptor_);
  }

  Ending ending_;
  bool isImplicit_;
  TlsServer tls_;
  LocalListener listener_, data_;
  int descriptor_ = -1;
  SSL* control_ = nullptr;
  std::string unread_;
  std::thread thread_;
};

class TheEndOfACertifiedUpload : public test::TransferFixture {
 protected:
  /// What comes of sending a file to a server that does so with the connection after it.
  std::string outcome(const CertifiedFtpServer::Ending& ending, TlsMode tls = TlsMode::Required) {
    TransferEvents events;
    events.trust = [](const UntrustedServer& /*server*/) { return true; };
    transfer->listen(std::move(events));
    CertifiedFtpServer server(ending, tls == TlsMode::Implicit);
    ConnectionSettings settings = settingsOf(server);
    settings.tls = tls;
    std::string failed = enter(settings);
    if (failed == "ok") failed = textOf(transfer->upload(localFile("a", "bytes"), "a", TransferMode::Binary));
    transfer->abort();
    return failed;
  }
};

TEST_F(TheEndOfACertifiedUpload, IsNotPutOffByAServerThatGoesOnTalking) {
  constexpr std::size_t most = 100'000'000;
  std::size_t said = 0;
  const auto talk = [&said](SSL* data, int /*control*/) {
    const std::string piece(16384, 'x');
    while (said < most && SSL_write(data, piece.data(), static_cast<int>(piece.size())) > 0) said += piece.size();
  };
  EXPECT_EQ(outcome(talk), "ok");
  EXPECT_LT(said, most / 4) << "a megabyte is heard, some more is on its way";
}

TEST_F(TheEndOfACertifiedUpload, ComesOnBothConnectionsWhereTlsBeginsWithTheFirstByte) {
  bool isEncrypted = false;
  const auto look = [&isEncrypted](SSL* data, int /*control*/) { isEncrypted = SSL_is_init_finished(data) == 1; };
  EXPECT_EQ(outcome(look, TlsMode::Implicit), "ok");
  EXPECT_TRUE(isEncrypted);
}

class ACertifiedConnection : public test::TransferFixture {};

TEST_F(ACertifiedConnection, ResumesTheOneSessionItWasOfferedWithEachFile) {
  for (const bool isNewestAlone : {false, true}) {
    std::atomic<int> resumed = 0;
    const auto look = [&resumed](SSL* data, int /*control*/) { resumed += SSL_session_reused(data); };
    CertifiedFtpServer server(look, false, isNewestAlone);
    TransferEvents events;
    events.trust = [](const UntrustedServer& /*server*/) { return true; };
    transfer->listen(std::move(events));
    ConnectionSettings settings = settingsOf(server);
    settings.tls = TlsMode::Required;
    ASSERT_EQ(enter(settings), "ok");
    for (const char* name : {"a", "b", "c"}) {
      EXPECT_EQ(textOf(transfer->upload(localFile("a", "bytes"), name, TransferMode::Binary)), "ok");
    }
    transfer->quit();
    EXPECT_EQ(resumed, 3) << isNewestAlone;
  }
}

TEST_F(TheEndOfACertifiedUpload, IsNotPutOffByAServerThatKeepsTheConnection) {
  const auto keep = [](SSL* /*data*/, int control) {
    pollfd untilLeft{control, POLLIN, 0};
    ::poll(&untilLeft, 1, -1);
  };
  EXPECT_EQ(outcome(keep), "ok");
}

}  // namespace
}  // namespace kv
