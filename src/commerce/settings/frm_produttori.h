#pragma once
// The dialog of the makers: a list, and the fields of the maker selected in it.

#include <array>

#include "commerce/settings/makers.h"
#include "platform/qt/frm_dialog.h"
#include "store/shop/session.h"

class QLineEdit;
class QListWidget;
class QPushButton;

namespace kv {

/// The tag is "OK" when the makers have been stored.
class frmProduttori final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog; `editor` is what was loaded of the session's catalogue.
  frmProduttori(Session& session, Environment& env, MakerEditor editor, HelpOpener help, QWidget* parent = nullptr);

  /// Asks before changes are lost; the dialog stays when they are not to be.
  void reject() override;

 private:
  QWidget* makeList();
  QWidget* makeFields();
  int current() const;  // index of the selected maker; -1 when there is none
  void showMaker();     // fills the fields
  void addMaker();      // Nuovo
  void removeMaker();   // Elimina
  void typed(std::size_t field);
  void save();  // stores and closes, or tells why not

  Session& session_;
  Environment& env_;
  MakerEditor editor_;  // what the fields show
  // Controls under their given names; Qt owns them.
  QListWidget* lstProduttori_ = nullptr;
  QPushButton* cmdElimina_ = nullptr;
  std::array<QLineEdit*, makerFields.size()> txtCampo_{};
};

}  // namespace kv
