// Build, publishing and the back office, and the working folders they leave behind.

#include "platform/files/files.h"
#include "shell/workbench/workbench.h"
#include "store/shop/load_shop.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr const char* templateNeeded = "Per costruire il negozio è necessario scegliere un template";
constexpr const char* buildFirst = "E' necessario costruire il negozio prima di aggiornare il sito";
constexpr const char* noBackOffice =
    "Il BackOffice non è disponibile finché non si costruisce ed aggiorna il negozio per la prima volta.\n"
    "Indicarne l'URL nella scheda \"Internet\", quindi costruire ed aggiornare il negozio.";

}  // namespace

bool Workbench::hasModels() const {
  return !session_.templatePath.empty() && !pageModels(joinPath(env_.applicationFolder, session_.templatePath)).empty();
}

/// Asks for a template until there is one with page models; false when the user gives up.
bool Workbench::settleTemplate() {
  while (!hasModels()) {
    const auto chosen = chooseTemplate(session_, env_, fields_.settingText("template"));
    if (!chosen) {
      tell(fail(chosen.error()));
      return false;
    }
    if (*chosen) continue;
    const Answer answer = env_.user.question({templateNeeded, Buttons::OkCancel, Answer::Ok, Icon::Exclamation});
    if (answer == Answer::Cancel || !env_.hooks.frmTemplate) return false;
  }
  return true;
}

void Workbench::buildShop() {
  if (!hasDialog("frmElabora") || !settleTemplate()) return;
  static_cast<void>(runDialog("frmElabora", ""));
  refreshAll();
}

bool Workbench::wantsToPublish() {
  if (env_.settings.get(settingsSection, "NoShow") == "1" || !hasDialog("frmAvviso")) return true;
  return runDialog("frmAvviso", "") == "OK";
}

void Workbench::publish() {
  if (!hasDialog("frmImpostaFTP") || !wantsToPublish()) return;
  if (!readBytes(joinPath(session_.ShopFolder, "kvftp.dat"))) {
    env_.user.message(buildFirst, Icon::Exclamation);
    return;
  }
  if (runDialog("frmImpostaFTP", "") == "OK") static_cast<void>(runDialog("frmFTP", ""));
}

void Workbench::openBackOffice() {
  const std::string address = fields_.addresses().backOffice;
  if (address.empty()) {
    env_.user.message(noBackOffice, Icon::Information);
    return;
  }
  openDocument(address);
}

void Workbench::cleanFolders() {
  const std::string question = "Le seguenti cartelle saranno svuotate:\n\n" + session_.onlineFolder + "\n" +
                               session_.scriptFolder +
                               "\n\nATTENZIONE: Tutti i file presenti in queste cartelle verranno cancellati.\n"
                               "Si desidera procedere con la cancellazione?";
  if (env_.user.question({question, Buttons::YesNo, Answer::No, Icon::Exclamation}) != Answer::Yes) return;
  for (const std::string& folder : {session_.onlineFolder, session_.scriptFolder}) {
    const std::string text = "Saranno cancellati i file presenti in " + folder;
    if (env_.user.question({text, Buttons::OkCancel, Answer::Cancel, Icon::Exclamation}) != Answer::Ok) return;
    tell(SvuotaCartella(folder));
  }
}

void Workbench::openDocument(const std::string& file, const std::string& folder) {
  if (!ports_.open) return;
  if (ApriDocumento(file, folder, env_.settings, ports_.open)) {
    env_.user.message("Impossibile aprire " + file, Icon::Exclamation);
  }
}

void Workbench::openHelp(std::string_view page) {
  openDocument(joinPath(joinPath(env_.applicationFolder, "help"), page));
}

void Workbench::showHelp() {
  constexpr std::string_view pages[] = {"pagine/reparti.htm", "pagine/articoli.htm", "pagine/sito.htm",
                                        "pagine/internet.htm"};
  openHelp(pages[static_cast<std::size_t>(tab_)]);
}

}  // namespace kv
