#pragma once
// Who the merchant is before the law: VAT number, seat and register, which every page of the shop shows at its end.
// They are kept in the table `identita` beside `generale`, which a shop has only once it uses it.

#include <array>
#include <string>
#include <string_view>

#include "platform/database/database.h"

namespace kv {

/// The columns of `identita`, which are also the names of the page tags and of the editors: texts on one line.
inline constexpr std::array<std::string_view, 3> identityColumns{"legale_sede", "legale_piva", "legale_registro"};

/// The text of a column; empty where nothing was entered, and for any other column.
/// Failures as Database::prepare.
Result<std::string> readIdentity(Database& catalogue, std::string_view column);

/// Makes the table where the shop has none. The creation of a table can't be undone, so this comes before a step of the
/// history begins. Failures as Database::createTable.
Result<> prepareIdentity(Database& catalogue);

/// Writes a column; the row goes when nothing is left in it. The table must be there (prepareIdentity).
/// Malformed for a column that isn't one of identityColumns; other failures as Statement::execute.
Result<> writeIdentity(Database& catalogue, std::string_view column, const std::string& text);

}  // namespace kv
