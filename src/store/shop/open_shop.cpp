#include "store/shop/open_shop.h"

#include <array>
#include <utility>

#include "platform/files/files.h"
#include "store/shop/empty_shop.h"
#include "store/shop/server_path.h"
#include "store/shop/session_start.h"
#include "store/shop/shop_check.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr const char* shopPrompt = "Selezionare la cartella che contiene il negozio da aprire:";
constexpr const char* newShopPrompt =
    "Selezionare la cartella del nuovo negozio (la cartella deve essere preferibilmente vuota):";
constexpr const char* chooseAnother =
    "La cartella selezionata non contiene un negozio\n(oppure il negozio contenuto è corrotto)\n\n"
    "Selezionare un'altra cartella?";

/// A folder that a shop may contain, and the question before it is copied into the application folder.
struct Bundle {
  std::string_view folder;
  const char* question;
};
constexpr std::array<Bundle, 2> bundles{{{templateFolder,
                                          "Il negozio selezionato contiene uno o più template. \n\n"
                                          "Se si sceglie di importare i template, eventuali template\n"
                                          "già installati con lo stesso nome saranno sovrascritti.\n\n"
                                          "Importare i template?"},
                                         {languagesFolder,
                                          "Il negozio selezionato contiene uno o più moduli linguistici. \n\n"
                                          "Se si sceglie di importarli, eventuali moduli linguistici\n"
                                          "già installati con lo stesso nome saranno sovrascritti.\n\n"
                                          "Importare i moduli linguistici?"}}};

std::string currentFolder(const Session& session, const Environment& env) {
  return session.ShopFolder.empty() ? env.applicationFolder : session.ShopFolder;
}

Result<> importBundles(const std::string& folder, Environment& env) {
  for (const Bundle& bundle : bundles) {
    const std::string from = entryPath(folder, bundle.folder);
    if (!folderExists(from)) continue;
    if (env.user.question({bundle.question, Buttons::YesNo, Answer::No, Icon::Question}) != Answer::Yes) continue;
    if (auto copied = CopiaAlbero(from, entryPath(env.applicationFolder, bundle.folder)); !copied) return copied;
  }
  return {};
}

// Makes an accepted folder the current one. On failure serverpath.net is as before.
Result<> takeFolder(const std::string& folder, Environment& env) {
  const ServerPathBackup before(env.applicationFolder);
  if (isApplicationFolder(folder, env.applicationFolder)) return clearServerPath(env.applicationFolder);
  auto taken = writeServerPath(env.applicationFolder, folder);
  if (taken) taken = importBundles(folder, env);
  if (!taken) ignore(before.restore(), "the first failure is the one to tell");
  return taken;
}

enum class Outcome { Accepted, Refused, AskAgain };

Outcome offerAnother(Environment& env) {
  const Answer answer = env.user.question({chooseAnother, Buttons::YesNo, Answer::Yes, Icon::Question});
  return answer == Answer::Yes ? Outcome::AskAgain : Outcome::Refused;
}

Outcome tryFolder(Session& session, Environment& env, const std::string& path) {
  if (isRoot(path)) {
    env.user.message(
        "La cartella '" + path + "' è la root di un disco: non è consentito aprire un negozio in questa posizione",
        Icon::Exclamation);
    return Outcome::Refused;
  }
  if (path.empty()) return Outcome::Refused;
  const ShopCheck check = validateShop(path, &session.catalogue);
  if (check.kind == ShopFault::FolderFailure) return offerAnother(env);
  if (!check.ok) {
    env.user.message(check.message, check.kind == ShopFault::DatabaseFailure ? Icon::Critical : Icon::Exclamation);
    return Outcome::Refused;
  }
  return takeFolder(path, env) ? Outcome::Accepted : offerAnother(env);
}

// After a failure the remains must not pass for a shop at the next try.
bool layNewShop(const std::string& folder, const Environment& env, NewShop kind) {
  const std::string model = joinPath(env.applicationFolder, "new");
  if (kind == NewShop::Model ? CopiaAlbero(model, folder) : layEmptyShop(model, folder)) return true;
  ignore(deleteFile(entryPath(folder, catalogueFile)), "the failure of the copy is the one to tell");
  return false;
}

}  // namespace

std::optional<LoadOptions> chooseShop(Session& session, Environment& env, std::string path) {
  bool ask = path == "*";
  LoadOptions options;
  Outcome outcome = Outcome::AskAgain;
  while (outcome == Outcome::AskAgain) {
    if (ask) {
      path = ScegliCartella(env.user, shopPrompt, currentFolder(session, env));
      options.folderJustChosen = true;
    }
    path = withoutTrailingSeparator(path);
    outcome = tryFolder(session, env, path);
    ask = true;
  }
  if (outcome == Outcome::Refused) return std::nullopt;
  return options;
}

bool ApriNegozio(Session& session, Environment& env, std::string path) {
  const auto options = chooseShop(session, env, std::move(path));
  if (!options) return false;
  ignore(RiavviaSessione(session, env, *options), "it has told the user of any failure");
  return true;
}

bool NuovoNegozio(Session& session, Environment& env) {
  return makeNewShop(session, env, ScegliCartella(env.user, newShopPrompt, currentFolder(session, env)),
                     NewShop::Model);
}

std::string newShopRefusal(const std::string& folder) {
  if (isRoot(folder)) {
    return "La cartella '" + folder + "' è la root di un disco, e non è consentito crearvi un nuovo negozio";
  }
  if (fileExists(entryPath(folder, catalogueFile))) return "Nel percorso specificato è già presente un negozio";
  return {};
}

bool makeNewShop(Session& session, Environment& env, const std::string& folder, NewShop kind) {
  if (folder.empty()) return false;
  if (const std::string refusal = newShopRefusal(folder); !refusal.empty()) {
    env.user.message(refusal, Icon::Exclamation);
    return false;
  }
  if (!layNewShop(folder, env, kind)) {
    env.user.message("Impossibile creare un negozio nel percorso specificato", Icon::Critical);
    return false;
  }
  return ApriNegozio(session, env, folder);
}

}  // namespace kv
