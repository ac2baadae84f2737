// The first-run guide in its window: buttons, colours, highlights, placement.
#include <gtest/gtest.h>

#include <QScreen>
#include <QScrollBar>

#include "dialog_fixture.h"
#include "shell/window/frm_intro.h"
#include "shell/window/intro_steps.h"

namespace kv {
namespace {

using test::click;
using test::control;

class LitTarget final : public IntroTarget {
 public:
  void AttivaTextBox(std::string_view field, std::string_view) override { lit.emplace_back(field); }
  void AttivaTasto(int command, std::string_view) override { lit.push_back(std::to_string(command)); }
  void DisattivaTextBox() override { lit.clear(); }
  bool onDepartment() const override { return true; }
  void selectFirstDepartment() override {}
  std::vector<std::string> lit;
};

QColor colourOf(const QWidget& dialog, const char* button) {
  return control<QPushButton>(dialog, button)->palette().color(QPalette::Button);
}

TEST(TheGuide, ShowsNineNumbersWithTheirTexts) {
  LitTarget target;
  frmIntro guide(target);
  guide.show();
  EXPECT_EQ(guide.windowTitle(), "Korvane - Per iniziare");
  EXPECT_FALSE(guide.isModal());
  std::string texts;
  for (const QLabel* label : guide.findChildren<QLabel*>()) texts += fromQt(label->text()) + "\n";
  for (const IntroStep& step : introSteps()) EXPECT_NE(texts.find(step.text), std::string::npos) << step.text;
  for (const std::string_view text : {introHeading, introOpening, introHint, introClosing, introAgain}) {
    EXPECT_NE(texts.find(text), std::string::npos) << text;
  }
  EXPECT_EQ(test::namelessControls(guide), "");
  EXPECT_TRUE(target.lit.empty());
  test::keepPicture(guide, "intro");
}

TEST(TheGuide, AClickLightsItsStepAndTakesTheLastOneAway) {
  LitTarget target;
  frmIntro guide(target);
  guide.show();
  click(guide, "cmdStep0");
  EXPECT_EQ(target.lit, (std::vector<std::string>{"14", "15", "20"}));
  click(guide, "cmdStep5");
  EXPECT_EQ(target.lit, (std::vector<std::string>{"bo_password", "bo_username"}));
  EXPECT_EQ(colourOf(guide, "cmdStep0"), QColor(Qt::white));
  EXPECT_NE(colourOf(guide, "cmdStep5"), QColor(Qt::white));
  EXPECT_TRUE(guide.isVisible());
}

TEST(TheGuide, ClosingTakesAllHighlightsAway) {
  LitTarget target;
  frmIntro guide(target);
  guide.show();
  click(guide, "cmdStep7");
  ASSERT_FALSE(target.lit.empty());
  QTest::keyClick(&guide, Qt::Key_Escape);
  EXPECT_FALSE(guide.isVisible());
  EXPECT_TRUE(target.lit.empty());
  guide.show();
  EXPECT_EQ(colourOf(guide, "cmdStep7"), QColor(Qt::white));
}

TEST(TheGuide, IsShownBesideTheMainWindow) {
  LitTarget target;
  frmIntro guide(target);
  guide.show();
  QWidget window;
  window.resize(200, 300);
  window.move(20, 40);
  window.show();
  guide.placeBeside(window);
  const int room = window.screen()->availableGeometry().width();
  if (window.frameGeometry().width() + guide.frameGeometry().width() < room) {
    EXPECT_GE(guide.frameGeometry().left(), window.frameGeometry().right());
  }
  window.resize(room, 300);
  guide.placeBeside(window);
  EXPECT_EQ(window.frameGeometry().left(), 0);
  EXPECT_EQ(guide.frameGeometry().left() + guide.frameGeometry().width(), room);
}

}  // namespace
}  // namespace kv
