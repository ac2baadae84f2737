#include "shell/window/frm_articles_list.h"
#include "platform/database/recordset.h"

#include <QHeaderView>
#include <QPainter>
#include <algorithm>

#include "platform/qt/frm_dialog.h"
#include "shell/workbench/fields/field_rules.h"
#include "shell/workbench/fields/vat_price.h"

namespace kv {

ArticleModel::ArticleModel(Workbench& workbench, QObject* parent)
    : QAbstractTableModel(parent), workbench_(workbench), rows_(workbench.sets()) {}

void ArticleModel::rebuild() {
  beginResetModel();
  previewRow_ = -1;
  rows_.refresh(workbench_.listino());
  endResetModel();
}

void ArticleModel::refresh() {
  previewRow_ = -1;
  rows_.forget();
  if (rows_.size() > 0) emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

void ArticleModel::preview(int row, Column column, const QString& text) {
  previewRow_ = row;
  previewColumn_ = column;
  previewText_ = text;
  if (row >= 0 && row < rowCount()) emit dataChanged(index(row, column), index(row, column));
}

int ArticleModel::rowOf(std::int64_t ID) const {
  const auto row = rows_.indexOf(ID);
  return row ? static_cast<int>(*row) : -1;
}

int ArticleModel::currentRow() const {
  const CatalogueSets& sets = workbench_.sets();
  if (!sets.onArticle()) return -1;
  if (rows_.arrangement().isPlain()) return static_cast<int>(workbench_.sets().dataArticoli().position());
  return rowOf(sets.article());
}

int ArticleModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ArticleModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant ArticleModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::TextAlignmentRole && index.column() >= Price) return int{Qt::AlignRight | Qt::AlignVCenter};
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  if (index.row() == previewRow_ && index.column() == previewColumn_) return previewText_;
  const ArticleRow& row = rows_.at(static_cast<std::size_t>(index.row()));
  switch (index.column()) {
    case Code:
      return toQt(row.codice);
    case Title:
      return toQt(row.titolo);
    case Vat:
      return toQt(shownNumber(priceWithVat(row.prezzo, vatOfDepartment()), workbench_.decimalSeparator()));
    default:
      return row.prezzo.empty() ? QString() : toQt(shownNumber(row.prezzo, workbench_.decimalSeparator()));
  }
}

std::string ArticleModel::vatOfDepartment() const {
  CatalogueSets& sets = workbench_.sets();
  return sets.onDepartment() ? asText(sets.dataCategorie().get("iva")) : std::string();
}

QVariant ArticleModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  switch (section) {
    case Code:
      return tr("Codice");
    case Title:
      return tr("Titolo");
    case Vat:
      return tr("Con IVA");
    default:
      return tr("Prezzo");
  }
}

ArticleList::ArticleList(Workbench& workbench, QWidget* parent)
    : QTableView(parent), workbench_(workbench), model_(new ArticleModel(workbench, this)) {
  setObjectName(QStringLiteral("lstArticoli"));
  setAccessibleName(tr("Articoli del reparto"));
  setModel(model_);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setTabKeyNavigation(false);
  setShowGrid(false);
  setAlternatingRowColors(true);
  setWordWrap(false);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
  horizontalHeader()->setSectionResizeMode(ArticleModel::Title, QHeaderView::Stretch);
  const int letter = fontMetrics().averageCharWidth();
  setColumnWidth(ArticleModel::Code, letter * 10);
  setColumnWidth(ArticleModel::Price, letter * 10);
  setColumnWidth(ArticleModel::Vat, letter * 10);
}

void ArticleList::rebuild() {
  const std::vector<std::int64_t> group = selected();
  updating_ = true;
  model_->rebuild();
  updating_ = false;
  selectCurrent();
  selectGroup(group);
}

/// Several articles that were moved or marked stay selected.
void ArticleList::selectGroup(const std::vector<std::int64_t>& group) {
  constexpr std::size_t most = 1000;  // each is looked for in the whole list
  if (group.size() < 2 || group.size() > most) return;
  if (std::ranges::find(group, workbench_.sets().article()) == group.end()) return;
  for (const std::int64_t ID : group) {
    const int row = model_->rowOf(ID);
    if (row < 0) continue;
    selectionModel()->select(model_->index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
}

void ArticleList::selectCurrent() {
  const int row = model_->currentRow();
  updating_ = true;
  if (row < 0) {
    setCurrentIndex({});
    clearSelection();
  } else if (row != currentIndex().row() || !selectionModel()->hasSelection()) {
    setCurrentIndex(model_->index(row, 0));
  }
  if (row >= 0) scrollTo(model_->index(row, 0));
  updating_ = false;
}

void ArticleList::arrange(ArticleArrangement arrangement) {
  model_->arrange(std::move(arrangement));
  rebuild();
}

std::vector<std::int64_t> ArticleList::selected() const {
  QModelIndexList rows = selectionModel()->selectedRows();
  std::ranges::sort(rows, {}, &QModelIndex::row);
  std::vector<std::int64_t> articles;
  for (const QModelIndex& index : rows) articles.push_back(model_->articleAt(index.row()));
  return articles;
}

/// An empty list says why it is, and what to do.
void ArticleList::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (model_->rowCount() > 0 || !workbench_.isOpen()) return;
  const ArticleArrangement& arrangement = model_->arrangement();
  const QString text = arrangement.untranslated && arrangement.filter.empty()
                           ? tr("Tutti gli articoli di questo reparto hanno un titolo in questa lingua.")
                       : arrangement.isFiltered() ? tr("Nessun articolo corrisponde al filtro.")
                       : workbench_.sets().onDepartment()
                           ? tr("Questo reparto non ha articoli.\nCtrl+I ne aggiunge uno.")
                           : tr("Scegli un reparto per vederne gli articoli.");
  QPainter painter(viewport());
  painter.setPen(palette().color(QPalette::PlaceholderText));
  constexpr int margin = 12;
  painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin), Qt::AlignCenter | Qt::TextWordWrap,
                   text);
}

void ArticleList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTableView::currentChanged(current, previous);
  if (!updating_ && current.isValid()) workbench_.goToArticle(model_->articleAt(current.row()));
}

}  // namespace kv
