#pragma once
// The page of the shipping dialog with the costs: a tab for each zone, and for each method its steps by amount or by
// weight.

#include <QWidget>
#include <array>
#include <string>
#include <vector>

#include "commerce/shipping/shipping_editor.h"

class QCheckBox;
class QGridLayout;
class QRadioButton;
class QStackedWidget;
class QTabBar;

namespace kv {

class NumberLine;

/// The costs of one zone at a time.
class ShippingZonesPage final : public QWidget {
 public:
  /// `editor` outlives the page.
  ShippingZonesPage(ShippingEditor& editor, char decimalSeparator);

  /// Goes to the tab of a zone, 1 to 8.
  void goToZone(int zone);
  /// Shows names and states of the methods again.
  void showMethods();
  /// Stores what is typed and not stored yet. False when something could not be: it stays in its field, marked.
  bool storeTyped();

 private:
  /// One field of costs: its column, and the line that shows it.
  struct Cost {
    std::string column;
    NumberLine* line = nullptr;
  };
  QWidget* makeBasis();
  /// The panel of amounts or of weights: `steps` lines with a limit, and one for what is beyond.
  QWidget* makePanel(bool byWeight, char decimalSeparator);
  /// A field for a column of the zone.
  NumberLine* addLine(const std::string& column, const std::string& spoken, char decimalSeparator);
  /// The box that allows a method in the zone.
  QCheckBox* addAllowed(int number, const std::string& panel);
  /// The zone that is shown, 1 to 8.
  int zone() const;
  /// Leaves the fields and shows the zone that was chosen.
  void changeZone();
  /// Shows the costs of the zone.
  void showZone();
  bool leave(const Cost& cost);

  ShippingEditor& editor_;
  QTabBar* tabZone_ = nullptr;
  std::array<QCheckBox*, shippingZones> chkIvaOk_{};
  std::array<QRadioButton*, 2> optImpPeso_{};
  QStackedWidget* panels_ = nullptr;
  std::vector<Cost> costs_;
  /// The box of each method in the panel of amounts, then in that of weights.
  std::vector<std::pair<int, QCheckBox*>> allowed_;
  int shownZone_ = 1;  ///< whose row the lines show
};

}  // namespace kv
