#pragma once
// The window of orders: those that were received, with search and filters; one of them in full, with its state and its
// notes; the stock. It works without a connection as long as nothing is asked of the server.

#include <functional>
#include <string>
#include <vector>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_user.h"
#include "publish/orders/desk/frm_order_panel.h"
#include "publish/orders/desk/order_desk.h"

class QTableView;
class QTabWidget;

namespace kv {

class OrderModel;
class StockPanel;

/// What another window does with orders: paper, files, sums.
struct OrderTool {
  /// orders: those that the button means, newest first; over: the window it opens over. Unset: the button is off.
  std::function<void(const std::vector<DeskOrder>& orders, QWidget* over)> run{};
  std::string whyOff = "Non disponibile";  ///< told by the button while it is off
};
/// The windows beside this one.
struct OrderTools {
  OrderTool print{};       ///< of the selected orders
  OrderTool exportFile{};  ///< of all orders that are kept
  OrderTool sales{};       ///< likewise
};

/// Closing it marks all orders as looked at. While the server is waited for, "Ferma", Escape and the close button end
/// the waiting, and what has come stays.
class frmOrdini final : public FormDialog {
 public:
  /// Shows what is kept; asks the server for nothing yet. `desk` and `user` outlive the window.
  frmOrdini(OrderDesk& desk, UserPort& user, OrderTools tools, HelpOpener help, QWidget* parent = nullptr);
  ~frmOrdini() override;

  void reject() override;

 private:
  QWidget* makeOrders();
  QWidget* makeFilters();
  QWidget* makeList();
  QWidget* makeFoot();
  /// Close, fetch, stop, print, export, sales.
  QWidget* makeCommands();
  /// Reads the list again; the current order stays current where it is still shown.
  void reload();
  /// Shows the order of the current row.
  void showCurrent();
  /// Enables what can be done with the orders that are selected.
  void updateCommands();
  /// Asks the server; everything but "Ferma" is off meanwhile.
  void working(const std::function<void()>& work);
  /// Asks the shop for new orders.
  void fetch();
  /// The selected orders, or all that pass a filter, whole; a failure is told.
  std::vector<DeskOrder> selectedOrders();
  /// The orders that filters choose; none after a failure, which the user knows.
  std::vector<DeskOrder> ordersOf(const OrderLookup& lookup);
  /// Says why the kept orders can't be read.
  void showStoreError(const Error& error);
  /// What the filters choose.
  OrderLookup lookup() const;

  OrderDesk& desk_;
  UserPort& user_;
  OrderTools tools_;
  HelpOpener help_;
  EventPump pump_;
  bool busy_ = false;
  bool stopped_ = false;  ///< the user has ended the waiting
  OrderModel* model_ = nullptr;
  OrderPanel* panel_ = nullptr;
  QTabWidget* tabPagine_ = nullptr;
  QLineEdit* txtCerca_ = nullptr;
  QComboBox* cboStato_ = nullptr;
  QLineEdit* txtDal_ = nullptr;
  QLineEdit* txtAl_ = nullptr;
  QTableView* lstOrdini_ = nullptr;
  QLabel* lblRiepilogo_ = nullptr;
  QCheckBox* chkAvvisa_ = nullptr;
  QPushButton* cmdAggiorna_ = nullptr;
  QPushButton* cmdFerma_ = nullptr;
  QPushButton* cmdStampa_ = nullptr;
  QPushButton* cmdEsporta_ = nullptr;
  QPushButton* cmdVendite_ = nullptr;
};

}  // namespace kv
