#include "publish/orders/papers/frm_order_print.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPrintDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/ports/failure_text.h"
#include "publish/orders/papers/order_labels.h"

namespace kv {
namespace {

constexpr int labelsIndex = 3;              // in the choice of papers, after those of OrderPaper
constexpr std::size_t mostPreviewed = 100;  // orders: the preview is drawn at once and whole

bool askForPrinter(QPrinter& printer, QWidget* over) {
  QPrintDialog dialog(&printer, over);
  dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
  dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
  return dialog.exec() == QDialog::Accepted;
}

}  // namespace

frmOrderPrint::frmOrderPrint(std::vector<DeskOrder> orders, ShopSender sender, UserPort& user, HelpOpener help,
                             QWidget* parent)
    : FormDialog("Korvane - Stampa ordini", parent),
      chooseFile([this] {
        return fromQt(
            QFileDialog::getSaveFileName(this, toQt("Salva il PDF"), toQt("ordini.pdf"), toQt("PDF (*.pdf)")));
      }),
      choosePrinter([this](QPrinter& printer) { return askForPrinter(printer, this); }),
      orders_(std::move(orders)),
      sender_(std::move(sender)),
      user_(user),
      help_(std::move(help)),
      logo_(readLogo(sender_.logo)),
      printer_(std::make_unique<QPrinter>(QPrinter::HighResolution)) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(makeChoices());
  column->addWidget(makePages(), 1);
  makeCommands();
  sizeInCharacters(96, 42);
  showPaper();
}

// The preview goes first: it draws on the printer until then.
frmOrderPrint::~frmOrderPrint() { delete preview_; }

QWidget* frmOrderPrint::makeChoices() {
  cboDocumento_ = named(new QComboBox(), "cboDocumento");
  for (const OrderPaper paper : {OrderPaper::Order, OrderPaper::Delivery, OrderPaper::Receipt}) {
    cboDocumento_->addItem(toQt(paperName(paper)));
  }
  cboDocumento_->addItem(toQt("Etichette con l'indirizzo"));
  cboFogli_ = named(new QComboBox(), "cboFogli");
  for (const LabelSheet& sheet : labelSheets()) cboFogli_->addItem(toQt(sheet.caption));
  spnPrima_ = named(new QSpinBox(), "spnPrima");
  spnPrima_->setMinimum(1);
  spnPrima_->setToolTip(toQt("La prima etichetta libera del foglio, contando riga per riga"));
  chkLogo_ = named(new QCheckBox(toQt("Con il &logo")), "chkLogo");
  chkLogo_->setChecked(!logo_.isNull());
  auto* choices = new QWidget();
  auto* row = new QHBoxLayout(choices);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(labelFor("&Documento:", cboDocumento_));
  row->addWidget(cboDocumento_);
  row->addWidget(chkLogo_);
  row->addWidget(labelFor("&Fogli:", cboFogli_));
  row->addWidget(cboFogli_);
  row->addWidget(labelFor("&Prima etichetta:", spnPrima_));
  row->addWidget(spnPrima_);
  row->addStretch();
  connect(cboDocumento_, &QComboBox::currentIndexChanged, this, &frmOrderPrint::showPaper);
  connect(cboFogli_, &QComboBox::currentIndexChanged, this, &frmOrderPrint::showSheet);
  connect(spnPrima_, &QSpinBox::valueChanged, this, [this] { preview_->updatePreview(); });
  connect(chkLogo_, &QCheckBox::toggled, this, [this] { preview_->updatePreview(); });
  return choices;
}

QWidget* frmOrderPrint::makePages() {
  preview_ = named(new QPrintPreviewWidget(printer_.get()), "preview", "Anteprima");
  for (QWidget* part : preview_->findChildren<QWidget*>()) {
    if ((part->focusPolicy() & Qt::TabFocus) != 0) part->setAccessibleName(toQt("Anteprima della pagina"));
  }
  cmdPrecedente_ = named(new QPushButton(toQt("Pagina p&recedente")), "cmdPrecedente");
  cmdSuccessiva_ = named(new QPushButton(toQt("Pagina s&uccessiva")), "cmdSuccessiva");
  for (QPushButton* button : {cmdPrecedente_, cmdSuccessiva_}) button->setAutoDefault(false);
  lblPagina_ = named(new QLabel(), "lblPagina");
  auto* pages = new QWidget();
  auto* column = new QVBoxLayout(pages);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(preview_, 1);
  auto* row = new QHBoxLayout();
  row->addWidget(cmdPrecedente_);
  row->addWidget(cmdSuccessiva_);
  row->addWidget(lblPagina_);
  row->addStretch();
  column->addLayout(row);
  if (orders_.size() > mostPreviewed) {
    column->addWidget(wrappedText("L'anteprima mostra i primi " + std::to_string(mostPreviewed) + " ordini di " +
                                  std::to_string(orders_.size()) + "."));
  }
  connect(preview_, &QPrintPreviewWidget::paintRequested, this, [this](QPrinter* printer) {
    const std::span<const DeskOrder> shown(orders_.data(), std::min(orders_.size(), mostPreviewed));
    ignore(paintOrders(*printer, shown, job()), "the preview stays empty");
  });
  connect(preview_, &QPrintPreviewWidget::previewChanged, this, &frmOrderPrint::showPageNumber);
  connect(cmdPrecedente_, &QPushButton::clicked, this, [this] {
    preview_->setCurrentPage(preview_->currentPage() - 1);
    showPageNumber();
  });
  connect(cmdSuccessiva_, &QPushButton::clicked, this, [this] {
    preview_->setCurrentPage(preview_->currentPage() + 1);
    showPageNumber();
  });
  return pages;
}

void frmOrderPrint::makeCommands() {
  QDialogButtonBox* buttons = makeButtons("&Stampa...", "Chiudi");
  auto* pdf = named(buttons->addButton(toQt("Sal&va PDF..."), QDialogButtonBox::ActionRole), "cmdPdf");
  pdf->setAutoDefault(false);
  connect(buttons, &QDialogButtonBox::accepted, this, &frmOrderPrint::print);
  connect(pdf, &QPushButton::clicked, this, &frmOrderPrint::writePdf);
  addHelp(buttons, std::move(help_), "pagine/vendite.htm");
  layout()->addWidget(buttons);
}

PrintJob frmOrderPrint::job() const {
  PrintJob job;
  job.isLabels = cboDocumento_->currentIndex() == labelsIndex;
  if (!job.isLabels) job.paper = static_cast<OrderPaper>(cboDocumento_->currentIndex());
  job.sender = sender_;
  if (chkLogo_->isChecked()) job.logo = logo_;
  job.labelSheet = static_cast<std::size_t>(cboFogli_->currentIndex());
  job.firstLabel = spnPrima_->value() - 1;
  return job;
}

void frmOrderPrint::showPaper() {
  const bool isLabels = cboDocumento_->currentIndex() == labelsIndex;
  cboFogli_->setEnabled(isLabels);
  spnPrima_->setEnabled(isLabels);
  chkLogo_->setEnabled(!isLabels && !logo_.isNull());
  showSheet();
}

void frmOrderPrint::showSheet() {
  spnPrima_->setMaximum(labelSheets()[static_cast<std::size_t>(cboFogli_->currentIndex())].count());
  preview_->updatePreview();
}

void frmOrderPrint::showPageNumber() {
  const int page = preview_->currentPage(), count = preview_->pageCount();
  lblPagina_->setText(toQt("Pagina " + std::to_string(page) + " di " + std::to_string(count)));
  cmdPrecedente_->setEnabled(page > 1);
  cmdSuccessiva_->setEnabled(page < count);
}

void frmOrderPrint::print() {
  QPrinter printer(QPrinter::HighResolution);
  if (!choosePrinter(printer)) return;
  finishWith([&] {
    const WaitCursor busy;
    return paintOrders(printer, orders_, job());
  }());
}

void frmOrderPrint::writePdf() {
  const std::string path = chooseFile();
  if (path.empty()) return;
  finishWith([&] {
    const WaitCursor busy;
    return writeOrdersPdf(path, orders_, job());
  }());
}

void frmOrderPrint::finishWith(const Result<int>& done) {
  if (!done) return user_.message("La stampa non è riuscita.\n\n" + failureText(done.error()), Icon::Critical);
  finish("OK");
}

}  // namespace kv
