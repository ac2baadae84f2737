#include "publish/orders/papers/frm_order_pages.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImageReader>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <QScreen>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>
#include <QUrl>
#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/files/files.h"
#include "platform/qt/frm_dialog.h"
#include "publish/orders/papers/order_labels.h"

namespace kv {
namespace {

constexpr double millimetresPerInch = 25.4;
constexpr double paperMargin = 16, footerHeight = 10, labelMargin = 5;  // millimetres
constexpr int paperPoints = 10, footerPoints = 8, largestLabelPoints = 12, smallestLabelPoints = 6;
constexpr double usualScreenDpi = 96;
constexpr int mostLogoPixels = 2000;  // on a side: what is larger gains nothing on paper

/// Where the texts of a row of a table begin and end, in its document.
struct RowExtent {
  double top = 0;
  double bottom = 0;
};

RowExtent extentOf(const QTextDocument& document, const QTextTable& table, int row) {
  RowExtent extent{std::numeric_limits<double>::max(), 0};
  for (int column = 0; column < table.columns(); ++column) {
    const QTextTableCell cell = table.cellAt(row, column);
    const auto* layout = document.documentLayout();
    extent.top = std::min(extent.top, layout->blockBoundingRect(cell.firstCursorPosition().block()).top());
    extent.bottom = std::max(extent.bottom, layout->blockBoundingRect(cell.lastCursorPosition().block()).bottom());
  }
  return extent;
}

/// Moves the texts of each row that a page would cut to the next page; one that is higher than half a page stays.
void keepRowsWhole(QTextDocument& document, double pageHeight) {
  // Paddings are lengths on the screen, which the layout scales to its device.
  const QScreen* screen = QGuiApplication::primaryScreen();
  const double screenDpi = screen == nullptr ? usualScreenDpi : screen->logicalDotsPerInchY();
  const double scale = document.documentLayout()->paintDevice()->logicalDpiY() / screenDpi;
  for (QTextFrame* frame : document.rootFrame()->childFrames()) {
    auto* table = qobject_cast<QTextTable*>(frame);
    for (int row = 1; table != nullptr && row < table->rows(); ++row) {
      const RowExtent extent = extentOf(document, *table, row);
      const double end = (std::floor(extent.top / pageHeight) + 1) * pageHeight;
      if (extent.bottom <= end || extent.bottom - extent.top > pageHeight / 2) continue;
      QTextCursor edit(&document);
      edit.beginEditBlock();
      for (int column = 0; column < table->columns(); ++column) {
        QTextTableCell cell = table->cellAt(row, column);
        QTextTableCellFormat format = cell.format().toTableCellFormat();
        // Just so far that the first line has no room: the layout then begins the row on the next page.
        const double room = end - extent.top - cell.firstCursorPosition().block().layout()->lineAt(0).height();
        format.setTopPadding(std::max(room, 0.0) / scale + table->format().cellPadding() + 1);
        cell.setFormat(format);
      }
      edit.endEditBlock();
    }
  }
}

/// An empty document whose texts will be laid out for a device.
void prepareDocument(QTextDocument& document, QPaintDevice& device, int fontPoints) {
  QFont font;
  font.setPointSize(fontPoints);
  document.setDefaultFont(font);
  document.setDocumentMargin(0);
  document.setUndoRedoEnabled(false);
  document.documentLayout()->setPaintDevice(&device);
}

/// One run over the pages of a device.
class PageDrawer {
 public:
  PageDrawer(QPagedPaintDevice& device, const PrintJob& job) : device_(device), job_(job) {}

  Result<int> draw(std::span<const DeskOrder> orders);

 private:
  double points(double millimetres) const { return millimetres / millimetresPerInch * device_.logicalDpiX(); }
  void drawPaper(const DeskOrder& order);
  void drawFooter(const QRectF& room, const std::string& title, int page, int pages);
  void drawLabels(std::span<const DeskOrder> orders);
  void drawLabel(const DeskOrder& order, const QRectF& room);
  /// Goes to the next page, but for the first time.
  void turnPage();
  /// Black on white in either palette.
  void drawDocument(const QTextDocument& document, const QRectF& part);

  QPagedPaintDevice& device_;
  const PrintJob& job_;
  QPainter painter_;
  QSizeF paper_;
  int pages_ = 0;
};

Result<int> PageDrawer::draw(std::span<const DeskOrder> orders) {
  QPageLayout layout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF());
  layout.setMode(QPageLayout::FullPageMode);
  device_.setPageLayout(layout);
  if (!painter_.begin(&device_)) return fail(ErrorKind::Other, "printer", "it can't be drawn on");
  paper_ = QSizeF(points(QPageSize::size(QPageSize::A4, QPageSize::Millimeter).width()),
                  points(QPageSize::size(QPageSize::A4, QPageSize::Millimeter).height()));
  if (job_.isLabels) {
    drawLabels(orders);
  } else {
    for (const DeskOrder& order : orders) drawPaper(order);
  }
  painter_.end();
  return pages_;
}

void PageDrawer::turnPage() {
  if (pages_++ > 0) device_.newPage();
}

void PageDrawer::drawDocument(const QTextDocument& document, const QRectF& part) {
  QAbstractTextDocumentLayout::PaintContext context;
  context.clip = part;
  context.palette.setColor(QPalette::Text, Qt::black);
  // Some characters reach over the edge of their text, which is no reason to cut them.
  const double over = points(labelMargin) / 2;
  painter_.setClipRect(part.adjusted(-over, 0, over, 0));
  document.documentLayout()->draw(&painter_, context);
}

void PageDrawer::drawPaper(const DeskOrder& order) {
  const double margin = points(paperMargin);
  const QSizeF body(paper_.width() - 2 * margin, paper_.height() - 2 * margin - points(footerHeight));
  QTextDocument document;
  layOutPaper(document, device_, order, job_, body);
  const int count = document.pageCount();
  for (int page = 0; page < count; ++page) {
    turnPage();
    const QRectF part(0, page * body.height(), body.width(), body.height());
    painter_.save();
    painter_.translate(margin, margin - part.top());
    drawDocument(document, part);
    painter_.restore();
    const QRectF below(margin, margin + body.height(), body.width(), points(footerHeight));
    drawFooter(below, paperTitle(order, job_.paper), page + 1, count);
  }
}

void PageDrawer::drawFooter(const QRectF& room, const std::string& title, int page, int pages) {
  QFont font;
  font.setPointSize(footerPoints);
  const QFont small(font, &device_);
  painter_.setFont(small);
  painter_.setPen(Qt::black);
  const QString number = QStringLiteral("%1 - pagina %2 di %3").arg(toQt(title)).arg(page).arg(pages);
  const QFontMetricsF metrics(small, &device_);
  const double left = room.width() - metrics.horizontalAdvance(number) - metrics.averageCharWidth();
  painter_.drawText(room, Qt::AlignRight | Qt::AlignBottom, number);
  painter_.drawText(room, Qt::AlignLeft | Qt::AlignBottom,
                    metrics.elidedText(toQt(job_.sender.name), Qt::ElideRight, std::max(left, 0.0)));
}

void PageDrawer::drawLabels(std::span<const DeskOrder> orders) {
  const LabelSheet& sheet = labelSheets()[job_.labelSheet];
  for (std::size_t i = 0; i < orders.size(); ++i) {
    const LabelPosition at = labelPosition(sheet, job_.firstLabel, static_cast<int>(i));
    if (at.page >= pages_) turnPage();
    drawLabel(orders[i], QRectF(points(at.left + labelMargin), points(at.top + labelMargin),
                                points(sheet.width - 2 * labelMargin), points(sheet.height - 2 * labelMargin)));
  }
}

void PageDrawer::drawLabel(const DeskOrder& order, const QRectF& room) {
  QTextDocument document;
  // A long address is written smaller until it fits.
  for (int size = largestLabelPoints; size >= smallestLabelPoints; --size) {
    prepareDocument(document, device_, size);
    document.setHtml(toQt(labelText(order)));
    document.setTextWidth(room.width());
    if (document.size().height() <= room.height()) break;
  }
  const double free = std::max(0.0, room.height() - document.size().height());
  painter_.save();
  painter_.translate(room.left(), room.top() + free / 2);
  drawDocument(document, QRectF(QPointF(), room.size()));
  painter_.restore();
}

}  // namespace

QImage readLogo(const std::string& path) {
  if (path.empty()) return {};
  QImageReader reader(toQt(path));
  reader.setDecideFormatFromContent(true);
  const QSize size = reader.size();
  if (size.width() > mostLogoPixels || size.height() > mostLogoPixels) {
    reader.setScaledSize(size.scaled(mostLogoPixels, mostLogoPixels, Qt::KeepAspectRatio));
  }
  return reader.read();
}

void layOutPaper(QTextDocument& document, QPaintDevice& device, const DeskOrder& order, const PrintJob& job,
                 const QSizeF& page) {
  prepareDocument(document, device, paperPoints);
  LogoSize logo;
  if (!job.logo.isNull()) {
    logo = logoOnPaper(job.logo.width(), job.logo.height());
    document.addResource(QTextDocument::ImageResource, QUrl(toQt(logoResource)), job.logo);
  }
  document.setHtml(toQt(orderPaper(order, job.paper, job.sender, logo)));
  document.setPageSize(page);
  keepRowsWhole(document, page.height());
  // What follows a moved row keeps its former position until all is laid out again.
  document.setPageSize(page);
}

Result<int> paintOrders(QPagedPaintDevice& device, std::span<const DeskOrder> orders, const PrintJob& job) {
  return PageDrawer(device, job).draw(orders);
}

Result<int> writeOrdersPdf(const std::string& path, std::span<const DeskOrder> orders, const PrintJob& job) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  writer.setCreator(QStringLiteral("Korvane"));
  writer.setTitle(toQt(orders.size() == 1 ? paperTitle(orders.front(), job.paper)
                                          : std::string(paperName(job.paper)) + " - " + job.sender.name));
  auto pages = paintOrders(writer, orders, job);
  if (!pages) return pages;
  const QByteArray& bytes = buffer.data();
  const auto written = writeBytes(path, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
  if (!written) return fail(written.error());
  return pages;
}

}  // namespace kv
