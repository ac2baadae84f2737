#include "store/exchange/export_plan.h"

#include <algorithm>

#include "platform/files/trees.h"
#include "platform/text/text.h"

namespace kv {

std::string ExportPlan::known(const std::string& path) const {
  if (entries_.contains(path)) return path;
  const auto hit = spelled_.find(foldCase(path));
  if (hit != spelled_.end()) return hit->second;
  const std::string folder(folderOf(path));
  return folder.empty() ? path : joinPath(known(folder), baseName(path));
}

void ExportPlan::put(const std::string& path, ZipEntry entry) {
  const std::string target = known(path);
  entry.name = entry.name.ends_with('/') ? target + "/" : target;
  entries_[target] = std::move(entry);
}

Result<> ExportPlan::addTree(const std::string& from, const std::string& below) {
  if (!folderExists(from)) return {};
  const auto tree = listTree(from, exceptFolder_);
  if (!tree) return fail(tree.error());
  if (!below.empty()) addFolder(below);
  // Two names of one folder that differ in case are two files: only what was there before counts.
  for (const auto& [path, entry] : entries_) spelled_.emplace(foldCase(path), path);
  for (const TreeEntry& each : *tree) {
    const std::string path = joinPath(below, each.path);
    put(path, each.isFolder ? ZipEntry{"/", {}, {}} : ZipEntry{{}, joinPath(from, each.path), {}});
  }
  return {};
}

void ExportPlan::addFolder(const std::string& path) {
  const std::string parent(folderOf(path));
  if (!parent.empty()) addFolder(parent);
  put(path, {"/", {}, {}});
}

void ExportPlan::addFile(const std::string& from, const std::string& path) {
  if (fileExists(from)) put(path, {{}, from, {}});
}

void ExportPlan::addContent(std::string bytes, const std::string& path) { put(path, {{}, {}, std::move(bytes)}); }

std::string ExportPlan::contentOf(const std::string& path) const {
  const auto found = entries_.find(known(path));
  if (found == entries_.end()) return {};
  return found->second.content ? *found->second.content : readBytes(found->second.source).value_or("");
}

std::vector<std::string> ExportPlan::filesIn(const std::string& folder, std::string_view pattern) const {
  std::vector<std::string> names;
  const std::string home = known(folder);
  for (const auto& [path, entry] : entries_) {
    const bool isHere = folderOf(path) == home && !entry.name.ends_with('/');
    if (isHere && matchesWildcard(baseName(path), pattern)) names.emplace_back(baseName(path));
  }
  std::ranges::sort(names, {}, [](const std::string& name) { return foldCase(name); });
  return names;
}

void ExportPlan::remove(const std::string& path) { entries_.erase(known(path)); }

std::vector<ZipEntry> ExportPlan::entries() const {
  std::vector<ZipEntry> all;
  for (const auto& [path, entry] : entries_) all.push_back(entry);
  return all;
}

Result<> ExportPlan::writeTo(const std::string& to, const std::function<bool(double)>& goOn) const {
  double done = 0;
  const auto count = static_cast<double>(std::max<std::size_t>(entries_.size(), 1));
  for (const auto& [path, entry] : entries_) {
    if (!goOn(done++ / count)) return fail(ErrorKind::Cancelled, to, "cancelled");
    const std::string target = joinPath(to, path);
    Result<> made;
    if (entry.name.ends_with('/')) {
      made = createFolder(target);
    } else {
      made = entry.content ? writeBytes(target, *entry.content) : copyFile(entry.source, target);
    }
    if (!made) return made;
  }
  return {};
}

}  // namespace kv
