#include "import/accounting/frm_importa_ogma_prog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

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
  txtAnteprima_ = named(new QPlainTextEdit(), "txtAnteprima");
  txtAnteprima_->setReadOnly(true);
  txtAnteprima_->setTabChangesFocus(true);
  // The first column holds words such as "tralasciato", in a font of any size.
  const QString widest = QStringLiteral("tralasciato  ");
  txtAnteprima_->setTabStopDistance(txtAnteprima_->fontMetrics().horizontalAdvance(widest));
  column->addWidget(labelFor("&Anteprima:", txtAnteprima_));
  column->addWidget(txtAnteprima_, 1);
  QDialogButtonBox* buttons = makeButtons("Importa");
  connect(buttons, &QDialogButtonBox::accepted, this, [this] { finish("OK" + company()); });
  column->addWidget(buttons);
  showPreview();
  sizeInCharacters(90, 30);
}

std::string frmImportaOGMAProg::company() const {
  if (cboSelect_ == nullptr || cboSelect_->currentIndex() < 0) return {};
  return companies_.at(static_cast<std::size_t>(cboSelect_->currentIndex())).ID;
}

void frmImportaOGMAProg::showPreview() {
  const WaitCursor wait;
  txtAnteprima_->setPlainText(toQt(accountingPreviewText(session_, settings_, request_)));
}

}  // namespace kv
