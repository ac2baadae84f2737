#include "media/purge/frm_pulisci_immagini.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>

namespace kv {
namespace {

constexpr int thumbnailSide = 40;

QString sizeText(std::uint64_t bytes) {
  return QLocale(QLocale::Italian).formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeTraditionalFormat);
}

}  // namespace

/// Messages and questions pass through; the progress is shown in the window.
class frmPulisciImmagini::SearchUser final : public UserPort {
 public:
  SearchUser(frmPulisciImmagini& window, UserPort& user) : window_(window), user_(user) {}
  void message(const std::string& text, Icon icon) override { user_.message(text, icon); }
  Answer question(const Question& question) override { return user_.question(question); }
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override {
    return user_.chooseFolder(prompt, initial);
  }
  void progress(const Progress& progress) override {
    window_.prgBarra_->setMaximum(static_cast<int>(progress.maximum));
    window_.prgBarra_->setValue(static_cast<int>(progress.position));
  }
  bool yield() override { return user_.yield(); }

 private:
  frmPulisciImmagini& window_;
  UserPort& user_;
};

frmPulisciImmagini::frmPulisciImmagini(PurgeSources sources, UserPort& user, QWidget* parent)
    : FormDialog(purgeTitle, parent),
      user_(std::make_unique<SearchUser>(*this, user)),
      purge_(std::move(sources), *user_) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(makeList(), 1);
  lblTotale_ = named(new QLabel(), "lblTotale");
  column->addWidget(lblTotale_);
  prgBarra_ = named(new QProgressBar(), "prgBarra", "Ricerca");
  prgBarra_->setValue(0);
  column->addWidget(prgBarra_);
  QDialogButtonBox* buttons = makeClose();
  cmdElimina_ = named(buttons->addButton(toQt("&Elimina"), QDialogButtonBox::ActionRole), "cmdElimina");
  cmdElimina_->setAutoDefault(false);
  connect(cmdElimina_, &QPushButton::clicked, this, &frmPulisciImmagini::deleteTicked);
  column->addWidget(buttons);
  for (QWidget* control : std::initializer_list<QWidget*>{lstFiles_, cmdTutti_, cmdNessuno_, cmdElimina_}) {
    control->setEnabled(false);
  }
  sizeInCharacters(64, 28);
}

frmPulisciImmagini::~frmPulisciImmagini() = default;

QWidget* frmPulisciImmagini::makeList() {
  lstFiles_ = named(new QListWidget(), "lstFiles");
  lstFiles_->setIconSize(QSize(thumbnailSide, thumbnailSide));
  lstFiles_->setUniformItemSizes(true);
  cmdTutti_ = named(new QPushButton(toQt("&Tutti")), "cmdTutti");
  cmdNessuno_ = named(new QPushButton(toQt("&Nessuno")), "cmdNessuno");
  connect(cmdTutti_, &QPushButton::clicked, this, [this] { tickAll(true); });
  connect(cmdNessuno_, &QPushButton::clicked, this, [this] { tickAll(false); });
  connect(lstFiles_, &QListWidget::itemChanged, this, [this](const QListWidgetItem* item) {
    purge_.tick(static_cast<std::size_t>(lstFiles_->row(item)), item->checkState() == Qt::Checked);
  });
  auto* side = new QWidget();
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(labelFor("&Immagini inutilizzate:", lstFiles_));
  column->addWidget(lstFiles_, 1);
  auto* row = new QHBoxLayout();
  for (QPushButton* button : {cmdTutti_, cmdNessuno_}) {
    button->setAutoDefault(false);
    row->addWidget(button);
  }
  row->addStretch();
  column->addLayout(row);
  return side;
}

void frmPulisciImmagini::showEvent(QShowEvent* event) {
  FormDialog::showEvent(event);
  if (started_) return;
  started_ = true;
  QTimer::singleShot(0, this, &frmPulisciImmagini::search);
}

void frmPulisciImmagini::search() {
  if (!purge_.search()) {
    reject();
    return;
  }
  fillList();
  for (QWidget* control : std::initializer_list<QWidget*>{lstFiles_, cmdTutti_, cmdNessuno_, cmdElimina_}) {
    control->setEnabled(purge_.hasUnused());
  }
  if (purge_.hasUnused()) lstFiles_->setFocus();
}

void frmPulisciImmagini::fillList() {
  const QSignalBlocker quiet(lstFiles_);
  for (const UnusedPicture& picture : purge_.unused()) {
    auto* item = new QListWidgetItem(lstFiles_);
    QString about = sizeText(picture.size);
    if (picture.isMentioned) about += QStringLiteral(", ") + toQt(mentionedNote);
    item->setText(toQt(picture.name) + QStringLiteral("\n") + about);
    item->setData(Qt::AccessibleTextRole, toQt(picture.name) + QStringLiteral(", ") + about);
    // The file is read when the line is first seen.
    item->setIcon(QIcon(toQt(purge_.folder() + "/" + picture.name)));
    item->setCheckState(Qt::Unchecked);
  }
  if (purge_.hasUnused()) {
    const std::size_t count = purge_.unused().size();
    const char* const noun = count == 1 ? "%1 immagine, %2" : "%1 immagini, %2";
    lblTotale_->setText(tr(noun).arg(count).arg(sizeText(purge_.totalSize())));
    lstFiles_->setCurrentRow(0);
  }
}

void frmPulisciImmagini::tickAll(bool ticked) {
  purge_.tickAll(ticked);
  const QSignalBlocker quiet(lstFiles_);
  for (int row = 0; row < lstFiles_->count(); ++row) {
    lstFiles_->item(row)->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
  }
  lstFiles_->viewport()->update();
}

void frmPulisciImmagini::deleteTicked() {
  if (purge_.deleteTicked()) finish("OK");
}

}  // namespace kv
