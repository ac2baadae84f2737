#include "import/accounting/frm_importa_og.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

#include "store/schema/schema.h"

namespace kv {
namespace {

constexpr int sourcePrices = 9;  // one digit names the column

QCheckBox* box(std::string_view caption, std::string_view name) { return named(new QCheckBox(toQt(caption)), name); }

}  // namespace

AccountingForm::AccountingForm(const AccountingOptions& options, int generation, UserPort& user, QWidget* parent)
    : FormDialog("Korvane - Importa da Orsa Gestionale", parent), generation_(generation), user_(user) {
  auto* column = new QVBoxLayout(this);
  addColumns(*column);
  addSwitches(*column);
  if (generation_ > 2) addVisibilities(*column);
  column->addStretch(1);
  QDialogButtonBox* buttons = makeButtons();
  connect(buttons, &QDialogButtonBox::accepted, this, &AccountingForm::accepted);
  column->addWidget(buttons);
  show(options);
}

void AccountingForm::addColumns(QVBoxLayout& column) {
  auto* form = new QFormLayout();
  cboPrezzo_ = named(new QComboBox(), "cboPrezzo");
  cboOfferta_ = named(new QComboBox(), "cboOfferta");
  cboListino_ = named(new QComboBox(), "cboListino");
  cboOfferta_->addItem(QStringLiteral("(nessuno)"));
  for (int number = 1; number <= sourcePrices; ++number) {
    cboPrezzo_->addItem(QStringLiteral("Vendita%1").arg(number));
    cboOfferta_->addItem(QStringLiteral("Vendita%1").arg(number));
  }
  for (int listino = 0; listino < listini; ++listino) cboListino_->addItem(QStringLiteral("Listino %1").arg(listino));
  form->addRow(labelFor("&Prezzo:", cboPrezzo_), cboPrezzo_);
  form->addRow(labelFor("Prezzo in &offerta:", cboOfferta_), cboOfferta_);
  form->addRow(labelFor("&Listino di destinazione:", cboListino_), cboListino_);
  column.addLayout(form);
}

void AccountingForm::addSwitches(QVBoxLayout& column) {
  chkIva_ = box("Aggiungi l'&IVA ai prezzi", "chkIva");
  chkContrassegna_ = box("&Contrassegna con * i titoli importati", "chkContrassegna");
  chkBackup_ = box("Crea prima un &backup del negozio", "chkBackup");
  auto* group = new QGroupBox(QStringLiteral("Articoli già presenti nel negozio"));
  auto* rows = new QVBoxLayout(group);
  optImporta_ = named(new QRadioButton(QStringLiteral("I&mporta: prevalgono i dati di Orsa Gestionale")), "optImporta");
  optTralascia_ = named(new QRadioButton(QStringLiteral("&Tralascia: restano come sono")), "optTralascia");
  rows->addWidget(optImporta_);
  rows->addWidget(optTralascia_);
  for (QWidget* control : {static_cast<QWidget*>(chkIva_), static_cast<QWidget*>(chkContrassegna_),
                           static_cast<QWidget*>(group), static_cast<QWidget*>(chkBackup_)}) {
    column.addWidget(control);
  }
}

void AccountingForm::addVisibilities(QVBoxLayout& column) {
  auto* group = new QGroupBox(QStringLiteral("Articoli da importare"));
  auto* rows = new QVBoxLayout(group);
  for (std::size_t i = 0; i < visibilities; ++i) {
    chkVista_.at(i) = box(visibilityCaptions.at(i), "chkVista" + std::to_string(i));
    rows->addWidget(chkVista_.at(i));
  }
  column.addWidget(group);
}

void AccountingForm::show(const AccountingOptions& options) {
  chkContrassegna_->setChecked(options.mark);
  cboPrezzo_->setCurrentIndex(options.price - 1);
  cboOfferta_->setCurrentIndex(options.offer);
  cboListino_->setCurrentIndex(options.listino);
  chkIva_->setChecked(options.addVat);
  (options.update ? optImporta_ : optTralascia_)->setChecked(true);
  chkBackup_->setChecked(options.backup);
  for (std::size_t i = 0; i < visibilities; ++i) {
    if (chkVista_.at(i) != nullptr) chkVista_.at(i)->setChecked(options.visible.at(i));
  }
}

AccountingOptions AccountingForm::options() const {
  AccountingOptions options;
  options.mark = chkContrassegna_->isChecked();
  options.price = cboPrezzo_->currentIndex() + 1;
  options.offer = cboOfferta_->currentIndex();
  options.listino = cboListino_->currentIndex();
  options.addVat = chkIva_->isChecked();
  options.update = optImporta_->isChecked();
  options.backup = chkBackup_->isChecked();
  for (std::size_t i = 0; i < visibilities; ++i) {
    if (chkVista_.at(i) != nullptr) options.visible.at(i) = chkVista_.at(i)->isChecked();
  }
  return options;
}

void AccountingForm::accepted() {
  const AccountingOptions chosen = options();
  if (const std::string refusal = refusalOf(chosen); !refusal.empty()) {
    user_.message(refusal, Icon::Exclamation);
    cboListino_->setFocus();
    return;
  }
  finish(accountingLine(chosen, generation_));
}

}  // namespace kv
