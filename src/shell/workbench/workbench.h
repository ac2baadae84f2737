#pragma once
// The workbench of the merchant, without a window: the open shop's live lists and cursors, language, price list and
// tab. Its commands, its fields and its history are objects of their own. The window shows it through WorkbenchView and
// hands it what the user does.

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "shell/workbench/workbench_commands.h"
#include "store/catalogue/step_log.h"

namespace kv {

class Workbench final : private SetsListener {
 public:
  /// All outlive the workbench. The rows of the commands are taken out of `ports`.
  Workbench(Session& session, Environment& env, WorkbenchView& view, WorkbenchPorts ports);
  ~Workbench() override;
  Workbench(const Workbench&) = delete;
  Workbench& operator=(const Workbench&) = delete;

  /// For the hook `bind` of the session: takes hold of the catalogue that has been opened.
  void bindSession();
  /// For the hook `release` of the session: lets go of the catalogue, which may then be closed.
  void releaseSession();
  /// The end of a shop's start: language 1, the first tab, the first department, all states.
  void showShop();
  /// Whether the lists are bound to a catalogue.
  bool isOpen() const { return sets_.isBound(); }

  /// AggiornaSchede (refresh the tabs): shows panels and menus of the tab in use.
  void AggiornaSchede();
  /// Goes to a tab. What is being typed is saved first.
  void selectTab(Tab tab);
  /// The tab in use.
  Tab tab() const { return tab_; }
  /// Hides the panels beside the lists, or shows them again.
  void hideDetails(bool hidden);
  /// Whether the panels beside the lists are hidden.
  bool areDetailsHidden() const { return detailsHidden_; }

  /// CambiaLingua (change the language): the language being edited, 1 to 4. The cursors stay where they are.
  void CambiaLingua(int language);
  /// MostraLingue (show the languages): the language menu and drop-down follow the session.
  void MostraLingue();
  /// Goes to a price list, 0 to 9.
  void selectListino(int listino);
  /// The price list being edited.
  int listino() const { return fields_.listino(); }

  // The cursors. What is being typed is saved first.

  /// Goes to a department by its ID; "###" is the root, on which none is current.
  void goToDepartment(const std::string& ID);
  /// Goes to the article at an index of the list, from 0.
  void goToArticleAt(std::size_t index);
  /// Goes to an article of the current department by its ID; nothing for another.
  void goToArticle(std::int64_t ID);
  /// MostraArticolo (show an article): goes to an article found by a search, to its department and the articles' tab.
  void MostraArticolo(std::int64_t ID);
  /// SpostaNodo (move a node): a drop of a department on another, or on the root. Nothing where canMoveNode refuses.
  void SpostaNodo(const std::string& key, const std::string& nuovoParent);
  /// SpostaNodi: a drop of several departments. Nothing where canMoveNode refuses one of them.
  void SpostaNodi(const DepartmentGroup& group, const std::string& nuovoParent);
  /// Whether the drop is allowed: not of the root, nor onto itself or one of its own descendants.
  bool canMoveNode(const std::string& key, const std::string& nuovoParent) const;
  /// SpostaInReparto (move into a department): a drop of articles of the list on a department. Nothing where
  /// canMoveArticles refuses.
  void SpostaInReparto(const ArticleGroup& group, const std::string& department);
  /// Whether the drop is allowed: not on the root, and not on the department that they are in.
  bool canMoveArticles(const std::string& department) const;

  // The fields.

  /// What the field shows of the current row.
  std::string shown(const Editor& editor) { return fields_.shown(editor); }
  /// What became of a field that was left.
  struct LeftField {
    bool saved = true;  ///< false: the row could not be written, and the field keeps what was typed
    std::string mark;   ///< what to say beside the field; empty: nothing
  };
  /// Saves a field that is left with this text, and shows what has become of it. A failure is told once for a text, and
  /// shown by the mark whenever the same text fails again.
  LeftField leaveField(const Editor& editor, const std::string& text);
  /// What was typed into a field and could not be saved is given up.
  void giveUpField(const Editor& editor) { unsaved_.erase(&editor); }
  /// Whether the window may go: everything typed is saved, or the user lets it be lost. Asks with No as the default.
  bool mayLeave();
  /// Whether the field can be typed into now.
  bool isEditorEnabled(const Editor& editor);
  /// What the drop-down of a field offers.
  std::vector<std::string> choicesOf(const Editor& editor);
  /// The most characters that the field takes; 0: any number.
  int widest(const Editor& editor) { return fields_.widest(editor); }
  /// The decimal separator of numbers in the fields.
  char decimalSeparator() const { return fields_.separator(); }
  /// What is shown after a price while it is typed or shown: the price with the department's VAT.
  /// Empty without a price or without VAT, and for every other field.
  std::string besideField(const Editor& editor, const std::string& text);
  /// The text of the first language, for an empty field of another one; empty where there is none.
  std::string firstLanguageText(const Editor& editor) { return fields_.firstLanguageText(editor); }
  /// When the shop was built and how many changes this session has made since, and that the history can't be
  /// written; for the status line.
  std::string buildStatus();
  /// Full path of the picture that an editor shows; empty when there is none.
  std::string picturePath(const Editor& editor);

  // For the commands.

  /// Shows an error to the user; nothing for a success.
  void showError(const Result<>& outcome);
  /// Shows all states and fields, after a change of the catalogue as a whole.
  void refreshAll();
  /// Runs a dialog that edits the catalogue as one step of the history, and reads all rows again unless it was left.
  void editThrough(std::string_view step, const WorkbenchDialogs::Dialog& dialog);
  /// Opens a file or an address, with a working folder that may be empty; the user is told when it can't be.
  void openDocument(const std::string& file, const std::string& folder = {});
  /// Opens a page of the application's help.
  void openHelp(std::string_view page);

  // Its parts.

  WorkbenchCommands& commands() { return commands_; }
  const WorkbenchCommands& commands() const { return commands_; }
  const UndoHistory& history() const { return history_; }
  UndoHistory& history() { return history_; }
  /// The steps of this session and earlier ones; null while no shop is open.
  StepLog* stepLog() { return stepLog_.get(); }
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

  void refreshStates();
  void refreshTabKeys();
  LeftField refuseField(const Editor& editor, const std::string& text, const Error& error);

  Session& session_;
  Environment& env_;
  WorkbenchView& view_;
  WorkbenchPorts ports_;
  CatalogueSets sets_;
  UndoHistory history_;
  std::unique_ptr<StepLog> stepLog_;  ///< of the open shop
  TreeEditing editing_;
  FieldStore fields_;
  WorkbenchCommands commands_;
  std::int64_t builtAt_ = 0;         ///< time of the build that was seen last, in nanoseconds; 0: none
  std::uint64_t changesBefore_ = 0;  ///< of the history, when it was seen
  Tab tab_ = Tab::Departments;
  bool detailsHidden_ = false;
  std::map<const Editor*, std::string> unsaved_;  ///< what was typed and could not be saved
};

}  // namespace kv
