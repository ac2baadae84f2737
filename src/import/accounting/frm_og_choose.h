#pragma once
// The choice among the installed variants of the accounting package, and of where the data of one are.

#include "import/accounting/accounting_choice.h"
#include "platform/ports/user_port.h"
#include "platform/qt/frm_dialog.h"

class QComboBox;
class QLineEdit;
class QListWidget;

namespace kv {

/// The tag is the number of the variant, "0" to "5"; paths are stored by OK alone.
class frmOGChoose final : public FormDialog {
 public:
  /// `settings` and `user` outlive the dialog.
  frmOGChoose(Settings& settings, UserPort& user, QWidget* parent = nullptr);
  /// Hides the window while its fields still have something to be left for.
  ~frmOGChoose() override { hide(); }

 private:
  QWidget* makePath();
  /// Shows the installed variants, the chosen one selected.
  void showList();
  /// Shows the path of the variant that the box names.
  void showPath();
  /// Gives the variant in the box the path in the field.
  void pathTyped();
  /// Gives the variant in the box a path that was chosen; nothing for an empty one.
  void takePath(const std::string& path);
  /// Asks for a file, or for a folder.
  void browseFile();
  void browseFolder();
  /// Stores the paths and returns the number.
  void accepted();

  Settings& settings_;
  UserPort& user_;
  AccountingChoice choice_;
  bool showing_ = false;  // the code itself selects
  QListWidget* lstVarianti_ = nullptr;
  QComboBox* cboVariante_ = nullptr;
  QLineEdit* txtPercorso_ = nullptr;
};

}  // namespace kv
