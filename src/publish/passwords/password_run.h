#pragma once
// The transfer of one-time passwords: one script is sent to the shop's folder on the server, called once over HTTP,
// and removed. It is the publish run cut down to one file, without file table.

#include <functional>
#include <string>

#include "platform/ports/user_port.h"
#include "platform/transfer/http_client.h"
#include "platform/transfer/transfer.h"
#include "publish/passwords/left_scripts.h"
#include "publish/run/ftp_log.h"
#include "publish/run/publish_view.h"
#include "store/shop/session.h"

namespace kv {

/// Where the passwords of a shop go.
struct PasswordJob {
  std::string shopFolder;  ///< receives kvftp3.log and kvftp4.log
  std::string onlineFolder;
  ConnectionSettings connection;
  std::string folderFTP;  ///< the shop's folder on the server, as typed
  std::string siteBase;   ///< "http://host/folder", without a closing slash
  bool disabled = false;  ///< the merchant carries the file by hand

  /// "host/folder", by which a script that was left is found again.
  std::string serverFolderKey() const;
};
/// The job of an open shop. Failures as Database::prepare.
Result<PasswordJob> passwordJobOf(Session& session);

/// Who takes part. References outlive the run.
struct PasswordParts {
  Transfer& transfer;
  HttpClient& http;
  UserPort& user;
  PublishView& view;
  std::function<void(bool busy)> busy;  ///< told when the wait for the host begins and ends; may be empty
};

/// One run.
class PasswordRun {
 public:
  PasswordRun(PasswordJob job, PasswordParts parts);

  /// Sends the script `name` of the online folder, calls it and removes it. True when the host answered "OK". The user
  /// has been told how it ended, except of a cancel while a file was under way. A script that may still be on the
  /// server stays remembered.
  bool send(const std::string& name);

 private:
  /// One of the two connections of a run.
  struct Step {
    std::string title, log;
  };
  bool carriedByHand(const std::string& name);
  bool upload(const std::string& name);
  void remove(const std::string& name);
  std::string UpdateDB(const std::string& name);
  bool enterServer(const Step& step);
  void removeLeftScripts(const std::string& except);
  bool isListed(const std::string& name);
  void leaveServer();
  bool wait(const TransferCompletion& completion);
  bool mayGoOn();

  PasswordJob job_;
  PasswordParts parts_;
  std::string target_;
  FtpLog log_;
  bool cancelled_ = false;
};

}  // namespace kv
