#include "commerce/settings/frm_email.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/qt/frm_field_mark.h"
#include "platform/qt/frm_reference_note.h"
#include "platform/text/typed_notes.h"

namespace kv {
namespace {

/// A field that takes what the rules accept, typed, composed, pasted or dropped.
class MailField final : public QPlainTextEdit {
 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const std::string typed = fromQt(event->text());
    if (!typed.empty() && acceptedMailText(typed).empty()) return say(event->text());
    QPlainTextEdit::keyPressEvent(event);
  }
  // Dead keys and input methods commit text without a key event.
  void inputMethodEvent(QInputMethodEvent* event) override {
    const QString typed = event->commitString();
    event->setCommitString(toQt(acceptedMailText(fromQt(event->commitString()))), event->replacementStart(),
                           event->replacementLength());
    QPlainTextEdit::inputMethodEvent(event);
    say(typed);
  }
  void insertFromMimeData(const QMimeData* source) override {
    insertPlainText(toQt(acceptedMailText(fromQt(source->text()))));
    say(source->text());
  }

 private:
  /// Says which characters of a text were not taken.
  void say(const QString& typed) {
    const std::string note =
        droppedNote(fromQt(typed), [](std::string_view one) { return !acceptedMailText(one).empty(); });
    if (!note.empty()) findChild<FieldMark*>()->show(toQt(note));
  }
};

}  // namespace

frmEmail::frmEmail(std::string_view text, HelpOpener help, QWidget* parent) : FormDialog(mailTitle, parent) {
  auto* column = new QVBoxLayout(this);
  for (const std::string_view note : mailNotes) column->addWidget(wrappedText(note));
  txtTesto_ = named(new MailField(), "txtTesto");
  txtTesto_->setTabChangesFocus(true);
  txtTesto_->setPlainText(toQt(text));
  noteReferences(txtTesto_);
  column->addWidget(labelFor("&Testo dell'e-mail:", txtTesto_));
  column->addWidget(txtTesto_, 1);
  auto* row = new QHBoxLayout();
  int number = 0;
  for (const std::string_view tag : mailTags) {
    auto* button = named(new QPushButton(toQt(tag)), "cmdTag" + std::to_string(number++));
    button->setAutoDefault(false);
    button->setToolTip(toQt("Inserisce il tag nel punto in cui si trova il cursore"));
    row->addWidget(button);
    connect(button, &QPushButton::clicked, this, [this, tag] { insertTag(tag); });
  }
  row->addStretch();
  column->addLayout(row);
  QDialogButtonBox* buttons = makeButtons();
  column->addWidget(buttons);
  addHelp(buttons, std::move(help), "pagine/sito.htm");
  connect(buttons, &QDialogButtonBox::accepted, this, [this] { finish("OK"); });
  sizeInCharacters(88, 28);
  txtTesto_->setFocus();
}

std::string frmEmail::text() const { return textOf(*txtTesto_); }

void frmEmail::insertTag(std::string_view tag) {
  // At the start of what is selected, which stays.
  QTextCursor cursor = txtTesto_->textCursor();
  cursor.setPosition(cursor.selectionStart());
  cursor.insertText(toQt(tag));
  txtTesto_->setTextCursor(cursor);
  txtTesto_->setFocus();
}

}  // namespace kv
