#pragma once
// The window of sales: what the orders of a period brought in by time, department and article, as bars and as a table.

#include <vector>

#include "platform/qt/frm_dialog.h"
#include "publish/orders/sales/sales_view.h"

class QComboBox;
class QSpinBox;
class QTableWidget;

namespace kv {

class BarChart;
class PeriodRow;

/// The tag is always empty: nothing is changed here.
class frmVendite final : public FormDialog {
 public:
  /// departments: titles by the IDs of articles. today: what the usual periods are seen from.
  frmVendite(std::vector<DeskOrder> orders, std::map<std::int64_t, std::string> departments,
             std::chrono::sys_days today, HelpOpener help, QWidget* parent = nullptr);

 private:
  QWidget* makeChoices(std::chrono::sys_days today);
  QWidget* makeSums();
  /// Sums up again and shows it.
  void update();
  /// Shows sums and bars by what is chosen.
  void showRows();
  /// Lists the currencies of the orders; hidden when it is one.
  void showCurrencies();
  /// Copies the table as text.
  void copy();

  std::vector<DeskOrder> orders_;
  SalesView view_;
  QComboBox* cboPer_ = nullptr;
  PeriodRow* period_ = nullptr;
  QLabel* lblValuta_ = nullptr;
  QComboBox* cboValuta_ = nullptr;
  QSpinBox* spnPrimi_ = nullptr;
  BarChart* chart_ = nullptr;
  QTableWidget* lstVendite_ = nullptr;
  QLabel* lblTotale_ = nullptr;
};

}  // namespace kv
