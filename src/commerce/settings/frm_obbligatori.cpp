#include "commerce/settings/frm_obbligatori.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/ports/failure_text.h"

namespace kv {

frmObbligatori::frmObbligatori(Session& session, Environment& env, HelpOpener help, QWidget* parent)
    : FormDialog(requiredFieldsTitle, parent), session_(session), env_(env) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(wrappedText(requiredFieldsNote));
  for (std::size_t i = 0; i < chkCampo_.size(); ++i) {
    chkCampo_[i] = named(new QCheckBox(toQt(requiredFields[i])), "chkCampo" + std::to_string(i));
    column->addWidget(chkCampo_[i]);
  }
  auto* cmdReset = named(new QPushButton(toQt(resetCaption)), "cmdReset");
  cmdReset->setAutoDefault(false);
  column->addWidget(cmdReset, 0, Qt::AlignLeft);
  column->addStretch();
  QDialogButtonBox* buttons = makeButtons();
  column->addWidget(buttons);
  addHelp(buttons, std::move(help), "pagine/sito.htm");
  connect(cmdReset, &QPushButton::clicked, this, [this] { show(requiredByDefault); });
  connect(buttons, &QDialogButtonBox::accepted, this, &frmObbligatori::store);
  show(loadRequiredFields(session.catalogue).value_or(RequiredFields{}));
  sizeInCharacters(72, 16);
}

void frmObbligatori::show(const RequiredFields& fields) {
  for (std::size_t i = 0; i < chkCampo_.size(); ++i) chkCampo_[i]->setChecked(fields[i]);
}

void frmObbligatori::store() {
  RequiredFields fields{};
  for (std::size_t i = 0; i < chkCampo_.size(); ++i) fields[i] = chkCampo_[i]->isChecked();
  if (const auto stored = storeRequiredFields(session_.catalogue, fields); !stored) {
    env_.user.message(failureText(stored.error()), Icon::Critical);
    return;
  }
  finish("OK");
}

}  // namespace kv
