#include "shell/window/lists/frm_articles_panel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

#include "platform/qt/frm_dialog.h"
#include "shell/window/lists/frm_articles_list.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

constexpr std::string_view columnSection = "Finestra";
constexpr std::string_view columnKey = "colonne";

ArticleArrangement::By orderOf(int column) {
  if (column < 0) return ArticleArrangement::By::ShopOrder;
  return articleColumns()[static_cast<std::size_t>(column)].by;
}

}  // namespace

ArticlePanel::ArticlePanel(Workbench& workbench, QWidget* parent)
    : QWidget(parent),
      workbench_(workbench),
      list_(new ArticleList(workbench, this)),
      cmdDaTradurre_(named(new QToolButton(this), "cmdDaTradurre", "Da tradurre")),
      txtFiltro_(named(new QLineEdit(this), "txtFiltro", "Filtra gli articoli")),
      cmdOrdine_(named(new QToolButton(this), "cmdOrdine", "Ordine del negozio")),
      columns_(named(new QMenu(tr("Colonne"), this), "menuColonne")) {
  txtFiltro_->setPlaceholderText(tr("Filtra per codice o titolo"));
  txtFiltro_->setClearButtonEnabled(true);
  cmdOrdine_->setText(tr("Ordine del negozio"));
  cmdOrdine_->setToolTip(tr("Torna all'ordine in cui gli articoli compaiono nel negozio"));
  cmdOrdine_->setFocusPolicy(Qt::TabFocus);
  cmdOrdine_->hide();
  cmdDaTradurre_->setText(tr("Da tradurre"));
  cmdDaTradurre_->setToolTip(tr("Mostra soltanto gli articoli senza titolo nella lingua che si sta modificando"));
  cmdDaTradurre_->setCheckable(true);
  cmdDaTradurre_->setFocusPolicy(Qt::TabFocus);
  cmdDaTradurre_->hide();
  auto* strip = new QHBoxLayout;
  auto* label = new QLabel(tr("Filtra:"), this);
  label->setBuddy(txtFiltro_);
  strip->addWidget(label);
  strip->addWidget(txtFiltro_, 1);
  strip->addWidget(cmdDaTradurre_);
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
  connect(cmdDaTradurre_, &QToolButton::toggled, this, &ArticlePanel::arrange);
  connect(&list_->articles(), &QAbstractItemModel::modelReset, this, &ArticlePanel::offerLanguages);
  connect(cmdOrdine_, &QToolButton::clicked, this, [this] { sortBy(-1); });
  makeColumnMenu();
  head.setContextMenuPolicy(Qt::CustomContextMenu);
  connect(&head, &QWidget::customContextMenuRequested, columns_,
          [this, &head](QPoint at) { columns_->popup(head.mapToGlobal(at)); });
}

void ArticlePanel::makeColumnMenu() {
  for (const ArticleColumn& column : articleColumns()) {
    QAction* entry = columns_->addAction(toQt(column.heading));
    entry->setCheckable(true);
    entry->setChecked(column.isUsual);
    entry->setEnabled(column.name != articleColumns()[ArticleModel::Title].name);
    connect(entry, &QAction::triggered, this, &ArticlePanel::chooseColumns);
  }
}

void ArticlePanel::restoreColumns() {
  const ShownColumns shown = shownColumns(workbench_.env().settings.get(columnSection, columnKey));
  for (std::size_t i = 0; i < shown.size(); ++i) columns_->actions()[static_cast<int>(i)]->setChecked(shown[i]);
  list_->showColumns(shown);
}

void ArticlePanel::chooseColumns() {
  ShownColumns shown{};
  for (std::size_t i = 0; i < shown.size(); ++i) shown[i] = columns_->actions()[static_cast<int>(i)]->isChecked();
  list_->showColumns(shown);
  // An order that nobody sees any more would puzzle.
  if (column_ >= 0 && !shown[static_cast<std::size_t>(column_)]) sortBy(-1);
  ignore(workbench_.env().settings.set(columnSection, columnKey, storedColumns(shown)),
         "the columns of before show at the next start");
}

void ArticlePanel::offerLanguages() {
  const bool offered = workbench_.isOpen() && workbench_.session().languageCount > 1;
  cmdDaTradurre_->setVisible(offered);
  // A shop that has one language left shows all its articles again; the list is being filled just now.
  if (!offered && cmdDaTradurre_->isChecked()) {
    QMetaObject::invokeMethod(
        cmdDaTradurre_, [this] { cmdDaTradurre_->setChecked(false); }, Qt::QueuedConnection);
  }
}

void ArticlePanel::showAll() {
  column_ = -1;
  cmdDaTradurre_->setChecked(false);
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
  list_->arrange({orderOf(column_), descending_, fromQt(txtFiltro_->text()), cmdDaTradurre_->isChecked()});
  QHeaderView& head = *list_->horizontalHeader();
  head.setSortIndicatorShown(column_ >= 0);
  if (column_ >= 0) head.setSortIndicator(column_, descending_ ? Qt::DescendingOrder : Qt::AscendingOrder);
  cmdOrdine_->setVisible(column_ >= 0);
}

}  // namespace kv
