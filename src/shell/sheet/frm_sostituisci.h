#pragma once
// Find and replace in the sheet: the words, where to look, and each hit with a box.

#include "platform/qt/frm_dialog.h"
#include "shell/sheet/text_replacement.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace kv {

class ChangePreview;

/// What the dialog works on.
struct ReplaceScope {
  std::vector<std::int64_t> articles;  ///< looked through, in their order
  std::vector<std::size_t> shown;      ///< columns ticked at first; those without text are passed over
  char decimalSeparator = ',';
};

/// The tag is "OK" when hits are to be replaced; the caller writes them.
class frmSostituisci final : public FormDialog {
 public:
  /// `columns` and the session outlive the dialog.
  frmSostituisci(Session& session, std::span<const SheetColumn> columns, ReplaceScope scope, HelpOpener help,
                 QWidget* parent = nullptr);

  /// The hits that were ticked.
  const std::vector<CellChange>& chosen() const { return chosen_; }

 private:
  QWidget* makeWords();
  QWidget* makeColumns();
  ReplaceRequest request() const;
  /// Shows the hits of what the fields say, or why there are none.
  void find();
  /// What was found belongs to other words.
  void forgetHits();
  void showCount();
  void accept() override;

  Session& session_;
  std::span<const SheetColumn> columns_;
  ReplaceScope scope_;
  ChangePreview* preview_;
  QLineEdit* txtTrova_ = nullptr;
  QLineEdit* txtSostituisci_ = nullptr;
  QCheckBox* chkMaiuscole_ = nullptr;
  QCheckBox* chkParole_ = nullptr;
  QCheckBox* chkEspressione_ = nullptr;
  QListWidget* lstColonne_ = nullptr;
  QLabel* lblTrovati_ = nullptr;
  QPushButton* cmdTrova_ = nullptr;
  QPushButton* cmdSostituisci_ = nullptr;
  std::vector<CellChange> chosen_;
};

}  // namespace kv
