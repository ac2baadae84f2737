#include "commerce/gateways/frm_configura_pg.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kv {
namespace {

constexpr int buttonRows = 8;

}  // namespace

frmConfiguraPG::frmConfiguraPG(Session& session, Environment& env, GatewayHooks hooks, QWidget* parent)
    : FormDialog("Korvane - Configurazione sistemi di pagamento", parent),
      session_(session),
      env_(env),
      hooks_(std::move(hooks)) {
  setObjectName(QStringLiteral("frmConfiguraPG"));
  auto* grid = new QGridLayout();
  for (std::size_t i = 0; i < gatewayModules().size(); ++i) {
    auto* button = named(new QPushButton(), "cmdConfigura" + std::to_string(i));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, i] { configure(i); });
    grid->addWidget(button, static_cast<int>(i) % buttonRows, static_cast<int>(i) / buttonRows);
    buttons_.push_back(button);
  }
  QDialogButtonBox* close = makeClose();
  addHelp(close, hooks_.help, "pagine/pagamenti.htm");
  auto* column = new QVBoxLayout(this);
  column->addLayout(grid);
  lblConferma_ = named(wrappedText(""), "lblConferma");
  column->addWidget(lblConferma_);
  column->addStretch(1);
  column->addWidget(close);
  showStates();
}

void frmConfiguraPG::reject() {
  if (changed_) {
    finish("OK");
  } else {
    FormDialog::reject();
  }
}

void frmConfiguraPG::configure(std::size_t index) {
  frmPG dialog(session_, env_, gatewayModules()[index], hooks_, this);
  dialog.exec();
  changed_ = changed_ || !dialog.tag().empty();
  showStates();
}

void frmConfiguraPG::showStates() {
  const std::vector<GatewayState> states = gatewayStates(session_);
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    buttons_[i]->setText(toQt(gatewayModules()[i].folder) + QStringLiteral(": ") + toQt(gatewayStateText(states[i])));
  }
  QStringList names;
  for (const std::string_view name : modulesToConfirm(session_)) names << toQt(name);
  lblConferma_->setText(
      toQt("I modelli o i testi di questi sistemi sono cambiati; aprili e premi OK perché valgano: ") +
      names.join(QStringLiteral(", ")));
  lblConferma_->setVisible(!names.isEmpty());
}

}  // namespace kv
