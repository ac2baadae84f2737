#pragma once
// A SOCKS proxy on 127.0.0.1 that a test directs, in a thread of its own: it reads a request, answers it, and passes
// the bytes of the connection on.

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/local_listener.h"

namespace kv::test {

class SocksRelay {
 public:
  /// version: 4 or 5. refusal: the code with which every request is answered; 0 lets it through. user: empty asks for
  /// none.
  explicit SocksRelay(int version, int refusal = 0, std::string user = {}, std::string password = {})
      : version_(version), refusal_(refusal), user_(std::move(user)), password_(std::move(password)) {
    thread_ = std::thread([this] { serve(); });
  }
  SocksRelay(const SocksRelay&) = delete;
  SocksRelay& operator=(const SocksRelay&) = delete;
  ~SocksRelay() {
    ending_ = true;
    thread_.join();
    for (const auto& [one, other] : pairs_) {
      ::close(one);
      ::close(other);
    }
  }
  std::string port() const { return std::to_string(listener_.port()); }
  /// "host:port" of each request.
  std::vector<std::string> asked() const {
    const std::lock_guard lock(guard_);
    return asked_;
  }

 private:
  static std::string take(int from, std::size_t count) {
    std::string bytes(count, '\0');
    std::size_t filled = 0;
    while (filled < count) {
      const ssize_t read = ::recv(from, bytes.data() + filled, count - filled, 0);
      if (read <= 0) return {};
      filled += static_cast<std::size_t>(read);
    }
    return bytes;
  }
  static std::string takeText(int from) {
    std::string text;
    for (std::string one = take(from, 1); !one.empty() && one[0] != '\0'; one = take(from, 1)) text += one;
    return text;
  }
  static int number(const std::string& bytes) {
    return static_cast<unsigned char>(bytes[0]) * 256 + static_cast<unsigned char>(bytes[1]);
  }
  static void put(int to, const std::string& bytes) { ::send(to, bytes.data(), bytes.size(), MSG_NOSIGNAL); }

  void serve() {
    while (!ending_) {
      std::vector<pollfd> all{{listener_.descriptor(), POLLIN, 0}};
      for (const auto& [one, other] : pairs_) {
        all.push_back({one, POLLIN, 0});
        all.push_back({other, POLLIN, 0});
      }
      if (::poll(all.data(), all.size(), 5) <= 0) continue;
      for (std::size_t i = pairs_.size(); i-- > 0;) {
        const bool open = pass(all[1 + 2 * i], pairs_[i].second) && pass(all[2 + 2 * i], pairs_[i].first);
        if (open) continue;
        ::close(pairs_[i].first);
        ::close(pairs_[i].second);
        pairs_.erase(pairs_.begin() + static_cast<std::ptrdiff_t>(i));
      }
      if (all[0].revents != 0) greet(listener_.accept());
    }
  }
  static bool pass(const pollfd& from, int to) {
    if (from.revents == 0) return true;
    std::array<char, 65536> piece{};
    const ssize_t count = ::recv(from.fd, piece.data(), piece.size(), 0);
    if (count <= 0) return false;
    put(to, {piece.data(), static_cast<std::size_t>(count)});
    return true;
  }
  void greet(int client) {
    const int port = version_ == 4 ? readVersion4(client) : readVersion5(client);
    const bool passes = port > 0 && refusal_ == 0;
    if (port > 0) answer(client);
    if (!passes) {
      ::close(client);
      return;
    }
    const int server = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = localAddress(port);
    ::connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    pairs_.emplace_back(client, server);
  }
  void answer(int client) const {
    if (version_ == 4)
      return put(client, std::string(1, '\0') + static_cast<char>(90 + refusal_) + std::string(6, '\0'));
    put(client, std::string("\x05", 1) + static_cast<char>(refusal_) + std::string("\0\3\1x\0\0", 6));
  }
  void note(const std::string& host, int port) {
    const std::lock_guard lock(guard_);
    asked_.push_back(host + ":" + std::to_string(port));
  }
  int readVersion4(int client) {
    const std::string head = take(client, 8);
    const std::string user = takeText(client);
    const bool named = head.substr(4, 3) == std::string(3, '\0');
    const std::string host = named ? takeText(client) : "number";
    const int port = number(head.substr(2));
    note(user + "@" + host, port);
    return port;
  }
  int readVersion5(int client) {
    const std::string head = take(client, 2);
    const std::string methods = take(client, static_cast<unsigned char>(head[1]));
    if (!user_.empty()) {
      const bool offers = methods.find('\2') != std::string::npos;
      put(client, offers ? std::string("\5\2") : std::string("\5\xff"));
      if (!offers || !proves(client)) return 0;
    } else {
      put(client, std::string("\5\0", 2));
    }
    const std::string request = take(client, 4);
    std::string host = "number";
    if (request[3] == '\3') {
      host = take(client, static_cast<unsigned char>(take(client, 1)[0]));
    } else {
      take(client, 4);
    }
    const int port = number(take(client, 2));
    note(host, port);
    return port;
  }
  bool proves(int client) const {
    const std::string user = take(client, static_cast<unsigned char>(take(client, 2)[1]));
    const std::string password = take(client, static_cast<unsigned char>(take(client, 1)[0]));
    const bool known = user == user_ && password == password_;
    put(client, known ? std::string("\1\0", 2) : std::string("\1\1"));
    return known;
  }

  int version_;
  int refusal_;
  std::string user_, password_;
  LocalListener listener_;
  std::atomic<bool> ending_{false};
  mutable std::mutex guard_;
  std::vector<std::string> asked_;
  std::vector<std::pair<int, int>> pairs_;
  std::thread thread_;
};

}  // namespace kv::test
