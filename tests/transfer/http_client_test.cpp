// HTTP requests against a server of the test's own.
#include "platform/transfer/http_client.h"

#include <gtest/gtest.h>

#include "support/scripted_http_server.h"

namespace kv {
namespace {

using test::ScriptedHttpServer;

class AnHttpRequest : public ::testing::Test {
 protected:
  Result<HttpResponse> send(const HttpRequest& request) {
    return client->send(request, [this] { return ++yields < cancelAt || cancelAt == 0; });
  }
  std::unique_ptr<HttpClient> client = makeHttpClient();
  int yields = 0;
  int cancelAt = 0;
};

TEST_F(AnHttpRequest, PostsABodyAndReadsALongAnswerWhole) {
  ScriptedHttpServer server({"HTTP/1.1 200 OK\r\nContent-Length: 300000\r\n\r\n" + std::string(300000, 'x')});
  const auto answer = send({.url = server.url("/updatedb.php"),
                            .method = "POST",
                            .body = "rnd=abc&sec=def",
                            .headers = {"Content-Type: application/x-www-form-urlencoded"}});
  ASSERT_TRUE(answer) << answer.error().what;
  EXPECT_EQ(answer->status, 200);
  EXPECT_EQ(answer->body, std::string(300000, 'x'));
  const std::string asked = server.requests().at(0);
  EXPECT_EQ(asked.substr(0, 30), "POST /updatedb.php HTTP/1.1\r\nH");
  EXPECT_NE(asked.find("Content-Type: application/x-www-form-urlencoded\r\n"), std::string::npos);
  EXPECT_EQ(asked.find("Expect:"), std::string::npos) << "no waiting for a word of the server";
  EXPECT_TRUE(asked.ends_with("\r\n\r\nrnd=abc&sec=def"));
}

TEST_F(AnHttpRequest, TakesAnyStatusForAnAnswer) {
  ScriptedHttpServer server({"HTTP/1.1 500 Errore\r\nContent-Length: 3\r\n\r\nahi"});
  const auto answer = send({.url = server.url("/")});
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 500);
  EXPECT_EQ(answer->body, "ahi");
}

TEST_F(AnHttpRequest, StaysAPostWhenItIsSentElsewhere) {
  ScriptedHttpServer target({"HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nOK"});
  ScriptedHttpServer server(
      {"HTTP/1.1 301 Moved\r\nLocation: " + target.url("/nuovo") + "\r\nContent-Length: 0\r\n\r\n"});
  const auto answer = send({.url = server.url("/"), .method = "POST", .body = "a=b"});
  ASSERT_TRUE(answer) << answer.error().what;
  EXPECT_EQ(answer->body, "OK");
  EXPECT_TRUE(target.requests().at(0).starts_with("POST /nuovo"));
}

std::string movedTo(const std::string& address) {
  return "HTTP/1.1 302 Found\r\nLocation: " + address + "\r\nContent-Length: 0\r\n\r\n";
}

TEST_F(AnHttpRequest, KeepsTheBodyOfAPostFromAnyOtherHost) {
  ScriptedHttpServer thief({"HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nOK"});
  std::string elsewhere = thief.url("/raccolta");
  elsewhere.replace(elsewhere.find("127.0.0.1"), 9, "localhost");
  for (const std::string& next : {elsewhere, std::string("file:///etc/hostname"), std::string("http:///senza-host"),
                                  std::string("http://127.0.0.1.altrove.it/")}) {
    ScriptedHttpServer server({movedTo(next)});
    const auto answer = send({.url = server.url("/"), .method = "POST", .body = "sec=segreto"});
    ASSERT_FALSE(answer) << next;
    EXPECT_EQ(answer.error().kind, ErrorKind::Other);
  }
  EXPECT_TRUE(thief.requests().empty());
  ScriptedHttpServer server({movedTo(elsewhere)});
  EXPECT_EQ(send({.url = server.url("/"), .method = "POST", .body = "sec=segreto"}).error().what,
            "il sito rimanda a " + elsewhere + ": correggere l'URL del sito");
}

TEST_F(AnHttpRequest, FollowsAGetToAnotherHost) {
  ScriptedHttpServer target({"HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nOK"});
  std::string elsewhere = target.url("/");
  elsewhere.replace(elsewhere.find("127.0.0.1"), 9, "localhost");
  ScriptedHttpServer server({movedTo(elsewhere)});
  const auto answer = send({.url = server.url("/")});
  ASSERT_TRUE(answer) << answer.error().what;
  EXPECT_EQ(answer->body, "OK");
}

TEST_F(AnHttpRequest, EndsInACircleOfRedirections) {
  for (const char* method : {"GET", "POST"}) {
    ScriptedHttpServer server(std::vector<std::string>(20, movedTo("/di-nuovo")));
    const auto answer = send({.url = server.url("/"), .method = method, .body = "a=b"});
    ASSERT_FALSE(answer) << method;
    EXPECT_EQ(server.requests().size(), 11U) << "the first one and ten that follow";
  }
}

TEST_F(AnHttpRequest, LeavesAnAnswerOfMoreThanItCanHold) {
  ScriptedHttpServer server({"HTTP/1.1 200 OK\r\n\r\n" + std::string((std::size_t{64} << 20U) + 1, 'x')});
  const auto answer = send({.url = server.url("/")});
  ASSERT_FALSE(answer);
  EXPECT_EQ(answer.error().kind, ErrorKind::Malformed);
}

TEST_F(AnHttpRequest, FetchesNoMoreThanIsEnough) {
  ScriptedHttpServer server({"HTTP/1.1 200 OK\r\nContent-Length: 3000000\r\n\r\n" + std::string(3'000'000, 'x'),
                             "HTTP/1.1 206 Part\r\nContent-Length: 3\r\n\r\nabc"});
  for (const std::string& wanted : {std::string(10, 'x'), std::string("abc")}) {
    const auto answer = send({.url = server.url("/"), .enough = 10});
    ASSERT_TRUE(answer) << answer.error().what;
    EXPECT_EQ(answer->body, wanted);
  }
}

TEST_F(AnHttpRequest, DoesNotUnpackWhatItDidNotAskFor) {
  // Twenty zero bytes, packed; a bomb would be a gigabyte of them.
  const std::string packed("\x1f\x8b\x08\0\0\0\0\0\x02\x03\x63\x60\xc0\x04\0\x8d\x9b\xd5\x0f\x14\0\0\0", 23);
  ScriptedHttpServer server({"HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 23\r\n\r\n" + packed});
  const auto answer = send({.url = server.url("/")});
  ASSERT_TRUE(answer) << answer.error().what;
  EXPECT_EQ(answer->body, packed);
  EXPECT_EQ(server.requests().at(0).find("Accept-Encoding"), std::string::npos);
}

TEST_F(AnHttpRequest, CanBeCancelledWhileTheServerSaysNothing) {
  ScriptedHttpServer server({""});
  cancelAt = 3;
  const auto answer = send({.url = server.url("/")});
  ASSERT_FALSE(answer);
  EXPECT_EQ(answer.error().kind, ErrorKind::Cancelled);
}

TEST_F(AnHttpRequest, EndsWithItsTime) {
  ScriptedHttpServer server({""});
  const auto answer = send({.url = server.url("/"), .timeoutSeconds = 1});
  ASSERT_FALSE(answer);
  EXPECT_EQ(answer.error().kind, ErrorKind::Other);
  EXPECT_GT(yields, 5) << "events go on meanwhile";
}

TEST_F(AnHttpRequest, FailsWithoutAServerAndForOtherProtocols) {
  for (const char* url : {"http://127.0.0.1:1/", "file:///etc/hostname", "ftp://127.0.0.1/"}) {
    const auto answer = send({.url = url});
    ASSERT_FALSE(answer) << url;
    EXPECT_NE(answer.error().what, "");
  }
}

}  // namespace
}  // namespace kv
