#pragma once
// One session of the scripted FTP server: commands, data connections and faults. For scripted_ftp_server.cpp alone.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <utility>

#include "support/local_listener.h"
#include "support/scripted_ftp_server.h"
#include "support/tls_server.h"

namespace kv::test {
namespace ftp {

inline constexpr int tick = 5;          // milliseconds between two looks at the end of the test
inline constexpr int dataWait = 20000;  // milliseconds for a data connection to come about

inline std::string joined(const std::string& folder, const std::string& name) {
  if (name.starts_with('/')) return name.size() > 1 && name.ends_with('/') ? name.substr(0, name.size() - 1) : name;
  return folder == "/" ? "/" + name : folder + "/" + name;
}

inline std::string above(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

}  // namespace ftp

/// One session with one client.
class ScriptedFtpServer::Talk {
 public:
  Talk(ScriptedFtpServer& server, int control) : server_(server), control_(control), folder_(server.manners_.home) {
    hostKnown_ = !server_.manners_.wantsHost;
    proxyPassed_ = server_.manners_.proxyUser.empty();
  }
  Talk(const Talk&) = delete;
  Talk& operator=(const Talk&) = delete;
  ~Talk() {
    closeData();
    SSL_free(tls_);
    ::close(control_);
  }

  void run() {
    if (!perform("", "", [this] { say("220 pronto"); })) return;
    while (const auto line = readLine()) {
      const std::size_t space = line->find(' ');
      const std::string verb = line->substr(0, space);
      const std::string rest = space == std::string::npos ? "" : line->substr(space + 1);
      {
        const std::lock_guard lock(server_.guard_);
        server_.commands_.push_back(*line);
      }
      if (!perform(verb, rest, [&] { answer(verb, rest); }) || verb == "QUIT") return;
    }
  }

 private:
  /// Runs one command, or its fault. False when the session is over.
  template <class Usual>
  bool perform(const std::string& verb, const std::string& /*rest*/, Usual usual) {
    fault_ = std::nullopt;
    {
      const std::lock_guard lock(server_.guard_);
      if (const FtpFault* found = server_.faultAt(verb)) fault_ = *found;
    }
    if (!fault_) {
      usual();
      return true;
    }
    switch (fault_->kind) {
      case FtpFault::Kind::Reply:
        sendAll(fault_->reply);
        return true;
      case FtpFault::Kind::Missing:
        while (readLine()) {
        }
        return false;
      case FtpFault::Kind::Close:
        return false;
      case FtpFault::Kind::LateReply:
        std::this_thread::sleep_for(std::chrono::milliseconds(fault_->milliseconds));
        break;
      default:
        break;
    }
    usual();
    return true;
  }

  void answer(const std::string& verb, const std::string& rest) {
    if (verb == "USER") return user(rest);
    if (verb == "PASS") return password(rest);
    if (verb == "OPEN" || (verb == "SITE" && !hostKnown_)) return proxyHost();
    if (verb == "QUIT") return say("221 arrivederci");
    if (verb == "FEAT" && server_.manners_.asksUtf8) return sendAll("211-Features\r\n UTF8\r\n211 End\r\n");
    if (verb == "AUTH" && server_.manners_.tls != nullptr) return encrypt();
    if (!loggedIn_ && verb != "AUTH" && verb != "FEAT") return say("530 prima il login");
    if (verb == "PWD") return say("257 \"" + folder_ + "\"");
    if (verb == "CWD") return enter(ftp::joined(folder_, rest));
    if (verb == "CDUP") return enter(ftp::above(folder_));
    if (verb == "TYPE" || verb == "OPTS") return say("200 bene");
    if (verb == "SITE" || verb == "NOOP" || verb == "PBSZ") return say("200 bene");
    if (verb == "PROT") return say(rest == "C" ? "200 bene" : "536 solo in chiaro");
    if (verb == "EPSV" && server_.manners_.extendedPassive) return passive(true);
    if (verb == "PASV") return passive(false);
    if (verb == "PORT") return active(rest);
    files(verb, rest);
  }

  void files(const std::string& verb, const std::string& rest) {
    const std::string path = ftp::joined(folder_, rest);
    if (verb == "STOR" || verb == "APPE") return store(path, verb == "APPE");
    if (verb == "LIST") return list();
    const std::lock_guard lock(server_.guard_);
    if (verb == "SIZE" && server_.files_.count(path) > 0) {
      return say("213 " + std::to_string(server_.files_[path].size()));
    }
    if (verb == "MDTM") return say(server_.files_.count(path) > 0 ? "213 20260101120000" : "550 nessun file");
    if (verb == "DELE") return say(server_.files_.erase(path) > 0 ? "250 cancellato" : "550 nessun file");
    if (verb == "MKD") {
      const bool fits = server_.folders_.count(ftp::above(path)) > 0 && server_.folders_.insert(path).second;
      return say(fits ? "257 \"" + path + "\" creata" : "550 impossibile");
    }
    if (verb == "RNFR") {
      renamed_ = path;
      return say(server_.files_.count(path) > 0 ? "350 e poi" : "550 nessun file");
    }
    if (verb == "RNTO") {
      if (!server_.manners_.renamesOver && server_.files_.count(path) > 0) return say("550 esiste");
      server_.files_[path] = std::exchange(server_.files_[renamed_], {});
      server_.files_.erase(renamed_);
      return say("250 rinominato");
    }
    say("502 comando sconosciuto");
  }

  void user(const std::string& name) {
    const FtpManners& manners = server_.manners_;
    std::string given = name;
    if (proxyPassed_ && !hostKnown_ && given.find('@') != std::string::npos) {
      given = given.substr(0, given.find('@'));
      hostKnown_ = true;
    }
    user_ = given;
    const std::string& wanted = proxyPassed_ ? manners.user : manners.proxyUser;
    say(user_ == wanted ? "331 e la password" : "530 utente sconosciuto");
  }

  void password(const std::string& given) {
    const FtpManners& manners = server_.manners_;
    if (!proxyPassed_) {
      proxyPassed_ = user_ == manners.proxyUser && given == manners.proxyPassword;
      return say(proxyPassed_ ? "230 proxy" : "530 proxy: password errata");
    }
    loggedIn_ = hostKnown_ && user_ == manners.user && given == manners.password;
    say(loggedIn_ ? "230 benvenuto" : "530 password errata");
  }

  void proxyHost() {
    hostKnown_ = proxyPassed_;
    say(hostKnown_ ? "200 collegato" : "530 prima il login");
  }

  void enter(const std::string& path) {
    const std::lock_guard lock(server_.guard_);
    const std::string wanted = path.ends_with("/.") ? folder_ : path;
    if (server_.folders_.count(wanted) == 0) return say("550 nessuna cartella " + path);
    folder_ = wanted;
    say("250 " + folder_);
  }

  void passive(bool extended) {
    closeData();
    int port = 0;
    dataListener_ = listenLocally(port);
    if (extended) return say("229 Entering Extended Passive Mode (|||" + std::to_string(port) + "|)");
    // An address of another machine, which nobody may connect to.
    say("227 Entering Passive Mode (10,1,2,3," + std::to_string(port / 256) + "," + std::to_string(port % 256) + ")");
  }

  void active(const std::string& numbers) {
    closeData();
    const std::size_t last = numbers.rfind(',');
    const std::size_t before = numbers.rfind(',', last - 1);
    activePort_ = std::atoi(numbers.substr(before + 1).c_str()) * 256 + std::atoi(numbers.substr(last + 1).c_str());
    say("200 bene");
  }

  int openData() {
    if (dataListener_ >= 0) {
      pollfd one{dataListener_, POLLIN, 0};
      return ::poll(&one, 1, ftp::dataWait) > 0 ? ::accept(dataListener_, nullptr, nullptr) : -1;
    }
    const int data = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = localAddress(activePort_);
    ::connect(data, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return data;
  }

  void store(const std::string& path, bool appends) {
    if (hasFault(FtpFault::Kind::RefuseData)) {
      closeData();
      say("425 nessuna connessione dati");
      return;
    }
    say("150 avanti");
    const int data = openData();
    std::string bytes;
    std::array<char, 16384> piece{};
    for (;;) {
      if (hasFault(FtpFault::Kind::StallData) && bytes.size() >= fault_->bytes) waitForLeave();
      if (hasFault(FtpFault::Kind::CutData) && bytes.size() >= fault_->bytes) return cut(data, path, bytes);
      const ssize_t count = server_.ending_ ? 0 : ::recv(data, piece.data(), piece.size(), 0);
      if (count <= 0) break;
      bytes.append(piece.data(), static_cast<std::size_t>(count));
    }
    ::close(data);
    closeData();
    {
      const std::lock_guard lock(server_.guard_);
      server_.files_[path] = (appends ? server_.files_[path] : "") + bytes;
    }
    say("226 ricevuto");
  }

  void cut(int data, const std::string& path, const std::string& bytes) {
    // With this option closing resets the connection.
    const linger reset{1, 0};
    ::setsockopt(data, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    ::close(data);
    closeData();
    {
      const std::lock_guard lock(server_.guard_);
      server_.files_[path] = bytes.substr(0, fault_->bytes);
    }
    fault_->reply.empty() ? say("426 connessione interrotta") : sendAll(fault_->reply);
  }

  void waitForLeave() {
    while (readLine()) {
    }
  }

  void list() {
    std::string text;
    {
      const std::lock_guard lock(server_.guard_);
      for (const std::string& one : server_.folders_) {
        if (one != "/" && ftp::above(one) == folder_) {
          text += "drwxr-xr-x 2 u g 4096 Jan  1 12:00 " + one.substr(one.rfind('/') + 1) + "\r\n";
        }
      }
    }
    if (hasFault(FtpFault::Kind::ListData)) text = fault_->reply;
    say("150 elenco");
    const int data = openData();
    ::send(data, text.data(), text.size(), MSG_NOSIGNAL);
    ::close(data);
    closeData();
    say("226 fatto");
  }

  bool hasFault(FtpFault::Kind kind) const { return fault_ && fault_->kind == kind; }

  void closeData() {
    if (dataListener_ >= 0) ::close(dataListener_);
    dataListener_ = -1;
  }

  void encrypt() {
    say("234 avanti");
    tls_ = server_.manners_.tls->shakeHands(control_);
  }

  void say(const std::string& line) {
    const std::string code = line.substr(0, 3);
    sendAll((hasFault(FtpFault::Kind::MoreLines) ? code + "-una riga\r\n e un'altra\r\n" : "") + line + "\r\n");
  }
  void sendAll(const std::string& text) {
    if (tls_ == nullptr) {
      ::send(control_, text.data(), text.size(), MSG_NOSIGNAL);
    } else {
      SSL_write(tls_, text.data(), static_cast<int>(text.size()));
    }
  }
  /// What has come over the control connection, waiting for it; empty at its end and at that of the test.
  std::string receive() {
    pollfd one{control_, POLLIN, 0};
    while ((tls_ == nullptr || SSL_pending(tls_) == 0) && ::poll(&one, 1, ftp::tick) == 0) {
      if (server_.ending_) return {};
    }
    if (tls_ != nullptr) return readSome(tls_);
    std::array<char, 4096> piece{};
    const ssize_t count = ::recv(control_, piece.data(), piece.size(), 0);
    return {piece.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
  }

  std::optional<std::string> readLine() {
    for (;;) {
      if (const std::size_t end = unread_.find("\r\n"); end != std::string::npos) {
        std::string line = unread_.substr(0, end);
        unread_.erase(0, end + 2);
        return line;
      }
      const std::string more = receive();
      if (more.empty()) return std::nullopt;
      unread_ += more;
    }
  }

  ScriptedFtpServer& server_;
  int control_;
  int dataListener_ = -1;
  int activePort_ = 0;
  SSL* tls_ = nullptr;
  std::string folder_, user_, renamed_, unread_;
  bool loggedIn_ = false, hostKnown_ = true, proxyPassed_ = true;
  std::optional<FtpFault> fault_;
};

}  // namespace kv::test
