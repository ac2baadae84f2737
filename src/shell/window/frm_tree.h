#pragma once
// The tree of departments: the rows of the catalogue under the node of the shop. Departments are moved by dragging.

#include <QAbstractItemModel>
#include <QTreeView>
#include <string>
#include <unordered_map>
#include <vector>

#include "shell/workbench/workbench.h"

namespace kv {

/// The departments as nodes under one root. A node is identified by the ID of its department, the root by "###".
class DepartmentModel final : public QAbstractItemModel {
  Q_OBJECT
 public:
  explicit DepartmentModel(Workbench& workbench, QObject* parent = nullptr);

  /// Takes over the tree of the workbench.
  void rebuild();
  /// Shows another title at a department; nothing for an ID that isn't there.
  void setTitle(const std::string& ID, const QString& title);
  /// The node of a department; the root for "###", an invalid index for an unknown ID.
  QModelIndex indexOf(const std::string& ID) const;
  /// The key of a node; "###" for the root.
  std::string keyOf(const QModelIndex& index) const;

  // QAbstractItemModel. What is dragged is the key of a node, as a mime type of its own.
  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QStringList mimeTypes() const override;
  QMimeData* mimeData(const QModelIndexList& indexes) const override;
  Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
  bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                       const QModelIndex& parent) const override;
  bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                    const QModelIndex& parent) override;

 signals:
  /// A department was dropped on another or on the root; the workbench moves it.
  void dropped(const std::string& key, const std::string& nuovoParent);

 private:
  /// A node by its index in nodes_, which is also the internal id of its QModelIndex.
  struct Node {
    std::string key;
    QString title;
    std::size_t parent = 0;  ///< index in nodes_
    int row = 0;             ///< among its siblings
    std::vector<std::size_t> children;
  };
  const Node& node(const QModelIndex& index) const { return nodes_[static_cast<std::size_t>(index.internalId())]; }

  Workbench& workbench_;
  std::vector<Node> nodes_;  ///< the root first
  std::unordered_map<std::string, std::size_t> places_;
};

/// The tree on the screen. Moving the selection moves the department cursor of the workbench.
class DepartmentView final : public QTreeView {
  Q_OBJECT
 public:
  explicit DepartmentView(Workbench& workbench, QWidget* parent = nullptr);

  /// Shows the tree again; what was expanded stays so.
  void rebuild();
  /// Selects the node of a department and scrolls to it, without moving the cursor of the workbench.
  void select(const std::string& ID);
  /// Expands every node, or collapses every one but the root.
  void expandTree(bool expanded);
  DepartmentModel& departments() { return *model_; }

 protected:
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  Workbench& workbench_;
  DepartmentModel* model_;
  QPoint pressedAt_;       ///< where a drag may begin
  bool updating_ = false;  ///< the selection follows the workbench
};

}  // namespace kv
