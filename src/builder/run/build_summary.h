#pragma once
// What a build has made, in a line for the merchant: shown with the closing message of the window, and printed by the
// command line program.

#include <string>

#include "builder/run/make_pages.h"

namespace kv {

/// "Reparti: 17, articoli: 48, lingue: 4. Pagine scritte: 120, rimaste uguali: 30."
std::string buildSummary(const BuildCounts& counts);

}  // namespace kv
