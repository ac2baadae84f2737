#pragma once
// A host that answers HTTP requests from a list and keeps what it was asked.

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/transfer/http_client.h"

namespace kv::test {

class AnsweringHost final : public HttpClient {
 public:
  /// Bodies of the next POSTs; after the last one, "OK".
  std::deque<std::string> answers;
  /// Answers of GET requests by URL; others are 404.
  std::map<std::string, HttpResponse> pages;
  /// The request, from 1, that ends with this failure instead; 0 none.
  int failing = 0;
  Error failure{ErrorKind::Other, "", "Could not resolve host", 6};
  /// Called at each request, before it is answered.
  std::function<void(const HttpRequest&)> onRequest;

  std::vector<HttpRequest> requests;

  Result<HttpResponse> send(const HttpRequest& request, const std::function<bool()>& yield) override {
    requests.push_back(request);
    if (onRequest) onRequest(request);
    if (yield && !yield()) return fail(ErrorKind::Cancelled, request.url, "cancelled");
    if (static_cast<int>(requests.size()) == failing) return fail(failure);
    if (request.method == "POST") return HttpResponse{200, nextAnswer()};
    const auto page = pages.find(request.url);
    return page == pages.end() ? HttpResponse{404, "not here"} : page->second;
  }
  /// "METHOD URL" of each request, one a line.
  std::string asked() const {
    std::string text;
    for (const HttpRequest& request : requests) text += request.method + " " + request.url + "\n";
    return text;
  }

 private:
  std::string nextAnswer() {
    if (answers.empty()) return "OK";
    std::string answer = answers.front();
    answers.pop_front();
    return answer;
  }
};

}  // namespace kv::test
