#pragma once
// The window that writes the orders of a period to a file for the accountant.

#include <functional>
#include <vector>

#include "platform/ports/user_port.h"
#include "platform/qt/frm_dialog.h"
#include "publish/orders/papers/order_files.h"
#include "publish/orders/sales/sales_days.h"

class QCheckBox;
class QComboBox;
class QPushButton;

namespace kv {

class PeriodRow;

/// The tag is "OK" when the file was written.
class frmEsportaOrdini final : public FormDialog {
 public:
  /// user: outlives the window; failures are told there. today: what the usual periods are seen from.
  frmEsportaOrdini(std::vector<DeskOrder> orders, std::chrono::sys_days today, UserPort& user, HelpOpener help,
                   QWidget* parent = nullptr);

  /// Asks for the file to write; an empty path when the user leaves it. Tests put another one in.
  std::function<std::string()> chooseFile;

 private:
  /// What is chosen: period and state.
  OrderFilter filter() const;
  /// Says how many orders there are; nothing is written without one.
  void showCount();
  /// Asks for a file and writes the sheet.
  void write();

  std::vector<DeskOrder> orders_;
  UserPort& user_;
  PeriodRow* period_ = nullptr;
  QComboBox* cboStato_ = nullptr;
  QCheckBox* chkRighe_ = nullptr;
  QLabel* lblQuanti_ = nullptr;
  QPushButton* cmdSalva_ = nullptr;
};

}  // namespace kv
