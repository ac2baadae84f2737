#pragma once
// The options of an export, in their window.

#include "platform/qt/frm_dialog.h"
#include "store/exchange/export_options.h"

class QBoxLayout;
class QCheckBox;
class QPlainTextEdit;
class QRadioButton;

namespace kv {

/// The tag is "OK" and the characters of what was chosen (exportTag); empty when the dialog was left.
/// Nothing is written here.
class frmEsporta final : public FormDialog {
 public:
  /// offer: what the shop has to export besides its database; what it hasn't has no control.
  explicit frmEsporta(const ExportOffer& offer, QWidget* parent = nullptr);

 private:
  /// The box of the scripts, the read-only list of them and the note; only when they are on offer.
  void addScripts(QBoxLayout& column, const ExportOffer& offer);
  /// The two buttons of the tags, the first one chosen; only when they are on offer.
  void addTags(QBoxLayout& column);
  /// Closes with what is chosen.
  void accepted();

  // Controls, owned by the window; null when they are not on offer.
  QCheckBox* chkTemplate_ = nullptr;
  QCheckBox* chkLingue_ = nullptr;
  QCheckBox* chkScript_ = nullptr;
  QCheckBox* chkReset_ = nullptr;
  QCheckBox* chkSenzaPassword_ = nullptr;
  QCheckBox* chkZip_ = nullptr;
  QPlainTextEdit* txtScript_ = nullptr;
  QRadioButton* optTuttiTag_ = nullptr;
};

}  // namespace kv
