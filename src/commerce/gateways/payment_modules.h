#pragma once
// The payment modules of a shop: each is a folder of templates below `code`, with its settings in conf.ini, and a
// finished descriptor `<module>.kpg` beside the folder. Names are found without regard to case, and a name from the
// catalogue or from conf.ini never leads out of its folder.

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// The modules that come with the program, by folder name, in the order of their numbers 0 to 14.
inline constexpr std::array<std::string_view, 15> paymentModules{
    "Telepay Light",        "Banca Sella", "AuthorizeNet", "Planet Payment", "Contrassegno",
    "Pagamento anticipato", "Cilme",       "Cartafacile",  "Omnipay",        "Paypal",
    "Consorzio Triveneto",  "Shopla",      "Cariverona",   "Bankpass",       "SysPay"};

/// What ReadKpg gives for a descriptor that can't be read.
inline constexpr std::string_view unreadableDescriptor = "###ERRORE###";

/// One line of conf.ini: the key before its first "=", and everything after that.
using ModuleSetting = std::pair<std::string, std::string>;

/// The lines of a text of conf.ini in their order; those without "=" are left out.
std::vector<ModuleSetting> parseModuleSettings(std::string_view text);

/// The settings of a module of a shop; empty when it has no conf.ini.
std::vector<ModuleSetting> moduleSettings(const std::string& shopFolder, std::string_view name);

/// ReadKpg (read the descriptor): the text of `code/<name>.kpg`; empty for a name without characters other than spaces,
/// unreadableDescriptor when the file can't be read.
std::string ReadKpg(const std::string& shopFolder, std::string_view name);

/// ReadKpgAction: the script that the order form posts to, with the language suffix ("bankpass_l2.php"): the value of
/// the first line with the key "php(default)" or "action". Empty for a name without characters other than spaces and
/// when there is no such line.
std::string ReadKpgAction(const std::string& shopFolder, std::string_view name, std::string_view lingua);

/// A script that a module brings to the site.
struct ModuleScript {
  std::string name;    ///< without extension, as conf.ini has it
  std::string path;    ///< of the filled script; may be missing on disk
  bool usable = true;  ///< false for a name that would lead out of the folder
};
/// The scripts that conf.ini names under "php(default)", "php" and "php(sel)", in the order of its lines.
std::vector<ModuleScript> moduleScripts(const std::string& shopFolder, std::string_view name);

/// CompletaGateway (complete the gateways): gives a shop each of the modules whose folder is missing or shows no file,
/// folder and descriptor, from `new/code` of the application. A module that has any file is left unchanged, but
/// other users may no longer read its account data; and so is the shop where nothing is shipped for a module. A failure
/// with one module doesn't keep the others from coming.
void CompletaGateway(const std::string& shopFolder, const std::string& applicationFolder);

}  // namespace kv
