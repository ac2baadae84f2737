#include "platform/qt/frm_user.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "platform/ports/result.h"
#include "platform/qt/frm_dialog.h"

namespace kv {
namespace {

constexpr std::string_view program = "Korvane";

QMessageBox::Icon pictureOf(Icon icon) {
  switch (icon) {
    case Icon::Information:
      return QMessageBox::Information;
    case Icon::Question:
      return QMessageBox::Question;
    case Icon::Exclamation:
      return QMessageBox::Warning;
    case Icon::Critical:
      return QMessageBox::Critical;
    case Icon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

struct AnswerButton {
  Answer answer;
  QMessageBox::ButtonRole role;
  const char* caption;
  const char* name;
};
constexpr AnswerButton okButton{Answer::Ok, QMessageBox::AcceptRole, "OK", "cmdOK"};
constexpr AnswerButton cancelButton{Answer::Cancel, QMessageBox::RejectRole, "Annulla", "cmdAnnulla"};
constexpr AnswerButton yesButton{Answer::Yes, QMessageBox::YesRole, "&Sì", "cmdSi"};
constexpr AnswerButton noButton{Answer::No, QMessageBox::NoRole, "&No", "cmdNo"};

/// The accepting button first, the refusing one last: Escape and the close button count as the last one.
std::vector<AnswerButton> buttonsOf(Buttons buttons) {
  switch (buttons) {
    case Buttons::Ok:
      return {okButton};
    case Buttons::OkCancel:
      return {okButton, cancelButton};
    case Buttons::YesNo:
      return {yesButton, noButton};
  }
  return {okButton};
}

Answer ask(QWidget* over, const Question& question) {
  const UsualCursor pointer;
  QMessageBox box(over);
  box.setWindowTitle(toQt(program));
  box.setIcon(pictureOf(question.icon));
  box.setTextFormat(Qt::PlainText);
  box.setText(toQt(question.text));
  const std::vector<AnswerButton> offered = buttonsOf(question.buttons);
  std::vector<QPushButton*> shown;
  for (const AnswerButton& one : offered) {
    shown.push_back(named(box.addButton(toQt(one.caption), one.role), one.name));
    if (one.answer == question.preset) box.setDefaultButton(shown.back());
  }
  box.setEscapeButton(shown.back());
  makeReadable(box);
  box.exec();
  for (std::size_t i = 0; i < offered.size(); ++i) {
    if (box.clickedButton() == shown[i]) return offered[i].answer;
  }
  return offered.back().answer;
}

}  // namespace

void EventPump::processEvents(bool input) {
  QCoreApplication::processEvents(input ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);
  since_.start();
}

QtUser::QtUser() = default;
QtUser::~QtUser() = default;

QWidget* QtUser::over() const {
  if (QWidget* modal = QApplication::activeModalWidget()) return modal;
  if (QWidget* active = QApplication::activeWindow()) return active;
  return home_;
}

void QtUser::message(const std::string& text, Icon icon) {
  const QPointer<QWidget> window = over();
  ignore(ask(window, {text, Buttons::Ok, Answer::Ok, icon}), "a message has one button");
  // Whatever the button was that has been refused, the keyboard goes where there is something to mend.
  const bool isRefusal = icon == Icon::Exclamation || icon == Icon::Critical;
  if (isRefusal && window != nullptr) returnToField(*window);
}

Answer QtUser::question(const Question& question) { return ask(over(), question); }

std::string QtUser::chooseFolder(const std::string& prompt, const std::string& initial) {
  const UsualCursor pointer;
  QFileDialog dialog(over(), toQt(prompt), toQt(initial));
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  dialog.setLabelText(QFileDialog::LookIn, toQt("Cerca in:"));
  dialog.setLabelText(QFileDialog::FileName, toQt("Cartella:"));
  dialog.setLabelText(QFileDialog::Accept, toQt("Scegli"));
  dialog.setLabelText(QFileDialog::Reject, toQt("Annulla"));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  return fromQt(dialog.selectedFiles().constFirst());
}

void QtUser::progress(const Progress& progress) {
  if (running_ && target_) {
    target_(progress);
  } else {
    showStatus(progress);
  }
}

void QtUser::showStatus(const Progress& progress) {
  if (progress.caption.empty()) {
    status_.reset();
    return;
  }
  if (!status_) {
    status_ = std::make_unique<QDialog>(over(), Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    status_->setWindowTitle(toQt(program));
    status_->setWindowModality(Qt::ApplicationModal);
    auto* column = new QVBoxLayout(status_.get());
    column->setContentsMargins(32, 24, 32, 24);
    column->addWidget(named(new QLabel(), "lblStato"));
  }
  status_->findChild<QLabel*>()->setText(toQt(progress.caption));
  status_->show();
  pump_.processEvents(false);
}

bool QtUser::yield() {
  if (running_ && cancelled_) return false;
  if (pump_.isDue()) pump_.processEvents(running_);
  return !running_ || !cancelled_;
}

void QtUser::beginRun(ProgressTarget target) {
  target_ = std::move(target);
  running_ = true;
  cancelled_ = false;
}

void QtUser::endRun() {
  running_ = false;
  target_ = {};
}

}  // namespace kv
