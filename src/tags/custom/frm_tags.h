#pragma once
// The merchant's own tags.

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
  /// `session` and `with` outlive the dialog.
  frmTags(Session& session, Environment& env, QWidget* parent = nullptr);

 private:
  QWidget* makeList();
  QWidget* makeFields();
  int current() const;
  void showTag();
  void addTag();
  void removeTag();
  void nameTyped();
  void save();

  Session& session_;
  Environment& env_;
  TagEditor editor_;
  QListWidget* lstTag_ = nullptr;
  QLineEdit* txtNome_ = nullptr;
  QPlainTextEdit* txtContenuto_ = nullptr;
  QRadioButton* optNegozio_ = nullptr;
  QRadioButton* optTutti_ = nullptr;
  QCheckBox* chkAbilita_ = nullptr;
  QPushButton* cmdElimina_ = nullptr;
  bool showing_ = false;  ///< fields are being filled: nothing of it is the user's typing
};

}  // namespace kv
