#include "publish/run/frm_transfer.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include "platform/qt/frm_user.h"

namespace kv {
namespace {

constexpr std::string_view transferLeaves = "Annullamento in corso...";

}  // namespace

/// Questions pass through to the program's own user, each yield processes events of the window, and what is told is
/// kept until it is due on the screen: the dialogue may come faster than anybody reads.
class TransferWindow::RunPorts final : public UserPort, public PublishView {
 public:
  RunPorts(TransferWindow& window, UserPort& user, std::string_view title)
      : titleText(title), window_(window), user_(user) {}
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
  void progress(const PublishProgress& progress) override { latest = progress; }

  EventPump pump;
  std::string titleText;
  std::string operationText;
  VisibleLog log;
  bool hasNewLines = false;
  PublishProgress latest;

 private:
  TransferWindow& window_;
  UserPort& user_;
};

TransferWindow::TransferWindow(std::string_view title, UserPort& user, QWidget* parent)
    : FormDialog(title, parent), ports_(std::make_unique<RunPorts>(*this, user, title)) {}

TransferWindow::~TransferWindow() = default;

void TransferWindow::build(const std::vector<QWidget*>& between, int columns, int rows) {
  auto* column = new QVBoxLayout(this);
  lblStato_ = named(new QLabel(), "lblStato");
  lblStato_->setTextFormat(Qt::PlainText);
  column->addWidget(lblStato_);
  for (QWidget* one : between) column->addWidget(one);
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
  sizeInCharacters(columns, rows);
}

void TransferWindow::showEvent(QShowEvent* event) {
  FormDialog::showEvent(event);
  if (!started_) QTimer::singleShot(0, this, &TransferWindow::start);
}

void TransferWindow::start() {
  if (started_ || !isVisible()) return;
  started_ = true;
  running_ = true;
  ports_->pump.processEvents(false);
  const std::string outcome = run();
  running_ = false;
  finish(outcome);
}

void TransferWindow::reject() {
  if (!running_) {
    FormDialog::reject();
    return;
  }
  cancelled_ = true;
  cmdAnnulla_->setEnabled(false);
  lblStato_->setText(toQt(transferLeaves));
}

bool TransferWindow::processEvents() {
  if (cancelled_) return false;
  if (!ports_->pump.isDue()) return true;
  refresh();
  ports_->pump.processEvents(true);
  if (cancelled_) hide();
  return !cancelled_;
}

void TransferWindow::refresh() {
  setWindowTitle(toQt(ports_->titleText));
  lblStato_->setText(toQt(ports_->operationText));
  if (!ports_->hasNewLines) return;
  ports_->hasNewLines = false;
  txtLog_->setPlainText(toQt(ports_->log.text()));
  txtLog_->verticalScrollBar()->setValue(txtLog_->verticalScrollBar()->maximum());
}

void TransferWindow::showNow() {
  refresh();
  ports_->pump.processEvents(false);
}

UserPort& TransferWindow::runUser() { return *ports_; }
PublishView& TransferWindow::runView() { return *ports_; }
const PublishProgress& TransferWindow::latest() const { return ports_->latest; }

}  // namespace kv
