#include "import/accounting/frm_accounting_plan_model.h"

#include <array>

#include "platform/qt/frm_cell_text.h"
#include "platform/qt/frm_dialog.h"

namespace kv {
namespace {

constexpr std::size_t priceColumn = 3, offerColumn = 4;
constexpr std::array<std::string_view, 6> accountingHeadings{"Esito",  "Codice",  "Titolo",
                                                             "Prezzo", "Offerta", "Motivo"};

}  // namespace

void AccountingPlanModel::show(AccountingPlan plan) {
  beginResetModel();
  plan_ = std::move(plan);
  endResetModel();
}

std::size_t AccountingPlanModel::columnOf(int section) const {
  const auto column = static_cast<std::size_t>(section);
  return column >= offerColumn && options_.offer == 0 ? column + 1 : column;
}

int AccountingPlanModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shownRowCount(plan_));
}

int AccountingPlanModel::columnCount(const QModelIndex& parent) const {
  if (parent.isValid()) return 0;
  return static_cast<int>(options_.offer == 0 ? accountingHeadings.size() - 1 : accountingHeadings.size());
}

QVariant AccountingPlanModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const std::size_t column = columnOf(index.column());
  const bool isAmount = column == priceColumn || column == offerColumn;
  if (role == Qt::TextAlignmentRole && isAmount) return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  if (!isCellTextRole(role)) return {};
  const ShownPlanRow row = shownRow(plan_, options_, static_cast<std::size_t>(index.row()));
  const std::array<const std::string*, 6> texts{&row.fate, &row.code, &row.title, &row.price, &row.offer, &row.reason};
  return cellText(role, *texts[column]);
}

QVariant AccountingPlanModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
  return toQt(accountingHeadings[columnOf(section)]);
}

}  // namespace kv
