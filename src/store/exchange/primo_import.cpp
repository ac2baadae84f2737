#include "store/exchange/primo_import.h"

#include "platform/files/files.h"
#include "store/exchange/primo_preview.h"
#include "store/exchange/primo_rows.h"
#include "store/exchange/primo_source.h"
#include "store/shop/load_shop.h"
#include "store/shop/numbered_backup.h"
#include "store/shop/price_history_file.h"
#include "store/shop/session_start.h"
#include "store/shop/shop_folders.h"
#include "store/shop/staged_pictures.h"

namespace kv {
namespace {

constexpr const char* notOpened = "Impossibile importare a causa del seguente errore: \n";
constexpr const char* imported = "Importazione terminata correttamente";
constexpr const char* failedOnTheWay =
    "L'importazione è avvenuta con errori: ripristinare il backup e riavviare il programma";
constexpr const char* noBackup = "Non è possibile creare un backup del negozio:\nprocedere comunque all'importazione?";
constexpr const char* otherFirstVariant =
    "Nel negozio di origine la variante numero 1 non è \"(nessuna)\":\n"
    "gli articoli senza varianti la mostreranno. Verificare le varianti degli articoli.";
constexpr const char* picturesKept =
    "I dati sono stati importati, ma non è stato possibile sostituire le immagini.\nLe nuove immagini sono nella "
    "cartella ";
constexpr std::string_view makingBackup = "Creazione backup...";

Result<int> sourceVersion(const std::string& path) {
  auto source = ApriDatabase(path, false);
  if (!source) return fail(source.error());
  return catalogueVersion(*source);
}

void showOtherVariant(Session& session, Environment& env) {
  const auto taken = isFirstVariantTaken(session.catalogue);
  if (taken && *taken) env.user.message(otherFirstVariant, Icon::Exclamation);
}

PrimoOutcome finishImport(Session& session, Environment& env, const StagedPictures& pictures) {
  // The numbers of the articles are those of other articles now.
  ignore(deleteFile(entryPath(session.ShopFolder, priceHistoryFile)), "the catalogue was taken over all the same");
  const auto exchanged = pictures.exchange();
  // After a failure too: from here on the user knows where they are, and adds others to the old ones.
  ignore(session.catalogue.execute(noPicturesAreDue), "the next start exchanges them");
  showOtherVariant(session, env);
  env.user.message(exchanged ? std::string(imported) : picturesKept + pictures.path(),
                   exchanged ? Icon::Information : Icon::Exclamation);
  ignore(RiavviaSessione(session, env), "it has told the user of any failure");
  return PrimoOutcome::Done;
}

}  // namespace

int ImportaDati(Session& session, Environment& env, const std::string& path) {
  const auto source = PrimoSource::open(path);
  const auto version = source ? sourceVersion(source->path()) : fail(source.error());
  if (!version) {
    env.user.message(notOpened + version.error().what, Icon::Critical);
    return static_cast<int>(PrimoOutcome::NotDone);
  }
  if (!isPrimoVersion(*version)) {
    env.user.message(std::string(otherPrimoVersion), Icon::Exclamation);
    return static_cast<int>(PrimoOutcome::NotDone);
  }
  const auto taken = takePrimoRows(session.catalogue, source->path());
  return static_cast<int>(taken ? PrimoOutcome::Done : PrimoOutcome::Failed);
}

bool holdsSource(Environment& env, const std::string& folder) {
  if (fileExists(entryPath(folder, catalogueFile))) return true;
  env.user.message(std::string(noPrimoShop), Icon::Exclamation);
  return false;
}

PrimoOutcome importPrimoShop(Session& session, Environment& env, const std::string& folder) {
  const StagedPictures pictures(session.ShopFolder);
  // The mark of an earlier import must not make pictures the shop's own that are only half copied.
  Result<> staged = session.catalogue.execute(noPicturesAreDue);
  if (staged) staged = pictures.copyFrom(entryPath(folder, "work"));
  if (!staged) {
    ignore(pictures.drop(), "the next import removes them");
    env.user.message(notOpened + staged.error().what, Icon::Critical);
    return PrimoOutcome::NotDone;
  }
  const auto outcome = static_cast<PrimoOutcome>(ImportaDati(session, env, entryPath(folder, catalogueFile)));
  if (outcome == PrimoOutcome::Done) return finishImport(session, env, pictures);
  ignore(pictures.drop(), "the next import removes them");
  if (outcome == PrimoOutcome::Failed) env.user.message(failedOnTheWay, Icon::Critical);
  return outcome;
}

PrimoOutcome ImportaNegozio(Session& session, Environment& env, const std::function<PrimoOutcome()>& frmImportaPrimo) {
  const std::string shopFolder = session.ShopFolder;
  releaseCatalogue(session, env);
  env.user.progress({makingBackup, 0, 0});
  const std::string backup = CreaBackup(session, shopFolder);
  const LoadResult loaded = RiavviaSessione(session, env, {.folderJustChosen = false, .silent = true});
  env.user.progress({});
  if (loaded != LoadResult::Opened) return PrimoOutcome::NotDone;
  if (!backup.empty()) {
    env.user.message("E' stato creato un backup del file \"catalog.mdb\" col nome \"" + backup + "\"",
                     Icon::Information);
  } else if (env.user.question({noBackup, Buttons::YesNo, Answer::No, Icon::Exclamation}) != Answer::Yes) {
    return PrimoOutcome::NotDone;
  }
  return frmImportaPrimo();
}

}  // namespace kv
