#include "shell/program/frm_sheet_dialogs.h"

#include "import/tables/frm_esporta_foglio.h"
#include "import/tables/frm_importa_foglio.h"
#include "import/tables/table_export.h"
#include "platform/qt/frm_progress.h"
#include "shell/program/frm_dialogs.h"
#include "store/shop/session_facts.h"

namespace kv {
namespace {

constexpr int patienceMs = 400;  // a shorter work opens no window

/// The guide, then the import; false when it was left or nothing was written.
bool importFromSheet(frmMain& window, Session& session, Environment& own) {
  WatchedUser user(own.user, &window,
                   {"frmAvanzamento", "Korvane - Importa da un foglio", "Avanzamento dell'importazione", patienceMs});
  Environment env{user, own.settings, own.clock, own.random, own.applicationFolder, own.hooks};
  CatalogueSets& sets = window.workbench().sets();
  std::string model;
  if (sets.onDepartment()) model = asText(sets.dataCategorie().get("template"));
  if (model.empty()) model = session.models.empty() ? fallbackModel : session.models.front();
  TableGuide guide(session, env.settings, sets.onDepartment() ? sets.department() : "", model);
  {
    frmImportaFoglio dialog(guide, env.user, helpOf(window), &window);
    dialog.exec();
    if (dialog.tag().empty()) return false;
  }
  const OpenSheet& open = guide.sheet();
  const auto kept = keepMapping(env.settings, open.table, open.sheet.headers(), guide.request.mapping);
  ignore(kept, "columns that can't be remembered are found again");
  if (importPlannedTable(session, env, guide.plan(), open.sheet, guide.request) != TableEnd::Done) return false;
  env.user.message("Importazione completata\n\n" + guide.sums(), Icon::Information);
  return true;
}

/// Writes what the dialog says; false when it was left or nothing was written.
bool exportToSheet(frmMain& window, Session& session, Environment& env) {
  WatchedUser user(env.user, &window,
                   {"frmAvanzamento", "Korvane - Esporta in un foglio", "Avanzamento dell'esportazione", patienceMs});
  const auto tables = sheetTables(session.catalogue, session.languageCount);
  if (!tables) return false;
  const std::vector<std::int64_t> listed = window.articles().articles().keys();
  SheetExportChoice choice;
  {
    frmEsportaFoglio dialog(*tables, listed.size(), helpOf(window), &window);
    dialog.exec();
    if (dialog.tag().empty()) return false;
    choice = dialog.choice();
  }
  TableExport what;
  what.columns = choice.columns;
  what.isFiltered = choice.onlyListed;
  if (choice.onlyListed) what.only = listed;
  what.goOn = [&user](std::size_t done, std::size_t all) {
    user.progress({"Esportazione nel foglio...", static_cast<double>(done), static_cast<double>(all)});
    return user.yield();
  };
  const SheetTable& table = (*tables)[choice.table];
  const auto written = exportTable(session.catalogue, table, choice.path, what);
  user.progress({});
  if (!written && written.error().kind == ErrorKind::Cancelled) return false;
  if (!written) {
    env.user.message(sheetWritingFailureText(written.error(), choice.path), Icon::Critical);
    return false;
  }
  env.user.message("Esportazione completata: " + std::to_string(*written) + " " + table.rows, Icon::Information);
  return true;
}

}  // namespace

void wireSheets(frmMain& window, Session& session, Environment& env) {
  WorkbenchDialogs& dialogs = window.workbench().ports().dialogs;
  dialogs.importSheet = [&] { return importFromSheet(window, session, env); };
  dialogs.exportSheet = [&] { return exportToSheet(window, session, env); };
}

}  // namespace kv
