#include "shell/window/frm_keys.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTextDocument>

#include "platform/qt/frm_dialog.h"
#include "shell/window/fields/frm_page.h"
#include "shell/window/frm_menus.h"
#include "shell/window/lists/frm_tree.h"

namespace kv {
namespace {

/// The line in which a control is typed into; null for a control of another kind.
QLineEdit* lineOf(QWidget& target) {
  if (auto* list = qobject_cast<QComboBox*>(&target)) return list->lineEdit();
  return qobject_cast<QLineEdit*>(&target);
}

/// Whether a field has typing of its own to go back over (`back`) or to do again.
bool hasTyping(QWidget& target, bool back) {
  if (const QLineEdit* line = lineOf(target)) {
    return !line->isReadOnly() && (back ? line->isUndoAvailable() : line->isRedoAvailable());
  }
  const auto* memo = qobject_cast<QPlainTextEdit*>(&target);
  if (memo == nullptr || memo->isReadOnly()) return false;
  return back ? memo->document()->isUndoAvailable() : memo->document()->isRedoAvailable();
}

void redoTyping(QWidget& target) {
  if (QLineEdit* line = lineOf(target)) return line->redo();
  if (auto* memo = qobject_cast<QPlainTextEdit*>(&target)) memo->redo();
}

bool isOfClipboard(const QKeySequence& keys) {
  return keys == QKeySequence(Qt::Key_Delete) || keys == QKeySequence(Qt::CTRL | Qt::Key_C) ||
         keys == QKeySequence(Qt::CTRL | Qt::Key_V);
}

bool isOnPage(const QWidget& target) {
  for (const QWidget* each = target.parentWidget(); each != nullptr; each = each->parentWidget()) {
    if (qobject_cast<const EditorPage*>(each) != nullptr) return true;
  }
  return false;
}

}  // namespace

WindowKeys::WindowKeys(QMainWindow& window, Workbench& workbench, MainMenus& menus, DepartmentView& tree)
    : QObject(&window), window_(window), workbench_(workbench), menus_(menus), tree_(tree) {
  qApp->installEventFilter(this);
}

bool WindowKeys::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress) return false;
  auto* target = qobject_cast<QWidget*>(watched);
  if (target == nullptr || target->window() != &window_ || target != window_.focusWidget()) return false;
  auto& key = static_cast<QKeyEvent&>(*event);
  const QKeySequence keys(key.keyCombination());
  const Command* command = menus_.commandOf(keys);
  if (command == nullptr) return false;
  return event->type() == QEvent::ShortcutOverride ? share(*target, *command, key) : press(*target, *command, keys);
}

bool WindowKeys::isTreeBesideArticles(const QWidget& target) const {
  return &target == &tree_ && workbench_.tab() == Tab::Articles;
}

bool WindowKeys::share(QWidget& target, const Command& command, QKeyEvent& event) const {
  bool isTargets = false;
  if (isOfClipboard(QKeySequence(event.keyCombination()))) {
    isTargets = isTreeBesideArticles(target) || isOnPage(target) || lineOf(target) != nullptr;
  } else if (command.name == "undo" || command.name == "redo") {
    isTargets = hasTyping(target, command.name == "undo");
  }
  event.setAccepted(isTargets);
  return true;
}

const Command* WindowKeys::treeCommandOf(const QKeySequence& keys) const {
  const CommandTable& table = workbench_.commands().table();
  if (keys == QKeySequence(Qt::Key_Delete)) return table.named("department.delete");
  if (keys == QKeySequence(Qt::CTRL | Qt::Key_C)) return table.named("department.copy");
  // What was copied last is pasted: copied articles go into the department that the tree is on.
  const Command* department = table.named("department.paste");
  return workbench_.commands().isEnabled(*department) ? department : table.named("article.paste");
}

bool WindowKeys::press(QWidget& target, const Command& command, const QKeySequence& keys) {
  if (isOfClipboard(keys)) {
    if (!isTreeBesideArticles(target)) return false;
    workbench_.commands().choose(*treeCommandOf(keys));
    return true;
  }
  if (command.name == "undo" && hasTyping(target, true)) return false;
  if (command.name == "redo" && hasTyping(target, false)) {
    redoTyping(target);
    return true;
  }
  // The menu has not taken the key: the command is off.
  window_.statusBar()->showMessage(toQt(workbench_.commands().whyOff(command)));
  return true;
}

}  // namespace kv
