#include "commerce/prices/frm_varia_prezzi.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QRadioButton>
#include <QTableView>
#include <QVBoxLayout>

namespace kv {
namespace {

constexpr std::string_view noDepartment = "###";
constexpr std::string_view percentageWanted = "Indicare la variazione percentuale, da -100 a +100.";
constexpr int characterPadding = 8;  // pixels between two lines of the preview

}  // namespace

frmVariaPrezzi::frmVariaPrezzi(Session& session, Environment& env, PriceDialogFacts facts, HelpOpener help,
                               QWidget* parent)
    : FormDialog(changePricesTitle, parent),
      session_(session),
      env_(env),
      facts_(std::move(facts)),
      model_(new PricePreviewModel(facts_.decimalSeparator, this)) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(lists_.make("Listini da modificare"));
  auto* sides = new QHBoxLayout();
  sides->addWidget(makeExtent());
  sides->addWidget(makeChoices(), 1);
  column->addLayout(sides);
  column->addWidget(makePreview(), 1);
  QDialogButtonBox* buttons = makeButtons();
  column->addWidget(buttons);
  addHelp(buttons, std::move(help), "pagine/prezzi.htm");
  connect(buttons, &QDialogButtonBox::accepted, this, &frmVariaPrezzi::run);
  for (const QCheckBox* box : lists_.boxes()) connect(box, &QCheckBox::toggled, this, &frmVariaPrezzi::surveyAgain);
  for (const QCheckBox* box : {chkOfferte_, chkVarianti_}) {
    connect(box, &QCheckBox::toggled, this, &frmVariaPrezzi::surveyAgain);
  }
  connect(optEstensione0_, &QRadioButton::toggled, this, &frmVariaPrezzi::surveyAgain);
  connect(chkTondi_, &QCheckBox::toggled, this, &frmVariaPrezzi::previewAgain);
  connect(cboVariazione_, &QComboBox::editTextChanged, this, &frmVariaPrezzi::previewAgain);
  previewAgain();
  sizeInCharacters(100, 34);
  cboVariazione_->setFocus();
}

QWidget* frmVariaPrezzi::makeExtent() {
  auto* group = new QGroupBox(toQt("Estensione"));
  auto* column = new QVBoxLayout(group);
  const bool any = !facts_.department.empty() && facts_.department != noDepartment;
  const std::string title = facts_.departmentTitle.empty() ? "" : " (" + facts_.departmentTitle + ")";
  optEstensione0_ = named(new QRadioButton(toQt("Solo il reparto selezionato" + title)), "optEstensione0");
  optEstensione1_ = named(new QRadioButton(toQt("Tutti i reparti")), "optEstensione1");
  optEstensione0_->setEnabled(any);
  (any ? optEstensione0_ : optEstensione1_)->setChecked(true);
  column->addWidget(optEstensione0_);
  column->addWidget(optEstensione1_);
  column->addStretch();
  return group;
}

QWidget* frmVariaPrezzi::makeChoices() {
  chkOfferte_ = named(new QCheckBox(toQt("Modifica anche il prezzo delle offerte")), "chkOfferte");
  chkVarianti_ = named(new QCheckBox(toQt("Modifica anche il prezzo delle varianti")), "chkVarianti");
  chkTondi_ = named(new QCheckBox(toQt("Prezzi tondi (arrotonda ed elimina i decimali)")), "chkTondi");
  cboVariazione_ = new PercentageBox(facts_.decimalSeparator);
  auto* choices = new QWidget();
  auto* column = new QVBoxLayout(choices);
  column->setContentsMargins(0, 0, 0, 0);
  auto* form = new QFormLayout();
  form->addRow(labelFor("&Variazione percentuale:", cboVariazione_), cboVariazione_);
  column->addLayout(form);
  for (QCheckBox* box : {chkOfferte_, chkVarianti_, chkTondi_}) column->addWidget(box);
  column->addStretch();
  return choices;
}

QWidget* frmVariaPrezzi::makePreview() {
  lstAnteprima_ = named(new QTableView(), "lstAnteprima");
  lstAnteprima_->setModel(model_);
  lstAnteprima_->setSelectionBehavior(QAbstractItemView::SelectRows);
  lstAnteprima_->setTabKeyNavigation(false);
  lstAnteprima_->setWordWrap(false);
  lstAnteprima_->verticalHeader()->hide();
  lstAnteprima_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  lstAnteprima_->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + characterPadding);
  // Headings are whole in any font.
  lstAnteprima_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  lstAnteprima_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
  lstAnteprima_->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
  lstAnteprima_->setSortingEnabled(true);
  lblAnteprima_ = named(wrappedText(""), "lblAnteprima");
  auto* preview = new QWidget();
  auto* column = new QVBoxLayout(preview);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(labelFor("&Anteprima:", lstAnteprima_));
  column->addWidget(lstAnteprima_, 1);
  column->addWidget(lblAnteprima_);
  return preview;
}

PriceChange frmVariaPrezzi::change() const {
  PriceChange change;
  change.selection.lists = lists_.ticked();
  if (optEstensione0_->isChecked()) change.selection.department = facts_.department;
  change.selection.offers = chkOfferte_->isChecked();
  change.selection.variants = chkVarianti_->isChecked();
  change.percentage = fromQt(cboVariazione_->currentText());
  change.whole = chkTondi_->isChecked();
  return change;
}

void frmVariaPrezzi::surveyAgain() {
  const WaitCursor busy;
  // A catalogue that can't be read has no preview; OK tells why.
  model_->show(surveyPrices(session_.catalogue, change().selection).value_or(PriceSurvey()));
  previewAgain();
}

void frmVariaPrezzi::previewAgain() {
  const auto percentage = readPercentage(fromQt(cboVariazione_->currentText()));
  if (!percentage) {
    model_->show(PricePreview(), PriceRule());
    lblAnteprima_->setText(toQt(percentageWanted));
    return;
  }
  const PriceRule rule = ruleOfPercentage(*percentage, chkTondi_->isChecked());
  const PricePreview preview = previewPrices(model_->survey(), rule);
  model_->show(preview, rule);
  const std::string empty = model_->survey().prices.empty() ? emptyPreview(change().selection) : "";
  const std::string summary = previewSummary(model_->survey(), preview, rule, facts_.decimalSeparator);
  lblAnteprima_->setText(toQt(empty.empty() ? summary : empty));
}

void frmVariaPrezzi::run() {
  const BulkEnd end = [&] {
    const WaitCursor busy;
    return ModificaPrezzi(session_.catalogue, change(), env_.user);
  }();
  if (end == BulkEnd::Done || end == BulkEnd::Interrupted) finish("OK");
  if (end == BulkEnd::Left) reject();
}

}  // namespace kv
