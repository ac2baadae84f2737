#include "shell/window/fields/frm_columns.h"

#include <QWidget>
#include <algorithm>
#include <vector>

namespace kv {
namespace {

int heightOf(const QLayoutItem& item, int width) {
  return item.hasHeightForWidth() ? item.heightForWidth(width) : item.sizeHint().height();
}

/// The groups that are shown from `first` down to the end of its column, itself included.
std::vector<QLayoutItem*> columnFrom(const QLayoutItem& first, const QList<QLayoutItem*>& items) {
  const QRect own = first.geometry();
  std::vector<QLayoutItem*> found;
  for (QLayoutItem* other : items) {
    const QRect its = other->geometry();
    if (!other->isEmpty() && its.left() == own.left() && its.top() >= own.top()) found.push_back(other);
  }
  return found;
}

}  // namespace

ColumnsLayout::ColumnsLayout(int narrowest, QWidget* parent) : QLayout(parent), narrowest_(narrowest) {}

ColumnsLayout::~ColumnsLayout() {
  for (QLayoutItem* item : items_) delete item;
}

QLayoutItem* ColumnsLayout::takeAt(int index) {
  return index >= 0 && index < items_.size() ? items_.takeAt(index) : nullptr;
}

QSize ColumnsLayout::sizeHint() const { return {narrowest_, heightForWidth(narrowest_)}; }

QSize ColumnsLayout::minimumSize() const {
  int width = 0;
  for (const QLayoutItem* item : items_) {
    if (!item->isEmpty()) width = std::max(width, item->minimumSize().width());
  }
  const QMargins margins = contentsMargins();
  return {width + margins.left() + margins.right(), 0};
}

void ColumnsLayout::setGeometry(const QRect& area) {
  QLayout::setGeometry(area);
  arrange(area, true);
  growGroups(area.marginsRemoved(contentsMargins()));
}

void ColumnsLayout::growGroups(const QRect& area) const {
  for (QLayoutItem* item : items_) {
    if (!growing_.contains(item->widget())) continue;
    const QRect own = item->geometry();
    const std::vector<QLayoutItem*> column = columnFrom(*item, items_);
    int lowest = own.bottom();
    bool isLast = true;
    for (const QLayoutItem* other : column) {
      lowest = std::max(lowest, other->geometry().bottom());
      isLast = isLast && (other == item || !growing_.contains(other->widget()));
    }
    const int left = area.bottom() - lowest;
    if (left <= 0 || !isLast) continue;
    for (QLayoutItem* other : column) {
      if (other != item) other->setGeometry(other->geometry().translated(0, left));
    }
    item->setGeometry(own.adjusted(0, 0, 0, left));
  }
}

/// Lays the groups out, or only computes the height that they take.
int ColumnsLayout::arrange(const QRect& area, bool move) const {
  const QMargins margins = contentsMargins();
  const QRect inner = area.marginsRemoved(margins);
  const int gap = std::max(spacing(), 0);
  const int least = std::max(narrowest_, minimumSize().width() - margins.left() - margins.right());
  const int columns = std::max(1, (inner.width() + gap) / (least + gap));
  const int width = (inner.width() - gap * (columns - 1)) / columns;
  std::vector<int> heights(static_cast<std::size_t>(columns), 0);
  for (QLayoutItem* item : items_) {
    if (item->isEmpty()) continue;
    if (item->widget() != nullptr && item->widget() == wide_) {
      const int top = *std::max_element(heights.begin(), heights.end());
      const int height = heightOf(*item, inner.width());
      if (move) item->setGeometry({inner.left(), inner.top() + top, inner.width(), height});
      std::fill(heights.begin(), heights.end(), top + height + gap);
      continue;
    }
    const auto shortest = std::min_element(heights.begin(), heights.end());
    const int column = static_cast<int>(shortest - heights.begin());
    const int height = heightOf(*item, width);
    if (move) item->setGeometry({inner.left() + column * (width + gap), inner.top() + *shortest, width, height});
    *shortest += height + gap;
  }
  const int tallest = *std::max_element(heights.begin(), heights.end());
  return std::max(0, tallest - gap) + margins.top() + margins.bottom();
}

}  // namespace kv
