#pragma once
// The publish run: the SQL files are made, both folders of the built shop are sent, and the host loads the SQL. What
// was sent before a failure stays in the file table, so that the next run goes on where this one stopped.

#include <functional>
#include <string>

#include "publish/run/upload_folder.h"
#include "publish/settings/firewall_settings.h"
#include "publish/settings/publish_settings.h"
#include "store/shop/session.h"

namespace kv {

/// What is published: columns of `generale` and the folders of the session.
struct PublishJob {
  std::string shopFolder;  ///< holds kvftp.mdb, kvftp.dat and receives kvftp1.log, kvftp2.log
  std::string onlineFolder;
  std::string scriptFolder;  ///< of the back office
  ServerLogin login;
  std::string folderFTP;  ///< the shop's folder on the server
  std::string folderCGI;  ///< that of the back office
  bool serverNT = false;  ///< the server is Windows
  OtpMode otpMode = OtpMode::None;
  std::string passwordFolder;  ///< on the server, where password lists are sent to
};
/// The job of an open shop. Failures as Database::prepare.
Result<PublishJob> publishJobOf(Session& session);

/// Steps of the run that belong to others. One that isn't set is left out.
struct PublishSteps {
  /// Makes the SQL files of the online folder, whole or as a difference; failures are shown to the user of the run.
  /// False when that user has cancelled it.
  std::function<bool(UserPort& user)> exportSql;
  /// frmUpdate (online database update): "OK", a text that the user is to read, or empty when it was interrupted.
  std::function<std::string()> updateDatabase;
  /// Opens the shop's first page in the browser.
  std::function<void()> openSite;
};

/// Who takes part. References outlive the run.
struct PublishParts {
  Transfer& transfer;
  UserPort& user;
  PublishView& view;
  Clock& clock;
  PublishSteps steps;
};

/// How a run ended. The user has been told of a failure.
enum class PublishOutcome { Done, Failed, Cancelled };

/// The choices of a run as the shop's files make them. kvftp.dat is read as well.
UploadOptions uploadOptions(const PublishJob& job, const PublishSettings& settings, const FirewallSettings& way);

/// Deletes the SQL files of the online folder and has the step make new ones. False when the user has cancelled it.
bool prepareDatabase(const PublishJob& job, const PublishSteps& steps, UserPort& user);

/// Publishes a shop. `report`: what was sent, also after a failure.
PublishOutcome publishShop(const PublishJob& job, const UploadOptions& options, const PublishParts& parts,
                           PublishReport* report = nullptr);

/// Names of the files that a run would send now, "folder/name" as on the server, in their order. Nothing is sent and
/// no row is changed. None where the merchant carries the files by hand. goOn: asked for each file and within large
/// ones; false ends it. Failures as FileTable::open, Cancelled.
Result<std::vector<std::string>> filesToSend(const PublishJob& job, const UploadOptions& options,
                                             const std::function<bool()>& goOn = {});

/// Names of the files on the server that a run would offer for removal now, written like those of filesToSend; none
/// where the options have no clean-up. Failures as FileTable::open.
Result<std::vector<std::string>> filesToRemove(const PublishJob& job, const UploadOptions& options);

}  // namespace kv
