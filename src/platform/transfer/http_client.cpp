#include "platform/transfer/http_client.h"

#include <curl/curl.h>

#include <array>
#include <string_view>

namespace kv {
namespace {

constexpr std::size_t longestBody = std::size_t{64} * 1024 * 1024;
constexpr int stepMilliseconds = 40;
constexpr long mostRedirections = 10;
constexpr long connectSeconds = 60;

using Easy = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;
using Multi = std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)>;
using Lines = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

/// The answer as it grows.
struct Answer {
  std::string body;
  bool tooLong = false;
};

std::size_t receivePiece(char* bytes, std::size_t size, std::size_t count, void* target) {
  auto* const answer = static_cast<Answer*>(target);
  answer->tooLong = answer->body.size() + size * count > longestBody;
  if (answer->tooLong) return 0;  // the library ends the request
  answer->body.append(bytes, size * count);
  return size * count;
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
  curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(easy, CURLOPT_MAXREDIRS, mostRedirections);
  curl_easy_setopt(easy, CURLOPT_POSTREDIR, static_cast<long>(CURL_REDIR_POST_ALL));
  curl_easy_setopt(easy, CURLOPT_TCP_KEEPALIVE, 1L);
  curl_easy_setopt(easy, CURLOPT_USERAGENT, "Korvane/" KORVANE_VERSION);
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &receivePiece);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, static_cast<void*>(&answer));
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

class CurlClient final : public HttpClient {
 public:
  CurlClient() { curl_global_init(CURL_GLOBAL_DEFAULT); }
  CurlClient(const CurlClient&) = delete;
  CurlClient& operator=(const CurlClient&) = delete;
  ~CurlClient() override { curl_global_cleanup(); }

  Result<HttpResponse> send(const HttpRequest& request, const std::function<bool()>& yield) override {
    const Multi multi(curl_multi_init(), &curl_multi_cleanup);
    const Easy easy(curl_easy_init(), &curl_easy_cleanup);
    if (!multi || !easy) return libraryFailure(request, "out of memory");
    Answer answer;
    std::array<char, CURL_ERROR_SIZE> reason{};
    const Lines headers = headerLines(request);
    setRequest(easy.get(), request, answer);
    curl_easy_setopt(easy.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(easy.get(), CURLOPT_ERRORBUFFER, reason.data());
    curl_multi_add_handle(multi.get(), easy.get());
    const auto result = pump(multi.get(), request, yield);
    long status = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &status);
    curl_multi_remove_handle(multi.get(), easy.get());
    if (!result) return fail(result.error());
    if (answer.tooLong) return fail(ErrorKind::Malformed, request.url, "the answer is too long");
    if (*result != CURLE_OK) {
      return libraryFailure(request, reason[0] != '\0' ? reason.data() : curl_easy_strerror(*result));
    }
    return HttpResponse{static_cast<int>(status), std::move(answer.body)};
  }
};

}  // namespace

std::unique_ptr<HttpClient> makeHttpClient() { return std::make_unique<CurlClient>(); }

}  // namespace kv
