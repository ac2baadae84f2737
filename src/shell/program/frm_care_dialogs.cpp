#include "shell/program/frm_care_dialogs.h"

#include <QTimer>
#include <charconv>

#include "builder/doctor/frm_controlla.h"
#include "shell/workbench/fields/editor_table.h"
#include "store/catalogue/frm_cronologia.h"
#include "store/shop/session_facts.h"

namespace kv {
namespace {

std::int64_t articleID(std::string_view key) {
  std::int64_t ID = 0;
  ignore(std::from_chars(key.data(), key.data() + key.size(), ID), "a key that is no number names no article");
  return ID;
}

void goToCommand(frmMain& window, const std::string& name) {
  const WorkbenchCommands& commands = window.workbench().commands();
  const Command* command = commands.table().named(name);
  if (command != nullptr) commands.choose(*command);
}

/// The settings are on two tabs.
void goToSetting(frmMain& window, const FindingTarget& target) {
  const Editor* editor = editorOf(EditedSet::Generale, target.column);
  if (editor == nullptr) return;
  window.workbench().selectTab(editor->tab);
  window.goToField(EditedSet::Generale, target.column);
}

DoctorActions doctorActions(frmMain& window, Session& session, Environment& env) {
  DoctorActions actions;
  actions.examine = [&session, &env] { return examineShop(session, env.applicationFolder); };
  actions.mend = [&window, &session](const Finding& finding) {
    Result<> mended;
    window.workbench().editThrough(mendingStep(finding), [&] {
      mended = mendFinding(session.catalogue, finding);
      return mended.has_value();
    });
    return mended;
  };
  actions.silence = [&session](const Finding& finding) { return silenceFinding(session.catalogue, finding); };
  actions.endSilence = [&session] { return endSilence(session.catalogue); };
  actions.help = [&window](std::string_view page) { window.workbench().openHelp(page); };
  return actions;
}

HistoryActions historyActions(frmMain& window, Session& session) {
  HistoryActions actions;
  StepLog& log = *window.workbench().stepLog();
  actions.steps = [&log] { return log.steps(); };
  if (const auto& failure = log.failure()) actions.notice = unwrittenText(*failure);
  actions.describe = [&log, &session](std::int64_t step) -> Result<std::vector<std::string>> {
    const auto changes = log.changesOf(step);
    if (!changes) return fail(changes.error());
    return describeStep(session.catalogue, *changes);
  };
  actions.plan = [&log, &session](std::int64_t step) { return planWayBack(session, log, step); };
  actions.help = [&window](std::string_view page) { window.workbench().openHelp(page); };
  return actions;
}

bool goWayBack(frmMain& window, Session& session, Environment& env, const WayBack& way) {
  if (!way.byRows) return restoreAndNote(window, session, env, way.copy);
  Workbench& bench = window.workbench();
  Result<> gone;
  bench.editThrough(wayBackStep(way), [&] {
    gone = goBackByRows(session.catalogue, *bench.stepLog(), way);
    if (gone) gone = readSessionFacts(session, env.applicationFolder);
    return gone.has_value();
  });
  bench.showError(gone);
  bench.MostraLingue();
  bench.refreshAll();
  return gone.has_value();
}

void wireHistory(frmMain& window, Session& session, Environment& env) {
  window.workbench().ports().dialogs.history = [&window, &session, &env] {
    if (window.workbench().stepLog() == nullptr) return false;
    std::optional<WayBack> way;
    {
      // The window is gone before a copy is restored, for the log that it reads goes with the session.
      frmCronologia dialog(historyActions(window, session), env.user, &window);
      dialog.exec();
      way = dialog.chosen();
    }
    return way && goWayBack(window, session, env, *way);
  };
}

}  // namespace

bool restoreAndNote(frmMain& window, Session& session, Environment& env, const BackupCopy& copy) {
  if (!RipristinaCopia(session, env, copy.name)) return false;
  if (StepLog* log = window.workbench().stepLog()) log->noteRestored(restoredStep(copy), copy.madeAt);
  return true;
}

void goToFinding(frmMain& window, const FindingTarget& target) {
  Workbench& bench = window.workbench();
  if (target.subject == FindingSubject::Command) return goToCommand(window, target.key);
  if (target.language != bench.session().currentLanguage) bench.CambiaLingua(target.language);
  if (target.listino != bench.listino()) bench.selectListino(target.listino);
  if (target.subject == FindingSubject::Settings) return goToSetting(window, target);
  const bool isArticle = target.subject == FindingSubject::Article;
  if (isArticle) {
    bench.MostraArticolo(articleID(target.key));
  } else {
    bench.goToDepartment(target.key);
    bench.selectTab(Tab::Departments);
  }
  window.goToField(isArticle ? EditedSet::Articoli : EditedSet::Categorie, target.column);
}

void wireCare(frmMain& window, Session& session, Environment& env) {
  window.workbench().ports().dialogs.doctor = [&window, &session, &env] {
    frmControlla dialog(doctorActions(window, session, env), env.user, &window);
    dialog.exec();
    if (const auto& target = dialog.chosen()) {
      // The command that opened this window is over before another one begins.
      QTimer::singleShot(0, &window, [&window, where = *target] { goToFinding(window, where); });
    }
    return !dialog.tag().empty();
  };
  wireHistory(window, session, env);
}

}  // namespace kv
