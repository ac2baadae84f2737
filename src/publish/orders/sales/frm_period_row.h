#pragma once
// The choice of a period of orders: one of the usual ones, or from day to day.

#include <QWidget>

#include "publish/orders/sales/sales_days.h"

class QComboBox;
class QDateEdit;

namespace kv {

/// A row of three controls: `cboPeriodo`, and `dtDa` and `dtA`, which are on for a period that is chosen by its days.
class PeriodRow final : public QWidget {
  Q_OBJECT
 public:
  /// Starts with a period; today: what the usual periods are seen from.
  PeriodRow(SalesPeriod period, std::chrono::sys_days today, QWidget* parent = nullptr);

  /// The days that are chosen.
  SalesSpan span() const;

 signals:
  /// The days have changed.
  void changed();

 private:
  /// Shows the two dates of the chosen period.
  void showPeriod();

  std::chrono::sys_days today_;
  QComboBox* cboPeriodo_ = nullptr;
  QDateEdit* dtDa_ = nullptr;
  QDateEdit* dtA_ = nullptr;
};

/// The day of a moment in the machine's zone. seconds: since 1970-01-01 00:00 UTC.
std::chrono::sys_days dayHere(double seconds);

}  // namespace kv
