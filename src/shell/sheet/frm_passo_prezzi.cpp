#include "shell/sheet/frm_passo_prezzi.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include "platform/ports/failure_text.h"
#include "shell/sheet/frm_change_preview.h"

namespace kv {
namespace {

constexpr std::string_view stepTitle = "Korvane - Prezzi selezionati";
constexpr std::string_view stepWanted = "Scrivere per esempio +10 %, -5 oppure x1,1.";

}  // namespace

frmPassoPrezzi::frmPassoPrezzi(Session& session, std::span<const SheetColumn> columns, std::vector<CellText> cells,
                               char decimalSeparator, HelpOpener help, QWidget* parent)
    : FormDialog(stepTitle, parent),
      session_(session),
      columns_(columns),
      cells_(std::move(cells)),
      separator_(decimalSeparator),
      preview_(new ChangePreview(session, columns, this)) {
  txtPasso_ = named(new QLineEdit(), "txtPasso");
  chkTondi_ = named(new QCheckBox(toQt("&Prezzi tondi (arrotonda ed elimina i decimali)")), "chkTondi");
  lblAnteprima_ = named(wrappedText(stepWanted), "lblAnteprima");
  auto* column = new QVBoxLayout(this);
  auto* form = new QFormLayout();
  form->addRow(labelFor("&Variazione:", txtPasso_), txtPasso_);
  form->addRow(chkTondi_);
  column->addLayout(form);
  column->addWidget(makePreviewTable(*preview_), 1);
  column->addWidget(lblAnteprima_);
  QDialogButtonBox* buttons = makeButtons();
  cmdOK_ = buttons->button(QDialogButtonBox::Ok);
  cmdOK_->setEnabled(false);
  column->addWidget(buttons);
  addHelp(buttons, std::move(help), "pagine/foglio-articoli.htm");
  connect(buttons, &QDialogButtonBox::accepted, this, &frmPassoPrezzi::accept);
  connect(preview_, &ChangePreview::counted, this, &frmPassoPrezzi::showCount);
  connect(txtPasso_, &QLineEdit::textChanged, this, &frmPassoPrezzi::previewAgain);
  connect(chkTondi_, &QCheckBox::toggled, this, &frmPassoPrezzi::previewAgain);
  sizeInCharacters(112, 26);
  txtPasso_->setFocus();
}

void frmPassoPrezzi::previewAgain() {
  const auto step = readPriceStep(fromQt(txtPasso_->text()), chkTondi_->isChecked(), separator_);
  if (!step) {
    preview_->show({});
    return lblAnteprima_->setText(toQt(stepWanted));
  }
  auto changes = priceChanges(session_, columns_, cells_, *step, separator_);
  const std::string failed = changes ? std::string() : failureText(changes.error());
  preview_->show(std::move(changes).value_or(std::vector<CellChange>()));
  if (!failed.empty()) lblAnteprima_->setText(toQt(failed));
}

void frmPassoPrezzi::showCount() {
  cmdOK_->setEnabled(preview_->tickedCount() > 0);
  lblAnteprima_->setText(tr("Prezzi da modificare: %1 di %2").arg(preview_->tickedCount()).arg(preview_->size()));
}

void frmPassoPrezzi::accept() {
  chosen_ = preview_->ticked();
  if (!chosen_.empty()) finish("OK");
}

}  // namespace kv
