#include "shell/workbench/commands/clipboard_commands.h"

#include "shell/workbench/commands/selection_commands.h"

namespace kv {
namespace {

using enum Menu;
using enum Toolbar;

Command copyCommand() {
  Command row = articleCommand({.number = 5,
                                .name = "article.copy",
                                .key = "copia articolo",
                                .caption = "Copia articolo",
                                .icon = "copia",
                                .menus = {{EditArticles, 205, "Copia"}},
                                .toolbar = {Articles, 105},
                                .shortcut = "Ctrl+C"},
                               &TreeEditing::CopiaArticolo);
  return groupCommand(std::move(row), &TreeEditing::CopiaArticoli, {});
}

/// Enabled by what was copied, whatever is current.
Command pasteCommand() {
  return treeCommand({.number = 6,
                      .name = "article.paste",
                      .key = "incolla articolo",
                      .caption = "Incolla articolo",
                      .icon = "incolla",
                      .menus = {{EditArticles, 206, "Incolla"}},
                      .toolbar = {Articles, 106},
                      .shortcut = "Ctrl+V",
                      .step = "Incolla articoli",
                      .whenOff = "Nessun articolo copiato"},
                     &TreeEditing::IncollaArticoli);
}

/// The deletion of the current article.
Command deleteCommand() {
  Command row = articleCommand({.number = 4,
                                .name = "article.delete",
                                .key = "- articolo",
                                .caption = "Elimina articolo",
                                .icon = "elimina",
                                .menus = {{EditArticles, 207, "Elimina"}},
                                .toolbar = {Articles, 107},
                                .shortcut = "Del",
                                .step = "Elimina articolo"},
                               &TreeEditing::EliminaArticolo);
  return groupCommand(std::move(row), &TreeEditing::EliminaArticoli, "Elimina articoli");
}

}  // namespace

std::vector<Command> clipboardCommands() {
  return withHelp({copyCommand(), pasteCommand(), deleteCommand()}, "pagine/articoli.htm");
}

}  // namespace kv
