#include "shell/workbench/editor_table.h"

#include <algorithm>
#include <vector>

#include "shell/workbench/command_table.h"
#include "shell/workbench/editor_rows.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

CommandSubject subjectOf(EditedSet set) {
  switch (set) {
    case EditedSet::Articoli:
      return CommandSubject::Article;
    case EditedSet::Categorie:
      return CommandSubject::Department;
    case EditedSet::Generale:
      break;
  }
  return CommandSubject::Shop;
}

int numberOf(CommandAction action, CommandSubject subject, int argument) {
  for (const Command& command : commandTable()) {
    if (command.action == action && command.subject == subject && command.argument == argument) return command.number;
  }
  return -1;
}

}  // namespace

std::span<const Editor> editorTable() {
  static const std::vector<Editor> table = [] {
    std::vector<Editor> rows = catalogueEditors();
    for (const Editor& row : siteEditors()) rows.push_back(row);
    for (const Editor& row : internetEditors()) rows.push_back(row);
    return rows;
  }();
  return table;
}

const Editor* editorOf(EditedSet set, std::string_view column) {
  const auto table = editorTable();
  const auto found =
      std::ranges::find_if(table, [&](const Editor& row) { return row.set == set && row.column == column; });
  return found == table.end() ? nullptr : &*found;
}

std::string columnOf(const Editor& editor, int listino) {
  if (editor.control == Control::Variant) return variantColumn(editor.number, listino);
  std::string column(editor.column);
  if (editor.per == Per::Listino) column += listinoSuffixes[static_cast<std::size_t>(std::clamp(listino, 0, 9))];
  return column;
}

PictureCommands pictureCommands(const Editor& editor) {
  const CommandSubject subject = subjectOf(editor.set);
  return {numberOf(CommandAction::ChooseImage, subject, editor.number),
          numberOf(CommandAction::ClearImage, subject, editor.number)};
}

int variantCommand(int slot) { return numberOf(CommandAction::DefineVariant, CommandSubject::Article, slot); }

}  // namespace kv
