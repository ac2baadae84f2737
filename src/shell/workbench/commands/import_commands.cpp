#include "shell/workbench/commands/import_commands.h"

#include <algorithm>
#include <iterator>

#include "import/accounting/accounting_variants.h"
#include "platform/files/files.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

using enum Menu;

bool knowsAccounting(const CommandContext& context) { return isAccountingKnown(context.env.settings); }

/// The import is on where the machine knows of the package. The installation of the package leaves its path in the
/// settings of other systems and never here, so until there is one a second entry leads to the same dialogs: the first
/// of them asks where the data are, and keeps what it is told.
std::vector<Command> accountingRows() {
  const auto row = [](std::string name, const MenuPlace& place) {
    return dialogCommand(std::move(name), place, &WorkbenchDialogs::importAccounting, "Importa");
  };
  Command import = row("import.accounting", {File, 701, "Importa da Orsa Gestionale..."});
  import.enabled = knowsAccounting;
  import.whenOff = "Orsa Gestionale non è stato trovato: indicare dove sono i suoi dati";
  Command search = row("import.accountingData", {File, 702, "Cerca i dati di Orsa Gestionale..."});
  search.visible = [](const CommandContext& context) { return !knowsAccounting(context); };
  return withHelp({std::move(import), std::move(search)}, "pagine/orsa.htm");
}

std::vector<Command> sheetRows() {
  using Dialogs = WorkbenchDialogs;
  std::vector<Command> rows{
      dialogCommand("import.sheet", {File, 706, "Importa da un foglio..."}, &Dialogs::importSheet, "Importa il foglio"),
      dialogCommand("export.sheet", {File, 707, "Esporta in un foglio..."}, &Dialogs::exportSheet)};
  for (Command& row : rows) row.help = "pagine/foglio.htm";
  return rows;
}

/// An entry that shows where the application folder has a companion program, and starts it.
Command companionRow(std::string name, const MenuPlace& place, std::string_view program) {
  Command row;
  row.name = std::move(name);
  row.menus = {place};
  row.run = [program](const CommandContext& context) {
    const std::string& folder = context.env.applicationFolder;
    context.bench.openDocument(joinPath(folder, program), folder);
  };
  row.visible = [program](const CommandContext& context) {
    return fileExists(joinPath(context.env.applicationFolder, program));
  };
  return row;
}

}  // namespace

std::vector<Command> importCommands() {
  std::vector<Command> rows{
      companionRow("import.stock", {File, 703, "Aggiorna giacenze da Orsa Gestionale..."}, "ogg.exe"),
      companionRow("import.orders", {File, 704, "Scarica ordini..."}, "ordsync.exe"),
      companionRow("import.companion", {File, 705, "Importa da Orsa Gestionale con gwimp..."}, "gwimp.exe")};
  std::ranges::move(accountingRows(), std::back_inserter(rows));
  std::ranges::move(sheetRows(), std::back_inserter(rows));
  return withHelp(std::move(rows), "index.htm");
}

}  // namespace kv
