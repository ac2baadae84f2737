#include "shell/frm_program.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QTranslator>

#include "commerce/payment_modules.h"
#include "platform/clock.h"
#include "platform/frm_user.h"
#include "platform/settings.h"
#include "shell/frm_about.h"
#include "shell/frm_dialogs.h"
#include "shell/frm_main.h"
#include "shell/installed_data.h"
#include "store/server_path.h"
#include "store/session_start.h"
#include "store/shop_check.h"

namespace kv {
namespace {

/// The letter that parts decimals on this machine; the comma where it is none that a field can hold.
char decimalSeparator() {
  const QString point = QLocale::system().decimalPoint();
  return point == QLatin1String(".") ? '.' : ',';
}

/// Buttons and dialogs that come with Qt speak Italian too.
void speakItalian(QApplication& application) {
  auto* words = new QTranslator(&application);
  if (words->load(QStringLiteral("qtbase_it"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QApplication::installTranslator(words);
  }
}

/// Makes a shop folder that was asked for the one that the start finds; false when it is none.
bool takeShop(const std::string& folder, const Surroundings& with) {
  if (folder.empty()) return true;
  const ShopCheck check = validateShop(folder);
  if (check.ok) return writeServerPath(with.applicationFolder, folder).has_value();
  with.user.message(check.message, Icon::Exclamation);
  return false;
}

void wireSession(frmMain& window, Session& session, Surroundings& with) {
  Workbench& workbench = window.workbench();
  with.hooks.CompletaGateway = [&with](const std::string& folder) { CompletaGateway(folder, with.applicationFolder); };
  with.hooks.bind = [&workbench](Session&) { workbench.bindSession(); };
  with.hooks.release = [&workbench](Session&) { workbench.releaseSession(); };
  with.hooks.reload = [&] {
    if (loadSession(session, with) == LoadResult::Opened) workbench.showShop();
  };
  wireDialogs(window, session, with);
}

/// What shows once, over the window that has just been painted.
void greet(frmMain& window, Settings& settings) {
  frmAbout::showSplash(&window);
  if (takeIntroTurn(settings)) showGuide(window);
}

}  // namespace

int runWindow(const WindowArguments& arguments, const std::string& programs) {
  if (auto* application = qobject_cast<QApplication*>(QCoreApplication::instance())) speakItalian(*application);
  QtUser user;
  const auto folder = findApplicationFolder(arguments.applicationFolder, programs);
  if (!folder) {
    user.message(
        "Impossibile preparare la cartella dell'applicazione:\n" + folder.error().where + ": " + folder.error().what,
        Icon::Critical);
    return 1;
  }
  FileSettings settings(userSettingsPath());
  Surroundings with{user, settings, systemClock(), systemRandom(), *folder, {}};
  Session session;
  WorkbenchPorts ports;
  ports.open = desktopOpener();
  ports.decimalSeparator = decimalSeparator();
  frmMain window(session, with, std::move(ports));
  wireSession(window, session, with);
  takeShop(absolutePath(arguments.shop), with);
  const LoadResult loaded = startSession(session, with);
  if (loaded == LoadResult::Opened) window.workbench().showShop();
  if (!session.catalogue.isOpen()) return 1;
  window.restorePlace();
  window.whenShown([&] { greet(window, settings); });
  user.setHome(&window);
  window.show();
  const int status = QApplication::exec();
  user.setHome(nullptr);
  closeSession(session, with);
  return status;
}

}  // namespace kv
