#pragma once
// The checks of the shop doctor as one table. Each is a function of const facts that returns what it has found, with
// text, field and mending; the table adds its name and how bad it is.

#include <span>
#include <string_view>

#include "builder/doctor/doctor_facts.h"

namespace kv {

/// One check.
struct DoctorCheck {
  std::string_view name;     ///< never changes: findings are silenced under it
  std::string_view subject;  ///< "Articoli": what the window filters by
  Severity severity = Severity::Warning;
  Findings (*find)(const DoctorFacts& facts) = nullptr;
};

/// All checks in the order in which their findings are told. A check of another subject is a row of this table.
std::span<const DoctorCheck> doctorChecks();

// Articles.
Findings findMissingCodes(const DoctorFacts& facts);
/// Codes that several articles of the catalogue have, case ignored.
Findings findDoubledCodes(const DoctorFacts& facts);
Findings findMissingTitles(const DoctorFacts& facts);
/// Titles that several articles of one department have, in any language, case ignored.
Findings findDoubledTitles(const DoctorFacts& facts);
/// Titles, subtitles, descriptions and notes that language 1 has and another language has not.
Findings findUntranslatedArticles(const DoctorFacts& facts);
/// Prices of 0 in the price lists that are in use.
Findings findZeroPrices(const DoctorFacts& facts);
/// Offers that are not below the price. Mended by ending the offer.
Findings findBadOffers(const DoctorFacts& facts);
/// Offers without a price, which are sold for nothing. Mended by ending the offer.
Findings findFreeOffers(const DoctorFacts& facts);
/// Offers of articles that are out of the catalogue. Mended by ending the offer.
Findings findHiddenOffers(const DoctorFacts& facts);
Findings findStrayArticles(const DoctorFacts& facts);
/// Variants of articles that don't exist. Mended by emptying the slot.
Findings findLostVariants(const DoctorFacts& facts);

// Departments.
Findings findUntitledDepartments(const DoctorFacts& facts);
Findings findUntranslatedDepartments(const DoctorFacts& facts);
Findings findEmptyDepartments(const DoctorFacts& facts);
/// Departments of a hidden branch with articles in the catalogue.
Findings findHiddenBranches(const DoctorFacts& facts);
/// Page models that the template has not. Mended where it has one alone.
Findings findLostModels(const DoctorFacts& facts);

// Variants.
Findings findEmptyVariants(const DoctorFacts& facts);
/// Variants with no default or several. Mended by the first value, or the first default.
Findings findVariantDefaults(const DoctorFacts& facts);
Findings findDoubledValueCodes(const DoctorFacts& facts);
Findings findUntranslatedValues(const DoctorFacts& facts);

// Pictures.
Findings findMissingPictures(const DoctorFacts& facts);
/// Pictures that can't be read, of the formats that browsers show.
Findings findDamagedPictures(const DoctorFacts& facts);
/// Pictures whose size is not the stored one. Mended by storing it.
Findings findResizedPictures(const DoctorFacts& facts);
Findings findHeavyPictures(const DoctorFacts& facts);

// Texts and template.
Findings findEndlessTags(const DoctorFacts& facts);
Findings findUnknownTags(const DoctorFacts& facts);
Findings findReferences(const DoctorFacts& facts);
Findings findDeadLinks(const DoctorFacts& facts);
Findings findTemplateFaults(const DoctorFacts& facts);
Findings findMissingModules(const DoctorFacts& facts);

/// Texts of the shop itself that language 1 has and another language has not; those that the law asks for are told by
/// it.
Findings findUntranslatedShop(const DoctorFacts& facts);
/// What the law asks and the shop lacks.
Findings findLegalDuties(const DoctorFacts& facts);

// Shipping and payment.
Findings findStrayCountries(const DoctorFacts& facts);
Findings findClosedZones(const DoctorFacts& facts);
Findings findShippingSteps(const DoctorFacts& facts);
Findings findNoPayment(const DoctorFacts& facts);
Findings findUnfinishedPayments(const DoctorFacts& facts);

// Server and site.
Findings findMissingSettings(const DoctorFacts& facts);
/// An address without scheme. Mended by the one that the build adds.
Findings findMissingScheme(const DoctorFacts& facts);
/// An address without https where a method of payment in use needs it.
Findings findPlainAddress(const DoctorFacts& facts);
Findings findOldSite(const DoctorFacts& facts);
Findings findOldServer(const DoctorFacts& facts);

}  // namespace kv
