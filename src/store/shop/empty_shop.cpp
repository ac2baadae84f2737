#include "store/shop/empty_shop.h"

#include <array>
#include <string_view>

#include "platform/database/database.h"
#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/text/text.h"
#include "store/schema/schema.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr std::string_view pictureFolder = "work";

/// Texts of `generale` that tell of one merchant, in every language.
constexpr std::array<std::string_view, 11> ownTexts{"titolo",   "testo1",     "testo2",   "home1",
                                                    "home2",    "condizioni", "datipers", "recesso",
                                                    "keywords", "content",    "rifiutato"};
/// The same in one column each.
constexpr std::array<std::string_view, 6> ownColumns{"URL",         "email",     "email_ordini",
                                                     "firma_email", "immagine0", "immagine1"};

constexpr const char* emptyRows =
    "DELETE FROM articoli; DELETE FROM categorie; DELETE FROM cliparticoli; DELETE FROM clipcategorie;"
    "DELETE FROM dettagliop; DELETE FROM opzioni WHERE ID <> 1;"
    "DELETE FROM sqlite_sequence WHERE name IN ('articoli', 'categorie', 'dettagliop', 'opzioni');"
    "UPDATE lingue SET lingua2 = NULL, lingua3 = NULL, lingua4 = NULL;"
    "INSERT INTO categorie (contatore, ID, pagina, genitore, ordinamento, livello, hafigli, affiancati, titolo, "
    "template)"
    " VALUES (1, 'cat001', 'cat001', '###', 100, 1, 0, ' ', 'Nuovo Reparto', 'modello1');";

std::string emptyCatalogue() {
  std::string sql = emptyRows;
  sql += "UPDATE generale SET imgX0 = 0, imgY0 = 0, imgX1 = 0, imgY1 = 0";
  for (const std::string_view column : ownColumns) sql += ", " + std::string(column) + " = NULL";
  for (const std::string_view column : ownTexts) {
    for (const std::string_view suffix : languageSuffixes) {
      sql += ", " + std::string(column) + std::string(suffix) + " = NULL";
    }
  }
  return sql;
}

Result<> copyWithoutPictures(const std::string& model, const std::string& folder) {
  if (!folderExists(model)) return fail(ErrorKind::Missing, model, "no model shop");
  if (auto made = createFolders(entryPath(folder, pictureFolder)); !made) return made;
  const auto folders = readFolderNames(model);
  if (!folders) return fail(folders.error());
  for (const std::string& name : *folders) {
    if (equalsIgnoringCase(name, pictureFolder)) continue;
    if (auto copied = CopiaAlbero(joinPath(model, name), joinPath(folder, name)); !copied) return copied;
  }
  const auto files = readFileNames(model, "*.*");
  if (!files) return fail(files.error());
  for (const std::string& name : *files) {
    if (auto copied = copyFile(joinPath(model, name), entryPath(folder, name)); !copied) return copied;
  }
  return {};
}

}  // namespace

Result<> layEmptyShop(const std::string& model, const std::string& folder) {
  if (auto copied = copyWithoutPictures(model, folder); !copied) return copied;
  auto catalogue = ApriDatabase(entryPath(folder, catalogueFile), true);
  if (!catalogue) return fail(catalogue.error());
  if (auto emptied = catalogue->execute(emptyCatalogue()); !emptied) return fail(emptied.error());
  return {};
}

}  // namespace kv
