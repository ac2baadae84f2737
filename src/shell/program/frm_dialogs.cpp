#include "shell/program/frm_dialogs.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileDialog>
#include <QPointer>
#include <QUrl>
#include <optional>

#include "builder/run/frm_elabora.h"
#include "media/choice/frm_immagine.h"
#include "media/purge/frm_pulisci_immagini.h"
#include "platform/files/files.h"
#include "platform/qt/frm_progress.h"
#include "platform/qt/frm_screen.h"
#include "shell/dialogs/frm_about.h"
#include "shell/dialogs/frm_avviso.h"
#include "shell/dialogs/frm_backup.h"
#include "shell/dialogs/frm_browse.h"
#include "shell/dialogs/frm_search.h"
#include "shell/dialogs/frm_welcome.h"
#include "shell/program/frm_accounting_dialogs.h"
#include "shell/program/frm_care_dialogs.h"
#include "shell/program/frm_commerce_dialogs.h"
#include "shell/program/frm_law_dialogs.h"
#include "shell/program/frm_orders_dialogs.h"
#include "shell/program/frm_publish_dialogs.h"
#include "shell/program/frm_sales_dialogs.h"
#include "shell/program/frm_sheet_dialogs.h"
#include "shell/sheet/frm_foglio.h"
#include "shell/window/frm_intro.h"
#include "shell/workbench/fields/editor_table.h"
#include "store/catalogue/used_pictures.h"
#include "store/exchange/export_options.h"
#include "store/exchange/export_shop.h"
#include "store/exchange/frm_esporta.h"
#include "store/exchange/frm_importa_primo.h"
#include "store/shop/backup_copies.h"
#include "tags/custom/frm_tags.h"
#include "tags/language/frm_lingue.h"
#include "tags/package/frm_template.h"

namespace kv {
namespace {

constexpr int openFailed = 31;
constexpr std::string_view picturesPage = "pagine/immagini.htm", movingPage = "pagine/trasferire.htm";

/// Runs a dialog and gives its tag, which is empty when it was left.
std::string run(FormDialog& dialog) {
  dialog.exec();
  return dialog.tag();
}

/// The same of a dialog with a page of the help.
std::string run(FormDialog& dialog, frmMain& window, std::string_view page) {
  dialog.offerHelp(helpOf(window), page);
  return run(dialog);
}

/// Runs a dialog; false when it was left.
bool isAccepted(FormDialog& dialog) { return !run(dialog).empty(); }

/// Where the desktop has a trash, a picture can be fetched from it.
Result<> moveToTrash(const std::string& path) {
  if (QFile::moveToTrash(toQt(path))) return {};
  return deleteFile(path);
}

void wirePictures(WorkbenchDialogs& dialogs, frmMain& window, Session& session, Environment& env) {
  dialogs.choosePicture = [&](const std::string& current) -> std::optional<std::string> {
    frmImmagine dialog(env.settings, env.user, entryPath(session.ShopFolder, "work"), current, &window);
    const std::string name = run(dialog, window, picturesPage);
    if (name.empty()) return std::nullopt;
    return name;
  };
  dialogs.purgePictures = [&](const std::string& folder) {
    PurgeSources sources{
        folder, [&session](const TextReader& read) { return usedPictures(session.catalogue, read); }, {}, moveToTrash};
    sources.texts = [&](const TextReader& read) {
      const Result<> ofTemplate = readTemplateTexts(joinPath(env.applicationFolder, session.templatePath), read);
      const Result<> ofRows = readAllTexts(session.catalogue, read);
      return ofTemplate ? ofRows : ofTemplate;
    };
    frmPulisciImmagini dialog(std::move(sources), env.user, &window);
    return !run(dialog, window, picturesPage).empty();
  };
}

void wireExchange(WorkbenchDialogs& dialogs, frmMain& window, Session& session, Environment& env) {
  dialogs.exportShop = [&] {
    const ExportDialog options = [&window](const ExportOffer& offer) {
      frmEsporta dialog(offer, &window);
      return run(dialog, window, movingPage);
    };
    WatchedUser user(env.user, &window, {"frmEsportazione", exportTitle, "Avanzamento dell'esportazione"});
    Environment watched{user, env.settings, env.clock, env.random, env.applicationFolder, env.hooks};
    return EsportaNegozio(session, watched, options) == ExportOutcome::Done;
  };
  dialogs.importShop = [&] {
    const auto takeShop = [&] {
      frmImportaPrimo dialog(session, env, &window);
      const std::string folder = run(dialog, window, movingPage);
      return folder.empty() ? PrimoOutcome::NotDone : importPrimoShop(session, env, folder);
    };
    const PrimoOutcome outcome = ImportaNegozio(session, env, takeShop);
    // No further write may reach the shop after an import that failed on the way.
    if (outcome == PrimoOutcome::Failed) window.close();
    return outcome == PrimoOutcome::Done;
  };
}

void wireSettings(WorkbenchDialogs& dialogs, frmMain& window, Session& session, Environment& env) {
  dialogs.changeFolders = [&] {
    frmBrowse dialog(session, env, &window);
    return isAccepted(dialog);
  };
  dialogs.languages = [&] {
    LanguageHooks hooks;
    hooks.MostraLingue = [&window] { window.workbench().MostraLingue(); };
    hooks.CambiaLingua = [&window](int language) { window.workbench().CambiaLingua(language); };
    frmLingue dialog(session, env, std::move(hooks), &window);
    return isAccepted(dialog);
  };
  dialogs.customTags = [&] {
    frmTags dialog(session, env, &window);
    return isAccepted(dialog);
  };
  dialogs.restoreCopy = [&] {
    frmBackup dialog(session.ShopFolder, env, &window);
    const std::string name = run(dialog);
    for (const BackupCopy& copy : restorableCopies(session.ShopFolder)) {
      if (copy.name == name) return restoreAndNote(window, session, env, copy);
    }
    return false;
  };
  dialogs.welcome = [&] {
    frmWelcome dialog(welcomeFacts(session, env), env.user, &window);
    dialog.exec();
    return carryOutWelcome(dialog.choice(), session, env, dialogs.restoreCopy);
  };
}

void wireWork(WorkbenchDialogs& dialogs, frmMain& window, Session& session, Environment& env) {
  dialogs.build = [&] {
    BuildViews views;
    // The pages that were built need a server: what a browser can show is the shop as it is published.
    const std::string address = window.workbench().shown(*editorOf(EditedSet::Generale, shopAddressField));
    if (!address.empty()) views.openShop = [&window, address] { window.workbench().openDocument(address); };
    views.openFolder = [&] { window.workbench().openDocument(session.onlineFolder); };
    frmElabora dialog(session, env, std::move(views), &window);
    return isAccepted(dialog);
  };
  dialogs.remindToBuild = [&] {
    frmAvviso dialog(env.settings, &window);
    return isAccepted(dialog);
  };
  dialogs.searchArticle = [&]() -> std::optional<std::int64_t> {
    frmSearch dialog(session, env, &window);
    if (isAccepted(dialog)) return dialog.chosen();
    return std::nullopt;
  };
  dialogs.articleSheet = [&] {
    Workbench& workbench = window.workbench();
    frmFoglio dialog(workbench, helpOf(window), &window);
    const bool changed = isAccepted(dialog);
    if (dialog.jump() == 0) return changed;
    workbench.CambiaLingua(session.currentLanguage);
    workbench.MostraArticolo(dialog.jump());
    return false;
  };
  dialogs.introduction = [&] {
    showGuide(window);
    return true;
  };
  dialogs.about = [&] {
    frmAbout dialog(&window);
    return isAccepted(dialog);
  };
}

}  // namespace

void wireDialogs(frmMain& window, Session& session, Environment& env) {
  WorkbenchDialogs& dialogs = window.workbench().ports().dialogs;
  wireSettings(dialogs, window, session, env);
  wireWork(dialogs, window, session, env);
  wirePictures(dialogs, window, session, env);
  wireExchange(dialogs, window, session, env);
  wireSales(window, session, env);
  wireAccounting(window, session, env);
  wireSheets(window, session, env);
  wireCommerceDialogs(window, session, env);
  wirePublishing(window, session, env);
  wireOrders(window, session, env);
  wireLaw(window, session, env);
  wireCare(window, session, env);
  env.hooks.CopiaCatalogo = catalogueCopier(env);
  env.hooks.frmTemplate = [&](const std::string& current) {
    frmTemplate dialog(env.applicationFolder, current, helpOf(window), &window);
    return run(dialog);
  };
}

HelpOpener helpOf(frmMain& window) {
  return [&window](std::string_view page) { window.workbench().openHelp(page); };
}

DocumentOpener desktopOpener() {
  return [](const std::string& file, const std::string& folder) {
    const QUrl address = QUrl::fromUserInput(toQt(file), toQt(folder));
    return QDesktopServices::openUrl(address) ? openedWell : openFailed;
  };
}

void showGuide(frmMain& window) {
  // A dialog of this program carries no meta-object of its own: it is found by its name.
  const QString name = QStringLiteral("frmIntro");
  auto* guide = static_cast<frmIntro*>(window.findChild<QDialog*>(name));
  if (guide == nullptr) {
    guide = new frmIntro(window, &window);
    guide->setObjectName(name);
    guide->setAttribute(Qt::WA_DeleteOnClose);
  }
  guide->show();
  guide->activateWindow();
  guide->placeBeside(window);
  // How much room they take is known when a window manager has framed both; without one they are where they belong.
  whenFramed(window, [&window, guide = QPointer<frmIntro>(guide)] {
    if (guide == nullptr) return;
    whenFramed(*guide, [&window, guide] {
      if (guide->frameGeometry() != guide->geometry()) guide->placeBeside(window);
    });
  });
}

}  // namespace kv
