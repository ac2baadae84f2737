#include "import/accounting/accounting_variants.h"

#include <algorithm>

namespace kv {
namespace {

constexpr std::string_view pathKey = "pathRete", programKey = "AppPath";
constexpr std::string_view ofShop =
    "Non è possibile creare un backup del negozio:\nprocedere comunque all'importazione?";
constexpr std::string_view ofCompanies = "Non è possibile creare un backup:\nprocedere comunque all'importazione?";

/// The store has one application here; the one that a value belongs to comes in front of its section.
std::string sectionOf(const AccountingVariant& variant, std::string_view key = pathKey) {
  return std::string(variant.key) + "/" + std::string(key);
}

}  // namespace

const std::array<AccountingVariant, 6>& accountingVariants() {
  static const std::array<AccountingVariant, 6> variants{{{0, "orsa2000", 2, false, "og.ini", ofShop},
                                                          {1, "OGCASSA2002", 2, false, "og.ini", ofShop},
                                                          {2, "OGMA2002", 2, true, "og.ini", ofCompanies},
                                                          {3, "OGV3", 3, false, "og3.ini", ofShop},
                                                          {4, "OGCASSA2002V3", 3, false, "og3.ini", ofShop},
                                                          {5, "OGMA2002V3", 3, true, "og3.ini", ofShop}}};
  return variants;
}

std::string accountingPath(const Settings& settings, const AccountingVariant& variant) {
  return settings.get(sectionOf(variant), pathKey);
}

Result<> storeAccountingPath(Settings& settings, const AccountingVariant& variant, const std::string& path) {
  return settings.set(sectionOf(variant), pathKey, path);
}

bool isAccountingKnown(const Settings& settings) {
  return std::ranges::any_of(accountingVariants(), [&](const AccountingVariant& variant) {
    return !accountingPath(settings, variant).empty() ||
           !settings.get(sectionOf(variant, programKey), programKey).empty();
  });
}

std::vector<AccountingVariant> installedVariants(const Settings& settings) {
  std::vector<AccountingVariant> installed;
  for (const AccountingVariant& variant : accountingVariants()) {
    if (!accountingPath(settings, variant).empty()) installed.push_back(variant);
  }
  return installed;
}

std::string variantTitle(const AccountingVariant& variant) {
  return std::string(variant.key) + (variant.hasCompanies ? " (più aziende)" : "");
}

}  // namespace kv
