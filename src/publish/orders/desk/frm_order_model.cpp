#include "publish/orders/desk/frm_order_model.h"

#include <QFont>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_plain_tip.h"
#include "publish/orders/desk/order_list.h"

namespace kv {

void OrderModel::setOrders(std::vector<OrderSummary> orders) {
  beginResetModel();
  orders_ = std::move(orders);
  endResetModel();
}

int OrderModel::rowOf(std::int64_t row) const {
  for (std::size_t i = 0; i < orders_.size(); ++i) {
    if (orders_[i].row == row) return static_cast<int>(i);
  }
  return -1;
}

int OrderModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(orders_.size());
}

int OrderModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : orderColumns; }

QVariant OrderModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const OrderSummary& order = orders_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case Qt::DisplayRole:
      return toQt(orderCell(order, index.column()));
    case Qt::ToolTipRole:
      return plainTip(toQt(orderCell(order, index.column())));
    case Qt::AccessibleTextRole:
      return toQt(orderCell(order, index.column()) + (order.isNew && index.column() == 0 ? ", nuovo" : ""));
    case Qt::TextAlignmentRole:
      if (index.column() != orderTotalColumn) return {};
      return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    case Qt::FontRole: {
      QFont font;
      font.setBold(order.isNew);
      return font;
    }
    default:
      return {};
  }
}

QVariant OrderModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
  return toQt(orderColumnTitle(section));
}

}  // namespace kv
