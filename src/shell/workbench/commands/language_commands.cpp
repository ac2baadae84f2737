#include "shell/workbench/commands/language_commands.h"

#include "shell/workbench/workbench.h"
#include "store/shop/load_shop.h"

namespace kv {
namespace {

/// The entry of a language shows its name, and only where the shop has so many.
Command languageRow(int language, std::string_view shortcut) {
  Command row;
  row.name = languageCommand(language);
  row.menus = {{Menu::View, 200 + language, {}, "Lingua"}};
  row.shortcut = shortcut;
  row.visible = [language](const CommandContext& context) { return language <= context.session.languageCount; };
  row.choice = "language";
  row.checked = [language](const CommandContext& context) { return language == context.session.currentLanguage; };
  row.text = [language](const CommandContext& context) {
    return "&" + std::to_string(language) + " - " +
           context.session.languageNames[static_cast<std::size_t>(language - 1)];
  };
  row.run = [language](const CommandContext& context) { context.bench.CambiaLingua(language); };
  return row;
}

/// The dialog may have taken the language in use away.
Command languagesRow() {
  Command row = dialogCommand("languages", {Menu::File, 301, "Configura lingue..."}, &WorkbenchDialogs::languages,
                              "Configura lingue");
  row.run = [edit = row.run](const CommandContext& context) {
    edit(context);
    context.bench.showError(readLanguages(context.session));
    if (context.session.currentLanguage > context.session.languageCount) context.bench.CambiaLingua(1);
    context.bench.MostraLingue();
  };
  return row;
}

Command replicationRow() {
  Command row = dialogCommand("languages.replicate", {Menu::File, 302, "Replica lingue..."},
                              &WorkbenchDialogs::replicateLanguages, "Replica lingue");
  row.whenOff = "Il negozio ha una sola lingua";
  row.enabled = [](const CommandContext& context) { return context.session.languageCount > 1; };
  row.help = "pagine/prezzi.htm";
  return row;
}

}  // namespace

std::string languageCommand(int language) { return "language." + std::to_string(language); }

std::vector<Command> languageCommands() {
  return withHelp({languagesRow(), replicationRow(), languageRow(1, "Ctrl+1"), languageRow(2, "Ctrl+2"),
                   languageRow(3, "Ctrl+3"), languageRow(4, "Ctrl+4")},
                  "index.htm");
}

}  // namespace kv
