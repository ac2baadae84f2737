#include "builder/doctor/doctor.h"

#include <array>

namespace kv {
namespace {

constexpr const char* silenceTable = "controllosilenzi";
constexpr std::string_view articles = "Articoli", departments = "Reparti", variants = "Varianti", pictures = "Immagini",
                           texts = "Testi e template", selling = "Vendita", server = "Sito e server";

constexpr std::array checkTable{
    DoctorCheck{"code.missing", articles, Severity::Warning, findMissingCodes},
    DoctorCheck{"code.doubled", articles, Severity::Warning, findDoubledCodes},
    DoctorCheck{"title.missing", articles, Severity::Error, findMissingTitles},
    DoctorCheck{"article.untranslated", articles, Severity::Warning, findUntranslatedArticles},
    DoctorCheck{"price.zero", articles, Severity::Error, findZeroPrices},
    DoctorCheck{"offer.abovePrice", articles, Severity::Warning, findBadOffers},
    DoctorCheck{"offer.hidden", articles, Severity::Warning, findHiddenOffers},
    DoctorCheck{"article.stray", articles, Severity::Error, findStrayArticles},
    DoctorCheck{"variant.lost", articles, Severity::Error, findLostVariants},
    DoctorCheck{"department.untitled", departments, Severity::Error, findUntitledDepartments},
    DoctorCheck{"department.untranslated", departments, Severity::Warning, findUntranslatedDepartments},
    DoctorCheck{"department.empty", departments, Severity::Warning, findEmptyDepartments},
    DoctorCheck{"department.hidden", departments, Severity::Warning, findHiddenBranches},
    DoctorCheck{"department.model", departments, Severity::Error, findLostModels},
    DoctorCheck{"variant.empty", variants, Severity::Error, findEmptyVariants},
    DoctorCheck{"variant.default", variants, Severity::Warning, findVariantDefaults},
    DoctorCheck{"variant.codes", variants, Severity::Warning, findDoubledValueCodes},
    DoctorCheck{"variant.untranslated", variants, Severity::Warning, findUntranslatedValues},
    DoctorCheck{"picture.missing", pictures, Severity::Error, findMissingPictures},
    DoctorCheck{"picture.size", pictures, Severity::Warning, findResizedPictures},
    DoctorCheck{"picture.heavy", pictures, Severity::Warning, findHeavyPictures},
    DoctorCheck{"tag.endless", texts, Severity::Error, findEndlessTags},
    DoctorCheck{"tag.unknown", texts, Severity::Warning, findUnknownTags},
    DoctorCheck{"title.reference", texts, Severity::Warning, findReferences},
    DoctorCheck{"link.dead", texts, Severity::Warning, findDeadLinks},
    DoctorCheck{"template", texts, Severity::Error, findTemplateFaults},
    DoctorCheck{"language.module", texts, Severity::Error, findMissingModules},
    DoctorCheck{"country.stray", selling, Severity::Error, findStrayCountries},
    DoctorCheck{"zone.closed", selling, Severity::Error, findClosedZones},
    DoctorCheck{"zone.steps", selling, Severity::Warning, findShippingSteps},
    DoctorCheck{"payment.none", selling, Severity::Error, findNoPayment},
    DoctorCheck{"payment.unfinished", selling, Severity::Error, findUnfinishedPayments},
    DoctorCheck{"setting.missing", server, Severity::Error, findMissingSettings},
    DoctorCheck{"setting.scheme", server, Severity::Warning, findMissingScheme},
    DoctorCheck{"setting.plain", server, Severity::Error, findPlainAddress},
    DoctorCheck{"site.old", server, Severity::Warning, findOldSite},
    DoctorCheck{"server.old", server, Severity::Warning, findOldServer},
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
