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

/// The steps as numbered buttons, each with its text; the tag is always empty.
class frmIntro final : public FormDialog {
 public:
  /// All highlights go when the guide closes. While it is open `target` stays; a guide that is destroyed with its
  /// parent no longer asks anything of it.
  explicit frmIntro(IntroTarget& target, QWidget* parent = nullptr);

  /// Arranges main window and guide so that both fit on the screen, the main window made narrower where that is needed
  /// and it can be; it goes back to where it was when the guide closes. Called once both are shown.
  void placeBeside(QWidget& mainWindow);

 protected:
  /// Removes the highlights and gives the main window its width back; a minimised guide keeps both.
  void hideEvent(QHideEvent* event) override;

 private:
  /// The buttons from 1 and their texts, for the keyboard by Alt and the digit.
  QWidget* makeSteps();
  /// Lights what a step points at.
  void showStep(std::size_t step);
  /// Gives the number of a step the highlight colour, and takes it from the others.
  /// An index from 0; one beyond the last colours none.
  void colour(std::size_t lit);
  // `room`: the part of the screen that windows may use.
  void narrowSelf(const QWidget& mainWindow, const QRect& room);
  void narrowMain(QWidget& mainWindow, const QRect& room);
  /// Gives the main window back what narrowMain took.
  /// Nothing when the user has sized it meanwhile.
  void widenMain();

  IntroTarget& target_;
  std::vector<QPushButton*> cmdStep_;
  bool lit_ = false;        ///< a step is shown, and has to be undone
  QPointer<QWidget> main_;  ///< while it is narrower than the user has it
  QByteArray mainBefore_;   ///< its geometry of before
  int mainNarrow_ = 0;      ///< the width given to it, in pixels
};

}  // namespace kv
