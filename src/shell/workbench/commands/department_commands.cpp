#include "shell/workbench/commands/department_commands.h"

#include "shell/workbench/commands/department_insert_commands.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

using enum Menu;
using enum Toolbar;

using DepartmentsEdit = std::function<Result<>(TreeEditing&, const DepartmentGroup&)>;

/// The row with an edit of several departments in front of it, which runs while more than one is selected. `step`: how
/// undo names that edit; empty when there is nothing to undo.
Command groupCommand(Command row, DepartmentsEdit edit, std::string_view step) {
  row.run = [one = row.run, edit = std::move(edit), step](const CommandContext& context) {
    const DepartmentGroup group = context.view.selectedDepartments();
    if (group.size() < 2) return one(context);
    runEdit(
        context, [&](TreeEditing& editing) { return edit(editing, group); }, step);
  };
  return row;
}

/// The row of an edit of the tree, enabled while a department is current.
Command departmentCommand(Command row, TreeEdit edit) {
  row.enabled = isOnDepartment;
  row.whenOff = noDepartment;
  return treeCommand(std::move(row), std::move(edit));
}

/// The row that moves what is selected one up (-1) or down (+1) among its neighbours.
Command moveCommand(Command row, int direction) {
  row.step = "Sposta reparto";
  return groupCommand(
      departmentCommand(std::move(row),
                        [direction](TreeEditing& editing) { return editing.Sposta(direction, TreeList::Departments); }),
      [direction](TreeEditing& editing, const DepartmentGroup& group) {
        return editing.SpostaReparti(group, direction);
      },
      "Sposta reparti");
}

}  // namespace

std::vector<Command> departmentCommands() {
  std::vector<Command> rows{moveCommand({.number = 17,
                                         .name = "department.up",
                                         .key = "categoria su",
                                         .caption = "Muovi su",
                                         .icon = "su",
                                         .menus = {{EditDepartments, 201, "Su", "Sposta"}},
                                         .toolbar = {Departments, 101},
                                         .shortcut = "Ctrl+Up"},
                                        -1),
                            moveCommand({.number = 16,
                                         .name = "department.down",
                                         .key = "categoria giu",
                                         .caption = "Muovi giù",
                                         .icon = "giu",
                                         .menus = {{EditDepartments, 202, "Giu", "Sposta"}},
                                         .toolbar = {Departments, 102},
                                         .shortcut = "Ctrl+Down"},
                                        +1),
                            groupCommand(departmentCommand({.number = 12,
                                                            .name = "department.copy",
                                                            .key = "copia categoria",
                                                            .caption = "Copia reparto",
                                                            .icon = "copia",
                                                            .menus = {{EditDepartments, 206, "Copia"}},
                                                            .toolbar = {Departments, 106},
                                                            .shortcut = "Ctrl+C"},
                                                           &TreeEditing::CopiaReparto),
                                         &TreeEditing::CopiaReparti, {}),
                            // Enabled by what was copied, whatever is current.
                            treeCommand({.number = 11,
                                         .name = "department.paste",
                                         .key = "incolla categoria",
                                         .caption = "Incolla reparto",
                                         .icon = "incolla",
                                         .menus = {{EditDepartments, 207, "Incolla"}},
                                         .toolbar = {Departments, 107},
                                         .shortcut = "Ctrl+V",
                                         .step = "Incolla reparto",
                                         .whenOff = "Nessun reparto copiato"},
                                        &TreeEditing::IncollaReparto),
                            groupCommand(departmentCommand({.number = 13,
                                                            .name = "department.delete",
                                                            .key = "- categoria",
                                                            .caption = "Elimina reparto",
                                                            .icon = "elimina",
                                                            .menus = {{EditDepartments, 208, "Elimina"}},
                                                            .toolbar = {Departments, 108},
                                                            .shortcut = "Del",
                                                            .step = "Elimina reparto"},
                                                           &TreeEditing::EliminaReparto),
                                         &TreeEditing::EliminaReparti, "Elimina reparti")};
  for (Command& row : departmentInsertCommands()) rows.push_back(std::move(row));
  return withHelp(std::move(rows), "pagine/reparti.htm");
}

}  // namespace kv
