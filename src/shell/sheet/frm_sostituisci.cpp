#include "shell/sheet/frm_sostituisci.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/ports/failure_text.h"
#include "shell/sheet/frm_change_preview.h"
#include "shell/workbench/fields/field_rules.h"

namespace kv {
namespace {

constexpr std::string_view replaceTitle = "Korvane - Trova e sostituisci";
constexpr std::string_view wordsWanted = "Scrivere il testo da cercare e premere Trova.";

}  // namespace

frmSostituisci::frmSostituisci(Session& session, std::span<const SheetColumn> columns, ReplaceScope scope,
                               HelpOpener help, QWidget* parent)
    : FormDialog(replaceTitle, parent),
      session_(session),
      columns_(columns),
      scope_(std::move(scope)),
      preview_(new ChangePreview(session, columns, this)) {
  auto* column = new QVBoxLayout(this);
  auto* sides = new QHBoxLayout();
  sides->addWidget(makeWords(), 1);
  sides->addWidget(makeColumns());
  column->addLayout(sides);
  QTableView* table = makePreviewTable(*preview_);
  column->addWidget(table, 1);
  lblTrovati_ = named(wrappedText(wordsWanted), "lblTrovati");
  column->addWidget(lblTrovati_);
  QDialogButtonBox* buttons = makeButtons("Sostituisci");
  cmdSostituisci_ = named(buttons->button(QDialogButtonBox::Ok), "cmdSostituisci");
  column->addWidget(buttons);
  addHelp(buttons, std::move(help), "pagine/foglio-articoli.htm");
  connect(buttons, &QDialogButtonBox::accepted, this, &frmSostituisci::accept);
  connect(preview_, &ChangePreview::counted, this, &frmSostituisci::showCount);
  cmdSostituisci_->setEnabled(false);
  cmdTrova_->setDefault(true);
  sizeInCharacters(110, 34);
  txtTrova_->setFocus();
}

QWidget* frmSostituisci::makeWords() {
  txtTrova_ = named(new QLineEdit(), "txtTrova");
  txtSostituisci_ = named(new QLineEdit(), "txtSostituisci");
  chkMaiuscole_ = named(new QCheckBox(toQt("&Maiuscole e minuscole")), "chkMaiuscole");
  chkParole_ = named(new QCheckBox(toQt("Solo &parole intere")), "chkParole");
  chkEspressione_ = named(new QCheckBox(toQt("&Espressione regolare ($1 è il primo gruppo)")), "chkEspressione");
  cmdTrova_ = named(new QPushButton(toQt("&Trova")), "cmdTrova");
  auto* words = new QWidget();
  auto* form = new QFormLayout(words);
  form->setContentsMargins(0, 0, 0, 0);
  form->addRow(labelFor("T&rova:", txtTrova_), txtTrova_);
  form->addRow(labelFor("&Sostituisci con:", txtSostituisci_), txtSostituisci_);
  for (QCheckBox* box : {chkMaiuscole_, chkParole_, chkEspressione_}) form->addRow(box);
  form->addRow(cmdTrova_);
  for (QLineEdit* line : {txtTrova_, txtSostituisci_}) {
    connect(line, &QLineEdit::textChanged, this, &frmSostituisci::forgetHits);
  }
  for (QCheckBox* box : {chkMaiuscole_, chkParole_, chkEspressione_}) {
    connect(box, &QCheckBox::toggled, this, &frmSostituisci::forgetHits);
  }
  connect(cmdTrova_, &QPushButton::clicked, this, &frmSostituisci::find);
  return words;
}

QWidget* frmSostituisci::makeColumns() {
  lstColonne_ = named(new QListWidget(), "lstColonne");
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (!isSearchable(columns_[i])) continue;
    auto* item = new QListWidgetItem(toQt(columns_[i].heading), lstColonne_);
    item->setData(Qt::UserRole, static_cast<int>(i));
    item->setCheckState(std::ranges::find(scope_.shown, i) != scope_.shown.end() ? Qt::Checked : Qt::Unchecked);
  }
  lstColonne_->setCurrentRow(0);
  connect(lstColonne_, &QListWidget::itemChanged, this, &frmSostituisci::forgetHits);
  auto* where = new QWidget();
  auto* column = new QVBoxLayout(where);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(labelFor("&Cerca in:", lstColonne_));
  column->addWidget(lstColonne_);
  return where;
}

ReplaceRequest frmSostituisci::request() const {
  ReplaceRequest request;
  request.words = {fromQt(txtTrova_->text()), chkEspressione_->isChecked(), chkMaiuscole_->isChecked(),
                   chkParole_->isChecked()};
  request.replacement = pasted(FieldKind::PlainText, fromQt(txtSostituisci_->text()), scope_.decimalSeparator);
  request.articles = scope_.articles;
  for (int i = 0; i < lstColonne_->count(); ++i) {
    const QListWidgetItem* item = lstColonne_->item(i);
    if (item->checkState() == Qt::Checked) {
      request.columns.push_back(static_cast<std::size_t>(item->data(Qt::UserRole).toInt()));
    }
  }
  return request;
}

void frmSostituisci::find() {
  auto hits = [&] {
    const WaitCursor busy;
    return findHits(session_, columns_, request(), scope_.decimalSeparator);
  }();
  if (!hits) {
    preview_->show({});
    const bool isWords = hits.error().kind == ErrorKind::Malformed;
    lblTrovati_->setText(toQt(isWords ? "Non si può cercare: " + hits.error().what : failureText(hits.error())));
    return txtTrova_->setFocus();
  }
  preview_->show(std::move(*hits));
}

void frmSostituisci::forgetHits() {
  if (preview_->size() > 0) preview_->show({});
  lblTrovati_->setText(toQt(wordsWanted));
}

void frmSostituisci::showCount() {
  const std::size_t all = preview_->size();
  cmdSostituisci_->setEnabled(preview_->tickedCount() > 0);
  lblTrovati_->setText(all == 0 ? tr("Non è stato trovato niente da sostituire.")
                                : tr("Celle trovate: %1; da sostituire: %2").arg(all).arg(preview_->tickedCount()));
}

void frmSostituisci::accept() {
  chosen_ = preview_->ticked();
  if (!chosen_.empty()) finish("OK");
}

}  // namespace kv
