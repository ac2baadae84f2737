#pragma once
// The list of a department's articles: code, title, price. Rows are read when they come into view.

#include <QAbstractTableModel>
#include <QTableView>

#include "shell/workbench/article_rows.h"
#include "shell/workbench/workbench.h"

namespace kv {

class ArticleModel final : public QAbstractTableModel {
  Q_OBJECT
 public:
  explicit ArticleModel(Workbench& workbench, QObject* parent = nullptr);

  enum Column { Code, Title, Price, ColumnCount };

  /// Takes over the current department's articles.
  void rebuild();
  /// Reads the rows again where they stand.
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
  int previewRow_ = -1;
  Column previewColumn_ = Code;
  QString previewText_;
};

class ArticleList final : public QTableView {
  Q_OBJECT
 public:
  explicit ArticleList(Workbench& workbench, QWidget* parent = nullptr);

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
  bool settling_ = false;
};

}  // namespace kv
