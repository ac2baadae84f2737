#pragma once
// What one walk over all articles of the catalogue finds out, before any page is made: how long the build will be, and
// which variants it needs.

#include <cstdint>
#include <set>
#include <vector>

#include "builder/output/build_progress.h"
#include "platform/database/database.h"
#include "platform/ports/result.h"

namespace kv {

/// Counts and variants of the articles. Articles that are excluded from the shop count where variants are concerned.
struct ArticleSurvey {
  int sellable = 0;                     ///< articles that aren't excluded from the shop
  std::vector<std::int64_t> variants;   ///< in use, by slot, then listino, then number; each once
  std::set<std::int64_t> inFirstSlots;  ///< what the first slot of some listino holds, 0 too
};

/// Walks over the articles. Cancelled when the user cancels meanwhile; otherwise as Database::prepare and
/// Statement::step.
Result<ArticleSurvey> surveyArticles(Database& catalogue, const BuildProgress& progress);

}  // namespace kv
