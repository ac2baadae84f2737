#pragma once
// The rows of a plan as the preview of an accounting import lists them.

#include <QAbstractTableModel>

#include "import/accounting/accounting_plan.h"

namespace kv {

/// Columns of texts: fate, code, title, price, offer price (only where one is taken) and reason.
class AccountingPlanModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// options: those of the import.
  AccountingPlanModel(const AccountingOptions& options, QObject* parent)
      : QAbstractTableModel(parent), options_(options) {}

  /// Lists the rows of another plan.
  void show(AccountingPlan plan);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  /// The column among all six that a column of the list shows.
  std::size_t columnOf(int section) const;

  AccountingOptions options_;
  AccountingPlan plan_;
};

}  // namespace kv
