#include "publish/settings/frm_firewall.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardItemModel>
#include <QVBoxLayout>
#include <initializer_list>
#include <utility>

#include "platform/ports/failure_text.h"

namespace kv {
namespace {

constexpr std::string_view firewallTitle = "Korvane - Impostazioni FTP avanzate";

QLineEdit* addLine(QFormLayout& form, std::string_view label, std::string_view name) {
  auto* field = named(new QLineEdit(), name);
  form.addRow(labelFor(label, field), field);
  return field;
}

template <class Names>
QComboBox* addNames(QFormLayout& form, std::string_view label, std::string_view name, const Names& names) {
  auto* box = named(new QComboBox(), name);
  for (const std::string_view one : names) box->addItem(toQt(one));
  form.addRow(labelFor(label, box), box);
  return box;
}

}  // namespace

frmFirewall::frmFirewall(std::string shopFolder, UserPort& user, Verifier verify, QWidget* parent)
    : FormDialog(firewallTitle, parent), shopFolder_(std::move(shopFolder)), user_(user) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(makeConnection());
  column->addWidget(makeFirewall());
  column->addStretch();
  QDialogButtonBox* buttons = makeButtons();
  auto* cmdReset = named(buttons->addButton(toQt("&Reset"), QDialogButtonBox::ResetRole), "cmdReset");
  connect(cmdReset, &QPushButton::clicked, this, [this] {
    if (resetFirewall(shopFolder_, user_)) show({});
  });
  if (verify) {
    auto* cmdVerifica =
        named(buttons->addButton(toQt("&Verifica connessione"), QDialogButtonBox::ResetRole), "cmdVerifica");
    connect(cmdVerifica, &QPushButton::clicked, this, [this, verify = std::move(verify)] { verify(shown()); });
  }
  connect(buttons, &QDialogButtonBox::accepted, this, &frmFirewall::save);
  column->addWidget(buttons);
  show(readFirewallSettings(shopFolder_));
  sizeInCharacters(60, 22);
}

QWidget* frmFirewall::makeConnection() {
  auto* group = new QGroupBox(toQt("Connessione"));
  auto* form = new QFormLayout(group);
  cboProtocollo_ = addNames(*form, "Protoco&llo:", "cboProtocollo", protocolNames);
  connect(cboProtocollo_, &QComboBox::activated, this, &frmFirewall::changeProtocol);
  optPassiva_ = named(new QRadioButton(toQt("Connessione &passiva (usa PASV)")), "optPassiva");
  optAttiva_ = named(new QRadioButton(toQt("Connessione &attiva (usa PORT)")), "optAttiva");
  form->addRow(optPassiva_);
  form->addRow(optAttiva_);
  txtPortaFTP_ = addLine(*form, "Porta &FTP:", "txtPortaFTP");
  cboTLS_ = addNames(*form, "Connessione &cifrata (TLS):", "cboTLS", tlsModes);
  connect(cboTLS_, &QComboBox::activated, this, &frmFirewall::changePort);
  chkDisc_ = named(new QCheckBox(toQt("Usa &disconnessione / riconnessione")), "chkDisc");
  form->addRow(chkDisc_);
  return group;
}

QWidget* frmFirewall::makeFirewall() {
  auto* group = new QGroupBox(toQt("Firewall"));
  auto* form = new QFormLayout(group);
  cboTipo_ = addNames(*form, "&Tipo:", "cboTipo", firewallKinds);
  txtHost_ = addLine(*form, "&Host:", "txtHost");
  txtPorta_ = addLine(*form, "P&orta:", "txtPorta");
  txtUser_ = addLine(*form, "&Username:", "txtUser");
  txtPassword_ = addLine(*form, "Pass&word:", "txtPassword");
  txtPassword_->setEchoMode(QLineEdit::Password);
  connect(cboTipo_, &QComboBox::currentIndexChanged, this, &frmFirewall::enable);
  return group;
}

void frmFirewall::show(const FirewallSettings& settings) {
  settings_ = shownFirewall(settings);
  cboProtocollo_->setCurrentIndex(static_cast<int>(settings_.protocol));
  (settings_.passive ? optPassiva_ : optAttiva_)->setChecked(true);
  txtPortaFTP_->setText(toQt(settings_.ftpPort));
  cboTLS_->setCurrentIndex(static_cast<int>(settings_.tls));
  chkDisc_->setChecked(settings_.reconnects);
  cboTipo_->setCurrentIndex(static_cast<int>(settings_.kind));
  txtHost_->setText(toQt(settings_.host));
  txtPorta_->setText(toQt(settings_.port));
  txtUser_->setText(toQt(settings_.user));
  txtPassword_->setText(toQt(settings_.password));
  enable();
}

FirewallSettings frmFirewall::shown() const {
  FirewallSettings settings = settings_;
  settings.protocol = protocol();
  settings.passive = optPassiva_->isChecked();
  settings.ftpPort = fromQt(txtPortaFTP_->text());
  settings.tls = static_cast<TlsMode>(cboTLS_->currentIndex());
  settings.reconnects = chkDisc_->isChecked();
  settings.kind = static_cast<FirewallKind>(cboTipo_->currentIndex());
  settings.host = fromQt(txtHost_->text());
  settings.port = fromQt(txtPorta_->text());
  settings.user = fromQt(txtUser_->text());
  settings.password = fromQt(txtPassword_->text());
  return settings;
}

TransferProtocol frmFirewall::protocol() const { return static_cast<TransferProtocol>(cboProtocollo_->currentIndex()); }

void frmFirewall::changePort() {
  const auto tls = static_cast<TlsMode>(cboTLS_->currentIndex());
  txtPortaFTP_->setText(toQt(portAfterChange(fromQt(txtPortaFTP_->text()), protocol(), tls)));
}

void frmFirewall::changeProtocol() {
  changePort();
  if (!carries(static_cast<FirewallKind>(cboTipo_->currentIndex()), protocol())) cboTipo_->setCurrentIndex(0);
  enable();
}

void frmFirewall::enable() {
  const bool isFtp = areFtpFieldsEnabled(protocol());
  for (QWidget* field : std::initializer_list<QWidget*>{optPassiva_, optAttiva_, cboTLS_}) field->setEnabled(isFtp);
  const auto* const kinds = qobject_cast<QStandardItemModel*>(cboTipo_->model());
  for (int i = 0; i < cboTipo_->count(); ++i) {
    kinds->item(i)->setEnabled(carries(static_cast<FirewallKind>(i), protocol()));
  }
  const bool used = areFirewallFieldsEnabled(static_cast<FirewallKind>(cboTipo_->currentIndex()));
  for (QLineEdit* field : {txtHost_, txtPorta_, txtUser_, txtPassword_}) field->setEnabled(used);
}

void frmFirewall::save() {
  const auto written = writeFirewallSettings(shopFolder_, shown());
  if (!written) {
    user_.message(failureText(written.error(), firewallSettingsFile), Icon::Exclamation);
    return;
  }
  finish("OK");
}

}  // namespace kv
