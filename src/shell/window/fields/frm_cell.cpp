#include "shell/window/fields/frm_cell.h"

#include <QApplication>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_field_mark.h"
#include "shell/window/fields/frm_field.h"
#include "shell/workbench/article_columns.h"

namespace kv {

ArticleCells::ArticleCells(Workbench& workbench, QObject* parent)
    : QStyledItemDelegate(parent), workbench_(workbench) {}

QWidget* ArticleCells::cell() const { return line_; }

bool ArticleCells::isUnsaved() const { return line_ != nullptr && line_->isModified(); }

void ArticleCells::giveUp() {
  if (line_ == nullptr) return;
  line_->setModified(false);
  workbench_.giveUpField(*column_);
}

QWidget* ArticleCells::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                    const QModelIndex& index) const {
  const ArticleColumn& facts = articleColumns()[static_cast<std::size_t>(index.column())];
  column_ = editorOf(EditedSet::Articoli, facts.edits);
  if (column_ == nullptr) return nullptr;
  line_ = new FieldLine(column_->kind, workbench_.decimalSeparator(), parent);
  named(line_.data(), "txtCella", plainLabel(column_->label));
  if (const int widest = workbench_.widest(*column_); widest > 0) line_->setMaxLength(widest);
  if (isNumberKind(column_->kind)) line_->setAlignment(Qt::AlignRight);
  isRefused_ = isNoted_ = false;
  mark_ = new FieldMark(line_);
  references_.forget();
  connect(line_, &QLineEdit::textEdited, this, &ArticleCells::edited);
  connect(line_, &FieldLine::noted, this, [this](const QString& note) {
    isNoted_ = true;  // said of the text that is about to change
    mark_->show(note);
  });
  return line_;
}

void ArticleCells::edited() const {
  if (!isNoted_) mark_->clear();
  isNoted_ = isRefused_ = false;
  if (!isNumberKind(column_->kind)) references_.typed(line_->text(), *mark_);
  // A limit that the rules set while it is typed is a change by the program for the line.
  line_->setModified(true);
  emit typed();
}

void ArticleCells::setEditorData(QWidget* /*editor*/, const QModelIndex& /*index*/) const {
  if (line_ == nullptr || line_->isModified()) return;
  line_->setPlaceholderText(toQt(workbench_.firstLanguageText(*column_)));
  line_->load(toQt(workbench_.shown(*column_)));
}

void ArticleCells::destroyEditor(QWidget* editor, const QModelIndex& index) const {
  if (editor == line_) line_ = nullptr;
  QStyledItemDelegate::destroyEditor(editor, index);
}

void ArticleCells::setModelData(QWidget* /*editor*/, QAbstractItemModel* /*model*/,
                                const QModelIndex& /*index*/) const {
  if (line_ == nullptr || isSaving_ || !line_->isModified()) return;
  isSaving_ = true;
  const Workbench::LeftField left = workbench_.leaveField(*column_, fromQt(line_->text()));
  isSaving_ = false;
  if (line_ == nullptr) return;
  if (left.saved) {
    line_->load(toQt(workbench_.shown(*column_)));
    line_->setModified(false);
  }
  isRefused_ = !left.mark.empty();
  if (!isRefused_) return;
  mark_->show(toQt(left.mark));
  if (QApplication::focusWidget() == line_) line_->selectAll();
}

}  // namespace kv
