#pragma once
// A server of files as the picker of folders sees it: folders with their listings, and failures on demand.

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/transfer/transfer.h"

namespace kv::test {

class ListingServer final : public Transfer {
 public:
  /// The lines of each folder's listing, by its absolute path.
  std::map<std::string, std::vector<std::string>> folders;
  std::string home = "/";                              ///< the folder after the login
  std::set<std::string> locked;                        ///< folders that may not be entered
  std::map<std::string, TransferCompletion> failures;  ///< by command: "connect", "login", "list", "pwd"
  UntrustedServer untrusted;                           ///< asked about at connect() when it has a host
  std::function<void()> beforeList;                    ///< called while a listing is under way

  std::vector<std::string> commands;  ///< in order
  ConnectionSettings settings;        ///< of the last connect()

  void listen(TransferEvents events) override { events_ = std::move(events); }
  TransferCompletion connect(const ConnectionSettings& given) override {
    settings = given;
    if (!untrusted.host.empty() && !events_.trust(untrusted)) return {transferNotTrusted, "not trusted", {}};
    connected_ = true;
    return done("connect");
  }
  TransferCompletion logIn() override {
    current_ = home;
    return done("login");
  }
  TransferCompletion currentFolder() override {
    TransferCompletion completion = done("pwd");
    if (completion.succeeded()) completion.text = current_;
    return completion;
  }
  TransferCompletion changeFolder(const std::string& folder) override {
    commands.push_back("cwd " + folder);
    std::string target = folder;
    if (!folder.starts_with('/')) target = (current_ == "/" ? "/" : current_ + "/") + folder;
    if (locked.contains(target) || !folders.contains(target)) return {transferFolderMissing, "550 denied", {}};
    current_ = target;
    return {};
  }
  TransferCompletion parentFolder() override {
    commands.push_back("cdup");
    const std::size_t slash = current_.rfind('/');
    current_ = slash == 0 ? "/" : current_.substr(0, slash);
    return {};
  }
  TransferCompletion list() override {
    if (beforeList) beforeList();
    if (events_.yield && !events_.yield()) return {transferCancelled, "cancelled", {}};
    TransferCompletion completion = done("list");
    if (completion.succeeded()) completion.lines = folders[current_];
    return completion;
  }
  TransferCompletion quit() override {
    connected_ = false;
    return done("quit");
  }
  void abort() override {
    connected_ = false;
    commands.push_back("abort");
  }
  bool isConnected() const override { return connected_; }

  // What no picker asks for.
  TransferCompletion makeFolder(const std::string&) override { return {}; }
  TransferCompletion deleteFile(const std::string&) override { return {}; }
  TransferCompletion renameFile(const std::string&, const std::string&) override { return {}; }
  TransferCompletion upload(const std::string&, const std::string&, TransferMode) override { return {}; }
  TransferCompletion append(const std::string&, const std::string&, TransferMode) override { return {}; }
  TransferCompletion rawCommand(const std::string&) override { return {}; }

 private:
  TransferCompletion done(const std::string& command) {
    commands.push_back(command);
    const auto failure = failures.find(command);
    return failure == failures.end() ? TransferCompletion() : failure->second;
  }

  TransferEvents events_;
  std::string current_;
  bool connected_ = false;
};

/// The line of a folder in a Unix listing.
inline std::string unixFolder(const std::string& name) {
  return "drwxr-xr-x   2 ada      web          4096 Jan  1 12:00 " + name + "\r\n";
}

}  // namespace kv::test
