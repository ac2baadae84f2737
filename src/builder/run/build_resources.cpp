// Scripts and resources of one language, and what is left to do once at the end of a build.

#include <array>

#include "builder/run/build_phases.h"
#include "builder/run/light_pictures.h"
#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/text/text.h"
#include "tags/package/template_package.h"
#include "tags/syntax/file_naming.h"

namespace kv {

namespace {

Result<> makeScript(const std::string& input, const std::string& path, const PageSources& sources,
                    BuildOutput& output) {
  PageJob job;
  job.input = input;
  job.output = path;
  if (auto made = output.makePage(job, sources); !made) return made;
  output.list(path);
  return {};
}

Result<> makeBackOfficeFile(const std::string& folder, const std::string& name, const PageSources& sources,
                            BuildOutput& output) {
  const std::string input = joinPath(folder, name), path = output.folders().scriptFile(name);
  const bool isScript = endsWithIgnoringCase(name, ".php") || endsWithIgnoringCase(name, ".htm");
  return isScript ? makeScript(input, path, sources, output) : output.copy(input, path);
}

// The same names for every language, so that the files of the last one win: they are listed for each language and made
// for the last.
Result<> makeBackOffice(const PageFacts& facts, BuildOutput& output, const BuildProgress& progress) {
  const std::string folder = joinPath(facts.shop.applicationFolder, "backoffice");
  PageSources sources = facts.sources;
  sources.lingua = "";
  const auto names = readFileNames(folder, "*.*");
  if (!names) return fail(names.error());
  for (const std::string& name : *names) {
    if (auto go = progress.checkCancel(); !go) return go;
    if (facts.language.source.number < facts.shop.languages.count) {
      output.list(output.folders().scriptFile(name));
    } else if (auto made = makeBackOfficeFile(folder, name, sources, output); !made) {
      return made;
    }
  }
  return {};
}

/// The scripts of the code pool that match a pattern, and the folder they go to.
struct ScriptKind {
  std::string_view pattern;
  bool isServerScript;  // goes to the folder of scripts under its own name
};
constexpr std::array<ScriptKind, 4> scriptKinds{{{"*.js", false}, {"*.pl", true}, {"*.asp", false}, {"*.php", false}}};

Result<> makeScripts(const ScriptKind& kind, const PageFacts& facts, BuildOutput& output,
                     const BuildProgress& progress) {
  const std::string& pool = facts.language.source.pools.codePool;
  const SiteFolders& folders = facts.shop.folders;
  const auto names = readFileNames(pool, kind.pattern);
  if (!names) return fail(names.error());
  for (const std::string& name : *names) {
    if (auto go = progress.checkCancel(); !go) return go;
    // Order and search are served by PHP.
    if (equalsIgnoringCase(name, "kvorder.pl") || equalsIgnoringCase(name, "kvsearch.pl")) continue;
    const std::string path = kind.isServerScript ? folders.scriptFile(name)
                                                 : folders.onlineFile(FileLingua(name, facts.language.source.lingua));
    if (auto made = makeScript(joinPath(pool, name), path, facts.sources, output); !made) return made;
  }
  return {};
}

Result<> copyTemplateResources(const PageFacts& facts, BuildOutput& output, const BuildProgress& progress) {
  const std::string& pool = facts.language.source.pools.templatePool;
  const auto names = readFileNames(pool, "*.*");
  if (!names) return fail(names.error());
  for (const std::string& name : *names) {
    if (!CanCopy(name)) continue;
    if (auto go = progress.checkCancel(); !go) return go;
    const std::string path = facts.shop.folders.onlineFile(FileLingua(name, facts.language.source.lingua));
    if (auto copied = output.copy(joinPath(pool, name), path); !copied) return copied;
  }
  return {};
}

/// The lighter forms of a picture go beside it.
Result<> copyForms(LightFolder& light, const std::string& picture, const std::vector<std::string>& pictures,
                   BuildOutput& output) {
  const auto forms = light.formsOf(picture, pictures);
  if (!forms) return fail(forms.error());
  for (const std::string& form : *forms) {
    const std::string from = joinPath(light.folder(), form);
    if (auto copied = output.copy(from, output.folders().onlineFile(form)); !copied) return copied;
  }
  return {};
}

/// Scripts of the site offer the forms that are in it: those of a setting that was turned off have to go.
void removeForms(LightFolder& light, const SiteFolders& folders) {
  for (const std::string& form : light.discard()) {
    ignore(deleteFile(folders.onlineFile(form)), "one that was never copied isn't there");
  }
}

/// A link is a way to publish whatever the merchant can read; the folder itself may be one.
bool leadsOutOfShop(const std::string& picture, const std::string& work, const SiteFolders& folders) {
  return leadsOutOf(picture, work) && leadsOutOf(picture, folders.shop);
}

Result<> copyPictures(const SiteFolders& folders, BuildOutput& output, const BuildProgress& progress) {
  const std::string work = folders.shopFile("work");
  // One that can't be read must not pass for empty: the list of the site's files would lose every picture.
  const auto pictures = readFileNames(work, "*.*");
  if (!pictures) return fail(pictures.error());
  const bool isLight = wantsLightPictures(folders.shop);
  LightFolder light(folders.shop);
  if (!isLight) removeForms(light, folders);
  for (const std::string& name : *pictures) {
    if (auto go = progress.checkCancel(); !go) return go;
    const std::string picture = joinPath(work, name);
    if (leadsOutOfShop(picture, work, folders)) continue;
    if (auto copied = output.copy(picture, folders.onlineFile(name)); !copied) return copied;
    if (!isLight) continue;
    if (auto copied = copyForms(light, picture, *pictures, output); !copied) return copied;
  }
  return isLight ? light.finish() : Result<>();
}

Result<> copyFlags(const ShopFacts& shop, BuildOutput& output) {
  for (int i = 0; i < shop.languages.count; ++i) {
    const std::string flag = shop.languages.codes[static_cast<std::size_t>(i)] + ".gif";
    const auto entry = findEntry(shop.languages.languagesFolder, flag);
    if (!entry) continue;
    if (auto copied = output.copy(*entry, shop.folders.onlineFile("kvan_" + flag)); !copied) return copied;
  }
  return {};
}

}  // namespace

Result<> makeScriptsAndResources(const PageFacts& facts, BuildOutput& output, const BuildProgress& progress) {
  if (auto made = makeBackOffice(facts, output, progress); !made) return made;
  for (const ScriptKind& kind : scriptKinds) {
    if (auto made = makeScripts(kind, facts, output, progress); !made) return made;
  }
  if (auto copied = copyTemplateResources(facts, output, progress); !copied) return copied;
  for (const std::string_view name : {"db.sql", "dbdel.sql"}) {
    output.list(facts.shop.folders.onlineFile(FileLingua(name, facts.language.source.lingua)));
  }
  return {};
}

Result<> finishBuild(const ShopFacts& shop, BuildOutput& output, BuildProgress& progress) {
  progress.finish();
  if (auto copied = copyPictures(shop.folders, output, progress); !copied) return copied;
  if (auto copied = copyFlags(shop, output); !copied) return copied;
  if (auto closed = output.close(); !closed) return closed;
  removePools(shop.folders);
  return {};
}

}  // namespace kv
