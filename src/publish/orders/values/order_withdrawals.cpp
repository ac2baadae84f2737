#include "publish/orders/values/order_withdrawals.h"

#include <algorithm>
#include <string_view>

#include "publish/orders/values/order_texts.h"

namespace kv {
namespace {

constexpr std::string_view refusedWithdrawal = "respinto";

std::string piecesText(std::int64_t count) {
  return count == 1 ? std::string("1 pezzo") : std::to_string(count) + " pezzi";
}

Money summed(Money sum, Money more) { return add(sum, more).value_or(sum); }

Money amountOfPieces(DeskOrderLine line, std::int64_t pieces) {
  line.quantity = pieces;
  return lineTotal(line);
}

/// The words of a line in the shop's first language; the customer's where there are none.
std::string lineWords(const std::string& title, const std::string& choices) {
  return choices.empty() ? title : title + " (" + choices + ")";
}

}  // namespace

OrderWithdrawn withdrawnOf(const DeskOrder& order) {
  OrderWithdrawn sums;
  sums.ofLine.assign(order.lines.size(), 0);
  bool isAny = false;
  for (const DeskWithdrawal& one : order.withdrawals) {
    if (one.state == refusedWithdrawal) continue;
    for (const WithdrawnLine& line : one.lines) {
      isAny = isAny || line.quantity > 0;
      if (line.line < 0 || static_cast<std::size_t>(line.line) >= order.lines.size()) continue;
      const auto at = static_cast<std::size_t>(line.line);
      sums.ofLine[at] = std::min(order.lines[at].quantity, sums.ofLine[at] + line.quantity);
    }
  }
  for (std::size_t i = 0; i < order.lines.size(); ++i) {
    const std::int64_t left = order.lines[i].quantity - sums.ofLine[i];
    sums.pieces += sums.ofLine[i];
    sums.piecesLeft += left;
    sums.amount = summed(sums.amount, amountOfPieces(order.lines[i], sums.ofLine[i]));
    sums.amountLeft = summed(sums.amountLeft, amountOfPieces(order.lines[i], left));
  }
  sums.isWhole = isAny && sums.piecesLeft == 0;
  return sums;
}

std::vector<std::string> withdrawalLines(const DeskOrder& order, const DeskWithdrawal& withdrawal) {
  std::vector<std::string> texts;
  for (const WithdrawnLine& one : withdrawal.lines) {
    std::string words = lineWords(one.title, one.choices);
    if (order.lines.empty()) {
      words = "l'intero ordine";
    } else if (one.line >= 0 && static_cast<std::size_t>(one.line) < order.lines.size()) {
      const DeskOrderLine& line = order.lines[static_cast<std::size_t>(one.line)];
      if (!line.shopTitle.empty()) words = lineWords(line.shopTitle, line.shopChoices);
    }
    texts.push_back(std::to_string(one.quantity) + " × " + words);
  }
  return texts;
}

std::string withdrawnPart(std::int64_t withdrawn, std::int64_t quantity) {
  return withdrawn <= 0 ? std::string() : piecesText(withdrawn) + " su " + std::to_string(quantity);
}

std::vector<std::string> withdrawalSums(const DeskOrder& order, bool withAmounts) {
  const OrderWithdrawn sums = withdrawnOf(order);
  if (order.lines.empty() && sums.isWhole) return {"Recesso dall'intero ordine."};
  if (sums.pieces == 0) return {};
  std::string taken = "Recesso: " + withdrawnPart(sums.pieces, sums.pieces + sums.piecesLeft);
  std::string left =
      sums.isWhole ? "Non resta nulla" : (sums.piecesLeft == 1 ? "Resta: " : "Restano: ") + piecesText(sums.piecesLeft);
  if (withAmounts) taken += ", " + amountText(sums.amount, order.currency);
  if (withAmounts && !sums.isWhole) {
    left += ", " + amountText(sums.amountLeft, order.currency) + " (sconto, IVA e spese sono dell'ordine intero)";
  }
  return {taken + ".", left + "."};
}

std::string withdrawalOnLabel(const DeskOrder& order) {
  const OrderWithdrawn sums = withdrawnOf(order);
  if (sums.isWhole) return "recesso totale";
  if (sums.pieces == 0) return {};
  return (sums.piecesLeft == 1 ? "resta " : "restano ") + withdrawnPart(sums.piecesLeft, sums.pieces + sums.piecesLeft);
}

}  // namespace kv
