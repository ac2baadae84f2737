#include "commerce/settings/frm_produttori.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "platform/ports/failure_text.h"
#include "platform/qt/frm_note.h"
#include "platform/qt/frm_reference_note.h"

namespace kv {

frmProduttori::frmProduttori(Session& session, Environment& env, MakerEditor editor, HelpOpener help, QWidget* parent)
    : FormDialog(makersTitle, parent), session_(session), env_(env), editor_(std::move(editor)) {
  auto* sides = new QHBoxLayout();
  sides->addWidget(makeList(), 2);
  sides->addWidget(makeFields(), 3);
  QDialogButtonBox* buttons = makeButtons();
  connect(buttons, &QDialogButtonBox::accepted, this, &frmProduttori::save);
  addHelp(buttons, std::move(help), "pagine/leggi.htm");
  auto* column = new QVBoxLayout(this);
  column->addLayout(sides, 1);
  column->addWidget(buttons);
  lstProduttori_->setCurrentRow(editor_.makers().empty() ? -1 : 0);
  showMaker();
  sizeInCharacters(96, 24);
}

QWidget* frmProduttori::makeList() {
  lstProduttori_ = named(new QListWidget(), "lstProduttori");
  for (std::size_t i = 0; i < editor_.makers().size(); ++i) lstProduttori_->addItem(toQt(editor_.line(i)));
  auto* cmdNuovo = named(new QPushButton(toQt("N&uovo")), "cmdNuovo");
  cmdElimina_ = named(new QPushButton(toQt("&Elimina")), "cmdElimina");
  auto* row = new QHBoxLayout();
  for (QPushButton* button : {cmdNuovo, cmdElimina_}) {
    button->setAutoDefault(false);
    row->addWidget(button);
  }
  row->addStretch();
  auto* side = new QWidget();
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(labelFor("&Produttori:", lstProduttori_));
  column->addWidget(lstProduttori_, 1);
  column->addLayout(row);
  connect(lstProduttori_, &QListWidget::currentRowChanged, this, &frmProduttori::showMaker);
  connect(cmdNuovo, &QPushButton::clicked, this, &frmProduttori::addMaker);
  connect(cmdElimina_, &QPushButton::clicked, this, &frmProduttori::removeMaker);
  return side;
}

QWidget* frmProduttori::makeFields() {
  auto* side = new QWidget();
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  for (std::size_t i = 0; i < makerFields.size(); ++i) {
    txtCampo_[i] = named(new QLineEdit(), makerFields[i].control);
    noteReferences(txtCampo_[i]);
    txtCampo_[i]->setToolTip(toQt(makerFields[i].hint));
    column->addWidget(labelFor(makerFields[i].label, txtCampo_[i]));
    column->addWidget(txtCampo_[i]);
    connect(txtCampo_[i], &QLineEdit::textEdited, this, [this, i] { typed(i); });
  }
  column->addStretch();
  return side;
}

int frmProduttori::current() const { return lstProduttori_->currentRow(); }

void frmProduttori::showMaker() {
  const bool any = current() >= 0;
  for (std::size_t i = 0; i < makerFields.size(); ++i) {
    txtCampo_[i]->setText(any ? toQt(editor_.makers()[static_cast<std::size_t>(current())].texts[i]) : QString());
    txtCampo_[i]->setEnabled(any);
    showNote(*txtCampo_[i], {});
  }
  cmdElimina_->setEnabled(any);
}

void frmProduttori::addMaker() {
  editor_.add();
  lstProduttori_->addItem(toQt(editor_.line(editor_.makers().size() - 1)));
  lstProduttori_->setCurrentRow(lstProduttori_->count() - 1);
  txtCampo_[makerName]->setFocus();
}

void frmProduttori::removeMaker() {
  const int row = current();
  if (row < 0) return;
  {
    // The list reports a current row in the middle of its removal, when the indexes of list and editor differ.
    const QSignalBlocker quiet(lstProduttori_);
    delete lstProduttori_->takeItem(row);
    editor_.remove(static_cast<std::size_t>(row));
  }
  showMaker();
}

void frmProduttori::typed(std::size_t field) {
  if (current() < 0) return;
  const auto maker = static_cast<std::size_t>(current());
  editor_.set(maker, field, fromQt(txtCampo_[field]->text()));
  lstProduttori_->item(current())->setText(toQt(editor_.line(maker)));
  showNote(*txtCampo_[field], {});
}

void frmProduttori::reject() {
  const Question question{std::string(makersUnsaved), Buttons::YesNo, Answer::No, Icon::Exclamation};
  if (editor_.isChanged() && env_.user.question(question) != Answer::Yes) return;
  FormDialog::reject();
}

void frmProduttori::save() {
  if (const auto fault = editor_.fault()) {
    lstProduttori_->setCurrentRow(static_cast<int>(fault->maker));
    txtCampo_[fault->field]->setFocus();
    return showNote(*txtCampo_[fault->field], toQt(fault->message));
  }
  if (const auto saved = editor_.save(session_.catalogue); !saved) {
    env_.user.message(failureText(saved.error()), Icon::Critical);
    return;
  }
  finish("OK");
}

}  // namespace kv
