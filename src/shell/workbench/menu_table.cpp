#include "shell/workbench/menu_table.h"

#include <array>
#include <vector>

namespace kv {
namespace {

using enum MenuAction;
using enum MenuTab;

constexpr std::string_view separator = "-";

/// A menu, and the tabs that show it.
struct Menu {
  MenuTab tab = Every;
  std::string_view name;
};
constexpr Menu file{Every, "File"}, view{Every, "Visualizza"}, help{Every, "?"};
constexpr Menu edits(MenuTab tab) { return {tab, "Modifica"}; }

constexpr MenuEntry rule(Menu menu) { return {menu.tab, menu.name, separator, -1, None, 0, ""}; }
constexpr MenuEntry numbered(Menu menu, std::string_view entry, int command, std::string_view shortcut = "") {
  return {menu.tab, menu.name, entry, command, None, 0, shortcut};
}
constexpr MenuEntry numbered(MenuTab tab, std::string_view entry, int command, std::string_view shortcut = "") {
  return numbered(edits(tab), entry, command, shortcut);
}
constexpr MenuEntry named(Menu menu, std::string_view entry, MenuAction action, std::string_view shortcut = "",
                          int argument = 0) {
  return {menu.tab, menu.name, entry, -1, action, argument, shortcut};
}

/// What stands at the head of each `Modifica` menu.
constexpr std::array<MenuEntry, 3> headOf(MenuTab tab) {
  return {named(edits(tab), "Annulla", Undo, "Ctrl+Z"), named(edits(tab), "Ripeti", Redo, "Ctrl+Y"), rule(edits(tab))};
}
/// What stands at the foot of those of departments and articles.
constexpr std::array<MenuEntry, 6> footOf(MenuTab tab) {
  return {numbered(tab, "Imposta logo negozio / normale", 29),
          numbered(tab, "Imposta logo negozio / piccolo", 32),
          numbered(tab, "Elimina logo negozio / normale", 28),
          numbered(tab, "Elimina logo negozio / piccolo", 33),
          rule(edits(tab)),
          named(edits(tab), "Modifica prezzi...", ChangePrices)};
}

constexpr std::array fileMenu{named(file, "Nuovo negozio..", NewShop, "Ctrl+N"),
                              named(file, "Apri negozio...", OpenShop, "Ctrl+O"),
                              named(file, "Esporta negozio per Korvane Banco", ExportShop),
                              named(file, "Importa negozio Primo...", ImportShop),
                              named(file, "Ripristina una copia...", RestoreCopy),
                              rule(file),
                              named(file, "Cambia le cartelle di lavoro...", ChangeFolders),
                              named(file, "Pulisci le cartelle di lavoro...", CleanFolders),
                              named(file, "Rimuovi immagini inutilizzate...", PurgeImages),
                              rule(file),
                              named(file, "Configura lingue...", Languages),
                              named(file, "Replica lingue...", ReplicateLanguages),
                              rule(file),
                              named(file, "Replica listino...", ReplicatePriceList),
                              rule(file),
                              named(file, "Tag personalizzati...", CustomTags),
                              rule(file),
                              named(file, "Scegli il template...", ChooseTemplate, "Ctrl+T"),
                              named(file, "Impostazioni costruzione...", BuildSettings),
                              numbered(file, "Costruisci il negozio", 50, "Ctrl+B"),
                              numbered(file, "Aggiorna il sito...", 51, "Ctrl+U"),
                              numbered(file, "BackOffice...", 52),
                              rule(file),
                              named(file, "Importa da Orsa Gestionale...", ImportAccounting),
                              named(file, "Aggiorna giacenze da Orsa Gestionale...", UpdateStock),
                              named(file, "Scarica ordini...", DownloadOrders),
                              named(file, "Importa da Orsa Gestionale con gwimp...", ImportCompanion),
                              rule(file),
                              named(file, "Esci", Exit, "Ctrl+Q")};

constexpr std::array departmentMenu{numbered(Departments, "Sposta / Su", 17, "Ctrl+Up"),
                                    numbered(Departments, "Sposta / Giu", 16, "Ctrl+Down"),
                                    numbered(Departments, "Aggiungi / Prima", 15, "Ctrl+Shift+I"),
                                    numbered(Departments, "Aggiungi / Dopo", 14, "Ctrl+I"),
                                    numbered(Departments, "Aggiungi / Sottoreparto", 20, "Ctrl+Alt+I"),
                                    numbered(Departments, "Copia", 12, "Ctrl+C"),
                                    numbered(Departments, "Incolla", 11, "Ctrl+V"),
                                    numbered(Departments, "Elimina", 13, "Del"),
                                    rule(edits(Departments)),
                                    numbered(Departments, "Imposta immagine", 19),
                                    numbered(Departments, "Elimina immagine", 18),
                                    numbered(Departments, "Imposta immagine pulsante", 25),
                                    numbered(Departments, "Elimina immagine pulsante", 24)};

constexpr std::array articleMenu{numbered(Articles, "Sposta / Su", 0, "Ctrl+Up"),
                                 numbered(Articles, "Sposta / Giu", 1, "Ctrl+Down"),
                                 numbered(Articles, "Aggiungi / Prima", 2, "Ctrl+Shift+I"),
                                 numbered(Articles, "Aggiungi / Dopo", 3, "Ctrl+I"),
                                 numbered(Articles, "Copia", 5, "Ctrl+C"),
                                 numbered(Articles, "Incolla", 6, "Ctrl+V"),
                                 numbered(Articles, "Elimina", 4, "Del"),
                                 numbered(Articles, "Ricerca...", 21, "Ctrl+F"),
                                 rule(edits(Articles)),
                                 numbered(Articles, "Definisci varianti / 1", 30),
                                 numbered(Articles, "Definisci varianti / 2", 31),
                                 numbered(Articles, "Definisci varianti / 3", 34),
                                 numbered(Articles, "Definisci varianti / 4", 35),
                                 numbered(Articles, "Imposta immagine / 1", 9),
                                 numbered(Articles, "Imposta immagine / 2", 23),
                                 numbered(Articles, "Imposta immagine / piccola", 26),
                                 numbered(Articles, "Elimina immagine / 1", 10),
                                 numbered(Articles, "Elimina immagine / 2", 22),
                                 numbered(Articles, "Elimina immagine / piccola", 27)};

constexpr std::array siteMenu{named(edits(Site), "Spese di spedizione...", Shipping),
                              named(edits(Site), "Sistemi di pagamento...", PaymentSystems),
                              named(edits(Site), "Testo e-mail di conferma...", OrderMail),
                              named(edits(Site), "Impostazioni vetrina...", Showcase),
                              named(edits(Site), "Campi obbligatori...", RequiredFields)};

constexpr std::array internetMenu{named(edits(Internet), "Cartella FTP del negozio...", ShopFtpFolder),
                                  named(edits(Internet), "Cartella FTP script CGI...", ScriptFtpFolder),
                                  named(edits(Internet), "Impostazioni avanzate...", ConnectionSettings)};

constexpr std::array viewMenu{named(view, "Reparti", ShowTab, "Alt+1", 0),
                              named(view, "Articoli", ShowTab, "Alt+2", 1),
                              named(view, "Sito", ShowTab, "Alt+3", 2),
                              named(view, "Internet", ShowTab, "Alt+4", 3),
                              rule(view),
                              named(view, "Lingua / 1", EditLanguage, "Ctrl+1", 1),
                              named(view, "Lingua / 2", EditLanguage, "Ctrl+2", 2),
                              named(view, "Lingua / 3", EditLanguage, "Ctrl+3", 3),
                              named(view, "Lingua / 4", EditLanguage, "Ctrl+4", 4),
                              rule(view),
                              numbered(view, "Espandi tutti i reparti", 7, "Ctrl+E"),
                              numbered(view, "Comprimi tutti i reparti", 8, "Ctrl+Shift+E"),
                              named(view, "Nascondi dettagli", HideDetails, "Ctrl+D"),
                              rule(view),
                              named(view, "Aspetto / Come il sistema", Look, "", 0),
                              named(view, "Aspetto / Chiaro", Look, "", 1),
                              named(view, "Aspetto / Scuro", Look, "", 2)};

constexpr std::array helpMenu{named(help, "Sommario...", HelpContents),
                              named(help, "Domande frequenti...", HelpQuestions),
                              named(help, "Introduzione...", Introduction),
                              named(help, "Guida ai template...", TemplateGuide),
                              rule(help),
                              named(help, "Aggiornamenti online...", CheckUpdates),
                              rule(help),
                              named(help, "Informazioni su...", About)};

}  // namespace

std::span<const MenuEntry> menuTable() {
  static const std::vector<MenuEntry> table = [] {
    std::vector<MenuEntry> entries;
    const auto add = [&entries](std::span<const MenuEntry> part) {
      entries.insert(entries.end(), part.begin(), part.end());
    };
    add(fileMenu);
    add(headOf(Departments));
    add(departmentMenu);
    add(footOf(Departments));
    add(headOf(Articles));
    add(articleMenu);
    add(footOf(Articles));
    add(headOf(Site));
    add(siteMenu);
    add(headOf(Internet));
    add(internetMenu);
    add(viewMenu);
    add(helpMenu);
    return entries;
  }();
  return table;
}

}  // namespace kv
