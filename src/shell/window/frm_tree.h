#pragma once
// The tree of departments: the rows of the catalogue under the node of the shop. Departments are moved by dragging.

#include <QAbstractItemModel>
#include <QTreeView>
#include <string>
#include <unordered_map>
#include <vector>

#include "shell/workbench/workbench.h"

namespace kv {

class DepartmentModel final : public QAbstractItemModel {
  Q_OBJECT
 public:
  explicit DepartmentModel(Workbench& workbench, QObject* parent = nullptr);

  /// Takes over the tree of the workbench.
  void rebuild();
  void setTitle(const std::string& ID, const QString& title);
  QModelIndex indexOf(const std::string& ID) const;
  /// The key of a node; "###" for the root.
  std::string keyOf(const QModelIndex& index) const;

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
  void dropped(const std::string& key, const std::string& nuovoParent);

 private:
  struct Node {
    std::string key;
    QString title;
    std::size_t parent = 0;
    int row = 0;
    std::vector<std::size_t> children;
  };
  const Node& node(const QModelIndex& index) const { return nodes_[static_cast<std::size_t>(index.internalId())]; }

  Workbench& workbench_;
  std::vector<Node> nodes_;  ///< the root first
  std::unordered_map<std::string, std::size_t> places_;
};

class DepartmentView final : public QTreeView {
  Q_OBJECT
 public:
  explicit DepartmentView(Workbench& workbench, QWidget* parent = nullptr);

  /// Shows the tree anew; what was expanded stays so.
  void rebuild();
  void select(const std::string& ID);
  void expandTree(bool expanded);
  DepartmentModel& departments() { return *model_; }

 protected:
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  Workbench& workbench_;
  DepartmentModel* model_;
  QPoint pressedAt_;
  bool settling_ = false;
};

}  // namespace kv
