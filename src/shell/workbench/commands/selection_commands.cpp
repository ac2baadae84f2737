#include "shell/workbench/commands/selection_commands.h"

#include "platform/database/recordset.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

using enum Menu;

bool isMarked(const CommandContext& context, std::string_view column) {
  return context.sets.onArticle() && asFlag(context.sets.dataArticoli().get(column));
}

/// A flag of the articles; all take the opposite of what the current one has.
Command markRow(std::string_view column, int position, std::string_view text) {
  Command row;
  row.name = "article.mark." + std::string(column);
  row.menus = {{EditArticles, position, text, "Segna"}};
  row.step = "Segna articoli";
  row.whenOff = noArticle;
  row.enabled = isOnArticle;
  row.checked = [column](const CommandContext& context) { return isMarked(context, column); };
  row.run = [column, step = row.step](const CommandContext& context) {
    const bool on = !isMarked(context, column);
    const ArticleGroup group = articlesOf(context);
    runEdit(
        context, [&](TreeEditing& editing) { return editing.SegnaArticoli(group, column, on); }, step);
  };
  return row;
}

Command duplicateRow() {
  Command row;
  row.name = "article.duplicate";
  row.menus = {{EditArticles, 209, "Duplica"}};
  row.shortcut = "Ctrl+Shift+D";
  row.step = "Duplica articoli";
  row.whenOff = noArticle;
  row.enabled = isOnArticle;
  row.run = [step = row.step](const CommandContext& context) {
    const std::int64_t before = context.sets.article();
    const ArticleGroup group = articlesOf(context);
    runEdit(
        context, [&](TreeEditing& editing) { return editing.DuplicaArticoli(group); }, step);
    if (context.sets.article() != before) context.view.startRow(EditedSet::Articoli);
  };
  return row;
}

}  // namespace

ArticleGroup articlesOf(const CommandContext& context) {
  if (!context.sets.onArticle()) return {};
  ArticleGroup group = context.view.selectedArticles();
  if (group.size() < 2) group = {context.sets.article()};
  return group;
}

Command groupCommand(Command row, std::function<Result<>(TreeEditing&, const ArticleGroup&)> edit,
                     std::string_view step) {
  row.run = [one = row.run, edit = std::move(edit), step](const CommandContext& context) {
    const ArticleGroup group = articlesOf(context);
    if (group.size() < 2) return one(context);
    runEdit(
        context, [&](TreeEditing& editing) { return edit(editing, group); }, step);
  };
  return row;
}

std::vector<Command> selectionCommands() {
  return withHelp({duplicateRow(), markRow("novita", 210, "Novità"), markRow("inelenco", 211, "In vetrina"),
                   markRow("fuoricatalogo", 212, "Fuori catalogo")},
                  "pagine/articoli.htm");
}

}  // namespace kv
