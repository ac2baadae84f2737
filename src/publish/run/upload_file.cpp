// One file: whether it is sent, how, and what is done when the connection breaks.
#include "platform/files/file_digest.h"
#include "platform/text/text.h"
#include "publish/run/upload_folder.h"

namespace kv {
namespace {

// It keeps the extension, so that a page that is half there is not shown as a text.
constexpr const char* temporaryStart = "kvtmp-";

bool isScript(const std::string& name) { return endsWithIgnoringCase(name, ".pl"); }
bool isPasswordList(const std::string& name) {
  return endsWithIgnoringCase(name, ".ris") || endsWithIgnoringCase(name, ".ric");
}
TransferMode modeOf(const std::string& name) {
  return isScript(name) || isPasswordList(name) ? TransferMode::Ascii : TransferMode::Binary;
}

}  // namespace

void FolderUploader::sendIfNewer(const std::string& name) {
  MessaggioFTP("Confronto del file " + name, false);
  file_ = {name, joinPath(folder_.localFolder, name), keyOf(name), {}, {}, false};
  const auto stamp = fileStamp(file_.path);
  if (!stamp) return tellTable(fail(stamp.error()));
  file_.stamp = *stamp;
  const auto row = parts_.table.find(file_.key);
  if (!row) return tellTable(fail(row.error()));
  file_.known = row->has_value();
  progress_.file = name;
  progress_.fileSize = stamp->size;
  bool isWanted = options_.sendAll || !file_.known || stampText(stamp->changedAt) > (*row)->stamp;
  // What the host has loaded is no longer there: an SQL file is sent whatever is in it.
  if (isWanted && options_.contentCheck && !endsWithIgnoringCase(name, ".sql")) {
    file_.digest = fileDigest(file_.path).value_or(std::string());
    if (!options_.sendAll && file_.known && hasSameContent(**row)) {
      isWanted = false;
      tellTable(parts_.table.edit(file_.key, file_.stamp, file_.digest));
    }
  }
  if (!isWanted) {
    ++report_.skipped;
    return showProgress(0);
  }
  sendWithRetries();
  if (failed_ && report_.failedFile.empty()) report_.failedFile = name;
}

bool FolderUploader::hasSameContent(const SentFile& row) const {
  // A row without a time is in doubt: the server may have half of the file.
  return !row.stamp.empty() && !file_.digest.empty() && row.digest == file_.digest;
}

void FolderUploader::sendWithRetries() {
  attemptsLeft_ = options_.retryPauses.size();
  sendFile();
  while (failed_ && broken_) {
    const int pause = options_.retryPauses[options_.retryPauses.size() - attemptsLeft_];
    --attemptsLeft_;
    failed_ = broken_ = false;
    MessaggioFTP("Connessione interrotta: nuovo tentativo tra breve", false);
    if (!waitFor(pause, [this] { return mayGoOn(); }) || !connectAgain()) continue;
    sendFile();
  }
  attemptsLeft_ = 0;
  if (cancelled_) failed_ = true;
}

bool FolderUploader::connectAgain() {
  parts_.transfer.abort();
  WaitFTP(FtpState::Other, parts_.transfer.connect(options_.connection));
  if (!failed_) WaitFTP(FtpState::Other, parts_.transfer.logIn());
  if (!failed_) WaitFTP(FtpState::Other, parts_.transfer.changeFolder(target_));
  return !failed_;
}

void FolderUploader::sendFile() {
  MessaggioFTP("Invio del file " + file_.name, false);
  showProgress(0);
  if (options_.safeUpload && options_.otpMode == OtpMode::None) {
    storeSafely();
  } else {
    storeFile();
  }
  if (!failed_ && !options_.serverNT) setRights();
}

void FolderUploader::storeFile() {
  const bool appends = isPasswordList(file_.name) && options_.otpMode == OtpMode::Append;
  // What is appended to must stay.
  if (!appends) WaitFTP(FtpState::DeleteBefore, parts_.transfer.deleteFile(file_.name));
  if (failed_) return;
  const TransferMode mode = modeOf(file_.name);
  WaitFTP(uploadState(), appends ? parts_.transfer.append(file_.path, file_.name, mode)
                                 : parts_.transfer.upload(file_.path, file_.name, mode));
}

void FolderUploader::storeSafely() {
  const std::string temporary = temporaryStart + file_.name;
  WaitFTP(FtpState::Other, parts_.transfer.upload(file_.path, temporary, modeOf(file_.name)));
  if (failed_) return;
  TransferCompletion renamed = parts_.transfer.renameFile(temporary, file_.name);
  if (isFileCommandFailure(renamed.code)) {
    // There are servers that rename over nothing.
    WaitFTP(FtpState::DeleteBefore, parts_.transfer.deleteFile(file_.name));
    if (failed_) return;
    renamed = parts_.transfer.renameFile(temporary, file_.name);
  }
  WaitFTP(uploadState(), renamed);
}

void FolderUploader::setRights() {
  if (!isScript(file_.name) && !isPasswordList(file_.name)) return;
  const std::string rights = isScript(file_.name) ? "755 " : "666 ";
  WaitFTP(FtpState::Other, parts_.transfer.rawCommand("SITE chmod " + rights + file_.name));
}

}  // namespace kv
