#include "commerce/replication/frm_replica_listini.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

namespace kv {

frmReplicaListini::frmReplicaListini(Session& session, Environment& env, char decimalSeparator, HelpOpener help,
                                     QWidget* parent)
    : FormDialog(replicateListsTitle, parent), session_(session), env_(env) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(makeSource(decimalSeparator));
  column->addWidget(lists_.make("Listini di destinazione"));
  column->addWidget(makeOptions());
  lblConteggio_ = named(new QLabel(), "lblConteggio");
  column->addWidget(lblConteggio_);
  column->addStretch();
  QDialogButtonBox* buttons = makeButtons();
  column->addWidget(buttons);
  addHelp(buttons, std::move(help), "pagine/prezzi.htm");
  connect(buttons, &QDialogButtonBox::accepted, this, &frmReplicaListini::run);
  for (const QCheckBox* box : lists_.boxes()) connect(box, &QCheckBox::toggled, this, &frmReplicaListini::countAgain);
  for (const QCheckBox* box : {chkTondi_, chkOfferte_, chkScq_, chkVarianti_, chkScRep_, chkRestr_}) {
    connect(box, &QCheckBox::toggled, this, &frmReplicaListini::countAgain);
  }
  connect(cboListino_, &QComboBox::currentIndexChanged, this, &frmReplicaListini::countAgain);
  connect(cboVariazione_, &QComboBox::editTextChanged, this, &frmReplicaListini::countAgain);
  countAgain();
  sizeInCharacters(76, 24);
}

QWidget* frmReplicaListini::makeSource(char decimalSeparator) {
  cboListino_ = named(new QComboBox(), "cboListino");
  for (int list = 0; list < listini; ++list) cboListino_->addItem(toQt("Listino " + std::to_string(list)));
  cboVariazione_ = new PercentageBox(decimalSeparator);
  cboVariazione_->setEditText(QStringLiteral("0"));
  auto* source = new QWidget();
  auto* form = new QFormLayout(source);
  form->setContentsMargins(0, 0, 0, 0);
  form->addRow(labelFor("Listino di &origine:", cboListino_), cboListino_);
  form->addRow(labelFor("&Variazione percentuale:", cboVariazione_), cboVariazione_);
  return source;
}

QWidget* frmReplicaListini::makeOptions() {
  chkTondi_ = named(new QCheckBox(toQt("Prezzi tondi (arrotonda ed elimina i decimali)")), "chkTondi");
  chkOfferte_ = named(new QCheckBox(toQt("Replica le offerte")), "chkOfferte");
  chkScq_ = named(new QCheckBox(toQt("Replica gli sconti per quantità")), "chkScq");
  chkVarianti_ = named(new QCheckBox(toQt("Replica le varianti")), "chkVarianti");
  chkScRep_ = named(new QCheckBox(toQt("Replica gli sconti dei reparti")), "chkScRep");
  chkScRep_->setToolTip(toQt("Insieme agli sconti per quantità"));
  chkRestr_ = named(new QCheckBox(toQt("Replica le restrizioni (reparti inaccessibili)")), "chkRestr");
  auto* options = new QGroupBox(toQt("Opzioni"));
  auto* column = new QVBoxLayout(options);
  for (QCheckBox* box : {chkTondi_, chkOfferte_, chkScq_, chkVarianti_, chkScRep_, chkRestr_}) column->addWidget(box);
  return options;
}

ListReplication frmReplicaListini::replication() const {
  ListReplication replication;
  replication.source = cboListino_->currentIndex();
  replication.destinations = lists_.ticked();
  replication.percentage = fromQt(cboVariazione_->currentText());
  replication.whole = chkTondi_->isChecked();
  replication.offers = chkOfferte_->isChecked();
  replication.quantityDiscounts = chkScq_->isChecked();
  replication.variants = chkVarianti_->isChecked();
  replication.departmentDiscounts = chkScRep_->isChecked();
  replication.restrictions = chkRestr_->isChecked();
  return replication;
}

void frmReplicaListini::countAgain() {
  const ListReplication wanted = replication();
  const auto percentage = readPercentage(wanted.percentage);
  if (!percentage) {
    lblConteggio_->setText(toQt("Indicare la variazione percentuale, da -100 a +100."));
    return;
  }
  const WaitCursor busy;
  const auto count = countReplication(session_.catalogue, wanted, ruleOfPercentage(*percentage, wanted.whole));
  lblConteggio_->setText(toQt(count ? count->text() : std::string()));
}

void frmReplicaListini::run() {
  const BulkEnd end = [&] {
    const WaitCursor busy;
    return ReplicaListino(session_.catalogue, replication(), env_.user);
  }();
  if (end == BulkEnd::Done || end == BulkEnd::Interrupted) finish("OK");
}

}  // namespace kv
