#pragma once
// The frame in which a shape moves while the host works.

#include <QFrame>

class QTimer;

namespace kv {

/// picBusy with its shape, shpBusy, which is hidden until the host works.
class BusyFrame final : public QFrame {
 public:
  explicit BusyFrame(QWidget* parent = nullptr);
  /// Whether the host works: the shape is shown and moves.
  void setBusy(bool busy);

 private:
  QFrame* shpBusy_;
  QTimer* tmrBusy_;
};

}  // namespace kv
