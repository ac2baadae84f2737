#include "shell/menu_table.h"

#include <array>
#include <vector>

namespace kv {
namespace {

using enum MenuAction;
using enum MenuTab;

constexpr std::string_view separator = "-";

constexpr MenuEntry rule(MenuTab tab, std::string_view menu) { return {tab, menu, separator, -1, None, 0, ""}; }
constexpr MenuEntry numbered(MenuTab tab, std::string_view entry, int command, std::string_view shortcut = "") {
  return {tab, "Modifica", entry, command, None, 0, shortcut};
}
constexpr MenuEntry named(MenuTab tab, std::string_view menu, std::string_view entry, MenuAction action,
                          std::string_view shortcut = "", int argument = 0) {
  return {tab, menu, entry, -1, action, argument, shortcut};
}

/// What stands at the head of each `Modifica` menu.
constexpr std::array<MenuEntry, 3> headOf(MenuTab tab) {
  return {named(tab, "Modifica", "Annulla", Undo, "Ctrl+Z"), named(tab, "Modifica", "Ripeti", Redo, "Ctrl+Y"),
          rule(tab, "Modifica")};
}
/// What stands at the foot of those of departments and articles.
constexpr std::array<MenuEntry, 6> footOf(MenuTab tab) {
  return {numbered(tab, "Imposta logo negozio / normale", 29),
          numbered(tab, "Imposta logo negozio / piccolo", 32),
          numbered(tab, "Elimina logo negozio / normale", 28),
          numbered(tab, "Elimina logo negozio / piccolo", 33),
          rule(tab, "Modifica"),
          named(tab, "Modifica", "Modifica prezzi...", ChangePrices)};
}

constexpr std::array fileMenu{named(Every, "File", "Nuovo negozio..", NewShop, "Ctrl+N"),
                              named(Every, "File", "Apri negozio...", OpenShop, "Ctrl+O"),
                              named(Every, "File", "Esporta negozio per Korvane Banco", ExportShop),
                              named(Every, "File", "Importa negozio Primo...", ImportShop),
                              named(Every, "File", "Ripristina una copia...", RestoreCopy),
                              rule(Every, "File"),
                              named(Every, "File", "Cambia le cartelle di lavoro...", ChangeFolders),
                              named(Every, "File", "Pulisci le cartelle di lavoro...", CleanFolders),
                              named(Every, "File", "Rimuovi immagini inutilizzate...", PurgeImages),
                              rule(Every, "File"),
                              named(Every, "File", "Configura lingue...", Languages),
                              named(Every, "File", "Replica lingue...", ReplicateLanguages),
                              rule(Every, "File"),
                              named(Every, "File", "Replica listino...", ReplicatePriceList),
                              rule(Every, "File"),
                              named(Every, "File", "Tag personalizzati...", CustomTags),
                              rule(Every, "File"),
                              named(Every, "File", "Scegli il template...", ChooseTemplate, "Ctrl+T"),
                              named(Every, "File", "Impostazioni costruzione...", BuildSettings),
                              MenuEntry{Every, "File", "Costruisci il negozio", 50, None, 0, "Ctrl+B"},
                              MenuEntry{Every, "File", "Aggiorna il sito...", 51, None, 0, "Ctrl+U"},
                              MenuEntry{Every, "File", "BackOffice...", 52, None, 0, ""},
                              rule(Every, "File"),
                              named(Every, "File", "Importa da Orsa Gestionale...", ImportAccounting),
                              named(Every, "File", "Aggiorna giacenze da Orsa Gestionale...", UpdateStock),
                              named(Every, "File", "Scarica ordini...", DownloadOrders),
                              named(Every, "File", "Importa da Orsa Gestionale con gwimp...", ImportCompanion),
                              rule(Every, "File"),
                              named(Every, "File", "Esci", Exit, "Ctrl+Q")};

constexpr std::array departmentMenu{numbered(Departments, "Sposta / Su", 17, "Ctrl+Up"),
                                    numbered(Departments, "Sposta / Giu", 16, "Ctrl+Down"),
                                    numbered(Departments, "Aggiungi / Prima", 15, "Ctrl+Shift+I"),
                                    numbered(Departments, "Aggiungi / Dopo", 14, "Ctrl+I"),
                                    numbered(Departments, "Aggiungi / Sottoreparto", 20, "Ctrl+Alt+I"),
                                    numbered(Departments, "Copia", 12, "Ctrl+C"),
                                    numbered(Departments, "Incolla", 11, "Ctrl+V"),
                                    numbered(Departments, "Elimina", 13, "Del"),
                                    rule(Departments, "Modifica"),
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
                                 rule(Articles, "Modifica"),
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

constexpr std::array siteMenu{named(Site, "Modifica", "Spese di spedizione...", Shipping),
                              named(Site, "Modifica", "Sistemi di pagamento...", PaymentSystems),
                              named(Site, "Modifica", "Testo e-mail di conferma...", OrderMail),
                              named(Site, "Modifica", "Impostazioni vetrina...", Showcase),
                              named(Site, "Modifica", "Campi obbligatori...", RequiredFields)};

constexpr std::array internetMenu{named(Internet, "Modifica", "Cartella FTP del negozio...", ShopFtpFolder),
                                  named(Internet, "Modifica", "Cartella FTP script CGI...", ScriptFtpFolder),
                                  named(Internet, "Modifica", "Impostazioni avanzate...", ConnectionSettings)};

constexpr std::array viewMenu{named(Every, "Visualizza", "Reparti", ShowTab, "Alt+1", 0),
                              named(Every, "Visualizza", "Articoli", ShowTab, "Alt+2", 1),
                              named(Every, "Visualizza", "Sito", ShowTab, "Alt+3", 2),
                              named(Every, "Visualizza", "Internet", ShowTab, "Alt+4", 3),
                              rule(Every, "Visualizza"),
                              named(Every, "Visualizza", "Lingua / 1", EditLanguage, "Ctrl+1", 1),
                              named(Every, "Visualizza", "Lingua / 2", EditLanguage, "Ctrl+2", 2),
                              named(Every, "Visualizza", "Lingua / 3", EditLanguage, "Ctrl+3", 3),
                              named(Every, "Visualizza", "Lingua / 4", EditLanguage, "Ctrl+4", 4),
                              rule(Every, "Visualizza"),
                              MenuEntry{Every, "Visualizza", "Espandi tutti i reparti", 7, None, 0, "Ctrl+E"},
                              MenuEntry{Every, "Visualizza", "Comprimi tutti i reparti", 8, None, 0, "Ctrl+Shift+E"},
                              named(Every, "Visualizza", "Nascondi dettagli", HideDetails, "Ctrl+D")};

constexpr std::array helpMenu{named(Every, "?", "Sommario...", HelpContents),
                              named(Every, "?", "Domande frequenti...", HelpQuestions),
                              named(Every, "?", "Introduzione...", Introduction),
                              named(Every, "?", "Guida ai template...", TemplateGuide),
                              rule(Every, "?"),
                              named(Every, "?", "Aggiornamenti online...", CheckUpdates),
                              rule(Every, "?"),
                              named(Every, "?", "Informazioni su...", About)};

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
