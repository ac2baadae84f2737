#include "publish/run/frm_ftp.h"

#include <QLabel>
#include <QProgressBar>
#include <utility>

namespace kv {
namespace {

constexpr std::string_view publishTitle = "Korvane - Aggiornamento del sito";
constexpr int publishColumns = 80;
constexpr int publishRows = 24;

}  // namespace

frmFTP::frmFTP(PublishJob job, UploadOptions options, PublishServices services, QWidget* parent)
    : TransferWindow(publishTitle, services.user, parent),
      job_(std::move(job)),
      options_(std::move(options)),
      services_(services) {
  prgBarra_ = named(new QProgressBar(), "prgBarra", "Avanzamento dell'aggiornamento");
  prgBarra_->setRange(0, 0);
  lblAvanzamento_ = named(new QLabel(), "lblAvanzamento");
  build({prgBarra_, lblAvanzamento_}, publishColumns, publishRows);
}

std::string frmFTP::run() {
  PublishParts parts{services_.transfer, runUser(), runView(), services_.clock, steps};
  if (steps.exportSql) {
    parts.steps.exportSql = [this](UserPort& user) {
      showNow();
      return steps.exportSql(user);
    };
  }
  outcome_ = publishShop(job_, options_, parts, &report_);
  // The window goes now, and the line of the operation with it.
  const bool hasBegun = report_.sent + report_.skipped > 0 || !report_.failedFile.empty();
  if (outcome_ == PublishOutcome::Failed && hasBegun) runUser().message(reportText(report_), Icon::Information);
  return outcome_ == PublishOutcome::Done ? "OK" : "";
}

void frmFTP::refresh() {
  const PublishProgress& now = latest();
  prgBarra_->setRange(0, now.filesTotal);
  prgBarra_->setValue(now.filesDone);
  lblAvanzamento_->setText(now.filesTotal > 0 ? toQt(progressText(now)) : QString());
  TransferWindow::refresh();
}

}  // namespace kv
