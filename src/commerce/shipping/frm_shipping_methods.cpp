#include "commerce/shipping/frm_shipping_methods.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "commerce/shipping/shipping_texts.h"
#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_field_mark.h"
#include "platform/qt/frm_reference_note.h"

namespace kv {

ShippingMethodsPage::ShippingMethodsPage(ShippingEditor& editor, std::function<void()> changed,
                                         std::function<void()> configure)
    : editor_(editor), changed_(std::move(changed)) {
  auto* grid = new QGridLayout();
  grid->addWidget(new QLabel(toQt("Modulo")), 0, 1);
  grid->addWidget(new QLabel(toQt("Nome per il cliente")), 0, 2);
  for (int number = 1; number <= paymentMethods; ++number) {
    makeRow(number);
    const Row& row = rows_[static_cast<std::size_t>(number - 1)];
    grid->addWidget(row.chkMetodo, number, 0);
    grid->addWidget(row.cboMetodo, number, 1);
    grid->addWidget(row.txtNome, number, 2);
    show(number);
  }
  grid->setColumnStretch(1, 1);
  grid->setColumnStretch(2, 1);
  auto* cmdConfigura = named(new QPushButton(toQt("C&onfigura i sistemi di pagamento...")), "cmdConfigura");
  cmdConfigura->setAutoDefault(false);
  cmdConfigura->setEnabled(configure != nullptr);
  connect(cmdConfigura, &QPushButton::clicked, this, [configure = std::move(configure)] { configure(); });
  auto* note = new QHBoxLayout();
  note->addWidget(wrappedText(shippingConfigureNote), 1);
  note->addWidget(cmdConfigura);
  auto* column = new QVBoxLayout(this);
  column->addLayout(grid);
  column->addLayout(note);
  column->addStretch(1);
}

void ShippingMethodsPage::makeRow(int number) {
  const std::string digit = std::to_string(number);
  Row& row = rows_[static_cast<std::size_t>(number - 1)];
  row.chkMetodo = named(new QCheckBox(toQt("Metodo &" + digit)), "chkMetodo" + digit);
  row.cboMetodo = named(new QComboBox(), "cboMetodo" + digit, "Modulo del metodo " + digit);
  for (const std::string& module : editor_.modules()) row.cboMetodo->addItem(toQt(module));
  row.txtNome = named(new QLineEdit(), "txtNome" + digit, "Nome del metodo " + digit);
  row.mark = noteReferences(row.txtNome);
  connect(row.chkMetodo, &QCheckBox::clicked, this, [this, number](bool on) { switched(number, on); });
  connect(row.cboMetodo, &QComboBox::activated, this, [this, number](int) {
    const QComboBox& modules = *rows_[static_cast<std::size_t>(number - 1)].cboMetodo;
    ignore(editor_.setModule(number, fromQt(modules.currentText())), "the field shows what is stored");
    show(number);
    changed_();
  });
  connect(row.txtNome, &QLineEdit::editingFinished, this, [this, number] {
    if (leaveName(number)) changed_();
  });
}

bool ShippingMethodsPage::leaveName(int number) {
  Row& row = rows_[static_cast<std::size_t>(number - 1)];
  const bool stored = editor_.setMethodName(number, fromQt(row.txtNome->text()));
  if (stored && row.unsaved) row.mark->clear();
  row.unsaved = !stored;
  if (stored) {
    show(number);
  } else {
    row.mark->show(toQt("Non salvato. " + editor_.failure()));
  }
  return stored;
}

bool ShippingMethodsPage::storeTyped() {
  bool stored = true;
  for (int number = 1; number <= paymentMethods; ++number) {
    if (rows_[static_cast<std::size_t>(number - 1)].unsaved) stored = leaveName(number) && stored;
  }
  return stored;
}

void ShippingMethodsPage::show(int number) {
  const ShippingMethod method = editor_.method(number);
  const Row& row = rows_[static_cast<std::size_t>(number - 1)];
  row.chkMetodo->setChecked(method.active);
  int index = row.cboMetodo->findText(toQt(method.module));
  if (index < 0 && !method.module.empty()) {
    // A module that isn't in the folder any more is shown as it is stored, so that nothing changes unasked.
    row.cboMetodo->addItem(toQt(method.module));
    index = row.cboMetodo->count() - 1;
  }
  row.cboMetodo->setCurrentIndex(index);
  if (!row.unsaved && row.txtNome->text() != toQt(method.name)) row.txtNome->setText(toQt(method.name));
  row.cboMetodo->setEnabled(method.active);
  row.txtNome->setEnabled(method.active);
}

void ShippingMethodsPage::switched(int number, bool on) {
  const bool stored = editor_.switchMethod(number, on);
  show(number);
  if (stored && on) rows_[static_cast<std::size_t>(number - 1)].txtNome->setFocus();
  changed_();
}

}  // namespace kv
