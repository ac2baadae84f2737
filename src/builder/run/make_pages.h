#pragma once
// One site build: from the open shop to pages, scripts, images, rows and the list of what was made. For each language
// a complete shop is built. The catalogue is only read, but for the new `db_security`.

#include <cstddef>
#include <functional>
#include <string>

#include "store/shop/session.h"

namespace kv {

/// Steps of the build that belong to other subjects, run where they belong in its order. One that is not set leaves its
/// tags empty and its files unmade.
struct BuildParts {
  /// Patches the scripts of the code pool.
  std::function<void(const std::string& codePool)> PatchScript;
};

/// How a build ended.
enum class BuildOutcome {
  Done,      ///< the site is complete
  Failed,    ///< the user has been told why
  Cancelled  ///< by the user
};

/// What a build has done, for those who want to tell it. Of one that ended early: as far as it came.
struct BuildCounts {
  int departments = 0;          ///< of one language
  int articles = 0;             ///< of one language
  int languages = 0;            ///< of the shop
  int pagesWritten = 0;         ///< files that CreaPagina wrote
  int pagesUnchanged = 0;       ///< files that held their page already
  std::size_t filesListed = 0;  ///< entries of the list of files
};

/// MakePages (make pages): builds the open shop. Every failure has been told to the user when it returns Failed; a
/// cancelled build says nothing and leaves what it has made so far. Source: the settings, template and languages of
/// the session.
BuildOutcome MakePages(Session& session, Environment& env, const BuildParts& parts = {}, BuildCounts* counts = nullptr);

}  // namespace kv
