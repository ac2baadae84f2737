#include "commerce/settings/frm_requisiti.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace kv {

frmRequisiti::frmRequisiti(std::vector<LegalDuty> duties, HelpOpener help, QWidget* parent)
    : FormDialog(legalTitle, parent), duties_(std::move(duties)) {
  grdRequisiti_ = named(new QTableWidget(static_cast<int>(duties_.size()), 2), "grdRequisiti");
  grdRequisiti_->setHorizontalHeaderLabels({toQt("Requisito"), toQt("Stato")});
  grdRequisiti_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  grdRequisiti_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
  grdRequisiti_->verticalHeader()->hide();
  grdRequisiti_->setTabKeyNavigation(false);
  grdRequisiti_->setSelectionBehavior(QAbstractItemView::SelectRows);
  grdRequisiti_->setSelectionMode(QAbstractItemView::SingleSelection);
  grdRequisiti_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  lblTesto_ = named(wrappedText({}), "lblTesto");
  lblTesto_->setMinimumHeight(2 * fontMetrics().lineSpacing());
  QDialogButtonBox* buttons = makeClose();
  cmdVai_ = named(buttons->addButton(toQt("&Vai al campo"), QDialogButtonBox::ActionRole), "cmdVai");
  addHelp(buttons, std::move(help), "pagine/leggi.htm");
  auto* column = new QVBoxLayout(this);
  column->addWidget(labelFor(legalSummary(duties_), grdRequisiti_));
  column->addWidget(grdRequisiti_, 1);
  column->addWidget(lblTesto_);
  column->addWidget(buttons);
  connect(grdRequisiti_, &QTableWidget::currentCellChanged, this, &frmRequisiti::showDuty);
  connect(grdRequisiti_, &QTableWidget::cellActivated, this, &frmRequisiti::goThere);
  connect(cmdVai_, &QPushButton::clicked, this, &frmRequisiti::goThere);
  fill();
  sizeInCharacters(84, 28);
}

void frmRequisiti::fill() {
  for (std::size_t i = 0; i < duties_.size(); ++i) {
    const int row = static_cast<int>(i);
    grdRequisiti_->setItem(row, 0, new QTableWidgetItem(toQt(duties_[i].title)));
    grdRequisiti_->setItem(row, 1, new QTableWidgetItem(toQt(dutyStateName(duties_[i].state))));
  }
  const auto open = std::ranges::find_if(duties_, [](const LegalDuty& duty) { return duty.state != DutyState::Met; });
  grdRequisiti_->setCurrentCell(open == duties_.end() ? 0 : static_cast<int>(open - duties_.begin()), 0);
  showDuty();
}

void frmRequisiti::showDuty() {
  const int row = grdRequisiti_->currentRow();
  const bool any = row >= 0;
  lblTesto_->setText(any ? toQt(duties_[static_cast<std::size_t>(row)].text) : QString());
  cmdVai_->setEnabled(any && duties_[static_cast<std::size_t>(row)].target.subject != DutySubject::Nothing);
}

void frmRequisiti::goThere() {
  if (!cmdVai_->isEnabled()) return;
  chosen_ = duties_[static_cast<std::size_t>(grdRequisiti_->currentRow())].target;
  finish("OK");
}

}  // namespace kv
