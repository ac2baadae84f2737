#pragma once
// Export: a copy of the open shop in an empty folder, which another installation of the program can open. The catalogue
// is copied last, so that half an export is no shop, and the open shop is never written.

#include <functional>
#include <string>

#include "store/exchange/export_options.h"

namespace kv {

/// How an export ended.
enum class ExportOutcome {
  Left,       ///< the user left it, or was told why nothing can be exported; nothing was written
  Done,       ///< the shop is in the folder
  Cancelled,  ///< in the middle; the folder is empty again
  Failed      ///< a file couldn't be copied; the user was told, and the folder is empty again
};

/// The dialog of the options: its tag, empty when it was left.
using ExportDialog = std::function<std::string(const ExportOffer& offer)>;

/// EsportaNegozio (export the shop): asks for the folder and the options, copies, restarts the session and tells what
/// was exported. The session restarts whenever the catalogue was copied, and may then have failed to load.
ExportOutcome EsportaNegozio(Session& session, Environment& env, const ExportDialog& frmEsporta);

}  // namespace kv
