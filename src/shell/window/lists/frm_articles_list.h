#pragma once
// The list of a department's articles: code, title, price and what else the merchant wants to see. Rows are read when
// they come into view; code, title and price can be typed in them, and rows be dragged onto a department of the tree.

#include <QAbstractTableModel>
#include <QTableView>

#include "shell/workbench/article_columns.h"
#include "shell/workbench/workbench.h"

namespace kv {

class ArticleCells;

/// The rows of the current department, in the language and price list being edited.
/// Rows are counted from 0 in the order of the department. The model writes nothing: what is typed in a cell goes to
/// the workbench.
class ArticleModel final : public QAbstractTableModel {
  Q_OBJECT
 public:
  /// The workbench outlives the model, which is empty until the first rebuild().
  explicit ArticleModel(Workbench& workbench, QObject* parent = nullptr);

  /// The columns from left to right, those of ListColumn. Numbers are shown with the locale's decimal separator, an
  /// unset one as no text. Beside the price is that with the VAT of the department.
  enum Column { Code, Title, Price, Vat, Offer, Weight, Showcase, ColumnCount };

  /// Filters and sorts from the next rebuild() on.
  void arrange(ArticleArrangement arrangement) { rows_.arrange(std::move(arrangement)); }
  const ArticleArrangement& arrangement() const { return rows_.arrangement(); }
  /// The article of a row; 0 for a row that isn't there.
  std::int64_t articleAt(int row) const { return rows_.at(static_cast<std::size_t>(row)).ID; }
  /// The row of an article; -1 when the list doesn't show it.
  int rowOf(std::int64_t ID) const;
  /// The row of the current article; -1 when the list doesn't show it, or there is none.
  int currentRow() const;
  /// Takes over the current department's articles.
  /// Called when rows or their order changed. A preview ends; selection and scroll position are lost.
  void rebuild();
  /// Reads the same rows again.
  /// Called when fields of articles were written: the rows that are in view are read again, a preview ends.
  void refresh();
  /// Shows a text in a cell while it is being typed.
  /// It replaces the preview shown before, ends with the next refresh() or rebuild(), and stores nothing. A row that
  /// isn't in the list shows nothing.
  void preview(int row, Column column, const QString& text);

  /// The articles that are shown, in their order.
  const std::vector<std::int64_t>& keys() const { return rows_.keys(); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  /// Text for Qt::DisplayRole and Qt::ToolTipRole, alignment for the price; a row that can't be read has empty texts.
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  /// Rows can be dragged, and the cells of a column that edits one of the catalogue can be typed in.
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QStringList mimeTypes() const override;
  /// The articles of these cells, from top to bottom.
  QMimeData* mimeData(const QModelIndexList& indexes) const override;
  Qt::DropActions supportedDragActions() const override { return Qt::MoveAction; }

 private:
  /// Whether a title is that of the first language, for want of one in the language being edited.
  bool isBorrowed(const QModelIndex& index) const;
  /// What a column shows of a row.
  QString textOf(const ArticleRow& row, Column column) const;
  /// As the column has it; empty for none.
  std::string vatOfDepartment() const;

  Workbench& workbench_;
  mutable ArticleRows rows_;  ///< filled by data(), which is const
  int previewRow_ = -1;       ///< of the cell that shows what is being typed; -1: none
  Column previewColumn_ = Code;
  QString previewText_;
};

/// The list on the screen. Moving the selection moves the article cursor of the workbench.
/// An empty list says in its middle why it is empty and how to add an article.
class ArticleList final : public QTableView {
  Q_OBJECT
 public:
  /// The workbench outlives the list.
  explicit ArticleList(Workbench& workbench, QWidget* parent = nullptr);

  /// Shows the articles of another department, or in another order.
  /// The current article stays selected; the cursor of the workbench isn't moved.
  void rebuild();
  /// Selects the current article of the workbench.
  /// Scrolls to it; clears the selection when no article is current. Does not move the cursor.
  void selectCurrent();
  /// Shows the same articles filtered and sorted in another way.
  /// The order of the shop isn't changed; the current article stays current, shown or not.
  void arrange(ArticleArrangement arrangement);
  /// The articles of the selected rows, from top to bottom.
  std::vector<std::int64_t> selected() const;
  /// Shows these columns.
  void showColumns(const ShownColumns& shown);
  /// Opens a cell of the current row for typing: in the current column, in the title where that can't be typed in.
  /// Nothing while no article is current.
  void editCell();
  /// The same in a column that is shown.
  void editCell(ArticleModel::Column column);
  /// Saves what is being typed in a cell and closes it. False when it could not be saved: the cell stays open.
  bool finishEdit();
  /// Whether something was typed in a cell that isn't stored yet.
  bool isUnsaved() const;
  /// Owned by the list, for previews and for reading its fields again.
  ArticleModel& articles() { return *model_; }

 signals:
  /// Something was typed in a cell.
  void cellTyped();

 protected:
  /// Opens a cell of the current article only.
  bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
  /// Leaves a cell open whose text was not taken; Tab goes on to the next one that can be typed in.
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
  /// Draws the text of an empty list; nothing more while no shop is open.
  void paintEvent(QPaintEvent* event) override;
  /// Hands a row that the user went to to the workbench, which saves what is being typed first.
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

 private:
  void selectGroup(const std::vector<std::int64_t>& group);
  /// The next cell that can be typed in, along the rows; an invalid index after the last.
  QModelIndex nextCell(const QModelIndex& from, int step) const;

  Workbench& workbench_;
  ArticleModel* model_;
  ArticleCells* cells_;
  bool updating_ = false;  ///< the selection follows the workbench
};

}  // namespace kv
