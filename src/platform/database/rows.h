#pragma once
// The rows of a query, one after the other.

#include <string>
#include <type_traits>
#include <utility>

#include "platform/database/database.h"
#include "platform/database/statement.h"

namespace kv {

/// Steps through the rows of a statement and gives it to `take` at each. A `take` that returns a Result ends the walk
/// by a failure, which is then the outcome.
template <class Take>
Result<> forEachRow(Statement& rows, Take&& take) {
  for (;;) {
    const auto found = rows.step();
    if (!found) return fail(found.error());
    if (!*found) return {};
    if constexpr (std::is_void_v<std::invoke_result_t<Take&, Statement&>>) {
      take(rows);
    } else {
      if (auto taken = take(rows); !taken) return taken;
    }
  }
}

/// The same for a query without parameters.
template <class Take>
Result<> forEachRow(Database& database, const std::string& sql, Take&& take) {
  auto rows = database.prepare(sql);
  if (!rows) return fail(rows.error());
  return forEachRow(*rows, std::forward<Take>(take));
}

}  // namespace kv
