#pragma once
// Papers and labels of orders drawn on the pages of a printer or of a PDF.

#include <QImage>
#include <span>
#include <string>

#include "platform/ports/result.h"
#include "publish/orders/papers/order_documents.h"

class QPagedPaintDevice;
class QPaintDevice;
class QTextDocument;

namespace kv {

/// What is drawn of the orders.
struct PrintJob {
  OrderPaper paper = OrderPaper::Order;
  bool isLabels = false;  ///< address labels instead of the paper
  ShopSender sender = {};
  QImage logo = {};            ///< empty: none
  std::size_t labelSheet = 0;  ///< index in labelSheets()
  int firstLabel = 0;          ///< index on the first sheet
};

/// The picture of the shop's logo; an empty one where there is none or it can't be read.
QImage readLogo(const std::string& path);

/// Lays a paper out on pages of a size, in the points of the device that it will be drawn on. No row of its table is
/// cut by the end of a page, unless it is higher than half a page.
void layOutPaper(QTextDocument& document, QPaintDevice& device, const DeskOrder& order, const PrintJob& job,
                 const QSizeF& page);

/// Draws a paper of each order on pages of its own, each page with its number, or their labels on sheets. The number of
/// pages. Other when the device can't be drawn on. The device takes A4 and no margins of its own.
Result<int> paintOrders(QPagedPaintDevice& device, std::span<const DeskOrder> orders, const PrintJob& job);

/// The same as a PDF file, written whole or not at all. Failures as writeBytes.
Result<int> writeOrdersPdf(const std::string& path, std::span<const DeskOrder> orders, const PrintJob& job);

}  // namespace kv
