// The dispatcher of the commands by number, undo and redo, and the dialogs that edit a row.

#include <array>

#include "platform/database/recordset.h"
#include "platform/files/files.h"
#include "platform/image/image.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

EditedSet setOf(CommandSubject subject) {
  if (subject == CommandSubject::Article) return EditedSet::Articoli;
  if (subject == CommandSubject::Department) return EditedSet::Categorie;
  return EditedSet::Generale;
}

/// The dialog without which a command has nothing to do; empty when it needs none.
std::string_view dialogOf(const Command& command) {
  switch (command.action) {
    case CommandAction::ChooseImage:
      return "frmImmagine";
    case CommandAction::DefineVariant:
      return "frmOpzioni";
    case CommandAction::Search:
      return "frmSearch";
    case CommandAction::Build:
      return "frmElabora";
    case CommandAction::Publish:
      return "frmImpostaFTP";
    default:
      return {};
  }
}

}  // namespace

bool Workbench::hasDialog(std::string_view name) const {
  const auto found = ports_.dialogs.find(name);
  return found != ports_.dialogs.end() && found->second != nullptr;
}

std::string Workbench::runDialog(std::string_view name, const std::string& argument) {
  const auto found = ports_.dialogs.find(name);
  return found != ports_.dialogs.end() && found->second ? found->second(argument) : std::string();
}

bool Workbench::isCommandEnabled(int number) const {
  const Command* command = commandOf(number);
  if (command == nullptr || !isOpen()) return false;
  const std::string_view dialog = dialogOf(*command);
  if (!dialog.empty() && !hasDialog(dialog)) return false;
  // The buttons of the variants stand among the editors of the article and go with them.
  if (command->action == CommandAction::DefineVariant) return isEnabled(articleMask);
  return isEnabled(command->key);
}

void Workbench::EseguiComando(int number) {
  const Command* command = commandOf(number);
  if (command == nullptr || !isOpen()) return;
  view_.finishEdits();
  runCommand(*command);
  view_.entriesChanged();
}

void Workbench::runCommand(const Command& command) {
  switch (command.action) {
    case CommandAction::ExpandAll:
    case CommandAction::CollapseAll:
      return view_.expandTree(command.action == CommandAction::ExpandAll);
    case CommandAction::ChooseImage:
      return chooseImage(command);
    case CommandAction::ClearImage:
      return clearImage(command);
    case CommandAction::DefineVariant:
      return defineVariant(command.argument);
    case CommandAction::Search:
      return search();
    case CommandAction::Build:
      return buildShop();
    case CommandAction::Publish:
      return publish();
    case CommandAction::OpenBackOffice:
      return openBackOffice();
    default:
      break;
  }
  if (command.step.empty()) return tell(edit(command));
  tell(history_.record(std::string(command.step), [&] { return edit(command); }));
}

/// The commands on the tree and its articles.
Result<> Workbench::edit(const Command& command) {
  const bool article = command.subject == CommandSubject::Article;
  switch (command.action) {
    case CommandAction::Move:
      return editing_.Sposta(command.argument, article ? TreeList::Articles : TreeList::Departments);
    case CommandAction::InsertBefore:
      return article ? editing_.InserisciArticoloPrima() : editing_.InserisciRepartoPrima();
    case CommandAction::InsertAfter:
      return article ? editing_.InserisciArticoloDopo() : editing_.InserisciRepartoDopo();
    case CommandAction::InsertBelow:
      return editing_.NuovoSottoreparto();
    case CommandAction::Delete:
      return article ? editing_.EliminaArticolo() : editing_.EliminaReparto();
    case CommandAction::Copy:
      return article ? editing_.CopiaArticolo() : editing_.CopiaReparto();
    case CommandAction::Paste:
      return article ? editing_.IncollaArticoli() : editing_.IncollaReparto();
    default:
      return {};
  }
}

void Workbench::chooseImage(const Command& command) {
  const EditedSet set = setOf(command.subject);
  const Recordset& rows = sets_.edited(set);
  if (rows.bof() || rows.eof()) return;
  const std::string name = runDialog("frmImmagine", fields_.picture(set, command.argument));
  if (name.empty()) return;
  const auto size = imageSize(joinPath(joinPath(session_.ShopFolder, "work"), name));
  if (!size) return tell(fail(size.error()));
  tell(history_.record(std::string(command.step),
                       [&] { return fields_.storePicture(set, command.argument, name, *size); }));
  refreshPictureKeys();
  view_.fieldsChanged(set);
}

void Workbench::clearImage(const Command& command) {
  const EditedSet set = setOf(command.subject);
  if (fields_.picture(set, command.argument).empty()) return;
  tell(history_.record(std::string(command.step), [&] { return fields_.storePicture(set, command.argument, "", {}); }));
  refreshPictureKeys();
  view_.fieldsChanged(set);
}

void Workbench::defineVariant(int slot) {
  if (!sets_.onArticle()) return;
  tell(history_.record("Definisci variante", [&]() -> Result<> {
    static_cast<void>(runDialog("frmOpzioni", variantSlot(slot, session_.currentListino)));
    return {};
  }));
  view_.fieldsChanged(EditedSet::Articoli);
}

void Workbench::search() {
  const std::string ID = runDialog("frmSearch", "");
  if (!ID.empty()) MostraArticolo(std::atoll(ID.c_str()));
}

void Workbench::editThrough(std::string_view name, const std::string& step, const std::string& argument) {
  view_.finishEdits();
  std::string result;
  tell(history_.record(step, [&]() -> Result<> {
    result = runDialog(name, argument);
    return {};
  }));
  if (!result.empty()) CambiaLingua(session_.currentLanguage);
}

void Workbench::undo() {
  view_.finishEdits();
  if (!history_.canUndo()) return;
  view_.showBusy(true);
  const auto undone = history_.undo();
  view_.showBusy(false);
  tell(undone);
  refreshAll();
}

void Workbench::redo() {
  view_.finishEdits();
  if (!history_.canRedo()) return;
  view_.showBusy(true);
  const auto repeated = history_.redo();
  view_.showBusy(false);
  tell(repeated);
  refreshAll();
}

}  // namespace kv
