// Every text of the main window has room, with whatever font the desktop wears: tests/CMakeLists.txt runs these tests
// under three families.
#include <QAbstractButton>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>

#include "forms/window_fixture.h"

namespace kv::test {
namespace {

class Layout : public WindowFixture {
 protected:
  void openOnASmallScreen() {
    open();
    window->resize(1280, 760);
    processEvents();
    ASSERT_EQ(window->width(), 1280) << "the window can't be made as narrow";
  }
  void show(Tab tab) {
    window->workbench().selectTab(tab);
    processEvents();
  }
};

/// The width that a text needs in its label, box or button. A button may be given less room beside it than the style
/// would give.
int neededWidth(const QWidget& widget, const QString& text) {
  constexpr int edges = 8;
  const bool isPlain = qobject_cast<const QPushButton*>(&widget) != nullptr;
  return isPlain ? widget.fontMetrics().size(Qt::TextShowMnemonic, text).width() + edges
                 : widget.minimumSizeHint().width();
}

/// The texts that a page shows only in part, a line each.
std::string cutTexts(const QWidget& page) {
  std::string cut;
  const auto look = [&](const QWidget& widget, const QString& text) {
    if (!widget.isVisible() || text.isEmpty() || widget.width() >= neededWidth(widget, text)) return;
    cut += text.toStdString() + "\n";
  };
  for (const QLabel* label : page.findChildren<QLabel*>()) {
    if (!label->wordWrap() && label->pixmap().isNull()) look(*label, label->text());
  }
  for (const QAbstractButton* button : page.findChildren<QAbstractButton*>()) look(*button, button->text());
  return cut;
}

TEST_F(Layout, NoTextOfATabIsCutAtTheWidthOfASmallScreen) {
  openOnASmallScreen();
  for (const Tab tab : {Tab::Departments, Tab::Articles, Tab::Site, Tab::Internet}) {
    SCOPED_TRACE(static_cast<int>(tab));
    show(tab);
    EXPECT_EQ(cutTexts(window->page(tab)), "");
  }
}

TEST_F(Layout, NoTabIsWiderThanTheWindowOfASmallScreen) {
  openOnASmallScreen();
  for (const Tab tab : {Tab::Departments, Tab::Articles, Tab::Site, Tab::Internet}) {
    show(tab);
    EXPECT_EQ(window->page(tab).horizontalScrollBar()->maximum(), 0) << static_cast<int>(tab);
  }
}

}  // namespace
}  // namespace kv::test
