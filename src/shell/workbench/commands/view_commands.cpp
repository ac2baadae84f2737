#include "shell/workbench/commands/view_commands.h"

#include <array>

#include "shell/workbench/workbench.h"

namespace kv {
namespace {

using enum Menu;

Command tabRow(Tab tab, std::string_view text, std::string_view shortcut, std::string_view help) {
  Command row;
  row.name = tabCommand(tab);
  row.menus = {{View, 101 + static_cast<int>(tab), text}};
  row.shortcut = shortcut;
  row.help = help;
  row.choice = "tab";
  row.checked = [tab](const CommandContext& context) { return context.bench.tab() == tab; };
  row.run = [tab](const CommandContext& context) { context.bench.selectTab(tab); };
  return row;
}

Command detailsRow() {
  Command row;
  row.name = "details.hide";
  row.menus = {{View, 303, "Nascondi dettagli"}};
  row.shortcut = "Ctrl+D";
  row.whenOff = "Solo nelle schede Reparti e Articoli";
  row.enabled = [](const CommandContext& context) {
    return context.bench.tab() == Tab::Departments || context.bench.tab() == Tab::Articles;
  };
  row.checked = [](const CommandContext& context) { return context.bench.areDetailsHidden(); };
  row.run = [](const CommandContext& context) { context.bench.hideDetails(!context.bench.areDetailsHidden()); };
  return row;
}

/// The state of the key is the workbench's: a tree has to be there and to be shown.
Command expansionRow(Command row, bool expanded) {
  row.key = expansionKey;
  row.whenOff = "Nessun reparto da mostrare";
  row.run = [expanded](const CommandContext& context) { context.view.expandTree(expanded); };
  return row;
}

void chooseAppearance(const CommandContext& context, Appearance appearance) {
  if (context.ports.applyAppearance) context.ports.applyAppearance(appearance);
  if (storeAppearance(context.env.settings, appearance)) return;
  context.env.user.message("L'aspetto scelto vale fino alla chiusura: l'impostazione non è stata salvata",
                           Icon::Exclamation);
}

Command appearanceRow(std::string name, int position, std::string_view text, Appearance appearance) {
  Command row;
  row.name = std::move(name);
  row.menus = {{View, position, text, "Aspetto"}};
  row.choice = "look";
  row.checked = [appearance](const CommandContext& context) {
    return storedAppearance(context.env.settings) == appearance;
  };
  row.run = [appearance](const CommandContext& context) { chooseAppearance(context, appearance); };
  return row;
}

}  // namespace

std::string tabCommand(Tab tab) {
  constexpr std::array<const char*, tabCount> names{"tab.departments", "tab.articles", "tab.site", "tab.internet"};
  return names[static_cast<std::size_t>(tab)];
}

std::vector<Command> viewCommands() {
  using enum Tab;
  return withHelp(
      {tabRow(Departments, "Reparti", "Alt+1", "pagine/reparti.htm"),
       tabRow(Articles, "Articoli", "Alt+2", "pagine/articoli.htm"), tabRow(Site, "Sito", "Alt+3", "pagine/sito.htm"),
       tabRow(Internet, "Internet", "Alt+4", "pagine/internet.htm"),
       expansionRow({.number = 7,
                     .name = "tree.expand",
                     .caption = "Espandi tutto",
                     .icon = "espandi",
                     .menus = {{View, 301, "Espandi tutti i reparti"}},
                     .toolbar = {Toolbar::Departments, 109},
                     .shortcut = "Ctrl+E",
                     .help = "pagine/reparti.htm"},
                    true),
       expansionRow({.number = 8,
                     .name = "tree.collapse",
                     .icon = "comprimi",
                     .menus = {{View, 302, "Comprimi tutti i reparti"}},
                     .shortcut = "Ctrl+Shift+E",
                     .help = "pagine/reparti.htm"},
                    false),
       detailsRow(), appearanceRow("look.desktop", 401, "Come il sistema", Appearance::Desktop),
       appearanceRow("look.light", 402, "Chiaro", Appearance::Light),
       appearanceRow("look.dark", 403, "Scuro", Appearance::Dark)},
      "index.htm");
}

}  // namespace kv
