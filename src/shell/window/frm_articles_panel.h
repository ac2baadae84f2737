#pragma once
// The list of articles with what arranges it: a filter above, and the way back to the order of the shop.

#include <QWidget>

class QLineEdit;
class QToolButton;

namespace kv {

class ArticleList;
class Workbench;

/// The list is sorted by a click on the head of a column: upwards, downwards, and by the third in the order of the shop
/// again. Nothing of it is stored.
class ArticlePanel final : public QWidget {
  Q_OBJECT
 public:
  /// The workbench outlives the panel.
  explicit ArticlePanel(Workbench& workbench, QWidget* parent = nullptr);

  /// Owned by the panel.
  ArticleList& list() { return *list_; }
  /// Shows every article in the order of the shop, no filter on.
  void showAll();

 private:
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
  int column_ = -1;         ///< sorted by; -1: the order of the shop
  bool descending_ = false;
};

}  // namespace kv
