#include "shell/sheet/frm_foglio.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTableView>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/sheet/frm_sheet_model.h"

namespace kv {
namespace {

constexpr std::string_view sheetTitle = "Korvane - Foglio articoli";
constexpr std::string_view sheetHelpPage = "pagine/foglio-articoli.htm";
constexpr std::string_view sheetColumnsKey = "foglio";
constexpr int sheetRowPadding = 8;       // pixels between two lines
constexpr int typingMilliseconds = 150;  // after the last key, before the filter is applied
constexpr int mostNotes = 3;

/// What `cboMostra` offers.
struct ShownPart {
  std::string_view caption;
  SheetFilter filter;
};
const std::vector<ShownPart>& shownParts() {
  static const std::vector<ShownPart> parts{{"Tutti gli articoli", {}},
                                            {"Da tradurre", {.untranslated = true}},
                                            {"Senza immagine", {.withoutPicture = true}},
                                            {"Prezzo zero", {.zeroPrice = true}},
                                            {"In vetrina", {.flag = "inelenco"}},
                                            {"In offerta", {.flag = "offerta"}},
                                            {"Novità", {.flag = "novita"}},
                                            {"Fuori catalogo", {.flag = "fuoricatalogo"}}};
  return parts;
}

int widthOf(const SheetColumn& column) {
  switch (column.kind) {
    case SheetKind::Lines:
      return 30;
    case SheetKind::Text:
      return column.name == "codice" ? 14 : 28;
    case SheetKind::Department:
      return 20;
    default:
      return 12;
  }
}

}  // namespace

frmFoglio::frmFoglio(Workbench& workbench, HelpOpener help, QWidget* parent)
    : FormDialog(sheetTitle, parent), workbench_(workbench), help_(std::move(help)) {
  auto all = sheetColumns(workbench_.session());
  workbench_.showError(all ? Result<>() : fail(all.error()));
  if (all) columns_ = std::move(*all);
  model_ = new SheetModel(workbench_.session(), columns_, workbench_.decimalSeparator(), this);
  model_->typed = [this](const CellText& cell) { write("Modifica " + columns_[cell.column].heading, {cell}); };
  auto* column = new QVBoxLayout(this);
  column->addWidget(makeFilter());
  column->addWidget(makeTools());
  column->addWidget(makeTable(), 1);
  lblStato_ = named(wrappedText(""), "lblStato");
  column->addWidget(lblStato_);
  QDialogButtonBox* buttons = makeClose();
  column->addWidget(buttons);
  addHelp(buttons, help_, sheetHelpPage);
  chooseColumns(chosenColumns(columns_, workbench_.env().settings.get(settingsSection, sheetColumnsKey)));
  refresh();
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  sizeInCharacters(150, 46);
  lstFoglio_->setFocus();
}

// The table asks its model until it goes, and the model reads the columns.
frmFoglio::~frmFoglio() { delete lstFoglio_; }

QWidget* frmFoglio::makeFilter() {
  txtFiltro_ = named(new QLineEdit(), "txtFiltro");
  txtFiltro_->setClearButtonEnabled(true);
  cboReparto_ = named(new QComboBox(), "cboReparto");
  chkSottoreparti_ = named(new QCheckBox(toQt("con i &sottoreparti")), "chkSottoreparti");
  chkSottoreparti_->setChecked(true);
  cboMostra_ = named(new QComboBox(), "cboMostra");
  for (const ShownPart& part : shownParts()) cboMostra_->addItem(toQt(part.caption));
  fillDepartments();
  cboReparto_->view()->setAccessibleName(toQt("Reparto"));
  cboMostra_->view()->setAccessibleName(toQt("Mostra"));
  auto* row = new QWidget();
  auto* line = new QHBoxLayout(row);
  line->setContentsMargins(0, 0, 0, 0);
  line->addWidget(labelFor("&Filtro:", txtFiltro_));
  line->addWidget(txtFiltro_, 1);
  line->addWidget(labelFor("&Reparto:", cboReparto_));
  line->addWidget(cboReparto_, 1);
  line->addWidget(chkSottoreparti_);
  line->addWidget(labelFor("Mos&tra:", cboMostra_));
  line->addWidget(cboMostra_);
  waiting_ = new QTimer(this);
  waiting_->setSingleShot(true);
  waiting_->setInterval(typingMilliseconds);
  connect(waiting_, &QTimer::timeout, this, &frmFoglio::refresh);
  connect(txtFiltro_, &QLineEdit::textChanged, waiting_, qOverload<>(&QTimer::start));
  connect(cboReparto_, &QComboBox::currentIndexChanged, this, &frmFoglio::refresh);
  connect(cboMostra_, &QComboBox::currentIndexChanged, this, &frmFoglio::refresh);
  connect(chkSottoreparti_, &QCheckBox::toggled, this, &frmFoglio::refresh);
  return row;
}

void frmFoglio::fillDepartments() {
  cboReparto_->addItem(toQt("Tutti i reparti"), QString());
  // The tree lists a level after the other; here each department is followed by what is under it.
  const auto& nodes = workbench_.sets().tree();
  const std::function<void(const std::string&, int)> add = [&](const std::string& parent, int depth) {
    for (const TreeNode& node : nodes) {
      if (node.genitore != parent) continue;
      cboReparto_->addItem(QString(depth * 3, QLatin1Char(' ')) + toQt(node.titolo), toQt(node.ID));
      add(node.ID, depth + 1);
    }
  };
  add(std::string(treeRoot), 0);
  cboReparto_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  cboReparto_->setMinimumContentsLength(16);
}

QToolButton* frmFoglio::addTool(const char* name, std::string_view caption, std::string_view shortcut,
                                void (frmFoglio::*run)()) {
  auto* action = new QAction(toQt(caption), this);
  action->setObjectName(QString::fromLatin1(name) + QStringLiteral("Azione"));
  if (!shortcut.empty()) {
    action->setShortcut(QKeySequence(toQt(shortcut)));
    action->setToolTip(toQt(caption) + QStringLiteral(" (") + action->shortcut().toString(QKeySequence::NativeText) +
                       QLatin1Char(')'));
  }
  connect(action, &QAction::triggered, this, run);
  addAction(action);
  auto* button = named(new QToolButton(), name);
  button->setDefaultAction(action);
  button->setFocusPolicy(Qt::TabFocus);
  return button;
}

QWidget* frmFoglio::makeTools() {
  auto* row = new QWidget();
  auto* line = new QHBoxLayout(row);
  line->setContentsMargins(0, 0, 0, 0);
  auto* cmdColonne = named(new QToolButton(), "cmdColonne");
  cmdColonne->setText(toQt("Colonne"));
  cmdColonne->setPopupMode(QToolButton::InstantPopup);
  cmdColonne->setFocusPolicy(Qt::TabFocus);
  mnuColonne_ = new QMenu(cmdColonne);
  cmdColonne->setMenu(mnuColonne_);
  connect(mnuColonne_, &QMenu::aboutToShow, this, &frmFoglio::fillColumns);
  line->addWidget(cmdColonne);
  cellTools_ = {addTool("cmdCopia", "Copia", "Ctrl+C", &frmFoglio::copy),
                addTool("cmdIncolla", "Incolla", "Ctrl+V", &frmFoglio::paste),
                addTool("cmdRiempi", "Riempi in basso", "Ctrl+D", &frmFoglio::fillDown),
                addTool("cmdStesso", "Stesso valore", "Ctrl+Return", &frmFoglio::sameValue),
                addTool("cmdPrezzi", "Prezzi selezionati...", "Ctrl+P", &frmFoglio::changePrices),
                addTool("cmdMostra", "Mostra nel negozio", "Ctrl+M", &frmFoglio::showArticle)};
  for (QToolButton* tool : cellTools_) line->addWidget(tool);
  line->addWidget(addTool("cmdTrova", "Trova e sostituisci...", "Ctrl+H", &frmFoglio::replace));
  line->addStretch();
  line->addWidget(addTool("cmdAnnullaPasso", "Annulla", "Ctrl+Z", &frmFoglio::undo));
  line->addWidget(addTool("cmdRipetiPasso", "Ripeti", "Ctrl+Y", &frmFoglio::redo));
  return row;
}

QWidget* frmFoglio::makeTable() {
  lstFoglio_ = named(new QTableView(), "lstFoglio", "Foglio articoli");
  lstFoglio_->setModel(model_);
  lstFoglio_->setItemDelegate(new SheetCells(*model_, workbench_.decimalSeparator(), lstFoglio_));
  lstFoglio_->setTabKeyNavigation(false);
  lstFoglio_->setWordWrap(false);
  lstFoglio_->setAlternatingRowColors(true);
  lstFoglio_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  lstFoglio_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                              QAbstractItemView::AnyKeyPressed);
  lstFoglio_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  lstFoglio_->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + sheetRowPadding);
  QHeaderView* header = lstFoglio_->horizontalHeader();
  header->setSectionsMovable(true);
  header->setSectionsClickable(true);
  header->setSortIndicatorShown(true);
  header->setSortIndicator(-1, Qt::AscendingOrder);
  connect(header, &QHeaderView::sectionClicked, this, &frmFoglio::sortBy);
  connect(header, &QHeaderView::sectionMoved, this, &frmFoglio::keepOrderOfColumns);
  connect(lstFoglio_, &QTableView::activated, this, &frmFoglio::openText);
  connect(lstFoglio_, &QTableView::doubleClicked, this, &frmFoglio::openText);
  connect(lstFoglio_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &frmFoglio::updateTools);
  return lstFoglio_;
}

SheetFilter frmFoglio::filter() const {
  SheetFilter filter = shownParts()[static_cast<std::size_t>(std::max(cboMostra_->currentIndex(), 0))].filter;
  filter.text = fromQt(txtFiltro_->text());
  filter.department = fromQt(cboReparto_->currentData().toString());
  filter.subDepartments = chkSottoreparti_->isChecked();
  return filter;
}

void frmFoglio::refresh() {
  const WaitCursor busy;
  const QModelIndex current = lstFoglio_->currentIndex();
  const std::int64_t article = current.isValid() ? model_->cell(current).article : 0;
  const int column = current.isValid() ? current.column() : 0;
  workbench_.showError(model_->refresh(filter(), order_));
  const int row = std::max(model_->rowOf(article), 0);
  if (model_->rowCount() > 0) lstFoglio_->setCurrentIndex(model_->index(row, column));
  updateTools();
}

void frmFoglio::sortBy(int section) {
  const std::size_t column = model_->shownColumns()[static_cast<std::size_t>(section)];
  // Up, down, and back to the order of the shop.
  if (order_.column != column) {
    order_ = {column, false};
  } else if (!order_.descending) {
    order_.descending = true;
  } else {
    order_ = {};
  }
  lstFoglio_->horizontalHeader()->setSortIndicator(order_.column ? section : -1,
                                                   order_.descending ? Qt::DescendingOrder : Qt::AscendingOrder);
  refresh();
}

void frmFoglio::chooseColumns(std::vector<std::size_t> shown) {
  QHeaderView* header = lstFoglio_->horizontalHeader();
  const QSignalBlocker blocked(header);
  model_->showColumns(std::move(shown));
  const int character = fontMetrics().averageCharWidth();
  for (int i = 0; i < model_->columnCount(); ++i) {
    header->moveSection(header->visualIndex(i), i);
    const int heading = fontMetrics().horizontalAdvance(toQt(model_->column(i).heading)) + 4 * character;
    lstFoglio_->setColumnWidth(i, std::max(widthOf(model_->column(i)) * character, heading));
  }
}

void frmFoglio::keepOrderOfColumns() {
  const QHeaderView* header = lstFoglio_->horizontalHeader();
  std::vector<std::size_t> seen;
  for (int i = 0; i < model_->columnCount(); ++i) {
    seen.push_back(model_->shownColumns()[static_cast<std::size_t>(header->logicalIndex(i))]);
  }
  ignore(workbench_.env().settings.set(settingsSection, sheetColumnsKey, storedChoice(columns_, seen)),
         "the columns show as they were chosen all the same");
}

void frmFoglio::fillColumns() {
  mnuColonne_->clear();
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    QAction* entry = mnuColonne_->addAction(toQt(columns_[i].heading));
    const auto& shown = model_->shownColumns();
    entry->setCheckable(true);
    entry->setChecked(std::ranges::find(shown, i) != shown.end());
    connect(entry, &QAction::toggled, this, [this, i](bool on) {
      keepOrderOfColumns();
      auto chosen = chosenColumns(columns_, workbench_.env().settings.get(settingsSection, sheetColumnsKey));
      std::erase(chosen, i);
      if (on) chosen.push_back(i);
      if (chosen.empty()) return;
      order_ = {};
      lstFoglio_->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
      chooseColumns(std::move(chosen));
      keepOrderOfColumns();
      refresh();
    });
  }
}

void frmFoglio::write(const std::string& step, std::vector<CellText> cells, std::size_t outside) {
  SheetEdits edits(workbench_.session(), workbench_.history(), columns_, workbench_.decimalSeparator());
  auto written = [&] {
    const WaitCursor busy;
    return edits.write(step, std::move(cells));
  }();
  if (!written) return workbench_.showError(fail(written.error()));
  written->outside = outside;
  isChanged_ = isChanged_ || written->changed > 0;
  model_->forget();
  updateTools();
  showMessage(*written);
}

void frmFoglio::showMessage(const SheetOutcome& outcome) {
  QString text = tr("Celle modificate: %1").arg(outcome.changed);
  if (!outcome.refused.empty()) text += tr("; rifiutate: %1").arg(outcome.refused.size());
  if (outcome.outside > 0) text += tr("; oltre la fine del foglio: %1").arg(outcome.outside);
  int left = mostNotes;
  for (const auto* notes : {&outcome.refused, &outcome.noted}) {
    for (const CellNote& note : *notes) {
      if (left-- > 0) text += QStringLiteral("\n") + toQt(columns_[note.column].heading + ": " + note.why);
    }
  }
  lblStato_->setText(text);
}

void frmFoglio::updateTools() {
  const auto selected = lstFoglio_->selectionModel()->selectedIndexes();
  for (QToolButton* tool : cellTools_) tool->defaultAction()->setEnabled(!selected.isEmpty());
  const bool anyPrice = std::ranges::any_of(
      selected, [&](const QModelIndex& one) { return model_->column(one.column()).kind == SheetKind::Price; });
  findChild<QAction*>(QStringLiteral("cmdPrezziAzione"))->setEnabled(anyPrice);
  lblStato_->setText(tr("Articoli: %1; celle selezionate: %2").arg(model_->rowCount()).arg(selected.size()));
}

void frmFoglio::reject() {
  if (isChanged_) return finish("OK");
  FormDialog::reject();
}

}  // namespace kv
