#pragma once
// What customers give back of their orders: which lines, how many pieces, and what is left. A refused withdrawal takes
// nothing. A server of an earlier release says no lines: then nothing is known to be withdrawn.

#include <cstdint>
#include <string>
#include <vector>

#include "publish/orders/values/desk_order.h"

namespace kv {

/// What is given back of an order and what is left of it. Amounts are those of the lines: discount, VAT and shipping
/// are of the order as a whole.
struct OrderWithdrawn {
  std::vector<std::int64_t> ofLine;  ///< pieces by the order's lines, at most those of the line
  std::int64_t pieces = 0;           ///< of all lines
  std::int64_t piecesLeft = 0;
  Money amount;
  Money amountLeft;
  bool isWhole = false;  ///< nothing is left, also of an order that doesn't hold its lines
};
/// The sums over all withdrawals of an order; beyond the range of Money its limit.
OrderWithdrawn withdrawnOf(const DeskOrder& order);

/// The lines of one withdrawal as texts, in the shop's first language where the order has it: "2 × Vaso blu (Misura:
/// M)".
std::vector<std::string> withdrawalLines(const DeskOrder& order, const DeskWithdrawal& withdrawal);
/// "2 pezzi su 3"; empty where nothing of a line is given back.
std::string withdrawnPart(std::int64_t withdrawn, std::int64_t quantity);
/// What is given back and what is left, a line each; empty where nothing is. Without amounts for who gets the parcel.
std::vector<std::string> withdrawalSums(const DeskOrder& order, bool withAmounts);
/// What a label has to say of it: "recesso totale", "restano 2 pezzi su 3"; empty where nothing is given back.
std::string withdrawalOnLabel(const DeskOrder& order);

}  // namespace kv
