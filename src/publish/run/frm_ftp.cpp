#include "publish/run/frm_ftp.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

#include "platform/qt/frm_user.h"

namespace kv {
namespace {

constexpr std::string_view publishTitle = "Korvane - Aggiornamento del sito";
constexpr std::string_view publishLeaves = "Annullamento in corso...";

}  // namespace

/// The user of the run: everything passes through to the program's own, and each yield processes events here.
class frmFTP::RunUser final : public UserPort {
 public:
  RunUser(frmFTP& window, UserPort& user) : window_(window), user_(user) {}
  void message(const std::string& text, Icon icon) override {
    window_.refresh();
    user_.message(text, icon);
  }
  Answer question(const Question& question) override {
    window_.refresh();
    return user_.question(question);
  }
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override {
    return user_.chooseFolder(prompt, initial);
  }
  void progress(const Progress& /*progress*/) override {}
  bool yield() override { return window_.processEvents(); }
  EventPump pump;

 private:
  frmFTP& window_;
  UserPort& user_;
};

/// What the run tells, kept until it is due on the screen: the dialogue may come faster than anybody reads.
class frmFTP::RunView final : public PublishView {
 public:
  void title(const std::string& text) override { titleText = text; }
  void operation(const std::string& text) override { operationText = text; }
  void dialogue(const std::string& line) override {
    log.add(line);
    hasNewLines = true;
  }
  void progress(const PublishProgress& progress) override { latest = progress; }

  std::string titleText{publishTitle};
  std::string operationText;
  VisibleLog log;
  bool hasNewLines = false;
  PublishProgress latest;
};

frmFTP::frmFTP(PublishJob job, UploadOptions options, PublishServices services, QWidget* parent)
    : FormDialog(publishTitle, parent),
      job_(std::move(job)),
      options_(std::move(options)),
      services_(services),
      user_(std::make_unique<RunUser>(*this, services.user)),
      view_(std::make_unique<RunView>()) {
  build();
}

frmFTP::~frmFTP() = default;

void frmFTP::build() {
  auto* column = new QVBoxLayout(this);
  lblStato_ = named(new QLabel(), "lblStato");
  lblStato_->setTextFormat(Qt::PlainText);
  column->addWidget(lblStato_);
  prgBarra_ = named(new QProgressBar(), "prgBarra", "Avanzamento dell'aggiornamento");
  prgBarra_->setRange(0, 0);
  column->addWidget(prgBarra_);
  lblAvanzamento_ = named(new QLabel(), "lblAvanzamento");
  column->addWidget(lblAvanzamento_);
  txtLog_ = named(new QPlainTextEdit(), "txtLog");
  txtLog_->setReadOnly(true);
  column->addWidget(labelFor("&Dialogo con il server:", txtLog_));
  column->addWidget(txtLog_, 1);
  QDialogButtonBox* buttons = makeClose("Annulla");
  cmdAnnulla_ = named(buttons->button(QDialogButtonBox::Close), "cmdAnnulla");
  column->addWidget(buttons);
  setCursor(Qt::BusyCursor);
  cmdAnnulla_->setCursor(Qt::ArrowCursor);
  sizeInCharacters(80, 24);
}

void frmFTP::showEvent(QShowEvent* event) {
  FormDialog::showEvent(event);
  if (!started_) QTimer::singleShot(0, this, &frmFTP::start);
}

void frmFTP::start() {
  if (started_ || !isVisible()) return;
  started_ = true;
  running_ = true;
  user_->pump.processEvents(false);
  const PublishParts parts{services_.transfer, *user_, *view_, services_.clock, steps};
  outcome_ = publishShop(job_, options_, parts, &report_);
  running_ = false;
  finish(outcome_ == PublishOutcome::Done ? "OK" : "");
}

void frmFTP::reject() {
  if (!running_) {
    FormDialog::reject();
    return;
  }
  cancelled_ = true;
  cmdAnnulla_->setEnabled(false);
  lblStato_->setText(toQt(publishLeaves));
}

bool frmFTP::processEvents() {
  if (cancelled_) return false;
  if (!user_->pump.isDue()) return true;
  refresh();
  user_->pump.processEvents(true);
  if (cancelled_) hide();
  return !cancelled_;
}

void frmFTP::refresh() {
  setWindowTitle(toQt(view_->titleText));
  lblStato_->setText(toQt(view_->operationText));
  const PublishProgress& now = view_->latest;
  prgBarra_->setRange(0, now.filesTotal);
  prgBarra_->setValue(now.filesDone);
  lblAvanzamento_->setText(now.filesTotal > 0 ? toQt(progressText(now)) : QString());
  if (!view_->hasNewLines) return;
  view_->hasNewLines = false;
  txtLog_->setPlainText(toQt(view_->log.text()));
  txtLog_->verticalScrollBar()->setValue(txtLog_->verticalScrollBar()->maximum());
}

}  // namespace kv
