#pragma once
// An FTP server on 127.0.0.1 that does as a test tells it: it keeps files in memory, writes down every command, and
// fails in a chosen way at a chosen command. It runs in a thread of its own, so that the program under test meets a
// real connection.

#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace kv::test {

class TlsServer;

/// What goes wrong at one command.
struct FtpFault {
  enum class Kind {
    Reply,       ///< `reply` is said instead, a whole text with its line ends, and the command isn't run
    Missing,     ///< nothing is said until the client leaves
    Close,       ///< the control connection is closed
    LateReply,   ///< the usual reply, `milliseconds` later
    MoreLines,   ///< the usual replies, each in several lines
    RefuseData,  ///< the command is begun and no data connection comes about
    CutData,     ///< the data connection is reset after `bytes`; then `reply`, 426 when that is empty
    StallData,   ///< nothing more is read after `bytes`
    ListData     ///< `reply` is the listing
  };
  std::string verb = {};  ///< "STOR"; "" is the greeting
  Kind kind = Kind::Reply;
  std::string reply = {};
  int occurrence = 1;  ///< which one of the commands with this verb; 0: each of them
  int milliseconds = 0;
  std::size_t bytes = 0;
};

/// How the server lets somebody in, and what it is.
struct FtpManners {
  std::string user = "mario", password = "segreto";
  std::string home = "/";       ///< the folder after login
  bool extendedPassive = true;  ///< knows EPSV
  bool asksUtf8 = false;        ///< lists UTF8 among its features
  std::string proxyUser = {};   ///< not empty: an FTP proxy with a login of its own
  std::string proxyPassword = {};
  int atOnce = 1;  ///< connections that are served side by side; more wait, or are refused with 421 when this is > 1
  bool renamesOver = true;         ///< a name that is taken is no obstacle to a rename
  const TlsServer* tls = nullptr;  ///< encrypts the control connection after AUTH; the data connections stay clear
  bool wantsHost = false;          ///< a proxy: SITE or OPEN comes before the login, or "@host" with the name
};

class ScriptedFtpServer {
 public:
  explicit ScriptedFtpServer(FtpManners manners = {});
  ScriptedFtpServer(const ScriptedFtpServer&) = delete;
  ScriptedFtpServer& operator=(const ScriptedFtpServer&) = delete;
  ~ScriptedFtpServer();

  std::string port() const { return std::to_string(port_); }
  /// Adds a fault; each is used at its command.
  void fail(FtpFault fault);
  void forgetFaults();
  void makeFolder(const std::string& path);
  void removeFolders();
  void putFile(const std::string& path, const std::string& bytes);
  /// Bytes of a file, "(missing)" when it isn't there.
  std::string file(const std::string& path) const;
  bool hasFolder(const std::string& path) const;
  /// Full paths of all files.
  std::vector<std::string> fileNames() const;
  /// All commands so far, in order.
  std::vector<std::string> commands() const;
  /// The commands that begin with `verb`.
  std::vector<std::string> commands(const std::string& verb) const;
  void forgetCommands();
  int connections() const { return connections_; }

 private:
  class Talk;
  void serve();
  void serveBeside(int control);
  const FtpFault* faultAt(const std::string& verb);

  FtpManners manners_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> ending_{false};
  std::atomic<int> connections_{0};
  std::atomic<int> open_{0};
  mutable std::mutex guard_;
  std::map<std::string, std::string> files_;
  std::set<std::string> folders_{"/"};
  std::vector<std::string> commands_;
  std::vector<FtpFault> faults_;
  std::map<std::string, int> seen_;  // commands of each verb so far
  std::vector<std::thread> talks_;   // of a server that serves several connections
  std::thread thread_;
};

}  // namespace kv::test
