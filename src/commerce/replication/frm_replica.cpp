#include "commerce/replication/frm_replica.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QProgressBar>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/qt/frm_user.h"

namespace kv {
namespace {

constexpr int barSteps = 100;

int languageOf(const QComboBox& box) { return box.currentData().toInt(); }

}  // namespace

/// The user of the run: questions and messages pass through, the progress is shown in the dialog.
class frmReplica::RunUser final : public UserPort {
 public:
  RunUser(frmReplica& window, UserPort& user) : window_(window), user_(user) {}

  void message(const std::string& text, Icon icon) override { user_.message(text, icon); }
  Answer question(const Question& question) override { return user_.question(question); }
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override {
    return user_.chooseFolder(prompt, initial);
  }
  void progress(const Progress& progress) override {
    if (progress.caption.empty()) return;
    window_.lblConteggio_->setText(toQt(progress.caption));
    const double done = progress.maximum > 0 ? progress.position / progress.maximum : 1;
    window_.prgBarra_->setValue(static_cast<int>(done * barSteps));
  }
  bool yield() override {
    if (pump_.isDue()) pump_.processEvents(false);
    return true;
  }

 private:
  frmReplica& window_;
  UserPort& user_;
  EventPump pump_;
};

frmReplica::frmReplica(Session& session, Environment& env, HelpOpener help, QWidget* parent)
    : FormDialog(replicateLanguagesTitle, parent), session_(session), env_(env) {
  auto* column = new QVBoxLayout(this);
  column->addWidget(makeLanguages());
  column->addWidget(makeChoices());
  column->addWidget(makeStatus());
  column->addStretch();
  QDialogButtonBox* buttons = makeButtons();
  column->addWidget(buttons);
  addHelp(buttons, std::move(help), "pagine/prezzi.htm");
  connect(buttons, &QDialogButtonBox::accepted, this, &frmReplica::run);
  sourceChosen();
  sizeInCharacters(64, 22);
}

QWidget* frmReplica::makeLanguages() {
  cboOrigine_ = named(new QComboBox(), "cboOrigine");
  for (int language = 1; language <= session_.languageCount; ++language) {
    cboOrigine_->addItem(toQt(languageItem(session_, language)), language);
  }
  cboDestinazione_ = named(new QComboBox(), "cboDestinazione");
  auto* languages = new QWidget();
  auto* form = new QFormLayout(languages);
  form->setContentsMargins(0, 0, 0, 0);
  form->addRow(labelFor("Lingua di &origine:", cboOrigine_), cboOrigine_);
  form->addRow(labelFor("Lingua di &destinazione:", cboDestinazione_), cboDestinazione_);
  connect(cboOrigine_, &QComboBox::currentIndexChanged, this, &frmReplica::sourceChosen);
  connect(cboDestinazione_, &QComboBox::currentIndexChanged, this, &frmReplica::countAgain);
  return languages;
}

QWidget* frmReplica::makeChoices() {
  auto* choices = new QGroupBox(toQt("Informazioni da replicare"));
  auto* column = new QVBoxLayout(choices);
  for (std::size_t i = 0; i < chkCopy_.size(); ++i) {
    chkCopy_[i] = named(new QCheckBox(toQt(copiedParts[i])), "chkCopy" + std::to_string(i));
    column->addWidget(chkCopy_[i]);
    connect(chkCopy_[i], &QCheckBox::toggled, this, &frmReplica::countAgain);
  }
  for (std::size_t i = 0; i < optCopy_.size(); ++i) {
    optCopy_[i] = named(new QRadioButton(toQt(copyModes[i])), "optCopy" + std::to_string(i));
    column->addWidget(optCopy_[i]);
  }
  optCopy_[0]->setChecked(true);
  connect(optCopy_[1], &QRadioButton::toggled, this, &frmReplica::countAgain);
  return choices;
}

QWidget* frmReplica::makeStatus() {
  lblConteggio_ = named(new QLabel(), "lblConteggio");
  prgBarra_ = named(new QProgressBar(), "prgBarra", "Avanzamento della replica");
  prgBarra_->setRange(0, barSteps);
  prgBarra_->setValue(0);
  auto* status = new QWidget();
  auto* column = new QVBoxLayout(status);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(lblConteggio_);
  column->addWidget(prgBarra_);
  return status;
}

LanguageReplication frmReplica::replication() const {
  LanguageReplication replication;
  replication.source = languageOf(*cboOrigine_);
  replication.destination = languageOf(*cboDestinazione_);
  for (std::size_t i = 0; i < chkCopy_.size(); ++i) replication.parts[i] = chkCopy_[i]->isChecked();
  replication.onlyEmpty = optCopy_[1]->isChecked();
  return replication;
}

void frmReplica::sourceChosen() {
  const int chosen = languageOf(*cboDestinazione_);
  {
    const QSignalBlocker quiet(cboDestinazione_);
    cboDestinazione_->clear();
    for (const int language : destinationsOf(session_, languageOf(*cboOrigine_))) {
      cboDestinazione_->addItem(toQt(languageItem(session_, language)), language);
    }
    cboDestinazione_->setCurrentIndex(std::max(0, cboDestinazione_->findData(chosen)));
  }
  countAgain();
}

void frmReplica::countAgain() {
  const WaitCursor busy;
  const auto count = countReplication(session_.catalogue, replication());
  lblConteggio_->setText(toQt(count ? count->text() : std::string()));
}

void frmReplica::run() {
  if (running_) return;
  RunUser user(*this, env_.user);
  running_ = true;
  const BulkEnd end = ReplicaLingue(session_.catalogue, replication(), user);
  running_ = false;
  if (end == BulkEnd::Done) {
    finish("OK");
    return;
  }
  prgBarra_->setValue(0);
  countAgain();
}

void frmReplica::reject() {
  if (!running_) FormDialog::reject();
}

}  // namespace kv
