#include "commerce/shipping/frm_spedizione.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QTabWidget>
#include <QVBoxLayout>

#include "commerce/shipping/frm_shipping_countries.h"
#include "commerce/shipping/frm_shipping_methods.h"
#include "commerce/shipping/frm_shipping_trial.h"
#include "commerce/shipping/frm_shipping_zones.h"
#include "commerce/shipping/shipping_texts.h"
#include "platform/qt/frm_number_line.h"

namespace kv {

frmSpedizione::frmSpedizione(Session& session, Environment& env, const ShippingHooks& hooks, QWidget* parent)
    : FormDialog(shippingTitle, parent), editor_(session, env.user, hooks.decimalSeparator) {
  setObjectName(QStringLiteral("frmSpedizione"));
  pages_ = named(new QTabWidget(), "tabSpedizione", "Spese di spedizione");
  zones_ = new ShippingZonesPage(editor_, hooks.decimalSeparator);
  methods_ = new ShippingMethodsPage(
      editor_, [this] { methodsChanged(); }, hooks.configure);
  pages_->addTab(methods_, toQt("&Metodi"));
  pages_->addTab(new ShippingCountriesPage(editor_, [this] { showPreselection(); }), toQt("&Paesi"));
  pages_->addTab(zones_, toQt("&Zone e spese"));
  pages_->addTab(new ShippingTrialPage(session, editor_, hooks.decimalSeparator), toQt("P&rova"));
  QDialogButtonBox* buttons = makeButtons();
  addHelp(buttons, hooks.help, "pagine/spedizione.htm");
  connect(buttons, &QDialogButtonBox::accepted, this, &frmSpedizione::accepted);
  auto* column = new QVBoxLayout(this);
  column->addWidget(pages_, 1);
  column->addWidget(makePreselection());
  column->addWidget(makeSettings(hooks.decimalSeparator));
  column->addWidget(buttons);
  showPreselection();
  sizeInCharacters(110, 36);
}

QWidget* frmSpedizione::makePreselection() {
  cboPagamento_ = named(new QComboBox(), "cboPagamento");
  cboPaese_ = named(new QComboBox(), "cboPaese");
  auto* group = new QGroupBox(toQt("Preselezione"));
  auto* row = new QHBoxLayout(group);
  row->addWidget(labelFor("Pa&gamento/spedizione:", cboPagamento_));
  row->addWidget(cboPagamento_, 1);
  row->addWidget(labelFor("Paese preselezio&nato:", cboPaese_));
  row->addWidget(cboPaese_, 1);
  connect(cboPagamento_, &QComboBox::activated, this, [this](int index) {
    ignore(editor_.preselectMethod(cboPagamento_->itemData(index).toInt()), "the list shows what is stored");
    showPreselection();
  });
  connect(cboPaese_, &QComboBox::activated, this, [this](int index) {
    ignore(editor_.preselectCountry(fromQt(cboPaese_->itemData(index).toString())), "the list shows what is stored");
    showPreselection();
  });
  return group;
}

QWidget* frmSpedizione::makeSettings(char decimalSeparator) {
  NumberKeys keys;
  keys.decimalSeparator = decimalSeparator;
  keys.spaces = true;
  txtIvaSpese_ = named(new NumberLine(keys), "txtIvaSpese");
  txtIvaSpese_->load(toQt(editor_.vatRate()));
  connect(txtIvaSpese_, &QLineEdit::editingFinished, this, [this] { ignore(leaveVatRate(), "the field says it"); });
  chkAlfabetico_ = named(new QCheckBox(toQt(shippingAlphabetic)), "chkAlfabetico");
  chkAlfabetico_->setChecked(editor_.isAlphabetic());
  connect(chkAlfabetico_, &QCheckBox::clicked, this, [this](bool on) {
    ignore(editor_.setAlphabetic(on), "the box shows what is stored");
    chkAlfabetico_->setChecked(editor_.isAlphabetic());
  });
  auto* settings = new QWidget();
  auto* row = new QHBoxLayout(settings);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(labelFor(shippingVatRate, txtIvaSpese_));
  row->addWidget(txtIvaSpese_);
  row->addWidget(chkAlfabetico_);
  row->addStretch(1);
  return settings;
}

void frmSpedizione::showPreselection() {
  const OfferedMethods offered = editor_.PopolaMetodi();
  cboPagamento_->clear();
  for (const OfferedMethod& one : offered.items) cboPagamento_->addItem(toQt(one.name), one.number);
  cboPagamento_->setCurrentIndex(offered.selected);
  cboPaese_->clear();
  for (const ShippingCountry& one : editor_.countries()) cboPaese_->addItem(toQt(one.paese), toQt(one.strID));
  cboPaese_->setCurrentIndex(cboPaese_->findData(toQt(editor_.preselectedCountry())));
}

void frmSpedizione::methodsChanged() {
  zones_->showMethods();
  showPreselection();
}

bool frmSpedizione::leaveVatRate() {
  const std::string shown = editor_.leaveVatRate(fromQt(txtIvaSpese_->text()));
  if (editor_.failure().empty()) {
    txtIvaSpese_->load(toQt(shown));
    return true;
  }
  txtIvaSpese_->keepUnsaved(toQt("Non salvato. " + editor_.failure()));
  return false;
}

void frmSpedizione::accepted() {
  if (!methods_->storeTyped()) return pages_->setCurrentWidget(methods_);
  if (!zones_->storeTyped()) return pages_->setCurrentWidget(zones_);
  if (!leaveVatRate()) return txtIvaSpese_->setFocus();
  const ShippingAnswer answer = editor_.accept();
  if (answer.closed) {
    finish("OK");
    return;
  }
  if (answer.zone == 0) return;
  pages_->setCurrentWidget(zones_);
  zones_->goToZone(answer.zone);
}

}  // namespace kv
