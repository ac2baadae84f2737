#pragma once
// Copying one price list into others, optionally by a percentage (rules of frmReplicaListini).

#include <string>
#include <string_view>

#include "commerce/prices/price_change.h"
#include "commerce/replication/language_replication.h"

namespace kv {

inline constexpr std::string_view replicateListsTitle = "Korvane - Replica listini";

/// What the fields of the dialog say. The box chkScRep is shown and decides nothing but whether the departments are
/// walked: discounts of departments go with the quantity discounts.
struct ListReplication {
  int source = 0;  ///< 0 to 9
  PriceLists destinations{};
  std::string percentage;            ///< as typed
  bool whole = false;                ///< round prices
  bool offers = false;               ///< with their prices
  bool quantityDiscounts = false;    ///< chkScq; with restrictions or department discounts those of departments, too
  bool variants = false;             ///< of the four slots
  bool departmentDiscounts = false;  ///< chkScRep
  bool restrictions = false;         ///< departments closed to the list
};

/// Counts what a replication would write: fields whose value would be another one. Failures: as the store's.
Result<ReplicationCount> countReplication(Database& catalogue, const ListReplication& replication,
                                          const PriceRule& rule);

/// ReplicaListino (replicate a price list): for each article the destinations in order take what the source has in that
/// row by then, so that a destination that is the source as well is changed in place, and those after it read its new
/// price. All of it is one transaction; after an error of the engine rows done so far stay where the engine allows, and
/// the user is told. Refused before anything is written when a price would leave the range of Money.
BulkEnd ReplicaListino(Database& catalogue, const ListReplication& replication, UserPort& user);

}  // namespace kv
