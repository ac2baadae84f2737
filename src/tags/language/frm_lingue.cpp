#include "tags/language/frm_lingue.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <utility>
#include "platform/ports/failure_text.h"

namespace kv {
namespace {

std::size_t indexOf(int language) { return static_cast<std::size_t>(language - 1); }

}  // namespace

frmLingue::frmLingue(Session& session, Environment& env, LanguageHooks hooks, QWidget* parent)
    : FormDialog(languagesTitle, parent),
      session_(session),
      env_(env),
      hooks_(std::move(hooks)),
      modules_(languageModules(env.applicationFolder)),
      choice_(languagesOf(session)) {
  auto* form = new QFormLayout();
  cboNumero_ = named(new QComboBox(), "cboNumero");
  for (int n = 1; n <= maxLanguages; ++n) cboNumero_->addItem(QString::number(n));
  cboNumero_->setCurrentIndex(choice_.count - 1);
  form->addRow(labelFor("&Numero lingue del negozio:", cboNumero_), cboNumero_);
  for (int n = 1; n <= maxLanguages; ++n) {
    QComboBox* box = makeBox(n);
    form->addRow(labelFor("Lingua &" + std::to_string(n) + ":", box), box);
  }
  QDialogButtonBox* buttons = makeButtons();
  ok_ = buttons->button(QDialogButtonBox::Ok);
  connect(buttons, &QDialogButtonBox::accepted, this, &frmLingue::store);
  auto* column = new QVBoxLayout(this);
  column->addLayout(form);
  column->addStretch();
  column->addWidget(buttons);
  connect(cboNumero_, &QComboBox::currentIndexChanged, this, [this](int index) { numberChosen(index + 1); });
  showBoxes();
  sizeInCharacters(56, 14);
}

QComboBox* frmLingue::makeBox(int language) {
  QComboBox* box = named(new QComboBox(), "cboLingua" + std::to_string(language));
  for (const std::string& module : modules_) box->addItem(toQt(module));
  // The shop may use a module that isn't installed here: the build refuses it, but this dialog keeps it.
  const QString code = toQt(choice_.codes[indexOf(language)]);
  if (!code.isEmpty() && box->findText(code) < 0) box->addItem(code);
  cboLingua_[indexOf(language)] = box;
  connect(box, &QComboBox::currentIndexChanged, this, [this, language] { codeChosen(language); });
  return box;
}

void frmLingue::showBoxes() {
  for (int n = 1; n <= maxLanguages; ++n) {
    QComboBox* box = cboLingua_[indexOf(n)];
    const QSignalBlocker quiet(box);
    box->setCurrentIndex(box->findText(toQt(choice_.codes[indexOf(n)])));
    box->setEnabled(choice_.isEnabled(n));
  }
  ok_->setEnabled(choice_.canAccept());
}

void frmLingue::numberChosen(int number) {
  choice_.setCount(number, modules_);
  showBoxes();
}

void frmLingue::codeChosen(int language) {
  choice_.codes[indexOf(language)] = fromQt(cboLingua_[indexOf(language)]->currentText());
  showBoxes();
}

void frmLingue::store() {
  if (const int repeated = choice_.repeated(); repeated > 0) {
    if (env_.user.question(repeatedQuestion(choice_, repeated)) != Answer::Yes) {
      return cboLingua_[indexOf(repeated)]->setFocus();
    }
  }
  const auto stored = storeLanguages(session_, choice_, hooks_);
  if (!stored) {
    env_.user.message(failureText(stored.error()), Icon::Critical);
    return;
  }
  finish("OK");
}

}  // namespace kv
