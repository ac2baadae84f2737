#include "shell/workbench/commands/build_commands.h"

#include "platform/files/files.h"
#include "shell/workbench/fields/current_row.h"
#include "shell/workbench/workbench.h"
#include "store/shop/load_shop.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

using enum Menu;

constexpr const char* templateNeeded = "Per costruire il negozio è necessario scegliere un template";

bool hasModels(const CommandContext& context) {
  const std::string& path = context.session.templatePath;
  return !path.empty() && !pageModels(joinPath(context.env.applicationFolder, path)).empty();
}

Result<bool> askForTemplate(const CommandContext& context) {
  return chooseTemplate(context.session, context.env, settingText(context.sets, "template"));
}

/// Asks for a template until there is one with page models; false when the user gives up.
bool ensureTemplate(const CommandContext& context) {
  while (!hasModels(context)) {
    const auto chosen = askForTemplate(context);
    if (!chosen) {
      context.bench.showError(fail(chosen.error()));
      return false;
    }
    if (*chosen) continue;
    const Answer answer = context.env.user.question({templateNeeded, Buttons::OkCancel, Answer::Ok, Icon::Exclamation});
    if (answer == Answer::Cancel || !context.env.hooks.frmTemplate) return false;
  }
  return true;
}

void runBuild(const CommandContext& context) {
  if (!ensureTemplate(context)) return;
  ignore(context.ports.dialogs.build(), "the dialog has told how it ended");
  context.bench.refreshAll();
}

void changeTemplate(const CommandContext& context) {
  context.bench.showError(context.history.record("Scegli il template", [&]() -> Result<> {
    auto chosen = askForTemplate(context);
    return chosen ? Result<>() : fail(chosen.error());
  }));
  context.bench.refreshAll();
}

Command templateRow() {
  Command row;
  row.name = "template";
  row.menus = {{File, 601, "Scegli il template..."}};
  row.shortcut = "Ctrl+T";
  row.step = "Scegli il template";
  row.help = "pagine/template.htm";
  row.whenOff = "Nessun template installato";
  row.enabled = [](const CommandContext& context) {
    return context.bench.isOpen() && context.env.hooks.frmTemplate != nullptr;
  };
  row.run = changeTemplate;
  return row;
}

}  // namespace

std::vector<Command> buildCommands() {
  return withHelp({templateRow(),
                   dialogCommand("build.settings", {File, 602, "Impostazioni costruzione..."},
                                 &WorkbenchDialogs::buildSettings, "Impostazioni costruzione"),
                   {.number = 50,
                    .name = "build",
                    .caption = "Costruisci il negozio",
                    .icon = "costruisci",
                    .menus = {{File, 603, "Costruisci il negozio"}},
                    .toolbar = {Toolbar::Shop, 101},
                    .shortcut = "Ctrl+B",
                    .dialog = wired(&WorkbenchDialogs::build),
                    .run = runBuild}},
                  "index.htm");
}

}  // namespace kv
