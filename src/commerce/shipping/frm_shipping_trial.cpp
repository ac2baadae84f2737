#include "commerce/shipping/frm_shipping_trial.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include "commerce/shipping/shipping_quote.h"
#include "platform/database/field_row.h"
#include "platform/numbers/number_format.h"
#include "platform/ports/failure_text.h"
#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_number_line.h"

namespace kv {

ShippingTrialPage::ShippingTrialPage(Session& session, ShippingEditor& editor, char decimalSeparator)
    : session_(session), editor_(editor), separator_(decimalSeparator) {
  NumberKeys keys;
  keys.decimalSeparator = decimalSeparator;
  txtProvaImporto_ = named(new NumberLine(keys), "txtProvaImporto");
  txtProvaPeso_ = named(new NumberLine(keys), "txtProvaPeso");
  cboProvaPaese_ = named(new QComboBox(), "cboProvaPaese");
  cboProvaMetodo_ = named(new QComboBox(), "cboProvaMetodo");
  txtProva_ = named(new QLineEdit(), "txtProva");
  txtProva_->setReadOnly(true);
  lstAvvisi_ = named(new QListWidget(), "lstAvvisi");
  auto* form = new QFormLayout();
  form->addRow(labelFor("&Importo dell'ordine:", txtProvaImporto_), txtProvaImporto_);
  form->addRow(labelFor("P&eso:", txtProvaPeso_), txtProvaPeso_);
  form->addRow(labelFor("Pae&se:", cboProvaPaese_), cboProvaPaese_);
  form->addRow(labelFor("Me&todo:", cboProvaMetodo_), cboProvaMetodo_);
  form->addRow(labelFor("Il carrello &chiede:", txtProva_), txtProva_);
  auto* column = new QVBoxLayout(this);
  column->addLayout(form);
  column->addWidget(labelFor("Da c&ontrollare:", lstAvvisi_));
  column->addWidget(lstAvvisi_, 1);
  for (NumberLine* line : {txtProvaImporto_, txtProvaPeso_}) {
    line->load(QStringLiteral("0"));
    connect(line, &QLineEdit::textChanged, this, &ShippingTrialPage::answer);
  }
  for (QComboBox* box : {cboProvaPaese_, cboProvaMetodo_}) {
    connect(box, &QComboBox::activated, this, &ShippingTrialPage::answer);
  }
}

void ShippingTrialPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  fill();
  answer();
}

void ShippingTrialPage::fill() {
  cboProvaPaese_->clear();
  for (const ShippingCountry& one : editor_.countries()) cboProvaPaese_->addItem(toQt(one.paese), toQt(one.strID));
  cboProvaPaese_->setCurrentIndex(cboProvaPaese_->findData(toQt(editor_.preselectedCountry())));
  const OfferedMethods offered = editor_.PopolaMetodi();
  cboProvaMetodo_->clear();
  for (const OfferedMethod& one : offered.items) cboProvaMetodo_->addItem(toQt(one.name), one.number);
  cboProvaMetodo_->setCurrentIndex(offered.selected);
  lstAvvisi_->clear();
  for (const std::string& gap : shippingGaps(session_.catalogue)) lstAvvisi_->addItem(toQt(gap));
}

void ShippingTrialPage::answer() {
  ShippingTrial trial;
  trial.amount = Money::parse(storedNumber(fromQt(txtProvaImporto_->text()), separator_)).value_or(Money());
  trial.weight = toNumber(storedNumber(fromQt(txtProvaPeso_->text()), separator_)).value_or(0);
  trial.country = fromQt(cboProvaPaese_->currentData().toString());
  trial.method = cboProvaMetodo_->currentData().toInt();
  const auto generale = firstRow(session_.catalogue, "SELECT * FROM generale");
  const auto quote = quoteShipping(session_.catalogue, trial);
  const bool computed = generale && quote;
  txtProva_->setText(toQt(computed ? quoteText(*quote, CurrencyForm(*generale))
                                   : failureText(generale ? quote.error() : generale.error())));
}

}  // namespace kv
