// Listings and whole trees; single files are in files.cpp.
#include <dirent.h>
#include <fcntl.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <memory>

#include "platform/files/file_access.h"
#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/files/trees.h"
#include "platform/text/text.h"

namespace kv {
namespace {

enum class EntryKind { File, Folder, Other };

struct Entry {
  std::string name;
  EntryKind kind = EntryKind::Other;
};

EntryKind kindOf(mode_t mode) {
  if (S_ISREG(mode)) return EntryKind::File;
  return S_ISDIR(mode) ? EntryKind::Folder : EntryKind::Other;
}

// The kind of a directory entry, links followed; most file systems give it with the listing.
Entry entryOf(const std::string& folder, const dirent& found) {
  Entry entry{found.d_name, EntryKind::Other};
  if (found.d_type == DT_REG) {
    entry.kind = EntryKind::File;
  } else if (found.d_type == DT_DIR) {
    entry.kind = EntryKind::Folder;
  } else if (found.d_type == DT_LNK || found.d_type == DT_UNKNOWN) {
    struct stat status {};
    if (::stat(joinPath(folder, entry.name).c_str(), &status) == 0) entry.kind = kindOf(status.st_mode);
  }
  return entry;
}

// All entries but "." and "..", sorted by lower-cased name; equal ones by the name itself.
Result<std::vector<Entry>> entriesOf(const std::string& folder) {
  if (!mayProceed(FileStep::List, folder)) return systemFailure(errno, folder);
  const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir(folder.c_str()), ::closedir);
  if (!open) return systemFailure(errno, folder);
  std::vector<std::pair<std::string, Entry>> sorted;
  for (;;) {
    errno = 0;
    const dirent* const found = ::readdir(open.get());
    if (found == nullptr) break;
    const std::string_view name = found->d_name;
    if (name == "." || name == "..") continue;
    sorted.emplace_back(foldCase(name), entryOf(folder, *found));
  }
  if (errno != 0) return systemFailure(errno, folder);
  std::sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) {
    return a.first != b.first ? a.first < b.first : a.second.name < b.second.name;
  });
  std::vector<Entry> entries;
  entries.reserve(sorted.size());
  for (auto& [folded, entry] : sorted) entries.push_back(std::move(entry));
  return entries;
}

/// entriesOf, and none of a folder that is missing.
Result<std::vector<Entry>> entriesOrNone(const std::string& folder) {
  auto entries = entriesOf(folder);
  if (!entries && entries.error().kind == ErrorKind::Missing) return std::vector<Entry>();
  return entries;
}

using FolderId = std::pair<dev_t, ino_t>;

Result<FolderId> folderId(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return systemFailure(errno, path);
  return FolderId{status.st_dev, status.st_ino};
}

class TreeLister {
 public:
  explicit TreeLister(std::vector<FolderId> leftOut) : ancestors_(std::move(leftOut)) {}

  /// Appends what is below `root`/`below`. A folder that is left out, or that holds itself by a link, isn't entered.
  Result<> list(const std::string& root, const std::string& below) {
    const std::string folder = joinPath(root, below);
    const auto id = folderId(folder);
    if (!id) return fail(id.error());
    ancestors_.push_back(*id);
    const auto entries = entriesOf(folder);
    if (!entries) return fail(entries.error());
    for (const Entry& entry : *entries) {
      if (auto listed = add(root, joinPath(below, entry.name), entry); !listed) return listed;
    }
    ancestors_.pop_back();
    return {};
  }
  std::vector<TreeEntry>& items() { return items_; }

 private:
  Result<> add(const std::string& root, const std::string& path, const Entry& entry) {
    if (entry.kind == EntryKind::Other || isUnfinishedName(entry.name)) return {};
    if (entry.kind == EntryKind::Folder) {
      const auto id = folderId(joinPath(root, path));
      if (!id) return fail(id.error());
      if (std::find(ancestors_.begin(), ancestors_.end(), *id) != ancestors_.end()) return {};
    }
    items_.push_back({path, entry.kind == EntryKind::Folder});
    return entry.kind == EntryKind::Folder ? list(root, path) : Result<>{};
  }

  std::vector<FolderId> ancestors_;
  std::vector<TreeEntry> items_;
};

// The paths that the items of a tree are copied to: below `root`, under the names that exist there, case ignored.
class CopyTarget {
 public:
  explicit CopyTarget(std::string root) { folders_[""] = read(std::move(root)); }

  std::string pathFor(const std::string& path) {
    const Known& parent = folders_[std::string(folderOf(path))];
    const std::string name(baseName(path));
    const auto hit = parent.names.find(foldCase(name));
    const std::string exact = joinPath(parent.path, name);
    const bool takesExact = hit == parent.names.end() || fileExists(exact) || folderExists(exact);
    return takesExact ? exact : joinPath(parent.path, hit->second);
  }
  void enter(const std::string& path, std::string folder) { folders_[path] = read(std::move(folder)); }

 private:
  struct Known {
    std::string path;
    std::map<std::string, std::string> names;  // folded name -> name
  };
  static Known read(std::string path) {
    Known known{std::move(path), {}};
    if (const auto entries = entriesOf(known.path)) {
      for (const Entry& entry : *entries) known.names.emplace(foldCase(entry.name), entry.name);
    }
    return known;
  }
  std::map<std::string, Known> folders_;
};

Result<> addOwnerWrite(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return systemFailure(errno, path);
  if (S_ISLNK(status.st_mode) || (status.st_mode & S_IWUSR) != 0) return {};
  if (::chmod(path.c_str(), (status.st_mode & 07777U) | S_IWUSR) != 0) return systemFailure(errno, path);
  return {};
}

/// Creates the listed folders below the target, in the order of the list.
Result<> createListed(const std::vector<TreeEntry>& items, CopyTarget& target) {
  for (const TreeEntry& item : items) {
    if (!item.isFolder) continue;
    const std::string path = target.pathFor(item.path);
    if (auto created = createFolder(path); !created) return created;
    target.enter(item.path, path);
  }
  return {};
}

/// Copies the listed files into the folders that are there already.
Result<> copyListed(const std::vector<TreeEntry>& items, const TreeCopy& copy, CopyTarget& target) {
  for (const TreeEntry& item : items) {
    if (item.isFolder || equalsIgnoringCase(item.path, copy.exceptFile)) continue;
    if (copy.goOn && !copy.goOn()) return fail(ErrorKind::Cancelled, copy.from, "cancelled");
    if (auto copied = copyFile(joinPath(copy.from, item.path), target.pathFor(item.path)); !copied) return copied;
  }
  return {};
}

}  // namespace

std::optional<std::string> findEntry(const std::string& folder, std::string_view name) {
  if (name.empty() || name == "." || name == ".." || name.find('/') != std::string_view::npos) return std::nullopt;
  std::string exact = joinPath(folder, name);
  struct stat status {};
  if (::lstat(exact.c_str(), &status) == 0) return exact;
  const auto entries = entriesOf(folder);
  if (!entries) return std::nullopt;
  const std::string wanted = foldCase(name);
  for (const Entry& entry : *entries) {
    if (foldCase(entry.name) == wanted) return joinPath(folder, entry.name);
  }
  return std::nullopt;
}

std::string entryPath(const std::string& folder, std::string_view name) {
  std::string path = folder;
  while (!name.empty()) {
    const std::string_view part = name.substr(0, name.find('/'));
    path = findEntry(path, part).value_or(joinPath(path, part));
    name.remove_prefix(std::min(name.size(), part.size() + 1));
  }
  return path;
}

std::vector<std::string> listFiles(const std::string& folder, std::string_view pattern) {
  return readFileNames(folder, pattern).value_or(std::vector<std::string>());
}

std::vector<std::string> listFolders(const std::string& folder) {
  return readFolderNames(folder).value_or(std::vector<std::string>());
}

Result<std::vector<std::string>> readFileNames(const std::string& folder, std::string_view pattern) {
  std::vector<std::string> names;
  auto entries = entriesOrNone(folder);
  if (!entries) return fail(entries.error());
  const bool every = pattern == "*.*" || pattern == "*";
  for (Entry& entry : *entries) {
    if (entry.kind != EntryKind::File || isUnfinishedName(entry.name)) continue;
    if (every || matchesWildcard(entry.name, pattern)) names.push_back(std::move(entry.name));
  }
  return names;
}

Result<std::vector<std::string>> readFolderNames(const std::string& folder) {
  std::vector<std::string> names;
  auto entries = entriesOrNone(folder);
  if (!entries) return fail(entries.error());
  for (Entry& entry : *entries) {
    if (entry.kind == EntryKind::Folder && !entry.name.starts_with('.')) names.push_back(std::move(entry.name));
  }
  return names;
}

Result<> copyTree(const std::string& from, const std::string& to) { return copyTree(TreeCopy{from, to, {}, {}, {}}); }

Result<> copyTree(const TreeCopy& copy) {
  std::vector<FolderId> leftOut;
  if (const auto target = folderId(copy.to)) {
    const auto source = folderId(copy.from);
    if (source && *source == *target) return {};
    leftOut.push_back(*target);
  }
  if (const auto except = folderId(copy.exceptFolder)) leftOut.push_back(*except);
  TreeLister lister(std::move(leftOut));
  if (auto listed = lister.list(copy.from, ""); !listed) return listed;
  if (auto created = createFolders(copy.to); !created) return created;
  CopyTarget target(copy.to);
  if (auto created = createListed(lister.items(), target); !created) return created;
  return copyListed(lister.items(), copy, target);
}

Result<std::vector<TreeEntry>> listTree(const std::string& from, const std::string& exceptFolder) {
  std::vector<FolderId> leftOut;
  if (const auto except = folderId(exceptFolder)) leftOut.push_back(*except);
  TreeLister lister(std::move(leftOut));
  if (auto listed = lister.list(from, ""); !listed) return fail(listed.error());
  return std::move(lister.items());
}

Result<bool> isEmptyFolder(const std::string& path) {
  const auto entries = entriesOf(path);
  if (!entries) return fail(entries.error());
  return entries->empty();
}

Result<> removeBelow(const std::string& path) {
  const auto entries = entriesOf(path);
  if (!entries) return fail(entries.error());
  for (const Entry& entry : *entries) {
    const std::string below = joinPath(path, entry.name);
    struct stat status {};
    const bool isFolder = ::lstat(below.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    Result<> removed = isFolder ? removeBelow(below) : deleteFile(below);
    if (removed && isFolder) removed = removeFolder(below);
    if (!removed) return removed;
  }
  return {};
}

Result<> emptyFolder(const std::string& path) {
  const auto entries = entriesOf(path);
  if (!entries) return fail(entries.error());
  for (const Entry& entry : *entries) {
    if (entry.kind == EntryKind::Folder) continue;
    if (auto deleted = deleteFile(joinPath(path, entry.name)); !deleted) return deleted;
  }
  return {};
}

void removeUnfinishedFiles(const std::string& folder) {
  const auto entries = entriesOf(folder);
  if (!entries) return;
  for (const Entry& entry : *entries) {
    if (entry.kind == EntryKind::File && isUnfinishedName(entry.name)) {
      ignore(deleteFile(joinPath(folder, entry.name)), "the next sweep meets it again, and no listing shows it");
    }
  }
}

Result<> makeWritable(const std::string& path) {
  struct statvfs disk {};
  if (::statvfs(path.c_str(), &disk) == 0 && (disk.f_flag & ST_RDONLY) != 0) return systemFailure(EROFS, path);
  if (auto changed = addOwnerWrite(path); !changed) return changed;
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return {};
  const auto entries = entriesOf(path);
  if (!entries) return fail(entries.error());
  for (const Entry& entry : *entries) {
    if (auto changed = makeWritable(joinPath(path, entry.name)); !changed) return changed;
  }
  return {};
}

}  // namespace kv
