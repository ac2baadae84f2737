#include "shell/workbench/editor_commands.h"

#include "shell/workbench/command_table.h"

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

PictureCommands pictureCommands(const Editor& editor) {
  const CommandSubject subject = subjectOf(editor.set);
  return {numberOf(CommandAction::ChooseImage, subject, editor.number),
          numberOf(CommandAction::ClearImage, subject, editor.number)};
}

int variantCommand(int slot) { return numberOf(CommandAction::DefineVariant, CommandSubject::Article, slot); }

}  // namespace kv
