// The template, the language modules, the pages of the site and when each was made: what lies in files.
#include "builder/doctor/doctor_facts.h"
#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/text/text.h"
#include "store/shop/shop_folders.h"
#include "tags/package/template_package.h"

namespace kv {
namespace {

constexpr std::string_view sectionMarks[]{"<KV_START>", "<KV_END>"};
constexpr std::string_view pageEnd = ".htm";

/// The stem with the suffix of every language, and an extension.
void addPages(NameSet& pages, std::string_view stem, int languages, std::string_view extension) {
  for (int i = 0; i < languages; ++i) {
    const std::string_view suffix = languageSuffixes[static_cast<std::size_t>(i)];
    pages.insert(foldCase(std::string(stem) + std::string(suffix) + std::string(extension)));
  }
}

bool isModel(std::string_view name) {
  return startsWithIgnoringCase(name, "modello") && endsWithIgnoringCase(name, pageEnd);
}

TextHome homeOf(std::string_view name) {
  if (isModel(name)) return TextHome::ModelPage;
  return equalsIgnoringCase(name, "results.htm") ? TextHome::ResultsPage : TextHome::Page;
}

std::optional<std::int64_t> changedAt(const std::string& path) {
  const auto stamp = fileStamp(path);
  return stamp ? std::optional(stamp->changedAt) : std::nullopt;
}

struct SiteReader {
  const Session& session;
  const std::string& application;
  DoctorFacts& facts;
  TextLook& look;

  void readLanguages() const {
    const std::string folder = entryPath(application, languagesFolder);
    for (int i = 0; i < facts.languages; ++i) {
      const auto index = static_cast<std::size_t>(i);
      const std::string& name = facts.languageNames[index];
      const auto file = findEntry(folder, name + ".lng");
      const auto text = file ? readText(*file) : Result<std::string>(fail(ErrorKind::Missing, folder, name));
      if (text) {
        look.known.words[index] = LanguageModule::parse(*text);
      } else {
        facts.missingModules.push_back(name);
      }
    }
    look.known.customOn = areCustomTagsOn(facts.generale.text("personaltags"));
    if (look.known.customOn) look.known.custom = CaricaTagPersonali(session.ShopFolder, application);
  }

  Result<> readTemplate() const {
    const std::string folder = joinPath(application, session.templatePath);
    facts.hasTemplate = !session.templatePath.empty() && folderExists(folder);
    if (!facts.hasTemplate) return {};
    const auto names = readFileNames(folder, "*");
    if (!names) return fail(names.error());
    facts.models = pageModels(folder);
    for (const std::string& name : *names) {
      if (!endsWithIgnoringCase(name, pageEnd)) continue;
      readPage(folder, name);
      const std::string stem = name.substr(0, name.size() - pageEnd.size());
      if (isModel(name)) continue;
      addPages(look.pages, stem, facts.languages, ".php");
      if (homeOf(name) == TextHome::ResultsPage) addPages(look.pages, stem, facts.languages, pageEnd);
    }
    return {};
  }

  void readPage(const std::string& folder, const std::string& name) const {
    const auto text = readText(joinPath(folder, name));
    if (!text) return;
    const FindingTarget target{FindingSubject::Command, "template", "", 1, 0};
    const std::string owner = "Template, file " + name;
    for (const TagFlaw& flaw : findTagFlaws(*text, look.known, homeOf(name), 1)) {
      const FlawKind kind = flaw.isEndless ? FlawKind::EndlessTag : FlawKind::UnknownTag;
      facts.flaws.push_back({kind, target, owner, flaw.tag});
    }
    if (isModel(name)) checkMarks(*text, name);
  }

  void checkMarks(std::string_view text, const std::string& name) const {
    std::size_t at[2]{};
    for (int i = 0; i < 2; ++i) {
      at[i] = findIgnoringCase(text, sectionMarks[i]);
      if (at[i] != std::string_view::npos) continue;
      facts.modelFlaws.push_back({name, std::string(sectionMarks[i])});
      return;
    }
    if (at[0] > at[1]) facts.modelFlaws.push_back({name, ""});
  }

  /// What lies in the online folder can be linked to as well, whoever put it there.
  Result<> readPages(Database& catalogue) const {
    for (const std::string& folder : {entryPath(session.ShopFolder, "code"), entryPath(application, "code")}) {
      const auto names = readFileNames(folder, "*.php");
      if (!names) return fail(names.error());
      for (const std::string& name : *names) {
        addPages(look.pages, name.substr(0, name.size() - 4), facts.languages, ".php");
      }
    }
    const auto online = readFileNames(session.onlineFolder, "*");
    if (!online) return fail(online.error());
    for (const std::string& name : *online) look.pages.insert(foldCase(name));
    auto row = catalogue.prepare("SELECT pagina FROM categorie");
    if (!row) return fail(row.error());
    for (auto found = row->step();; found = row->step()) {
      if (!found) return fail(found.error());
      if (!*found) return {};
      addPages(look.pages, row->text(0), facts.languages, ".php");
    }
  }

  void readAges() const {
    const std::string& shop = session.ShopFolder;
    facts.ages = {changedAt(entryPath(shop, catalogueFile)), changedAt(entryPath(shop, "kvftp.dat")),
                  changedAt(entryPath(shop, "db/sql.mdb")), changedAt(entryPath(shop, "db/last.mdb"))};
  }
};

}  // namespace

void TextLook::text(std::string_view text, TextHome home, const FindingTarget& target, const std::string& owner) const {
  if (text.find_first_of("<&%") == std::string_view::npos) return;
  for (const TagFlaw& flaw : findTagFlaws(text, known, home, target.language)) {
    flaws.push_back({flaw.isEndless ? FlawKind::EndlessTag : FlawKind::UnknownTag, target, owner, flaw.tag});
  }
  std::string link = firstDeadLink(text, pages);
  if (!link.empty()) flaws.push_back({FlawKind::DeadLink, target, owner, std::move(link)});
}

void TextLook::title(std::string_view text, TextHome home, const FindingTarget& target,
                     const std::string& owner) const {
  this->text(text, home, target, owner);
  const std::string_view character = firstReference(text);
  if (!character.empty()) flaws.push_back({FlawKind::Reference, target, owner, std::string(character)});
}

Result<> readSiteFacts(Session& session, const std::string& applicationFolder, DoctorFacts& facts, TextLook& look) {
  const SiteReader reader{session, applicationFolder, facts, look};
  reader.readLanguages();
  if (auto read = reader.readTemplate(); !read) return read;
  reader.readAges();
  return reader.readPages(session.catalogue);
}

}  // namespace kv
