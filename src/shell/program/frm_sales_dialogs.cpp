#include "shell/program/frm_sales_dialogs.h"

#include <QApplication>
#include <memory>

#include "commerce/gateways/frm_configura_pg.h"
#include "commerce/shipping/frm_spedizione.h"
#include "commerce/variants/frm_opzioni.h"
#include "platform/ports/failure_text.h"
#include "publish/passwords/frm_otp.h"
#include "shell/program/frm_dialogs.h"
#include "shell/program/shop_address.h"
#include "store/catalogue/table_rollback.h"
#include "tags/language/frm_info_lingua.h"

namespace kv {
namespace {

/// Tells the user of a failure; whether a dialog ended with OK.
bool acceptedOrError(frmMain& window, const Result<bool>& outcome) {
  if (outcome) return *outcome;
  window.workbench().showError(fail(outcome.error()));
  return false;
}

void wireShipping(frmMain& window, Session& session, Environment& env, const std::shared_ptr<TableRollback>& rollback) {
  WorkbenchDialogs& dialogs = window.workbench().ports().dialogs;
  dialogs.shipping = [&window, &session, &env, rollback] {
    bool configured = false;
    const auto opened = rollback->SalvaTabelleSpedizione([&]() -> Result<bool> {
      ShippingHooks hooks;
      const WorkbenchDialogs::Dialog& configure = window.workbench().ports().dialogs.configurePayment;
      if (configure) hooks.configure = [&] { configured = configure() || configured; };
      hooks.help = helpOf(window);
      hooks.decimalSeparator = window.workbench().decimalSeparator();
      frmSpedizione dialog(session, env, hooks, &window);
      dialog.exec();
      return !dialog.tag().empty();
    });
    // What was configured meanwhile stays, so it is shown again whatever became of the rest.
    return acceptedOrError(window, opened) || configured;
  };
}

/// The lists of one-time passwords, over the dialog of the payment system.
void openPasswordLists(Session& session, Environment& env, const HelpOpener& help) {
  auto job = passwordJobOf(session);
  if (!job) {
    env.user.message(failureText(job.error()), Icon::Exclamation);
    return;
  }
  const auto transfer = makeTransfer(job->connection.protocol);
  const auto http = makeHttpClient();
  frmOTP dialog(std::move(*job), {*transfer, *http, env.user, help}, env.random, QApplication::activeModalWidget());
  dialog.exec();
}

void wirePayment(frmMain& window, Session& session, Environment& env) {
  window.workbench().ports().dialogs.configurePayment = [&window, &session, &env] {
    GatewayHooks hooks;
    hooks.shopAddress = shopAddress(session);
    hooks.help = helpOf(window);
    hooks.passwords = [&session, &env, help = hooks.help] { openPasswordLists(session, env, help); };
    hooks.language = [] { frmInfoLingua(QApplication::activeModalWidget()).exec(); };
    hooks.written = [&window](FileEdits edits) { window.workbench().history().noteFiles(std::move(edits)); };
    QWidget* const owner = QApplication::activeModalWidget();
    frmConfiguraPG dialog(session, env, std::move(hooks), owner != nullptr ? owner : &window);
    dialog.exec();
    return !dialog.tag().empty();
  };
}

void wireVariants(frmMain& window, Session& session, Environment& env, const std::shared_ptr<TableRollback>& rollback) {
  window.workbench().ports().dialogs.defineVariant = [&window, &session, &env, rollback](const VariantSlot& slot) {
    std::optional<std::int64_t> jump;
    const auto opened = rollback->SalvaTabelleVarianti(
        variantColumn(slot.slot, slot.listino), [&](const std::string& current) -> Result<std::optional<std::int64_t>> {
          frmOpzioni dialog(session, env, {current, window.workbench().decimalSeparator(), helpOf(window)}, &window);
          dialog.exec();
          if (dialog.tag().empty()) return std::optional<std::int64_t>();
          jump = dialog.jump();
          return std::optional(dialog.lblID());
        });
    const bool accepted = acceptedOrError(window, opened);
    if (accepted && jump) window.workbench().MostraArticolo(*jump);
    return accepted;
  };
}

}  // namespace

void wireSales(frmMain& window, Session& session, Environment& env) {
  // One for both dialogs: neither opens while the other one is open.
  const auto rollback = std::make_shared<TableRollback>(window.workbench().sets(), env);
  wireShipping(window, session, env, rollback);
  wirePayment(window, session, env);
  wireVariants(window, session, env, rollback);
}

}  // namespace kv
