#pragma once
// What the workbench asks of the window that shows it, and of the dialogs that hang from it. A test plays both.

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "shell/workbench/appearance.h"
#include "shell/workbench/fields/tab.h"
#include "shell/workbench/open_document.h"
#include "store/catalogue/catalogue_sets.h"

namespace kv {

class WorkbenchView {
 public:
  virtual ~WorkbenchView() = default;

  /// Hands what is being typed to the workbench. Called before anything reads the row or moves off it.
  virtual void finishEdits() = 0;

  /// Brings a tab forward, with its panels and its menu.
  virtual void showTab(Tab tab) = 0;
  /// The state of a command key, or of a mask over all editors of a panel.
  virtual void enableKey(std::string_view key, bool enabled) = 0;
  /// Entries of the menus are others: enabled, shown, checked or named otherwise.
  virtual void entriesChanged() = 0;

  virtual void rebuildTree() = 0;
  /// Selects the node of a department ("###": the root) and makes it visible.
  virtual void selectDepartment(const std::string& ID) = 0;
  virtual void departmentTitle(const std::string& ID, const std::string& title) = 0;
  /// Expands every node, or collapses every one but the root.
  virtual void expandTree(bool expanded) = 0;

  virtual void articlesChanged() = 0;
  /// Selects the current article in the list; none when there is none.
  virtual void selectArticle() = 0;

  /// The editors of a set are to be read anew.
  virtual void fieldsChanged(EditedSet set) = 0;
  virtual void showStatus(const std::string& text) = 0;
  virtual void showTitle(const std::string& title) = 0;
  virtual void showBusy(bool busy) = 0;
  /// Number, names or choice of the languages are others.
  virtual void showLanguages() = 0;
  /// Another price list is being edited.
  virtual void showListino(int listino) = 0;
  /// Hides the panels beside the lists, or shows them again.
  virtual void hideDetails(bool hidden) = 0;
  /// Ends the program.
  virtual void close() = 0;
};

/// Dialogs by their names ("frmElabora"). Each is given one text and answers with one: "OK", the text its part tells,
/// or empty when it was left. A dialog that isn't set has its entry disabled.
using WorkbenchDialogs = std::map<std::string, std::function<std::string(const std::string&)>, std::less<>>;

/// What the workbench reaches outside: the desktop, the dialogs, and the letter that parts decimals in the fields.
struct WorkbenchPorts {
  WorkbenchDialogs dialogs;
  DocumentOpener open;
  std::function<void(Appearance)> wear;  ///< makes the windows light or dark
  char decimalSeparator = ',';
};

}  // namespace kv
