// The two pools of a language. Names are the same name in any case, as the merchant's own system has it: a file copied
// over one of another case takes the name that stands there.
#include <unordered_map>
#include <unordered_set>

#include "platform/files.h"
#include "platform/text.h"
#include "tags/tag_engine.h"
#include "tags/template_package.h"

namespace kv {

namespace {

constexpr std::string_view pagePattern = "*.*htm*";
constexpr std::string_view modelPattern = "modello*.htm";
constexpr std::string_view scriptPatterns[] = {"*.js", "*.pl", "*.asp", "*.php"};

/// One folder of the pools. Failures are left aside: a file that can't be copied is missed where it is used.
class Pool {
 public:
  explicit Pool(std::string folder) : folder_(std::move(folder)) {
    static_cast<void>(createFolder(folder_));
    clear();
  }
  const std::string& folder() const { return folder_; }

  void copy(const std::string& from, const std::string& name) {
    const auto entry = names_.try_emplace(foldCase(name), name).first;
    static_cast<void>(copyFile(joinPath(from, name), joinPath(folder_, entry->second)));
  }
  void replaceReferences(std::string_view pattern, const ReferenceReplacer& replacer) const {
    for (const std::string& name : listFiles(folder_, pattern)) {
      const std::string path = joinPath(folder_, name);
      const auto text = readText(path);
      if (!text) continue;
      if (const std::string renewed = replacer.apply(*text); renewed != *text) {
        static_cast<void>(writeText(path, renewed));
      }
    }
  }

 private:
  void clear() const {
    for (const std::string& name : listFiles(folder_, "*.*")) static_cast<void>(deleteFile(joinPath(folder_, name)));
  }

  std::string folder_;
  std::unordered_map<std::string, std::string> names_;  // folded name to name
};

/// The names whose references are rewritten, in the order in which they came.
class NameList {
 public:
  void add(const std::string& name) {
    known_.insert(foldCase(name));
    names_.push_back(name);
  }
  void addNew(const std::string& name) {
    if (!known_.contains(foldCase(name))) add(name);
  }
  const std::vector<std::string>& names() const { return names_; }

 private:
  std::vector<std::string> names_;
  std::unordered_set<std::string> known_;
};

/// A subfolder, named without regard to case.
std::string subfolder(const std::string& folder, std::string_view name) {
  return findEntry(folder, name).value_or(joinPath(folder, name));
}

void fillTemplatePool(const PoolSources& sources, Pool& pool, NameList& list) {
  const std::string& package = sources.templateFolder;
  for (const std::string& name : listFiles(package, pagePattern)) {
    if (!matchesLike(name, modelPattern)) list.add(name);
  }
  for (const std::string& name : listFiles(package, "*.*")) {
    pool.copy(package, name);
    if (CanCopy(name)) list.add(name);
  }
  if (sources.languageCode.empty()) return;
  const std::string language = subfolder(package, sources.languageCode);
  for (const std::string& name : listFiles(language, "*.*")) {
    pool.copy(language, name);
    if (!matchesLike(name, modelPattern)) list.addNew(name);
  }
}

void fillCodePool(const std::string& folder, Pool& pool, NameList& list) {
  const std::string code = subfolder(folder, "code");
  for (const std::string_view pattern : scriptPatterns) {
    for (const std::string& name : listFiles(code, pattern)) {
      pool.copy(code, name);
      list.add(name);
    }
  }
}

bool isSameFolder(std::string_view a, std::string_view b) {
  const auto withoutEnd = [](std::string_view path) {
    return path.ends_with('/') ? path.substr(0, path.size() - 1) : path;
  };
  return equalsIgnoringCase(withoutEnd(a), withoutEnd(b));
}

}  // namespace

Pools CreaPool(const PoolSources& sources, std::string_view lingua) {
  const std::string tmp = joinPath(sources.shopFolder, "tmp");
  const Pool above(tmp);
  Pool templates(joinPath(tmp, "1"));
  Pool code(joinPath(tmp, "2"));
  NameList list;
  fillTemplatePool(sources, templates, list);
  fillCodePool(sources.applicationFolder, code, list);
  if (!isSameFolder(sources.shopFolder, sources.applicationFolder)) fillCodePool(sources.shopFolder, code, list);
  if (sources.PatchScript) sources.PatchScript(code.folder());
  const bool keepsNames = sources.pageExtension.empty() || equalsIgnoringCase(sources.pageExtension, ".htm");
  if (!lingua.empty() || !keepsNames) {
    const ReferenceReplacer replacer(list.names(), sources.pageExtension);
    templates.replaceReferences(pagePattern, replacer);
    code.replaceReferences("*.*", replacer);
  }
  return {templates.folder(), code.folder()};
}

}  // namespace kv
