#pragma once
// The list of orders as a model of Qt.

#include <QAbstractTableModel>
#include <vector>

#include "publish/orders/store/order_store.h"

namespace kv {

/// Orders as rows; new ones are bold, and screen readers are told.
class OrderModel final : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;

  /// Shows these orders.
  void setOrders(std::vector<OrderSummary> orders);
  /// The orders in the sequence of the rows.
  const std::vector<OrderSummary>& orders() const { return orders_; }
  /// The row of an order of the store; -1 when it isn't shown.
  int rowOf(std::int64_t row) const;

  // QAbstractTableModel
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  std::vector<OrderSummary> orders_;
};

}  // namespace kv
