#include "publish/update/frm_busy_frame.h"

#include <QTimer>

#include "platform/qt/frm_dialog.h"
#include "publish/update/busy_shape.h"

namespace kv {
namespace {

constexpr int shapeHeight = 9;  // pixels

}  // namespace

BusyFrame::BusyFrame(QWidget* parent)
    : QFrame(parent), shpBusy_(named(new QFrame(this), "shpBusy")), tmrBusy_(new QTimer(this)) {
  named(this, "picBusy");
  setFrameShape(QFrame::StyledPanel);
  setFixedHeight(shapeHeight + 2 * frameWidth());
  shpBusy_->setGeometry(0, frameWidth(), 4 * shapeHeight, shapeHeight);
  shpBusy_->setAutoFillBackground(true);
  shpBusy_->setBackgroundRole(QPalette::Highlight);
  shpBusy_->hide();
  tmrBusy_->setInterval(busyInterval);
  connect(tmrBusy_, &QTimer::timeout, this,
          [this] { shpBusy_->move(nextBusyEdge(shpBusy_->x(), width()), shpBusy_->y()); });
}

void BusyFrame::setBusy(bool busy) {
  shpBusy_->setVisible(busy);
  busy ? tmrBusy_->start() : tmrBusy_->stop();
}

}  // namespace kv
