#pragma once
// The page of one tab: the editors of the table in their groups, in as many columns as there is room for.

#include <QScrollArea>
#include <map>
#include <vector>

#include "shell/window/frm_editors.h"

class QFormLayout;
class QTabBar;

namespace kv {

/// One tab's fields. A page is longer than the window where it has to be, and scrolls.
class EditorPage final : public QScrollArea {
  Q_OBJECT
 public:
  EditorPage(Tab tab, Workbench& workbench, const CommandActions& actions, QWidget* parent = nullptr);

  /// Shows the current row of a set again.
  void showFields(EditedSet set);
  /// Gives every field the state that its mask or setting has now.
  void refreshEnabled();
  /// The strips of price lists follow the workbench.
  void showListino(int listino);
  /// Hands what is being typed to the workbench.
  void commit();
  /// The editor of a column; null when this page has none.
  EditorBinding* binding(EditedSet set, std::string_view column) const;
  /// Brings the field of a column into view, with the focus in it and its whole text selected.
  void goTo(EditedSet set, std::string_view column);

 signals:
  /// The text of an editor is being typed.
  void typed(const kv::EditorBinding& binding, const QString& text);
  /// Enter was typed in an editor.
  void entered(const kv::EditorBinding& binding);

 private:
  using Group = std::vector<const Editor*>;
  QWidget* makeGroup(const Group& group);
  void addRow(QFormLayout& form, EditorBinding& binding);
  QWidget* makeTextStrip(const Group& group);
  QTabBar* makeListinoStrip(QWidget* parent);
  /// Makes the field of an editor and connects it.
  EditorBinding* bind(const Editor& editor, QWidget* parent);
  /// Shows the other of the two exchange rates while one is being typed.
  void followRate(const EditorBinding& from, const QString& text);

  Tab tab_;
  Workbench& workbench_;
  CommandActions actions_;
  std::vector<EditorBinding*> bindings_;
  std::vector<QTabBar*> listinoStrips_;
};

}  // namespace kv
