#pragma once
// The dialog of the mail that confirms an order.

#include <string>
#include <string_view>

#include "commerce/settings/mail_text.h"
#include "platform/qt/frm_dialog.h"

class QPlainTextEdit;

namespace kv {

/// It edits a copy. The tag is "OK" when it was accepted; text() is what to store then.
class frmEmail final : public FormDialog {
 public:
  /// `text`: of the field as it is, "\n" between its lines.
  frmEmail(std::string_view text, HelpOpener help, QWidget* parent = nullptr);

  /// The text of the field, "\n" between its lines.
  std::string text() const;

 private:
  void insertTag(std::string_view tag);

  QPlainTextEdit* txtTesto_ = nullptr;  // Qt owns it
};

}  // namespace kv
