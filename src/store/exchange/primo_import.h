#pragma once
// The import of a shop of the earlier product line into the open one: backup, rows, pictures, and the messages on the
// way. The source is never changed.

#include <functional>
#include <string>

#include "store/shop/session.h"

namespace kv {

inline constexpr std::string_view primoTitle = "Korvane - Importazione da negozi Primo";
inline constexpr std::string_view primoPrompt = "Selezionare la cartella del negozio di origine:";
/// What the dialog says of the import.
inline constexpr std::string_view primoNote =
    "I dati importati sostituiranno quelli del negozio attuale; il negozio di origine non sarà modificato.\n\n"
    "Saranno importati tutti i dati, ad eccezione del template, delle impostazioni Internet e dei sistemi di "
    "pagamento.\n\n"
    "Al termine dell'importazione sarà necessario provvedere alle seguenti operazioni:\n"
    "- Scelta del template\n- Configurazione dei sistemi di pagamento\n- Configurazione della scheda \"Internet\"";

/// How an import ended.
enum class PrimoOutcome {
  Failed = 0,  ///< the user was told to restart; the program ends at once
  Done = -1,   ///< everything was taken over, and the session has been restarted
  NotDone = 1  ///< nothing was imported, and the user knows why
};

/// ImportaDati (import the data): replaces the rows of the open catalogue by those of the catalogue `path`. -1 for
/// success; 0 for an import that failed on the way, the catalogue being as before; 1 when the source can't be opened
/// or has another version, which the user was told.
int ImportaDati(Session& session, Environment& env, const std::string& path);

/// The folder that the user chooses for the import: true when it holds a catalogue; else a message says that it
/// doesn't.
bool holdsSource(Environment& env, const std::string& folder);

/// The command OK of frmImportaPrimo: imports rows and pictures of the shop in `folder`, tells how it ended and
/// restarts the session. The pictures are copied beside the shop's own ones before anything else changes, and
/// replace them once the rows are in.
PrimoOutcome importPrimoShop(Session& session, Environment& env, const std::string& folder);

/// ImportaNegozio (import a shop): closes the session for a numbered backup, restarts it silently, tells the backup's
/// name or asks whether to go on without one, and shows the dialog, whose result is the command's.
PrimoOutcome ImportaNegozio(Session& session, Environment& env, const std::function<PrimoOutcome()>& frmImportaPrimo);

}  // namespace kv
