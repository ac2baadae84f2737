#pragma once
// How the shop is built (rules of frmImpostazioni): selective build, a setting of the program, and two of the shop, the
// extension of the pages and the lighter pictures.

#include <string>
#include <string_view>

#include "store/shop/session.h"

namespace kv {

inline constexpr std::string_view buildSettingsTitle = "Korvane - Impostazioni costruzione negozio";
/// What cmdReset writes; it ticks the selective build, too.
inline constexpr std::string_view defaultExtension = ".htm";

/// What the controls of the dialog show.
struct BuildSettings {
  bool selective = true;  ///< only pages that have changed are written
  std::string extension;  ///< as typed or stored
  bool light = false;     ///< pictures are offered in lighter forms as well
};

/// Reads what is stored. Failures: as the store's.
Result<BuildSettings> loadBuildSettings(Session& session);
/// The OK command: the extension is normalised by ImpostaEstensione; an extension that a build uses by itself (".php")
/// is not stored. The lighter pictures are stored in a file of the shop's folder. The selective build holds at once,
/// and is stored as `smartbuild` of the program's settings.
Result<> storeBuildSettings(Session& session, Settings& settings, const BuildSettings& wanted);

}  // namespace kv
