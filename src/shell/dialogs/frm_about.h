#pragma once
// Name and version of the program, as a box of the Help menu and as the picture shown at the start.

#include "platform/qt/frm_dialog.h"

namespace kv {

/// As a box it has a button; as the picture at the start it closes by itself.
/// The tag is always empty, and nothing is stored.
class frmAbout final : public FormDialog {
 public:
  /// The box of the Help menu, left by its button or Escape.
  explicit frmAbout(QWidget* parent = nullptr);

  /// Shows it over a window for a moment, without buttons; a click or a key sends it away. It deletes itself.
  static void showSplash(QWidget* over);

 protected:
  /// Both send the picture away; the box keeps its usual mouse and keys.
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  frmAbout(QWidget* parent, bool splash);
  bool splash_;  ///< as the picture shown at the start
};

}  // namespace kv
