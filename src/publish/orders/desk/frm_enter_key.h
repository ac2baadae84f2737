#pragma once
// Enter in a field, for windows whose default button does something else.

#include <QAction>
#include <QWidget>
#include <functional>
#include <utility>

namespace kv {

/// Runs `act` when Enter is pressed in a field; the default button of the window isn't pressed then.
inline void onEnter(QWidget& field, std::function<void()> act) {
  auto* enter = new QAction(&field);
  enter->setShortcuts({QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter)});
  enter->setShortcutContext(Qt::WidgetShortcut);
  field.addAction(enter);
  QObject::connect(enter, &QAction::triggered, &field, std::move(act));
}

}  // namespace kv
