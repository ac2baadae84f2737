#include "shell/workbench/commands/help_commands.h"

#include "shell/workbench/commands/view_commands.h"
#include "shell/workbench/workbench.h"
#include "store/shop/session_start.h"

namespace kv {
namespace {

using enum Menu;

constexpr const char* updateAddress = "https://korvane.example/update/checkupdate.php?id=";

/// An entry that opens a page of the help.
Command pageRow(std::string name, const MenuPlace& place, std::string_view page) {
  Command row;
  row.name = std::move(name);
  row.menus = {place};
  row.help = page;
  row.run = [page](const CommandContext& context) { context.bench.openHelp(page); };
  return row;
}

/// The manual of the templates, where it is installed.
Command manualRow() {
  Command row;
  row.name = "help.templates";
  row.menus = {{Help, 104, "Guida ai template..."}};
  row.help = "pagine/template.htm";
  row.visible = [](const CommandContext& context) {
    return !optionalEntries(context.env.applicationFolder).manual.empty();
  };
  row.run = [](const CommandContext& context) {
    context.bench.openDocument(optionalEntries(context.env.applicationFolder).manual);
  };
  return row;
}

Command updatesRow() {
  Command row;
  row.name = "help.updates";
  row.menus = {{Help, 201, "Aggiornamenti online..."}};
  row.run = [](const CommandContext& context) {
    context.bench.openDocument(updateAddress + versionNumber(KORVANE_VERSION));
  };
  return row;
}

Command doctorRow() {
  Command row = dialogCommand("doctor", {Help, 202, "Controlla il negozio..."}, &WorkbenchDialogs::doctor);
  row.help = "pagine/controllo.htm";
  return inOpenShop(std::move(row));
}

/// The page of the tab in use is that of the command which goes to it.
Command tabHelpRow() {
  Command row;
  row.name = "help.tab";
  row.caption = "Aiuto";
  row.shortcut = "F1";
  row.finishesEdits = false;
  row.run = [](const CommandContext& context) {
    const Command* tab = context.bench.commands().table().named(tabCommand(context.bench.tab()));
    if (tab != nullptr) context.bench.openHelp(tab->help);
  };
  return row;
}

}  // namespace

std::string versionNumber(std::string_view version) {
  std::string number;
  std::size_t part = 0;
  for (std::string_view rest = version; part < 3; ++part) {
    const std::size_t end = rest.find('.');
    const std::string digits(rest.substr(0, end));
    const std::size_t width = part < 2 ? 2 : 3;
    number += std::string(digits.size() < width ? width - digits.size() : 0, '0') + digits;
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return number;
}

std::vector<Command> helpCommands() {
  return withHelp(
      {pageRow("help.contents", {Help, 101, "Sommario..."}, "index.htm"),
       pageRow("help.questions", {Help, 102, "Domande frequenti..."}, "pagine/faq.htm"),
       dialogCommand("help.introduction", {Help, 103, "Introduzione..."}, &WorkbenchDialogs::introduction), manualRow(),
       updatesRow(), doctorRow(),
       dialogCommand("help.about", {Help, 301, "Informazioni su..."}, &WorkbenchDialogs::about), tabHelpRow()},
      "index.htm");
}

}  // namespace kv
