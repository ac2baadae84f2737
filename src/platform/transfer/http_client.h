#pragma once
// One HTTP request at a time, without a thread: the caller processes events while the server thinks.

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// What is asked of a server.
struct HttpRequest {
  std::string url;                     ///< with "http://" or "https://"
  std::string method = "GET";          ///< "GET" or "POST"
  std::string body{};                  ///< of a POST
  std::vector<std::string> headers{};  ///< whole lines, "Content-Type: text/plain"
  int timeoutSeconds = 28800;          ///< for the whole request, between two redirections
  std::size_t enough = 0;              ///< bytes of the answer that will do, the rest isn't fetched; 0: all of it
};

/// The status codes that mean something here. Source: RFC 9110, section 15; RFC 6585 (429).
namespace http {
constexpr int ok = 200, forbidden = 403, notFound = 404, tooManyRequests = 429, unavailable = 503;
}

/// What it answers.
struct HttpResponse {
  int status = 0;    ///< 200, 404 and so on
  std::string body;  ///< bytes as they came
};

/// Who sends requests. Tests answer them from a list.
class HttpClient {
 public:
  virtual ~HttpClient() = default;
  /// Sends one request and waits for the whole answer. `yield` is called at least every 50 ms; false cancels.
  /// A status of any number is an answer. Cancelled; Malformed for a body of more than 64 MiB; Other, with the
  /// library's text, when no answer came: no such host, nobody there, a certificate that doesn't pass, time is over.
  /// Redirections are followed, ten at most. A POST stays one, and since its body is for one host alone it is sent on
  /// to that host only ("www." before its name makes no difference), and never from HTTPS to HTTP; else Other.
  virtual Result<HttpResponse> send(const HttpRequest& request, const std::function<bool()>& yield) = 0;
};

/// The client that speaks with servers. Certificates are verified against those the system trusts.
std::unique_ptr<HttpClient> makeHttpClient();

}  // namespace kv
