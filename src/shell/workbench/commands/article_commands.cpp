#include "shell/workbench/commands/article_commands.h"

#include <algorithm>
#include <iterator>

#include "shell/workbench/commands/selection_commands.h"

namespace kv {
namespace {

using enum Menu;
using enum Toolbar;

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

std::function<Result<>(TreeEditing&, const ArticleGroup&)> shiftBy(int direzione) {
  return
      [direzione](TreeEditing& editing, const ArticleGroup& group) { return editing.SpostaArticoli(group, direzione); };
}

}  // namespace

std::vector<Command> articleCommands() {
  std::vector<Command> rows = moveCommands();
  rows[0] = groupCommand(std::move(rows[0]), shiftBy(-1), "Sposta articoli");
  rows[1] = groupCommand(std::move(rows[1]), shiftBy(+1), "Sposta articoli");
  std::ranges::move(articleInsertCommands(), std::back_inserter(rows));
  return withHelp(std::move(rows), "pagine/articoli.htm");
}

}  // namespace kv
