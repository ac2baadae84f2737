#include "shell/window/lists/frm_articles_list.h"
#include "platform/database/recordset.h"

#include <QApplication>
#include <QHeaderView>
#include <QPainter>
#include <algorithm>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_plain_tip.h"
#include "shell/window/fields/frm_cell.h"
#include "shell/window/lists/frm_dragged.h"
#include "shell/workbench/fields/field_rules.h"
#include "shell/workbench/fields/vat_price.h"

namespace kv {
namespace {

const ArticleColumn& columnFacts(int column) { return articleColumns()[static_cast<std::size_t>(column)]; }

}  // namespace

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
  if (role == Qt::TextAlignmentRole) {
    const bool isNumber = columnFacts(index.column()).isNumber;
    return isNumber ? QVariant(int{Qt::AlignRight | Qt::AlignVCenter}) : QVariant();
  }
  if (role == Qt::ForegroundRole) return isBorrowed(index) ? QApplication::palette().placeholderText() : QVariant();
  if (role == Qt::ToolTipRole) return plainTip(data(index, Qt::DisplayRole).toString());
  if (role != Qt::DisplayRole) return {};
  if (index.row() == previewRow_ && index.column() == previewColumn_) return previewText_;
  return textOf(rows_.at(static_cast<std::size_t>(index.row())), static_cast<Column>(index.column()));
}

bool ArticleModel::isBorrowed(const QModelIndex& index) const {
  const bool isTyped = index.row() == previewRow_ && index.column() == previewColumn_;
  return index.column() == Title && !isTyped && !rows_.at(static_cast<std::size_t>(index.row())).primo.empty();
}

QString ArticleModel::textOf(const ArticleRow& row, Column column) const {
  if (column == Showcase) return row.inelenco ? tr("Sì") : QString();
  if (column == Title && !row.primo.empty()) return toQt(row.primo);
  const ArticleColumn& facts = columnFacts(column);
  const std::string text = column == Vat ? priceWithVat(row.prezzo, vatOfDepartment()) : row.*facts.text;
  return toQt(facts.isNumber && !text.empty() ? shownNumber(text, workbench_.decimalSeparator()) : text);
}

Qt::ItemFlags ArticleModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const Qt::ItemFlags every = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
  return columnFacts(index.column()).edits.empty() ? every : every | Qt::ItemIsEditable;
}

QStringList ArticleModel::mimeTypes() const { return {articleMime}; }

QMimeData* ArticleModel::mimeData(const QModelIndexList& indexes) const {
  std::vector<int> rows;
  for (const QModelIndex& index : indexes) rows.push_back(index.row());
  std::ranges::sort(rows);
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  ArticleGroup group;
  for (const int row : rows) group.push_back(articleAt(row));
  return group.empty() ? nullptr : draggedArticles(group);
}

std::string ArticleModel::vatOfDepartment() const {
  CatalogueSets& sets = workbench_.sets();
  return sets.onDepartment() ? asText(sets.dataCategorie().get("iva")) : std::string();
}

QVariant ArticleModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= ColumnCount) return {};
  return toQt(columnFacts(section).heading);
}

ArticleList::ArticleList(Workbench& workbench, QWidget* parent)
    : QTableView(parent),
      workbench_(workbench),
      model_(new ArticleModel(workbench, this)),
      cells_(new ArticleCells(workbench, this)) {
  setObjectName(QStringLiteral("lstArticoli"));
  setAccessibleName(tr("Articoli del reparto"));
  setModel(model_);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setItemDelegate(cells_);
  connect(cells_, &ArticleCells::typed, this, &ArticleList::cellTyped);
  setEditTriggers(QAbstractItemView::DoubleClicked);
  setDragDropMode(QAbstractItemView::DragOnly);
  setDragDropOverwriteMode(false);
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
  const int characterWidth = fontMetrics().averageCharWidth();
  for (int column = 0; column < ArticleModel::ColumnCount; ++column) {
    if (column != ArticleModel::Title) setColumnWidth(column, characterWidth * 10);
  }
  showColumns(shownColumns({}));
}

void ArticleList::showColumns(const ShownColumns& shown) {
  for (int column = 0; column < ArticleModel::ColumnCount; ++column) {
    setColumnHidden(column, !shown[static_cast<std::size_t>(column)]);
  }
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
    setCurrentIndex(model_->index(row, currentIndex().isValid() ? currentIndex().column() : ArticleModel::Title));
  }
  if (row >= 0) scrollTo(model_->index(row, ArticleModel::Title));
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

bool ArticleList::isUnsaved() const { return cells_->isUnsaved(); }

bool ArticleList::finishEdit() {
  QWidget* cell = cells_->cell();
  if (cell == nullptr) return true;
  commitData(cell);
  if (cells_->isUnsaved()) return false;
  closeEditor(cell, QAbstractItemDelegate::NoHint);
  return true;
}

void ArticleList::editCell() {
  const int column = currentIndex().isValid() ? currentIndex().column() : ArticleModel::Title;
  const bool canType = !columnFacts(column).edits.empty() && !isColumnHidden(column);
  editCell(canType ? static_cast<ArticleModel::Column>(column) : ArticleModel::Title);
}

void ArticleList::editCell(ArticleModel::Column column) {
  const QModelIndex cell = model_->index(model_->currentRow(), column);
  if (!cell.isValid() || isColumnHidden(column)) return;
  selectionModel()->setCurrentIndex(cell, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  QTableView::edit(cell);
}

bool ArticleList::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
  const bool isCurrent = index.isValid() && model_->articleAt(index.row()) == workbench_.sets().article();
  return isCurrent && QTableView::edit(index, trigger, event);
}

QModelIndex ArticleList::nextCell(const QModelIndex& from, int step) const {
  const int cells = model_->rowCount() * ArticleModel::ColumnCount;
  for (int cell = from.row() * ArticleModel::ColumnCount + from.column() + step; cell >= 0 && cell < cells;
       cell += step) {
    const int column = cell % ArticleModel::ColumnCount;
    if (columnFacts(column).edits.empty() || isColumnHidden(column)) continue;
    return model_->index(cell / ArticleModel::ColumnCount, column);
  }
  return {};
}

void ArticleList::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  using enum QAbstractItemDelegate::EndEditHint;
  if (hint == RevertModelCache) {
    cells_->giveUp();
  } else if (cells_->isUnsaved() || (hint != NoHint && cells_->isRefused())) {
    return;
  }
  const QModelIndex from = currentIndex();
  QTableView::closeEditor(editor, NoHint);
  if (hint != EditNextItem && hint != EditPreviousItem) return;
  const QModelIndex next = nextCell(from, hint == EditNextItem ? 1 : -1);
  if (!next.isValid()) return;
  setCurrentIndex(next);
  QTableView::edit(next);
}

}  // namespace kv
