#pragma once
// What the session keeps of rows of the catalogue: working folders, template with its page models, languages. Loading
// a shop reads them once; whatever changes such a row by another way than its own dialog (undo, redo, an import) has
// them read again, so that the session never speaks of a row as it was.

#include <string>

#include "store/shop/session.h"

namespace kv {

/// The page model that new departments start with while the shop has no template that is installed.
inline constexpr const char* fallbackModel = "modello1";

/// A column of the settings, the single row of `generale`, as text; null is empty.
Result<std::string> readSetting(Session& session, const std::string& column);

/// Reads `siteonline` and `sitescript`; an empty column gives the folder `online` or `scripts` of the shop. Whether the
/// folders are there isn't looked at.
Result<> readWorkingFolders(Session& session);

/// Reads `template`, and lists the page models of that template. No template, or one that isn't installed, leaves the
/// fallback model alone in the list.
Result<> readTemplate(Session& session, const std::string& applicationFolder);

/// Reads all of them, languages included, without a question or a message. A language being edited that is no longer
/// one of the shop's gives way to language 1. Corrupt when a table that always has one row has none.
Result<> readSessionFacts(Session& session, const std::string& applicationFolder);

}  // namespace kv
