#pragma once
// The dialog of the showcase's looks.

#include <array>

#include "commerce/settings/showcase_settings.h"
#include "platform/qt/frm_dialog.h"
#include "store/shop/session.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;

namespace kv {

/// The tag is "OK" when the settings have been stored.
class frmVetrina final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmVetrina(Session& session, Environment& env, HelpOpener help, QWidget* parent = nullptr);

 private:
  QWidget* makeAlignment();
  QWidget* makeFields();
  QWidget* makeSizes();
  QWidget* makeLinks();
  void show(const ShowcaseForm& form);  // fills the controls
  ShowcaseForm shown() const;           // reads them
  void store();                         // stores and closes, or tells the failure

  Session& session_;
  Environment& env_;
  // Controls; Qt owns them.
  QButtonGroup* optAllineamento_ = nullptr;
  std::array<QCheckBox*, showcaseFields.size()> chkCampo_{};
  QComboBox* cboFont_ = nullptr;
  QComboBox* cboColonne_ = nullptr;
  QButtonGroup* optLink_ = nullptr;
};

}  // namespace kv
