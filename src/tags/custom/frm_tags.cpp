#include "tags/custom/frm_tags.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include "platform/ports/failure_text.h"

#include "platform/qt/frm_note.h"
#include "platform/qt/frm_reference_note.h"

namespace kv {
namespace {

void showLine(QListWidgetItem* item, const std::string& line) {
  item->setText(toQt(line));
  item->setData(Qt::AccessibleTextRole, toQt(line.empty() ? std::string_view("Senza nome") : std::string_view(line)));
}

}  // namespace

frmTags::frmTags(Session& session, Environment& env, QWidget* parent)
    : FormDialog(tagsTitle, parent),
      session_(session),
      env_(env),
      editor_(TagEditor::load(session, env.applicationFolder)) {
  auto* sides = new QHBoxLayout();
  sides->addWidget(makeList(), 2);
  sides->addWidget(makeFields(), 3);
  chkAbilita_ = named(new QCheckBox(toQt(tagsEnabled)), "chkAbilita");
  chkAbilita_->setChecked(editor_.isEnabled());
  QDialogButtonBox* buttons = makeButtons();
  connect(buttons, &QDialogButtonBox::accepted, this, &frmTags::save);
  auto* column = new QVBoxLayout(this);
  column->addLayout(sides, 1);
  column->addWidget(chkAbilita_);
  column->addWidget(buttons);
  lstTag_->setCurrentRow(editor_.tags().empty() ? -1 : 0);
  showTag();
  sizeInCharacters(96, 26);
}

QWidget* frmTags::makeList() {
  lstTag_ = named(new QListWidget(), "lstTag");
  for (std::size_t i = 0; i < editor_.tags().size(); ++i) showLine(new QListWidgetItem(lstTag_), editor_.line(i));
  auto* cmdNuovo = named(new QPushButton(toQt("N&uovo")), "cmdNuovo");
  cmdElimina_ = named(new QPushButton(toQt("&Elimina")), "cmdElimina");
  for (QPushButton* button : {cmdNuovo, cmdElimina_}) button->setAutoDefault(false);
  auto* row = new QHBoxLayout();
  row->addWidget(cmdNuovo);
  row->addWidget(cmdElimina_);
  row->addStretch();
  auto* side = new QWidget();
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(labelFor("&Tag:", lstTag_));
  column->addWidget(lstTag_, 1);
  column->addLayout(row);
  connect(lstTag_, &QListWidget::currentRowChanged, this, &frmTags::showTag);
  connect(cmdNuovo, &QPushButton::clicked, this, &frmTags::addTag);
  connect(cmdElimina_, &QPushButton::clicked, this, &frmTags::removeTag);
  return side;
}

QWidget* frmTags::makeFields() {
  txtNome_ = named(new QLineEdit(), "txtNome");
  txtContenuto_ = named(new QPlainTextEdit(), "txtContenuto");
  txtContenuto_->setTabChangesFocus(true);
  noteReferences(txtNome_);
  noteReferences(txtContenuto_);
  optNegozio_ = named(new QRadioButton(toQt(tagsOfShop)), "optNegozio");
  optTutti_ = named(new QRadioButton(toQt(tagsOfAll)), "optTutti");
  auto* validity = new QGroupBox(toQt("Validità"));
  auto* choices = new QVBoxLayout(validity);
  choices->addWidget(optNegozio_);
  choices->addWidget(optTutti_);
  auto* side = new QWidget();
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(labelFor("&Nome:", txtNome_));
  column->addWidget(txtNome_);
  column->addWidget(labelFor("&Contenuto:", txtContenuto_));
  column->addWidget(txtContenuto_, 1);
  column->addWidget(validity);
  connect(txtNome_, &QLineEdit::textEdited, this, &frmTags::nameTyped);
  connect(txtContenuto_, &QPlainTextEdit::textChanged, this, [this] {
    if (!showing_ && current() >= 0) editor_.setText(static_cast<std::size_t>(current()), textOf(*txtContenuto_));
  });
  connect(optNegozio_, &QRadioButton::toggled, this, [this](bool ofShop) {
    if (!showing_ && current() >= 0) editor_.setOfShop(static_cast<std::size_t>(current()), ofShop);
  });
  return side;
}

int frmTags::current() const { return lstTag_->currentRow(); }

void frmTags::showTag() {
  const bool any = current() >= 0;
  const CustomTag tag = any ? editor_.tags()[static_cast<std::size_t>(current())] : CustomTag();
  showing_ = true;
  txtNome_->setText(toQt(tag.name));
  txtContenuto_->setPlainText(toQt(tag.text));
  optNegozio_->setChecked(tag.ofShop);
  optTutti_->setChecked(!tag.ofShop);
  showing_ = false;
  for (QWidget* field : std::initializer_list<QWidget*>{txtNome_, txtContenuto_, optNegozio_, optTutti_, cmdElimina_}) {
    field->setEnabled(any);
  }
}

void frmTags::addTag() {
  if (!editor_.add()) {
    env_.user.message(std::string(tagsFull), Icon::Exclamation);
    return;
  }
  showLine(new QListWidgetItem(lstTag_), {});
  lstTag_->setCurrentRow(lstTag_->count() - 1);
  txtNome_->setFocus();
}

void frmTags::removeTag() {
  const int row = current();
  if (row < 0) return;
  {
    // The list reports a current row in the middle of its removal, when the indexes of list and editor differ.
    const QSignalBlocker quiet(lstTag_);
    delete lstTag_->takeItem(row);
    editor_.remove(static_cast<std::size_t>(row));
  }
  showTag();
}

void frmTags::nameTyped() {
  const int row = current();
  if (row < 0) return;
  if (!editor_.setName(static_cast<std::size_t>(row), fromQt(txtNome_->text()))) {
    txtNome_->setText(toQt(editor_.tags()[static_cast<std::size_t>(row)].name));
    return showNote(*txtNome_, toQt(tagNameRefused));
  }
  showNote(*txtNome_, {});
  showLine(lstTag_->item(row), editor_.line(static_cast<std::size_t>(row)));
}

void frmTags::reject() {
  editor_.setEnabled(chkAbilita_->isChecked());
  const Question question{std::string(tagsUnsaved), Buttons::YesNo, Answer::No, Icon::Exclamation};
  if (editor_.isChanged() && env_.user.question(question) != Answer::Yes) return;
  FormDialog::reject();
}

void frmTags::save() {
  editor_.setEnabled(chkAbilita_->isChecked());
  const auto saved = editor_.save(session_, env_.applicationFolder);
  if (!saved) {
    env_.user.message(failureText(saved.error()), Icon::Critical);
    return;
  }
  finish("OK");
}

}  // namespace kv
