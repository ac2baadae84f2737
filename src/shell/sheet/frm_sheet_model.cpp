#include "shell/sheet/frm_sheet_model.h"

#include <QAbstractItemView>
#include <QComboBox>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_plain_tip.h"
#include "platform/text/text.h"
#include "shell/window/fields/frm_field.h"

namespace kv {
namespace {

bool isSheetNumber(SheetKind kind) {
  return kind == SheetKind::Number || kind == SheetKind::Price || kind == SheetKind::Vat;
}

/// A text of several lines in one.
QString inOneLine(const std::string& text) { return toQt(replaceAll(text, "\n", " \xe2\x86\xb5 ")); }

}  // namespace

SheetModel::SheetModel(Session& session, std::span<const SheetColumn> columns, char decimalSeparator, QObject* parent)
    : QAbstractTableModel(parent), columns_(columns), rows_(session, columns, decimalSeparator) {}

void SheetModel::showColumns(std::vector<std::size_t> shown) {
  beginResetModel();
  shown_ = std::move(shown);
  endResetModel();
}

Result<> SheetModel::refresh(const SheetFilter& filter, const SheetOrder& order) {
  beginResetModel();
  auto read = rows_.refresh(filter, order);
  endResetModel();
  return read;
}

void SheetModel::forget() {
  rows_.forget();
  if (rowCount() > 0) emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

CellText SheetModel::cell(const QModelIndex& index) const {
  const auto row = static_cast<std::size_t>(index.row());
  const std::size_t column = shown_[static_cast<std::size_t>(index.column())];
  return {rows_.article(row), column, rows_.cells(row)[column]};
}

int SheetModel::rowOf(std::int64_t article) const {
  const auto row = rows_.rowOf(article);
  return row ? static_cast<int>(*row) : -1;
}

std::vector<std::int64_t> SheetModel::articles() const {
  std::vector<std::int64_t> all(rows_.size());
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = rows_.article(i);
  return all;
}

int SheetModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int SheetModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

QVariant SheetModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const SheetKind kind = column(index.column()).kind;
  if (role == Qt::AccessibleTextRole) return spokenText(index);
  if (role == Qt::TextAlignmentRole) {
    return isSheetNumber(kind) ? QVariant(int{Qt::AlignRight | Qt::AlignVCenter}) : QVariant();
  }
  if (kind != SheetKind::Flag) return textData(index, role);
  if (role != Qt::CheckStateRole) return {};
  return cell(index).text == "1" ? Qt::Checked : Qt::Unchecked;
}

QVariant SheetModel::textData(const QModelIndex& index, int role) const {
  if (role == Qt::DisplayRole) return inOneLine(cell(index).text);
  if (role == Qt::EditRole) return toQt(cell(index).text);
  if (role == Qt::ToolTipRole) return plainTip(toQt(cell(index).text));
  return {};
}

QString SheetModel::spokenText(const QModelIndex& index) const {
  const SheetColumn& facts = column(index.column());
  const std::string text = cell(index).text;
  QString spoken = toQt(text);
  if (facts.kind == SheetKind::Flag) spoken = text == "1" ? tr("sì") : tr("no");
  if (spoken.isEmpty()) spoken = tr("vuoto");
  return toQt(facts.heading) + QStringLiteral(": ") + spoken;
}

bool SheetModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || !typed) return false;
  CellText changed = cell(index);
  const std::string before = changed.text;
  if (role == Qt::CheckStateRole) {
    changed.text = value.toInt() == Qt::Checked ? "1" : "0";
  } else if (role == Qt::EditRole) {
    changed.text = fromQt(value.toString());
  } else {
    return false;
  }
  if (changed.text != before) typed(changed);
  return true;
}

QVariant SheetModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  if (orientation == Qt::Vertical) return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
  return section < columnCount() ? toQt(column(section).heading) : QString();
}

Qt::ItemFlags SheetModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const Qt::ItemFlags every = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  const SheetColumn& facts = column(index.column());
  if (!isEditable(facts)) return every;
  return every | (facts.kind == SheetKind::Flag ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable);
}

SheetCells::SheetCells(SheetModel& model, char decimalSeparator, QObject* parent)
    : QStyledItemDelegate(parent), model_(model), separator_(decimalSeparator) {}

QWidget* SheetCells::createChoice(QWidget* parent, int section) const {
  const SheetColumn& facts = model_.column(section);
  auto* list = named(new QComboBox(parent), "cboCella", facts.heading);
  for (const std::string& choice : model_.choices(section)) list->addItem(toQt(choice));
  list->view()->setAccessibleName(toQt(facts.heading));
  return list;
}

QWidget* SheetCells::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                  const QModelIndex& index) const {
  const SheetColumn& facts = model_.column(index.column());
  if (isChoice(facts)) return createChoice(parent, index.column());
  // A text of several lines has a window of its own.
  if (facts.editor == nullptr || facts.kind == SheetKind::Lines || facts.kind == SheetKind::Flag) return nullptr;
  auto* line = named(new FieldLine(facts.editor->kind, separator_, parent), "txtCella", facts.heading);
  if (facts.stored.type == ColumnType::Text && facts.stored.size > 0) line->setMaxLength(facts.stored.size);
  if (isSheetNumber(facts.kind)) line->setAlignment(Qt::AlignRight);
  markTyping(line);
  return line;
}

void SheetCells::setEditorData(QWidget* editor, const QModelIndex& index) const {
  if (auto* line = qobject_cast<FieldLine*>(editor)) line->load(index.data(Qt::EditRole).toString());
  if (auto* list = qobject_cast<QComboBox*>(editor)) {
    list->setCurrentIndex(list->findText(index.data(Qt::EditRole).toString()));
  }
}

void SheetCells::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
  if (const auto* line = qobject_cast<FieldLine*>(editor)) model->setData(index, line->text(), Qt::EditRole);
  const auto* list = qobject_cast<QComboBox*>(editor);
  if (list != nullptr && list->currentIndex() >= 0) model->setData(index, list->currentText(), Qt::EditRole);
}

}  // namespace kv
