#include "store/shop/shop_check.h"

#include <array>

#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "store/shop/compact.h"
#include "store/shop/shop_folders.h"
#include "store/shop/staged_pictures.h"

namespace kv {
namespace {

constexpr const char* notAShop =
    "La cartella selezionata non contiene un negozio\n(oppure il negozio contenuto è corrotto)";
constexpr const char* earlierProduct =
    "Il negozio è stato realizzato con una versione Primo\n"
    "e non può essere aperto direttamente.\n"
    "Utilizzare l'apposito comando del menu \"File\" per\n"
    "importare tutti i dati.";
constexpr const char* unknownVersion = "Versione non riconosciuta: il negozio non può essere aperto.";

constexpr std::array<std::string_view, 3> seeds{catalogueFile, transferFile, tagSeedFile};
constexpr std::array<std::string_view, 4> workingFolderNames{"work", "online", "scripts", "db"};

bool makeWorkingFolders(const std::string& folder) {
  for (std::string_view name : workingFolderNames) {
    ignore(createFolder(entryPath(folder, name)), "the next line tests whether it is there");
    if (!folderExists(entryPath(folder, name))) return false;
  }
  return true;
}

Result<int> versionOf(const std::string& path, Database* own) {
  if (own != nullptr && own->isOpen() && own->path() == path) return catalogueVersion(*own);
  auto catalogue = ApriDatabase(path, false);
  if (!catalogue) return fail(catalogue.error());
  return catalogueVersion(*catalogue);
}

std::string openFailureText(const Error& error) {
  const bool isOfTheDisk = error.kind == ErrorKind::ReadOnly || error.kind == ErrorKind::Full;
  return "Impossibile aprire il database:\n" + std::to_string(error.number) + " " + error.what + "\n\n" +
         (isOfTheDisk ? failureText({error.kind, "", ""}) : catalogueFailure(error.kind));
}

}  // namespace

const char* catalogueFailure(ErrorKind kind) {
  return kind == ErrorKind::InUse ? "Il database è utilizzato da un altro utente."
                                  : "Il database è corrotto, oppure sono stati cancellati alcuni file del programma.";
}

Result<> requireTables(Database& catalogue) {
  for (const char* table : {"articoli", "categorie", "cliparticoli", "clipcategorie", "generale", "lingue", "opzioni",
                            "pagamento", "paesi", "dettagliop"}) {
    const auto rows = catalogue.scalar(std::string("SELECT 1 FROM ") + table + " LIMIT 1");
    if (rows) continue;
    const ErrorKind kind = rows.error().kind;
    if (kind == ErrorKind::InUse || kind == ErrorKind::ReadOnly) return fail(rows.error());
    return fail(ErrorKind::Corrupt, table, rows.error().what);
  }
  return {};
}

ShopCheck validateShop(const std::string& folder, Database* own) {
  recoverCatalogue(folder);
  if (own == nullptr) recoverPictures(folder);
  for (std::string_view name : seeds) {
    if (!fileExists(entryPath(folder, name))) return {false, ShopFault::NotAShop, notAShop};
  }
  if (!makeWorkingFolders(folder)) return {false, ShopFault::FolderFailure, notAShop};
  const auto version = versionOf(entryPath(folder, catalogueFile), own);
  if (!version) return {false, ShopFault::DatabaseFailure, openFailureText(version.error())};
  if (*version < firstOwnVersion) return {false, ShopFault::EarlierProduct, earlierProduct};
  if (*version < firstVersion || *version > lastVersion) return {false, ShopFault::UnknownVersion, unknownVersion};
  return {true, ShopFault::None, {}};
}

}  // namespace kv
