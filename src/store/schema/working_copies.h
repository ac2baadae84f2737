#pragma once
// Tables that a dialog edits directly, and the copies by which its Annulla restores them. A copy has the name of its
// table after "temp" and exists while the dialog is open; what a kill leaves of it goes at the next opening.

#include <array>
#include <string>
#include <string_view>

#include "platform/database/database.h"

namespace kv {

/// What the dialog of shipping edits and Annulla restores. The tables zona5 to zona8 are edited as well, and keep it.
inline constexpr std::array<std::string_view, 7> shippingTables{"paesi", "pagamento", "zona1", "zona2",
                                                                "zona3", "zona4",     "zone"};
/// What the dialog of variants edits.
inline constexpr std::array<std::string_view, 2> variantTables{"opzioni", "dettagliop"};

/// The name of a table's copy: "temppaesi".
std::string workingCopyOf(std::string_view table);
/// Whether a table is the copy of one of these; case is ignored.
bool isWorkingCopy(std::string_view table);

/// Deletes all copies that are there. What the dialog had stored stays. Failures: as execute.
Result<> dropWorkingCopies(Database& catalogue);

}  // namespace kv
