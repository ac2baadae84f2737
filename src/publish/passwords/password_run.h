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
  /// The services outlive the run.
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
  /// Asks the merchant to carry the script over himself; false when he cancels.
  bool carriedByHand(const std::string& name);
  /// Sends the script to the shop's folder of the server, after those that former runs left.
  bool upload(const std::string& name);
  /// Deletes it there again; what stays is remembered for the next run.
  void remove(const std::string& name);
  /// UpdateDB (update the database): calls the script; its answer, empty for none.
  std::string UpdateDB(const std::string& name);
  /// Connects and goes to the folder; the dialogue goes to the step's log.
  bool enterServer(const Step& step);
  /// Deletes the scripts that former runs left on this server, but for one.
  void removeLeftScripts(const std::string& except);
  /// Whether a file is in the folder of the server; true where it can't be listed.
  bool isListed(const std::string& name);
  /// Ends the connection and closes the log.
  void leaveServer();
  /// Says why an answer is a failure; false for one, and after a cancel.
  bool wait(const TransferCompletion& completion);
  /// Processes events; false once the user has cancelled.
  bool mayGoOn();

  PasswordJob job_;
  PasswordParts parts_;
  std::string target_;
  FtpLog log_;
  bool cancelled_ = false;
};

}  // namespace kv
