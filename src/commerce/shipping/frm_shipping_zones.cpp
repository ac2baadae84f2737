#include "commerce/shipping/frm_shipping_zones.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QRadioButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>

#include "commerce/shipping/shipping_texts.h"
#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_number_line.h"

namespace kv {
namespace {

constexpr int amountSteps = 2;
constexpr int weightSteps = 9;
constexpr int lineCharacters = 9;  // width of a field

}  // namespace

ShippingZonesPage::ShippingZonesPage(ShippingEditor& editor, char decimalSeparator) : editor_(editor) {
  tabZone_ = named(new QTabBar(), "tabZone", "Zone");
  for (const std::string& name : editor_.zoneNames()) tabZone_->addTab(toQt(name));
  tabZone_->setUsesScrollButtons(true);
  tabZone_->setExpanding(false);
  auto* column = new QVBoxLayout(this);
  column->addWidget(tabZone_);
  for (std::size_t i = 0; i < chkIvaOk_.size(); ++i) {
    const int zone = static_cast<int>(i) + 1;
    chkIvaOk_[i] = named(new QCheckBox(toQt(shippingZoneVat)), "chkIvaOk" + std::to_string(zone));
    column->addWidget(chkIvaOk_[i]);
    connect(chkIvaOk_[i], &QCheckBox::clicked, this, [this, zone](bool pays) { editor_.setPaysVat(zone, pays); });
  }
  column->addWidget(makeBasis());
  panels_ = new QStackedWidget();
  panels_->addWidget(makePanel(false, decimalSeparator));
  panels_->addWidget(makePanel(true, decimalSeparator));
  column->addWidget(panels_, 1);
  panels_->setCurrentIndex(editor_.isByWeight() ? 1 : 0);
  connect(tabZone_, &QTabBar::currentChanged, this, &ShippingZonesPage::changeZone);
  showMethods();
  showZone();
}

QWidget* ShippingZonesPage::makeBasis() {
  optImpPeso_ = {named(new QRadioButton(toQt("&" + std::string(shippingByAmount))), "optImpPeso0"),
                 named(new QRadioButton(toQt("Pe&so")), "optImpPeso1")};
  auto* basis = new QWidget();
  auto* row = new QHBoxLayout(basis);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(new QLabel(toQt("Spese calcolate in base a:")));
  for (std::size_t index = 0; index < optImpPeso_.size(); ++index) {
    row->addWidget(optImpPeso_[index]);
    connect(optImpPeso_[index], &QRadioButton::clicked, this, [this, index] {
      storeTyped();
      ignore(editor_.setByWeight(index == 1), "the user has been told");
      panels_->setCurrentIndex(static_cast<int>(index));
    });
  }
  optImpPeso_[editor_.isByWeight() ? 1 : 0]->setChecked(true);
  row->addStretch(1);
  return basis;
}

NumberLine* ShippingZonesPage::addLine(const std::string& column, const std::string& spoken, char decimalSeparator) {
  NumberKeys keys;
  keys.decimalSeparator = decimalSeparator;
  keys.spaces = true;
  auto* line = named(new NumberLine(keys), column, spoken);
  line->setAlignment(Qt::AlignRight);
  line->setMinimumWidth(line->fontMetrics().averageCharWidth() * lineCharacters);
  costs_.push_back({column, line});
  connect(line, &QLineEdit::editingFinished, this,
          [this, cost = costs_.back()] { ignore(leave(cost), "the field says it"); });
  return line;
}

QCheckBox* ShippingZonesPage::addAllowed(int number, const std::string& panel) {
  auto* box = named(new QCheckBox(), "chkPag" + panel + std::to_string(number));
  allowed_.emplace_back(number, box);
  connect(box, &QCheckBox::clicked, this, [this, number](bool on) {
    ignore(editor_.allow(zone(), number, on), "the box shows what is stored");
    for (const auto& [other, same] : allowed_) {
      if (other == number) same->setChecked(editor_.isAllowed(zone(), number));
    }
  });
  return box;
}

QWidget* ShippingZonesPage::makePanel(bool byWeight, char decimalSeparator) {
  const std::string limit = byWeight ? "peso" : "imp";
  const std::string cost = byWeight ? "spp" : "sp";
  const std::string limitSpoken(byWeight ? shippingUpToWeight : shippingUpToAmount);
  const int steps = byWeight ? weightSteps : amountSteps;
  auto* panel = new QWidget();
  auto* grid = new QGridLayout(panel);
  // Method by method, so that Tab goes down the steps of one method.
  for (int number = 1; number <= paymentMethods; ++number) {
    const std::string method = "m" + std::to_string(number);
    const std::string spoken = ", metodo " + std::to_string(number);
    const int left = 2 * (number - 1);
    grid->addWidget(addAllowed(number, byWeight ? "Peso" : ""), 0, left, 1, 2);
    grid->addWidget(new QLabel(toQt(limitSpoken)), 1, left);
    grid->addWidget(new QLabel(toQt(shippingCost)), 1, left + 1);
    for (int step = 1; step <= steps; ++step) {
      const std::string digit = std::to_string(step);
      grid->addWidget(addLine(method + limit + digit, limitSpoken + " " + digit + spoken, decimalSeparator), step + 1,
                      left);
      grid->addWidget(
          addLine(method + cost + digit, std::string(shippingCost) + " " + digit + spoken, decimalSeparator), step + 1,
          left + 1);
    }
    grid->addWidget(new QLabel(toQt(shippingBeyond)), steps + 2, left, Qt::AlignRight);
    grid->addWidget(
        addLine(method + cost + std::to_string(steps + 1), std::string(shippingBeyond) + spoken, decimalSeparator),
        steps + 2, left + 1);
  }
  grid->setRowStretch(steps + 3, 1);
  auto* scroll = new QScrollArea();
  scroll->setWidget(panel);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setFocusPolicy(Qt::NoFocus);
  // The page's own background shows through, which differs from a window's in the dark palette.
  scroll->viewport()->setAutoFillBackground(false);
  panel->setAutoFillBackground(false);
  return scroll;
}

int ShippingZonesPage::zone() const { return tabZone_->currentIndex() + 1; }

void ShippingZonesPage::goToZone(int zone) { tabZone_->setCurrentIndex(zone - 1); }

void ShippingZonesPage::changeZone() {
  // A click on a tab leaves the focus where it is: what is typed belongs to the zone that was shown.
  if (!storeTyped()) {
    const QSignalBlocker quiet(tabZone_);
    return goToZone(shownZone_);
  }
  shownZone_ = zone();
  showZone();
}

bool ShippingZonesPage::storeTyped() {
  bool stored = true;
  for (const Cost& cost : costs_) {
    if (cost.line->isModified()) stored = leave(cost) && stored;
  }
  return stored;
}

bool ShippingZonesPage::leave(const Cost& cost) {
  const std::string shown = editor_.leaveNumber(shownZone_, cost.column, fromQt(cost.line->text()));
  if (editor_.failure().empty()) {
    cost.line->load(toQt(shown));
    return true;
  }
  cost.line->keepUnsaved(toQt("Non salvato. " + editor_.failure()));
  return false;
}

void ShippingZonesPage::showZone() {
  for (const Cost& cost : costs_) cost.line->load(toQt(editor_.number(shownZone_, cost.column)));
  for (const auto& [number, box] : allowed_) box->setChecked(editor_.isAllowed(shownZone_, number));
  for (std::size_t i = 0; i < chkIvaOk_.size(); ++i) {
    const int zone = static_cast<int>(i) + 1;
    chkIvaOk_[i]->setVisible(zone == shownZone_);
    chkIvaOk_[i]->setChecked(editor_.paysVat(zone));
  }
}

void ShippingZonesPage::showMethods() {
  for (const auto& [number, box] : allowed_) {
    const ShippingMethod method = editor_.method(number);
    QString name = toQt(method.name).replace(QLatin1Char('&'), QLatin1String("&&"));
    if (name.isEmpty()) name = toQt("Metodo " + std::to_string(number));
    box->setText(name);
    box->setEnabled(method.active);
  }
  for (const Cost& cost : costs_) cost.line->setEnabled(editor_.method(cost.column[1] - '0').active);
}

}  // namespace kv
