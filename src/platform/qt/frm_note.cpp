#include "platform/qt/frm_note.h"

#include <QAccessible>
#include <QLabel>
#include <QTimer>
#include <algorithm>

namespace kv {
namespace {

constexpr int noteMilliseconds = 10'000;
const QString noteName = QStringLiteral("lblNota");

/// The label of a window, made at its first note.
QLabel* noteLabel(QWidget& window) {
  if (auto* made = window.findChild<QLabel*>(noteName, Qt::FindDirectChildrenOnly)) return made;
  auto* label = new QLabel(&window);
  label->setObjectName(noteName);
  label->setTextFormat(Qt::PlainText);
  label->setFrameShape(QFrame::Box);
  label->setMargin(4);
  label->setAutoFillBackground(true);
  label->setBackgroundRole(QPalette::ToolTipBase);
  label->setForegroundRole(QPalette::ToolTipText);
  label->setAttribute(Qt::WA_TransparentForMouseEvents);
  auto* end = new QTimer(label);
  end->setSingleShot(true);
  end->setInterval(noteMilliseconds);
  QObject::connect(end, &QTimer::timeout, label, &QWidget::hide);
  return label;
}

}  // namespace

void showNote(QWidget& field, const QString& text) {
  QWidget& window = *field.window();
  QLabel* label = noteLabel(window);
  if (text.isEmpty()) return label->hide();
  label->setText(text);
  label->adjustSize();
  const QPoint below = field.mapTo(&window, QPoint(0, field.height() + 2));
  const QPoint above = field.mapTo(&window, QPoint(0, -label->height() - 2));
  const int left = std::max(0, std::min(below.x(), window.width() - label->width()));
  label->move(left, below.y() + label->height() <= window.height() ? below.y() : std::max(0, above.y()));
  label->show();
  label->raise();
  label->findChild<QTimer*>()->start();
  QAccessibleEvent told(label, QAccessible::Alert);
  QAccessible::updateAccessibility(&told);
}

QString noteOf(const QWidget& window) {
  const auto* label = window.findChild<QLabel*>(noteName, Qt::FindDirectChildrenOnly);
  return label == nullptr || label->isHidden() ? QString() : label->text();
}

}  // namespace kv
