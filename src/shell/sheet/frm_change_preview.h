#pragma once
// The preview of a change of many cells: a row for each, with its old and new text and a box that leaves it out.

#include <QAbstractTableModel>
#include <vector>

#include "shell/sheet/sheet_edits.h"

class QTableView;

namespace kv {

class ChangePreview final : public QAbstractTableModel {
  Q_OBJECT
 public:
  /// `columns` and the session outlive it.
  ChangePreview(Session& session, std::span<const SheetColumn> columns, QObject* parent);

  /// Shows changes, all of them ticked that can be made.
  void show(std::vector<CellChange> changes);
  /// The changes whose box is ticked.
  std::vector<CellChange> ticked() const;
  /// How many boxes are ticked, and how many changes there are.
  std::size_t tickedCount() const { return tickedCount_; }
  std::size_t size() const { return changes_.size(); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 signals:
  /// A box was ticked or cleared, or other changes are shown.
  void counted();

 private:
  QString articleText(std::int64_t article) const;

  Session& session_;
  std::span<const SheetColumn> columns_;
  std::vector<CellChange> changes_;
  std::vector<bool> isTicked_;
  std::size_t tickedCount_ = 0;
};

/// A table that shows a preview.
QTableView* makePreviewTable(ChangePreview& preview);

}  // namespace kv
