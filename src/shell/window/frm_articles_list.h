#pragma once
// The list of a department's articles: code, title, price. Rows are read when they come into view.

#include <QAbstractTableModel>
#include <QTableView>

#include "shell/workbench/article_rows.h"
#include "shell/workbench/workbench.h"

namespace kv {

/// The rows of the current department, in the language and price list being edited.
class ArticleModel final : public QAbstractTableModel {
  Q_OBJECT
 public:
  explicit ArticleModel(Workbench& workbench, QObject* parent = nullptr);

  enum Column { Code, Title, Price, ColumnCount };

  /// Takes over the current department's articles.
  void rebuild();
  /// Reads the same rows again.
  void refresh();
  /// Shows a text in a cell while it is being typed.
  void preview(int row, Column column, const QString& text);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  Workbench& workbench_;
  mutable ArticleRows rows_;
  int previewRow_ = -1;  ///< of the cell that shows what is being typed; -1: none
  Column previewColumn_ = Code;
  QString previewText_;
};

/// The list on the screen. Moving the selection moves the article cursor of the workbench.
class ArticleList final : public QTableView {
  Q_OBJECT
 public:
  explicit ArticleList(Workbench& workbench, QWidget* parent = nullptr);

  /// Shows the articles of another department, or in another order.
  void rebuild();
  /// Selects the current article of the workbench.
  void selectCurrent();
  ArticleModel& articles() { return *model_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

 private:
  Workbench& workbench_;
  ArticleModel* model_;
  bool updating_ = false;  ///< the selection follows the workbench
};

}  // namespace kv
