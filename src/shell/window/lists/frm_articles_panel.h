#pragma once
// The list of articles with what arranges it: a filter above, the way back to the order of the shop, and the choice of
// columns.

#include <QWidget>

#include "shell/workbench/article_columns.h"

class QLineEdit;
class QMenu;
class QToolButton;

namespace kv {

class ArticleList;
class Workbench;

/// The list is sorted by a click on the head of a column: upwards, downwards, and by the third in the order of the shop
/// again. Only the choice of columns is stored, in the user's settings.
class ArticlePanel final : public QWidget {
  Q_OBJECT
 public:
  /// The workbench outlives the panel.
  explicit ArticlePanel(Workbench& workbench, QWidget* parent = nullptr);

  /// Owned by the panel.
  ArticleList& list() { return *list_; }
  /// Shows every article in the order of the shop, no filter on.
  void showAll();
  /// The menu in which columns are chosen; at the right mouse button on the heads, and in the menu of the list.
  QMenu& columnMenu() { return *columns_; }
  /// Shows the columns that were chosen last.
  void restoreColumns();

 private:
  /// An entry for each column; that of the title can't be changed.
  void makeColumnMenu();
  /// Shows the columns that are checked in the menu, and stores the choice.
  void chooseColumns();
  /// Gives the list its filter and order.
  void arrange();
  /// Offers "Da tradurre" in a shop of several languages.
  void offerLanguages();
  /// The next order of a column: upwards, downwards, that of the shop.
  void sortBy(int column);

  Workbench& workbench_;
  ArticleList* list_;
  QToolButton* cmdDaTradurre_;  ///< "Da tradurre": only articles without a title in the language being edited
  QLineEdit* txtFiltro_;
  QToolButton* cmdOrdine_;  ///< "Ordine del negozio"; shows while another order does
  QMenu* columns_;          ///< "Colonne"
  int column_ = -1;         ///< sorted by; -1: the order of the shop
  bool descending_ = false;
};

}  // namespace kv
