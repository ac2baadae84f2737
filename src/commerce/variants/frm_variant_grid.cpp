#include "commerce/variants/frm_variant_grid.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyle>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_number_line.h"
#include "platform/qt/frm_reference_note.h"

namespace kv {

QWidget* CellDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                    const QModelIndex& /*index*/) const {
  QLineEdit* line = rule_.isNumber ? new NumberLine(rule_.keys, parent) : new QLineEdit(parent);
  if (rule_.longest > 0) line->setMaxLength(rule_.longest);
  line->setFrame(false);
  if (!rule_.isNumber) noteReferences(line);
  return named(line, "celCella", rule_.spoken);
}

void CellDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* number = dynamic_cast<NumberLine*>(editor);
  if (number == nullptr) return QStyledItemDelegate::setEditorData(editor, index);
  number->load(index.data(Qt::EditRole).toString());
}

VariantGrid::VariantGrid(const QStringList& headings, Commands commands)
    : QTableWidget(0, static_cast<int>(headings.size())), commands_(std::move(commands)) {
  setHorizontalHeaderLabels(headings);
  verticalHeader()->hide();
  setSelectionMode(QAbstractItemView::SingleSelection);
  setTabKeyNavigation(false);
  setMouseTracking(true);
  connect(this, &QTableWidget::cellChanged, this, [this](int row, int column) {
    if (!filling_ && commands_.edited) commands_.edited(row, column);
  });
  connect(this, &QTableWidget::currentCellChanged, this, [this](int row, int, int before, int) {
    if (!filling_ && row != before && commands_.rowChanged) commands_.rowChanged(row);
  });
  connect(this, &QTableWidget::cellClicked, this, [this](int row, int column) {
    const bool editable = (item(row, column)->flags() & Qt::ItemIsEditable) != 0;
    if (!editable && commands_.choose) commands_.choose(row, column);
  });
}

void VariantGrid::setCell(int row, int column, const std::string& text, bool editable, const std::string& spoken) {
  filling_ = true;
  auto* cell = item(row, column);
  if (cell == nullptr) {
    cell = new QTableWidgetItem();
    setItem(row, column, cell);
  }
  cell->setText(toQt(text));
  cell->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | (editable ? Qt::ItemIsEditable : Qt::NoItemFlags));
  cell->setData(Qt::AccessibleTextRole, spoken.empty() ? QVariant() : QVariant(toQt(spoken)));
  for (const int role : {Qt::DecorationRole, Qt::ToolTipRole, Qt::AccessibleDescriptionRole}) cell->setData(role, {});
  filling_ = false;
}

void VariantGrid::setUnsaved(int row, int column, const std::string& text, const std::string& reason) {
  setCell(row, column, text, true);
  filling_ = true;
  auto* cell = item(row, column);
  cell->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this));
  cell->setToolTip(toQt(reason));
  cell->setData(Qt::AccessibleDescriptionRole, toQt(reason));
  filling_ = false;
}

std::string VariantGrid::cell(int row, int column) const {
  const QTableWidgetItem* found = item(row, column);
  return found == nullptr ? std::string() : fromQt(found->text());
}

void VariantGrid::setRows(int count) {
  filling_ = true;
  setRowCount(count);
  filling_ = false;
}

void VariantGrid::goTo(int row, int column) {
  filling_ = true;
  setCurrentCell(row, column);
  filling_ = false;
}

bool VariantGrid::runKey(const QKeyEvent& event) {
  const auto run = [](const std::function<void()>& command) {
    if (command) command();
    return true;
  };
  if (event.key() == Qt::Key_Insert && event.modifiers() == Qt::NoModifier) return run(commands_.insert);
  if (event.key() == Qt::Key_Delete && event.modifiers() == Qt::NoModifier) return run(commands_.remove);
  if (event.key() == Qt::Key_D && event.modifiers() == Qt::ControlModifier) return run(commands_.duplicate);
  if (event.matches(QKeySequence::Paste)) {
    if (commands_.paste) commands_.paste(fromQt(QApplication::clipboard()->text()));
    return true;
  }
  return false;
}

void VariantGrid::keyPressEvent(QKeyEvent* event) {
  // The Enter that ends an edit comes through here on its way up, and must not reach the dialog's default button.
  if (state() == QAbstractItemView::EditingState) return;
  if (!runKey(*event) && !enterCell(*event)) QTableWidget::keyPressEvent(event);
}

bool VariantGrid::enterCell(const QKeyEvent& event) {
  if (currentItem() == nullptr) return false;
  const bool isEditable = (currentItem()->flags() & Qt::ItemIsEditable) != 0;
  if (event.key() == Qt::Key_F2) return !isEditable;
  const bool isEnter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
  if (!isEnter && (isEditable || event.key() != Qt::Key_Space)) return false;
  if (isEditable) {
    editItem(currentItem());
  } else if (commands_.choose) {
    commands_.choose(currentRow(), currentColumn());
  }
  return true;
}

bool VariantGrid::focusNextPrevChild(bool next) {
  const int cells = rowCount() * columnCount();
  const int index = currentRow() * columnCount() + currentColumn() + (next ? 1 : -1);
  if (currentRow() < 0 || index < 0 || index >= cells) return QTableWidget::focusNextPrevChild(next);
  setCurrentCell(index / columnCount(), index % columnCount());
  return true;
}

}  // namespace kv
