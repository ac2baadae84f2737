#include "publish/orders/desk/frm_order_panel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/qt/frm_dialog.h"
#include "publish/orders/desk/frm_enter_key.h"
#include "publish/orders/desk/order_list.h"

namespace kv {
namespace {

constexpr int messageLines = 3;
constexpr int longestNote = 2000;

int chosenIndex(const std::string& state) {
  const auto& states = orderStates();
  for (std::size_t i = 0; i < states.size(); ++i) {
    if (states[i] == state) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace

OrderPanel::OrderPanel(OrderPanelActions actions, QWidget* parent) : QWidget(parent), actions_(std::move(actions)) {
  txtDettaglio_ = named(new QPlainTextEdit(), "txtDettaglio");
  txtDettaglio_->setReadOnly(true);
  txtDettaglio_->setTabChangesFocus(true);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(labelFor("Ordine scelto:", txtDettaglio_));
  column->addWidget(txtDettaglio_, 1);
  column->addWidget(makeState());
  column->addWidget(makeNote());
  update();
}

QWidget* OrderPanel::makeState() {
  cboNuovoStato_ = named(new QComboBox(), "cboNuovoStato");
  for (const std::string& state : orderStates()) cboNuovoStato_->addItem(toQt(stateTitle(state)));
  cmdStato_ = named(new QPushButton(QStringLiteral("Cam&bia stato")), "cmdStato");
  chkScrivi_ = named(new QCheckBox(QStringLiteral("Scrivere al clie&nte")), "chkScrivi");
  chkScorte_ = named(new QCheckBox(QStringLiteral("Correggere le &quantità disponibili")), "chkScorte");
  chkScrivi_->setChecked(true);
  chkScorte_->setChecked(true);
  chkScorte_->setToolTip(QStringLiteral("I pezzi di un ordine annullato tornano disponibili, e il contrario"));
  txtMessaggio_ = named(new QPlainTextEdit(), "txtMessaggio");
  txtMessaggio_->setTabChangesFocus(true);
  txtMessaggio_->setPlaceholderText(QStringLiteral("vuoto: il testo previsto per lo stato"));
  txtMessaggio_->setMaximumHeight(fontMetrics().lineSpacing() * (messageLines + 1));
  auto* state = new QWidget();
  auto* grid = new QGridLayout(state);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->addWidget(labelFor("Nuo&vo stato:", cboNuovoStato_), 0, 0);
  grid->addWidget(cboNuovoStato_, 0, 1);
  grid->addWidget(cmdStato_, 0, 2);
  grid->addWidget(chkScorte_, 1, 1, 1, 2);
  grid->addWidget(chkScrivi_, 2, 1, 1, 2);
  grid->addWidget(labelFor("&Messaggio:", txtMessaggio_), 3, 0, Qt::AlignTop);
  grid->addWidget(txtMessaggio_, 3, 1, 1, 2);
  grid->setColumnStretch(1, 1);
  connect(cboNuovoStato_, &QComboBox::currentIndexChanged, this, &OrderPanel::update);
  connect(chkScrivi_, &QCheckBox::toggled, this, &OrderPanel::update);
  connect(cmdStato_, &QPushButton::clicked, this, &OrderPanel::changeState);
  return state;
}

QWidget* OrderPanel::makeNote() {
  txtNota_ = named(new QLineEdit(), "txtNota");
  txtNota_->setMaxLength(longestNote);
  cmdNota_ = named(new QPushButton(QStringLiteral("Annota")), "cmdNota");
  auto* note = new QWidget();
  auto* row = new QHBoxLayout(note);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(labelFor("Annota&zione:", txtNota_));
  row->addWidget(txtNota_, 1);
  row->addWidget(cmdNota_);
  connect(txtNota_, &QLineEdit::textChanged, this, &OrderPanel::update);
  connect(cmdNota_, &QPushButton::clicked, this, &OrderPanel::addNote);
  onEnter(*txtNota_, [this] { addNote(); });
  return note;
}

int OrderPanel::chosenState() const { return cboNuovoStato_->currentIndex(); }

void OrderPanel::showOrder(std::optional<DeskOrder> order) {
  const bool isSame = order && order_ && order->id == order_->id && order->code == order_->code;
  const bool hasMoved = !isSame || order->state != order_->state;
  order_ = std::move(order);
  txtDettaglio_->setPlainText(order_ ? toQt(orderDetails(*order_)) : QString());
  cboNuovoStato_->setCurrentIndex(order_ ? chosenIndex(order_->state) : -1);
  // What was typed for another order, or for a change that is done, is not for this one.
  if (hasMoved) txtMessaggio_->clear();
  if (!isSame) txtNota_->clear();
  update();
}

void OrderPanel::update() {
  const bool isChange = order_ && typedStateChange(*order_, chosenState());
  const bool hasAddress = order_ && !order_->email.empty();
  cboNuovoStato_->setEnabled(order_.has_value());
  cmdStato_->setEnabled(isChange);
  chkScorte_->setEnabled(order_ && offersStock(*order_, chosenState()));
  chkScrivi_->setEnabled(isChange && hasAddress);
  txtMessaggio_->setEnabled(isChange && hasAddress && chkScrivi_->isChecked());
  txtNota_->setEnabled(order_.has_value());
  cmdNota_->setEnabled(order_ && !txtNota_->text().trimmed().isEmpty());
}

void OrderPanel::changeState() {
  auto change = order_ ? typedStateChange(*order_, chosenState()) : std::nullopt;
  if (!change) return;
  change->movesStock = chkScorte_->isEnabled() && chkScorte_->isChecked();
  change->notifiesCustomer = chkScrivi_->isEnabled() && chkScrivi_->isChecked();
  if (change->notifiesCustomer) change->message = textOf(*txtMessaggio_);
  actions_.changeState(*change);
}

void OrderPanel::addNote() {
  if (!cmdNota_->isEnabled()) return;
  if (actions_.addNote(fromQt(txtNota_->text().trimmed()))) txtNota_->clear();
}

}  // namespace kv
