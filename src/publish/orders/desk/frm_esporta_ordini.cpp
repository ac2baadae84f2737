#include "publish/orders/desk/frm_esporta_ordini.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/ports/failure_text.h"
#include "publish/orders/sales/frm_period_row.h"

namespace kv {
namespace {

constexpr int openStates = 1, firstState = 2;  // indexes in the choice of states, after that of all

std::string orderFileToWrite(QWidget* over, bool withLines) {
  return fromQt(QFileDialog::getSaveFileName(over, toQt("Salva gli ordini"),
                                             toQt(withLines ? "righe.xlsx" : "ordini.xlsx"),
                                             toQt("Foglio XLSX (*.xlsx);;Foglio CSV (*.csv)")));
}

}  // namespace

frmEsportaOrdini::frmEsportaOrdini(std::vector<DeskOrder> orders, std::chrono::sys_days today, UserPort& user,
                                   HelpOpener help, QWidget* parent)
    : FormDialog("Korvane - Esporta gli ordini", parent),
      chooseFile([this] { return orderFileToWrite(this, chkRighe_->isChecked()); }),
      orders_(std::move(orders)),
      user_(user) {
  period_ = new PeriodRow(SalesPeriod::LastMonth, today);
  cboStato_ = named(new QComboBox(), "cboStato");
  cboStato_->addItems({QStringLiteral("Tutti"), QStringLiteral("Da evadere")});
  for (const std::string& state : orderStates()) cboStato_->addItem(toQt(state));
  chkRighe_ = named(new QCheckBox(toQt("Una &riga per ogni articolo")), "chkRighe");
  lblQuanti_ = named(new QLabel(), "lblQuanti");
  auto* form = new QFormLayout();
  form->addRow(labelFor("S&tato:", cboStato_), cboStato_);
  auto* column = new QVBoxLayout(this);
  column->addWidget(period_);
  column->addLayout(form);
  column->addWidget(chkRighe_);
  column->addWidget(lblQuanti_);
  column->addStretch();
  QDialogButtonBox* buttons = makeButtons("&Salva...");
  cmdSalva_ = buttons->button(QDialogButtonBox::Ok);
  connect(buttons, &QDialogButtonBox::accepted, this, &frmEsportaOrdini::write);
  connect(period_, &PeriodRow::changed, this, &frmEsportaOrdini::showCount);
  connect(cboStato_, &QComboBox::currentIndexChanged, this, &frmEsportaOrdini::showCount);
  addHelp(buttons, std::move(help), "pagine/vendite.htm");
  column->addWidget(buttons);
  sizeInCharacters(72, 12);
  showCount();
}

OrderFilter frmEsportaOrdini::filter() const {
  const SalesSpan span = period_->span();
  OrderFilter filter{span.from, span.to, {}};
  const int chosen = cboStato_->currentIndex();
  if (chosen == openStates) filter.states = openOrderStates();
  if (chosen >= firstState) filter.states = {orderStates()[static_cast<std::size_t>(chosen - firstState)]};
  return filter;
}

void frmEsportaOrdini::showCount() {
  const OrderFilter asked = filter();
  const auto count = std::ranges::count_if(orders_, [&](const DeskOrder& each) { return asked.matches(each); });
  const std::string text = count == 1 ? "Un ordine" : std::to_string(count) + " ordini";
  lblQuanti_->setText(toQt(count == 0 ? "Nessun ordine in questo periodo" : text));
  cmdSalva_->setEnabled(count > 0);
}

void frmEsportaOrdini::write() {
  const std::string path = chooseFile();
  if (path.empty()) return;
  const auto done = [&] {
    const WaitCursor busy;
    return writeOrderFile(path, ordersMatching(orders_, filter()), chkRighe_->isChecked());
  }();
  if (!done) return user_.message(failureText(done.error()), Icon::Critical);
  finish("OK");
}

}  // namespace kv
