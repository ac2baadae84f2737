#pragma once
// The dialog of the shop's languages: their number, and a module for each.

#include <array>

#include "platform/qt/frm_dialog.h"
#include "tags/language/language_choice.h"

class QComboBox;
class QPushButton;

namespace kv {

/// The tag is "OK" when the languages have been stored.
class frmLingue final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog; `hooks` run on OK.
  frmLingue(Session& session, Environment& env, LanguageHooks hooks = {}, QWidget* parent = nullptr);

 private:
  QComboBox* makeBox(int language);  // languages are counted from 1
  void showBoxes();                  // copies choice_ into the boxes
  void numberChosen(int number);     // enables the boxes that come into use
  void codeChosen(int language);
  void store();  // stores and closes, or shows the failure

  Session& session_;
  Environment& env_;
  LanguageHooks hooks_;
  std::vector<std::string> modules_;  // installed ones, bare names
  LanguageChoice choice_;             // what the boxes show
  // Controls under their given names; Qt owns them.
  QComboBox* cboNumero_ = nullptr;
  std::array<QComboBox*, maxLanguages> cboLingua_{};
  QPushButton* ok_ = nullptr;
};

}  // namespace kv
