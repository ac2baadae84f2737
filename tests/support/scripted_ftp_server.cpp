#include "support/scripted_ftp_server.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string_view>
#include <utility>

#include "support/scripted_ftp_talk.h"

namespace kv::test {

ScriptedFtpServer::ScriptedFtpServer(FtpManners manners) : manners_(std::move(manners)) {
  listener_ = listenLocally(port_);
  makeFolder(manners_.home);
  thread_ = std::thread([this] { serve(); });
}

ScriptedFtpServer::~ScriptedFtpServer() {
  ending_ = true;
  thread_.join();
  ::close(listener_);
}

void ScriptedFtpServer::serve() {
  while (!ending_) {
    pollfd one{listener_, POLLIN, 0};
    if (::poll(&one, 1, ftp::tick) <= 0) continue;
    const int control = ::accept(listener_, nullptr, nullptr);
    if (control < 0) continue;
    ++connections_;
    // A reply after a preliminary one goes out at once, whatever the client has acknowledged.
    const int on = 1;
    ::setsockopt(control, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (manners_.atOnce > 1) {
      serveBeside(control);
    } else {
      Talk(*this, control).run();
    }
  }
  for (std::thread& one : talks_) one.join();
}

void ScriptedFtpServer::serveBeside(int control) {
  if (open_ >= manners_.atOnce) {
    const std::string_view refusal = "421 troppe connessioni\r\n";
    ::send(control, refusal.data(), refusal.size(), MSG_NOSIGNAL);
    ::close(control);
    return;
  }
  ++open_;
  talks_.emplace_back([this, control] {
    Talk(*this, control).run();
    --open_;
  });
}

const FtpFault* ScriptedFtpServer::faultAt(const std::string& verb) {
  const int occurrence = ++seen_[verb];
  for (const FtpFault& fault : faults_) {
    if (fault.verb == verb && (fault.occurrence == 0 || fault.occurrence == occurrence)) return &fault;
  }
  return nullptr;
}

void ScriptedFtpServer::fail(FtpFault fault) {
  const std::lock_guard lock(guard_);
  if (fault.occurrence > 0) fault.occurrence += seen_[fault.verb];
  faults_.push_back(std::move(fault));
}

void ScriptedFtpServer::forgetFaults() {
  const std::lock_guard lock(guard_);
  faults_.clear();
}

void ScriptedFtpServer::makeFolder(const std::string& path) {
  const std::lock_guard lock(guard_);
  for (std::string one = path; one != "/"; one = ftp::above(one)) folders_.insert(one);
}

void ScriptedFtpServer::removeFolders() {
  const std::lock_guard lock(guard_);
  folders_ = {"/"};
  files_.clear();
}

void ScriptedFtpServer::putFile(const std::string& path, const std::string& bytes) {
  const std::lock_guard lock(guard_);
  files_[path] = bytes;
}

std::string ScriptedFtpServer::file(const std::string& path) const {
  const std::lock_guard lock(guard_);
  const auto found = files_.find(path);
  return found == files_.end() ? "(missing)" : found->second;
}

bool ScriptedFtpServer::hasFolder(const std::string& path) const {
  const std::lock_guard lock(guard_);
  return folders_.count(path) > 0;
}

std::vector<std::string> ScriptedFtpServer::fileNames() const {
  const std::lock_guard lock(guard_);
  std::vector<std::string> names;
  for (const auto& [name, bytes] : files_) names.push_back(name);
  return names;
}

std::vector<std::string> ScriptedFtpServer::commands() const {
  const std::lock_guard lock(guard_);
  return commands_;
}

std::vector<std::string> ScriptedFtpServer::commands(const std::string& verb) const {
  std::vector<std::string> found = commands();
  std::erase_if(found, [&verb](const std::string& one) { return !one.starts_with(verb); });
  return found;
}

void ScriptedFtpServer::forgetCommands() {
  const std::lock_guard lock(guard_);
  commands_.clear();
}

}  // namespace kv::test
