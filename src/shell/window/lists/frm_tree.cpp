#include "shell/window/lists/frm_tree.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QFontMetrics>
#include <QHeaderView>
#include <QMouseEvent>
#include <QTimer>
#include <algorithm>
#include <cstdlib>

#include "platform/qt/frm_dialog.h"
#include "shell/window/lists/frm_dragged.h"

namespace kv {
namespace {

constexpr int rowRoom = 8;     // pixels above and below the text together
constexpr int dragTwips = 45;  // a twip is the 1440th part of an inch

}  // namespace

DepartmentModel::DepartmentModel(Workbench& workbench, QObject* parent)
    : QAbstractItemModel(parent), workbench_(workbench) {
  nodes_.push_back({std::string(treeRoot), toQt(treeRootTitle), 0, 0, {}});
}

void DepartmentModel::rebuild() {
  beginResetModel();
  nodes_.clear();
  indexes_.clear();
  const std::vector<TreeNode>& rows = workbench_.sets().tree();
  nodes_.reserve(rows.size() + 1);
  nodes_.push_back({std::string(treeRoot), toQt(treeRootTitle), 0, 0, {}});
  indexes_[nodes_.front().key] = 0;
  for (const TreeNode& row : rows) {
    // A department under a parent that doesn't exist is shown under the root.
    const auto found = indexes_.find(row.genitore);
    const std::size_t parent = found == indexes_.end() ? 0 : found->second;
    const std::size_t index = nodes_.size();
    nodes_.push_back({row.ID, toQt(row.titolo), parent, static_cast<int>(nodes_[parent].children.size()), {}});
    nodes_[parent].children.push_back(index);
    indexes_[row.ID] = index;
  }
  endResetModel();
}

void DepartmentModel::setTitle(const std::string& ID, const QString& title) {
  const QModelIndex changed = indexOf(ID);
  if (!changed.isValid() || ID == treeRoot) return;
  nodes_[static_cast<std::size_t>(changed.internalId())].title = title;
  emit dataChanged(changed, changed, {Qt::DisplayRole});
}

QModelIndex DepartmentModel::indexOf(const std::string& ID) const {
  const auto found = indexes_.find(ID);
  if (found == indexes_.end()) return {};
  return createIndex(nodes_[found->second].row, 0, static_cast<quintptr>(found->second));
}

std::string DepartmentModel::keyOf(const QModelIndex& index) const {
  return index.isValid() ? node(index).key : std::string(treeRoot);
}

QModelIndex DepartmentModel::index(int row, int column, const QModelIndex& parent) const {
  if (column != 0 || row < 0) return {};
  if (!parent.isValid()) return row == 0 ? createIndex(0, 0, quintptr{0}) : QModelIndex();
  const auto& children = node(parent).children;
  const auto index = static_cast<std::size_t>(row);
  return index < children.size() ? createIndex(row, 0, static_cast<quintptr>(children[index])) : QModelIndex();
}

QModelIndex DepartmentModel::parent(const QModelIndex& child) const {
  if (!child.isValid() || child.internalId() == 0) return {};
  const std::size_t index = node(child).parent;
  return createIndex(nodes_[index].row, 0, static_cast<quintptr>(index));
}

int DepartmentModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? static_cast<int>(node(parent).children.size()) : 1;
}

int DepartmentModel::columnCount(const QModelIndex& /*parent*/) const { return 1; }

QVariant DepartmentModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) {
    return node(index).title.isEmpty() ? tr("(senza nome)") : node(index).title;
  }
  if (role == Qt::SizeHintRole) return QSize(0, QFontMetrics(QApplication::font()).height() + rowRoom);
  return {};
}

Qt::ItemFlags DepartmentModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const Qt::ItemFlags every = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDropEnabled;
  return index.internalId() == 0 ? every : every | Qt::ItemIsDragEnabled;
}

QStringList DepartmentModel::mimeTypes() const { return {departmentMime, articleMime}; }

DepartmentGroup DepartmentModel::departmentsAt(const QModelIndexList& indexes) const {
  std::vector<std::size_t> places;
  for (const QModelIndex& index : indexes) {
    if (index.isValid() && index.internalId() != 0) places.push_back(static_cast<std::size_t>(index.internalId()));
  }
  std::ranges::sort(places);  // the nodes are in the order of the tree
  DepartmentGroup group;
  for (const std::size_t place : places) group.push_back(nodes_[place].key);
  return group;
}

QMimeData* DepartmentModel::mimeData(const QModelIndexList& indexes) const {
  const DepartmentGroup group = departmentsAt(indexes);
  return group.empty() ? nullptr : draggedDepartments(group);
}

bool DepartmentModel::canDropMimeData(const QMimeData* data, Qt::DropAction action, int /*row*/, int /*column*/,
                                      const QModelIndex& parent) const {
  if (data == nullptr || action != Qt::MoveAction || !parent.isValid()) return false;
  if (data->hasFormat(articleMime)) return !articlesOf(*data).empty() && workbench_.canMoveArticles(keyOf(parent));
  const DepartmentGroup group = departmentsOf(*data);
  const auto canMove = [&](const std::string& key) { return workbench_.canMoveNode(key, keyOf(parent)); };
  return !group.empty() && std::ranges::all_of(group, canMove);
}

/// The move itself waits until the drag is over: it rebuilds tree and list, under the hands of who is dragging.
bool DepartmentModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                   const QModelIndex& parent) {
  if (!canDropMimeData(data, action, row, column, parent)) return false;
  const std::string target = keyOf(parent);
  if (const ArticleGroup group = articlesOf(*data); !group.empty()) {
    QTimer::singleShot(0, this, [this, group, target] { workbench_.SpostaInReparto(group, target); });
    return false;
  }
  QTimer::singleShot(0, this, [this, group = departmentsOf(*data), target] { workbench_.SpostaNodi(group, target); });
  return false;
}

DepartmentView::DepartmentView(Workbench& workbench, QWidget* parent)
    : QTreeView(parent), workbench_(workbench), model_(new DepartmentModel(workbench, this)) {
  setObjectName(QStringLiteral("treeReparti"));
  setAccessibleName(tr("Reparti"));
  setModel(model_);
  setHeaderHidden(true);
  setUniformRowHeights(true);
  setIndentation(fontMetrics().height() + 2);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setDragDropMode(QAbstractItemView::DragDrop);
  setDefaultDropAction(Qt::MoveAction);
  setDragDropOverwriteMode(true);
  setAutoExpandDelay(700);
}

void DepartmentView::rebuild() {
  std::vector<std::string> open;
  const std::vector<TreeNode>& rows = workbench_.sets().tree();
  for (const TreeNode& row : rows) {
    const QModelIndex index = model_->indexOf(row.ID);
    if (index.isValid() && isExpanded(index)) open.push_back(row.ID);
  }
  if (DepartmentGroup group = selected(); !group.empty()) kept_ = std::move(group);
  updating_ = true;
  model_->rebuild();
  expand(model_->indexOf(std::string(treeRoot)));
  for (const std::string& ID : open) expand(model_->indexOf(ID));
  updating_ = false;
}

void DepartmentView::select(const std::string& ID) {
  const QModelIndex index = model_->indexOf(ID);
  if (!index.isValid()) return;
  updating_ = true;
  // A click that adds a department to the selection has made it the current one already.
  if (index != currentIndex() || !selectionModel()->hasSelection()) setCurrentIndex(index);
  if (std::ranges::find(kept_, ID) != kept_.end()) {
    for (const std::string& each : kept_) {
      const QModelIndex also = model_->indexOf(each);
      if (also.isValid()) selectionModel()->select(also, QItemSelectionModel::Select);
    }
  }
  kept_.clear();
  scrollTo(index);
  updating_ = false;
}

DepartmentGroup DepartmentView::selected() const { return model_->departmentsAt(selectionModel()->selectedIndexes()); }

void DepartmentView::expandTree(bool expanded) {
  if (expanded) {
    expandAll();
  } else {
    collapseAll();
    expand(model_->indexOf(std::string(treeRoot)));
  }
  scrollTo(currentIndex());
}

/// The keys of another window of the program are those of another shop.
void DepartmentView::dragEnterEvent(QDragEnterEvent* event) {
  if (event->source() == nullptr) return event->ignore();
  QTreeView::dragEnterEvent(event);
}

void DepartmentView::mousePressEvent(QMouseEvent* event) {
  pressedAt_ = event->position().toPoint();
  QTreeView::mousePressEvent(event);
}

/// A drag begins by its own distance, the same on every desktop, along one axis.
void DepartmentView::mouseMoveEvent(QMouseEvent* event) {
  if (state() != DraggingState) return QTreeView::mouseMoveEvent(event);
  const QPoint moved = event->position().toPoint() - pressedAt_;
  const int limit = dragTwips * logicalDpiX() / 1440;
  if (std::abs(moved.x()) <= limit && std::abs(moved.y()) <= limit) return;
  startDrag(model_->supportedDragActions());
  setState(NoState);
  stopAutoScroll();
}

void DepartmentView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTreeView::currentChanged(current, previous);
  if (!updating_ && current.isValid()) workbench_.goToDepartment(model_->keyOf(current));
}

}  // namespace kv
