#pragma once
// The dialog of the merchant's own tags: a list, and the fields of the tag selected in it.

#include <string_view>

#include "platform/qt/frm_dialog.h"
#include "tags/custom/tag_editor.h"

class QCheckBox;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;

namespace kv {

/// The tag is "OK" when the files have been written.
class frmTags final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmTags(Session& session, Environment& env, QWidget* parent = nullptr);

  /// Asks before changes are lost; the dialog stays when they are not to be.
  void reject() override;

 private:
  QWidget* makeList();
  QWidget* makeFields();
  int current() const;  // index of the selected tag; -1 when there is none
  void showTag();       // fills the fields
  void addTag();        // Nuovo; a message at the limit
  void removeTag();     // Elimina
  void nameTyped();     // updates the line of the list
  void save();          // writes the files and closes, or shows the failure

  Session& session_;
  Environment& env_;
  TagEditor editor_;  // what the fields show
  // Controls under their given names; Qt owns them.
  QListWidget* lstTag_ = nullptr;
  QLineEdit* txtNome_ = nullptr;
  QPlainTextEdit* txtContenuto_ = nullptr;
  QRadioButton* optNegozio_ = nullptr;
  QRadioButton* optTutti_ = nullptr;
  QCheckBox* chkAbilita_ = nullptr;
  QPushButton* cmdElimina_ = nullptr;
  bool showing_ = false;  ///< the fields are being filled: their signals are not the user's typing
};

}  // namespace kv
