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

namespace kv {
namespace {

/// A field that takes what the rules accept, typed, composed, pasted or dropped.
class MailField final : public QPlainTextEdit {
 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const std::string typed = fromQt(event->text());
    if (!typed.empty() && acceptedMailText(typed).empty()) return;
    QPlainTextEdit::keyPressEvent(event);
  }
  // Dead keys and input methods commit text without a key event.
  void inputMethodEvent(QInputMethodEvent* event) override {
    event->setCommitString(toQt(acceptedMailText(fromQt(event->commitString()))), event->replacementStart(),
                           event->replacementLength());
    QPlainTextEdit::inputMethodEvent(event);
  }
  void insertFromMimeData(const QMimeData* source) override {
    insertPlainText(toQt(acceptedMailText(fromQt(source->text()))));
  }
};

}  // namespace

frmEmail::frmEmail(std::string_view text, HelpOpener help, QWidget* parent) : FormDialog(mailTitle, parent) {
  auto* column = new QVBoxLayout(this);
  for (const std::string_view note : mailNotes) column->addWidget(wrappedText(note));
  txtTesto_ = named(new MailField(), "txtTesto");
  txtTesto_->setTabChangesFocus(true);
  txtTesto_->setPlainText(toQt(text));
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
