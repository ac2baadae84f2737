#pragma once
// An OpenSSH server on 127.0.0.1 in a folder of its own, as an ordinary process: one user with a password, who lands in
// the folder "home". nss_wrapper gives the server its own list of users, so that nothing of the machine is touched. It
// ends with the test, however that ends.

#include <string>

#include "support/temp_folder.h"

namespace kv::test {

class SshServer {
 public:
  static constexpr const char* user = "mario";
  static constexpr const char* password = "Segreto-di-Mario";

  SshServer();
  SshServer(const SshServer&) = delete;
  SshServer& operator=(const SshServer&) = delete;
  ~SshServer() { stop(); }

  std::string port() const { return std::to_string(port_); }
  /// Where the user's session begins.
  std::string home() const { return folder_ / "home"; }
  /// Whether the password was ever given to the server, rightly or not.
  bool wasAskedForEntry() const;
  /// Ends the server and all of its sessions.
  void stop();
  /// Starts it again at the same port, with another key of a type that ssh-keygen knows.
  void restartWithAnotherKey(const char* type = "ed25519");
  /// Starts it again with this command line as its SFTP; it runs in home().
  void restartWithSftp(const std::string& command);

 private:
  void makeKey(const char* type) const;
  void writeSettings() const;
  void start();
  bool answers() const;

  TempFolder folder_;
  std::string sftp_ = "/usr/lib/openssh/sftp-server";
  int port_ = 0;
  int process_ = -1;
};

}  // namespace kv::test
