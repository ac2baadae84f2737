#pragma once
// The dialog of the bulk change of prices, with a preview of every price that would change.

#include <string>

#include "commerce/prices/frm_percentage.h"
#include "commerce/prices/frm_price_preview.h"
#include "platform/qt/frm_dialog.h"
#include "store/shop/session.h"

class QLabel;
class QRadioButton;
class QTableView;

namespace kv {

/// What the dialog is opened on.
struct PriceDialogFacts {
  std::string department;       ///< ID of the current one; "###" when there is none
  std::string departmentTitle;  ///< shown beside the choice
  char decimalSeparator = ',';  ///< of the user's locale
};

/// The tag is "OK" when prices have been changed, and empty when it was left.
class frmVariaPrezzi final : public FormDialog {
 public:
  /// `session` and `env` outlive the dialog.
  frmVariaPrezzi(Session& session, Environment& env, PriceDialogFacts facts, HelpOpener help,
                 QWidget* parent = nullptr);

 private:
  QWidget* makeExtent();
  QWidget* makeChoices();
  QWidget* makePreview();
  PriceChange change() const;  // what the controls say
  void surveyAgain();          // reads the prices that are chosen now
  void previewAgain();         // shows what the percentage makes of them
  void run();                  // the OK command

  Session& session_;
  Environment& env_;
  PriceDialogFacts facts_;
  PricePreviewModel* model_;
  PriceListBoxes lists_;
  // Controls under their given names; Qt owns them.
  QRadioButton* optEstensione0_ = nullptr;
  QRadioButton* optEstensione1_ = nullptr;
  QCheckBox* chkOfferte_ = nullptr;
  QCheckBox* chkVarianti_ = nullptr;
  QCheckBox* chkTondi_ = nullptr;
  PercentageBox* cboVariazione_ = nullptr;
  QTableView* lstAnteprima_ = nullptr;
  QLabel* lblAnteprima_ = nullptr;
};

}  // namespace kv
