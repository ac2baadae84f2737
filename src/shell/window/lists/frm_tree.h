#pragma once
// The tree of departments: the rows of the catalogue under the node of the shop. Departments are moved by dragging, and
// articles of the list by a drop on a department.

#include <QAbstractItemModel>
#include <QTreeView>
#include <string>
#include <unordered_map>
#include <vector>

#include "shell/workbench/workbench.h"

namespace kv {

/// The departments as nodes under one root. A node is identified by the ID of its department, the root by "###".
/// A department whose parent doesn't exist is shown under the root. The model changes no row of the catalogue; a drop
/// is handed to the workbench.
class DepartmentModel final : public QAbstractItemModel {
  Q_OBJECT
 public:
  /// The workbench outlives the model, which has the root alone until the first rebuild().
  explicit DepartmentModel(Workbench& workbench, QObject* parent = nullptr);

  /// Takes over the tree of the workbench.
  /// Called when departments or their order changed. All QModelIndex of before are invalid then; the view restores what
  /// was expanded.
  void rebuild();
  /// Shows another title at a department; nothing for an ID that isn't there.
  /// Called while a title is being typed; nothing is stored. The title of the root stays.
  void setTitle(const std::string& ID, const QString& title);
  /// The node of a department; the root for "###", an invalid index for an unknown ID.
  /// It holds until the next rebuild().
  QModelIndex indexOf(const std::string& ID) const;
  /// The key of a node; "###" for the root.
  std::string keyOf(const QModelIndex& index) const;

  /// The departments at some nodes, in the order of the tree, without the root.
  DepartmentGroup departmentsAt(const QModelIndexList& indexes) const;

  // QAbstractItemModel. What is dragged is the keys of nodes, as a mime type of their own.
  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  /// The title, "(senza nome)" for an empty one, and a row height of the font's height and eight pixels.
  QVariant data(const QModelIndex& index, int role) const override;
  /// Every node takes a drop; every node but the root can be dragged.
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QStringList mimeTypes() const override;
  QMimeData* mimeData(const QModelIndexList& indexes) const override;
  Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
  /// Whether the workbench allows the move: a department not onto itself or a descendant, articles not onto the root or
  /// the department that they are in.
  bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                       const QModelIndex& parent) const override;
  /// Has the workbench move what is dropped, once the drag has ended. Always false, so that no view removes a row: the
  /// rows change when they are read again after the move.
  bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                    const QModelIndex& parent) override;

 private:
  /// A node by its index in nodes_, which is also the internal id of its QModelIndex.
  struct Node {
    std::string key;                    ///< ID of the department; "###" for the root
    QString title;                      ///< as shown, which may be one being typed
    std::size_t parent = 0;             ///< index in nodes_
    int row = 0;                        ///< among its siblings
    std::vector<std::size_t> children;  ///< indexes in nodes_, in the order shown
  };
  const Node& node(const QModelIndex& index) const { return nodes_[static_cast<std::size_t>(index.internalId())]; }

  Workbench& workbench_;
  std::vector<Node> nodes_;                               ///< the root first
  std::unordered_map<std::string, std::size_t> indexes_;  ///< index in nodes_ by key
};

/// The tree on the screen. Moving the selection moves the department cursor of the workbench.
/// Titles are edited on the page of the department, not in the tree.
class DepartmentView final : public QTreeView {
  Q_OBJECT
 public:
  /// The workbench outlives the view, which starts empty.
  explicit DepartmentView(Workbench& workbench, QWidget* parent = nullptr);

  /// Shows the tree again; what was expanded stays so.
  /// The root is expanded. The workbench selects the current department next; where that was one of several that were
  /// selected, they are again.
  void rebuild();
  /// Selects the node of a department and scrolls to it, without moving the cursor of the workbench.
  /// "###" selects the root; an unknown ID changes nothing.
  void select(const std::string& ID);
  /// The departments that are selected, in the order of the tree, without the root.
  DepartmentGroup selected() const;
  /// Expands every node, or collapses every one but the root.
  /// The selected node stays in view.
  void expandTree(bool expanded);
  /// Owned by the view, for titles that are being typed.
  DepartmentModel& departments() { return *model_; }

 protected:
  /// Hands the node that the user went to to the workbench, which saves what is being typed first.
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  /// Takes what comes from this window alone.
  void dragEnterEvent(QDragEnterEvent* event) override;
  /// Remembers where a drag may begin.
  void mousePressEvent(QMouseEvent* event) override;
  /// Begins a drag after 45 twips (1/32 inch) along one axis, the same on every desktop.
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  Workbench& workbench_;
  DepartmentModel* model_;
  DepartmentGroup kept_;   ///< selected before the rebuild
  QPoint pressedAt_;       ///< where a drag may begin
  bool updating_ = false;  ///< the selection follows the workbench
};

}  // namespace kv
