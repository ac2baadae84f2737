#pragma once
// The sheet on the screen: its rows as a table of Qt, and the cells that are typed in.

#include <QAbstractTableModel>
#include <QStyledItemDelegate>
#include <functional>
#include <vector>

#include "shell/sheet/sheet_edits.h"
#include "shell/sheet/sheet_rows.h"

namespace kv {

/// The rows that the filter lets through, in the columns that were chosen. It writes nothing: what is typed goes to
/// `typed`.
class SheetModel final : public QAbstractTableModel {
 public:
  /// `columns` and the session outlive it.
  SheetModel(Session& session, std::span<const SheetColumn> columns, char decimalSeparator, QObject* parent);

  /// Called with a cell and the text that it was left with.
  std::function<void(const CellText&)> typed;

  /// Shows these columns, as indexes of all columns, from left to right.
  void showColumns(std::vector<std::size_t> shown);
  const std::vector<std::size_t>& shownColumns() const { return shown_; }
  /// Reads the rows again. A failure leaves them as they were.
  Result<> refresh(const SheetFilter& filter, const SheetOrder& order);
  /// Reads the cells of the rows again.
  void forget();

  const SheetColumn& column(int section) const { return columns_[shown_[static_cast<std::size_t>(section)]]; }
  /// What the cells of a section are chosen from; none where they are typed.
  const std::vector<std::string>& choices(int section) const { return rows_.choices(column(section)); }
  /// The cell of an index, with the text that it shows.
  CellText cell(const QModelIndex& index) const;
  /// The row of an article; -1 when the sheet doesn't show it.
  int rowOf(std::int64_t article) const;
  /// All articles shown, from top to bottom.
  std::vector<std::int64_t> articles() const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  /// What a screen reader says of a cell: its heading and its text.
  QString spokenText(const QModelIndex& index) const;
  QVariant textData(const QModelIndex& index, int role) const;

  std::span<const SheetColumn> columns_;
  std::vector<std::size_t> shown_;
  mutable SheetRows rows_;  ///< cells are read when they are looked at
};

/// Opens a cell with the field of its column: a line that lets through what its kind allows, a list of names, or a
/// window for a text of several lines.
class SheetCells final : public QStyledItemDelegate {
 public:
  SheetCells(SheetModel& model, char decimalSeparator, QObject* parent);

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

 private:
  QWidget* createChoice(QWidget* parent, int section) const;

  SheetModel& model_;
  char separator_;
};

}  // namespace kv
