#include "commerce/shipping/frm_shipping_countries.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "commerce/shipping/country_names.h"
#include "commerce/shipping/shipping_texts.h"
#include "platform/qt/frm_dialog.h"

namespace kv {
namespace {

constexpr int nameColumn = 0;
constexpr int zoneColumn = 1;

bool isEnter(const QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent*>(event)->key();
  return key == Qt::Key_Return || key == Qt::Key_Enter;
}

}  // namespace

QWidget* ZoneDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                    const QModelIndex& /*index*/) const {
  auto* box = named(new QComboBox(parent), "cboZona", "Zona del paese");
  for (const std::string& name : names_) box->addItem(toQt(name));
  return box;
}

void ZoneDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  static_cast<QComboBox*>(editor)->setCurrentIndex(index.data(Qt::EditRole).toInt() - 1);
}

void ZoneDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
  model->setData(index, static_cast<QComboBox*>(editor)->currentIndex() + 1);
}

QString ZoneDelegate::displayText(const QVariant& value, const QLocale& /*locale*/) const {
  const int zone = value.toInt();
  const bool isKnown = zone >= 1 && zone <= static_cast<int>(names_.size());
  return isKnown ? toQt(names_[static_cast<std::size_t>(zone - 1)]) : value.toString();
}

ShippingCountriesPage::ShippingCountriesPage(ShippingEditor& editor, std::function<void()> changed)
    : editor_(editor), changed_(std::move(changed)) {
  grdPaesi_ = named(new QTableWidget(0, 2), "grdPaesi", "Paesi");
  grdPaesi_->setHorizontalHeaderLabels({toQt("Paese"), toQt("Zona")});
  grdPaesi_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  grdPaesi_->verticalHeader()->hide();
  grdPaesi_->setTabKeyNavigation(false);
  grdPaesi_->setSelectionMode(QAbstractItemView::SingleSelection);
  grdPaesi_->setItemDelegateForColumn(zoneColumn, new ZoneDelegate(editor_.zoneNames(), this));
  connect(grdPaesi_, &QTableWidget::cellChanged, this, &ShippingCountriesPage::zoneChanged);
  auto* column = new QVBoxLayout(this);
  column->addWidget(grdPaesi_, 1);
  column->addWidget(makeAdding());
  fill(0);
}

QWidget* ShippingCountriesPage::makeAdding() {
  cboAggiungi_ = named(new QComboBox(), "cboAggiungi");
  cboAggiungi_->setEditable(true);
  cboAggiungi_->setInsertPolicy(QComboBox::NoInsert);
  for (const std::string_view name : countryNames()) cboAggiungi_->addItem(toQt(name));
  cboAggiungi_->setCurrentText(QString());
  cboAggiungi_->view()->setAccessibleName(toQt("Paesi da aggiungere"));
  cboAggiungi_->setToolTip(toQt(shippingAddHint));
  cboAggiungi_->installEventFilter(this);
  cboAggiungi_->lineEdit()->installEventFilter(this);
  cmdAggiungi_ = named(new QPushButton(toQt("&Aggiungi")), "cmdAggiungi");
  auto* cmdElimina = named(new QPushButton(toQt("E&limina")), "cmdElimina");
  for (QPushButton* button : {cmdAggiungi_, cmdElimina}) button->setAutoDefault(false);
  cmdAggiungi_->setEnabled(false);
  auto* side = new QWidget();
  auto* row = new QHBoxLayout(side);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(labelFor("Pa&ese:", cboAggiungi_));
  row->addWidget(cboAggiungi_, 1);
  row->addWidget(cmdAggiungi_);
  row->addWidget(cmdElimina);
  connect(cboAggiungi_, &QComboBox::editTextChanged, this,
          [this](const QString& text) { cmdAggiungi_->setEnabled(!text.isEmpty()); });
  connect(cmdAggiungi_, &QPushButton::clicked, this, &ShippingCountriesPage::add);
  connect(cmdElimina, &QPushButton::clicked, this, &ShippingCountriesPage::remove);
  return side;
}

bool ShippingCountriesPage::eventFilter(QObject* watched, QEvent* event) {
  if (!isEnter(event)) return QWidget::eventFilter(watched, event);
  if (watched == cboAggiungi_->lineEdit() || watched == cboAggiungi_) add();
  return true;
}

void ShippingCountriesPage::fill(int row) {
  filling_ = true;
  const std::vector<ShippingCountry> countries = editor_.countries();
  grdPaesi_->setRowCount(static_cast<int>(countries.size()));
  for (int i = 0; i < grdPaesi_->rowCount(); ++i) {
    const ShippingCountry& country = countries[static_cast<std::size_t>(i)];
    auto* name = new QTableWidgetItem(toQt(country.paese));
    name->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    name->setData(Qt::UserRole, static_cast<qlonglong>(country.ID));
    auto* zone = new QTableWidgetItem();
    zone->setData(Qt::EditRole, country.zona);
    grdPaesi_->setItem(i, nameColumn, name);
    grdPaesi_->setItem(i, zoneColumn, zone);
  }
  filling_ = false;
  if (grdPaesi_->rowCount() > 0) grdPaesi_->setCurrentCell(row, zoneColumn);
}

void ShippingCountriesPage::add() {
  const std::string name = fromQt(cboAggiungi_->currentText());
  if (name.empty() || !editor_.addCountry(name)) return;
  fill(grdPaesi_->rowCount());
  cboAggiungi_->setCurrentText(QString());
  changed_();
}

void ShippingCountriesPage::remove() {
  const QTableWidgetItem* name = grdPaesi_->item(grdPaesi_->currentRow(), nameColumn);
  if (name == nullptr) return;
  const auto next = editor_.deleteCountry(name->data(Qt::UserRole).toLongLong());
  if (!next) return;
  fill(static_cast<int>(*next));
  changed_();
}

void ShippingCountriesPage::zoneChanged(int row, int column) {
  if (filling_ || column != zoneColumn) return;
  const std::int64_t ID = grdPaesi_->item(row, nameColumn)->data(Qt::UserRole).toLongLong();
  if (!editor_.setCountryZone(ID, grdPaesi_->item(row, zoneColumn)->data(Qt::EditRole).toInt())) fill(row);
}

}  // namespace kv
