#pragma once
// How the windows look, as the merchant has chosen it.

#include "platform/files/settings.h"

namespace kv {

/// As the desktop prefers, or light or dark whatever it prefers.
enum class Appearance { Desktop, Light, Dark };

/// The choice stored under `Aspetto`: "chiaro", "scuro"; anything else, and nothing, is the desktop's.
Appearance storedAppearance(const Settings& settings);
/// Failures: as Settings::set.
Result<> storeAppearance(Settings& settings, Appearance appearance);

}  // namespace kv
