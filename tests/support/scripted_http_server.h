#pragma once
// An HTTP server on 127.0.0.1 that answers with given bytes, in a thread of its own. For the client that speaks HTTP
// itself; what uses a client takes an AnsweringHost.

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/local_listener.h"

namespace kv::test {

class ScriptedHttpServer {
 public:
  /// answers: whole answers to the requests in turn, each on a connection of its own; an empty one is never given.
  explicit ScriptedHttpServer(std::vector<std::string> answers) : answers_(std::move(answers)) {
    thread_ = std::thread([this] { serve(); });
  }
  ScriptedHttpServer(const ScriptedHttpServer&) = delete;
  ScriptedHttpServer& operator=(const ScriptedHttpServer&) = delete;
  ~ScriptedHttpServer() {
    ending_ = true;
    thread_.join();
  }
  std::string url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(listener_.port()) + path;
  }
  /// The requests as they came, bodies included.
  std::vector<std::string> requests() const {
    const std::lock_guard lock(guard_);
    return requests_;
  }

 private:
  bool waits(int descriptor) const {
    pollfd one{descriptor, POLLIN, 0};
    while (!ending_) {
      if (::poll(&one, 1, 5) > 0) return true;
    }
    return false;
  }
  static bool isWhole(const std::string& request) {
    const std::size_t end = request.find("\r\n\r\n");
    if (end == std::string::npos) return false;
    const std::size_t length = request.find("Content-Length: ");
    const int body = length == std::string::npos ? 0 : std::atoi(request.c_str() + length + 16);
    return request.size() >= end + 4 + static_cast<std::size_t>(body);
  }
  void serve() {
    for (const std::string& answer : answers_) {
      if (!waits(listener_.descriptor())) return;
      const int client = listener_.accept();
      std::string request;
      std::array<char, 4096> piece{};
      while (!isWhole(request) && waits(client)) {
        const ssize_t count = ::recv(client, piece.data(), piece.size(), 0);
        if (count <= 0) break;
        request.append(piece.data(), static_cast<std::size_t>(count));
      }
      {
        const std::lock_guard lock(guard_);
        requests_.push_back(request);
      }
      ::send(client, answer.data(), answer.size(), MSG_NOSIGNAL);
      if (answer.empty()) waits(client);
      ::close(client);
    }
  }

  std::vector<std::string> answers_;
  LocalListener listener_;
  std::atomic<bool> ending_{false};
  mutable std::mutex guard_;
  std::vector<std::string> requests_;
  std::thread thread_;
};

}  // namespace kv::test
