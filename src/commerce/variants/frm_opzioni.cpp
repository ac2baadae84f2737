#include "commerce/variants/frm_opzioni.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <charconv>

#include "commerce/variants/frm_variant_grid.h"
#include "commerce/variants/variant_texts.h"

namespace kv {
namespace {

constexpr int markColumn = 4;
constexpr std::string_view defaultMark = "●";

}  // namespace

frmOpzioni::frmOpzioni(Session& session, Environment& env, const VariantChoice& choice, QWidget* parent)
    : FormDialog(variantsTitle, parent), editor_(session, env.user, choice.decimalSeparator) {
  setObjectName(QStringLiteral("frmOpzioni"));
  std::from_chars(choice.txtID.data(), choice.txtID.data() + choice.txtID.size(), initial_);
  lblLingue_ = named(new QLabel(this, Qt::ToolTip), "lblLingue");
  lblLingue_->setFrameShape(QFrame::Box);
  lblLingue_->setTextFormat(Qt::PlainText);
  hiding_ = new QTimer(this);
  hiding_->setSingleShot(true);
  connect(hiding_, &QTimer::timeout, lblLingue_, &QWidget::hide);
  auto* sides = new QHBoxLayout();
  sides->addWidget(makeVariants(), 2);
  sides->addWidget(makeOptions(choice.decimalSeparator), 5);
  QDialogButtonBox* buttons = makeButtons();
  addHelp(buttons, choice.help, "pagine/varianti.htm");
  connect(buttons, &QDialogButtonBox::accepted, this, &frmOpzioni::accepted);
  auto* column = new QVBoxLayout(this);
  column->addLayout(sides, 1);
  column->addWidget(makeSettings());
  column->addWidget(buttons);
  const auto rows = editor_.variants();
  showVariants(rows.empty() ? 0 : rows[VariantEditor::start(rows, choice.txtID)].ID);
  DBGrid1_->setFocus();
  sizeInCharacters(110, 28);
}

QPushButton* frmOpzioni::addButton(std::string_view caption, const char* name, void (frmOpzioni::*run)()) {
  auto* button = named(new QPushButton(toQt(caption)), name);
  button->setAutoDefault(false);
  connect(button, &QPushButton::clicked, this, run);
  return button;
}

QWidget* frmOpzioni::makeVariants() {
  VariantGrid::Commands commands;
  commands.insert = [this] { addVariant(); };
  commands.remove = [this] {
    if (cmdElimina_->isEnabled()) deleteVariant();
  };
  commands.duplicate = [this] {
    if (cmdDuplica_->isEnabled()) duplicateVariant();
  };
  commands.edited = [this](int row, int) { variantEdited(row); };
  commands.rowChanged = [this](int row) {
    variantMoved();
    translate(*DBGrid1_, row);
  };
  DBGrid1_ = named(new VariantGrid({toQt("Nome")}, std::move(commands)), "DBGrid1", "Varianti");
  CellRule name;
  name.longest = static_cast<int>(longestVariantName);
  name.spoken = "Nome della variante";
  DBGrid1_->setItemDelegate(new CellDelegate(std::move(name), this));
  DBGrid1_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  connect(DBGrid1_, &QTableWidget::cellEntered, this, [this](int row, int) { translate(*DBGrid1_, row); });
  auto* group = new QGroupBox(toQt("Varianti"));
  auto* buttons = new QHBoxLayout();
  buttons->addWidget(addButton("&Nuova", "cmdNuova", &frmOpzioni::addVariant));
  buttons->addWidget(cmdDuplica_ = addButton("&Duplica", "cmdDuplica", &frmOpzioni::duplicateVariant));
  buttons->addWidget(cmdElimina_ = addButton("&Elimina", "cmdElimina", &frmOpzioni::deleteVariant));
  auto* column = new QVBoxLayout(group);
  column->addWidget(DBGrid1_, 1);
  column->addLayout(buttons);
  column->addWidget(cmdUso_ = addButton("&Usata in 0 articoli", "cmdUso", &frmOpzioni::showUses));
  return group;
}

QWidget* frmOpzioni::makeOptions(char decimalSeparator) {
  VariantGrid::Commands commands;
  commands.insert = [this] {
    if (cmdAdd_->isEnabled()) addOption();
  };
  commands.remove = [this] { deleteOption(); };
  commands.paste = [this](const std::string& text) { paste(text); };
  commands.choose = [this](int row, int column) {
    if (column == markColumn) mark(row);
  };
  commands.edited = [this](int row, int column) { optionEdited(row, column); };
  commands.rowChanged = [this](int row) { translate(*DBGrid2_, row); };
  const QStringList headings{toQt("Codice"), toQt("Testo"), toQt("Prezzo"), toQt("Peso"), toQt("Predefinita")};
  DBGrid2_ = named(new VariantGrid(headings, std::move(commands)), "DBGrid2", "Opzioni");
  CellRule number;
  number.isNumber = true;
  number.keys.decimalSeparator = decimalSeparator;
  number.keys.negative = true;
  for (int column = 0; column < markColumn; ++column) {
    CellRule rule = column < 2 ? CellRule() : number;
    rule.spoken = fromQt(headings[column]);
    DBGrid2_->setItemDelegateForColumn(column, new CellDelegate(std::move(rule), this));
  }
  DBGrid2_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  DBGrid2_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
  connect(DBGrid2_, &QTableWidget::cellEntered, this, [this](int row, int) { translate(*DBGrid2_, row); });
  auto* group = new QGroupBox(toQt("Opzioni"));
  auto* buttons = new QHBoxLayout();
  buttons->addWidget(cmdAdd_ = addButton("Nuo&va", "cmdAdd", &frmOpzioni::addOption));
  buttons->addWidget(cmdDel_ = addButton("E&limina", "cmdDel", &frmOpzioni::deleteOption));
  buttons->addStretch(1);
  auto* column = new QVBoxLayout(group);
  column->addWidget(DBGrid2_, 1);
  column->addLayout(buttons);
  return group;
}

QWidget* frmOpzioni::makeSettings() {
  chkNoDiff_ = named(new QCheckBox(toQt(variantsShowDifference)), "chkNoDiff");
  chkShowSigns_ = named(new QCheckBox(toQt(variantsShowSigns)), "chkShowSigns");
  cmdLingue_ = named(new QPushButton(toQt("Altre lin&gue")), "cmdLingue");
  cmdLingue_->setAutoDefault(false);
  cmdLingue_->setCheckable(true);
  cmdLingue_->setVisible(editor_.hasLanguages());
  chkNoDiff_->setChecked(editor_.settings.nodiff);
  chkShowSigns_->setChecked(editor_.settings.showsigns);
  chkShowSigns_->setEnabled(editor_.settings.canShowSigns());
  connect(chkNoDiff_, &QCheckBox::toggled, this, [this](bool on) {
    editor_.settings.nodiff = on;
    chkShowSigns_->setEnabled(editor_.settings.canShowSigns());
  });
  connect(chkShowSigns_, &QCheckBox::toggled, this, [this](bool on) { editor_.settings.showsigns = on; });
  connect(cmdLingue_, &QPushButton::toggled, this, [this](bool down) {
    if (!down) lblLingue_->hide();
    if (down) translate(*DBGrid1_, DBGrid1_->currentRow());
  });
  auto* settings = new QWidget();
  auto* row = new QHBoxLayout(settings);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(chkNoDiff_);
  row->addWidget(chkShowSigns_);
  row->addStretch(1);
  row->addWidget(cmdLingue_);
  return settings;
}

const VariantRow* frmOpzioni::current() const {
  const int row = DBGrid1_->currentRow();
  const bool any = row >= 0 && row < static_cast<int>(variants_.size());
  return any ? &variants_[static_cast<std::size_t>(row)] : nullptr;
}

std::int64_t frmOpzioni::currentID() const { return current() == nullptr ? 0 : current()->ID; }

std::int64_t frmOpzioni::optionID() const {
  const int row = DBGrid2_->currentRow();
  return row >= 0 && row < static_cast<int>(options_.size()) ? options_[static_cast<std::size_t>(row)].ID : 0;
}

void frmOpzioni::showVariants(std::int64_t ID) {
  variants_ = editor_.variants();
  DBGrid1_->setRows(static_cast<int>(variants_.size()));
  int row = variants_.empty() ? -1 : 0;
  for (int i = 0; i < static_cast<int>(variants_.size()); ++i) {
    const VariantRow& variant = variants_[static_cast<std::size_t>(i)];
    showName(i);
    if (variant.ID == ID) row = i;
  }
  DBGrid1_->goTo(row, 0);
  variantMoved();
}

void frmOpzioni::variantMoved() {
  const std::int64_t ID = currentID();
  cmdDuplica_->setEnabled(VariantEditor::canRemove(ID));
  cmdElimina_->setEnabled(VariantEditor::canRemove(ID));
  cmdAdd_->setEnabled(VariantEditor::canHaveOptions(ID));
  const std::int64_t uses = editor_.useCount(ID);
  cmdUso_->setText(toQt("&Usata in " + std::to_string(uses) + (uses == 1 ? " articolo" : " articoli")));
  cmdUso_->setEnabled(uses > 0);
  showOptions(0);
}

void frmOpzioni::showOptions(int row) {
  lblLingue_->hide();  // its row may be gone
  options_ = editor_.options(currentID());
  DBGrid2_->setRows(static_cast<int>(options_.size()));
  for (int i = 0; i < static_cast<int>(options_.size()); ++i) {
    const OptionRow& option = options_[static_cast<std::size_t>(i)];
    int column = 0;
    for (const std::string* text : {&option.codice, &option.testo, &option.prezzo, &option.peso}) {
      const auto unsaved = unsavedCells_.find({option.ID, column});
      if (unsaved == unsavedCells_.end()) {
        DBGrid2_->setCell(i, column, *text, true);
      } else {
        DBGrid2_->setUnsaved(i, column, unsaved->second.text, unsaved->second.reason);
      }
      ++column;
    }
  }
  DBGrid2_->goTo(options_.empty() ? -1 : row, std::max(DBGrid2_->currentColumn(), 0));
  AggiornaSel();
  cmdDel_->setEnabled(!options_.empty());
}

void frmOpzioni::AggiornaSel() {
  for (int i = 0; i < static_cast<int>(options_.size()); ++i) {
    const bool marked = options_[static_cast<std::size_t>(i)].marked;
    DBGrid2_->setCell(i, markColumn, marked ? std::string(defaultMark) : std::string(), false,
                      marked ? "Predefinita" : "Non predefinita");
  }
}

}  // namespace kv
