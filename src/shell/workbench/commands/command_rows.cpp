#include "shell/workbench/commands/command_rows.h"

#include <iterator>

#include "shell/workbench/commands/article_commands.h"
#include "shell/workbench/commands/build_commands.h"
#include "shell/workbench/commands/clipboard_commands.h"
#include "shell/workbench/commands/department_commands.h"
#include "shell/workbench/commands/folder_commands.h"
#include "shell/workbench/commands/help_commands.h"
#include "shell/workbench/commands/history_commands.h"
#include "shell/workbench/commands/import_commands.h"
#include "shell/workbench/commands/language_commands.h"
#include "shell/workbench/commands/picture_commands.h"
#include "shell/workbench/commands/publish_commands.h"
#include "shell/workbench/commands/search_commands.h"
#include "shell/workbench/commands/selection_commands.h"
#include "shell/workbench/commands/shop_commands.h"
#include "shell/workbench/commands/site_commands.h"
#include "shell/workbench/commands/variant_commands.h"
#include "shell/workbench/commands/view_commands.h"
#include "shell/workbench/workbench.h"

namespace kv {

std::vector<Command> allCommands() {
  std::vector<Command> all;
  for (auto* const part :
       {articleCommands, clipboardCommands, searchCommands, selectionCommands, departmentCommands, pictureCommands,
        variantCommands, historyCommands, shopCommands, folderCommands, importCommands, buildCommands, publishCommands,
        languageCommands, siteCommands, viewCommands, helpCommands}) {
    std::vector<Command> rows = part();
    std::ranges::move(rows, std::back_inserter(all));
  }
  return all;
}

Command dialogCommand(std::string name, const MenuPlace& place, WorkbenchDialogs::Dialog WorkbenchDialogs::*dialog,
                      std::string_view step) {
  Command row;
  row.name = std::move(name);
  row.menus = {place};
  row.step = step;
  row.dialog = wired(dialog);
  row.run = [dialog, step](const CommandContext& context) {
    const WorkbenchDialogs::Dialog& show = context.ports.dialogs.*dialog;
    if (!step.empty()) return context.bench.editThrough(step, show);
    ignore(show(), "the dialog has stored or told all");
    // A dialog that brought another shop, or another catalogue, may have brought none.
    if (!context.session.catalogue.isOpen()) context.view.close();
  };
  return row;
}

void runEdit(const CommandContext& context, const TreeEdit& edit, std::string_view step) {
  const auto once = [&] { return edit(context.editing); };
  context.bench.showError(step.empty() ? once() : context.history.record(std::string(step), once));
}

Command treeCommand(Command row, TreeEdit edit) {
  row.run = [step = std::string(row.step), edit = std::move(edit)](const CommandContext& context) {
    runEdit(context, edit, step);
  };
  return row;
}

Command insertCommand(Command row, TreeEdit edit, EditedSet set) {
  row.run = [step = std::string(row.step), edit = std::move(edit), set](const CommandContext& context) {
    const CatalogueSets& sets = context.sets;
    const auto current = [&] {
      return set == EditedSet::Articoli ? std::to_string(sets.article()) : sets.department();
    };
    const std::string before = current();
    const Result<> done = context.history.record(step, [&] { return edit(context.editing); });
    context.bench.showError(done);
    if (done && current() != before) context.view.startRow(set);
  };
  return row;
}

std::vector<Command> withHelp(std::vector<Command> rows, std::string_view page) {
  for (Command& row : rows) {
    if (row.help.empty()) row.help = page;
  }
  return rows;
}

Command inOpenShop(Command row) {
  row.enabled = [](const CommandContext& context) { return context.sets.isBound(); };
  row.whenOff = "Nessun negozio aperto";
  return row;
}

Command articleCommand(Command row, TreeEdit edit) {
  row.enabled = isOnArticle;
  row.whenOff = noArticle;
  return treeCommand(std::move(row), std::move(edit));
}

bool isOnArticle(const CommandContext& context) { return context.sets.onArticle(); }
bool isOnDepartment(const CommandContext& context) { return context.sets.onDepartment(); }

}  // namespace kv
