#include "shell/window/frm_articles_panel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>

#include "platform/qt/frm_dialog.h"
#include "shell/window/frm_articles_list.h"

namespace kv {
namespace {

ArticleArrangement::By orderOf(int column) {
  using enum ArticleArrangement::By;
  switch (column) {
    case ArticleModel::Code:
      return Code;
    case ArticleModel::Title:
      return Title;
    case ArticleModel::Price:
    case ArticleModel::Vat:
      return Price;
    default:
      return ShopOrder;
  }
}

}  // namespace

ArticlePanel::ArticlePanel(Workbench& workbench, QWidget* parent)
    : QWidget(parent),
      list_(new ArticleList(workbench, this)),
      txtFiltro_(named(new QLineEdit(this), "txtFiltro", "Filtra gli articoli")),
      cmdOrdine_(named(new QToolButton(this), "cmdOrdine", "Ordine del negozio")) {
  txtFiltro_->setPlaceholderText(tr("Filtra per codice o titolo"));
  txtFiltro_->setClearButtonEnabled(true);
  cmdOrdine_->setText(tr("Ordine del negozio"));
  cmdOrdine_->setToolTip(tr("Torna all'ordine in cui gli articoli compaiono nel negozio"));
  cmdOrdine_->setFocusPolicy(Qt::TabFocus);
  cmdOrdine_->hide();
  auto* strip = new QHBoxLayout;
  strip->addWidget(txtFiltro_, 1);
  strip->addWidget(cmdOrdine_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(4);
  column->addLayout(strip);
  column->addWidget(list_, 1);
  QHeaderView& head = *list_->horizontalHeader();
  head.setSectionsClickable(true);
  connect(&head, &QHeaderView::sectionClicked, this, &ArticlePanel::sortBy);
  connect(txtFiltro_, &QLineEdit::textChanged, this, &ArticlePanel::arrange);
  connect(cmdOrdine_, &QToolButton::clicked, this, [this] { sortBy(-1); });
}

void ArticlePanel::showAll() {
  column_ = -1;
  if (txtFiltro_->text().isEmpty()) return arrange();
  txtFiltro_->clear();
}

void ArticlePanel::sortBy(int column) {
  const bool again = column == column_ && column >= 0;
  column_ = again && descending_ ? -1 : column;
  descending_ = again && !descending_;
  arrange();
}

void ArticlePanel::arrange() {
  list_->arrange({orderOf(column_), descending_, fromQt(txtFiltro_->text())});
  QHeaderView& head = *list_->horizontalHeader();
  head.setSortIndicatorShown(column_ >= 0);
  if (column_ >= 0) head.setSortIndicator(column_, descending_ ? Qt::DescendingOrder : Qt::AscendingOrder);
  cmdOrdine_->setVisible(column_ >= 0);
}

}  // namespace kv
