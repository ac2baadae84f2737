// The two pools of a language. Names ignore case, as on the merchant's own system: a file copied over one whose name
// differs in case alone gets the name of that one.
#include <map>
#include <optional>
#include <unordered_set>

#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/text/text.h"
#include "tags/engine/tag_engine.h"
#include "tags/package/template_package.h"

namespace kv {

namespace {

constexpr std::string_view pagePattern = "*.*htm*";
constexpr std::string_view modelPattern = "modello*.htm";
constexpr std::string_view scriptPatterns[] = {"*.js", "*.pl", "*.asp", "*.php"};

/// One folder of the pools: first the source of each name is determined, then each file is written once.
/// A file that can't be copied is reported where it is needed; one that nobody knows of would be missed by none, so
/// that a folder has to be listed.
class Pool {
 public:
  explicit Pool(std::string folder) : folder_(std::move(folder)) {}
  /// Makes the folder and deletes its files.
  Result<> empty() const {
    ignore(createFolder(folder_), "a file that is missing here is missed where it is used");
    const auto names = readFileNames(folder_, everyFile);
    if (!names) return fail(names.error());
    for (const std::string& name : *names) {
      ignore(deleteFile(joinPath(folder_, name)), "the file that comes here replaces it");
    }
    return {};
  }
  const std::string& folder() const { return folder_; }

  /// Adds a file of a folder, over one of the same name.
  void add(const std::string& from, const std::string& name) {
    const auto entry = entries_.try_emplace(foldCase(name), Entry{name, ""}).first;
    entry->second.source = joinPath(from, name);
  }
  /// Writes the files. With a replacer, the references in those that match the pattern are rewritten on the way.
  void fill(std::string_view pattern, const ReferenceReplacer* replacer) const {
    for (const auto& [folded, entry] : entries_) {
      const std::string target = joinPath(folder_, entry.name);
      const bool isRewritten = replacer != nullptr && (pattern == everyFile || matchesWildcard(entry.name, pattern));
      if (!isRewritten || !rewrite(entry.source, target, *replacer)) {
        ignore(copyFile(entry.source, target), "missed where it is used");
      }
    }
  }
  /// Rewrites the references in files that are in the folder already; none without a replacer.
  Result<> rewriteInPlace(const ReferenceReplacer* replacer) const {
    if (replacer == nullptr) return {};
    const auto names = readFileNames(folder_, everyFile);
    if (!names) return fail(names.error());
    for (const std::string& name : *names) {
      const std::string path = joinPath(folder_, name);
      ignore(rewrite(path, path, *replacer), "the file stays as it is");
    }
    return {};
  }
  static constexpr std::string_view everyFile = "*.*";

 private:
  struct Entry {
    std::string name;
    std::string source;
  };
  // False when nothing was written: the file can't be read, or it holds no such reference.
  static bool rewrite(const std::string& from, const std::string& to, const ReferenceReplacer& replacer) {
    const auto text = readText(from);
    if (!text) return false;
    const std::string renewed = replacer.apply(*text);
    return renewed != *text && writeText(to, renewed).has_value();
  }

  std::string folder_;
  std::map<std::string, Entry> entries_;  // by folded name
};

/// The names whose references are rewritten, in the order in which they were added.
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
std::string subfolder(const std::string& folder, std::string_view name) { return entryPath(folder, name); }

Result<> fillTemplatePool(const PoolSources& sources, Pool& pool, NameList& list) {
  const std::string& package = sources.templateFolder;
  const auto names = readFileNames(package, Pool::everyFile);
  if (!names) return fail(names.error());
  for (const std::string& name : *names) {
    if (matchesWildcard(name, pagePattern) && !matchesLike(name, modelPattern)) list.add(name);
  }
  for (const std::string& name : *names) {
    pool.add(package, name);
    if (CanCopy(name)) list.add(name);
  }
  return {};
}

/// The files of the package's folder for the language.
Result<> addLanguageFiles(const PoolSources& sources, Pool& pool, NameList& list) {
  if (sources.languageCode.empty()) return {};
  const std::string language = subfolder(sources.templateFolder, sources.languageCode);
  const auto names = readFileNames(language, Pool::everyFile);
  if (!names) return fail(names.error());
  for (const std::string& name : *names) {
    pool.add(language, name);
    if (!matchesLike(name, modelPattern)) list.addNew(name);
  }
  return {};
}

Result<> fillCodePool(const std::string& folder, Pool& pool, NameList& list) {
  const std::string code = subfolder(folder, "code");
  for (const std::string_view pattern : scriptPatterns) {
    const auto names = readFileNames(code, pattern);
    if (!names) return fail(names.error());
    for (const std::string& name : *names) {
      pool.add(code, name);
      list.add(name);
    }
  }
  return {};
}

bool isSameFolder(std::string_view a, std::string_view b) {
  const auto withoutEnd = [](std::string_view path) {
    return path.ends_with('/') ? path.substr(0, path.size() - 1) : path;
  };
  return equalsIgnoringCase(withoutEnd(a), withoutEnd(b));
}

Result<> emptyPools(const std::vector<Pool>& pools) {
  for (const Pool& pool : pools) {
    if (auto emptied = pool.empty(); !emptied) return emptied;
  }
  return {};
}

Result<> fillPools(const PoolSources& sources, Pool& templates, Pool& code, NameList& list) {
  if (auto filled = fillTemplatePool(sources, templates, list); !filled) return filled;
  if (auto added = addLanguageFiles(sources, templates, list); !added) return added;
  if (auto filled = fillCodePool(sources.applicationFolder, code, list); !filled) return filled;
  if (isSameFolder(sources.shopFolder, sources.applicationFolder)) return {};
  return fillCodePool(sources.shopFolder, code, list);
}

}  // namespace

Result<Pools> CreaPool(const PoolSources& sources, std::string_view lingua) {
  const std::string tmp = entryPath(sources.shopFolder, "tmp");
  Pool templates(joinPath(tmp, "1"));
  Pool code(joinPath(tmp, "2"));
  NameList list;
  if (auto emptied = emptyPools({Pool(tmp), templates, code}); !emptied) return fail(emptied.error());
  if (auto filled = fillPools(sources, templates, code, list); !filled) return fail(filled.error());

  const bool keepsNames = sources.pageExtension.empty() || equalsIgnoringCase(sources.pageExtension, ".htm");
  std::optional<ReferenceReplacer> replacer;
  if (!lingua.empty() || !keepsNames) replacer.emplace(list.names(), sources.pageExtension);
  const ReferenceReplacer* rewriting = replacer ? &*replacer : nullptr;
  templates.fill(pagePattern, rewriting);
  // Patches look for the scripts as the merchant has them, before any reference in them is rewritten.
  code.fill(Pool::everyFile, sources.PatchScript ? nullptr : rewriting);
  if (sources.PatchScript) {
    sources.PatchScript(code.folder());
    if (auto rewritten = code.rewriteInPlace(rewriting); !rewritten) return fail(rewritten.error());
  }
  return Pools{templates.folder(), code.folder()};
}

}  // namespace kv
