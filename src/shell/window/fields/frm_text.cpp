#include "shell/window/fields/frm_text.h"

#include <QDialogButtonBox>
#include <QShortcut>
#include <QVBoxLayout>

#include "platform/qt/frm_field_mark.h"
#include "platform/qt/frm_reference_note.h"
#include "shell/window/fields/frm_field.h"

namespace kv {

frmTesto::frmTesto(const QString& name, const QString& text, QWidget* parent)
    : FormDialog("Korvane - " + fromQt(name), parent), txtTesto_(named(new FieldMemo(this), "txtTesto", fromQt(name))) {
  txtTesto_->setPlainText(text);
  noteReferences(txtTesto_);
  connect(qobject_cast<FieldMemo*>(txtTesto_), &FieldMemo::noted, txtTesto_->findChild<FieldMark*>(), &FieldMark::show);
  txtTesto_->moveCursor(QTextCursor::End);
  QDialogButtonBox* buttons = makeButtons();
  connect(buttons, &QDialogButtonBox::accepted, this, [this] { finish("OK"); });
  connect(new QShortcut(Qt::CTRL | Qt::Key_Return, this), &QShortcut::activated, this, [this] { finish("OK"); });
  auto* column = new QVBoxLayout(this);
  column->addWidget(txtTesto_, 1);
  column->addWidget(buttons);
  sizeInCharacters(100, 30);
  txtTesto_->setFocus();
}

QString frmTesto::text() const { return txtTesto_->toPlainText(); }

}  // namespace kv
