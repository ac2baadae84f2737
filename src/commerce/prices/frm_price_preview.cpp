#include "commerce/prices/frm_price_preview.h"

#include <algorithm>
#include <array>

#include "platform/qt/frm_dialog.h"
#include "platform/text/text.h"

namespace kv {
namespace {

enum Column { Code, Title, List, Before, After };
constexpr std::array<std::string_view, 5> headings{"Codice", "Titolo", "Listino", "Prezzo attuale", "Prezzo nuovo"};

int compareMoney(Money a, Money b) { return a < b ? -1 : (a == b ? 0 : 1); }

}  // namespace

void PricePreviewModel::show(PriceSurvey survey) {
  beginResetModel();
  survey_ = std::move(survey);
  rows_.clear();
  endResetModel();
}

void PricePreviewModel::show(const PricePreview& preview, const PriceRule& rule) {
  beginResetModel();
  rule_ = rule;
  rows_ = preview.changed;
  sortRows();
  endResetModel();
}

int PricePreviewModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int PricePreviewModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(headings.size());
}

QString PricePreviewModel::text(const SurveyedPrice& price, int column) const {
  const PriceOwner& owner = survey_.owners[price.owner];
  switch (column) {
    case Code:
      return toQt(owner.code);
    case Title:
      return toQt(owner.title);
    case List:
      return toQt(priceName(price));
    case Before:
      return toQt(shownPrice(price.before, separator_));
    default:
      return toQt(newPrice(price.before, rule_, separator_));
  }
}

QVariant PricePreviewModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::TextAlignmentRole && index.column() >= Before) {
    return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
  }
  if (role != Qt::DisplayRole) return {};
  return text(survey_.prices[rows_[static_cast<std::size_t>(index.row())]], index.column());
}

QVariant PricePreviewModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
  return toQt(headings[static_cast<std::size_t>(section)]);
}

bool PricePreviewModel::isBefore(std::uint32_t a, std::uint32_t b) const {
  const SurveyedPrice& first = survey_.prices[a];
  const SurveyedPrice& second = survey_.prices[b];
  const PriceOwner& firstOwner = survey_.owners[first.owner];
  const PriceOwner& secondOwner = survey_.owners[second.owner];
  switch (column_) {
    case Code:
      return compareIgnoringCase(firstOwner.code, secondOwner.code) < 0;
    case Title:
      return compareIgnoringCase(firstOwner.title, secondOwner.title) < 0;
    case List:
      return std::pair(first.kind, first.listino) < std::pair(second.kind, second.listino);
    case Before:
      return compareMoney(first.before.value_or(Money()), second.before.value_or(Money())) < 0;
    default:
      return isCheaper(first, second);
  }
}

bool PricePreviewModel::isCheaper(const SurveyedPrice& a, const SurveyedPrice& b) const {
  const bool isBeyond = isBeyondMoney(a.before, rule_);
  // What has no new price, for it would be too high, comes after all that have one.
  if (isBeyond || isBeyondMoney(b.before, rule_)) return !isBeyond;
  return compareMoney(Trasforma(a.before, rule_), Trasforma(b.before, rule_)) < 0;
}

void PricePreviewModel::sortRows() {
  if (column_ < 0) return;
  std::ranges::stable_sort(rows_, [this](std::uint32_t a, std::uint32_t b) {
    return order_ == Qt::AscendingOrder ? isBefore(a, b) : isBefore(b, a);
  });
}

void PricePreviewModel::sort(int column, Qt::SortOrder order) {
  column_ = column;
  order_ = order;
  beginResetModel();
  if (column < 0) std::ranges::sort(rows_);
  sortRows();
  endResetModel();
}

}  // namespace kv
