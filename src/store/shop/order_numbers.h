#pragma once
// Order numbers of articles within a department and of departments within a parent: the number of a new element, which
// of its followers must move up to make room, and the renumbering of a whole catalogue.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/database/database.h"

namespace kv {

/// The order number of a new element, and the new numbers of the elements that move up. Order numbers only compare:
/// they may have gaps, and be 0 or negative.
struct OrderPlan {
  std::int64_t order = 1;           ///< of the new element
  std::size_t firstMoved = 0;       ///< index of the first element that moves
  std::vector<std::int64_t> moved;  ///< new numbers of the elements from there on
};
/// The plan for a new element directly after element `current` of a list in its order; at the end when none is current.
OrderPlan planAfter(std::span<const std::int64_t> orders, std::optional<std::size_t> current);
/// The plan for a new element directly before element `current`; at the start when none is current.
OrderPlan planBefore(std::span<const std::int64_t> orders, std::optional<std::size_t> current);

/// Renumbers all articles by department and order, and all departments by level and order: from 100 in steps of 5 over
/// the whole table, in one transaction. Rows that have their number already aren't written. Failures: as execute.
Result<> renumberCatalogue(Database& catalogue);
/// The same for the catalogue of a shop folder that nobody has open; does nothing when it can't be opened.
void renumberShop(const std::string& shopFolder);

}  // namespace kv
