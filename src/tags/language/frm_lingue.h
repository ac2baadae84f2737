#pragma once
// The languages of the shop.

#include <array>

#include "platform/qt/frm_dialog.h"
#include "tags/language/language_choice.h"

class QComboBox;
class QPushButton;

namespace kv {

/// The tag is "OK" when the languages have been stored.
class frmLingue final : public FormDialog {
 public:
  /// `session` and `with` outlive the dialog; `hooks` run on OK.
  frmLingue(Session& session, Environment& env, LanguageHooks hooks = {}, QWidget* parent = nullptr);

 private:
  QComboBox* makeBox(int language);
  void showBoxes();
  void numberChosen(int number);
  void codeChosen(int language);
  void store();

  Session& session_;
  Environment& env_;
  LanguageHooks hooks_;
  std::vector<std::string> modules_;
  LanguageChoice choice_;
  QComboBox* cboNumero_ = nullptr;
  std::array<QComboBox*, maxLanguages> cboLingua_{};
  QPushButton* ok_ = nullptr;
};

}  // namespace kv
