#include "publish/run/publish_run.h"

#include <array>
#include <utility>

#include "platform/files/file_digest.h"
#include "platform/files/listing.h"
#include "platform/ports/failure_text.h"
#include "platform/text/text.h"
#include "publish/settings/server_names.h"

namespace kv {
namespace {

constexpr const char* preparing = "Preparazione database...";
constexpr const char* seeSite =
    "Aggiornamento del negozio terminato. Vuoi vedere il sito?\n(aggiornare la pagina del browser se necessario)";
constexpr const char* interrupted = "Aggiornamento interrotto";
constexpr const char* listsUpdated = "I file di password sono stati aggiornati";
constexpr std::array<int, 3> usualRetryPauses{1000, 5000, 15000};  // milliseconds
constexpr const char* listTypes = ".ric.ris.";

FolderUpload shopFolderOf(const PublishJob& job) {
  return {job.onlineFolder, "Aggiornamento cartella del negozio", joinPath(job.shopFolder, "kvftp1.log"), job.folderFTP,
          true};
}

FolderUpload secondFolderOf(const PublishJob& job) {
  const std::string log = joinPath(job.shopFolder, "kvftp2.log");
  if (job.otpMode == OtpMode::None) {
    return {job.scriptFolder, "Aggiornamento cartella del BackOffice", log, job.folderCGI, false};
  }
  return {job.scriptFolder, "Aggiornamento cartella password", log, job.passwordFolder, false};
}

PublishOutcome finishShop(const PublishParts& parts) {
  if (!parts.steps.updateDatabase) return PublishOutcome::Done;
  const std::string tag = parts.steps.updateDatabase();
  if (tag.empty()) {
    parts.user.message(interrupted, Icon::Exclamation);
    return PublishOutcome::Cancelled;
  }
  if (tag != "OK") {
    parts.user.message(tag, Icon::Exclamation);
    return PublishOutcome::Failed;
  }
  const bool wanted = parts.user.question({seeSite, Buttons::YesNo, Answer::Yes, Icon::Question}) == Answer::Yes;
  if (wanted && parts.steps.openSite) parts.steps.openSite();
  return PublishOutcome::Done;
}

/// Sends both folders; the connection is broken off when one fails.
PublishOutcome sendFolders(const PublishJob& job, FolderUploader& uploader, const PublishParts& parts) {
  bool sent = true;
  if (job.otpMode == OtpMode::None) {
    parts.view.operation(preparing);
    if (!prepareDatabase(job, parts.steps, parts.user)) return PublishOutcome::Cancelled;
    sent = uploader.UpdateFTP(shopFolderOf(job));
  }
  if (sent) sent = uploader.UpdateFTP(secondFolderOf(job));
  if (sent) return PublishOutcome::Done;
  uploader.HideForm();
  return uploader.cancelled() ? PublishOutcome::Cancelled : PublishOutcome::Failed;
}

/// What a run would send, found without a server.
class FilesToSend {
 public:
  /// References outlive the object.
  FilesToSend(const UploadOptions& options, FileTable& table, const std::function<bool()>& goOn)
      : options_(options), table_(table), goOn_(goOn) {}

  /// Adds the files of one folder.
  Result<> add(const FolderUpload& folder) {
    const std::string target = serverFolder(folder.remoteFolder);
    const std::string start = serverHost(options_.connection.host) + "/" + target + "/";
    const auto names = readFileNames(folder.localFolder, "*.*");
    if (!names) return fail(names.error());
    for (const std::string& name : *names) {
      if (!CaricaFile(name, options_.choice)) continue;
      if (goOn_ && !goOn_()) return fail(ErrorKind::Cancelled, name, "cancelled");
      const auto wanted = isToBeSent(joinPath(folder.localFolder, name), start + name);
      if (!wanted) return fail(wanted.error());
      if (*wanted) found_.push_back(joinServerPath(target, name));
    }
    return {};
  }
  std::vector<std::string> take() { return std::move(found_); }

 private:
  Result<bool> isToBeSent(const std::string& path, const std::string& key) {
    const auto stamp = fileStamp(path);
    if (!stamp) return fail(stamp.error());
    const auto row = table_.find(key);
    if (!row) return fail(row.error());
    if (options_.sendAll || !*row) return true;
    if (stampText(stamp->changedAt) <= (*row)->stamp) return false;
    return hasNewContent(path, **row);
  }
  /// SQL files go whatever is in them: the host deletes what it has loaded.
  Result<bool> hasNewContent(const std::string& path, const SentFile& row) const {
    if (!options_.contentCheck || endsWithIgnoringCase(path, ".sql")) return true;
    const auto digest = fileDigest(path, goOn_);
    if (!digest && digest.error().kind == ErrorKind::Cancelled) return fail(digest.error());
    return !hasSameContent(row, digest.value_or(std::string()));
  }

  const UploadOptions& options_;
  FileTable& table_;
  const std::function<bool()>& goOn_;
  std::vector<std::string> found_;
};

}  // namespace

Result<PublishJob> publishJobOf(Session& session) {
  auto row = session.catalogue.prepare("SELECT folderFTP, folderCGI, serverNT FROM generale");
  if (!row) return fail(row.error());
  const auto found = row->step();
  if (!found) return fail(found.error());
  auto login = readServerLogin(session.catalogue);
  if (!login) return fail(login.error());
  PublishJob job;
  job.shopFolder = session.ShopFolder;
  job.onlineFolder = session.onlineFolder;
  job.scriptFolder = session.scriptFolder;
  job.login = std::move(*login);
  if (!*found) return job;
  job.folderFTP = row->text(0);
  job.folderCGI = row->text(1);
  job.serverNT = row->flag(2);
  return job;
}

bool prepareDatabase(const PublishJob& job, const PublishSteps& steps, UserPort& user) {
  for (const std::string& name : listFiles(job.onlineFolder, "*.sql")) {
    ignore(deleteFile(joinPath(job.onlineFolder, name)), "a file that is in the way is reported when it is replaced");
  }
  return !steps.exportSql || steps.exportSql(user);
}

UploadOptions uploadOptions(const PublishJob& job, const PublishSettings& settings, const FirewallSettings& way) {
  UploadOptions options;
  options.connection = connectionOf(job.login, way, settings.silenceSeconds);
  options.connection.host = job.login.host;  // as typed, for who carries the files by hand; a connection normalises it
  options.sendAll = !settings.onlyModified;
  options.choice = {settings.onlyShopFiles, settings.types, CaricaListaFiles(job.shopFolder)};
  options.keepNoSession = way.reconnects;
  options.disabled = settings.disabled;
  options.serverNT = job.serverNT;
  options.otpMode = job.otpMode;
  options.safeUpload = settings.safeUpload;
  options.contentCheck = settings.contentCheck;
  options.connections = job.otpMode == OtpMode::None ? settings.connections : 1;
  if (settings.retry) options.retryPauses = {usualRetryPauses.begin(), usualRetryPauses.end()};
  if (settings.cleanUp && job.otpMode == OtpMode::None) options.cleanUpFolders = {job.onlineFolder, job.scriptFolder};
  if (job.otpMode == OtpMode::None) return options;
  options.sendAll = true;
  options.choice = {false, listTypes, {}};
  return options;
}

PublishOutcome publishShop(const PublishJob& job, const UploadOptions& options, const PublishParts& parts,
                           PublishReport* report) {
  PublishOutcome sent = PublishOutcome::Failed;
  {
    // The table is closed before the update of the database, which deletes the rows of what the host has loaded.
    auto table = FileTable::open(job.shopFolder, options.contentCheck);
    if (!table) {
      parts.user.message(failureText(table.error(), "kvftp.mdb"), Icon::Exclamation);
      return PublishOutcome::Failed;
    }
    FolderUploader uploader({parts.transfer, parts.user, parts.view, *table, parts.clock}, options);
    sent = sendFolders(job, uploader, parts);
    if (report != nullptr) *report = uploader.report();
    if (sent != PublishOutcome::Cancelled) parts.view.operation(reportText(uploader.report()));
    // Nobody is there any more to tell.
    parts.transfer.listen({});
  }
  if (sent != PublishOutcome::Done) return sent;
  if (job.otpMode == OtpMode::None) return finishShop(parts);
  parts.user.message(listsUpdated, Icon::Information);
  return PublishOutcome::Done;
}

Result<std::vector<std::string>> filesToSend(const PublishJob& job, const UploadOptions& options,
                                             const std::function<bool()>& goOn) {
  if (options.disabled) return std::vector<std::string>();
  auto table = FileTable::open(job.shopFolder);
  if (!table) return fail(table.error());
  FilesToSend files(options, *table, goOn);
  for (const FolderUpload& folder : {shopFolderOf(job), secondFolderOf(job)}) {
    if (auto added = files.add(folder); !added) return fail(added.error());
  }
  return files.take();
}

Result<std::vector<std::string>> filesToRemove(const PublishJob& job, const UploadOptions& options) {
  std::vector<std::string> found;
  if (options.cleanUpFolders.empty() || options.disabled) return found;
  auto table = FileTable::open(job.shopFolder);
  if (!table) return fail(table.error());
  for (const FolderUpload& folder : {shopFolderOf(job), secondFolderOf(job)}) {
    const std::string target = serverFolder(folder.remoteFolder);
    auto sent = table->names(serverHost(options.connection.host), target);
    if (!sent) return fail(sent.error());
    for (const std::string& name : surplusFiles(std::move(*sent), options.choice, options.cleanUpFolders)) {
      found.push_back(joinServerPath(target, name));
    }
  }
  return found;
}

}  // namespace kv
