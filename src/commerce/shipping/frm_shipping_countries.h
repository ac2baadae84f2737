#pragma once
// The page of the shipping dialog with the countries: a grid of names and zones, and a list to add from.

#include <QStyledItemDelegate>
#include <QWidget>
#include <functional>

#include "commerce/shipping/shipping_editor.h"

class QComboBox;
class QPushButton;
class QTableWidget;

namespace kv {

/// Edits a zone in its cell: a drop-down of the names of the zones.
class ZoneDelegate final : public QStyledItemDelegate {
 public:
  ZoneDelegate(std::vector<std::string> names, QObject* parent)
      : QStyledItemDelegate(parent), names_(std::move(names)) {}
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
  QString displayText(const QVariant& value, const QLocale& locale) const override;

 private:
  std::vector<std::string> names_;
};

/// The countries, each with its zone.
class ShippingCountriesPage final : public QWidget {
 public:
  /// `editor` outlives the page. changed: called after the countries have changed.
  ShippingCountriesPage(ShippingEditor& editor, std::function<void()> changed);

 protected:
  /// Enter in the list to add from adds, and does not close the dialog.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* makeAdding();
  void fill(int row);  // shows all countries, the cursor on a row
  void add();
  /// Deletes the current country.
  void remove();
  /// Stores the zone that was chosen in a cell.
  void zoneChanged(int row, int column);

  ShippingEditor& editor_;
  std::function<void()> changed_;
  QTableWidget* grdPaesi_ = nullptr;
  QComboBox* cboAggiungi_ = nullptr;
  QPushButton* cmdAggiungi_ = nullptr;
  bool filling_ = false;  ///< the grid is being filled: its signals are not the user's
};

}  // namespace kv
