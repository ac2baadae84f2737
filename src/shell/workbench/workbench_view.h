#pragma once
// What the workbench asks of the window that shows it. A test plays the window.

#include <string>
#include <string_view>
#include <vector>

#include "shell/workbench/fields/tab.h"
#include "store/catalogue/catalogue_sets.h"

namespace kv {

class WorkbenchView {
 public:
  virtual ~WorkbenchView() = default;

  /// Hands what is being typed to the workbench. Called before anything reads the row or moves off it. False when it
  /// could not be saved: it is still in its field then, and nothing may move off the row.
  virtual bool finishEdits() = 0;

  /// Shows a tab with its panels and its menu.
  virtual void showTab(Tab tab) = 0;
  /// The state of a command key, or of a mask over all editors of a panel.
  virtual void enableKey(std::string_view key, bool enabled) = 0;
  /// Entries of the menus may have changed: enabled, shown, marked or named otherwise.
  virtual void entriesChanged() = 0;

  /// The departments or their order have changed.
  virtual void rebuildTree() = 0;
  /// Selects the node of a department ("###": the root) and makes it visible.
  virtual void selectDepartment(const std::string& ID) = 0;
  /// The title of a department has changed.
  virtual void departmentTitle(const std::string& ID, const std::string& title) = 0;
  /// Expands every node, or collapses every one but the root.
  virtual void expandTree(bool expanded) = 0;

  /// The rows of the article list or their order have changed.
  virtual void articlesChanged() = 0;
  /// Selects the current article in the list; none when there is none.
  virtual void selectArticle() = 0;

  /// The articles that are selected in the list, in its order; empty when there is none, or one alone is current.
  virtual std::vector<std::int64_t> selectedArticles() const = 0;
  /// The departments that are selected in the tree, by ID in its order, without the root.
  virtual std::vector<std::string> selectedDepartments() const = 0;
  /// The keyboard goes to the tree, which shows where it is.
  virtual void focusTree() = 0;
  /// The keyboard goes to the first field of the row that has just been added, its text selected.
  virtual void startRow(EditedSet set) = 0;

  /// The editors of a set are to be read again.
  virtual void fieldsChanged(EditedSet set) = 0;
  /// The text of the status line.
  virtual void showStatus(const std::string& text) = 0;
  /// The title of the window.
  virtual void showTitle(const std::string& title) = 0;
  /// The wait cursor, or the usual one again. Calls are nested; the last `false` ends it.
  virtual void showBusy(bool busy) = 0;
  /// Number, names or choice of the languages have changed.
  virtual void showLanguages() = 0;
  /// Another price list is being edited.
  virtual void showListino(int listino) = 0;
  /// Hides the panels beside the lists, or shows them again.
  virtual void hideDetails(bool hidden) = 0;
  /// Ends the program.
  virtual void close() = 0;
};

}  // namespace kv
