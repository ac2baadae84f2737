#include "shell/workbench/commands/department_insert_commands.h"

#include "shell/workbench/workbench.h"

namespace kv {
namespace {

using enum Menu;
using enum Toolbar;

Command newDepartmentCommand(Command row, TreeEdit edit) {
  row.enabled = isOnDepartment;
  row.whenOff = noDepartment;
  return insertCommand(std::move(row), std::move(edit), EditedSet::Categorie);
}

}  // namespace

std::vector<Command> departmentInsertCommands() {
  constexpr std::string_view add = "Aggiungi reparto";
  return {newDepartmentCommand({.number = 15,
                                .name = "department.insertBefore",
                                .key = "+ categoria prima",
                                .caption = "Aggiungi reparto prima",
                                .icon = "prima",
                                .menus = {{EditDepartments, 203, "Prima", "Aggiungi"}},
                                .toolbar = {Departments, 103},
                                .shortcut = "Ctrl+Shift+I",
                                .step = add},
                               &TreeEditing::InserisciRepartoPrima),
          newDepartmentCommand({.number = 14,
                                .name = "department.insertAfter",
                                .key = "+ categoria dopo",
                                .caption = "Aggiungi reparto dopo",
                                .icon = "dopo",
                                .menus = {{EditDepartments, 204, "Dopo", "Aggiungi"}},
                                .toolbar = {Departments, 104},
                                .shortcut = "Ctrl+I",
                                .step = add},
                               &TreeEditing::InserisciRepartoDopo),
          // On the root it adds a department of the top level.
          insertCommand({.number = 20,
                         .name = "department.insertBelow",
                         .caption = "Aggiungi sottoreparto",
                         .icon = "sotto",
                         .menus = {{EditDepartments, 205, "Sottoreparto", "Aggiungi"}},
                         .toolbar = {Departments, 105},
                         .shortcut = "Ctrl+Alt+I",
                         .step = "Aggiungi sottoreparto"},
                        &TreeEditing::NuovoSottoreparto, EditedSet::Categorie)};
}

}  // namespace kv
