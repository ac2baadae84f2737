#include "publish/run/upload_folder.h"

#include <utility>

#include "platform/files/listing.h"
#include "platform/ports/failure_text.h"
#include "platform/text/text.h"
#include "publish/settings/server_names.h"

namespace kv {

FolderUploader::FolderUploader(UploadParts parts, UploadOptions options)
    : user_(parts.user),
      view_(parts.view),
      parts_{parts.transfer, user_, view_, parts.table, parts.clock},
      options_(std::move(options)) {
  addLane(parts_.transfer);
  startedAt_ = parts_.clock.now();
}

FolderUploader::~FolderUploader() = default;

bool FolderUploader::opensSession() const {
  return folder_.firstFolder || options_.otpMode != OtpMode::None || options_.keepNoSession;
}

bool FolderUploader::UpdateFTP(const FolderUpload& folder) {
  folder_ = folder;
  failed_ = shown_ = false;
  first().failed = false;
  parts_.view.title("Korvane - " + folder.title);
  auto listed = readFileNames(folder.localFolder, "*.*");
  if (!listed) return unreadableFolder(listed.error());
  if (listed->empty()) return emptyFolder();
  if (options_.disabled) return carriedByHand();
  const bool isOrdered = options_.safeUpload || options_.connections > 1;
  return sendFolder(isOrdered ? inSendingOrder(std::move(*listed)) : *listed);
}

bool FolderUploader::sendFolder(const std::vector<std::string>& names) {
  host_ = options_.connection.host = serverHost(options_.connection.host);
  target_ = serverFolder(folder_.remoteFolder);
  log_.open(folder_.logPath);
  progress_.filesDone = 0;
  progress_.filesTotal = static_cast<int>(names.size());
  const std::string path = target_ == "." ? "" : (target_.starts_with('/') ? "" : "/") + target_;
  MessaggioFTP("Connessione a " + host_ + path, false);
  const bool sent = enterServer() && sendFiles(names);
  log_.close();
  return sent;
}

bool FolderUploader::unreadableFolder(const Error& error) {
  parts_.user.message(failureText(error, "La cartella '" + folder_.localFolder + "'"), Icon::Exclamation);
  return false;
}

bool FolderUploader::emptyFolder() {
  if (folder_.firstFolder) {
    parts_.user.message(
        "La cartella '" + folder_.localFolder + "' è vuota: è necessario costruire il sito prima di metterlo online",
        Icon::Exclamation);
    return false;
  }
  if (parts_.transfer.isConnected()) WaitFTP(first(), FtpState::LeaveEmpty, parts_.transfer.quit());
  return !cancelled_;
}

bool FolderUploader::carriedByHand() {
  const Question question{"Tutti i file contenuti nella cartella locale: \n\"" + folder_.localFolder +
                              "\"\n\ndevono essere trasferiti manualmente sul server " + options_.connection.host +
                              " nella cartella:\n\"" + folder_.remoteFolder +
                              "\"\n\nEseguire adesso il trasferimento manuale\ne premere OK solo quando è stato "
                              "completato",
                          Buttons::OkCancel, Answer::Cancel, Icon::Question};
  return parts_.user.question(question) == Answer::Ok;
}

bool FolderUploader::enterServer() {
  if (opensSession()) {
    WaitFTP(first(), FtpState::Other, parts_.transfer.connect(options_.connection));
    if (!failed_) WaitFTP(first(), FtpState::Other, parts_.transfer.logIn());
    if (failed_) return false;
    const TransferCompletion current = parts_.transfer.currentFolder();
    WaitFTP(first(), FtpState::Other, current);
    base_ = current.text;
  } else {
    WaitFTP(first(), FtpState::Other, parts_.transfer.changeFolder(base_));
  }
  if (!failed_) WaitFTP(first(), FtpState::EnterTarget, parts_.transfer.changeFolder(target_));
  return !failed_;
}

bool FolderUploader::sendFiles(const std::vector<std::string>& names) {
  next_ = 0;
  if (!measure(names)) return false;
  if (options_.connections > 1) {
    sendSideBySide(names);
  } else {
    sendNext(first(), names, names.size());
  }
  progress_.file.clear();
  if (!failed_ && !cancelled_ && !options_.cleanUpFolders.empty()) offerCleanUp();
  if (failed_ || cancelled_) return false;
  if (!folder_.firstFolder || options_.keepNoSession) WaitFTP(first(), FtpState::Other, parts_.transfer.quit());
  return !cancelled_;
}

bool FolderUploader::measure(const std::vector<std::string>& names) {
  bytesLeft_ = 0;
  for (const std::string& name : names) {
    if (!mayGoOn()) return false;
    bytesLeft_ += bytesToSend(name).value_or(0);
  }
  return true;
}

void FolderUploader::sendNext(Lane& lane, const std::vector<std::string>& names, std::size_t end) {
  while (next_ < end && !failed_ && mayGoOn()) {
    const std::size_t i = next_++;
    progress_.filesDone = static_cast<int>(i + 1);
    if (options_.sendAll && i % FileTable::groupSize == 0) doubtNext(names, i);
    if (!failed_ && CaricaFile(names[i], options_.choice)) sendIfNewer(lane, names[i]);
  }
}

void FolderUploader::doubtNext(const std::vector<std::string>& names, std::size_t from) {
  // A file that is sent again although it isn't newer: if it broke off, its row would go on saying that it is there.
  std::vector<std::string> keys;
  for (std::size_t i = from; i < names.size() && i < from + FileTable::groupSize; ++i) {
    if (CaricaFile(names[i], options_.choice)) keys.push_back(keyOf(names[i]));
  }
  showTableError(first(), parts_.table.doubt(keys));
}

std::optional<std::uint64_t> FolderUploader::bytesToSend(const std::string& name) {
  if (!CaricaFile(name, options_.choice)) return std::nullopt;
  const auto stamp = fileStamp(joinPath(folder_.localFolder, name));
  // What can't be read is told by the lane that comes to it.
  if (!stamp) return 0;
  if (options_.sendAll) return stamp->size;
  const auto row = parts_.table.find(keyOf(name));
  const bool isKnown = row && row->has_value();
  if (isKnown && stampText(stamp->changedAt) <= (*row)->stamp) return std::nullopt;
  return stamp->size;
}

std::string FolderUploader::keyOf(const std::string& name) const { return host_ + "/" + target_ + "/" + name; }

bool FolderUploader::enterOrMake(const std::string& part) {
  if (parts_.transfer.changeFolder(part).succeeded()) return true;
  WaitFTP(first(), FtpState::MakeFolder, parts_.transfer.makeFolder(part));
  return !failed_ && parts_.transfer.changeFolder(part).succeeded();
}

void FolderUploader::CreaCartella() {
  const std::string start = target_.starts_with('/') ? "/" : base_;
  WaitFTP(first(), FtpState::Other, parts_.transfer.changeFolder(start));
  std::string_view rest = target_;
  while (!failed_ && !rest.empty()) {
    const std::string part(rest.substr(0, rest.find('/')));
    rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    if (!part.empty() && !enterOrMake(part)) break;
  }
  if (failed_) return;
  WaitFTP(first(), FtpState::Other, parts_.transfer.changeFolder(start));
  if (failed_ || parts_.transfer.changeFolder(target_).succeeded()) return;
  failed_ = true;
  if (cancelled_) return;
  parts_.user.message("Impossibile posizionarsi nella cartella specificata", Icon::Exclamation);
  shown_ = true;
}

void FolderUploader::offerFolder() {
  failed_ = true;
  if (auto cleaned = parts_.table.PulisciDB(host_, target_); !cleaned) return showTableError(first(), cleaned);
  const Question question{"La cartella specificata (" + target_ + ")\nnon è presente sul server. Si desidera crearla?",
                          Buttons::YesNo, Answer::No, Icon::Question};
  if (parts_.user.question(question) != Answer::Yes) return;
  failed_ = first().failed = false;
  options_.sendAll = true;
  CreaCartella();
}

void FolderUploader::HideForm() {
  for (Lane& lane : lanes_) lane.transfer.abort();
  log_.close();
}

}  // namespace kv
