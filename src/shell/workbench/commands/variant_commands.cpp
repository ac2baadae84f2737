#include "shell/workbench/commands/variant_commands.h"

#include "shell/workbench/workbench.h"

namespace kv {
namespace {

constexpr std::string_view variantStep = "Definisci variante";

void defineVariant(const CommandContext& context, int slot) {
  if (!context.sets.onArticle()) return;
  const VariantSlot wanted{slot, context.bench.listino()};
  context.bench.showError(context.history.record(std::string(variantStep), [&]() -> Result<> {
    ignore(context.ports.dialogs.defineVariant(wanted), "the step holds what was stored, with Cancel too");
    return {};
  }));
  context.view.fieldsChanged(EditedSet::Articoli);
}

/// The button of a slot is among the editors of the article and goes with them.
Command variantRow(int number, int slot, std::string_view caption, std::string_view entry) {
  return {.number = number,
          .name = variantCommand(slot),
          .caption = caption,
          .icon = "variante",
          .menus = {{Menu::EditArticles, 300 + slot, entry, "Definisci varianti"}},
          .step = variantStep,
          .whenOff = noArticle,
          .dialog = wired(&WorkbenchDialogs::defineVariant),
          .enabled = [](const CommandContext& context) { return context.bench.commands().isEnabled(articleMask); },
          .run = [slot](const CommandContext& context) { defineVariant(context, slot); }};
}

}  // namespace

std::string variantCommand(int slot) { return "article.variant" + std::to_string(slot); }

std::vector<Command> variantCommands() {
  return withHelp({variantRow(30, 1, "Definisci variante 1", "1"), variantRow(31, 2, "Definisci variante 2", "2"),
                   variantRow(34, 3, "Definisci variante 3", "3"), variantRow(35, 4, "Definisci variante 4", "4")},
                  "pagine/articoli.htm");
}

}  // namespace kv
