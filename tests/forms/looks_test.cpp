// What the windows look like: the toolkit's own words, icons and palettes, buttons that stay in reach, empty lists.
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QToolBar>
#include <QToolButton>
#include <QTranslator>
#include <algorithm>
#include <cmath>

#include "forms/window_fixture.h"
#include "platform/qt/frm_dialog.h"
#include "shell/program/frm_program.h"
#include "shell/window/frm_intro.h"
#include "shell/window/look/frm_appearance.h"
#include "shell/window/look/frm_icons.h"

namespace kv::test {
namespace {

/// Relative luminance. Source: WCAG 2.1, definition of that name.
double luminance(const QColor& colour) {
  const auto part = [](double value) {
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

double contrast(const QColor& one, const QColor& other) {
  const double first = luminance(one);
  const double second = luminance(other);
  return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

/// The least contrast of the full strokes of an icon against a ground.
double faintest(const QIcon& icon, const QColor& ground) {
  const QImage drawn = icon.pixmap(QSize(96, 96), 1.0).toImage();
  double least = 21;
  for (int y = 0; y < drawn.height(); ++y) {
    for (int x = 0; x < drawn.width(); ++x) {
      const QColor colour = drawn.pixelColor(x, y);
      if (colour.alpha() == 255) least = std::min(least, contrast(colour, ground));
    }
  }
  return least;
}

/// The appearance of the other tests comes back at the end.
class Looks : public WindowFixture {
 protected:
  ~Looks() override { QApplication::setPalette(QPalette()); }
};

TEST_F(Looks, TheToolkitSpeaksItalian) {
  QTranslator* words = speakItalian();
  ASSERT_NE(words, nullptr) << "the package of Qt's translations is missing";
  const QDialogButtonBox buttons(QDialogButtonBox::Cancel | QDialogButtonBox::Close | QDialogButtonBox::Yes);
  EXPECT_EQ(buttons.button(QDialogButtonBox::Cancel)->text().remove('&'), "Annulla");
  EXPECT_EQ(buttons.button(QDialogButtonBox::Close)->text().remove('&'), "Chiudi");
  EXPECT_EQ(buttons.button(QDialogButtonBox::Yes)->text().remove('&'), "Sì");
  QFileDialog files;
  files.setOption(QFileDialog::DontUseNativeDialog);
  files.setFileMode(QFileDialog::ExistingFile);
  EXPECT_EQ(files.labelText(QFileDialog::Accept).remove('&'), "Apri");
  EXPECT_EQ(files.labelText(QFileDialog::Reject).remove('&'), "Annulla");
  QCoreApplication::removeTranslator(words);
  delete words;
}

TEST_F(Looks, EveryDrawingContrastsWithItsGroundInBothPalettes) {
  for (const Appearance appearance : {Appearance::Light, Appearance::Dark}) {
    applyAppearance(appearance, false);
    const QColor ground = QApplication::palette().color(QPalette::Window);
    for (const Command& command : allCommands()) {
      if (command.icon.empty()) continue;
      ASSERT_FALSE(drawnIcon(command.icon).isNull()) << command.icon;
      EXPECT_GE(faintest(drawnIcon(command.icon), ground), 3.0) << command.icon << (isDark(QApplication::palette()));
      EXPECT_GE(faintest(drawnIcon(command.icon, IconColours::Lit), litColour), 3.0) << command.icon;
    }
  }
}

TEST_F(Looks, AnIconFollowsTheChangeOfThePaletteAndTheDensityOfTheScreen) {
  applyAppearance(Appearance::Light, false);
  const QIcon icon = drawnIcon("cerca");
  const QImage onLight = icon.pixmap(QSize(24, 24), 1.0).toImage();
  applyAppearance(Appearance::Dark, false);
  EXPECT_NE(icon.pixmap(QSize(24, 24), 1.0).toImage(), onLight);
  EXPECT_EQ(icon.pixmap(QSize(24, 24), 2.0).size(), QSize(48, 48));
}

TEST_F(Looks, TheDesktopsPreferenceCountsWhereThePlatformsPaletteIsLight) {
  applyAppearance(Appearance::Desktop, false);
  EXPECT_FALSE(isDark(QApplication::palette()));
  applyAppearance(Appearance::Desktop, true);
  EXPECT_TRUE(isDark(QApplication::palette()));
  applyAppearance(Appearance::Light, true);
  EXPECT_FALSE(isDark(QApplication::palette())) << "the merchant's own choice counts more";
}

TEST_F(Looks, TextCanBeReadInBothPalettes) {
  for (const QPalette& palette : {lightPalette(), darkPalette()}) {
    EXPECT_GE(contrast(palette.color(QPalette::WindowText), palette.color(QPalette::Window)), 7.0);
    EXPECT_GE(contrast(palette.color(QPalette::Text), palette.color(QPalette::Base)), 7.0);
    EXPECT_GE(contrast(palette.color(QPalette::ButtonText), palette.color(QPalette::Button)), 4.5);
    EXPECT_GE(contrast(palette.color(QPalette::HighlightedText), palette.color(QPalette::Highlight)), 4.5);
    EXPECT_GE(contrast(palette.color(QPalette::PlaceholderText), palette.color(QPalette::Base)), 4.5);
    EXPECT_GE(contrast(palette.color(QPalette::Link), palette.color(QPalette::Window)), 4.5);
  }
}

TEST_F(Looks, TheChoiceOfTheMenuIsWornStoredAndMarked) {
  std::vector<Appearance> worn;
  window->workbench().ports().applyAppearance = [&worn](Appearance appearance) { worn.push_back(appearance); };
  open();
  EXPECT_TRUE(window->menus().action("look.desktop")->isChecked());
  window->menus().action("look.dark")->trigger();
  processEvents();
  EXPECT_EQ(worn, std::vector<Appearance>{Appearance::Dark});
  EXPECT_EQ(settings.get("Finestra", "Aspetto"), "scuro");
  EXPECT_TRUE(window->menus().action("look.dark")->isChecked());
  EXPECT_FALSE(window->menus().action("look.desktop")->isChecked());
  window->menus().action("look.desktop")->trigger();
  EXPECT_EQ(storedAppearance(settings), Appearance::Desktop);
}

TEST_F(Looks, EveryButtonOfATabIsInReachAtTheWidthOfASmallScreen) {
  open();
  window->resize(1280, 760);
  processEvents();
  for (const Tab tab : {Tab::Departments, Tab::Articles}) {
    window->workbench().selectTab(tab);
    processEvents();
    for (const QToolBar* bar : window->findChildren<QToolBar*>()) {
      if (!bar->isVisible()) continue;
      for (QAction* action : bar->actions()) {
        if (action->isSeparator()) continue;
        const QWidget* button = bar->widgetForAction(action);
        EXPECT_TRUE(button->isVisible() && bar->rect().contains(button->geometry())) << fromQt(action->iconText());
      }
    }
  }
}

TEST_F(Looks, AButtonIsCalledByTheWholeOfItsCaption) {
  open();
  const QToolBar* row = window->findChild<QToolBar*>(QStringLiteral("barraNegozio"));
  ASSERT_NE(row, nullptr);
  const auto* build = qobject_cast<QToolButton*>(row->widgetForAction(window->menus().action("build")));
  EXPECT_EQ(build->text(), "Costruisci\nil negozio");
  EXPECT_EQ(build->accessibleName(), "Costruisci il negozio");
}

TEST_F(Looks, TheLabelOfAFieldIsDimmedWithIt) {
  open();
  QLineEdit& second = line(EditedSet::Generale, "valuta2");
  const auto labels = window->page(Tab::Site).findChildren<QLabel*>();
  const auto label = std::ranges::find_if(labels, [&](const QLabel* one) { return one->buddy() == &second; });
  ASSERT_NE(label, labels.end());
  EXPECT_FALSE((*label)->isEnabled());
  field<QCheckBox>(EditedSet::Generale, "usa_cambio").click();
  processEvents();
  EXPECT_TRUE((*label)->isEnabled());
}

TEST_F(Looks, AnEmptyListSaysSomething) {
  open();
  window->workbench().selectTab(Tab::Articles);
  window->workbench().goToDepartment("###");
  processEvents();
  const QImage empty = window->articles().viewport()->grab().toImage();
  bool written = false;
  for (int y = 0; y < empty.height() && !written; ++y) {
    for (int x = 0; x < empty.width() && !written; ++x) written = empty.pixel(x, y) != empty.pixel(0, 0);
  }
  EXPECT_TRUE(written);
}

TEST_F(Looks, TheGuideMakesTheMainWindowGiveWayAndGivesItsWidthBack) {
  open();
  QWidget plain;
  plain.setMinimumSize(100, 100);
  const QRect room = plain.screen()->availableGeometry();
  plain.resize(room.width(), 400);
  plain.show();
  frmIntro guide(*window);
  guide.show();
  guide.placeBeside(plain);
  EXPECT_LT(plain.width(), room.width());
  EXPECT_LE(plain.frameGeometry().right(), guide.frameGeometry().left());
  guide.close();
  processEvents();
  EXPECT_EQ(plain.width(), room.width());
}

TEST_F(Looks, AMainWindowThatCannotGiveWayIsNotMadeSmallerThanItMayBe) {
  open();
  window->resize(window->screen()->availableGeometry().width(), 500);
  frmIntro guide(*window);
  guide.show();
  guide.placeBeside(*window);
  EXPECT_GE(window->width(), window->minimumWidth());
  EXPECT_EQ(window->frameGeometry().left(), window->screen()->availableGeometry().left());
}

TEST_F(Looks, ThePositionThatIsRememberedIsTheOneWithoutTheGuide) {
  open();
  const int width = window->screen()->availableGeometry().width();
  window->resize(width, 500);
  auto* guide = new frmIntro(*window, window.get());
  guide->setObjectName(QStringLiteral("frmIntro"));
  guide->show();
  guide->placeBeside(*window);
  window->close();
  frmMain again(session, env, portsWithCommands());
  again.restoreLayout();
  EXPECT_EQ(again.width(), width);
}

}  // namespace
}  // namespace kv::test
