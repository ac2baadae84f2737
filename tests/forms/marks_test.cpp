// Marks that must be told from their ground in both palettes, and windows that stay within the screen.

#include <QRadioButton>
#include <QScreen>

#include "forms/window_fixture.h"
#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_screen.h"
#include "shell/window/frm_intro.h"
#include "shell/window/look/frm_appearance.h"

namespace kv::test {
namespace {

constexpr double leastContrast = 3.0;

class Marks : public WindowFixture {
 protected:
  ~Marks() override { QApplication::setPalette(QPalette()); }
  static std::vector<QColor> grounds() {
    const QPalette palette = QApplication::palette();
    return {palette.color(QPalette::Window), palette.color(QPalette::Base), palette.color(QPalette::Button)};
  }
  /// The best contrast of any pixel of a drawn control with a ground.
  static double clearest(QWidget& drawn, const QRect& part, const QColor& ground) {
    const QImage image = drawn.grab().toImage();
    double most = 1;
    for (int y = part.top(); y <= part.bottom(); ++y) {
      for (int x = part.left(); x <= part.right(); ++x) {
        if (image.rect().contains(x, y)) most = std::max(most, contrastOf(image.pixelColor(x, y), ground));
      }
    }
    return most;
  }
};

TEST_F(Marks, TheColoursOfMarksAndEdgesAreToldFromEveryGround) {
  for (const Appearance appearance : {Appearance::Light, Appearance::Dark}) {
    applyAppearance(appearance, false);
    for (const QColor& ground : grounds()) {
      EXPECT_GE(contrastOf(markColour(QApplication::palette()), ground), leastContrast);
      EXPECT_GE(contrastOf(edgeColour(QApplication::palette()), ground), leastContrast);
    }
  }
}

TEST_F(Marks, EmptyBoxesAndCirclesAreSeenInBothPalettes) {
  for (const Appearance appearance : {Appearance::Light, Appearance::Dark}) {
    applyAppearance(appearance, false);
    QCheckBox box;
    QRadioButton circle;
    for (QAbstractButton* each : {static_cast<QAbstractButton*>(&box), static_cast<QAbstractButton*>(&circle)}) {
      each->resize(each->sizeHint());
      const QColor ground = QApplication::palette().color(QPalette::Window);
      EXPECT_GE(clearest(*each, each->rect(), ground), leastContrast) << each->metaObject()->className();
      EXPECT_GE(clearest(*each, each->rect(), QApplication::palette().color(QPalette::Base)), leastContrast);
    }
  }
}

TEST_F(Marks, TheListInUseAndTheFieldWithTheKeyboardAreSeenInBothPalettes) {
  open();
  for (const Appearance appearance : {Appearance::Light, Appearance::Dark}) {
    applyAppearance(appearance, false);
    processEvents();
    const QColor mark = markColour(QApplication::palette());
    const auto has = [&](QWidget& drawn, const QRect& part) {
      const QImage image = drawn.grab().toImage();
      int found = 0;
      for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
          found += image.rect().contains(x, y) && image.pixelColor(x, y).rgb() == mark.rgb() ? 1 : 0;
        }
      }
      return found;
    };
    auto* strip = window->page(Tab::Departments).findChild<QTabBar*>(QStringLiteral("tabListino"));
    EXPECT_GT(has(*strip, strip->tabRect(0)), 10);
    EXPECT_EQ(has(*strip, strip->tabRect(1)), 0);
    QLineEdit& title = line(EditedSet::Categorie, "titolo");
    window->tree().setFocus();
    EXPECT_EQ(has(title, title.rect()), 0);
    title.setFocus();
    processEvents();
    EXPECT_GT(has(title, title.rect()), 20);
    window->tree().setFocus();
    processEvents();
    EXPECT_GT(has(window->tree(), window->tree().rect()), 20);
  }
}

TEST_F(Marks, TheFirstWindowFitsTheScreen) {
  open();
  const QRect room = window->screen()->availableGeometry();
  EXPECT_TRUE(room.contains(window->frameGeometry()))
      << window->frameGeometry().width() << " x " << window->frameGeometry().height();
}

TEST_F(Marks, ADialogThatIsTooLargeComesWithinTheScreen) {
  FormDialog dialog("Korvane", nullptr);
  const QRect room = dialog.screen()->availableGeometry();
  dialog.resize(room.width() + 300, room.height() + 300);
  dialog.show();
  processEvents();
  EXPECT_TRUE(room.contains(dialog.frameGeometry()));
}

/// As high as its lines of text ask for.
class TallDialog final : public FormDialog {
 public:
  TallDialog() : FormDialog("Korvane", nullptr) { sizeInCharacters(40, 200); }
};

TEST_F(Marks, ADialogOfManyLinesLeavesRoomForItsTitle) {
  const TallDialog dialog;
  const int line = dialog.fontMetrics().lineSpacing();
  EXPECT_LE(dialog.height() + 2 * line, dialog.screen()->availableGeometry().height());
  EXPECT_GT(dialog.height(), 20 * line);
}

TEST_F(Marks, TheGuideIsBesideTheWindowAndBothAreWithinTheScreen) {
  open();
  frmIntro guide(*window, window.get());
  guide.show();
  processEvents();
  guide.placeBeside(*window);
  processEvents();
  const QRect room = window->screen()->availableGeometry();
  EXPECT_TRUE(room.contains(guide.frameGeometry()));
  EXPECT_GE(guide.frameGeometry().right(), room.right() - 1);
  guide.placeBeside(*window);
  EXPECT_TRUE(room.contains(guide.frameGeometry())) << "placed twice";
}

}  // namespace
}  // namespace kv::test
