#include "publish/orders/papers/order_labels.h"

#include <array>

#include "publish/orders/papers/order_documents.h"
#include "publish/orders/values/order_texts.h"
#include "publish/orders/values/order_withdrawals.h"

namespace kv {

std::span<const LabelSheet> labelSheets() {
  // What is left of 210 by 297 mm is the same at both sides.
  static constexpr std::array sheets{LabelSheet{"3 x 8, da 70 x 37 mm", 3, 8, 70, 37, 0, 0.5, 0},
                                     LabelSheet{"2 x 7, da 99 x 38 mm", 2, 7, 99.1, 38.1, 4.65, 15.15, 2.5}};
  return sheets;
}

LabelPosition labelPosition(const LabelSheet& sheet, int first, int index) {
  const int at = first + index;
  const int onPage = at % sheet.count();
  const int row = onPage / sheet.columns, column = onPage % sheet.columns;
  return {at / sheet.count(), sheet.left + column * (sheet.width + sheet.gap), sheet.top + row * sheet.height};
}

std::string labelText(const DeskOrder& order) {
  const std::string withdrawn = withdrawalOnLabel(order);
  return "<html><body>" + paragraphsAsHtml(addresseeLines(order)) +
         "<p style=\"margin-top:0px;margin-bottom:0px\"><small>Ordine " + textAsHtml(order.code) +
         (withdrawn.empty() ? "" : " · ") + withdrawn + "</small></p></body></html>";
}

}  // namespace kv
