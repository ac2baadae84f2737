#include "platform/qt/frm_screen.h"

#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <algorithm>

namespace kv {
namespace {

constexpr int lookMilliseconds = 20;
constexpr int mostLooks = 25;

}  // namespace

void bringOnScreen(QWidget& window) {
  if (window.isMaximized() || window.isFullScreen() || window.screen() == nullptr) return;
  const QRect room = window.screen()->availableGeometry();
  const QSize rim = window.frameGeometry().size() - window.size();
  const QSize most = (room.size() - rim).expandedTo(window.minimumSizeHint().expandedTo(window.minimumSize()));
  if (window.width() > most.width() || window.height() > most.height()) window.resize(window.size().boundedTo(most));
  const QRect frame = window.frameGeometry();
  const int left = std::max(room.left(), std::min(frame.left(), room.right() + 1 - frame.width()));
  const int top = std::max(room.top(), std::min(frame.top(), room.bottom() + 1 - frame.height()));
  if (QPoint(left, top) != frame.topLeft()) window.move(left, top);
}

void whenFramed(QWidget& window, std::function<void()> action) {
  auto* look = new QTimer(&window);
  look->setProperty("volte", 0);
  QObject::connect(look, &QTimer::timeout, &window, [look, &window, action = std::move(action)] {
    const int looks = look->property("volte").toInt() + 1;
    look->setProperty("volte", looks);
    if (window.frameGeometry() == window.geometry() && looks < mostLooks) return;
    look->stop();
    look->deleteLater();
    action();
  });
  look->start(lookMilliseconds);
}

}  // namespace kv
