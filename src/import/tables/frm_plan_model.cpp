#include "import/tables/frm_plan_model.h"

#include <array>

#include "platform/qt/frm_cell_text.h"
#include "platform/qt/frm_dialog.h"

namespace kv {
namespace {

enum PlanColumn { Line, Fate, Label, Reason };
constexpr std::array<std::string_view, 4> planHeadings{"Riga", "Esito", "Che cosa", "Motivo"};

}  // namespace

void PlanModel::show(RowFilter filter) {
  beginResetModel();
  rows_ = guide_.rowsOf(filter);
  endResetModel();
}

int PlanModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int PlanModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(planHeadings.size());
}

QVariant PlanModel::boxOf(const QModelIndex& index) const {
  const GuideRow row = guide_.row(planRow(index.row()));
  if (index.column() != Line || !row.canChoose) return {};
  return row.isChosen ? Qt::Checked : Qt::Unchecked;
}

QVariant PlanModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::CheckStateRole) return boxOf(index);
  if (!isCellTextRole(role)) return {};
  const GuideRow row = guide_.row(planRow(index.row()));
  const std::array<const std::string*, 4> texts{&row.line, &row.fate, &row.label, &row.reason};
  return cellText(role, *texts[static_cast<std::size_t>(index.column())]);
}

bool PlanModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole || !index.isValid()) return false;
  guide_.choose(planRow(index.row()), value.toInt() == Qt::Checked);
  // Rows that depend on this one may have changed with it.
  emit dataChanged(this->index(0, Line), this->index(rowCount() - 1, Line));
  emit chosen();
  return true;
}

Qt::ItemFlags PlanModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags usual = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  const bool hasBox = index.isValid() && index.column() == Line && guide_.row(planRow(index.row())).canChoose;
  return hasBox ? usual | Qt::ItemIsUserCheckable : usual;
}

QVariant PlanModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
  return toQt(planHeadings[static_cast<std::size_t>(section)]);
}

}  // namespace kv
