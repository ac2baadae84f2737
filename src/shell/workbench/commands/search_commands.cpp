#include "shell/workbench/commands/search_commands.h"

#include "shell/workbench/workbench.h"

namespace kv {
namespace {

using enum Menu;

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

}  // namespace

std::vector<Command> searchCommands() { return withHelp({searchCommand(), sheetCommand()}, "pagine/articoli.htm"); }

}  // namespace kv
