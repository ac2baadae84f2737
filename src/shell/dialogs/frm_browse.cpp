#include "shell/dialogs/frm_browse.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kv {
namespace {

/// How a row is called.
struct RowTexts {
  std::string_view label;
  std::string_view name;
  std::string_view prompt;
};
constexpr std::array<RowTexts, 2> rows{
    {{"Cartella &online:", "Online", "Selezionare la cartella in cui costruire le pagine del negozio:"},
     {"Cartella &script:", "Script", "Selezionare la cartella in cui costruire gli script del negozio:"}}};

std::size_t indexOf(BuildFolder folder) { return static_cast<std::size_t>(folder); }

}  // namespace

frmBrowse::frmBrowse(Session& session, Environment& env, QWidget* parent)
    : FormDialog(foldersTitle, parent), session_(session), env_(env), choice_(session) {
  auto* column = new QVBoxLayout(this);
  auto* grid = new QGridLayout();
  grid->setColumnStretch(1, 1);
  addRow(*grid, BuildFolder::Online);
  addRow(*grid, BuildFolder::Scripts);
  column->addLayout(grid);
  column->addStretch();
  QDialogButtonBox* buttons = makeButtons();
  connect(buttons, &QDialogButtonBox::accepted, this, &frmBrowse::accepted);
  column->addWidget(buttons);
  sizeInCharacters(96, 10);
}

void frmBrowse::addRow(QGridLayout& grid, BuildFolder folder) {
  const RowTexts& texts = rows[indexOf(folder)];
  const std::string name(texts.name);
  const int row = static_cast<int>(indexOf(folder));
  auto* field = named(new QLineEdit(toQt(choice_.field(folder).text)), "txt" + name);
  auto* cmdSfoglia = named(new QPushButton(QStringLiteral("Sfoglia...")), "cmdSfoglia" + name);
  auto* cmdReset = named(new QPushButton(QStringLiteral("Reset")), "cmdReset" + name);
  QLabel* label = labelFor(texts.label, field);
  cmdSfoglia->setAccessibleName(field->accessibleName() + QStringLiteral(": sfoglia"));
  cmdReset->setAccessibleName(field->accessibleName() + QStringLiteral(": reset"));
  cmdReset->setToolTip(toQt("Torna alla cartella predefinita, dentro quella del negozio"));
  for (QPushButton* button : {cmdSfoglia, cmdReset}) button->setAutoDefault(false);
  txtCartella_[indexOf(folder)] = field;
  grid.addWidget(label, row, 0);
  grid.addWidget(field, row, 1);
  grid.addWidget(cmdSfoglia, row, 2);
  grid.addWidget(cmdReset, row, 3);
  connect(field, &QLineEdit::textEdited, this,
          [this, folder](const QString& text) { choice_.set(folder, fromQt(text)); });
  connect(cmdSfoglia, &QPushButton::clicked, this, [this, folder] { browse(folder); });
  connect(cmdReset, &QPushButton::clicked, this, [this, folder] { reset(folder); });
}

void frmBrowse::browse(BuildFolder folder) {
  const std::string prompt(rows[indexOf(folder)].prompt);
  const std::string chosen = env_.user.chooseFolder(prompt, choice_.field(folder).text);
  if (chosen.empty()) return;
  choice_.set(folder, chosen);
  txtCartella_[indexOf(folder)]->setText(toQt(chosen));
}

void frmBrowse::reset(BuildFolder folder) {
  choice_.reset(folder);
  txtCartella_[indexOf(folder)]->setText(toQt(choice_.field(folder).text));
}

void frmBrowse::accepted() {
  ignore(choice_.apply(session_, env_.user), "the user has been told");
  finish("OK");
}

}  // namespace kv
