// The checks of pictures, texts and template, and of when the site was made.
#include "builder/doctor/checks.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::uint64_t heaviestPicture = std::uint64_t{500} * 1024;  // bytes

std::string ownerOf(const DoctorFacts& facts, const PictureUse& use) {
  if (use.target.subject == FindingSubject::Article) return "Articolo " + facts.articleName(use.owner);
  if (use.target.subject == FindingSubject::Department) return "Reparto " + facts.departmentName(use.owner);
  return "Negozio";
}

Finding pictureFinding(const DoctorFacts& facts, const PictureUse& use, const std::string& text) {
  Finding finding;
  finding.text = ownerOf(facts, use) + ": " + text;
  finding.target = use.target;
  return finding;
}

std::string sizeText(int width, int height) { return std::to_string(width) + "x" + std::to_string(height); }

/// The two fields that hold the size of a picture.
std::vector<FieldWrite> sizeWrites(const DoctorFacts& facts, const PictureUse& use, ImageSize size) {
  std::string table = "generale", suffix = std::to_string(use.slot);
  Value key = Null{};
  if (use.target.subject == FindingSubject::Article) {
    table = "articoli";
    key = facts.articles[use.owner].ID;
  } else if (use.target.subject == FindingSubject::Department) {
    table = "categorie";
    key = facts.departments[use.owner].ID;
    suffix += languageSuffixes[static_cast<std::size_t>(use.target.language - 1)];
  }
  return {{table, key, "imgX" + suffix, std::int64_t{size.width}},
          {table, key, "imgY" + suffix, std::int64_t{size.height}}};
}

Findings findFlaws(const DoctorFacts& facts, FlawKind kind, const std::string& before, const std::string& after) {
  Findings found;
  for (const TextFlaw& flaw : facts.flaws) {
    if (flaw.kind != kind) continue;
    Finding finding;
    finding.text = flaw.owner + ": " + before + flaw.detail + after;
    finding.target = flaw.target;
    finding.detail = flaw.owner + "|" + flaw.detail;
    found.push_back(std::move(finding));
  }
  return found;
}

}  // namespace

Findings findMissingPictures(const DoctorFacts& facts) {
  Findings found;
  for (const PictureUse& use : facts.pictures) {
    const PictureFile& file = facts.files[use.file];
    if (!file.isThere) found.push_back(pictureFinding(facts, use, "l'immagine " + file.name + " non esiste"));
  }
  return found;
}

Findings findDamagedPictures(const DoctorFacts& facts) {
  Findings found;
  for (const PictureUse& use : facts.pictures) {
    const PictureFile& file = facts.files[use.file];
    if (!file.isDamaged) continue;
    found.push_back(pictureFinding(facts, use, "l'immagine " + file.name + " è danneggiata e non si vede"));
  }
  return found;
}

Findings findResizedPictures(const DoctorFacts& facts) {
  Findings found;
  for (const PictureUse& use : facts.pictures) {
    const PictureFile& file = facts.files[use.file];
    const bool isKnown = use.width > 0 && file.size.width > 0;
    if (!isKnown || file.size == ImageSize{use.width, use.height}) continue;
    found.push_back(pictureFinding(facts, use,
                                   "l'immagine " + file.name + " è mostrata " + sizeText(use.width, use.height) +
                                       ", ma è " + sizeText(file.size.width, file.size.height)));
    found.back().mending = "Usa le dimensioni vere";
    found.back().writes = sizeWrites(facts, use, file.size);
  }
  return found;
}

Findings findHeavyPictures(const DoctorFacts& facts) {
  Findings found;
  for (const PictureUse& use : facts.pictures) {
    const PictureFile& file = facts.files[use.file];
    if (file.bytes <= heaviestPicture) continue;
    found.push_back(pictureFinding(
        facts, use,
        "l'immagine " + file.name + " è di " + std::to_string(file.bytes / 1024) + " KB e si carica lentamente"));
  }
  return found;
}

Findings findEndlessTags(const DoctorFacts& facts) {
  return findFlaws(facts, FlawKind::EndlessTag, "il tag ", " non è chiuso, la costruzione si interromperà");
}
Findings findUnknownTags(const DoctorFacts& facts) {
  return findFlaws(facts, FlawKind::UnknownTag, "il tag ", " non è sostituito e resta visibile");
}
Findings findReferences(const DoctorFacts& facts) {
  return findFlaws(facts, FlawKind::Reference, "il carattere ", " del titolo può apparire come codice");
}
Findings findDeadLinks(const DoctorFacts& facts) {
  return findFlaws(facts, FlawKind::DeadLink, "il link ", " porta a una pagina che non esiste");
}

Findings findUntranslatedShop(const DoctorFacts& facts) {
  struct ShopText {
    std::string_view column, caption;
  };
  static constexpr ShopText texts[]{{"titolo", "il nome del negozio"},
                                    {"home1", "il testo \"Home page 1\""},
                                    {"home2", "il testo \"Home page 2\""},
                                    {"testo1", "il testo \"Testo libero 1\""},
                                    {"testo2", "il testo \"Testo libero 2\""},
                                    {"rifiutato", "il testo \"Reparto non accessibile\""},
                                    {"contrassegno", "il testo del contrassegno"},
                                    {"anticipato", "il testo del pagamento anticipato"}};
  Findings found;
  for (int language = 2; language <= facts.languages; ++language) {
    const auto index = static_cast<std::size_t>(language - 1);
    for (const ShopText& text : texts) {
      const std::string translated = std::string(text.column) + std::string(languageSuffixes[index]);
      if (trim(facts.generale.text(text.column)).empty() || !trim(facts.generale.text(translated)).empty()) continue;
      Finding finding;
      finding.text = "Negozio: manca " + std::string(text.caption) + " in " + facts.languageNames[index];
      finding.target = {FindingSubject::Settings, "", std::string(text.column), language, 0};
      found.push_back(std::move(finding));
    }
  }
  return found;
}

Findings findTemplateFaults(const DoctorFacts& facts) {
  if (!facts.hasTemplate) return {commandFinding("Il negozio non ha un template installato", "template")};
  Findings found;
  if (facts.models.empty()) found.push_back(commandFinding("Il template non ha modelli di pagina", "template"));
  for (const ModelFlaw& flaw : facts.modelFlaws) {
    const std::string text = flaw.missing.empty() ? "il tag <KV_END> precede il tag <KV_START>"
                                                  : "manca il tag " + flaw.missing + ", gli articoli non compaiono";
    found.push_back(commandFinding("Template, file " + flaw.file + ": " + text, "template", flaw.file));
  }
  return found;
}

Findings findMissingModules(const DoctorFacts& facts) {
  Findings found;
  for (const std::string& name : facts.missingModules) {
    found.push_back(commandFinding("Lingua " + name + ": il modulo linguistico non è installato", "languages", name));
  }
  return found;
}

Findings findOldSite(const DoctorFacts& facts) {
  const SiteAges& ages = facts.ages;
  if (!ages.built) return {commandFinding("Il sito non è mai stato costruito", "build")};
  if (!ages.catalogue || *ages.catalogue <= *ages.built) return {};
  return {
      commandFinding("Il catalogo è stato modificato dopo l'ultima costruzione: il sito mostra dati vecchi", "build")};
}

Findings findOldServer(const DoctorFacts& facts) {
  const SiteAges& ages = facts.ages;
  if (!ages.built || !ages.rows) return {};
  if (!ages.confirmed) return {commandFinding("Il sito costruito non è mai stato messo online", "publish")};
  if (*ages.rows <= *ages.confirmed) return {};
  return {
      commandFinding("Il sito è stato costruito dopo l'ultimo aggiornamento del server: i visitatori vedono quello "
                     "vecchio",
                     "publish")};
}

}  // namespace kv
