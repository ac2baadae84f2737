#include "shell/program/frm_commerce_dialogs.h"

#include "builder/run/frm_impostazioni.h"
#include "commerce/prices/frm_varia_prezzi.h"
#include "commerce/replication/frm_replica.h"
#include "commerce/replication/frm_replica_listini.h"
#include "commerce/settings/frm_email.h"
#include "commerce/settings/frm_obbligatori.h"
#include "commerce/settings/frm_p3p.h"
#include "commerce/settings/frm_vetrina.h"
#include "shell/program/frm_dialogs.h"
#include "shell/workbench/fields/editor_table.h"

namespace kv {
namespace {

/// Runs a dialog; false when it was left.
bool isOk(FormDialog& dialog) {
  dialog.exec();
  return !dialog.tag().empty();
}

/// The department that the window is on, as the dialog of prices needs it.
PriceDialogFacts priceFacts(Workbench& workbench) {
  CatalogueSets& sets = workbench.sets();
  PriceDialogFacts facts{sets.department(), {}, workbench.decimalSeparator()};
  if (sets.onDepartment()) facts.departmentTitle = asText(sets.dataCategorie().get("titolo"));
  return facts;
}

/// The field of the main window takes the text, so that its rules hold.
bool editMail(frmMain& window) {
  Workbench& workbench = window.workbench();
  const Editor* field = editorOf(EditedSet::Generale, "testo_email");
  if (field == nullptr) return false;
  frmEmail dialog(workbench.shown(*field), helpOf(window), &window);
  if (!isOk(dialog)) return false;
  workbench.leaveField(*field, dialog.text());
  return true;
}

}  // namespace

void wireCommerceDialogs(frmMain& window, Session& session, Environment& env) {
  WorkbenchDialogs& dialogs = window.workbench().ports().dialogs;
  dialogs.changePrices = [&] {
    frmVariaPrezzi dialog(session, env, priceFacts(window.workbench()), helpOf(window), &window);
    return isOk(dialog);
  };
  dialogs.replicateLanguages = [&] {
    frmReplica dialog(session, env, helpOf(window), &window);
    return isOk(dialog);
  };
  dialogs.replicatePriceList = [&] {
    frmReplicaListini dialog(session, env, window.workbench().decimalSeparator(), helpOf(window), &window);
    return isOk(dialog);
  };
  dialogs.orderMail = [&] { return editMail(window); };
  dialogs.showcase = [&] {
    frmVetrina dialog(session, env, helpOf(window), &window);
    return isOk(dialog);
  };
  dialogs.requiredFields = [&] {
    frmObbligatori dialog(session, env, helpOf(window), &window);
    return isOk(dialog);
  };
  dialogs.privacyPolicy = [&] {
    const auto open = [&window](const std::string& address) { window.workbench().openDocument(address); };
    frmP3P dialog(session, env, open, helpOf(window), &window);
    return isOk(dialog);
  };
  dialogs.buildSettings = [&] {
    frmImpostazioni dialog(session, env, helpOf(window), &window);
    return isOk(dialog);
  };
}

}  // namespace kv
