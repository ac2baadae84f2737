#include "shell/program/frm_law_dialogs.h"

#include <QTimer>

#include "commerce/settings/frm_produttori.h"
#include "commerce/settings/frm_requisiti.h"
#include "shell/program/frm_dialogs.h"
#include "shell/workbench/fields/editor_table.h"

namespace kv {
namespace {

void openCommand(frmMain& window, const std::string& name) {
  const WorkbenchCommands& commands = window.workbench().commands();
  if (const Command* command = commands.table().named(name)) commands.choose(*command);
}

/// The settings are on two tabs.
void goToShopSetting(frmMain& window, const DutyTarget& target) {
  const Editor* editor = editorOf(EditedSet::Generale, target.column);
  if (editor == nullptr) return;
  if (target.language != window.workbench().session().currentLanguage) {
    window.workbench().CambiaLingua(target.language);
  }
  window.workbench().selectTab(editor->tab);
  window.goToField(EditedSet::Generale, target.column);
}

}  // namespace

void goToDuty(frmMain& window, const DutyTarget& target) {
  switch (target.subject) {
    case DutySubject::Command:
      return openCommand(window, target.command);
    case DutySubject::Settings:
      return goToShopSetting(window, target);
    case DutySubject::Article:
      window.workbench().MostraArticolo(target.article);
      return window.goToField(EditedSet::Articoli, target.column);
    case DutySubject::Nothing:
      break;
  }
}

void wireLaw(frmMain& window, Session& session, Environment& env) {
  WorkbenchDialogs& dialogs = window.workbench().ports().dialogs;
  dialogs.makers = [&window, &session, &env] {
    auto editor = MakerEditor::load(session.catalogue);
    if (!editor) {
      window.workbench().showError(fail(editor.error()));
      return false;
    }
    frmProduttori dialog(session, env, std::move(*editor), helpOf(window), &window);
    dialog.exec();
    return !dialog.tag().empty();
  };
  dialogs.legalDuties = [&window, &session, &env] {
    auto duties = legalDuties(session, env.applicationFolder);
    if (!duties) {
      window.workbench().showError(fail(duties.error()));
      return false;
    }
    frmRequisiti dialog(std::move(*duties), helpOf(window), &window);
    dialog.exec();
    if (const auto& target = dialog.chosen()) {
      // The command that opened this window is over before another one begins.
      QTimer::singleShot(0, &window, [&window, where = *target] { goToDuty(window, where); });
    }
    return !dialog.tag().empty();
  };
}

}  // namespace kv
