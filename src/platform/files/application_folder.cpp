#include "platform/files/application_folder.h"

#include <openssl/evp.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <map>

#include "platform/files/file_access.h"
#include "platform/files/files.h"
#include "platform/files/user_folders.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view listName = "installed.lst";
constexpr std::size_t digestLetters = 64;

using ShippedList = std::map<std::string, std::string>;  // path below the folder -> digest as shipped

Result<std::string> digestOf(const std::string& path) {
  const auto bytes = readBytes(path);
  if (!bytes) return fail(bytes.error());
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned length = 0;
  if (EVP_Digest(bytes->data(), bytes->size(), digest.data(), &length, EVP_sha256(), nullptr) != 1) {
    return fail(ErrorKind::Other, path, "SHA-256 is not available");
  }
  constexpr std::string_view letters = "0123456789abcdef";
  std::string text;
  for (unsigned i = 0; i < length; ++i) {
    text += letters[digest[i] >> 4U];
    text += letters[digest[i] & 15U];
  }
  return text;
}

// Lines of the form of sha256sum: the digest, two blanks, the path. A line of another form says nothing.
Result<ShippedList> readList(const std::string& path) {
  const auto text = readBytes(path);
  if (!text && text.error().kind == ErrorKind::Missing) return ShippedList{};
  if (!text) return fail(text.error());
  ShippedList list;
  for (const std::string_view line : splitLines(*text)) {
    if (line.size() < digestLetters + 3 || line.substr(digestLetters, 2) != "  ") continue;
    list[std::string(line.substr(digestLetters + 2))] = line.substr(0, digestLetters);
  }
  return list;
}

std::string listText(const ShippedList& list) {
  std::string text;
  for (const auto& [path, digest] : list) text += digest + "  " + path + "\n";
  return text;
}

enum class Standing { Nothing, File, Folder, Other };

// What stands at a path, a link counting as Other: it is of the merchant's making and never written through.
Standing standingAt(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return Standing::Nothing;
  if (S_ISREG(status.st_mode)) return Standing::File;
  return S_ISDIR(status.st_mode) ? Standing::Folder : Standing::Other;
}

class Update {
 public:
  Update(std::string installed, std::string folder, ShippedList list)
      : installed_(std::move(installed)), folder_(std::move(folder)), list_(std::move(list)) {}

  /// Brings what is below `below` up to date. `reachable` is false where the merchant put something else in the place
  /// of a folder: its files are then his.
  Result<> bring(const std::string& below, bool reachable);
  const ShippedList& list() const { return list_; }
  const ApplicationUpdate& counts() const { return counts_; }

 private:
  Result<> bringFolder(const std::string& path, bool reachable);
  Result<> bringFile(const std::string& path, bool reachable);
  Result<> place(const std::string& path, const std::string& digest, int& count);

  std::string installed_, folder_;
  ShippedList list_;
  ApplicationUpdate counts_;
};

Result<> Update::bring(const std::string& below, bool reachable) {
  const std::string source = joinPath(installed_, below);
  for (const std::string& name : listFiles(source, "*")) {
    const std::string path = joinPath(below, name);
    if (path == listName || standingAt(joinPath(source, name)) != Standing::File) continue;
    if (auto brought = bringFile(path, reachable); !brought) return brought;
  }
  for (const std::string& name : listFolders(source)) {
    if (standingAt(joinPath(source, name)) != Standing::Folder) continue;
    if (auto brought = bringFolder(joinPath(below, name), reachable); !brought) return brought;
  }
  return {};
}

Result<> Update::bringFolder(const std::string& path, bool reachable) {
  const std::string source = joinPath(installed_, path), target = joinPath(folder_, path);
  const Standing standing = reachable ? standingAt(target) : Standing::Other;
  // A folder with files comes into being with its first file, so that a deleted one doesn't come back bare.
  const bool isBare = listFiles(source, "*").empty() && listFolders(source).empty();
  if (standing == Standing::Nothing && isBare) return createFolders(target);
  return bring(path, standing == Standing::Nothing || standing == Standing::Folder);
}

Result<> Update::bringFile(const std::string& path, bool reachable) {
  const auto shipped = digestOf(joinPath(installed_, path));
  if (!shipped) return fail(shipped.error());
  const auto known = list_.find(path);
  const Standing standing = reachable ? standingAt(joinPath(folder_, path)) : Standing::Other;
  if (standing == Standing::Nothing && known == list_.end()) return place(path, *shipped, counts_.added);
  if (standing == Standing::File) {
    const auto present = digestOf(joinPath(folder_, path));
    if (!present) return fail(present.error());
    if (*present == *shipped) {
      list_[path] = *shipped;
      return {};
    }
    if (known != list_.end() && known->second == *present) return place(path, *shipped, counts_.renewed);
  }
  // The merchant's. The list goes on holding what he changed or deleted, so that a file put back is renewed again.
  list_.emplace(path, *shipped);
  ++counts_.kept;
  return {};
}

Result<> Update::place(const std::string& path, const std::string& digest, int& count) {
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
