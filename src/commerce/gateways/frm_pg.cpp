#include "commerce/gateways/frm_pg.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "platform/ports/failure_text.h"
#include "platform/qt/frm_reference_note.h"
#include "platform/text/text.h"

namespace kv {

frmPG::frmPG(Session& session, Environment& env, const GatewayModule& module, const GatewayHooks& hooks,
             QWidget* parent)
    : FormDialog("Korvane - " + std::string(module.folder), parent),
      session_(session),
      env_(env),
      account_(GatewayAccount::load(session, module)),
      shopAddress_(hooks.shopAddress),
      written_(hooks.written) {
  setObjectName(toQt(module.dialog));
  auto* form = new QFormLayout();
  if (module.hasModes()) addModes(*form, hooks);
  for (const AccountKey& key : module.keys) addField(*form, key);
  if (!secrets_.empty()) addSecretSwitch(*form);
  QDialogButtonBox* buttons = makeButtons();
  addHelp(buttons, hooks.help, "pagine/pagamenti.htm");
  connect(buttons, &QDialogButtonBox::accepted, this, &frmPG::accepted);
  auto* column = new QVBoxLayout(this);
  column->addLayout(form, 1);
  column->addWidget(buttons);
  if (module.hasTest()) showTest();
  sizeInCharacters(96, 8);
}

void frmPG::addField(QFormLayout& form, const AccountKey& key) {
  switch (key.role) {
    case KeyRole::Constant:
    case KeyRole::Test:
      return;
    case KeyRole::Service:
      return addTest(form);
    case KeyRole::Lines:
      return addLines(form, key);
    case KeyRole::Moment:
      return addMoment(form, key);
    case KeyRole::Currency:
      return addCurrency(form, key);
    case KeyRole::Flag:
    case KeyRole::Prefix:
    case KeyRole::Language:
      return addFlag(form, key);
    default:
      addLine(form, key);
  }
}

QLineEdit* frmPG::addLine(QFormLayout& form, const AccountKey& key) {
  auto* line = named(new QLineEdit(toQt(account_.value(key.key))), "txt_" + std::string(key.key));
  form.addRow(labelFor(key.caption, line), line);
  connect(line, &QLineEdit::textChanged, this,
          [this, name = key.key](const QString& text) { account_.setValue(name, fromQt(text)); });
  if (key.role == KeyRole::Secret) {
    line->setEchoMode(QLineEdit::Password);
    secrets_.emplace_back(key.key, line);
  } else {
    noteReferences(line);
  }
  return line;
}

void frmPG::addLines(QFormLayout& form, const AccountKey& key) {
  auto* text = named(new QPlainTextEdit(toQt(account_.value(key.key))), "txt_" + std::string(key.key));
  text->setTabChangesFocus(true);
  noteReferences(text);
  form.addRow(labelFor(key.caption, text), text);
  connect(text, &QPlainTextEdit::textChanged, this,
          [this, text, name = key.key] { account_.setValue(name, replaceAll(textOf(*text), "\n", "\r\n")); });
}

void frmPG::addFlag(QFormLayout& form, const AccountKey& key) {
  auto* box = named(new QCheckBox(toQt(key.caption)), "chk_" + std::string(key.key));
  box->setChecked(account_.value(key.key) == "1");
  form.addRow(QString(), box);
  connect(box, &QCheckBox::toggled, this, [this, name = key.key](bool on) { account_.setValue(name, on ? "1" : "0"); });
  if (key.role == KeyRole::Prefix) chkCod_ = box;
}

void frmPG::addMoment(QFormLayout& form, const AccountKey& key) {
  auto* side = new QGroupBox(toQt(key.caption));
  auto* row = new QHBoxLayout(side);
  for (const char* caption : {"Immediata", "Differita"}) {
    const std::string first(1, caption[0]);
    auto* button = named(new QRadioButton(toQt(caption)), "opt_" + std::string(key.key) + first);
    button->setChecked(account_.value(key.key) == first);
    row->addWidget(button);
    connect(button, &QRadioButton::toggled, this, [this, name = key.key, first](bool on) {
      if (on) account_.setValue(name, first);
    });
  }
  row->addStretch(1);
  form.addRow(QString(), side);
}

void frmPG::addCurrency(QFormLayout& form, const AccountKey& key) {
  auto* box = named(new QComboBox(), "cbo_" + std::string(key.key));
  for (const std::string_view currency : paypalCurrencies) box->addItem(toQt(currency));
  box->setCurrentText(toQt(account_.value(key.key)));
  form.addRow(labelFor(key.caption, box), box);
  connect(box, &QComboBox::currentTextChanged, this,
          [this, name = key.key](const QString& text) { account_.setValue(name, fromQt(text)); });
}

void frmPG::addTest(QFormLayout& form) {
  chkTest_ = named(new QCheckBox(toQt("Usa il server di &test")), "chkTest");
  chkTest_->setChecked(account_.usesTest());
  txtTest_ = named(new QLineEdit(toQt(account_.testAddress())), "txtTest");
  form.addRow(QString(), chkTest_);
  form.addRow(labelFor("Indirizzo di &prova:", txtTest_), txtTest_);
  connect(chkTest_, &QCheckBox::toggled, this, [this](bool on) {
    account_.setUsesTest(on);
    showTest();
  });
  connect(txtTest_, &QLineEdit::textChanged, this, [this](const QString& text) {
    account_.setTestAddress(fromQt(text));
    showTest();
  });
}

void frmPG::showTest() {
  txtTest_->setEnabled(account_.usesTest());
  if (chkCod_ == nullptr) return;
  if (!account_.canPrefixOrder()) chkCod_->setChecked(false);
  chkCod_->setEnabled(account_.canPrefixOrder());
}

QPushButton* frmPG::addButton(QFormLayout& form, std::string_view caption, const char* name,
                              std::function<void()> run) {
  auto* button = named(new QPushButton(toQt(caption)), name);
  button->setAutoDefault(false);
  button->setEnabled(run != nullptr);
  form.addRow(QString(), button);
  connect(button, &QPushButton::clicked, this, [run = std::move(run)] { run(); });
  return button;
}

void frmPG::addSecretSwitch(QFormLayout& form) {
  auto* box = named(new QCheckBox(toQt("&Mostra le chiavi")), "chkMostra");
  form.addRow(QString(), box);
  connect(box, &QCheckBox::toggled, this, [this](bool shown) {
    for (const auto& [key, line] : secrets_) line->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password);
  });
  if (!account_.module().canEmptySecrets()) return;
  addButton(form, "S&vuota le chiavi", "cmdSvuota", [this] {
    account_.emptySecrets();
    showSecrets();
  });
}

void frmPG::showSecrets() {
  for (const auto& [key, line] : secrets_) line->setText(toQt(account_.value(key)));
}

void frmPG::addModes(QFormLayout& form, const GatewayHooks& hooks) {
  auto* group = new QGroupBox(toQt("Sicurezza"));
  auto* column = new QVBoxLayout(group);
  for (const SellaMode mode : {SellaMode::Crypt, SellaMode::Otp, SellaMode::Compatible}) {
    auto* button =
        named(new QRadioButton(toQt(sellaMode(mode).caption)), "optModo" + std::to_string(static_cast<int>(mode)));
    button->setChecked(account_.mode() == mode);
    column->addWidget(button);
    connect(button, &QRadioButton::toggled, this, [this, mode](bool on) {
      if (on) account_.setMode(mode);
      showAddresses();
    });
  }
  form.addRow(group);
  constexpr std::pair<std::string_view, const char*> fields[]{{"Indirizzo per la notifica:", "txtNotifica"},
                                                              {"Indirizzo di risposta positiva:", "txtRispostaOk"},
                                                              {"Indirizzo di risposta negativa:", "txtRispostaErr"}};
  for (const auto& [caption, name] : fields) {
    auto* line = named(new QLineEdit(), name);
    line->setReadOnly(true);
    form.addRow(labelFor(caption, line), line);
    addresses_.push_back(line);
  }
  addButton(form, "Lista delle pass&word...", "cmdPwd", hooks.passwords);
  addButton(form, "In&formazioni sulla lingua...", "cmdLingua", hooks.language);
  showAddresses();
}

void frmPG::showAddresses() {
  if (addresses_.size() < 3) return;
  const SellaAddresses shown = account_.addresses(shopAddress_);
  addresses_[0]->setText(toQt(shown.server));
  addresses_[1]->setText(toQt(shown.success));
  addresses_[2]->setText(toQt(shown.failure));
  for (QLineEdit* line : addresses_) line->setCursorPosition(0);
}

void frmPG::accepted() {
  auto saved = account_.save(session_);
  if (!saved) {
    env_.user.message(failureText(saved.error()), Icon::Exclamation);
    return;
  }
  if (written_) written_(std::move(*saved));
  finish("OK");
}

}  // namespace kv
