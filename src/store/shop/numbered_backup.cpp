#include "store/shop/numbered_backup.h"

#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "store/shop/compact.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr std::size_t numberDigits = 3;
constexpr int lastNumber = 999;

std::string backupName(int number) { return "catalog." + formatNumber(number, "000"); }

int numberAfterLast(const std::string& shopFolder) {
  const auto backups = numberedBackups(shopFolder);
  if (backups.empty()) return 0;
  const std::string& last = backups.back();
  return static_cast<int>(leadingNumber(last.substr(last.size() - numberDigits))) + 1;
}

/// The engine writes a copy where it is to be: until it is whole it has the name of a copy that nobody restores.
Result<> copyOpenCatalogue(Database& catalogue, const std::string& shopFolder, const std::string& path) {
  const std::string unfinished = CatalogueExchange(shopFolder).replacement;
  if (fileExists(unfinished)) {
    if (auto deleted = deleteFile(unfinished); !deleted) return deleted;
  }
  Result<> copied = catalogue.compactTo(unfinished);
  if (copied) copied = renameFile(unfinished, path);
  if (!copied) ignore(deleteFile(unfinished), "the next copy deletes it");
  return copied;
}

}  // namespace

std::vector<std::string> numberedBackups(const std::string& shopFolder) {
  std::vector<std::string> names = listFiles(shopFolder, "catalog.*");
  std::erase_if(names, [](const std::string& name) { return !matchesLike(name, "*.###"); });
  return names;
}

std::string CreaBackup(Session& session, const std::string& shopFolder) {
  int number = numberAfterLast(shopFolder);
  while (number <= lastNumber && findEntry(shopFolder, backupName(number))) ++number;
  if (number > lastNumber) return {};
  std::string name = backupName(number);
  const std::string path = joinPath(shopFolder, name);
  const Result<> copied = session.catalogue.isOpen() ? copyOpenCatalogue(session.catalogue, shopFolder, path)
                                                     : copyFile(entryPath(shopFolder, catalogueFile), path);
  return copied ? name : std::string();
}

}  // namespace kv
