// The commands of the window of orders: its buttons, what they hand on, and waiting for the server.

#include <QDialogButtonBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <algorithm>
#include <utility>

#include "publish/orders/desk/frm_order_model.h"
#include "publish/orders/desk/frm_ordini.h"

namespace kv {
namespace {

constexpr std::string_view ordersHelp = "pagine/ordini.htm";

}  // namespace

QWidget* frmOrdini::makeCommands() {
  QDialogButtonBox* buttons = makeClose();
  const auto add = [buttons](const char* caption, const char* name) {
    return named(buttons->addButton(toQt(caption), QDialogButtonBox::ActionRole), name);
  };
  cmdAggiorna_ = add("A&ggiorna", "cmdAggiorna");
  cmdFerma_ = add("&Ferma", "cmdFerma");
  cmdStampa_ = add("Stam&pa...", "cmdStampa");
  cmdEsporta_ = add("Espo&rta...", "cmdEsporta");
  cmdVendite_ = add("Vend&ite...", "cmdVendite");
  cmdAggiorna_->setDefault(true);
  connect(cmdAggiorna_, &QPushButton::clicked, this, &frmOrdini::fetch);
  connect(cmdFerma_, &QPushButton::clicked, this, [this] { stopped_ = true; });
  connect(cmdStampa_, &QPushButton::clicked, this, [this] { tools_.print.run(selectedOrders(), this); });
  connect(cmdEsporta_, &QPushButton::clicked, this, [this] { tools_.exportFile.run(ordersOf({}), this); });
  connect(cmdVendite_, &QPushButton::clicked, this, [this] { tools_.sales.run(ordersOf({}), this); });
  for (const auto& [button, tool] : {std::pair<QPushButton*, const OrderTool*>{cmdStampa_, &tools_.print},
                                     {cmdEsporta_, &tools_.exportFile},
                                     {cmdVendite_, &tools_.sales}}) {
    if (!tool->run) button->setToolTip(toQt(tool->whyOff));
  }
  addHelp(buttons, help_, ordersHelp);
  return buttons;
}

void frmOrdini::updateCommands() {
  if (cmdStampa_ == nullptr) return;
  tabPagine_->setEnabled(!busy_);
  cmdAggiorna_->setEnabled(!busy_);
  cmdFerma_->setEnabled(busy_);
  cmdStampa_->setEnabled(!busy_ && tools_.print.run && lstOrdini_->selectionModel()->hasSelection());
  cmdEsporta_->setEnabled(!busy_ && tools_.exportFile.run && desk_.store().isOpen());
  cmdVendite_->setEnabled(!busy_ && tools_.sales.run && desk_.store().isOpen());
}

void frmOrdini::working(const std::function<void()>& work) {
  if (busy_) return;
  const QPointer<QWidget> keyboard = focusWidget();
  busy_ = true;
  stopped_ = false;
  updateCommands();
  cmdFerma_->setFocus();
  work();
  busy_ = false;
  updateCommands();
  if (keyboard != nullptr && keyboard->isEnabled()) keyboard->setFocus();
}

void frmOrdini::fetch() {
  working([this] {
    lblRiepilogo_->setText(QStringLiteral("Lettura degli ordini dal server..."));
    ignore(desk_.fetch([this](int orders) {
      lblRiepilogo_->setText(QStringLiteral("Lettura degli ordini dal server: %1").arg(orders));
    }),
           "the user knows of a failure, and what came is in the list");
  });
  reload();
}

std::vector<DeskOrder> frmOrdini::ordersOf(const OrderLookup& lookup) {
  auto orders = desk_.store().orders(lookup);
  if (orders) return std::move(*orders);
  showStoreError(orders.error());
  return {};
}

std::vector<DeskOrder> frmOrdini::selectedOrders() {
  std::vector<int> rows;
  for (const QModelIndex& index : lstOrdini_->selectionModel()->selectedRows()) rows.push_back(index.row());
  std::sort(rows.begin(), rows.end());
  std::vector<DeskOrder> orders;
  for (const int row : rows) {
    auto order = desk_.store().order(model_->orders()[static_cast<std::size_t>(row)].row);
    if (order) {
      orders.push_back(std::move(*order));
    } else {
      showStoreError(order.error());
    }
  }
  return orders;
}

void frmOrdini::reject() {
  if (busy_) {
    stopped_ = true;
    return;
  }
  ignore(desk_.store().markSeen(), "orders that stay new are told of once more");
  FormDialog::reject();
}

}  // namespace kv
