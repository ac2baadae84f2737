// What the server keeps although the shop no longer has it.
#include "publish/run/clean_up.h"

#include "publish/run/upload_folder.h"

namespace kv {
namespace {

constexpr std::size_t mostNames = 15;

std::string nameLines(const std::vector<std::string>& names) {
  std::string text;
  for (std::size_t i = 0; i < names.size() && i < mostNames; ++i) text += names[i] + "\n";
  if (names.size() > mostNames) text += "... (in tutto " + std::to_string(names.size()) + ")\n";
  return text;
}

}  // namespace

Question cleanUpQuestion(const std::string& folder, const std::vector<std::string>& names) {
  return {"Nella cartella \"" + folder + "\" del server ci sono file che il negozio non ha più:\n" + nameLines(names) +
              "\nSi desidera eliminarli dal server?",
          Buttons::YesNo, Answer::No, Icon::Question};
}

std::string notRemovedText(const std::vector<std::string>& names) {
  return "Il server non permette di eliminare questi file:\n" + nameLines(names) +
         "\nTutti gli altri file sono aggiornati.";
}

void FolderUploader::offerCleanUp() {
  auto sent = parts_.table.names(host_, target_);
  if (!sent) return showTableError(first(), fail(sent.error()));
  const auto surplus = surplusFiles(std::move(*sent), options_.choice, options_.cleanUpFolders);
  if (surplus.empty() || parts_.user.question(cleanUpQuestion(target_, surplus)) != Answer::Yes) return;
  std::vector<std::string> left;
  for (const std::string& name : surplus) {
    if (!failed_ && mayGoOn()) removeFromServer(name, left);
  }
  if (!left.empty() && !failed_ && !cancelled_) parts_.user.message(notRemovedText(left), Icon::Exclamation);
}

void FolderUploader::removeFromServer(const std::string& name, std::vector<std::string>& left) {
  MessaggioFTP("Eliminazione del file " + name, false);
  const TransferCompletion removed = parts_.transfer.deleteFile(name);
  WaitFTP(first(), FtpState::DeleteBefore, removed);
  if (failed_) return;
  // A refusal has many reasons. One is that the file has gone already: then its time isn't known either.
  const bool isGone = removed.succeeded() || parts_.transfer.rawCommand("MDTM " + name).code == transferFolderMissing;
  if (!isGone) return left.push_back(name);
  if (removed.succeeded()) ++report_.removed;
  showTableError(first(), parts_.table.remove(keyOf(name)));
}

}  // namespace kv
