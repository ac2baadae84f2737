#pragma once
// Which keys belong to the menus and which to what has the focus: a shortcut that a menu shows does that thing in every
// field, while Canc, Ctrl+C, Ctrl+V and Ctrl+Z are the field's own as long as it has a use for them.

#include <QObject>

class QKeyEvent;
class QKeySequence;
class QMainWindow;
class QWidget;

namespace kv {

struct Command;
class DepartmentView;
class MainMenus;
class Workbench;

/// Watches the keys of one window before its controls see them.
/// In tree and list the keys of the clipboard act on the rows; in the tree always on departments, whatever the tab. In
/// a field Ctrl+Z and Ctrl+Y first go over what was typed there, then over the steps of the catalogue. A key whose
/// command is off does nothing, and the status line says why.
class WindowKeys final : public QObject {
  Q_OBJECT
 public:
  /// All outlive the object, which is a child of the window.
  WindowKeys(QMainWindow& window, Workbench& workbench, MainMenus& menus, DepartmentView& tree);

  /// True when the key ends here.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// Decides who gets a key: true, with the event accepted for the control and ignored for the menus.
  bool share(QWidget& target, const Command& command, QKeyEvent& event) const;
  /// Does what neither a menu nor the control does with a key.
  bool press(QWidget& target, const Command& command, const QKeySequence& keys);
  /// The command on departments that a key of the clipboard means in the tree of the tab Articoli; null for another.
  const Command* treeCommandOf(const QKeySequence& keys) const;
  /// Whether the focus is in the tree while the keys of the menus are those of the articles.
  bool isTreeBesideArticles(const QWidget& target) const;

  QMainWindow& window_;
  Workbench& workbench_;
  MainMenus& menus_;
  DepartmentView& tree_;
};

}  // namespace kv
