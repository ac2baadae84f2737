#include "shell/dialogs/frm_backup.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace kv {
namespace {

constexpr std::string_view backupTitle = "Korvane - Ripristina una copia";
constexpr std::string_view backupNote =
    "A ogni apertura del negozio Korvane conserva una copia del catalogo; restano le ultime dieci. Selezionare quella "
    "a cui tornare:";
constexpr std::string_view noCopies = "Non è ancora stata conservata alcuna copia.";

/// The time of a copy with its seconds; copies of one second are numbered, the oldest is the first.
std::string timeOfCopy(const std::vector<BackupCopy>& copies, const BackupCopy& copy) {
  constexpr std::int64_t minute = 60;
  const std::int64_t seconds = copy.madeAt % minute;
  std::string text = formatTime(copy.madeAt) + (seconds < 10 ? ":0" : ":") + std::to_string(seconds);
  std::size_t sameTime = 0, number = 0;
  for (auto each = copies.rbegin(); each != copies.rend(); ++each) {
    if (each->madeAt != copy.madeAt) continue;
    ++sameTime;
    if (each->name == copy.name) number = sameTime;
  }
  return sameTime > 1 ? text + " (" + std::to_string(number) + ")" : text;
}

}  // namespace

frmBackup::frmBackup(const std::string& shopFolder, Environment& env, QWidget* parent)
    : FormDialog(backupTitle, parent), env_(env), copies_(restorableCopies(shopFolder)) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(wrappedText(backupNote));
  column->addWidget(makeList(), 1);
  if (copies_.empty()) column->addWidget(named(new QLabel(toQt(noCopies)), "lblNessuna"));
  QDialogButtonBox* buttons = makeButtons("&Ripristina");
  cmdRipristina_ = named(buttons->button(QDialogButtonBox::Ok), "cmdRipristina");
  cmdRipristina_->setEnabled(!copies_.empty());
  connect(buttons, &QDialogButtonBox::accepted, this, &frmBackup::choose);
  column->addWidget(buttons);
  sizeInCharacters(80, 20);
}

QWidget* frmBackup::makeList() {
  lstCopie_ = named(new QTableWidget(static_cast<int>(copies_.size()), 3), "lstCopie", "Copie del catalogo");
  lstCopie_->setHorizontalHeaderLabels({"Copia del", "Catalogo salvato il", "Dimensione"});
  lstCopie_->setSelectionBehavior(QAbstractItemView::SelectRows);
  lstCopie_->setSelectionMode(QAbstractItemView::SingleSelection);
  lstCopie_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  lstCopie_->setTabKeyNavigation(false);
  lstCopie_->verticalHeader()->hide();
  lstCopie_->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + 8);
  lstCopie_->horizontalHeader()->setHighlightSections(false);
  int row = 0;
  for (const BackupCopy& copy : copies_) {
    lstCopie_->setItem(row, 0, new QTableWidgetItem(toQt(timeOfCopy(copies_, copy))));
    lstCopie_->setItem(row, 1, new QTableWidgetItem(toQt(formatTime(copy.savedAt))));
    lstCopie_->setItem(row, 2, new QTableWidgetItem(toQt(formatSize(copy.size))));
    lstCopie_->item(row, 2)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    ++row;
  }
  for (int i = 0; i < 3; ++i) lstCopie_->horizontalHeader()->setSectionResizeMode(i, QHeaderView::Stretch);
  if (row > 0) lstCopie_->setCurrentCell(0, 0);
  connect(lstCopie_, &QTableWidget::cellDoubleClicked, this, &frmBackup::choose);
  return lstCopie_;
}

void frmBackup::choose() {
  const int row = lstCopie_->currentRow();
  if (row < 0) return;
  const BackupCopy& copy = copies_[static_cast<std::size_t>(row)];
  if (env_.user.question(restoreQuestion(copy)) == Answer::Yes) finish(copy.name);
}

}  // namespace kv
