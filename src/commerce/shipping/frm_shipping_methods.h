#pragma once
// The page of the shipping dialog with the four methods: a box, a list of modules and a name for each.

#include <QWidget>
#include <array>
#include <functional>

#include "commerce/shipping/shipping_editor.h"

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace kv {

class FieldMark;

/// The four methods of payment.
class ShippingMethodsPage final : public QWidget {
 public:
  /// `editor` outlives the page. changed: called after a method, its module or its name was stored.
  /// configure: opens the window of the payment systems; empty: the button is off.
  ShippingMethodsPage(ShippingEditor& editor, std::function<void()> changed, std::function<void()> configure);

  /// Stores the names that could not be stored before. False when one still can't: it stays in its field, marked.
  bool storeTyped();

 private:
  /// The controls of one method, under their given names with its number.
  struct Row {
    QCheckBox* chkMetodo = nullptr;
    QComboBox* cboMetodo = nullptr;
    QLineEdit* txtNome = nullptr;
    FieldMark* mark = nullptr;  ///< of the name
    bool unsaved = false;       ///< the name could not be stored
  };
  /// The controls of one method.
  void makeRow(int number);
  /// Stores a name that was typed; false when it can't be, and the field keeps it.
  bool leaveName(int number);
  void show(int number);  // fills and enables the controls of a method
  void switched(int number, bool on);

  ShippingEditor& editor_;
  std::function<void()> changed_;
  std::array<Row, paymentMethods> rows_{};
};

}  // namespace kv
