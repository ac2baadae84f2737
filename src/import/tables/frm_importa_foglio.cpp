#include "import/tables/frm_importa_foglio.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableView>
#include <QTableWidget>
#include <QVBoxLayout>
#include <array>

#include "import/tables/export_shapes.h"
#include "import/tables/frm_plan_model.h"

namespace kv {
namespace {

enum GuidePage { FilePage, ColumnsPage, PlanPage };
constexpr std::size_t shownRows = 12;  // of the file, on the first page
// The signs of the entries of the lists but the first one, which finds out.
constexpr std::string_view separatorChoices = ";,\t|", decimalChoices = ",.";
constexpr std::string_view thousandsChoices("\0., '", 5);

QTableWidget* grid(const char* name, std::string_view spoken, const QStringList& headings) {
  auto* table = named(new QTableWidget(0, static_cast<int>(headings.size())), name, spoken);
  table->setHorizontalHeaderLabels(headings);
  table->verticalHeader()->hide();
  table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->setTabKeyNavigation(false);
  table->horizontalHeader()->setStretchLastSection(true);
  return table;
}

/// A cell of a list. Screen readers say that it is empty where it is.
QTableWidgetItem* spokenCell(std::string_view text) {
  auto* item = new QTableWidgetItem(toQt(text));
  if (text.empty()) item->setData(Qt::AccessibleTextRole, QStringLiteral("vuoto"));
  return item;
}

/// The sign that a list gives: nothing for its first entry.
std::optional<char> signOf(const QComboBox& box, std::string_view signs) {
  const int index = box.currentIndex() - 1;
  return index < 0 ? std::nullopt : std::optional(signs[static_cast<std::size_t>(index)]);
}

std::optional<CsvEncoding> encodingOf(const QComboBox& box) {
  const int index = box.currentIndex() - 1;
  return index < 0 ? std::nullopt : std::optional(static_cast<CsvEncoding>(index));
}

std::optional<CsvLineEnd> lineEndOf(const QComboBox& box) {
  const int index = box.currentIndex() - 1;
  return index < 0 ? std::nullopt : std::optional(static_cast<CsvLineEnd>(index));
}

std::string chosenFile(QWidget* over) {
  return fromQt(QFileDialog::getOpenFileName(over, toQt("Scegliere il foglio da importare"), QString(),
                                             toQt("Fogli (*.csv *.txt *.xlsx *.ods *.xml);;Tutti i file (*)")));
}

}  // namespace

frmImportaFoglio::frmImportaFoglio(TableGuide& guide, UserPort& user, HelpOpener help, QWidget* parent)
    : FormDialog("Korvane - Importa da un foglio", parent),
      chooseFile([this] { return chosenFile(this); }),
      guide_(guide),
      user_(user) {
  auto* column = new QVBoxLayout(this);
  pages_ = new QStackedWidget();
  for (QWidget* page : {makeFilePage(), makeColumnsPage(), makePlanPage()}) pages_->addWidget(page);
  column->addWidget(pages_, 1);
  QDialogButtonBox* buttons = makeButtons("&Avanti >");
  cmdAvanti_ = buttons->button(QDialogButtonBox::Ok);
  cmdIndietro_ = named(buttons->addButton(toQt("< &Indietro"), QDialogButtonBox::ResetRole), "cmdIndietro");
  cmdIndietro_->setAutoDefault(false);
  connect(buttons, &QDialogButtonBox::accepted, this, &frmImportaFoglio::next);
  connect(cmdIndietro_, &QPushButton::clicked, this, [this] { goTo(pages_->currentIndex() - 1); });
  addHelp(buttons, std::move(help), "pagine/foglio.htm");
  column->addWidget(buttons);
  constexpr int columns = 100, lines = 32;
  sizeInCharacters(columns, lines);
  goTo(FilePage);
}

QComboBox* frmImportaFoglio::choiceOf(const char* name, const QStringList& captions) {
  auto* box = named(new QComboBox(), name);
  box->addItems(captions);
  connect(box, &QComboBox::activated, this, &frmImportaFoglio::readAgain);
  return box;
}

QWidget* frmImportaFoglio::makeFilePage() {
  auto* page = new QWidget();
  auto* column = new QVBoxLayout(page);
  auto* form = new QFormLayout();
  txtFile_ = named(new QLineEdit(), "txtFile");
  txtFile_->setReadOnly(true);
  auto* search = named(new QPushButton(toQt("&Sfoglia...")), "cmdSfoglia");
  search->setAutoDefault(false);
  connect(search, &QPushButton::clicked, this, [this] {
    if (const std::string path = chooseFile(); !path.empty()) openFile(path);
  });
  auto* file = new QHBoxLayout();
  file->addWidget(txtFile_, 1);
  file->addWidget(search);
  form->addRow(labelFor("&Foglio:", txtFile_), file);
  const QString found = toQt("(riconosci)");
  cboTabella_ = choiceOf("cboTabella", {toQt("Articoli"), toQt("Reparti"), toQt("Varianti"),
                                        toQt("Valori delle varianti"), toQt("Paesi"), toQt("Spese di spedizione")});
  cboFoglio_ = choiceOf("cboFoglio", {});
  cboCodifica_ = choiceOf("cboCodifica", {found, toQt("UTF-8"), toQt("UTF-8 con contrassegno"), toQt("Windows-1252"),
                                          toQt("UTF-16"), toQt("UTF-16 (big endian)")});
  cboSeparatore_ = choiceOf("cboSeparatore", {found, toQt(";"), toQt(","), toQt("tabulazione"), toQt("|")});
  cboDecimali_ = choiceOf("cboDecimali", {found, toQt(","), toQt(".")});
  cboMigliaia_ = choiceOf("cboMigliaia", {found, toQt("nessuno"), toQt("."), toQt(","), toQt("spazio"), toQt("'")});
  cboFineRiga_ = choiceOf("cboFineRiga", {found, toQt("CR LF"), toQt("LF"), toQt("CR")});
  cboProgramma_ = choiceOf("cboProgramma", {found, toQt("nessuna")});
  for (const auto& [name, caption] : exportShapeNames()) {
    cboProgramma_->addItem(toQt(caption), toQt(name));
  }
  form->addRow(labelFor("Importa &in:", cboTabella_), cboTabella_);
  form->addRow(labelFor("Fo&glio del file:", cboFoglio_), cboFoglio_);
  form->addRow(labelFor("&Codifica:", cboCodifica_), cboCodifica_);
  form->addRow(labelFor("Se&paratore:", cboSeparatore_), cboSeparatore_);
  form->addRow(labelFor("&Decimali:", cboDecimali_), cboDecimali_);
  form->addRow(labelFor("&Migliaia:", cboMigliaia_), cboMigliaia_);
  form->addRow(labelFor("Fi&ne riga:", cboFineRiga_), cboFineRiga_);
  cboIntestazioni_ = choiceOf("cboIntestazioni", {found});
  form->addRow(labelFor("In&testazioni:", cboIntestazioni_), cboIntestazioni_);
  form->addRow(labelFor("&Esportazione di un altro negozio:", cboProgramma_), cboProgramma_);
  column->addLayout(form);
  lblLettura_ = named(wrappedText(""), "lblLettura");
  column->addWidget(lblLettura_);
  grdRighe_ = grid("grdRighe", "Prime righe del foglio", {});
  grdRighe_->horizontalHeader()->hide();
  constexpr int widestColumn = 40;  // in characters; a description would push the others out of sight
  grdRighe_->horizontalHeader()->setMaximumSectionSize(widestColumn * fontMetrics().averageCharWidth());
  column->addWidget(grdRighe_, 1);
  return page;
}

QWidget* frmImportaFoglio::makeColumnsPage() {
  auto* page = new QWidget();
  auto* column = new QVBoxLayout(page);
  grdColonne_ = grid("grdColonne", "Colonne del foglio", {toQt("Nel foglio"), toQt("Esempio"), toQt("Nel negozio")});
  column->addWidget(grdColonne_, 1);
  auto* form = new QFormLayout();
  cboChiave_ = named(new QComboBox(), "cboChiave");
  cboModo_ = named(new QComboBox(), "cboModo");
  cboModo_->addItems({toQt("Aggiungi e modifica"), toQt("Solo modifica"), toQt("Solo aggiungi")});
  form->addRow(labelFor("Una riga si &riconosce da:", cboChiave_), cboChiave_);
  form->addRow(labelFor("Che cosa &fare:", cboModo_), cboModo_);
  column->addLayout(form);
  chkFuori_ = named(new QCheckBox(toQt("Metti f&uori catalogo gli articoli che il foglio non elenca")), "chkFuori");
  column->addWidget(chkFuori_);
  return page;
}

QWidget* frmImportaFoglio::makePlanPage() {
  auto* page = new QWidget();
  auto* column = new QVBoxLayout(page);
  lblSomme_ = named(wrappedText(""), "lblSomme");
  column->addWidget(lblSomme_);
  auto* form = new QFormLayout();
  cboFiltro_ = named(new QComboBox(), "cboFiltro");
  cboFiltro_->addItems({toQt("Tutte"), toQt("Nuove"), toQt("Modificate"), toQt("Invariate"), toQt("Tralasciate"),
                        toQt("Fuori catalogo")});
  connect(cboFiltro_, &QComboBox::currentIndexChanged, this, &frmImportaFoglio::showRows);
  form->addRow(labelFor("&Righe:", cboFiltro_), cboFiltro_);
  column->addLayout(form);
  grdPiano_ = named(new QTableView(), "grdPiano", "Che cosa succederà");
  model_ = new PlanModel(guide_, grdPiano_);
  grdPiano_->setModel(model_);
  grdPiano_->verticalHeader()->hide();
  grdPiano_->setSelectionBehavior(QAbstractItemView::SelectRows);
  grdPiano_->setTabKeyNavigation(false);
  grdPiano_->horizontalHeader()->setStretchLastSection(true);
  connect(grdPiano_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &frmImportaFoglio::showChanges);
  connect(model_, &PlanModel::chosen, this, [this] {
    lblSomme_->setText(toQt(guide_.sums()));
    cmdAvanti_->setEnabled(guide_.canImport());
  });
  // In characters; the last column takes the rest.
  constexpr std::array planWidths{10, 16, 27};
  constexpr std::array valueWidths{20, 38};
  const int character = fontMetrics().averageCharWidth();
  for (std::size_t i = 0; i < planWidths.size(); ++i) {
    grdPiano_->setColumnWidth(static_cast<int>(i), planWidths.at(i) * character);
  }
  column->addWidget(grdPiano_, 2);
  lblMotivo_ = named(wrappedText(""), "lblMotivo");
  column->addWidget(lblMotivo_);
  grdValori_ = grid("grdValori", "Valori della riga", {toQt("Colonna"), toQt("Adesso"), toQt("Dopo")});
  for (std::size_t i = 0; i < valueWidths.size(); ++i) {
    grdValori_->setColumnWidth(static_cast<int>(i), valueWidths.at(i) * character);
  }
  column->addWidget(grdValori_, 1);
  return page;
}

void frmImportaFoglio::openFile(const std::string& path) {
  guide_.path = path;
  guide_.choice.sheet = 0;
  cboFoglio_->setCurrentIndex(0);
  cboIntestazioni_->setCurrentIndex(0);
  readAgain();
}

void frmImportaFoglio::readAgain() {
  guide_.tableName = sheetTableNames()[static_cast<std::size_t>(cboTabella_->currentIndex())];
  guide_.choice.sheet = static_cast<std::size_t>(std::max(cboFoglio_->currentIndex(), 0));
  guide_.choice.csv = {encodingOf(*cboCodifica_), signOf(*cboSeparatore_, separatorChoices),
                       signOf(*cboDecimali_, decimalChoices), signOf(*cboMigliaia_, thousandsChoices),
                       lineEndOf(*cboFineRiga_)};
  const int program = cboProgramma_->currentIndex();
  guide_.choice.shape = program == 1 ? "no" : fromQt(cboProgramma_->currentData().toString());
  const QVariant line = cboIntestazioni_->currentData();
  guide_.choice.headerLine = line.isValid() ? std::optional(line.toUInt()) : std::nullopt;
  if (guide_.path.empty()) return;
  const std::string failure = watched([this] {
    return guide_.read([this] {
      user_.progress({"Lettura del foglio..."});
      return user_.yield();
    });
  });
  if (!failure.empty()) user_.message(failure, Icon::Exclamation);
  showFile();
}

std::string frmImportaFoglio::watched(const std::function<std::string()>& work) {
  const WaitCursor waiting;
  std::string failure = work();
  user_.progress({});
  return failure;
}

void frmImportaFoglio::showFile() {
  txtFile_->setText(toQt(guide_.path));
  lblLettura_->setText(toQt(guide_.reading()));
  cboFoglio_->clear();
  const bool isText = guide_.isRead() && guide_.sheet().sheet.reading.form == SheetForm::Text;
  if (guide_.isRead()) {
    for (const std::string& name : guide_.sheet().sheet.names) cboFoglio_->addItem(toQt(name));
    cboFoglio_->setCurrentIndex(static_cast<int>(guide_.choice.sheet));
  }
  cboFoglio_->setEnabled(cboFoglio_->count() > 1);
  showHeaderRows();
  cboCodifica_->setEnabled(isText);
  cboSeparatore_->setEnabled(isText);
  cboFineRiga_->setEnabled(isText);
  cboProgramma_->setEnabled(guide_.tableName == "articoli");
  const auto rows = guide_.firstRows(shownRows);
  grdRighe_->setRowCount(static_cast<int>(rows.size()));
  grdRighe_->setColumnCount(rows.empty() ? 0 : static_cast<int>(rows[0].size()));
  for (std::size_t row = 0; row < rows.size(); ++row) {
    for (std::size_t i = 0; i < rows[row].size(); ++i) {
      auto* item = spokenCell(rows[row][i]);
      if (guide_.isNumber(row, i)) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
      grdRighe_->setItem(static_cast<int>(row), static_cast<int>(i), item);
    }
  }
  grdRighe_->resizeColumnsToContents();
  cmdAvanti_->setEnabled(guide_.isRead());
}

void frmImportaFoglio::showHeaderRows() {
  while (cboIntestazioni_->count() > 1) cboIntestazioni_->removeItem(1);
  if (!guide_.isRead()) return;
  for (const HeaderRow& row : guide_.sheet().headerRows) {
    cboIntestazioni_->addItem(toQt("riga " + std::to_string(row.line) + ": " + row.text), row.line);
    if (row.line == guide_.choice.headerLine) cboIntestazioni_->setCurrentIndex(cboIntestazioni_->count() - 1);
  }
}

void frmImportaFoglio::showColumns() {
  const OpenSheet& open = guide_.sheet();
  const auto headers = open.sheet.headers();
  grdColonne_->setRowCount(static_cast<int>(headers.size()));
  for (std::size_t i = 0; i < headers.size(); ++i) {
    const int row = static_cast<int>(i);
    grdColonne_->setItem(row, 0, spokenCell(headers[i]));
    grdColonne_->setItem(row, 1, spokenCell(guide_.example(i)));
    auto* box = named(new QComboBox(), "cboColonna" + std::to_string(i), "Colonna per " + headers[i]);
    box->addItem(toQt("(non importare)"), QString());
    for (const TableColumn& column : open.table.columns) box->addItem(toQt(column.italian), toQt(column.name));
    const auto mapped = guide_.request.mapping[i];
    box->setCurrentIndex(mapped ? static_cast<int>(*mapped) + 1 : 0);
    connect(box, &QComboBox::activated, this, [this, box, i] {
      guide_.map(i, fromQt(box->currentData().toString()));
      guide_.request.key = guide_.usualKey();
      showColumns();
      // The list was made again; the keyboard stays where it was.
      if (auto* again = grdColonne_->cellWidget(static_cast<int>(i), 2)) again->setFocus();
    });
    // The list covers its cell, which screen readers come by as well.
    auto* covered = new QTableWidgetItem();
    covered->setData(Qt::AccessibleTextRole, box->currentText());
    grdColonne_->setItem(row, 2, covered);
    grdColonne_->setCellWidget(row, 2, box);
  }
  grdColonne_->resizeColumnToContents(0);
  cboChiave_->clear();
  for (const TableKey& key : open.table.keys) {
    cboChiave_->addItem(toQt(key.caption), toQt(key.name));
    if (key.name == guide_.request.key) cboChiave_->setCurrentIndex(cboChiave_->count() - 1);
  }
  chkFuori_->setEnabled(guide_.tableName == "articoli");
}

void frmImportaFoglio::showPlan() {
  cboFiltro_->setCurrentIndex(0);
  lblSomme_->setText(toQt(guide_.sums()));
  showRows();
  cmdAvanti_->setEnabled(guide_.canImport());
}

void frmImportaFoglio::showRows() {
  model_->show(static_cast<RowFilter>(cboFiltro_->currentIndex()));
  if (model_->rowCount() > 0) grdPiano_->setCurrentIndex(model_->index(0, 0));
  showChanges();
}

void frmImportaFoglio::showChanges() {
  const QModelIndex current = grdPiano_->currentIndex();
  const auto changes = current.isValid() ? guide_.changes(model_->planRow(current.row())) : std::vector<ShownChange>();
  const std::string reason = current.isValid() ? guide_.row(model_->planRow(current.row())).reason : std::string();
  lblMotivo_->setText(toQt(reason.empty() ? "" : "Motivo: " + reason));
  lblMotivo_->setVisible(!reason.empty());
  grdValori_->setRowCount(static_cast<int>(changes.size()));
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const std::array<const std::string*, 3> texts{&changes[i].column, &changes[i].before, &changes[i].after};
    for (int column = 0; column < 3; ++column) {
      grdValori_->setItem(static_cast<int>(i), column, spokenCell(*texts[static_cast<std::size_t>(column)]));
    }
  }
}

void frmImportaFoglio::goTo(int page) {
  pages_->setCurrentIndex(page);
  cmdIndietro_->setEnabled(page > FilePage);
  cmdAvanti_->setText(page == PlanPage ? toQt("I&mporta") : toQt("&Avanti >"));
  cmdAvanti_->setEnabled(page == PlanPage ? guide_.canImport() : guide_.isRead());
}

void frmImportaFoglio::next() {
  if (pages_->currentIndex() == FilePage) {
    if (!guide_.isRead()) return;
    showColumns();
    return goTo(ColumnsPage);
  }
  if (pages_->currentIndex() == PlanPage) return finish("OK");
  guide_.request.key = fromQt(cboChiave_->currentData().toString());
  guide_.request.mode = static_cast<TableMode>(cboModo_->currentIndex());
  guide_.request.unlistedOut = chkFuori_->isEnabled() && chkFuori_->isChecked();
  const std::string failure = watched([this] {
    return guide_.makePlan([this](std::size_t done, std::size_t all) {
      user_.progress({"Confronto col catalogo...", static_cast<double>(done), static_cast<double>(all)});
      return user_.yield();
    });
  });
  if (!failure.empty()) return user_.message(failure, Icon::Exclamation);
  if (!guide_.hasPlan()) return;
  goTo(PlanPage);
  showPlan();
}

}  // namespace kv
