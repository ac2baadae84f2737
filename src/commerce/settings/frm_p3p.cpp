#include "commerce/settings/frm_p3p.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "commerce/settings/required_fields.h"
#include "platform/ports/failure_text.h"

namespace kv {
namespace {

/// An address that a click or Enter opens.
QPushButton* addressButton(std::string_view address, int number) {
  auto* button = named(new QPushButton(toQt(address)), "lblIndirizzo" + std::to_string(number));
  button->setFlat(true);
  button->setAutoDefault(false);
  button->setCursor(Qt::PointingHandCursor);
  QFont font = button->font();
  font.setUnderline(true);
  button->setFont(font);
  return button;
}

}  // namespace

frmP3P::frmP3P(Session& session, Environment& env, AddressOpener open, HelpOpener help, QWidget* parent)
    : FormDialog(privacyTitle, parent), session_(session), env_(env) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(wrappedText(privacyNote));
  txtP3P_ = named(new QLineEdit(toQt(loadPrivacyPolicy(session.catalogue).value_or(""))), "txtP3P");
  column->addWidget(labelFor("&Compact Privacy Policy:", txtP3P_));
  column->addWidget(txtP3P_);
  auto* cmdReset = named(new QPushButton(toQt(resetCaption)), "cmdReset");
  cmdReset->setAutoDefault(false);
  column->addWidget(cmdReset, 0, Qt::AlignLeft);
  int number = 0;
  for (const std::string_view address : privacyAddresses) {
    QPushButton* button = addressButton(address, number++);
    column->addWidget(button, 0, Qt::AlignLeft);
    connect(button, &QPushButton::clicked, this, [open, address] { open(std::string(address)); });
  }
  column->addStretch();
  QDialogButtonBox* buttons = makeButtons();
  addHelp(buttons, std::move(help), "pagine/sito.htm");
  column->addWidget(buttons);
  connect(cmdReset, &QPushButton::clicked, this, [this] { txtP3P_->setText(toQt(defaultPrivacyPolicy)); });
  connect(buttons, &QDialogButtonBox::accepted, this, &frmP3P::store);
  sizeInCharacters(80, 16);
  txtP3P_->setFocus();
}

void frmP3P::store() {
  if (const auto stored = storePrivacyPolicy(session_.catalogue, fromQt(txtP3P_->text())); !stored) {
    env_.user.message(failureText(stored.error()), Icon::Critical);
    return;
  }
  finish("OK");
}

}  // namespace kv
