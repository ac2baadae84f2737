#pragma once
// One order in the window of orders: all that is known of it, its state to be changed, notes.

#include <QWidget>
#include <functional>
#include <optional>
#include <string>

#include "publish/orders/wire/order_requests.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace kv {

/// What the panel has done for it.
struct OrderPanelActions {
  std::function<void(const StateChange&)> changeState;
  std::function<bool(const std::string& text)> addNote;  ///< false: the text stays in its field
};

/// One order: its text, and what can be done with it.
class OrderPanel final : public QWidget {
 public:
  explicit OrderPanel(OrderPanelActions actions, QWidget* parent = nullptr);

  /// Shows an order, or none.
  void showOrder(std::optional<DeskOrder> order);
  /// The order that is shown.
  const std::optional<DeskOrder>& order() const { return order_; }

 private:
  QWidget* makeState();
  QWidget* makeNote();
  /// Which controls are on, by the order and what is chosen.
  void update();
  /// Index in orderStates() of the chosen state; -1 for one that this release doesn't know.
  int chosenState() const;
  /// Asks the shop for the state that is chosen.
  void changeState();
  /// Sends the note that was typed.
  void addNote();

  OrderPanelActions actions_;
  std::optional<DeskOrder> order_;
  QPlainTextEdit* txtDettaglio_ = nullptr;
  QComboBox* cboNuovoStato_ = nullptr;
  QCheckBox* chkScrivi_ = nullptr;
  QCheckBox* chkScorte_ = nullptr;
  QPlainTextEdit* txtMessaggio_ = nullptr;
  QPushButton* cmdStato_ = nullptr;
  QLineEdit* txtNota_ = nullptr;
  QPushButton* cmdNota_ = nullptr;
};

}  // namespace kv
