#pragma once
// The six variants of the accounting package, where the settings say that each keeps its data, and how the import
// treats them: generation, company list, settings file, words.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/settings.h"

namespace kv {

/// One variant of the package.
struct AccountingVariant {
  int number = 0;               ///< 0 to 5, what frmOGChoose hands back
  std::string_view key;         ///< its application key in the settings store
  int generation = 2;           ///< 2 or 3; the third keeps a visibility in each row
  bool hasCompanies = false;    ///< `pathRete` is a list of companies, each with a database of its own
  std::string_view optionFile;  ///< where the shop folder keeps the options
  std::string_view noBackup;    ///< the question when a backup can't be made
};

/// All six, each at the index of its number.
const std::array<AccountingVariant, 6>& accountingVariants();

/// `pathRete` of a variant: where its database, or its list of companies, is. Empty: the variant isn't installed.
std::string accountingPath(const Settings& settings, const AccountingVariant& variant);
/// Stores `pathRete`. Failures as Settings::set.
Result<> storeAccountingPath(Settings& settings, const AccountingVariant& variant, const std::string& path);
/// Whether this machine knows of the package: an `AppPath`, which its own installation leaves, or a `pathRete` of any
/// variant isn't empty. An `AppPath` alone installs no variant.
bool isAccountingKnown(const Settings& settings);
/// The variants whose `pathRete` isn't empty, by number.
std::vector<AccountingVariant> installedVariants(const Settings& settings);
/// How a list shows a variant: its key, and what tells it from the others.
std::string variantTitle(const AccountingVariant& variant);

}  // namespace kv
