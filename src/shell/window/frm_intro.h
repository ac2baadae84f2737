#pragma once
// The first-run guide beside the main window. It isn't modal: show() it.

#include <QByteArray>
#include <QPointer>
#include <QWidget>
#include <vector>

#include "platform/qt/frm_dialog.h"
#include "shell/window/intro_guide.h"

class QPushButton;

namespace kv {

class frmIntro final : public FormDialog {
 public:
  /// All highlights go when the guide closes. While it is open `target` stays; a guide that is destroyed with its
  /// parent no longer asks anything of it.
  explicit frmIntro(IntroTarget& target, QWidget* parent = nullptr);

  /// Places main window and guide so that both fit on the screen, the main window made narrower where that is needed
  /// and it can be; it goes back to where it was when the guide closes. Called once both are shown.
  void placeBeside(QWidget& mainWindow);

 protected:
  void hideEvent(QHideEvent* event) override;

 private:
  QWidget* makeSteps();
  /// Lights what a step points at.
  void showStep(std::size_t step);
  /// Gives the number of a step the highlight colour, and takes it from the others.
  void colour(std::size_t lit);
  void narrowMain(QWidget& mainWindow, const QRect& room);
  /// Gives the main window back what narrowMain took.
  void widenMain();

  IntroTarget& target_;
  std::vector<QPushButton*> cmdStep_;
  bool lit_ = false;
  QPointer<QWidget> main_;  ///< while it is narrower than the user has it
  QByteArray mainBefore_;
  int mainNarrow_ = 0;
};

}  // namespace kv
