#include "builder/doctor/doctor_facts.h"

#include <algorithm>
#include <functional>

#include "commerce/gateways/gateway_account.h"
#include "platform/database/rows.h"
#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/image/picture_file.h"
#include "platform/image/pixels.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view rootID = "###";
constexpr int settingsPictures = 2;

/// The languages in which a text is missing, its columns beginning at `at`.
LanguageFlags emptyTexts(const Statement& row, int at, int languages) {
  LanguageFlags flags = 0;
  for (int language = 0; language < languages; ++language) {
    if (trim(row.text(at + language)).empty())
      flags |= static_cast<LanguageFlags>(1U << static_cast<unsigned>(language));
  }
  return flags;
}

struct DoctorReader {
  Session& session;
  DoctorFacts& facts;
  TextLook& look;
  PictureShelf& shelf;

  Result<> readSettings() {
    auto generale = firstRow(session.catalogue, "SELECT * FROM generale");
    if (!generale) return fail(generale.error());
    auto pagamento = firstRow(session.catalogue, "SELECT * FROM pagamento");
    if (!pagamento) return fail(pagamento.error());
    facts.generale = std::move(*generale);
    facts.pagamento = std::move(*pagamento);
    return {};
  }

  void lookAtSettings() const {
    static constexpr std::string_view memos[]{"testo1",   "testo2",       "home1",      "home2",     "condizioni",
                                              "datipers", "contrassegno", "anticipato", "rifiutato", "recesso"};
    const auto target = [](std::string_view column, int language) {
      return FindingTarget{FindingSubject::Settings, "", std::string(column), language, 0};
    };
    for (int language = 1; language <= facts.languages; ++language) {
      const std::string suffix(languageSuffixes[static_cast<std::size_t>(language - 1)]);
      for (const std::string_view memo : memos) {
        look.text(facts.generale.text(std::string(memo) + suffix), TextHome::Page, target(memo, language), "Negozio");
      }
      look.title(facts.generale.text("titolo" + suffix), TextHome::Page, target("titolo", language), "Negozio");
    }
    for (int slot = 0; slot < settingsPictures; ++slot) {
      const std::string digit = std::to_string(slot);
      shelf.note(facts.generale.text("immagine" + digit), {target("immagine" + digit, 1), noIndex, slot,
                                                           static_cast<int>(facts.generale.integer("imgX" + digit)),
                                                           static_cast<int>(facts.generale.integer("imgY" + digit))});
    }
  }

  Result<> readDepartments() {
    const int n = facts.languages;
    const std::string sql = "SELECT ID, template, genitore, nascosto, immagine0, imgX0, imgY0, " +
                            languageColumns("titolo", n) + ", " + languageColumns("descrizione", n) + ", " +
                            languageColumns("note", n) + ", " + languageColumns("immagine1", n) + ", " +
                            languageColumns("imgX1", n) + ", " + languageColumns("imgY1", n) +
                            " FROM categorie ORDER BY livello, ordinamento, contatore";
    auto read = forEachRow(session.catalogue, sql, [&](const Statement& row) { takeDepartment(row); });
    if (!read) return read;
    for (DepartmentFact& department : facts.departments) {
      const auto parent = facts.departmentIndex.find(foldCase(department.genitore));
      if (department.genitore != rootID && parent != facts.departmentIndex.end()) department.parent = parent->second;
    }
    return {};
  }

  void takeDepartment(const Statement& row) {
    constexpr int texts = 7;
    DepartmentFact department;
    department.ID = row.text(0);
    department.model = trim(row.text(1));
    department.genitore = row.text(2);
    department.isHidden = row.flag(3);
    department.titolo = trim(row.text(texts));
    department.untitled = emptyTexts(row, texts, facts.languages);
    const std::size_t index = facts.departments.size();
    facts.departmentIndex.emplace(foldCase(department.ID), index);
    facts.departments.push_back(std::move(department));
    lookAtDepartment(row, index);
  }

  void lookAtDepartment(const Statement& row, std::size_t index) const {
    const int n = facts.languages, texts = 7;
    const std::string owner = "Reparto " + facts.departmentName(index), ID(row.text(0));
    const auto target = [&](std::string_view column, int language) {
      return FindingTarget{FindingSubject::Department, ID, std::string(column), language, 0};
    };
    for (int i = 0; i < n; ++i) {
      look.title(row.text(texts + i), TextHome::Page, target("titolo", i + 1), owner);
      look.text(row.text(texts + n + i), TextHome::Page, target("descrizione", i + 1), owner);
      look.text(row.text(texts + 2 * n + i), TextHome::Page, target("note", i + 1), owner);
      const int picture = texts + 3 * n + i;
      shelf.note(row.text(picture), {target("immagine1", i + 1), index, 1, static_cast<int>(row.integer(picture + n)),
                                     static_cast<int>(row.integer(picture + 2 * n))});
    }
    shelf.note(row.text(4),
               {target("immagine0", 1), index, 0, static_cast<int>(row.integer(5)), static_cast<int>(row.integer(6))});
  }

  Result<> readVariants() {
    auto read = forEachRow(session.catalogue, "SELECT ID, nome FROM opzioni WHERE ID <> 1 ORDER BY ID",
                           [&](const Statement& row) {
                             VariantFact variant;
                             variant.ID = row.integer(0);
                             variant.nome = trim(row.text(1));
                             facts.variants.push_back(std::move(variant));
                           });
    if (!read) return read;
    const std::string sql = "SELECT ID, OpID, codice, selezionato, " + languageColumns("testo", facts.languages) +
                            " FROM dettagliop ORDER BY OpID, ID";
    auto at = facts.variants.begin();
    return forEachRow(session.catalogue, sql, [&](const Statement& row) {
      at = std::lower_bound(at, facts.variants.end(), row.integer(1),
                            [](const VariantFact& one, std::int64_t ID) { return one.ID < ID; });
      if (at == facts.variants.end() || at->ID != row.integer(1)) return;
      at->values.push_back({row.integer(0), std::string(trim(row.text(2))), trim(row.text(3)) == ".",
                            emptyTexts(row, 4, facts.languages)});
    });
  }

  Result<> readSelling() {
    const std::string sql = "SELECT ID, paese, zona FROM paesi ORDER BY ID";
    auto read = forEachRow(session.catalogue, sql, [&](const Statement& row) {
      const std::int64_t zone = row.integer(2);
      if (zone >= 1 && zone <= 8) return;
      facts.strayCountries.push_back({std::string(row.text(0)), std::string(row.text(1))});
    });
    if (!read) return read;
    facts.gaps = findShippingGaps(session.catalogue);
    const auto states = gatewayStates(session);
    for (std::size_t i = 0; i < states.size(); ++i) {
      if (states[i] != GatewayState::InUseToConfigure) continue;
      facts.unfinishedPayments.emplace_back(gatewayModules()[i].folder);
    }
    return {};
  }

  /// The articles of a branch, from the deepest department up.
  void countBranches() {
    for (DepartmentFact& department : facts.departments) {
      department.below += department.articles;
      std::size_t above = department.parent;
      // A ring of departments ends at its own length.
      for (std::size_t level = 0; above != noIndex && level < facts.departments.size(); ++level) {
        facts.departments[above].below += department.articles;
        above = facts.departments[above].parent;
      }
    }
  }
};

}  // namespace

std::string DoctorFacts::articleName(std::size_t index) const {
  const ArticleFact& article = articles[index];
  if (article.codice.empty() && article.titolo.empty()) return "n. " + std::to_string(article.ID);
  return article.codice + (article.codice.empty() || article.titolo.empty() ? "" : " ") + article.titolo;
}

std::string DoctorFacts::departmentName(std::size_t index) const {
  const DepartmentFact& department = departments[index];
  return department.titolo.empty() ? department.ID : department.titolo;
}

std::string languageColumns(std::string_view column, int languages) {
  std::string list;
  for (int i = 0; i < languages; ++i) {
    list += (list.empty() ? "" : ", ") + std::string(column);
    list += languageSuffixes[static_cast<std::size_t>(i)];
  }
  return list;
}

PictureShelf::PictureShelf(std::string folder, const std::vector<std::string>& names, DoctorFacts& facts)
    : folder_(std::move(folder)), facts_(facts) {
  for (const std::string& name : names) listed_.insert(foldCase(name));
}

void PictureShelf::note(std::string_view name, PictureUse use) {
  name = trim(name);
  if (name.empty()) return;
  const auto known = known_.find(name);
  if (known != known_.end()) {
    use.file = known->second;
  } else {
    use.file = facts_.files.size();
    known_.emplace(name, use.file);
    PictureFile file{std::string(name), false, false, 0, {}};
    const bool isListed = listed_.contains(foldCase(name)) || name.find('/') != std::string_view::npos;
    const auto path = isListed ? findEntry(folder_, name) : std::nullopt;
    const auto stamp = path ? fileStamp(*path) : Result<FileStamp>(fail(ErrorKind::Missing, folder_, file.name));
    if (stamp) {
      file.isThere = true;
      file.bytes = stamp->size;
      const auto size = shownSize(*path);
      file.size = size.value_or(ImageSize{});
      file.isDamaged = !size && file.bytes <= mostPictureBytes && isPictureName(name);
    }
    facts_.files.push_back(std::move(file));
  }
  facts_.pictures.push_back(std::move(use));
}

Result<DoctorFacts> readDoctorFacts(Session& session, const std::string& applicationFolder) {
  DoctorFacts facts;
  facts.languages = std::clamp(session.languageCount, 1, maxLanguages);
  facts.languageNames = session.languageNames;
  TextLook look{shippedTags(), {}, facts.flaws};
  const std::string work = entryPath(session.ShopFolder, "work");
  const auto pictures = readFileNames(work, "*");
  if (!pictures) return fail(pictures.error());
  PictureShelf shelf(work, *pictures, facts);
  DoctorReader reader{session, facts, look, shelf};
  if (auto read = reader.readSettings(); !read) return fail(read.error());
  if (auto read = readSiteFacts(session, applicationFolder, facts, look); !read) return fail(read.error());
  reader.lookAtSettings();
  if (auto read = reader.readDepartments(); !read) return fail(read.error());
  if (auto read = reader.readVariants(); !read) return fail(read.error());
  if (auto read = readArticleFacts(session.catalogue, facts, look, shelf); !read) return fail(read.error());
  if (auto read = reader.readSelling(); !read) return fail(read.error());
  auto duties = legalDuties(session, applicationFolder);
  if (!duties) return fail(duties.error());
  facts.duties = std::move(*duties);
  reader.countBranches();
  return facts;
}

}  // namespace kv
