#pragma once
// The window that lists what the law asks of the shop, with a way to the field where each duty is met.

#include <optional>

#include "commerce/settings/legal_duties.h"
#include "platform/qt/frm_dialog.h"

class QLabel;
class QPushButton;
class QTableWidget;

namespace kv {

/// The tag is "OK" when a duty was chosen to go to.
class frmRequisiti final : public FormDialog {
 public:
  frmRequisiti(std::vector<LegalDuty> duties, HelpOpener help, QWidget* parent = nullptr);

  /// Where the user wants to go; none when the window was just closed.
  const std::optional<DutyTarget>& chosen() const { return chosen_; }

 private:
  void fill();
  void showDuty();  // the sentence and the button of the selected duty
  void goThere();   // closes with the target of the selected duty

  std::vector<LegalDuty> duties_;
  std::optional<DutyTarget> chosen_;
  // Controls; Qt owns them.
  QTableWidget* grdRequisiti_ = nullptr;
  QLabel* lblTesto_ = nullptr;
  QPushButton* cmdVai_ = nullptr;
};

}  // namespace kv
