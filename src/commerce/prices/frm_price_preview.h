#pragma once
// The table of a price change's preview: a row for each price that changes, sorted by a click on a column.

#include <QAbstractTableModel>
#include <vector>

#include "commerce/prices/price_change.h"

namespace kv {

/// Columns: code, title, price list, old price, new price. Without a sorted column rows are in the order of the survey.
class PricePreviewModel final : public QAbstractTableModel {
 public:
  PricePreviewModel(char decimalSeparator, QObject* parent)
      : QAbstractTableModel(parent), separator_(decimalSeparator) {}

  /// Shows what a rule makes of a survey; the rows keep the order that was chosen.
  void show(PriceSurvey survey);
  void show(const PricePreview& preview, const PriceRule& rule);
  const PriceSurvey& survey() const { return survey_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  /// `column` -1: the order of the survey.
  void sort(int column, Qt::SortOrder order) override;

 private:
  /// Sorts by the column that was clicked.
  void sortRows();
  /// The text of a price in a column.
  QString text(const SurveyedPrice& price, int column) const;
  /// The order of two rows by the column that was clicked.
  bool isBefore(std::uint32_t a, std::uint32_t b) const;
  /// The order of two prices by what they become; one without a new price is the last.
  bool isCheaper(const SurveyedPrice& a, const SurveyedPrice& b) const;

  PriceSurvey survey_;
  PriceRule rule_;
  std::vector<std::uint32_t> rows_;  // indexes of prices
  char separator_;
  int column_ = -1;
  Qt::SortOrder order_ = Qt::AscendingOrder;
};

}  // namespace kv
