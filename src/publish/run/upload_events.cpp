// What the connection says, and what it means for the folder in hand.
#include "platform/ports/failure_text.h"
#include "publish/run/upload_folder.h"
#include "publish/settings/server_trust.h"

namespace kv {
namespace {

/// Whether a failure is one of the connection, which a new one may not have.
bool isBroken(int code) {
  return code == transferNoConnection || code == transferSilence || code == transferNoData ||
         code == transferOther + 421;
}

}  // namespace

void FolderUploader::WaitFTP(Lane& lane, FtpState state, const TransferCompletion& completion) {
  lane.state = state;
  if (!completion.succeeded()) return completeFailed(lane, completion);
  if (state == FtpState::UploadNew || state == FtpState::UploadKnown) noteSent(lane);
  lane.state = FtpState::Other;
}

void FolderUploader::completeFailed(Lane& lane, const TransferCompletion& completion) {
  switch (lane.state) {
    case FtpState::MakeFolder:
      // The folder exists; or it doesn't, and then it can't be entered either.
      if (completion.code != transferFolderMissing) refuse(lane, completion);
      break;
    case FtpState::EnterTarget:
      completion.code == transferFolderMissing ? offerFolder() : refuse(lane, completion);
      break;
    case FtpState::DeleteBefore:
      // Usually the file was not there; if it can't be replaced, the upload says so.
      if (!isFileCommandFailure(completion.code)) refuse(lane, completion);
      break;
    default:
      refuse(lane, completion, completion.code == transferNoData ? otherModeHint : "");
  }
  lane.state = FtpState::Other;
}

void FolderUploader::refuse(Lane& lane, const TransferCompletion& completion, const std::string& hint) {
  lane.failed = true;
  lane.broken = lane.attemptsLeft > 0 && !failed_ && !cancelled_ && isBroken(completion.code);
  if (lane.broken) return;
  failed_ = true;
  if (cancelled_ || shown_ || completion.code == transferCancelled) return;
  parts_.user.message("Errore: " + completion.text + hint, Icon::Exclamation);
  shown_ = true;
}

void FolderUploader::noteSent(Lane& lane) {
  ++report_.sent;
  report_.bytesSent += lane.file.stamp.size;
  showTableError(lane, lane.state == FtpState::UploadNew
                           ? parts_.table.add(lane.file.key, lane.file.stamp, lane.file.digest)
                           : parts_.table.edit(lane.file.key, lane.file.stamp, lane.file.digest));
  lane.fileSize = 0;
  showProgress(lane, 0);
}

void FolderUploader::showTableError(Lane& lane, const Result<>& written) {
  if (written) return;
  lane.failed = failed_ = true;
  if (!shown_) parts_.user.message(failureText(written.error(), lane.file.name), Icon::Exclamation);
  shown_ = true;
}

void FolderUploader::MessaggioFTP(const std::string& text, bool toLog) {
  if (!toLog) return parts_.view.operation(text);
  const auto line = shownLine(text);
  if (!line) return;
  log_.write(*line);
  parts_.view.dialogue(*line);
}

void FolderUploader::showProgress(Lane& lane, std::uint64_t fileBytes) {
  lane.fileBytes = fileBytes;
  progress_.file = lane.file.name;
  progress_.fileBytes = fileBytes;
  progress_.fileSize = lane.file.stamp.size;
  progress_.bytesSent = report_.bytesSent;
  std::uint64_t left = bytesLeft_;
  for (const Lane& one : lanes_) {
    progress_.bytesSent += one.fileBytes;
    left += one.fileSize > one.fileBytes ? one.fileSize - one.fileBytes : 0;
  }
  const double seconds = parts_.clock.now() - startedAt_;
  if (seconds > 1 && progress_.bytesSent > 0) {
    progress_.bytesPerSecond = static_cast<double>(progress_.bytesSent) / seconds;
    progress_.secondsLeft = static_cast<double>(left) / progress_.bytesPerSecond;
  }
  parts_.view.progress(progress_);
}

bool FolderUploader::mayGoOn() {
  if (!cancelled_ && !parts_.user.yield()) cancelled_ = true;
  return !cancelled_;
}

bool FolderUploader::trusts(const UntrustedServer& server) {
  // Further connections meet the same certificate.
  if (accepted_.count(server.fingerprint) > 0) return true;
  const bool accepts = parts_.user.question(trustQuestion(server)) == Answer::Yes;
  if (accepts) accepted_.insert(server.fingerprint);
  return accepts;
}

}  // namespace kv
