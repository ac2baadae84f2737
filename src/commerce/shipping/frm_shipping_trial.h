#pragma once
// The page of the shipping dialog on which an order is tried: what the cart would ask, and what may be missing.

#include <QWidget>

#include "commerce/shipping/shipping_editor.h"

class QComboBox;
class QLineEdit;
class QListWidget;

namespace kv {

class NumberLine;

/// What shipping an order would cost, to try the costs.
class ShippingTrialPage final : public QWidget {
 public:
  /// Both outlive the page.
  ShippingTrialPage(Session& session, ShippingEditor& editor, char decimalSeparator);

 protected:
  /// Reads methods, countries and tables again.
  void showEvent(QShowEvent* event) override;

 private:
  void fill();    // the lists, the preselection chosen
  void answer();  // for what the fields say

  Session& session_;
  ShippingEditor& editor_;
  char separator_;
  NumberLine* txtProvaImporto_ = nullptr;
  NumberLine* txtProvaPeso_ = nullptr;
  QComboBox* cboProvaPaese_ = nullptr;
  QComboBox* cboProvaMetodo_ = nullptr;
  QLineEdit* txtProva_ = nullptr;
  QListWidget* lstAvvisi_ = nullptr;
};

}  // namespace kv
