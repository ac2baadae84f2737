#pragma once
// Order numbers of articles within a department and of departments within a parent: where a new element goes, which of
// its followers must move up to make room, and the renumbering of a whole catalogue.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/database/database.h"

namespace kv {

/// The order number of a new element, and the new numbers of the elements from `firstMoved` on. Order numbers only
/// compare: they may have gaps, and go to 0 and below.
struct OrderPlan {
  std::int64_t order = 1;
  std::size_t firstMoved = 0;
  std::vector<std::int64_t> moved;
};
/// For a place behind element `current` of a list in its order; behind the last one when none is current.
OrderPlan planAfter(std::span<const std::int64_t> orders, std::optional<std::size_t> current);
/// For a place before element `current`; before the first one when none is current.
OrderPlan planBefore(std::span<const std::int64_t> orders, std::optional<std::size_t> current);

/// Renumbers all articles by department and place, and all departments by level and place: from 100 in steps of 5 over
/// the whole table, in one transaction. Rows that have their number already aren't written. Failures: as execute.
Result<> renumberCatalogue(Database& catalogue);
/// The same for the catalogue of a shop folder that nobody has open; does nothing when it can't be opened.
void renumberShop(const std::string& shopFolder);

}  // namespace kv
