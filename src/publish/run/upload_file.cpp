// One file: whether it is sent, how, and what is done when the connection breaks.
#include <algorithm>

#include "platform/files/file_digest.h"
#include "platform/text/text.h"
#include "publish/run/upload_folder.h"

namespace kv {
namespace {

// They keep the extension, so that a page that is half there is not shown as a text.
constexpr const char* temporaryStart = "kvtmp-";
constexpr const char* asideStart = "kvold-";  // the old file, while the new one takes its name

bool isScript(const std::string& name) { return endsWithIgnoringCase(name, ".pl"); }
bool isPasswordList(const std::string& name) {
  return endsWithIgnoringCase(name, ".ris") || endsWithIgnoringCase(name, ".ric");
}
TransferMode modeOf(const std::string& name) {
  return isScript(name) || isPasswordList(name) ? TransferMode::Ascii : TransferMode::Binary;
}

}  // namespace

void FolderUploader::sendIfNewer(Lane& lane, const std::string& name) {
  MessaggioFTP("Confronto del file " + name, false);
  lane.file = {name, joinPath(folder_.localFolder, name), keyOf(name), {}, {}, false};
  const auto stamp = fileStamp(lane.file.path);
  if (!stamp) return showTableError(lane, fail(stamp.error()));
  lane.file.stamp = *stamp;
  const auto row = parts_.table.find(lane.file.key);
  if (!row) return showTableError(lane, fail(row.error()));
  lane.file.known = row->has_value();
  bool isWanted = options_.sendAll || !lane.file.known || stampText(stamp->changedAt) > (*row)->stamp;
  if (isWanted) {
    lane.fileSize = std::min(stamp->size, bytesLeft_);
    bytesLeft_ -= lane.fileSize;
  }
  if (isWanted) isWanted = hasNewContent(lane, *row);
  if (cancelled_) return;
  if (!isWanted) {
    ++report_.skipped;
    lane.fileSize = 0;
    return showProgress(lane, 0);
  }
  sendWithRetries(lane);
}

bool FolderUploader::hasNewContent(Lane& lane, const std::optional<SentFile>& row) {
  // What the host has loaded is no longer there: an SQL file is sent whatever is in it.
  if (!options_.contentCheck || endsWithIgnoringCase(lane.file.name, ".sql")) return true;
  lane.file.digest = fileDigest(lane.file.path, [this] { return mayGoOn(); }).value_or(std::string());
  if (options_.sendAll || !row || !hasSameContent(*row, lane.file.digest)) return true;
  showTableError(lane, parts_.table.edit(lane.file.key, lane.file.stamp, lane.file.digest));
  return false;
}

void FolderUploader::sendWithRetries(Lane& lane) {
  lane.attemptsLeft = options_.retryPauses.size();
  sendFile(lane);
  while (lane.failed && lane.broken) {
    const int pause = options_.retryPauses[options_.retryPauses.size() - lane.attemptsLeft];
    --lane.attemptsLeft;
    lane.failed = lane.broken = false;
    MessaggioFTP("Connessione interrotta: nuovo tentativo tra breve", false);
    if (!waitFor(pause, [this] { return mayGoOn(); }) || !connectAgain(lane)) continue;
    sendFile(lane);
  }
  lane.attemptsLeft = 0;
  if (cancelled_) lane.failed = failed_ = true;
  if (lane.failed && report_.failedFile.empty()) report_.failedFile = lane.file.name;
}

bool FolderUploader::connectAgain(Lane& lane) {
  lane.transfer.abort();
  WaitFTP(lane, FtpState::Other, lane.transfer.connect(options_.connection));
  if (!lane.failed) WaitFTP(lane, FtpState::Other, lane.transfer.logIn());
  if (!lane.failed) WaitFTP(lane, FtpState::Other, lane.transfer.changeFolder(target_));
  return !lane.failed;
}

void FolderUploader::sendFile(Lane& lane) {
  MessaggioFTP("Invio del file " + lane.file.name, false);
  showProgress(lane, 0);
  if (options_.safeUpload && options_.otpMode == OtpMode::None) {
    storeSafely(lane);
  } else {
    storeFile(lane);
  }
  if (!lane.failed && !options_.serverNT) setRights(lane);
}

void FolderUploader::storeFile(Lane& lane) {
  const bool appends = isPasswordList(lane.file.name) && options_.otpMode == OtpMode::Append;
  // What is appended to must stay.
  if (!appends) WaitFTP(lane, FtpState::DeleteBefore, lane.transfer.deleteFile(lane.file.name));
  if (lane.failed) return;
  const TransferMode mode = modeOf(lane.file.name);
  WaitFTP(lane, uploadState(lane),
          appends ? lane.transfer.append(lane.file.path, lane.file.name, mode)
                  : lane.transfer.upload(lane.file.path, lane.file.name, mode));
}

void FolderUploader::storeSafely(Lane& lane) {
  const std::string temporary = temporaryStart + lane.file.name;
  WaitFTP(lane, FtpState::Other, lane.transfer.upload(lane.file.path, temporary, modeOf(lane.file.name)));
  if (lane.failed) return;
  const TransferCompletion renamed = lane.transfer.renameFile(temporary, lane.file.name);
  WaitFTP(lane, uploadState(lane), isFileCommandFailure(renamed.code) ? exchange(lane, temporary, renamed) : renamed);
}

// There are servers that rename over nothing, those of SFTP before all: the old file gives way. It isn't deleted first,
// or a server that renames nothing at all would be left without the page.
TransferCompletion FolderUploader::exchange(Lane& lane, const std::string& temporary,
                                            const TransferCompletion& refusal) {
  const std::string aside = asideStart + lane.file.name;
  TransferCompletion moved = lane.transfer.renameFile(lane.file.name, aside);
  if (isFileCommandFailure(moved.code)) {
    // A run that was killed may have left one there.
    moved = lane.transfer.deleteFile(aside);
    if (moved.succeeded()) moved = lane.transfer.renameFile(lane.file.name, aside);
  }
  if (!moved.succeeded()) return isFileCommandFailure(moved.code) ? refusal : moved;
  TransferCompletion renamed = lane.transfer.renameFile(temporary, lane.file.name);
  if (isFileCommandFailure(renamed.code)) {
    ignore(lane.transfer.renameFile(aside, lane.file.name), "what refused the new file its name is told");
  } else if (renamed.succeeded()) {
    ignore(lane.transfer.deleteFile(aside), "the next exchange deletes it; a broken connection shows at the next file");
  }
  return renamed;
}

void FolderUploader::setRights(Lane& lane) {
  if (!isScript(lane.file.name) && !isPasswordList(lane.file.name)) return;
  const std::string rights = isScript(lane.file.name) ? "755 " : "666 ";
  WaitFTP(lane, FtpState::Other, lane.transfer.rawCommand("SITE chmod " + rights + lane.file.name));
}

}  // namespace kv
