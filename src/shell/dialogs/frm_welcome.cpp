#include "shell/dialogs/frm_welcome.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace kv {
namespace {

constexpr std::string_view welcomeTitle = "Korvane - Benvenuto";
constexpr std::string_view welcomeText =
    "Un negozio è una cartella di questo computer. Scegli se farne uno nuovo o aprirne uno che hai già; questa pagina "
    "si riapre con \"Benvenuto...\" del menu \"File\".";
constexpr std::string_view newFolderPrompt = "Selezionare la cartella del nuovo negozio:";

QPushButton* welcomeButton(std::string_view caption, std::string_view name, std::string_view tip = {}) {
  auto* button = named(new QPushButton(toQt(caption)), name);
  button->setAutoDefault(true);
  button->setToolTip(toQt(tip));
  return button;
}

}  // namespace

frmWelcome::frmWelcome(const WelcomeFacts& facts, UserPort& user, QWidget* parent)
    : FormDialog(welcomeTitle, parent), user_(user) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(wrappedText(welcomeText));
  addNewShop(*column, facts);
  addRecent(*column, facts);
  addOthers(*column, facts);
  constexpr int columns = 84, lines = 24;
  sizeInCharacters(columns, lines);
}

WelcomeChoice frmWelcome::choice() const { return tag().empty() ? WelcomeChoice{} : choice_; }

void frmWelcome::addNewShop(QVBoxLayout& column, const WelcomeFacts& facts) {
  auto* group = new QGroupBox(toQt("Nuovo negozio"));
  auto* rows = new QVBoxLayout(group);
  auto* folder = new QHBoxLayout;
  txtCartella_ = named(new QLineEdit(toQt(facts.newFolder)), "txtCartella");
  txtCartella_->setToolTip(toQt("Una cartella che non esiste ancora viene creata"));
  auto* cmdSfoglia = named(new QPushButton(toQt("S&foglia...")), "cmdSfoglia", "Cartella: sfoglia");
  cmdSfoglia->setAutoDefault(false);
  folder->addWidget(labelFor("&Cartella:", txtCartella_));
  folder->addWidget(txtCartella_, 1);
  folder->addWidget(cmdSfoglia);
  rows->addLayout(folder);
  auto* kinds = new QHBoxLayout;
  auto* cmdVuoto = welcomeButton("Negozio &vuoto", "cmdVuoto", "Un reparto, nessun articolo, una lingua");
  auto* cmdModello = welcomeButton("Negozio dal &modello", "cmdModello",
                                   "Un negozio di esempio completo, da cambiare un poco alla volta");
  cmdVuoto->setDefault(true);
  kinds->addStretch();
  kinds->addWidget(cmdVuoto);
  kinds->addWidget(cmdModello);
  rows->addLayout(kinds);
  column.addWidget(group);
  connect(cmdSfoglia, &QPushButton::clicked, this, &frmWelcome::browse);
  connect(cmdVuoto, &QPushButton::clicked, this, [this] { chooseNew(Welcome::EmptyShop); });
  connect(cmdModello, &QPushButton::clicked, this, [this] { chooseNew(Welcome::ModelShop); });
}

void frmWelcome::addRecent(QVBoxLayout& column, const WelcomeFacts& facts) {
  lstRecenti_ = named(new QListWidget, "lstRecenti");
  for (const std::string& folder : facts.recent) lstRecenti_->addItem(toQt(folder));
  // A folder's own name is at the end of its path: a long one is scrolled and never cut.
  lstRecenti_->setTextElideMode(Qt::ElideNone);
  lstRecenti_->setCurrentRow(facts.recent.empty() ? -1 : 0);
  auto* cmdRecente = welcomeButton("Apri il negozio &scelto", "cmdRecente");
  cmdRecente->setEnabled(!facts.recent.empty());
  lstRecenti_->setEnabled(!facts.recent.empty());
  column.addWidget(labelFor(facts.recent.empty() ? "Negozi &recenti: nessun altro" : "Negozi &recenti:", lstRecenti_));
  column.addWidget(lstRecenti_, 1);
  auto* row = new QHBoxLayout;
  row->addStretch();
  row->addWidget(cmdRecente);
  column.addLayout(row);
  connect(lstRecenti_, &QListWidget::itemActivated, this, &frmWelcome::chooseRecent);
  connect(cmdRecente, &QPushButton::clicked, this, &frmWelcome::chooseRecent);
}

void frmWelcome::addOthers(QVBoxLayout& column, const WelcomeFacts& facts) {
  auto* row = new QHBoxLayout;
  auto* cmdApri = welcomeButton("&Apri un altro negozio...", "cmdApri");
  auto* cmdRipristina = welcomeButton("Ri&pristina una copia...", "cmdRipristina");
  auto* cmdContinua = welcomeButton("C&ontinua", "cmdContinua", "Resta nel negozio che è aperto");
  cmdRipristina->setEnabled(facts.hasCopies);
  row->addWidget(cmdApri);
  row->addWidget(cmdRipristina);
  row->addStretch();
  row->addWidget(cmdContinua);
  column.addLayout(row);
  connect(cmdApri, &QPushButton::clicked, this, [this] { choose({Welcome::Open, {}}); });
  connect(cmdRipristina, &QPushButton::clicked, this, [this] { choose({Welcome::RestoreCopy, {}}); });
  connect(cmdContinua, &QPushButton::clicked, this, &frmWelcome::reject);
}

void frmWelcome::choose(WelcomeChoice choice) {
  choice_ = std::move(choice);
  finish("OK");
}

void frmWelcome::chooseNew(Welcome what) {
  const std::string folder = typedShopFolder(fromQt(txtCartella_->text()));
  if (const std::string refusal = welcomeRefusal(folder); !refusal.empty()) {
    user_.message(refusal, Icon::Exclamation);
    txtCartella_->setFocus();
    txtCartella_->selectAll();
    return;
  }
  choose({what, folder});
}

void frmWelcome::chooseRecent() {
  const QListWidgetItem* item = lstRecenti_->currentItem();
  if (item != nullptr) choose({Welcome::Recent, fromQt(item->text())});
}

void frmWelcome::browse() {
  const std::string chosen =
      user_.chooseFolder(std::string(newFolderPrompt), nearestFolder(typedShopFolder(fromQt(txtCartella_->text()))));
  if (!chosen.empty()) txtCartella_->setText(toQt(chosen));
  txtCartella_->setFocus();
}

}  // namespace kv
