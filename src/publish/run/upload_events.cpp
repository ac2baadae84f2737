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

void FolderUploader::WaitFTP(FtpState state, const TransferCompletion& completion) {
  state_ = state;
  if (!completion.succeeded()) return completeFailed(completion);
  if (state == FtpState::UploadNew || state == FtpState::UploadKnown) noteSent();
  state_ = FtpState::Other;
}

void FolderUploader::completeFailed(const TransferCompletion& completion) {
  switch (state_) {
    case FtpState::MakeFolder:
      // The folder exists; or it doesn't, and then it can't be entered either.
      if (completion.code != transferFolderMissing) refuse(completion);
      break;
    case FtpState::EnterTarget:
      completion.code == transferFolderMissing ? offerFolder() : refuse(completion);
      break;
    case FtpState::DeleteBefore:
      // Usually the file was not there; if it can't be replaced, the upload says so.
      if (!isFileCommandFailure(completion.code)) refuse(completion);
      break;
    default:
      refuse(completion, completion.code == transferNoData ? otherModeHint : "");
  }
  state_ = FtpState::Other;
}

void FolderUploader::refuse(const TransferCompletion& completion, const std::string& hint) {
  failed_ = true;
  if (cancelled_ || completion.code == transferCancelled) return;
  broken_ = attemptsLeft_ > 0 && isBroken(completion.code);
  if (broken_) return;
  parts_.user.message("Errore: " + completion.text + hint, Icon::Exclamation);
  shown_ = true;
}

void FolderUploader::noteSent() {
  ++report_.sent;
  report_.bytesSent += file_.stamp.size;
  tellTable(state_ == FtpState::UploadNew ? parts_.table.add(file_.key, file_.stamp, file_.digest)
                                          : parts_.table.edit(file_.key, file_.stamp, file_.digest));
  showProgress(0);
}

void FolderUploader::tellTable(const Result<>& written) {
  if (written) return;
  failed_ = true;
  if (!shown_) parts_.user.message(failureText(written.error(), file_.name), Icon::Exclamation);
  shown_ = true;
}

void FolderUploader::MessaggioFTP(const std::string& text, bool toLog) {
  if (!toLog) return parts_.view.operation(text);
  const auto line = shownLine(text);
  if (!line) return;
  log_.write(*line);
  parts_.view.dialogue(*line);
}

void FolderUploader::showProgress(std::uint64_t fileBytes) {
  progress_.fileBytes = fileBytes;
  progress_.bytesSent = report_.bytesSent + fileBytes;
  const double seconds = parts_.clock.now() - startedAt_;
  if (seconds > 1 && progress_.bytesSent > 0) {
    progress_.bytesPerSecond = static_cast<double>(progress_.bytesSent) / seconds;
    const std::uint64_t left = progress_.fileSize > fileBytes ? progress_.fileSize - fileBytes : 0;
    progress_.secondsLeft = static_cast<double>(left) / progress_.bytesPerSecond;
  }
  parts_.view.progress(progress_);
}

bool FolderUploader::mayGoOn() {
  if (!cancelled_ && !parts_.user.yield()) cancelled_ = true;
  return !cancelled_;
}

bool FolderUploader::trusts(const UntrustedServer& server) {
  return parts_.user.question(trustQuestion(server)) == Answer::Yes;
}

}  // namespace kv
