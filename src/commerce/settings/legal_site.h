#pragma once
// What the law asks of the site's own files: template and language modules may be older than the law.

#include <string>
#include <vector>

#include "commerce/settings/legal_duties.h"

namespace kv {

/// The duties that template, language modules and scripts meet: a button that says that ordering means paying, and a
/// function of withdrawal that each page leads to. Files that can't be read count as missing; a
/// template that can't be listed is a failure.
Result<std::vector<LegalDuty>> siteDuties(const Session& session, const std::string& applicationFolder);

}  // namespace kv
