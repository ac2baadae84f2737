#pragma once
// The shop doctor: runs all checks on the open shop, mends what has one answer, and keeps which findings the merchant
// does not want to hear of. The silence is kept in the catalogue, in a table that only a shop with silenced findings
// has.

#include "builder/doctor/checks.h"
#include "builder/doctor/findings.h"
#include "store/shop/session.h"

namespace kv {

/// What a whole check has found, without what the merchant has silenced.
struct Examination {
  Findings findings;         ///< in the order of the table of checks
  std::size_t silenced = 0;  ///< left out
};

/// Examines the open shop. Failures as readDoctorFacts.
Result<Examination> examineShop(Session& session, const std::string& applicationFolder);
/// What to tell before a build: "3 avvisi", those left out that a build or a publish ends; empty for none, and when
/// the shop can't be examined, of which the build itself tells.
std::string noticeBeforeBuild(Session& session, const std::string& applicationFolder);
/// Runs the checks on facts that were read before.
Findings runChecks(const DoctorFacts& facts);

/// Writes what mends a finding, all of it or nothing; nothing for one without a mending. Failures as Database::prepare
/// and Statement::execute.
Result<> mendFinding(Database& catalogue, const Finding& finding);

/// Leaves a finding out from now on.
Result<> silenceFinding(Database& catalogue, const Finding& finding);
/// Hears of all findings again; nothing where none is silenced.
Result<> endSilence(Database& catalogue);

}  // namespace kv
