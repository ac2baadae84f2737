#include "import/accounting/frm_og_choose.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/files/files.h"
#include "platform/ports/failure_text.h"

namespace kv {
namespace {

constexpr std::string_view otherVariant =
    "Se la variante non è nell'elenco, sceglierla qui sotto e indicare il file del suo database o la cartella dei suoi "
    "dati.";
constexpr const char* choosePrompt = "Selezionare la cartella dei dati di Orsa Gestionale:";

QString titleOf(int number) { return toQt(variantTitle(accountingVariants().at(static_cast<std::size_t>(number)))); }

}  // namespace

frmOGChoose::frmOGChoose(Settings& settings, UserPort& user, QWidget* parent)
    : FormDialog("Korvane - Importa da Orsa Gestionale", parent), settings_(settings), user_(user) {
  choice_.load(settings);
  auto* column = new QVBoxLayout(this);
  lstVarianti_ = named(new QListWidget(), "lstVarianti");
  column->addWidget(labelFor("Varianti &installate:", lstVarianti_));
  column->addWidget(lstVarianti_, 1);
  column->addWidget(named(wrappedText(otherVariant), "lblNota"));
  column->addWidget(makePath());
  QDialogButtonBox* buttons = makeButtons();
  connect(buttons, &QDialogButtonBox::accepted, this, &frmOGChoose::accepted);
  column->addWidget(buttons);
  connect(lstVarianti_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
    if (showing_ || item == nullptr) return;
    choice_.choose(item->data(Qt::UserRole).toInt());
    cboVariante_->setCurrentIndex(choice_.chosen());
  });
  connect(lstVarianti_, &QListWidget::itemDoubleClicked, this, &frmOGChoose::accepted);
  if (choice_.chosen() >= 0) cboVariante_->setCurrentIndex(choice_.chosen());
  showPath();
  showList();
  sizeInCharacters(84, 16);
}

QWidget* frmOGChoose::makePath() {
  auto* panel = new QWidget();
  auto* grid = new QGridLayout(panel);
  cboVariante_ = named(new QComboBox(), "cboVariante");
  for (const AccountingVariant& variant : accountingVariants()) cboVariante_->addItem(titleOf(variant.number));
  txtPercorso_ = named(new QLineEdit(), "txtPercorso");
  auto* cmdSfoglia = named(new QPushButton(QStringLiteral("&Sfoglia...")), "cmdSfoglia");
  auto* cmdCartella = named(new QPushButton(QStringLiteral("&Cartella...")), "cmdCartella");
  cmdSfoglia->setAutoDefault(false);
  cmdCartella->setAutoDefault(false);
  grid->addWidget(labelFor("&Variante:", cboVariante_), 0, 0);
  grid->addWidget(cboVariante_, 0, 1, 1, 3);
  grid->addWidget(labelFor("&Percorso dei dati:", txtPercorso_), 1, 0);
  grid->addWidget(txtPercorso_, 1, 1);
  grid->addWidget(cmdSfoglia, 1, 2);
  grid->addWidget(cmdCartella, 1, 3);
  connect(cboVariante_, &QComboBox::currentIndexChanged, this, &frmOGChoose::showPath);
  connect(txtPercorso_, &QLineEdit::editingFinished, this, &frmOGChoose::pathTyped);
  connect(cmdSfoglia, &QPushButton::clicked, this, &frmOGChoose::browseFile);
  connect(cmdCartella, &QPushButton::clicked, this, &frmOGChoose::browseFolder);
  return panel;
}

void frmOGChoose::showList() {
  showing_ = true;
  lstVarianti_->clear();
  for (const int number : choice_.installed()) {
    auto* item = new QListWidgetItem(titleOf(number), lstVarianti_);
    item->setData(Qt::UserRole, number);
    if (number == choice_.chosen()) lstVarianti_->setCurrentItem(item);
  }
  showing_ = false;
}

void frmOGChoose::showPath() { txtPercorso_->setText(toQt(choice_.path(cboVariante_->currentIndex()))); }

void frmOGChoose::pathTyped() {
  const std::string typed = fromQt(txtPercorso_->text());
  if (typed == choice_.path(cboVariante_->currentIndex())) return;
  choice_.setPath(cboVariante_->currentIndex(), typed);
  showList();
}

void frmOGChoose::takePath(const std::string& path) {
  if (path.empty()) return;
  txtPercorso_->setText(toQt(path));
  pathTyped();
}

void frmOGChoose::browseFile() {
  const QString folder = toQt(folderOf(fromQt(txtPercorso_->text())));
  takePath(fromQt(QFileDialog::getOpenFileName(this, QStringLiteral("Dati di Orsa Gestionale"), folder)));
}

void frmOGChoose::browseFolder() { takePath(user_.chooseFolder(choosePrompt, fromQt(txtPercorso_->text()))); }

void frmOGChoose::accepted() {
  pathTyped();
  if (const std::string refusal = choice_.refusal(); !refusal.empty()) {
    user_.message(refusal, Icon::Exclamation);
    return;
  }
  if (const auto stored = choice_.apply(settings_); !stored) {
    user_.message(failureText(stored.error()), Icon::Critical);
    return;
  }
  finish(std::to_string(choice_.chosen()));
}

}  // namespace kv
