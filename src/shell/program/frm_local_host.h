#pragma once
// The web host of this machine as a process of the program, which ends with it.

#include <QProcess>
#include <string>

#include "shell/workbench/local_site.h"

namespace kv {

/// Runs `host/local-host` of the application folder, whose servers end when the pipe to it does: however the program
/// ends, they end with it. Its files are in this user's cache.
class HostProcess {
 public:
  /// `programs`: the folder of korvane-cli.
  HostProcess(std::string applicationFolder, std::string programs);
  HostProcess(const HostProcess&) = delete;
  HostProcess& operator=(const HostProcess&) = delete;
  /// Ends the host and waits until its servers have ended, some seconds.
  ~HostProcess();

  /// What the workbench is given; this object outlives it.
  LocalHost port();

 private:
  Result<> start(const std::string& shopFolder);
  HostReport wait();
  void stop();

  std::string applicationFolder_, programs_;
  QProcess process_;
  QByteArray said_;  ///< on its standard output, since it was started
};

}  // namespace kv
