#pragma once
// What brings a shop of an earlier release up to date at its opening: columns that the catalogue lacks, and files of
// the payment modules of an earlier generation. A shop that is up to date is not written to.

#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"
#include "platform/ports/result.h"

namespace kv {

/// The schema generation that a shop has after its opening (`versione` of `generale`).
inline constexpr int currentVersion = 1002;
/// The file generation of this release, as in the file "code/ve.dat".
inline constexpr std::string_view currentGeneration = "1.0.8";

/// What was done, for those who want to tell it.
struct ShopUpgrade {
  std::vector<std::string> columns;  ///< added, as "generale.p3p", in that order
  std::vector<std::string> files;    ///< renewed, as "SysPay/conf.ini" below `code`
  std::vector<std::string> kept;     ///< paths of what was there instead, in the folder `backup`
  bool stamped = false;              ///< version or file generation was another one

  /// Whether nothing was done.
  bool isEmpty() const { return columns.empty() && files.empty() && !stamped; }
};

/// AggiornaNegozio (bring the shop up to date): renumbers articles and departments, adds missing columns to the
/// catalogue and to source.new, stamps the version, drops what a killed dialog has left, and brings the file generation
/// up. The catalogue is open nowhere.
/// Shows no message: a step of the schema that fails is left out, any other failure ends the routine, and the next
/// opening tries again.
ShopUpgrade AggiornaNegozio(const std::string& shopFolder, const std::string& applicationFolder);

/// What AggiornaNegozio would do, read from the catalogue, which may be open for reading alone, and the shop's files.
/// Nothing is changed.
ShopUpgrade plannedUpgrade(Database& catalogue, const std::string& shopFolder, const std::string& applicationFolder);

/// The schema part of it. A column that can't be added is left out, whatever the reason; a catalogue that can't be
/// opened is a failure.
Result<> upgradeSchema(const std::string& shopFolder, ShopUpgrade& upgrade);
/// The files part: copies what generations since that in "code/ve.dat" have renewed, unless the shop is the application
/// folder, and stamps the generation. A file that differs from the new one is kept in `backup` before. Generations
/// compare as texts, character by character. Fails at the first file that can't be copied, unstamped.
Result<> upgradeFiles(const std::string& shopFolder, const std::string& applicationFolder, ShopUpgrade& upgrade);

/// The files that the files part would copy; `stamped` when it would stamp the generation.
void planFiles(const std::string& shopFolder, const std::string& applicationFolder, ShopUpgrade& upgrade);

}  // namespace kv
