#include "publish/orders/sales/frm_vendite.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>

#include "platform/qt/frm_plain_tip.h"
#include "publish/orders/sales/frm_bar_chart.h"
#include "publish/orders/sales/frm_period_row.h"
#include "publish/orders/values/order_texts.h"

namespace kv {
namespace {

constexpr int fewestBars = 3, mostBars = 30;

QTableWidgetItem* numberItem(const std::string& text) {
  auto* item = new QTableWidgetItem(toQt(text));
  item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
  return item;
}

}  // namespace

frmVendite::frmVendite(std::vector<DeskOrder> orders, std::map<std::int64_t, std::string> departments,
                       std::chrono::sys_days today, HelpOpener help, QWidget* parent)
    : FormDialog("Korvane - Vendite", parent), orders_(std::move(orders)) {
  view_.departments = std::move(departments);
  auto* column = new QVBoxLayout(this);
  column->addWidget(makeChoices(today));
  column->addWidget(makeSums(), 1);
  lblTotale_ = named(wrappedText(""), "lblTotale");
  column->addWidget(lblTotale_);
  QDialogButtonBox* buttons = makeClose();
  auto* cmdCopia = named(buttons->addButton(toQt("&Copia la tabella"), QDialogButtonBox::ActionRole), "cmdCopia");
  cmdCopia->setAutoDefault(false);
  connect(cmdCopia, &QPushButton::clicked, this, &frmVendite::copy);
  addHelp(buttons, std::move(help), "pagine/vendite.htm");
  column->addWidget(buttons);
  sizeInCharacters(124, 34);
  update();
}

QWidget* frmVendite::makeChoices(std::chrono::sys_days today) {
  cboPer_ = named(new QComboBox(), "cboPer");
  for (const char* name : {"Giorno", "Settimana", "Mese", "Reparto", "Articolo"}) cboPer_->addItem(toQt(name));
  period_ = new PeriodRow(SalesPeriod::LastDays, today);
  spnPrimi_ = named(new QSpinBox(), "spnPrimi");
  spnPrimi_->setRange(fewestBars, mostBars);
  spnPrimi_->setValue(static_cast<int>(view_.top));
  spnPrimi_->setToolTip(toQt("Quante barre ha il grafico; tutto il resto è in una sola"));
  cboValuta_ = named(new QComboBox(), "cboValuta");
  lblValuta_ = labelFor("Val&uta:", cboValuta_);
  auto* choices = new QWidget();
  auto* row = new QHBoxLayout(choices);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(labelFor("&Vendite per:", cboPer_));
  row->addWidget(cboPer_);
  row->addWidget(period_, 1);
  row->addWidget(labelFor("P&rimi:", spnPrimi_));
  row->addWidget(spnPrimi_);
  row->addWidget(lblValuta_);
  row->addWidget(cboValuta_);
  connect(cboPer_, &QComboBox::currentIndexChanged, this, &frmVendite::update);
  connect(period_, &PeriodRow::changed, this, &frmVendite::update);
  connect(spnPrimi_, &QSpinBox::valueChanged, this, [this](int count) {
    view_.top = static_cast<std::size_t>(count);
    showRows();
  });
  connect(cboValuta_, &QComboBox::currentIndexChanged, this, [this](int index) {
    view_.currency = static_cast<std::size_t>(std::max(index, 0));
    showRows();
  });
  return choices;
}

QWidget* frmVendite::makeSums() {
  chart_ = named(new BarChart(), "grafico", "Grafico delle vendite");
  lstVendite_ = named(new QTableWidget(0, 4), "lstVendite", "Vendite");
  lstVendite_->setSelectionBehavior(QAbstractItemView::SelectRows);
  lstVendite_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  lstVendite_->setTabKeyNavigation(false);
  lstVendite_->setWordWrap(false);
  lstVendite_->verticalHeader()->hide();
  lstVendite_->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + 8);
  QHeaderView* header = lstVendite_->horizontalHeader();
  header->setHighlightSections(false);
  header->setSectionResizeMode(0, QHeaderView::Stretch);
  for (int column = 1; column < lstVendite_->columnCount(); ++column) {
    header->setSectionResizeMode(column, QHeaderView::ResizeToContents);
  }
  auto* copies = new QAction(this);
  copies->setShortcut(QKeySequence::Copy);
  copies->setShortcutContext(Qt::WidgetShortcut);
  lstVendite_->addAction(copies);
  connect(copies, &QAction::triggered, this, &frmVendite::copy);
  auto* sums = new QWidget();
  auto* row = new QHBoxLayout(sums);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(chart_, 3);
  row->addWidget(lstVendite_, 2);
  return sums;
}

void frmVendite::update() {
  view_.by = static_cast<SalesBy>(cboPer_->currentIndex());
  view_.span = period_->span();
  const WaitCursor busy;
  const auto done = view_.update(orders_);
  showCurrencies();
  showRows();
  if (!done) lblTotale_->setText(toQt("Le somme sono troppo grandi: scegliere un periodo più breve."));
}

void frmVendite::showCurrencies() {
  const QSignalBlocker quiet(cboValuta_);
  cboValuta_->clear();
  for (const CurrencySales& each : view_.sales) cboValuta_->addItem(toQt(each.currency));
  cboValuta_->setCurrentIndex(view_.sales.empty() ? -1 : static_cast<int>(view_.currency));
  for (QWidget* part : std::initializer_list<QWidget*>{lblValuta_, cboValuta_})
    part->setVisible(view_.sales.size() > 1);
}

void frmVendite::showRows() {
  const auto rows = view_.rows();
  lstVendite_->setHorizontalHeaderLabels({cboPer_->currentText(), "Importo", "Pezzi", "Ordini"});
  lstVendite_->setRowCount(static_cast<int>(rows.size()));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const int line = static_cast<int>(i);
    auto* name = new QTableWidgetItem(toQt(rows[i].label));
    name->setToolTip(plainTip(name->text()));
    lstVendite_->setItem(line, 0, name);
    lstVendite_->setItem(line, 1, numberItem(decimalText(rows[i].amount)));
    lstVendite_->setItem(line, 2, numberItem(std::to_string(rows[i].pieces)));
    lstVendite_->setItem(line, 3, numberItem(std::to_string(rows[i].orders)));
  }
  if (!rows.empty()) lstVendite_->setCurrentCell(0, 0);
  spnPrimi_->setEnabled(!isByTime(view_.by));
  chart_->showBars(view_.bars(), !isByTime(view_.by));
  chart_->setAccessibleDescription(toQt(view_.summary()));
  lblTotale_->setText(toQt(view_.summary()));
}

void frmVendite::copy() {
  const auto rows = view_.rows();
  QGuiApplication::clipboard()->setText(toQt(salesBlock({rows.begin(), rows.end()}, view_.by)));
}

}  // namespace kv
