#include "shell/sheet/frm_change_preview.h"

#include <QHeaderView>
#include <QTableView>
#include <algorithm>
#include <array>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_plain_tip.h"

namespace kv {
namespace {

enum PreviewColumn { PreviewArticle, PreviewField, PreviewBefore, PreviewAfter };
constexpr std::array<std::string_view, 4> previewHeadings{"Articolo", "Campo", "Prima", "Dopo"};
constexpr int previewRowPadding = 8;                 // pixels between two lines
constexpr std::array previewCharacters{36, 18, 24};  // the last column takes the rest

}  // namespace

ChangePreview::ChangePreview(Session& session, std::span<const SheetColumn> columns, QObject* parent)
    : QAbstractTableModel(parent), session_(session), columns_(columns) {}

void ChangePreview::show(std::vector<CellChange> changes) {
  beginResetModel();
  changes_ = std::move(changes);
  isTicked_.clear();
  for (const CellChange& one : changes_) isTicked_.push_back(one.why.empty());
  tickedCount_ = static_cast<std::size_t>(std::ranges::count(isTicked_, true));
  endResetModel();
  emit counted();
}

std::vector<CellChange> ChangePreview::ticked() const {
  std::vector<CellChange> chosen;
  for (std::size_t i = 0; i < changes_.size(); ++i) {
    if (isTicked_[i]) chosen.push_back(changes_[i]);
  }
  return chosen;
}

int ChangePreview::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(changes_.size());
}

int ChangePreview::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(previewHeadings.size());
}

QString ChangePreview::articleText(std::int64_t article) const {
  auto row = session_.catalogue.prepare("SELECT codice, titolo FROM articoli WHERE ID = ?1");
  if (!row) return {};
  row->bind(1, article);
  const auto found = row->step();
  if (!found || !*found) return {};
  const std::string code(row->text(0));
  return toQt(code.empty() ? std::string(row->text(1)) : code + " - " + std::string(row->text(1)));
}

QVariant ChangePreview::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const auto row = static_cast<std::size_t>(index.row());
  const CellChange& change = changes_[row];
  if (role == Qt::CheckStateRole && index.column() == PreviewArticle) {
    return isTicked_[row] ? Qt::Checked : Qt::Unchecked;
  }
  if (role == Qt::ToolTipRole) return plainTip(data(index, Qt::DisplayRole).toString());
  if (role != Qt::DisplayRole) return {};
  switch (index.column()) {
    case PreviewArticle:
      return articleText(change.article);
    case PreviewField:
      return toQt(columns_[change.column].heading);
    case PreviewBefore:
      return toQt(change.before);
    default:
      return toQt(change.why.empty() ? change.after : change.why);
  }
}

bool ChangePreview::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::CheckStateRole) return false;
  const bool on = value.toInt() == Qt::Checked;
  const auto row = static_cast<std::size_t>(index.row());
  if (isTicked_[row] == on) return true;
  isTicked_[row] = on;
  tickedCount_ += on ? 1 : std::size_t(-1);
  emit dataChanged(index, index);
  emit counted();
  return true;
}

QVariant ChangePreview::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal || section >= columnCount()) return {};
  return toQt(previewHeadings[static_cast<std::size_t>(section)]);
}

Qt::ItemFlags ChangePreview::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const Qt::ItemFlags every = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  const bool canChange = changes_[static_cast<std::size_t>(index.row())].why.empty();
  return canChange && index.column() == PreviewArticle ? every | Qt::ItemIsUserCheckable : every;
}

QTableView* makePreviewTable(ChangePreview& preview) {
  auto* table = named(new QTableView(), "lstAnteprima", "Anteprima");
  table->setModel(&preview);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->setTabKeyNavigation(false);
  table->setWordWrap(false);
  table->verticalHeader()->hide();
  table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().lineSpacing() + previewRowPadding);
  table->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
  table->horizontalHeader()->setStretchLastSection(true);
  const int character = table->fontMetrics().averageCharWidth();
  for (std::size_t i = 0; i < previewCharacters.size(); ++i) {
    table->setColumnWidth(static_cast<int>(i), character * previewCharacters.at(i));
  }
  return table;
}

}  // namespace kv
