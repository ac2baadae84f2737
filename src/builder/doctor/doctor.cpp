#include "builder/doctor/doctor.h"

#include <array>

namespace kv {
namespace {

constexpr const char* silenceTable = "controllosilenzi";
constexpr std::string_view ofArticles = "Articoli", ofDepartments = "Reparti", ofVariants = "Varianti",
                           ofPictures = "Immagini", ofTexts = "Testi e template", ofSelling = "Vendita",
                           ofLaw = "Requisiti di legge", ofServer = "Sito e server";
constexpr std::string_view oldSite = "site.old", oldServer = "server.old";

constexpr std::array checkTable{
    DoctorCheck{"code.missing", ofArticles, Severity::Warning, findMissingCodes},
    DoctorCheck{"code.doubled", ofArticles, Severity::Warning, findDoubledCodes},
    DoctorCheck{"title.missing", ofArticles, Severity::Error, findMissingTitles},
    DoctorCheck{"title.doubled", ofArticles, Severity::Warning, findDoubledTitles},
    DoctorCheck{"article.untranslated", ofArticles, Severity::Warning, findUntranslatedArticles},
    DoctorCheck{"price.zero", ofArticles, Severity::Error, findZeroPrices},
    DoctorCheck{"offer.abovePrice", ofArticles, Severity::Warning, findBadOffers},
    DoctorCheck{"offer.free", ofArticles, Severity::Error, findFreeOffers},
    DoctorCheck{"offer.hidden", ofArticles, Severity::Warning, findHiddenOffers},
    DoctorCheck{"article.stray", ofArticles, Severity::Error, findStrayArticles},
    DoctorCheck{"variant.lost", ofArticles, Severity::Error, findLostVariants},
    DoctorCheck{"department.untitled", ofDepartments, Severity::Error, findUntitledDepartments},
    DoctorCheck{"department.untranslated", ofDepartments, Severity::Warning, findUntranslatedDepartments},
    DoctorCheck{"department.empty", ofDepartments, Severity::Warning, findEmptyDepartments},
    DoctorCheck{"department.hidden", ofDepartments, Severity::Warning, findHiddenBranches},
    DoctorCheck{"department.model", ofDepartments, Severity::Error, findLostModels},
    DoctorCheck{"variant.empty", ofVariants, Severity::Error, findEmptyVariants},
    DoctorCheck{"variant.default", ofVariants, Severity::Warning, findVariantDefaults},
    DoctorCheck{"variant.codes", ofVariants, Severity::Warning, findDoubledValueCodes},
    DoctorCheck{"variant.untranslated", ofVariants, Severity::Warning, findUntranslatedValues},
    DoctorCheck{"picture.missing", ofPictures, Severity::Error, findMissingPictures},
    DoctorCheck{"picture.damaged", ofPictures, Severity::Error, findDamagedPictures},
    DoctorCheck{"picture.size", ofPictures, Severity::Warning, findResizedPictures},
    DoctorCheck{"picture.heavy", ofPictures, Severity::Warning, findHeavyPictures},
    DoctorCheck{"tag.endless", ofTexts, Severity::Error, findEndlessTags},
    DoctorCheck{"tag.unknown", ofTexts, Severity::Warning, findUnknownTags},
    DoctorCheck{"title.reference", ofTexts, Severity::Warning, findReferences},
    DoctorCheck{"link.dead", ofTexts, Severity::Warning, findDeadLinks},
    DoctorCheck{"shop.untranslated", ofTexts, Severity::Warning, findUntranslatedShop},
    DoctorCheck{"template", ofTexts, Severity::Error, findTemplateFaults},
    DoctorCheck{"language.module", ofTexts, Severity::Error, findMissingModules},
    DoctorCheck{"country.stray", ofSelling, Severity::Error, findStrayCountries},
    DoctorCheck{"zone.closed", ofSelling, Severity::Error, findClosedZones},
    DoctorCheck{"zone.steps", ofSelling, Severity::Warning, findShippingSteps},
    DoctorCheck{"payment.none", ofSelling, Severity::Error, findNoPayment},
    DoctorCheck{"payment.unfinished", ofSelling, Severity::Error, findUnfinishedPayments},
    DoctorCheck{"law.missing", ofLaw, Severity::Warning, findLegalDuties},
    DoctorCheck{"setting.missing", ofServer, Severity::Error, findMissingSettings},
    DoctorCheck{"setting.scheme", ofServer, Severity::Warning, findMissingScheme},
    DoctorCheck{"setting.plain", ofServer, Severity::Error, findPlainAddress},
    DoctorCheck{oldSite, ofServer, Severity::Warning, findOldSite},
    DoctorCheck{oldServer, ofServer, Severity::Warning, findOldServer},
};

Result<bool> hasSilence(Database& catalogue) {
  const auto table = catalogue.table(silenceTable);
  if (table) return true;
  if (table.error().kind == ErrorKind::Missing) return false;
  return fail(table.error());
}

Result<NameSet> silencedIdentities(Database& catalogue) {
  NameSet names;
  const auto any = hasSilence(catalogue);
  if (!any) return fail(any.error());
  if (!*any) return names;
  auto row = catalogue.prepare("SELECT chiave FROM controllosilenzi");
  if (!row) return fail(row.error());
  for (auto found = row->step();; found = row->step()) {
    if (!found) return fail(found.error());
    if (!*found) return names;
    names.emplace(row->text(0));
  }
}

Result<> writeField(Database& catalogue, const FieldWrite& write) {
  const bool isSingle = isNull(write.key);
  auto update = catalogue.prepare("UPDATE " + write.table + " SET " + write.column + " = ?1" +
                                  (isSingle ? "" : " WHERE ID = ?2"));
  if (!update) return fail(update.error());
  update->bind(1, write.value);
  if (!isSingle) update->bind(2, write.key);
  return update->execute();
}

}  // namespace

std::span<const DoctorCheck> doctorChecks() { return checkTable; }

Findings runChecks(const DoctorFacts& facts) {
  Findings all;
  for (const DoctorCheck& check : checkTable) {
    for (Finding& finding : check.find(facts)) {
      finding.check = check.name;
      finding.severity = check.severity;
      all.push_back(std::move(finding));
    }
  }
  return all;
}

Result<Examination> examineShop(Session& session, const std::string& applicationFolder) {
  const auto facts = readDoctorFacts(session, applicationFolder);
  if (!facts) return fail(facts.error());
  const auto silenced = silencedIdentities(session.catalogue);
  if (!silenced) return fail(silenced.error());
  Examination examination{runChecks(*facts)};
  if (silenced->empty()) return examination;
  examination.silenced =
      std::erase_if(examination.findings, [&](const Finding& one) { return silenced->contains(one.identity()); });
  return examination;
}

std::string noticeBeforeBuild(Session& session, const std::string& applicationFolder) {
  auto examination = examineShop(session, applicationFolder);
  if (!examination) return {};
  std::erase_if(examination->findings,
                [](const Finding& finding) { return finding.check == oldSite || finding.check == oldServer; });
  const FindingCounts counts = countFindings(examination->findings);
  return counts.all() == 0 ? std::string() : findingSummary(counts);
}

Result<> mendFinding(Database& catalogue, const Finding& finding) {
  if (auto begun = catalogue.begin(); !begun) return begun;
  for (const FieldWrite& write : finding.writes) {
    if (auto written = writeField(catalogue, write); !written) {
      catalogue.rollback();
      return written;
    }
  }
  return catalogue.commit();
}

Result<> silenceFinding(Database& catalogue, const Finding& finding) {
  const auto any = hasSilence(catalogue);
  if (!any) return fail(any.error());
  if (!*any) {
    ColumnInfo key;
    key.name = "chiave";
    key.type = ColumnType::Memo;
    if (auto made = catalogue.createTable({silenceTable, 0, {key}, {}}); !made) return made;
  }
  auto insert = catalogue.prepare("INSERT INTO controllosilenzi (chiave) VALUES (?1)");
  if (!insert) return fail(insert.error());
  const std::string identity = finding.identity();
  insert->bind(1, identity);
  return insert->execute();
}

Result<> endSilence(Database& catalogue) {
  const auto any = hasSilence(catalogue);
  if (!any) return fail(any.error());
  return *any ? catalogue.execute("DELETE FROM controllosilenzi") : Result<>();
}

}  // namespace kv
