#include "platform/transfer/http_client.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t longestBody = std::size_t{64} * 1024 * 1024;
constexpr int stepMilliseconds = 40;
constexpr long mostRedirections = 10;
constexpr long connectSeconds = 60;
constexpr std::size_t longestAddress = 200;  // characters of one that a message shows

using Easy = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;
using Multi = std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)>;
using Lines = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

/// The answer as it grows, up to `most` bytes.
struct Answer {
  std::string body;
  std::size_t most = longestBody;
  bool hasMore = false;
};

std::size_t receivePiece(char* bytes, std::size_t size, std::size_t count, void* target) {
  auto* const answer = static_cast<Answer*>(target);
  const std::size_t room = answer->most - answer->body.size();
  answer->hasMore = size * count > room;
  answer->body.append(bytes, std::min(size * count, room));
  return answer->hasMore ? 0 : size * count;  // with 0 the library ends the request
}

Lines headerLines(const HttpRequest& request) {
  curl_slist* first = nullptr;
  for (const std::string& line : request.headers) first = curl_slist_append(first, line.c_str());
  // Without it the library waits a second for a word of the server before it sends a longer body.
  first = curl_slist_append(first, "Expect:");
  return {first, &curl_slist_free_all};
}

void setRequest(CURL* easy, const HttpRequest& request, Answer& answer) {
  curl_easy_setopt(easy, CURLOPT_URL, request.url.c_str());
  curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(easy, CURLOPT_TIMEOUT, static_cast<long>(request.timeoutSeconds));
  curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, connectSeconds);
  // Where a POST is sent on to is looked at first.
  curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, request.method == "POST" ? 0L : 1L);
  curl_easy_setopt(easy, CURLOPT_MAXREDIRS, mostRedirections);
  curl_easy_setopt(easy, CURLOPT_TCP_KEEPALIVE, 1L);
  curl_easy_setopt(easy, CURLOPT_USERAGENT, "Korvane/" KORVANE_VERSION);
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &receivePiece);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, static_cast<void*>(&answer));
  // As OpenSSL reads it for FTP; this library would know its own file of trusted certificates alone.
  if (const char* const trusted = std::getenv("SSL_CERT_FILE"); trusted != nullptr && *trusted != '\0') {
    curl_easy_setopt(easy, CURLOPT_CAINFO, trusted);
  }
  if (request.method == "POST") {
    curl_easy_setopt(easy, CURLOPT_POST, 1L);
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, request.body.c_str());
  }
}

tl::unexpected<Error> libraryFailure(const HttpRequest& request, const std::string& reason) {
  return fail(ErrorKind::Other, request.url, reason);
}

/// Pumps the request until it is over. The library's result of it; Cancelled.
Result<CURLcode> pump(CURLM* multi, const HttpRequest& request, const std::function<bool()>& yield) {
  for (;;) {
    int running = 0;
    if (const CURLMcode failed = curl_multi_perform(multi, &running); failed != CURLM_OK) {
      return libraryFailure(request, curl_multi_strerror(failed));
    }
    int left = 0;
    for (const CURLMsg* one = nullptr; (one = curl_multi_info_read(multi, &left)) != nullptr;) {
      if (one->msg == CURLMSG_DONE) return one->data.result;
    }
    if (yield && !yield()) return fail(ErrorKind::Cancelled, request.url, "cancelled");
    curl_multi_poll(multi, nullptr, 0, stepMilliseconds, nullptr);
  }
}

/// Scheme and host of an address, in lower case.
struct Target {
  std::string scheme, host;
};
Target targetOf(const std::string& url) {
  const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parts(curl_url(), &curl_url_cleanup);
  if (!parts || curl_url_set(parts.get(), CURLUPART_URL, url.c_str(), 0) != CURLUE_OK) return {};
  const auto part = [&parts](CURLUPart which) {
    char* text = nullptr;
    if (curl_url_get(parts.get(), which, &text, 0) != CURLUE_OK) return std::string();
    const std::unique_ptr<char, decltype(&curl_free)> owner(text, &curl_free);
    return foldCase(text);
  };
  return {part(CURLUPART_SCHEME), part(CURLUPART_HOST)};
}

/// Whether a POST to one address may be sent on to another one.
bool maySendOn(const std::string& from, const std::string& to) {
  const Target first = targetOf(from), second = targetOf(to);
  const auto isWorldWide = [](const std::string& host, const std::string& other) { return host == "www." + other; };
  const bool isSameHost =
      first.host == second.host || isWorldWide(first.host, second.host) || isWorldWide(second.host, first.host);
  return isSameHost && !first.host.empty() && (first.scheme != "https" || second.scheme == "https");
}

/// What came of one address.
struct Exchange {
  HttpResponse response;
  std::string next;  // where a POST is to go instead; empty: this is the answer
};

class CurlClient final : public HttpClient {
 public:
  CurlClient() { curl_global_init(CURL_GLOBAL_DEFAULT); }
  CurlClient(const CurlClient&) = delete;
  CurlClient& operator=(const CurlClient&) = delete;
  ~CurlClient() override { curl_global_cleanup(); }

  Result<HttpResponse> send(const HttpRequest& request, const std::function<bool()>& yield) override {
    HttpRequest now = request;
    for (long followed = 0; followed <= mostRedirections; ++followed) {
      auto exchange = ask(now, yield);
      if (!exchange) return fail(exchange.error());
      if (exchange->next.empty()) return std::move(exchange->response);
      if (!maySendOn(now.url, exchange->next)) {
        const std::string_view shown = firstCharacters(exchange->next, longestAddress);
        return libraryFailure(request, "il sito rimanda a " + std::string(shown) + ": correggere l'URL del sito");
      }
      now.url = std::move(exchange->next);
    }
    return libraryFailure(request, "il sito rimanda troppe volte a un altro indirizzo");
  }

 private:
  static Result<Exchange> ask(const HttpRequest& request, const std::function<bool()>& yield) {
    const Multi multi(curl_multi_init(), &curl_multi_cleanup);
    const Easy easy(curl_easy_init(), &curl_easy_cleanup);
    if (!multi || !easy) return libraryFailure(request, "out of memory");
    Answer answer;
    if (request.enough > 0) answer.most = std::min(request.enough, longestBody);
    std::array<char, CURL_ERROR_SIZE> reason{};
    const Lines headers = headerLines(request);
    setRequest(easy.get(), request, answer);
    curl_easy_setopt(easy.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(easy.get(), CURLOPT_ERRORBUFFER, reason.data());
    curl_multi_add_handle(multi.get(), easy.get());
    const auto result = pump(multi.get(), request, yield);
    long status = 0;
    const char* next = nullptr;
    curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &status);
    curl_easy_getinfo(easy.get(), CURLINFO_REDIRECT_URL, &next);
    Exchange exchange{{static_cast<int>(status), {}}, next != nullptr ? next : ""};
    curl_multi_remove_handle(multi.get(), easy.get());
    if (!result) return fail(result.error());
    if (answer.hasMore && request.enough == 0) {
      return fail(ErrorKind::Malformed, request.url, "the answer is too long");
    }
    if (*result != CURLE_OK && !answer.hasMore) {
      return libraryFailure(request, reason[0] != '\0' ? reason.data() : curl_easy_strerror(*result));
    }
    exchange.response.body = std::move(answer.body);
    return exchange;
  }
};

}  // namespace

std::unique_ptr<HttpClient> makeHttpClient() { return std::make_unique<CurlClient>(); }

}  // namespace kv
