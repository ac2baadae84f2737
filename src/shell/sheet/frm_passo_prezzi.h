#pragma once
// A step of the selected prices of the sheet, with its preview.

#include "platform/qt/frm_dialog.h"
#include "shell/sheet/price_step.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace kv {

class ChangePreview;

/// The tag is "OK" when prices are to be changed; the caller writes them.
class frmPassoPrezzi final : public FormDialog {
 public:
  /// `cells`: those selected; what is no price is passed over. `columns` and the session outlive the dialog.
  frmPassoPrezzi(Session& session, std::span<const SheetColumn> columns, std::vector<CellText> cells,
                 char decimalSeparator, HelpOpener help, QWidget* parent = nullptr);

  /// The changes that were ticked.
  const std::vector<CellChange>& chosen() const { return chosen_; }

 private:
  void previewAgain();
  void showCount();
  void accept() override;

  Session& session_;
  std::span<const SheetColumn> columns_;
  std::vector<CellText> cells_;
  char separator_;
  ChangePreview* preview_;
  QLineEdit* txtPasso_ = nullptr;
  QCheckBox* chkTondi_ = nullptr;
  QLabel* lblAnteprima_ = nullptr;
  QPushButton* cmdOK_ = nullptr;
  std::vector<CellChange> chosen_;
};

}  // namespace kv
