#pragma once
// The workbench of the merchant, without a window: the open shop's live lists, its commands by number and by menu
// entry, their states, the fields, undo and redo, build and publishing. The window shows it through WorkbenchView and
// hands it what the user does.

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "shell/workbench/appearance.h"
#include "shell/workbench/command_table.h"
#include "shell/workbench/fields/field_store.h"
#include "shell/workbench/menu_table.h"
#include "shell/workbench/workbench_view.h"
#include "store/catalogue/tree_editing.h"
#include "store/catalogue/undo_history.h"

namespace kv {

/// How an entry of the menus stands.
struct EntryState {
  bool visible = true;
  bool enabled = true;
  bool checkable = false;
  bool checked = false;
  std::string text;  ///< as shown, "&" before the letter of its key
};

class Workbench final : private SetsListener {
 public:
  /// All outlive the workbench.
  Workbench(Session& session, Environment& env, WorkbenchView& view, WorkbenchPorts ports);
  ~Workbench() override;
  Workbench(const Workbench&) = delete;
  Workbench& operator=(const Workbench&) = delete;

  /// For the hooks `bind` and `release` of the session: takes hold of the catalogue that has been opened, and lets go.
  void bindSession();
  void releaseSession();
  /// The end of a shop's start: language 1, the first tab, all states.
  void showShop();
  bool isOpen() const { return sets_.isBound(); }

  /// EseguiComando (run a command): what the table tells of this number; nothing for a number that isn't in it.
  void EseguiComando(int number);
  /// StatoComando (state of a command): sets what a key, its button and its menu entries are. Keys of the masks too.
  void StatoComando(std::string_view key, bool enabled);
  bool isEnabled(std::string_view key) const;
  bool isCommandEnabled(int number) const;

  /// Runs a menu entry, command or not.
  void runEntry(const MenuEntry& entry);
  EntryState stateOf(const MenuEntry& entry) const;

  /// AggiornaSchede (refresh the tabs): shows panels and menus of the tab in use.
  void AggiornaSchede();
  void selectTab(Tab tab);
  Tab tab() const { return tab_; }

  /// CambiaLingua (change the language): the language being edited, 1 to 4.
  void CambiaLingua(int language);
  /// MostraLingue (show the languages): the language menu and drop-down follow the session.
  void MostraLingue();
  /// The price list being edited, 0 to 9.
  void selectListino(int listino);

  // The cursors. What is being typed is saved first.
  void goToDepartment(const std::string& ID);
  void goToArticlePlace(std::size_t place);
  /// Shows an article found by a search, with its department, on the articles' tab.
  void MostraArticolo(std::int64_t ID);
  /// A drop of a department on another, or on the root.
  void SpostaNodo(const std::string& key, const std::string& nuovoParent);
  bool canMoveNode(const std::string& key, const std::string& nuovoParent) const;

  // The fields.
  std::string shown(const Editor& editor) { return fields_.shown(editor); }
  /// Saves a field that is left with this text, and shows what has become of it.
  void leaveField(const Editor& editor, const std::string& text);
  bool isEditorEnabled(const Editor& editor);
  std::vector<std::string> choicesOf(const Editor& editor);
  int widest(const Editor& editor) { return fields_.widest(editor); }
  char decimalSeparator() const { return fields_.separator(); }
  /// Full path of the picture that an editor shows; empty when there is none.
  std::string picturePath(const Editor& editor);

  /// The commands and entries of undo; empty names when there is nothing.
  void undo();
  void redo();
  std::string undoName() const { return history_.undoName(); }
  std::string redoName() const { return history_.redoName(); }

  /// Help on the tab in use (key F1), and a page of the application's help.
  void showHelp();
  void openHelp(std::string_view page);
  /// Opens a file or an address; the user is told when it can't be.
  void openDocument(const std::string& file, const std::string& folder = {});
  /// Leaves the program: the catalogue may be compacted at the end.
  void exitProgram();

  CatalogueSets& sets() { return sets_; }
  const CatalogueSets& sets() const { return sets_; }
  Session& session() { return session_; }
  Environment& env() { return env_; }
  WorkbenchPorts& ports() { return ports_; }

 private:
  // SetsListener
  void departmentMoved() override;
  void articleMoved() override;
  void articlesChanged() override;
  void treeRebuilt() override;
  void titleChanged(const std::string& department, const std::string& title) override;
  void statusChanged() override;

  bool hasDialog(std::string_view name) const;
  std::string runDialog(std::string_view name, const std::string& argument);
  /// Runs a dialog that edits the catalogue as one step of the history, and reads everything anew when it was not left.
  void editThrough(std::string_view name, const std::string& step, const std::string& argument = {});
  void tell(const Result<>& outcome);
  void refreshStates();
  void refreshPictureKeys();
  void refreshArticleKeys();
  void refreshDepartmentKeys();
  void refreshTabKeys();
  void refreshAll();

  void runCommand(const Command& command);
  Result<> edit(const Command& command);
  void chooseImage(const Command& command);
  void clearImage(const Command& command);
  void defineVariant(int slot);
  void search();

  void buildShop();
  bool hasModels() const;
  bool settleTemplate();
  void publish();
  bool wantsToPublish();
  void openBackOffice();
  void cleanFolders();
  void purgeImages();

  void runAction(MenuAction action, int argument);
  bool runShopAction(MenuAction action);
  bool runHelpAction(MenuAction action);
  void changeShop(bool fresh);
  void chooseLanguages();
  void chooseAppearance(Appearance appearance);
  bool isOffered(MenuAction action) const;
  bool isShown(MenuAction action, int argument) const;

  Session& session_;
  Environment& env_;
  WorkbenchView& view_;
  WorkbenchPorts ports_;
  CatalogueSets sets_;
  UndoHistory history_;
  TreeEditing editing_;
  FieldStore fields_;
  std::map<std::string, bool, std::less<>> states_;
  Tab tab_ = Tab::Departments;
  bool detailsHidden_ = false;
};

}  // namespace kv
