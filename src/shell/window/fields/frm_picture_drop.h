#pragma once
// Pictures dropped on the window from a file manager or a browser, and pasted on a picture.

#include <QObject>
#include <QPoint>
#include <functional>
#include <optional>

#include "shell/workbench/picture_drop.h"

class QMimeData;
class QWidget;

namespace kv {

/// Whether data that is dragged or on the clipboard can be pictures: files, an image, or what a browser says of one.
bool holdsPictures(const QMimeData& data);

/// Takes the pictures that are dropped on a widget, and those that are pasted while it has the focus. Other data go to
/// the widget itself. The widget owns this object.
class PictureDrops final : public QObject {
 public:
  /// Makes the row under a point of the widget the current one and says which picture is meant; nothing when there is
  /// none. Called once the drop is over, for a paste with a null point.
  using Target = std::function<std::optional<RowPicture>(QPoint at)>;
  /// `workbench` outlives the widget.
  PictureDrops(QWidget& widget, Workbench& workbench, Target target);
  /// Also pastes while `control`, a part of the widget, has the focus.
  void pasteOn(QWidget& control);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// Keeps what the data are, which don't outlive the event, and takes the pictures from the event loop.
  void take(const QMimeData& data, QPoint at);

  Workbench& workbench_;
  Target target_;
};

}  // namespace kv
