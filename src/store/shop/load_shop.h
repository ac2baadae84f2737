#pragma once
// Loading the shop that `ShopFolder` names into the session: the catalogue is opened exclusively, and every field that
// other folders read is filled.

#include <string>
#include <vector>

#include "store/shop/session.h"

namespace kv {

/// How loading ended.
enum class LoadResult {
  Failed = 0,   ///< no shop; the main window closes
  Opened = 1,   ///< the session is filled
  Replaced = 2  ///< the user chose another shop instead, whose session has already been started
};

/// CaricaNegozio (load the shop): opens the folder named by `ShopFolder` in this session. Shows its own messages;
/// after Failed the catalogue is closed.
/// The hooks CompletaGateway, CopiaCatalogo and AggiornaNegozio run before the session's own handle exists. The last
/// two are left out for a catalogue below version 1000: it is foreign, and would get the present version number.
LoadResult CaricaNegozio(Session& session, Environment& env, const LoadOptions& options = {});

/// Releases the bindings of the window and closes the catalogue; the rest of the session stays.
void releaseCatalogue(Session& session, const Environment& env);

/// The page models of an installed template: the names of its files modello*.htm, less ".htm".
std::vector<std::string> templateModels(const std::string& applicationFolder, const std::string& name);

/// The template choice: asks through the hook frmTemplate, with `current` selected; a choice, cut to 50 characters, is
/// stored in `generale`, and the session's template path and models follow it. False when left without a choice.
Result<bool> chooseTemplate(Session& session, const Environment& env, const std::string& current);

/// Reads the language names from `lingue`; the count is the number of the first empty name less 1, at most 4.
/// Corrupt when the table has no row.
Result<> readLanguages(Session& session);

/// Counts the articles of the shop again.
Result<> countArticles(Session& session);

}  // namespace kv
