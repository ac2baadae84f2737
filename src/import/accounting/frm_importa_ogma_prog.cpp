#include "import/accounting/frm_importa_ogma_prog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

#include "import/accounting/frm_accounting_plan_model.h"
#include "platform/text/text.h"

namespace kv {

frmImportaOGMAProg::frmImportaOGMAProg(Session& session, const Settings& settings, AccountingRequest request,
                                       QWidget* parent)
    : FormDialog("Korvane - Importa da Orsa Gestionale", parent),
      session_(session),
      settings_(settings),
      request_(std::move(request)) {
  request_.company = [this](const std::vector<AccountingCompany>& companies) -> std::optional<std::string> {
    if (companies_.empty()) companies_ = companies;
    if (companies_.empty()) return std::nullopt;
    return cboSelect_ == nullptr ? companies_.front().ID : company();
  };
  auto* column = new QVBoxLayout(this);
  if (request_.variant.hasCompanies) {
    ignore(locateAccounting(settings_, request_), "the preview says why there are no companies");
    cboSelect_ = named(new QComboBox(), "cboSelect");
    for (const AccountingCompany& company : companies_) cboSelect_->addItem(toQt(company.nome));
    column->addWidget(labelFor("A&zienda:", cboSelect_));
    column->addWidget(cboSelect_);
    connect(cboSelect_, &QComboBox::currentIndexChanged, this, &frmImportaOGMAProg::showPreview);
  }
  lblSomme_ = named(wrappedText(""), "lblSomme");
  column->addWidget(lblSomme_);
  grdAnteprima_ = named(new QTableView(), "grdAnteprima");
  model_ = new AccountingPlanModel(readAccountingOptions(request_.line, request_.variant.generation), grdAnteprima_);
  grdAnteprima_->setModel(model_);
  grdAnteprima_->verticalHeader()->hide();
  grdAnteprima_->setSelectionBehavior(QAbstractItemView::SelectRows);
  grdAnteprima_->setTabKeyNavigation(false);
  grdAnteprima_->setWordWrap(false);
  grdAnteprima_->horizontalHeader()->setStretchLastSection(true);
  column->addWidget(labelFor("&Anteprima:", grdAnteprima_));
  column->addWidget(grdAnteprima_, 1);
  QDialogButtonBox* buttons = makeButtons("Importa");
  connect(buttons, &QDialogButtonBox::accepted, this, [this] { finish("OK" + company()); });
  column->addWidget(buttons);
  sizeInCharacters(100, 30);
  showPreview();
}

std::string frmImportaOGMAProg::company() const {
  if (cboSelect_ == nullptr || cboSelect_->currentIndex() < 0) return {};
  return companies_.at(static_cast<std::size_t>(cboSelect_->currentIndex())).ID;
}

void frmImportaOGMAProg::showPreview() {
  const WaitCursor wait;
  auto plan = previewAccounting(session_, settings_, request_);
  lblSomme_->setText(toQt(trim(plan ? planTotals(*plan) : plan.error().what)));
  model_->show(plan ? std::move(*plan) : AccountingPlan());
  constexpr int widestColumn = 36;  // in characters; a long title would push the reason out of sight
  const int widest = widestColumn * fontMetrics().averageCharWidth();
  for (int i = 0; i < model_->columnCount() - 1; ++i) {  // the last one takes what is left
    grdAnteprima_->resizeColumnToContents(i);
    grdAnteprima_->setColumnWidth(i, std::min(grdAnteprima_->columnWidth(i), widest));
  }
}

}  // namespace kv
