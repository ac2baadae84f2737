// The entries of the menus: what each is called, when it can be chosen, and what it does beside the numbered commands.

#include <array>

#include "platform/files/files.h"
#include "shell/workbench/workbench.h"
#include "store/shop/load_shop.h"
#include "store/shop/open_shop.h"
#include "store/shop/session_start.h"

namespace kv {
namespace {

using enum MenuAction;

/// An entry that only opens a dialog: its name, the step of the history that its changes make, and what it is given.
struct DialogEntry {
  MenuAction action;
  std::string_view dialog;
  std::string_view step;
  std::string_view argument = {};
};
constexpr std::array dialogEntries{DialogEntry{ExportShop, "frmEsporta", ""},
                                   DialogEntry{ImportShop, "frmImportaPrimo", ""},
                                   DialogEntry{RestoreCopy, "frmBackup", ""},
                                   DialogEntry{ChangeFolders, "frmBrowse", "Cambia le cartelle"},
                                   DialogEntry{PurgeImages, "frmPulisciImmagini", ""},
                                   DialogEntry{Languages, "frmLingue", "Configura lingue"},
                                   DialogEntry{ReplicateLanguages, "frmReplica", "Replica lingue"},
                                   DialogEntry{ReplicatePriceList, "frmReplicaListini", "Replica listino"},
                                   DialogEntry{CustomTags, "frmTags", "Tag personalizzati"},
                                   DialogEntry{BuildSettings, "frmImpostazioni", "Impostazioni costruzione"},
                                   DialogEntry{ImportAccounting, "frmImportaOG", "Importa"},
                                   DialogEntry{ChangePrices, "frmVariaPrezzi", "Modifica prezzi"},
                                   DialogEntry{Shipping, "frmSpedizione", "Spese di spedizione"},
                                   DialogEntry{PaymentSystems, "frmPagamento", "Sistemi di pagamento"},
                                   DialogEntry{OrderMail, "frmEmail", "Testo e-mail di conferma"},
                                   DialogEntry{Showcase, "frmVetrina", "Impostazioni vetrina"},
                                   DialogEntry{RequiredFields, "frmObbligatori", "Campi obbligatori"},
                                   DialogEntry{ShopFtpFolder, "frmFolderFTP", "Cartella FTP del negozio", "folderFTP"},
                                   DialogEntry{ScriptFtpFolder, "frmFolderFTP", "Cartella FTP script CGI", "folderCGI"},
                                   DialogEntry{ConnectionSettings, "frmFirewall", ""},
                                   DialogEntry{Introduction, "frmIntro", ""},
                                   DialogEntry{About, "frmAbout", ""}};

const DialogEntry* dialogEntryOf(MenuAction action) {
  for (const DialogEntry& entry : dialogEntries) {
    if (entry.action == action) return &entry;
  }
  return nullptr;
}

/// The companion tool of an entry; empty when it has none.
std::string_view companionOf(MenuAction action) {
  switch (action) {
    case DownloadOrders:
      return "ordsync.exe";
    case UpdateStock:
      return "ogg.exe";
    case ImportCompanion:
      return "gwimp.exe";
    default:
      return {};
  }
}

constexpr const char* updateAddress = "https://korvane.example/update/checkupdate.php?id=";

/// "0.1.0" as major and minor by mask "00" and revision by mask "000": "0001000".
std::string versionNumber(std::string_view version) {
  std::string number;
  std::size_t part = 0;
  for (std::string_view rest = version; part < 3; ++part) {
    const std::size_t end = rest.find('.');
    const std::string digits(rest.substr(0, end));
    const std::size_t width = part < 2 ? 2 : 3;
    number += std::string(digits.size() < width ? width - digits.size() : 0, '0') + digits;
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return number;
}

}  // namespace

bool Workbench::isShown(MenuAction action, int argument) const {
  if (action == EditLanguage) return argument <= session_.languageCount;
  const std::string_view companion = companionOf(action);
  if (!companion.empty()) return fileExists(joinPath(env_.applicationFolder, companion));
  if (action == TemplateGuide) return !optionalEntries(env_.applicationFolder).manual.empty();
  return true;
}

bool Workbench::isOffered(MenuAction action) const {
  if (const DialogEntry* entry = dialogEntryOf(action); entry != nullptr && !hasDialog(entry->dialog)) return false;
  switch (action) {
    case Undo:
      return history_.canUndo();
    case Redo:
      return history_.canRedo();
    case ReplicateLanguages:
      return session_.languageCount > 1;
    case ShopFtpFolder:
    case ScriptFtpFolder:
      return isEnabled(ftpFolders);
    case ChooseTemplate:
      return isOpen() && env_.hooks.frmTemplate != nullptr;
    case HideDetails:
      return tab_ == Tab::Departments || tab_ == Tab::Articles;
    default:
      return true;
  }
}

EntryState Workbench::stateOf(const MenuEntry& entry) const {
  EntryState state;
  const std::size_t submenu = entry.entry.find(" / ");
  state.text = std::string(submenu == std::string_view::npos ? entry.entry : entry.entry.substr(submenu + 3));
  if (entry.command >= 0) {
    state.enabled = isCommandEnabled(entry.command);
    return state;
  }
  state.visible = isShown(entry.action, entry.argument);
  state.enabled = isOffered(entry.action);
  if (entry.action == Undo && history_.canUndo()) state.text += ": " + history_.undoName();
  if (entry.action == Redo && history_.canRedo()) state.text += ": " + history_.redoName();
  if (entry.action == EditLanguage) {
    state.checkable = true;
    state.checked = entry.argument == session_.currentLanguage;
    const std::string digit = std::to_string(entry.argument);
    state.text = "&" + digit + " - " + session_.languageNames[static_cast<std::size_t>(entry.argument - 1)];
  } else if (entry.action == ShowTab) {
    state.checkable = true;
    state.checked = entry.argument == static_cast<int>(tab_);
  } else if (entry.action == HideDetails) {
    state.checkable = true;
    state.checked = detailsHidden_;
  } else if (entry.action == Look) {
    state.checkable = true;
    state.checked = entry.argument == static_cast<int>(storedAppearance(env_.settings));
  }
  return state;
}

void Workbench::runEntry(const MenuEntry& entry) {
  if (!stateOf(entry).enabled) return;
  if (entry.command >= 0) return EseguiComando(entry.command);
  view_.finishEdits();
  runAction(entry.action, entry.argument);
  view_.entriesChanged();
}

void Workbench::runAction(MenuAction action, int argument) {
  switch (action) {
    case Undo:
      return undo();
    case Redo:
      return redo();
    case ShowTab:
      return selectTab(static_cast<Tab>(argument));
    case EditLanguage:
      return CambiaLingua(argument);
    case HideDetails:
      detailsHidden_ = !detailsHidden_;
      return view_.hideDetails(detailsHidden_);
    case Look:
      return chooseAppearance(static_cast<Appearance>(argument));
    case Exit:
      return exitProgram();
    default:
      break;
  }
  if (runShopAction(action) || runHelpAction(action)) return;
  const DialogEntry* entry = dialogEntryOf(action);
  if (entry == nullptr) return;
  const std::string given(entry->argument);
  if (!entry->step.empty()) return editThrough(entry->dialog, std::string(entry->step), given);
  static_cast<void>(runDialog(entry->dialog, given));
  // A dialog that brought another shop, or another catalogue, may have brought none.
  if (!session_.catalogue.isOpen()) view_.close();
}

bool Workbench::runShopAction(MenuAction action) {
  switch (action) {
    case NewShop:
    case OpenShop:
      changeShop(action == NewShop);
      return true;
    case CleanFolders:
      cleanFolders();
      return true;
    case PurgeImages:
      purgeImages();
      return true;
    case Languages:
      chooseLanguages();
      return true;
    case ChooseTemplate: {
      tell(history_.record("Scegli il template", [&]() -> Result<> {
        auto chosen = chooseTemplate(session_, env_, fields_.settingText("template"));
        return chosen ? Result<>() : fail(chosen.error());
      }));
      refreshAll();
      return true;
    }
    case UpdateStock:
    case DownloadOrders:
    case ImportCompanion:
      openDocument(joinPath(env_.applicationFolder, companionOf(action)), env_.applicationFolder);
      return true;
    default:
      return false;
  }
}

bool Workbench::runHelpAction(MenuAction action) {
  switch (action) {
    case HelpContents:
      openHelp("index.htm");
      return true;
    case HelpQuestions:
      openHelp("pagine/faq.htm");
      return true;
    case TemplateGuide:
      openDocument(optionalEntries(env_.applicationFolder).manual);
      return true;
    case CheckUpdates:
      openDocument(updateAddress + versionNumber(KORVANE_VERSION));
      return true;
    default:
      return false;
  }
}

/// The session is torn down and loaded again on the way; the hook `reload` of the program shows the shop that came.
void Workbench::changeShop(bool fresh) {
  const bool changed = fresh ? NuovoNegozio(session_, env_) : ApriNegozio(session_, env_, "*");
  if (changed && !session_.catalogue.isOpen()) view_.close();
}

void Workbench::chooseLanguages() {
  editThrough("frmLingue", "Configura lingue");
  tell(readLanguages(session_));
  if (session_.currentLanguage > session_.languageCount) CambiaLingua(1);
  MostraLingue();
}

void Workbench::purgeImages() {
  if (!hasDialog("frmPulisciImmagini")) return;
  static_cast<void>(runDialog("frmPulisciImmagini", joinPath(session_.ShopFolder, "work")));
}

void Workbench::chooseAppearance(Appearance appearance) {
  if (ports_.wear) ports_.wear(appearance);
  const Result<> stored = storeAppearance(env_.settings, appearance);
  if (!stored)
    env_.user.message("L'aspetto scelto vale fino alla chiusura: l'impostazione non è stata salvata",
                      Icon::Exclamation);
}

void Workbench::exitProgram() {
  view_.finishEdits();
  session_.compactOnExit = true;
  view_.close();
}

}  // namespace kv
