#include "shell/window/frm_articles_list.h"
#include "platform/database/recordset.h"

#include <QHeaderView>
#include <QPainter>

#include "platform/qt/frm_dialog.h"
#include "shell/workbench/fields/field_rules.h"

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

int ArticleModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ArticleModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant ArticleModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::TextAlignmentRole && index.column() == Price) return int{Qt::AlignRight | Qt::AlignVCenter};
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  if (index.row() == previewRow_ && index.column() == previewColumn_) return previewText_;
  const ArticleRow& row = rows_.at(static_cast<std::size_t>(index.row()));
  switch (index.column()) {
    case Code:
      return toQt(row.codice);
    case Title:
      return toQt(row.titolo);
    default:
      return row.prezzo.empty() ? QString() : toQt(shownNumber(row.prezzo, workbench_.decimalSeparator()));
  }
}

QVariant ArticleModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  switch (section) {
    case Code:
      return tr("Codice");
    case Title:
      return tr("Titolo");
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
  setSelectionMode(QAbstractItemView::SingleSelection);
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
  setColumnWidth(ArticleModel::Code, letter * 12);
  setColumnWidth(ArticleModel::Price, letter * 11);
}

void ArticleList::rebuild() {
  updating_ = true;
  model_->rebuild();
  updating_ = false;
  selectCurrent();
}

void ArticleList::selectCurrent() {
  CatalogueSets& sets = workbench_.sets();
  updating_ = true;
  if (sets.onArticle()) {
    const QModelIndex index = model_->index(static_cast<int>(sets.dataArticoli().position()), 0);
    setCurrentIndex(index);
    scrollTo(index);
  } else {
    setCurrentIndex({});
    clearSelection();
  }
  updating_ = false;
}

/// An empty list says why it is, and what to do.
void ArticleList::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (model_->rowCount() > 0 || !workbench_.isOpen()) return;
  const QString text = workbench_.sets().onDepartment() ? tr("Questo reparto non ha articoli.\nCtrl+I ne aggiunge uno.")
                                                        : tr("Scegli un reparto per vederne gli articoli.");
  QPainter painter(viewport());
  painter.setPen(palette().color(QPalette::PlaceholderText));
  constexpr int margin = 12;
  painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin), Qt::AlignCenter | Qt::TextWordWrap,
                   text);
}

void ArticleList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTableView::currentChanged(current, previous);
  if (!updating_ && current.isValid()) workbench_.goToArticleAt(static_cast<std::size_t>(current.row()));
}

}  // namespace kv
