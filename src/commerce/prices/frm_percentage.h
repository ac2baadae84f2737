#pragma once
// The controls that the dialogs of prices share: a percentage that is typed or chosen, and a box for each price list.

#include <QComboBox>
#include <array>

#include "commerce/prices/price_survey.h"

class QCheckBox;
class QGroupBox;

namespace kv {

/// An editable list of percentages, "cboVariazione", that takes what the rule of typing allows.
class PercentageBox final : public QComboBox {
 public:
  explicit PercentageBox(char decimalSeparator, QWidget* parent = nullptr);
};

/// A box for each price list, "chkListino0" to "chkListino9", in a group.
class PriceListBoxes {
 public:
  /// Makes the group; whoever puts it into a layout owns it.
  QGroupBox* make(std::string_view caption);
  /// The lists that are ticked.
  PriceLists ticked() const;
  const std::array<QCheckBox*, listini>& boxes() const { return boxes_; }

 private:
  std::array<QCheckBox*, listini> boxes_{};
};

}  // namespace kv
