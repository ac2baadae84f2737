#include "shell/workbench/commands/site_commands.h"

#include "shell/workbench/fields/editor_table.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

using enum Menu;

/// The choice of a folder of the server, as soon as host, user and password are there.
Command serverFolderRow(std::string name, const MenuPlace& place, ServerFolder folder, std::string_view step) {
  Command row;
  row.name = std::move(name);
  row.menus = {place};
  row.step = step;
  row.dialog = wired(&WorkbenchDialogs::chooseServerFolder);
  row.whenOff = "Indicare prima host, nome utente e password";
  row.enabled = [](const CommandContext& context) { return context.bench.commands().isEnabled(ftpFolders); };
  row.run = [folder, step](const CommandContext& context) {
    context.bench.editThrough(step, [&] { return context.ports.dialogs.chooseServerFolder(folder); });
  };
  return row;
}

Command changePricesRow() {
  Command row = dialogCommand("prices.change", {EditDepartments, 401, "Modifica prezzi..."},
                              &WorkbenchDialogs::changePrices, "Modifica prezzi");
  row.menus.push_back({EditArticles, 401, "Modifica prezzi..."});
  return row;
}

/// It is beside its field on the tab of the site, and in no menu.
Command privacyRow() {
  Command row =
      dialogCommand(std::string(privacyCommand), {}, &WorkbenchDialogs::privacyPolicy, "Compact Privacy Policy");
  row.menus.clear();
  row.caption = "Compact Privacy Policy";
  return row;
}

/// A row whose help is the page of prices and replication.
Command ofPrices(Command row) {
  row.help = "pagine/prezzi.htm";
  return row;
}

/// A row whose help is the page of what the law asks.
Command ofLaw(Command row) {
  row.help = "pagine/leggi.htm";
  return row;
}

/// It changes nothing by itself, so it makes no step.
Command dutiesRow() {
  Command row = dialogCommand("legalDuties", {File, 502, "Requisiti di legge..."}, &WorkbenchDialogs::legalDuties);
  return ofLaw(inOpenShop(std::move(row)));
}

/// It is on as soon as there is a server to try, like the choice of its folders.
Command verifyRow() {
  Command row = dialogCommand("connection.verify", {EditInternet, 204, "Verifica connessione"},
                              &WorkbenchDialogs::verifyConnection);
  row.whenOff = "Indicare prima host, nome utente e password";
  row.enabled = [](const CommandContext& context) { return context.bench.commands().isEnabled(ftpFolders); };
  return row;
}

std::vector<Command> connectionCommands() {
  return {serverFolderRow("connection.shopFolder", {EditInternet, 201, "Cartella FTP del negozio..."},
                          ServerFolder::Shop, "Cartella FTP del negozio"),
          serverFolderRow("connection.scriptFolder", {EditInternet, 202, "Cartella FTP script CGI..."},
                          ServerFolder::Scripts, "Cartella FTP script CGI"),
          dialogCommand("connection.settings", {EditInternet, 203, "Impostazioni avanzate..."},
                        &WorkbenchDialogs::connectionSettings),
          verifyRow()};
}

}  // namespace

std::vector<Command> siteCommands() {
  using Dialogs = WorkbenchDialogs;
  std::vector<Command> rows{
      dialogCommand("shipping", {EditSite, 201, "Spese di spedizione..."}, &Dialogs::shipping, "Spese di spedizione"),
      dialogCommand("payment", {EditSite, 202, "Sistemi di pagamento..."}, &Dialogs::configurePayment,
                    "Sistemi di pagamento"),
      dialogCommand("orderMail", {EditSite, 203, "Testo e-mail di conferma..."}, &Dialogs::orderMail,
                    "Testo e-mail di conferma"),
      dialogCommand("showcase", {EditSite, 204, "Impostazioni vetrina..."}, &Dialogs::showcase, "Impostazioni vetrina"),
      dialogCommand("requiredFields", {EditSite, 205, "Campi obbligatori..."}, &Dialogs::requiredFields,
                    "Campi obbligatori"),
      ofLaw(dialogCommand("makers", {EditSite, 206, "Produttori..."}, &Dialogs::makers, "Produttori")),
      dutiesRow(),
      dialogCommand("customTags", {File, 501, "Tag personalizzati..."}, &Dialogs::customTags, "Tag personalizzati"),
      privacyRow(),
      ofPrices(dialogCommand("prices.replicate", {File, 401, "Replica listino..."}, &Dialogs::replicatePriceList,
                             "Replica listino")),
      ofPrices(changePricesRow())};
  rows = withHelp(std::move(rows), "pagine/sito.htm");
  for (Command& row : withHelp(connectionCommands(), "pagine/internet.htm")) rows.push_back(std::move(row));
  return rows;
}

}  // namespace kv
