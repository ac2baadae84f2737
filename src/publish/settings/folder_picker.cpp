#include "publish/settings/folder_picker.h"

#include <utility>

#include "platform/text/text.h"
#include "publish/settings/server_names.h"
#include "publish/settings/server_trust.h"

namespace kv {
namespace {

constexpr char choiceMark = '>';

}  // namespace

FolderPicker::FolderPicker(Transfer& transfer, UserPort& user, std::function<bool()> yield)
    : transfer_(transfer), user_(user) {
  TransferEvents events;
  events.yield = std::move(yield);
  events.trust = [&user](const UntrustedServer& server) { return user.question(trustQuestion(server)) == Answer::Yes; };
  transfer.listen(std::move(events));
}

bool FolderPicker::open(const ConnectionSettings& settings) {
  TransferCompletion completion = transfer_.connect(settings);
  if (completion.succeeded()) completion = transfer_.logIn();
  if (!completion.succeeded()) {
    if (completion.code != transferCancelled) user_.message(std::string(serverOutOfReach), Icon::Exclamation);
    abort();
    return false;
  }
  if (!arrive()) return false;
  base_ = current_;
  return true;
}

bool FolderPicker::enter(const std::string& name) {
  const TransferCompletion completion = transfer_.changeFolder(name);
  return completion.succeeded() ? arrive() : refused(completion);
}

bool FolderPicker::up() {
  const TransferCompletion completion = transfer_.parentFolder();
  return completion.succeeded() ? arrive() : refused(completion);
}

bool FolderPicker::arrive() {
  const TransferCompletion here = transfer_.currentFolder();
  if (!here.succeeded()) return refused(here);
  const TransferCompletion listing = transfer_.list();
  if (!listing.succeeded() && !refused(listing)) return false;
  current_ = selected_ = here.text;
  entries_.clear();
  for (const std::string& line : listing.lines) {
    if (auto name = listedFolder(line)) entries_.push_back({*name, shownName(*name)});
  }
  return true;
}

bool FolderPicker::refused(const TransferCompletion& completion) {
  if (completion.code == transferFolderMissing) {
    user_.message(std::string(accessDenied), Icon::Exclamation);
    return true;
  }
  if (completion.code != transferCancelled) user_.message(completion.text, Icon::Exclamation);
  abort();
  return false;
}

void FolderPicker::select(const std::string& name) { selected_ = joinServerPath(current_, name); }

void FolderPicker::close() {
  if (transfer_.isConnected()) transfer_.quit();
}

void FolderPicker::abort() { transfer_.abort(); }

std::string FolderPicker::result() const { return choiceMark + relativeToBase(selected_, base_); }

std::optional<std::string> chosenServerFolder(std::string_view result) {
  if (!result.starts_with(choiceMark)) return std::nullopt;
  return std::string(result.substr(1));
}

}  // namespace kv
