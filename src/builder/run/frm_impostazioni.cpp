#include "builder/run/frm_impostazioni.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/ports/failure_text.h"

namespace kv {

frmImpostazioni::frmImpostazioni(Session& session, Environment& env, QWidget* parent)
    : FormDialog(buildSettingsTitle, parent), session_(session), env_(env) {
  auto* column = new QVBoxLayout(this);
  chkSelettiva_ = named(new QCheckBox(toQt("&Utilizza costruzione selettiva")), "chkSelettiva");
  chkSelettiva_->setToolTip(toQt("Scrive soltanto le pagine che sono cambiate"));
  column->addWidget(chkSelettiva_);
  txtEstensione_ = named(new QLineEdit(), "txtEstensione");
  auto* form = new QFormLayout();
  form->addRow(labelFor("&Estensione:", txtEstensione_), txtEstensione_);
  column->addLayout(form);
  chkLeggere_ = named(new QCheckBox(toQt("Immagini &leggere per il web")), "chkLeggere");
  chkLeggere_->setToolTip(
      toQt("Accanto a ogni immagine ne pubblica anche versioni WebP più leggere, che il negozio offre\n"
           "ai browser che le sanno mostrare"));
  column->addWidget(chkLeggere_);
  auto* cmdReset = named(new QPushButton(toQt("Ripristina la configurazione di default")), "cmdReset");
  cmdReset->setAutoDefault(false);
  column->addWidget(cmdReset, 0, Qt::AlignLeft);
  column->addStretch();
  QDialogButtonBox* buttons = makeButtons();
  column->addWidget(buttons);
  connect(cmdReset, &QPushButton::clicked, this, [this] { show({true, std::string(defaultExtension), false}); });
  connect(buttons, &QDialogButtonBox::accepted, this, &frmImpostazioni::store);
  show(loadBuildSettings(session).value_or(BuildSettings()));
}

void frmImpostazioni::show(const BuildSettings& settings) {
  chkSelettiva_->setChecked(settings.selective);
  txtEstensione_->setText(toQt(settings.extension));
  chkLeggere_->setChecked(settings.light);
}

void frmImpostazioni::store() {
  const BuildSettings wanted{chkSelettiva_->isChecked(), fromQt(txtEstensione_->text()), chkLeggere_->isChecked()};
  if (const auto stored = storeBuildSettings(session_, env_.settings, wanted); !stored) {
    env_.user.message(failureText(stored.error()), Icon::Critical);
    return;
  }
  finish("OK");
}

}  // namespace kv
