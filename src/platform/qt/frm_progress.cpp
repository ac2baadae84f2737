#include "platform/qt/frm_progress.h"

#include <QApplication>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>

namespace kv {
namespace {

constexpr int barSteps = 1000;

}  // namespace

WatchedUser::~WatchedUser() { delete window_; }

void WatchedUser::open() {
  QWidget* const modal = QApplication::activeModalWidget();
  window_ = new QProgressDialog(modal == nullptr ? parent_ : modal);
  window_->setObjectName(toQt(look_.name));
  window_->setWindowTitle(toQt(look_.title));
  window_->setWindowModality(Qt::ApplicationModal);
  window_->setAutoReset(false);
  window_->setAutoClose(false);
  window_->setMinimumDuration(0);
  window_->setCancelButton(named(new QPushButton(toQt("Annulla")), "cmdAnnulla"));
  named(window_->findChild<QProgressBar*>(), "prgBarra", look_.bar);
}

void WatchedUser::end() {
  delete window_;
  pointer_.reset();
  begun_.invalidate();
}

void WatchedUser::showBar(const Progress& progress, bool isNew) {
  const bool isKnown = progress.maximum > 0;
  if (isNew || (window_->maximum() > 0) != isKnown) window_->setRange(0, isKnown ? barSteps : 0);
  if (isNew) window_->show();
  // Setting the value lets the window process events: no more often than it can be seen.
  if (isKnown && pump_.isDue()) window_->setValue(static_cast<int>(progress.position / progress.maximum * barSteps));
}

void WatchedUser::progress(const Progress& progress) {
  if (progress.caption.empty()) return end();
  if (!begun_.isValid()) begun_.start();
  const bool isNew = window_ == nullptr;
  if (isNew && begun_.elapsed() < look_.delay) return;
  if (isNew) {
    open();
    pointer_.emplace();
  }
  if (const QString caption = toQt(progress.caption); caption != window_->labelText()) window_->setLabelText(caption);
  showBar(progress, isNew);
}

bool WatchedUser::yield() {
  if (window_ != nullptr && pump_.isDue()) pump_.processEvents(true);
  return window_ == nullptr || !window_->wasCanceled();
}

}  // namespace kv
