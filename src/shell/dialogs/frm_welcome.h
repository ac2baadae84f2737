#pragma once
// The welcome page: at the first start, and from the menu.

#include "platform/ports/user_port.h"
#include "platform/qt/frm_dialog.h"
#include "shell/dialogs/welcome.h"

class QLineEdit;
class QListWidget;
class QVBoxLayout;

namespace kv {

/// A field for the folder of a new shop with its two buttons, the shops that were open last, and the other ways on.
/// Escape and "Continua" leave the shop that is open.
class frmWelcome final : public FormDialog {
 public:
  /// `user` chooses a folder, and is told why one is refused; it outlives the dialog.
  frmWelcome(const WelcomeFacts& facts, UserPort& user, QWidget* parent = nullptr);

  /// What was chosen by the last exec(); Stay when the page was left.
  WelcomeChoice choice() const;

 private:
  void addNewShop(QVBoxLayout& column, const WelcomeFacts& facts);
  void addRecent(QVBoxLayout& column, const WelcomeFacts& facts);
  void addOthers(QVBoxLayout& column, const WelcomeFacts& facts);
  /// The page ends with this choice.
  void choose(WelcomeChoice choice);
  /// The same for a new shop, unless its folder is refused: then the field has the focus.
  void chooseNew(Welcome what);
  void chooseRecent();
  void browse();

  UserPort& user_;
  WelcomeChoice choice_;
  QLineEdit* txtCartella_ = nullptr;
  QListWidget* lstRecenti_ = nullptr;
};

}  // namespace kv
