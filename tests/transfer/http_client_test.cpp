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
