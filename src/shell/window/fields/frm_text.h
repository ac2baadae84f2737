#pragma once
// A long text in a window of its own, larger than its field on the page.

#include "platform/qt/frm_dialog.h"

class QPlainTextEdit;

namespace kv {

/// The tag is "OK" when the text was accepted; Ctrl+Enter accepts it too.
/// The characters "|", "[" and "]" are swallowed as in the field.
class frmTesto final : public FormDialog {
 public:
  /// `name`: of the field, without its colon. `text`: what it holds, lines ending with "\n".
  frmTesto(const QString& name, const QString& text, QWidget* parent = nullptr);

  /// The text that the window shows.
  QString text() const;

 private:
  QPlainTextEdit* txtTesto_;
};

}  // namespace kv
