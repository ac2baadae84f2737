#include "shell/workbench/commands/article_commands.h"

#include "shell/workbench/commands/selection_commands.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

using enum Menu;
using enum Toolbar;

/// The row of an edit of the list, enabled while an article is current.
Command articleCommand(Command row, TreeEdit edit) {
  row.enabled = isOnArticle;
  row.whenOff = noArticle;
  return treeCommand(std::move(row), std::move(edit));
}

/// The row of a new article, which needs a department and no article.
Command newArticleCommand(Command row, TreeEdit edit) {
  row.enabled = isOnDepartment;
  row.whenOff = noDepartment;
  return insertCommand(std::move(row), std::move(edit), EditedSet::Articoli);
}

/// Exchange of the current article with its neighbour.
std::vector<Command> moveCommands() {
  constexpr std::string_view step = "Sposta articolo";
  return {articleCommand({.number = 0,
                          .name = "article.up",
                          .key = "articolo su",
                          .caption = "Muovi su",
                          .icon = "su",
                          .menus = {{EditArticles, 201, "Su", "Sposta"}},
                          .toolbar = {Articles, 101},
                          .shortcut = "Ctrl+Up",
                          .step = step},
                         [](TreeEditing& editing) { return editing.Sposta(-1, TreeList::Articles); }),
          articleCommand({.number = 1,
                          .name = "article.down",
                          .key = "articolo giu",
                          .caption = "Muovi giù",
                          .icon = "giu",
                          .menus = {{EditArticles, 202, "Giu", "Sposta"}},
                          .toolbar = {Articles, 102},
                          .shortcut = "Ctrl+Down",
                          .step = step},
                         [](TreeEditing& editing) { return editing.Sposta(+1, TreeList::Articles); })};
}

/// A new article before or after the current one.
std::vector<Command> articleInsertCommands() {
  constexpr std::string_view step = "Aggiungi articolo";
  return {newArticleCommand({.number = 2,
                             .name = "article.insertBefore",
                             .key = "+ articolo prima",
                             .caption = "Aggiungi articolo prima",
                             .icon = "prima",
                             .menus = {{EditArticles, 203, "Prima", "Aggiungi"}},
                             .toolbar = {Articles, 103},
                             .shortcut = "Ctrl+Shift+I",
                             .step = step},
                            &TreeEditing::InserisciArticoloPrima),
          newArticleCommand({.number = 3,
                             .name = "article.insertAfter",
                             .key = "+ articolo dopo",
                             .caption = "Aggiungi articolo dopo",
                             .icon = "dopo",
                             .menus = {{EditArticles, 204, "Dopo", "Aggiungi"}},
                             .toolbar = {Articles, 104},
                             .shortcut = "Ctrl+I",
                             .step = step},
                            &TreeEditing::InserisciArticoloDopo)};
}

/// Copy and paste by the clipboard of the catalogue.
std::vector<Command> clipboardCommands() {
  return {articleCommand({.number = 5,
                          .name = "article.copy",
                          .key = "copia articolo",
                          .caption = "Copia articolo",
                          .icon = "copia",
                          .menus = {{EditArticles, 205, "Copia"}},
                          .toolbar = {Articles, 105},
                          .shortcut = "Ctrl+C"},
                         &TreeEditing::CopiaArticolo),
          // Enabled by what was copied, whatever is current.
          treeCommand({.number = 6,
                       .name = "article.paste",
                       .key = "incolla articolo",
                       .caption = "Incolla articolo",
                       .icon = "incolla",
                       .menus = {{EditArticles, 206, "Incolla"}},
                       .toolbar = {Articles, 106},
                       .shortcut = "Ctrl+V",
                       .step = "Incolla articoli",
                       .whenOff = "Nessun articolo copiato"},
                      &TreeEditing::IncollaArticoli)};
}

/// The deletion of the current article.
Command deleteCommand() {
  return articleCommand({.number = 4,
                         .name = "article.delete",
                         .key = "- articolo",
                         .caption = "Elimina articolo",
                         .icon = "elimina",
                         .menus = {{EditArticles, 207, "Elimina"}},
                         .toolbar = {Articles, 107},
                         .shortcut = "Del",
                         .step = "Elimina articolo"},
                        &TreeEditing::EliminaArticolo);
}

/// The entry and button of the search; what was found is shown.
Command searchCommand() {
  return {.number = 21,
          .name = "article.search",
          .caption = "Cerca articolo",
          .icon = "cerca",
          .menus = {{EditArticles, 208, "Ricerca..."}},
          .toolbar = {Toolbar::Articles, 108},
          .shortcut = "Ctrl+F",
          .dialog = wired(&WorkbenchDialogs::searchArticle),
          .run = [](const CommandContext& context) {
            const auto found = context.ports.dialogs.searchArticle();
            if (found) context.bench.MostraArticolo(*found);
          }};
}

/// The sheet makes steps of its own; what it has changed is read again when it closes.
Command sheetCommand() {
  Command row{.name = "articles.sheet",
              .menus = {{EditArticles, 402, "Foglio articoli..."}, {EditDepartments, 402, "Foglio articoli..."}},
              .shortcut = "Ctrl+Shift+F",
              .help = "pagine/foglio-articoli.htm",
              .dialog = wired(&WorkbenchDialogs::articleSheet)};
  row.run = [](const CommandContext& context) {
    if (context.ports.dialogs.articleSheet()) context.bench.CambiaLingua(context.session.currentLanguage);
  };
  return inOpenShop(std::move(row));
}

std::function<Result<>(TreeEditing&, const ArticleGroup&)> shiftBy(int direzione) {
  return
      [direzione](TreeEditing& editing, const ArticleGroup& group) { return editing.SpostaArticoli(group, direzione); };
}

}  // namespace

std::vector<Command> articleCommands() {
  std::vector<Command> rows;
  for (const auto& part : {moveCommands(), articleInsertCommands(), clipboardCommands()}) {
    rows.insert(rows.end(), part.begin(), part.end());
  }
  rows.push_back(deleteCommand());
  rows.push_back(searchCommand());
  rows.push_back(sheetCommand());
  for (Command& row : rows) {
    if (row.name == "article.up") row = groupCommand(std::move(row), shiftBy(-1), "Sposta articoli");
    if (row.name == "article.down") row = groupCommand(std::move(row), shiftBy(+1), "Sposta articoli");
    if (row.name == "article.copy") row = groupCommand(std::move(row), &TreeEditing::CopiaArticoli, {});
    if (row.name == "article.delete")
      row = groupCommand(std::move(row), &TreeEditing::EliminaArticoli, "Elimina articoli");
  }
  return withHelp(std::move(rows), "pagine/articoli.htm");
}

}  // namespace kv
