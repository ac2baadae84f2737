#pragma once
// A new shop starts as a copy of the model shop, whose seller is invented: what is left of that seller would be false
// before the law.

#include <optional>

#include "commerce/settings/legal_duties.h"

namespace kv {

/// The duty to name oneself: missing while a field of the shop (name, addresses, terms, bank details, in any of its
/// languages) still has the text of the model shop below the application folder, or still names its seller.
/// Nothing where there is no model to compare with. Failures as Database::prepare.
Result<std::optional<LegalDuty>> ownDataDuty(Session& session, const std::string& applicationFolder);

}  // namespace kv
