#include "import/tables/frm_esporta_foglio.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace kv {
namespace {

std::string fileToWrite(QWidget* over, const std::string& name) {
  return fromQt(QFileDialog::getSaveFileName(over, toQt("Salva il foglio"), toQt(name + ".xlsx"),
                                             toQt("Foglio XLSX (*.xlsx);;Foglio CSV (*.csv)")));
}

}  // namespace

frmEsportaFoglio::frmEsportaFoglio(const std::vector<SheetTable>& tables, std::size_t listed, HelpOpener help,
                                   QWidget* parent)
    : FormDialog("Korvane - Esporta in un foglio", parent),
      chooseFile([this] { return fileToWrite(this, tables_[choice().table].name); }),
      tables_(tables) {
  auto* column = new QVBoxLayout(this);
  auto* form = new QFormLayout();
  cboTabella_ = named(new QComboBox(), "cboTabella");
  for (const SheetTable& table : tables_) cboTabella_->addItem(toQt(table.caption));
  form->addRow(labelFor("&Tabella:", cboTabella_), cboTabella_);
  column->addLayout(form);
  chkElenco_ =
      named(new QCheckBox(toQt("Solo gli articoli dell'&elenco (" + std::to_string(listed) + ")")), "chkElenco");
  column->addWidget(chkElenco_);
  lstColonne_ = named(new QListWidget(), "lstColonne");
  column->addWidget(labelFor("&Colonne:", lstColonne_));
  column->addWidget(lstColonne_, 1);
  QDialogButtonBox* buttons = makeButtons("&Salva...");
  for (const auto& [caption, name, isChecked] :
       {std::tuple("T&utte", "cmdTutte", true), std::tuple("&Nessuna", "cmdNessuna", false)}) {
    auto* button = named(buttons->addButton(toQt(caption), QDialogButtonBox::ActionRole), name);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, checked = isChecked] { setAll(checked); });
  }
  connect(cboTabella_, &QComboBox::currentIndexChanged, this, &frmEsportaFoglio::showTable);
  connect(buttons, &QDialogButtonBox::accepted, this, &frmEsportaFoglio::accepted);
  addHelp(buttons, std::move(help), "pagine/foglio.htm");
  column->addWidget(buttons);
  constexpr int columns = 56, lines = 26;
  sizeInCharacters(columns, lines);
  showTable();
}

void frmEsportaFoglio::showTable() {
  const SheetTable& table = tables_[static_cast<std::size_t>(cboTabella_->currentIndex())];
  lstColonne_->clear();
  for (const TableColumn& column : table.columns) {
    auto* item = new QListWidgetItem(toQt(column.italian), lstColonne_);
    item->setData(Qt::UserRole, toQt(column.name));
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setCheckState(column.isUsual ? Qt::Checked : Qt::Unchecked);
  }
  lstColonne_->setCurrentRow(0);
  chkElenco_->setEnabled(table.name == "articoli");
}

void frmEsportaFoglio::setAll(bool isChecked) {
  for (int i = 0; i < lstColonne_->count(); ++i) {
    lstColonne_->item(i)->setCheckState(isChecked ? Qt::Checked : Qt::Unchecked);
  }
}

SheetExportChoice frmEsportaFoglio::choice() const {
  SheetExportChoice chosen;
  chosen.table = static_cast<std::size_t>(cboTabella_->currentIndex());
  chosen.onlyListed = chkElenco_->isEnabled() && chkElenco_->isChecked();
  chosen.path = path_;
  for (int i = 0; i < lstColonne_->count(); ++i) {
    const QListWidgetItem* item = lstColonne_->item(i);
    if (item->checkState() == Qt::Checked) chosen.columns.push_back(fromQt(item->data(Qt::UserRole).toString()));
  }
  return chosen;
}

void frmEsportaFoglio::accepted() {
  if (choice().columns.empty()) return lstColonne_->setFocus();
  path_ = chooseFile();
  if (!path_.empty()) finish("OK");
}

}  // namespace kv
