#include "publish/passwords/frm_ftp_otp.h"

#include <QDialogButtonBox>
#include <QFrame>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

#include "platform/qt/frm_user.h"
#include "publish/update/busy_shape.h"

namespace kv {
namespace {

constexpr std::string_view passwordTransferTitle = "Korvane - Trasferimento file";
constexpr std::string_view passwordTransferLeaves = "Annullamento in corso...";
constexpr int passwordShapeHeight = 9;

}  // namespace

/// The user and the view of the run: questions pass through to the program's own user, each yield processes events
/// here, and what is told is kept until it is due on the screen.
class frmFTPOTP::RunPorts final : public UserPort, public PublishView {
 public:
  RunPorts(frmFTPOTP& window, UserPort& user) : window_(window), user_(user) {}
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
  void title(const std::string& text) override { titleText = text; }
  void operation(const std::string& text) override { operationText = text; }
  void dialogue(const std::string& line) override {
    log.add(line);
    hasNewLines = true;
  }
  void progress(const PublishProgress& /*progress*/) override {}

  EventPump pump;
  std::string titleText{passwordTransferTitle};
  std::string operationText;
  VisibleLog log;
  bool hasNewLines = false;

 private:
  frmFTPOTP& window_;
  UserPort& user_;
};

frmFTPOTP::frmFTPOTP(PasswordJob job, std::string script, PasswordServices services, QWidget* parent)
    : FormDialog(passwordTransferTitle, parent),
      job_(std::move(job)),
      script_(std::move(script)),
      services_(services),
      ports_(std::make_unique<RunPorts>(*this, services.user)) {
  build();
}

frmFTPOTP::~frmFTPOTP() = default;

void frmFTPOTP::build() {
  auto* column = new QVBoxLayout(this);
  lblStato_ = named(new QLabel(), "lblStato");
  lblStato_->setTextFormat(Qt::PlainText);
  column->addWidget(lblStato_);
  picBusy_ = named(new QFrame(), "picBusy");
  picBusy_->setFrameShape(QFrame::StyledPanel);
  picBusy_->setFixedHeight(passwordShapeHeight + 2 * picBusy_->frameWidth());
  shpBusy_ = named(new QFrame(picBusy_), "shpBusy");
  shpBusy_->setGeometry(0, picBusy_->frameWidth(), 4 * passwordShapeHeight, passwordShapeHeight);
  shpBusy_->setAutoFillBackground(true);
  shpBusy_->setBackgroundRole(QPalette::Highlight);
  shpBusy_->hide();
  column->addWidget(picBusy_);
  tmrBusy_ = new QTimer(this);
  tmrBusy_->setInterval(busyInterval);
  connect(tmrBusy_, &QTimer::timeout, this,
          [this] { shpBusy_->move(nextBusyEdge(shpBusy_->x(), picBusy_->width()), shpBusy_->y()); });
  txtLog_ = named(new QPlainTextEdit(), "txtLog");
  txtLog_->setReadOnly(true);
  txtLog_->setTabChangesFocus(true);
  column->addWidget(labelFor("&Dialogo con il server:", txtLog_));
  column->addWidget(txtLog_, 1);
  QDialogButtonBox* buttons = makeClose("Annulla");
  cmdAnnulla_ = named(buttons->button(QDialogButtonBox::Close), "cmdAnnulla");
  column->addWidget(buttons);
  setCursor(Qt::BusyCursor);
  cmdAnnulla_->setCursor(Qt::ArrowCursor);
  sizeInCharacters(70, 18);
}

void frmFTPOTP::showEvent(QShowEvent* event) {
  FormDialog::showEvent(event);
  if (!started_) QTimer::singleShot(0, this, &frmFTPOTP::start);
}

void frmFTPOTP::start() {
  if (started_ || !isVisible()) return;
  started_ = true;
  running_ = true;
  ports_->pump.processEvents(false);
  PasswordRun run(job_, {services_.transfer, services_.http, *ports_, *ports_, [this](bool busy) { setBusy(busy); }});
  const bool loaded = run.send(script_);
  running_ = false;
  finish(loaded ? "OK" : "");
}

void frmFTPOTP::setBusy(bool busy) {
  refresh();
  shpBusy_->setVisible(busy);
  busy ? tmrBusy_->start() : tmrBusy_->stop();
}

void frmFTPOTP::reject() {
  if (!running_) {
    FormDialog::reject();
    return;
  }
  cancelled_ = true;
  cmdAnnulla_->setEnabled(false);
  lblStato_->setText(toQt(passwordTransferLeaves));
}

bool frmFTPOTP::processEvents() {
  if (cancelled_) return false;
  if (!ports_->pump.isDue()) return true;
  refresh();
  ports_->pump.processEvents(true);
  if (cancelled_) hide();
  return !cancelled_;
}

void frmFTPOTP::refresh() {
  setWindowTitle(toQt(ports_->titleText));
  lblStato_->setText(toQt(ports_->operationText));
  if (!ports_->hasNewLines) return;
  ports_->hasNewLines = false;
  txtLog_->setPlainText(toQt(ports_->log.text()));
  txtLog_->verticalScrollBar()->setValue(txtLog_->verticalScrollBar()->maximum());
}

}  // namespace kv
