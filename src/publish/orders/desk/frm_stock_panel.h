#pragma once
// The stock of articles and of values of variants in the window of orders: searched and set on the server.

#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "publish/orders/wire/order_answers.h"
#include "publish/orders/wire/order_requests.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

namespace kv {

/// What the panel has done for it; nothing is returned for what failed, which the user knows.
struct StockPanelActions {
  std::function<std::optional<StockAnswer>(const StockQuery&)> find;
  std::function<std::optional<std::string>(const StockChange&, const std::string& name)> set;
};

/// Stock of the shop's articles and values, found and set.
class StockPanel final : public QWidget {
 public:
  explicit StockPanel(StockPanelActions actions, QWidget* parent = nullptr);

 private:
  QWidget* makeSearch();
  QWidget* makeList();
  QWidget* makeLevel();
  /// Asks for the first rows, or for those after the ones that are shown.
  void find(bool more);
  /// How many were found, as the merchant reads it.
  static std::string itemCount(std::size_t count, bool more);
  /// Shows an item in a row of the list.
  void showRow(int row, const StockItem& item);
  /// Puts the level of the current row into the fields.
  void showLevel();
  /// Sends the level that was typed for the current row.
  void set();

  StockPanelActions actions_;
  StockQuery query_;
  std::vector<StockItem> items_;
  QComboBox* cboTipo_ = nullptr;
  QLineEdit* txtCercaScorte_ = nullptr;
  QPushButton* cmdCercaScorte_ = nullptr;
  QPushButton* cmdAltre_ = nullptr;
  QTableWidget* lstScorte_ = nullptr;
  QLabel* lblScorte_ = nullptr;
  QCheckBox* chkDisponibile_ = nullptr;
  QLineEdit* txtPezzi_ = nullptr;
  QPushButton* cmdImposta_ = nullptr;
};

}  // namespace kv
