#include "store/shop/compact.h"

#include <algorithm>

#include "platform/files/files.h"
#include "platform/files/private_file.h"
#include "platform/numbers/number_format.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr int sessionsBetween = 9;  // the close that reads this number compacts

// Counts this close; true when it is the one that compacts.
bool isTurn(Settings& settings) {
  constexpr double most = 1e6;  // whatever a hand has written
  const double noted = leadingNumber(settings.get(settingsSection, "Times"));
  const auto times = static_cast<std::int64_t>(std::clamp(noted, -most, most));
  if (!settings.set(settingsSection, "Times", trimmedNumber(times + 1)) || times < sessionsBetween) return false;
  if (!settings.set(settingsSection, "Times", "0")) return false;
  return settings.get(settingsSection, "Compact") != "0";
}

}  // namespace

CatalogueExchange::CatalogueExchange(const std::string& shopFolder)
    : catalogue(entryPath(shopFolder, catalogueFile)),
      previous(joinPath(shopFolder, "catalog.tmp")),
      replacement(joinPath(shopFolder, "catalog.tm0")) {}

Result<> compactCatalogue(const std::string& shopFolder, const Rename& rename) {
  const CatalogueExchange files(shopFolder);
  auto held = ApriDatabase(files.catalogue, true);
  if (!held) return fail(held.error());
  for (const std::string& old : {files.previous, files.replacement}) {
    if (!fileExists(old)) continue;
    if (auto deleted = deleteFile(old); !deleted) return deleted;
  }
  if (auto written = held->compactTo(files.replacement); !written) return written;
  if (auto closed = restrictToOwner(files.replacement); !closed) return closed;
  if (auto prepared = held->prepareRename(); !prepared) return prepared;
  return swapInCompacted(shopFolder, rename);
}

void CompattaCatalogo(const std::string& shopFolder, Environment& env) {
  if (shopFolder.empty() || !fileExists(entryPath(shopFolder, catalogueFile))) return;
  if (!isTurn(env.settings)) return;
  env.user.progress({"Compattazione del database...", 0, 1});
  ignore(compactCatalogue(shopFolder, renameFile), "the catalogue stays as it was, and a later close tries again");
  env.user.progress({"", 0, 0});
}

Result<> swapInCompacted(const std::string& shopFolder, const Rename& rename) {
  const CatalogueExchange files(shopFolder);
  if (auto kept = rename(files.catalogue, files.previous); !kept) return kept;
  auto swapped = rename(files.replacement, files.catalogue);
  if (!swapped) ignore(rename(files.previous, files.catalogue), "recoverCatalogue does it at the next start");
  return swapped;
}

void recoverCatalogue(const std::string& shopFolder) {
  const CatalogueExchange files(shopFolder);
  if (fileExists(files.catalogue) || !fileExists(files.previous) || !fileExists(files.replacement)) return;
  ignore(renameFile(files.previous, files.catalogue), "opening the shop tells that it has no catalogue");
}

}  // namespace kv
