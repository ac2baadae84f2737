#include "shell/program/frm_orders_dialogs.h"

#include <QPointer>
#include <QStatusBar>
#include <QTimer>
#include <QToolButton>

#include "platform/ports/failure_text.h"
#include "publish/orders/desk/frm_esporta_ordini.h"
#include "publish/orders/desk/frm_ordini.h"
#include "publish/orders/desk/order_notice.h"
#include "publish/orders/papers/frm_order_print.h"
#include "publish/orders/papers/shop_sender.h"
#include "publish/orders/sales/frm_period_row.h"
#include "publish/orders/sales/frm_vendite.h"
#include "shell/program/frm_dialogs.h"

namespace kv {
namespace {

constexpr std::string_view ordersCommand = "orders";

const QString& noticeName() {
  static const QString name = QStringLiteral("cmdOrdiniNuovi");
  return name;
}

/// The button of new orders in the status line, made when it is first needed.
QToolButton* makeNotice(frmMain& window) {
  auto* button = new QToolButton(window.statusBar());
  button->setObjectName(noticeName());
  button->setAutoRaise(true);
  button->setFocusPolicy(Qt::StrongFocus);
  button->setToolTip(QStringLiteral("Apre la finestra degli ordini"));
  constexpr int afterStatus = 1;  // the text of the status line comes first, and a button can't go before it
  window.statusBar()->insertPermanentWidget(afterStatus, button);
  QObject::connect(button, &QToolButton::clicked, &window, [&window] {
    const WorkbenchCommands& commands = window.workbench().commands();
    if (const Command* command = commands.table().named(ordersCommand)) commands.choose(*command);
  });
  return button;
}

void showNotice(frmMain& window, const std::string& text) {
  auto* button = window.statusBar()->findChild<QToolButton*>(noticeName());
  if (button == nullptr && text.empty()) return;
  if (button == nullptr) button = makeNotice(window);
  button->setText(toQt(text));
  button->setVisible(!text.empty());
}

/// Paper, files and sums of orders.
OrderTools orderTools(frmMain& window, Session& session, Environment& env) {
  OrderTools tools;
  tools.print.run = [&](const std::vector<DeskOrder>& orders, QWidget* over) {
    auto sender = readShopSender(session);
    if (!sender) return env.user.message(failureText(sender.error()), Icon::Critical);
    frmOrderPrint(orders, std::move(*sender), env.user, helpOf(window), over).exec();
  };
  tools.exportFile.run = [&](const std::vector<DeskOrder>& orders, QWidget* over) {
    frmEsportaOrdini(orders, dayHere(env.clock.now()), env.user, helpOf(window), over).exec();
  };
  tools.sales.run = [&](const std::vector<DeskOrder>& orders, QWidget* over) {
    auto departments = readArticleDepartments(session.catalogue);
    if (!departments) return env.user.message(failureText(departments.error()), Icon::Critical);
    frmVendite(orders, std::move(*departments), dayHere(env.clock.now()), helpOf(window), over).exec();
  };
  return tools;
}

bool showOrders(frmMain& window, Session& session, Environment& env) {
  OrderStore store(session.ShopFolder);
  const auto http = makeHttpClient();
  OrderDesk desk(store,
                 {[&] { return orderAccess(session, env.random); }, {*http, env.clock, env.random, {}}, env.user});
  frmOrdini dialog(desk, env.user, orderTools(window, session, env), helpOf(window), &window);
  dialog.exec();
  showNotice(window, {});
  return false;
}

/// What the run of a notice holds on to: copies, for shop and window may go while the server is waited for.
struct NoticeRun {
  QPointer<frmMain> window;
  std::string shopFolder;
  OrderAccess access;
};

void runNotice(const NoticeRun& run, const Session& session, Environment& env) {
  EventPump pump;
  const auto isWanted = [&] {
    return run.window != nullptr && run.window->isVisible() && session.ShopFolder == run.shopFolder;
  };
  const auto http = makeHttpClient();
  const auto yield = [&] {
    if (pump.isDue()) pump.processEvents(true);
    return isWanted();
  };
  const std::string text = newOrdersNotice(run.shopFolder, run.access, {*http, env.clock, env.random, yield});
  if (isWanted()) showNotice(*run.window, text);
}

}  // namespace

void wireOrders(frmMain& window, Session& session, Environment& env) {
  window.workbench().ports().dialogs.orders = [&] { return showOrders(window, session, env); };
}

void announceOrders(frmMain& window, Session& session, Environment& env) {
  showNotice(window, {});
  auto access = accessForNotice(session);
  if (!access) return;
  const NoticeRun run{&window, session.ShopFolder, std::move(*access)};
  QTimer::singleShot(0, &window, [run, &session, &env] { runNotice(run, session, env); });
}

}  // namespace kv
