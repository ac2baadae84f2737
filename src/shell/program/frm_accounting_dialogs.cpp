#include "shell/program/frm_accounting_dialogs.h"

#include "import/accounting/frm_importa_og.h"
#include "import/accounting/frm_importa_ogma_prog.h"
#include "import/accounting/frm_og_choose.h"
#include "platform/numbers/number_format.h"
#include "shell/program/frm_dialogs.h"
#include "store/shop/session_facts.h"

namespace kv {
namespace {

std::string tagOf(FormDialog& dialog, frmMain& window) {
  dialog.offerHelp(helpOf(window), "pagine/orsa.htm");
  dialog.exec();
  return dialog.tag();
}

/// The line of options for a variant; empty when the dialog was left.
std::string chooseOptions(const AccountingVariant& variant, Session& session, Environment& env, frmMain& window) {
  const AccountingOptions saved = savedAccountingOptions(session.ShopFolder, variant);
  if (variant.generation > 2) {
    frmImportaOG3 dialog(saved, env.user, &window);
    return tagOf(dialog, window);
  }
  frmImportaOG dialog(saved, env.user, &window);
  return tagOf(dialog, window);
}

/// The three dialogs one after the other, then the import; false when one was left or nothing was written.
bool importFromAccounting(frmMain& window, Session& session, Environment& env) {
  std::string number;
  {
    frmOGChoose dialog(env.settings, env.user, &window);
    number = tagOf(dialog, window);
  }
  if (number.empty()) return false;
  AccountingRequest request;
  request.variant = accountingVariants().at(static_cast<std::size_t>(leadingNumber(number)));
  request.line = chooseOptions(request.variant, session, env, window);
  if (request.line.empty()) return false;
  CatalogueSets& sets = window.workbench().sets();
  request.department = sets.department();
  if (sets.onDepartment()) request.model = asText(sets.dataCategorie().get("template"));
  if (request.model.empty()) request.model = session.models.empty() ? fallbackModel : session.models.front();
  std::string tag;
  {
    frmImportaOGMAProg dialog(session, env.settings, request, &window);
    tag = tagOf(dialog, window);
  }
  if (tag.empty()) return false;
  request.company = [&](const std::vector<AccountingCompany>&) { return frmImportaOGMAProg::companyOf(tag); };
  return importAccountingRows(session, env, request) != AccountingEnd::NotDone;
}

}  // namespace

void wireAccounting(frmMain& window, Session& session, Environment& env) {
  window.workbench().ports().dialogs.importAccounting = [&] { return importFromAccounting(window, session, env); };
}

}  // namespace kv
