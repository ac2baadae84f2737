#include "support/ssh_server.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <thread>

#include "support/scripted_ftp_talk.h"

namespace kv::test {
namespace {

// crypt(3) of the password.
constexpr const char* passwordHash =
    "$6$korvanetests$Tg2629ncR76yXRBJEjCVQvCJByfNIPf/eX2.1Wv15VB7HYl3WaBAeJqQcopt5653zljEpRNKU.K0tFHY0fjzy1";
constexpr const char* privilegeFolder = "/run/sshd";

void writeServerFile(const std::string& path, const std::string& text) {
  std::ofstream(path) << text;
  ::chmod(path.c_str(), S_IRUSR | S_IWUSR);
}

/// Sessions are in groups of their own and would outlive the server.
void killWithChildren(pid_t process) {
  const std::string id = std::to_string(process);
  std::ifstream children("/proc/" + id + "/task/" + id + "/children");
  for (pid_t child = 0; children >> child;) killWithChildren(child);
  ::kill(process, SIGKILL);
}

std::string serverFileText(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

SshServer::SshServer() {
  ::mkdir(home().c_str(), S_IRWXU);
  ::close(listenLocally(port_));
  // As root the server locks a part of itself into this empty folder, which the package's own service makes.
  if (::getuid() == 0) ::mkdir(privilegeFolder, S_IRWXU | S_IRGRP | S_IXGRP | S_IROTH | S_IXOTH);
  makeKey("ed25519");
  writeSettings();
  start();
}

void SshServer::makeKey(const char* type) const {
  const std::string key = folder_ / "key";
  ::unlink(key.c_str());
  const pid_t child = ::fork();
  if (child == 0) {
    ::execlp("ssh-keygen", "ssh-keygen", "-q", "-t", type, "-N", "", "-f", key.c_str(), nullptr);
    ::_exit(127);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0) << "ssh-keygen is missing: tools/install-deps";
}

// The subsystem is a program of its own, without nss_wrapper: inside a session of sshd the descriptor that nss_wrapper
// keeps is closed and given to the folder being read, which is then read twice.
void SshServer::writeSettings() const {
  const std::string ids = std::to_string(::getuid()) + ":" + std::to_string(::getgid());
  writeServerFile(folder_ / "passwd", std::string(user) + ":x:" + ids + "::" + home() +
                                          ":/bin/sh\nsshd:x:65534:65534::" + privilegeFolder + ":/bin/false\n");
  writeServerFile(folder_ / "group", "users:x:" + std::to_string(::getgid()) + ":\nnogroup:x:65534:\n");
  writeServerFile(folder_ / "shadow", std::string(user) + ":" + passwordHash + ":19000:0:99999:7:::\n");
  writeServerFile(folder_ / "config", "Port " + port() + "\nListenAddress 127.0.0.1\nHostKey " + (folder_ / "key") +
                                          "\nPidFile none\nUsePAM no\nPermitRootLogin yes\nPasswordAuthentication yes\n"
                                          "KbdInteractiveAuthentication no\nStrictModes no\nLogLevel VERBOSE\n"
                                          "Subsystem sftp " +
                                          sftp_ + "\n");
}

void SshServer::start() {
  const pid_t test = ::getpid();
  process_ = ::fork();
  if (process_ == 0) {
    // A test that is killed ends nothing itself. The setting lasts until its thread ends, and outlasts exec.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != test) ::_exit(127);
    const int log = ::open((folder_ / "log").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
    ::dup2(log, STDERR_FILENO);
    ::setenv("LD_PRELOAD", "libnss_wrapper.so", 1);
    ::setenv("NSS_WRAPPER_PASSWD", (folder_ / "passwd").c_str(), 1);
    ::setenv("NSS_WRAPPER_GROUP", (folder_ / "group").c_str(), 1);
    ::setenv("NSS_WRAPPER_SHADOW", (folder_ / "shadow").c_str(), 1);
    ::execl("/usr/sbin/sshd", "/usr/sbin/sshd", "-D", "-e", "-f", (folder_ / "config").c_str(), nullptr);
    ::_exit(127);
  }
  constexpr int mostSteps = 1000;
  for (int i = 0; i < mostSteps && !answers(); ++i) {
    ASSERT_EQ(::waitpid(process_, nullptr, WNOHANG), 0) << serverFileText(folder_ / "log");
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

bool SshServer::answers() const {
  return serverFileText(folder_ / "log").find("Server listening") != std::string::npos;
}

bool SshServer::wasAskedForEntry() const {
  const std::string log = serverFileText(folder_ / "log");
  return log.find("password for") != std::string::npos;
}

void SshServer::stop() {
  if (process_ < 0) return;
  killWithChildren(process_);
  ::waitpid(process_, nullptr, 0);
  process_ = -1;
}

void SshServer::restartWithAnotherKey(const char* type) {
  stop();
  ::unlink((folder_ / "log").c_str());
  makeKey(type);
  start();
}

void SshServer::restartWithSftp(const std::string& command) {
  stop();
  ::unlink((folder_ / "log").c_str());
  sftp_ = command;
  writeSettings();
  start();
}

}  // namespace kv::test
