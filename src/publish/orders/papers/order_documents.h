#pragma once
// Orders on paper: the order itself for the merchant, the delivery note without prices for the parcel, the receipt.
// They say what the prints of the back office say, as HTML of the small kind that the toolkit lays out on pages.

#include <string>
#include <string_view>
#include <vector>

#include "publish/orders/papers/shop_sender.h"
#include "publish/orders/values/desk_order.h"

namespace kv {

/// The papers of an order.
enum class OrderPaper { Order, Delivery, Receipt };

/// The name under which a document finds the picture of the logo.
inline constexpr std::string_view logoResource = "logo";

/// Size of the logo on paper, in 1/96 inch; no logo without a width.
struct LogoSize {
  int width = 0;
  int height = 0;
};
/// The size of a picture brought within the room that the head of a paper has; a small picture keeps its own.
LogoSize logoOnPaper(int width, int height);

/// "Ordine", "Documento di consegna", "Ricevuta".
std::string_view paperName(OrderPaper paper);
/// The heading of a paper, which its footer repeats: its name and the order's code.
std::string paperTitle(const DeskOrder& order, OrderPaper paper);

/// A paper of one order: sender and addressee, what was ordered, the totals or the pieces, notes and withdrawals. The
/// heading of the table is one that pages repeat. An order that doesn't hold its lines shows its summary.
std::string orderPaper(const DeskOrder& order, OrderPaper paper, const ShopSender& sender, const LogoSize& logo);

/// Texts as HTML, a paragraph each: one that is written from right to left doesn't turn the others.
std::string paragraphsAsHtml(const std::vector<std::string>& texts);

/// Who receives an order, a line each: person, company, street, town, country; the order's name without any of these.
std::vector<std::string> addresseeLines(const DeskOrder& order);

}  // namespace kv
