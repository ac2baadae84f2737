#include "store/exchange/frm_export_progress.h"

#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>

#include "platform/qt/frm_dialog.h"
#include "store/exchange/export_options.h"

namespace kv {
namespace {

constexpr int barSteps = 1000;

}  // namespace

ExportUser::~ExportUser() { delete window_; }

void ExportUser::progress(const Progress& progress) {
  if (progress.caption.empty()) {
    delete window_;
    return;
  }
  if (window_ == nullptr) {
    window_ = new QProgressDialog(parent_);
    window_->setObjectName(QStringLiteral("frmEsportazione"));
    window_->setWindowTitle(toQt(exportTitle));
    window_->setWindowModality(Qt::ApplicationModal);
    window_->setAutoReset(false);
    window_->setAutoClose(false);
    window_->setMinimumDuration(0);
    window_->setRange(0, barSteps);
    window_->setLabelText(toQt(progress.caption));
    window_->setCancelButton(named(new QPushButton(toQt("Annulla")), "cmdAnnulla"));
    named(window_->findChild<QProgressBar*>(), "prgBarra", "Avanzamento dell'esportazione");
    window_->show();
  }
  // Setting the value lets the window process events: no more often than it can be seen.
  if (!pump_.isDue()) return;
  window_->setValue(static_cast<int>(progress.position * barSteps));
}

bool ExportUser::yield() {
  if (window_ != nullptr && pump_.isDue()) pump_.processEvents(true);
  return window_ == nullptr || !window_->wasCanceled();
}

}  // namespace kv
