#pragma once
// The page of one tab: the editors of the table in their groups, in as many columns as there is room for.

#include <QScrollArea>
#include <map>
#include <vector>

#include "shell/window/fields/frm_editors.h"

class QFormLayout;
class QTabBar;

namespace kv {

/// One tab's fields. A page is longer than the window where it has to be, and scrolls.
/// Made once from the rows of the editor table whose tab this is; a group of the table is one box. All pages exist from
/// the start and follow their rows, shown or not.
class EditorPage final : public QScrollArea {
  Q_OBJECT
 public:
  /// The workbench outlives the page. `actions` gives the actions of the commands whose buttons the page shows.
  EditorPage(Tab tab, Workbench& workbench, const CommandActions& actions, QWidget* parent = nullptr);

  /// Shows the current row of a set again.
  /// A field that is being typed into keeps its text. What can be edited is brought up to date too.
  void showFields(EditedSet set);
  /// Gives every field the state that its mask or setting has now.
  void refreshEnabled();
  /// The strips of price lists follow the workbench.
  /// From 0, the base list, to 9; the workbench isn't told again.
  void showListino(int listino);
  /// Hands what is being typed to the workbench.
  /// Each field that was typed into becomes one step of the history; the others do nothing. False when one of them
  /// could not be saved.
  bool commit();
  /// Whether a field holds something that was typed and not stored yet.
  bool hasUnsaved() const;
  /// The editor of a column; null when this page has none.
  /// Owned by the page.
  EditorBinding* binding(EditedSet set, std::string_view column) const;
  /// Brings the field of a column into view, with the focus in it and its whole text selected.
  /// Nothing for a column that this page doesn't have. The page must be the one shown.
  void goTo(EditedSet set, std::string_view column);

 signals:
  /// The text of an editor is being typed.
  /// The window shows it in tree and list before it is stored.
  void typed(const kv::EditorBinding& binding, const QString& text);
  /// Enter was typed in an editor.
  void entered(const kv::EditorBinding& binding);

 private:
  /// Rows of the table that follow one another with the same group.
  using Group = std::vector<const Editor*>;
  /// A box with a heading; with a strip of price lists above the fields when one has a column for each list.
  QWidget* makeGroup(const Group& group);
  /// Label and field in one line; an address has its field below the label.
  void addRow(QFormLayout& form, EditorBinding& binding);
  /// The long texts of the shop: one shown at a time, chosen by a strip of tabs.
  QWidget* makeTextStrip(const Group& group);
  /// A strip of ten price lists; choosing one selects it in the workbench.
  QTabBar* makeListinoStrip(QWidget* parent);
  /// Makes the field of an editor and connects it.
  EditorBinding* bind(const Editor& editor, QWidget* parent);
  /// Shows the other of the two exchange rates while one is being typed.
  /// Nothing is stored; the text of a field that is no rate does nothing.
  void followRate(const EditorBinding& from, const QString& text);

  Tab tab_;
  Workbench& workbench_;
  CommandActions actions_;
  std::vector<EditorBinding*> bindings_;  ///< in the order of the table
  std::vector<QTabBar*> listinoStrips_;   ///< all show the same list
};

}  // namespace kv
