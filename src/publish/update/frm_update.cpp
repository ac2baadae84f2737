#include "publish/update/frm_update.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

#include "publish/update/frm_busy_frame.h"

namespace kv {
namespace {

constexpr std::string_view updateTitle = "Korvane - Aggiornamento del database";
constexpr std::string_view updateHeading =
    "Il server sta aggiornando il database del negozio: può richiedere alcuni minuti.";
constexpr int startDelay = 1000;

}  // namespace

frmUpdate::frmUpdate(UpdateJob job, Environment& env, HttpClient& http, QWidget* parent)
    : FormDialog(updateTitle, parent), job_(std::move(job)), env_(env), http_(http) {
  txtRisposta_ = named(new QPlainTextEdit(), "txtRisposta");
  txtRisposta_->setReadOnly(true);
  txtRisposta_->setTabChangesFocus(true);
  picBusy_ = new BusyFrame();
  auto* column = new QVBoxLayout(this);
  column->addWidget(wrappedText(updateHeading));
  column->addWidget(picBusy_);
  column->addWidget(labelFor("&Risposte del server:", txtRisposta_));
  column->addWidget(txtRisposta_, 1);
  QDialogButtonBox* buttons = makeClose("Annulla");
  named(buttons->button(QDialogButtonBox::Close), "cmdAnnulla");
  column->addWidget(buttons);
  sizeInCharacters(64, 18);
}

void frmUpdate::showEvent(QShowEvent* event) {
  FormDialog::showEvent(event);
  if (!started_) QTimer::singleShot(startDelay, this, &frmUpdate::start);
}

void frmUpdate::start() {
  if (started_ || cancelled_ || !isVisible()) return;
  // Within the question the run would hold the answer until it is over.
  mayStart_ = true;
  if (asking_) return;
  started_ = running_ = true;
  picBusy_->setBusy(true);
  const UpdateParts parts{http_,
                          env_.random,
                          env_.user,
                          [this] { return processEvents(); },
                          [this](const std::string& answers) {
                            txtRisposta_->setPlainText(toQt(answers));
                            txtRisposta_->moveCursor(QTextCursor::End);
                          },
                          &env_.clock};
  const std::string tag = updateDatabase(job_, parts);
  running_ = false;
  picBusy_->setBusy(false);
  finish(tag);
}

bool frmUpdate::processEvents() {
  if (!cancelled_ && pump_.isDue()) pump_.processEvents(true);
  return !cancelled_;
}

void frmUpdate::reject() {
  if (asking_) return;
  asking_ = true;
  const bool leaves = env_.user.question(interruptQuestion()) == Answer::Yes;
  asking_ = false;
  if (!leaves && mayStart_) QTimer::singleShot(0, this, &frmUpdate::start);
  if (!leaves) return;
  cancelled_ = true;
  // A request that is under way ends at its next step, and with it the dialog.
  if (!running_) FormDialog::reject();
}

}  // namespace kv
