#include "platform/files/application_folder.h"

#include <sys/stat.h>

#include <cerrno>
#include <map>

#include "platform/files/file_access.h"
#include "platform/files/file_digest.h"
#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/files/user_folders.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view listName = "installed.lst";
constexpr std::size_t digestCharacters = 64;

using ShippedList = std::map<std::string, std::string>;  // path below the folder -> digest as shipped

// Lines in the format of sha256sum: the digest, two spaces, the path. Other lines are ignored.
Result<ShippedList> readList(const std::string& path) {
  const auto text = readBytes(path);
  if (!text && text.error().kind == ErrorKind::Missing) return ShippedList{};
  if (!text) return fail(text.error());
  ShippedList list;
  for (const std::string_view line : splitLines(*text)) {
    if (line.size() < digestCharacters + 3 || line.substr(digestCharacters, 2) != "  ") continue;
    list[std::string(line.substr(digestCharacters + 2))] = line.substr(0, digestCharacters);
  }
  return list;
}

std::string listText(const ShippedList& list) {
  std::string text;
  for (const auto& [path, digest] : list) text += digest + "  " + path + "\n";
  return text;
}

enum class ShippedEntry { Nothing, File, Folder, Other };

// What is at a path. A link counts as Other: the merchant made it, and nothing is written through it.
ShippedEntry entryKindAt(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return ShippedEntry::Nothing;
  if (S_ISREG(status.st_mode)) return ShippedEntry::File;
  return S_ISDIR(status.st_mode) ? ShippedEntry::Folder : ShippedEntry::Other;
}

class Update {
 public:
  Update(std::string installed, std::string folder, ShippedList list)
      : installed_(std::move(installed)), folder_(std::move(folder)), list_(std::move(list)) {}

  /// Brings the files below `below` up to date. `reachable` is false where the merchant has replaced a folder by
  /// something else: its files then count as deleted by the merchant.
  Result<> bring(const std::string& below, bool reachable);
  const ShippedList& list() const { return list_; }
  const ApplicationUpdate& counts() const { return counts_; }

 private:
  Result<> bringFolder(const std::string& path, bool reachable);
  Result<> bringFile(const std::string& path, bool reachable);
  Result<> install(const std::string& path, const std::string& digest, int& count);

  std::string installed_, folder_;
  ShippedList list_;
  ApplicationUpdate counts_;
};

Result<> Update::bring(const std::string& below, bool reachable) {
  const std::string source = joinPath(installed_, below);
  const auto files = readFileNames(source, "*");
  if (!files) return fail(files.error());
  for (const std::string& name : *files) {
    const std::string path = joinPath(below, name);
    if (path == listName || entryKindAt(joinPath(source, name)) != ShippedEntry::File) continue;
    if (auto brought = bringFile(path, reachable); !brought) return brought;
  }
  const auto folders = readFolderNames(source);
  if (!folders) return fail(folders.error());
  for (const std::string& name : *folders) {
    if (entryKindAt(joinPath(source, name)) != ShippedEntry::Folder) continue;
    if (auto brought = bringFolder(joinPath(below, name), reachable); !brought) return brought;
  }
  return {};
}

Result<> Update::bringFolder(const std::string& path, bool reachable) {
  const std::string source = joinPath(installed_, path), target = joinPath(folder_, path);
  const ShippedEntry kind = reachable ? entryKindAt(target) : ShippedEntry::Other;
  // A folder with files is created with its first file, so that one the merchant deleted isn't created again, empty.
  const auto files = readFileNames(source, "*"), folders = readFolderNames(source);
  const bool isBare = files && folders && files->empty() && folders->empty();
  if (kind == ShippedEntry::Nothing && isBare) return createFolders(target);
  return bring(path, kind == ShippedEntry::Nothing || kind == ShippedEntry::Folder);
}

Result<> Update::bringFile(const std::string& path, bool reachable) {
  const auto shipped = fileDigest(joinPath(installed_, path));
  if (!shipped) return fail(shipped.error());
  const auto known = list_.find(path);
  const ShippedEntry kind = reachable ? entryKindAt(joinPath(folder_, path)) : ShippedEntry::Other;
  if (kind == ShippedEntry::Nothing && known == list_.end()) return install(path, *shipped, counts_.added);
  if (kind == ShippedEntry::File) {
    const auto present = fileDigest(joinPath(folder_, path));
    if (!present) return fail(present.error());
    if (*present == *shipped) {
      list_[path] = *shipped;
      return {};
    }
    if (known != list_.end() && known->second == *present) return install(path, *shipped, counts_.renewed);
  }
  // Changed or deleted by the merchant. It stays in the list, so that a shipped file that is restored is updated again.
  list_.emplace(path, *shipped);
  ++counts_.kept;
  return {};
}

Result<> Update::install(const std::string& path, const std::string& digest, int& count) {
  const std::string target = joinPath(folder_, path);
  if (auto created = createFolders(std::string(folderOf(target))); !created) return created;
  if (auto copied = copyFile(joinPath(installed_, path), target); !copied) return copied;
  list_[path] = digest;
  ++count;
  return {};
}

}  // namespace

std::string userApplicationFolder() { return userFolder("XDG_DATA_HOME", ".local/share") + "/korvane"; }

Result<ApplicationUpdate> prepareApplicationFolder(const std::string& installed, const std::string& folder) {
  if (!folderExists(installed)) return systemFailure(ENOENT, installed);
  if (auto created = createFolders(folder); !created) return fail(created.error());
  const std::string listPath = joinPath(folder, listName);
  auto list = readList(listPath);
  if (!list) return fail(list.error());
  const std::string before = listText(*list);
  Update update(installed, folder, std::move(*list));
  if (auto brought = update.bring("", true); !brought) return fail(brought.error());
  const std::string after = listText(update.list());
  if (after != before || !fileExists(listPath)) {
    if (auto written = writeBytes(listPath, after); !written) return fail(written.error());
  }
  return update.counts();
}

}  // namespace kv
