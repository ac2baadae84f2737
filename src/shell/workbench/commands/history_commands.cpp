#include "shell/workbench/commands/history_commands.h"

#include "shell/workbench/busy.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

constexpr std::string_view wayBackText = "Cronologia...";

/// A row of the history, at the head of every `Modifica`; its entries name the step.
Command historyRow(Command row, int position, std::string (UndoHistory::*stepName)() const,
                   Result<> (UndoHistory::*move)()) {
  for (const Menu menu : {Menu::EditDepartments, Menu::EditArticles, Menu::EditSite, Menu::EditInternet}) {
    row.menus.push_back({menu, 100 + position, row.caption});
  }
  row.toolbar = {Toolbar::Shop, 200 + position};
  row.enabled = [stepName](const CommandContext& context) { return !(context.history.*stepName)().empty(); };
  row.text = [text = std::string(row.caption), stepName](const CommandContext& context) {
    const std::string step = (context.history.*stepName)();
    return step.empty() ? text : text + ": " + step;
  };
  row.run = [stepName, move](const CommandContext& context) {
    if ((context.history.*stepName)().empty()) return;
    Result<> done;
    {
      const BusyGuard busy(context.view);
      done = (context.history.*move)();
    }
    context.bench.showError(done);
    // The step may have changed the languages of the shop.
    context.bench.MostraLingue();
    context.bench.refreshAll();
  };
  return row;
}

/// The way back that outlives the session, below undo and redo.
Command wayBackRow() {
  Command row = dialogCommand("history", {Menu::EditDepartments, 103, wayBackText}, &WorkbenchDialogs::history);
  for (const Menu menu : {Menu::EditArticles, Menu::EditSite, Menu::EditInternet}) {
    row.menus.push_back({menu, 103, wayBackText});
  }
  row.help = "pagine/cronologia.htm";
  return inOpenShop(std::move(row));
}

}  // namespace

std::vector<Command> historyCommands() {
  return withHelp({historyRow({.name = "undo",
                               .caption = "Annulla",
                               .icon = "annulla",
                               .shortcut = "Ctrl+Z",
                               .whenOff = "Niente da annullare"},
                              1, &UndoHistory::undoName, &UndoHistory::undo),
                   historyRow({.name = "redo",
                               .caption = "Ripeti",
                               .icon = "ripeti",
                               .shortcut = "Ctrl+Y",
                               .whenOff = "Niente da ripetere"},
                              2, &UndoHistory::redoName, &UndoHistory::redo),
                   wayBackRow()},
                  "index.htm");
}

}  // namespace kv
