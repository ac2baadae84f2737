#pragma once
// The rows of a plan as the last page of the guide lists them, each with a box where it would be written.

#include <QAbstractTableModel>

#include "import/tables/table_guide.h"

namespace kv {

/// Four columns of texts: line, fate, label and reason.
class PlanModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// guide: outlives the model.
  PlanModel(TableGuide& guide, QObject* parent) : QAbstractTableModel(parent), guide_(guide) {}

  /// Shows the rows that a filter lets through.
  void show(RowFilter filter);
  /// The row of the plan that a row of the list shows.
  std::size_t planRow(int row) const { return rows_[static_cast<std::size_t>(row)]; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 signals:
  /// A box was ticked or unticked.
  void chosen();

 private:
  /// The state of a row's box; nothing where it has none.
  QVariant boxOf(const QModelIndex& index) const;

  TableGuide& guide_;
  std::vector<std::size_t> rows_;
};

}  // namespace kv
