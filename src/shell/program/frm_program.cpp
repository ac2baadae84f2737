#include "shell/program/frm_program.h"
#include "platform/files/files.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QTranslator>

#include <map>
#include <memory>

#include "commerce/gateways/payment_modules.h"
#include "platform/files/settings.h"
#include "platform/ports/clock.h"
#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_user.h"
#include "shell/dialogs/frm_about.h"
#include "shell/dialogs/frm_backup.h"
#include "shell/dialogs/frm_rescue.h"
#include "shell/dialogs/recent_shops.h"
#include "shell/program/frm_dialogs.h"
#include "shell/program/frm_local_host.h"
#include "shell/program/frm_orders_dialogs.h"
#include "shell/program/frm_session_end.h"
#include "shell/program/installed_data.h"
#include "shell/window/frm_main.h"
#include "shell/window/look/frm_appearance.h"
#include "shell/window/look/frm_style.h"
#include "shell/workbench/commands/command_rows.h"
#include "store/shop/open_shop.h"
#include "store/shop/session_start.h"
#include "store/upgrade/shop_upgrade.h"

namespace kv {
namespace {

/// The decimal separator of this machine; the comma where it is none that a field can hold.
char decimalSeparator() {
  const QString point = QLocale::system().decimalPoint();
  return point == QLatin1String(".") ? '.' : ',';
}

/// Words of the folder choice that Qt's own Italian lacks.
class MissingWords final : public QTranslator {
 public:
  using QTranslator::QTranslator;
  bool isEmpty() const override { return false; }
  QString translate(const char* context, const char* text, const char* /*hint*/, int /*number*/) const override {
    static const std::map<std::string_view, const char*> kinds{
        {"Folder", "Cartella"},       {"File", "File"},          {"%1 File", "File %1"},    {"Drive", "Unità"},
        {"Shortcut", "Collegamento"}, {"Alias", "Collegamento"}, {"Unknown", "Sconosciuto"}};
    if (context == nullptr || std::string_view(context) != "QAbstractFileIconProvider") return {};
    const auto found = kinds.find(text);
    return found == kinds.end() ? QString() : QString::fromUtf8(found->second);
  }
};

RescuePorts rescuePorts(Environment& env) {
  RescuePorts ports;
  ports.ask = [](const std::string& shopFolder) {
    frmRescue dialog(shopFolder, !backupCopies(shopFolder).empty(), QApplication::activeWindow());
    dialog.exec();
    return dialog.choice();
  };
  ports.chooseCopy = [&env](const std::string& shopFolder) {
    frmBackup dialog(shopFolder, env, QApplication::activeWindow());
    dialog.exec();
    return dialog.tag();
  };
  return ports;
}

/// What shows once, over the window that has just been painted. Whoever named a shop needs no page to choose one.
void greet(frmMain& window, Settings& settings, bool isShopNamed) {
  frmAbout::showSplash(&window);
  if (!takeIntroTurn(settings)) return;
  if (!isShopNamed)
    ignore(window.workbench().ports().dialogs.welcome(), "without a choice the program goes on as before");
  if (window.isVisible()) showGuide(window);
}

}  // namespace

void wireSession(frmMain& window, Session& session, Environment& env) {
  Workbench& workbench = window.workbench();
  env.hooks.CompletaGateway = [&env](const std::string& folder) { CompletaGateway(folder, env.applicationFolder); };
  env.hooks.AggiornaNegozio = [&env](const std::string& folder) { AggiornaNegozio(folder, env.applicationFolder); };
  env.hooks.bind = [&workbench](Session&) { workbench.bindSession(); };
  env.hooks.release = [&workbench](Session&) { workbench.releaseSession(); };
  // What the choice runs loads a shop again, and asks again by itself.
  env.hooks.reload = [&, isRescuing = std::make_shared<bool>(false)](const LoadOptions& options) {
    const WaitCursor busy;
    if (loadSession(session, env, options) == LoadResult::Opened) workbench.showShop();
    if (session.catalogue.isOpen()) rememberShop(env.settings, session.ShopFolder);
    if (window.isVisible()) announceOrders(window, session, env);
    if (!session.catalogue.isOpen() && window.isVisible() && !*isRescuing) {
      *isRescuing = true;
      if (!rescueShop(session, env, rescuePorts(env))) window.QWidget::close();
      *isRescuing = false;
    }
  };
  wireDialogs(window, session, env);
}

QTranslator* speakItalian() {
  auto* words = new QTranslator(QCoreApplication::instance());
  if (!words->load(QStringLiteral("qtbase_it"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    delete words;
    return nullptr;
  }
  QCoreApplication::installTranslator(words);
  QCoreApplication::installTranslator(new MissingWords(QCoreApplication::instance()));
  return words;
}

int runWindow(const WindowArguments& arguments, const std::string& programs) {
  wearWorkbenchStyle();
  speakItalian();
  const SessionEnd end;
  QtUser user;
  const auto folder = findApplicationFolder(arguments.applicationFolder, programs);
  if (!folder) {
    user.message(
        "Impossibile preparare la cartella dell'applicazione:\n" + folder.error().where + ": " + folder.error().what,
        Icon::Critical);
    return 1;
  }
  FileSettings settings(userSettingsPath());
  DesktopAppearance appearance(storedAppearance(settings));
  Environment env{user, settings, systemClock(), systemRandom(), *folder, {}};
  Session session;
  HostProcess host(*folder, programs);
  WorkbenchPorts ports;
  ports.commands = allCommands();
  ports.host = host.port();
  ports.open = desktopOpener();
  ports.applyAppearance = [&appearance](Appearance chosen) { appearance.choose(chosen); };
  ports.decimalSeparator = decimalSeparator();
  frmMain window(session, env, std::move(ports));
  wireSession(window, session, env);
  const auto named = chooseShop(session, env, absolutePath(arguments.shop));
  const LoadResult loaded = startSession(session, env, named.value_or(LoadOptions{}));
  if (loaded == LoadResult::Opened) window.workbench().showShop();
  if (!rescueShop(session, env, rescuePorts(env))) return 1;
  rememberShop(settings, session.ShopFolder);
  window.restoreLayout();
  appearance.takeEarlyAnswer();
  window.whenShown([&] {
    announceOrders(window, session, env);
    greet(window, settings, named.has_value());
  });
  user.setMainWindow(&window);
  window.show();
  const int status = QApplication::exec();
  user.setMainWindow(nullptr);
  closeSession(session, env);
  return status;
}

}  // namespace kv
