#include "commerce/prices/frm_percentage.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QValidator>

#include "platform/qt/frm_dialog.h"

namespace kv {
namespace {

constexpr int boxesInARow = 5;

class PercentageRule final : public QValidator {
 public:
  PercentageRule(char decimalSeparator, QObject* parent) : QValidator(parent), separator_(decimalSeparator) {}
  State validate(QString& text, int& /*position*/) const override {
    return isTypedPercentage(fromQt(text), separator_) ? Acceptable : Invalid;
  }

 private:
  char separator_;
};

}  // namespace

PercentageBox::PercentageBox(char decimalSeparator, QWidget* parent) : QComboBox(parent) {
  setObjectName(QStringLiteral("cboVariazione"));
  setAccessibleName(toQt("Variazione percentuale"));
  view()->setAccessibleName(accessibleName());
  setEditable(true);
  lineEdit()->setAccessibleName(accessibleName());
  setInsertPolicy(NoInsert);
  for (const char* usual : {"+5", "+10", "+15", "+20", "-5", "-10", "-15", "-20"}) addItem(QLatin1String(usual));
  setCurrentIndex(-1);
  setValidator(new PercentageRule(decimalSeparator, this));
}

QGroupBox* PriceListBoxes::make(std::string_view caption) {
  auto* group = new QGroupBox(toQt(caption));
  auto* grid = new QGridLayout(group);
  for (int list = 0; list < listini; ++list) {
    const std::string number = std::to_string(list);
    auto* box = named(new QCheckBox(toQt("Listino &" + number)), "chkListino" + number);
    boxes_[static_cast<std::size_t>(list)] = box;
    grid->addWidget(box, list / boxesInARow, list % boxesInARow);
  }
  return group;
}

PriceLists PriceListBoxes::ticked() const {
  PriceLists lists{};
  for (std::size_t list = 0; list < boxes_.size(); ++list) lists[list] = boxes_[list]->isChecked();
  return lists;
}

}  // namespace kv
