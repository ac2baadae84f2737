// The first-run guide beside the main window: what each step lights there, and what the next one puts out.

#include "forms/wired_window.h"
#include "shell/window/intro_steps.h"

namespace kv::test {
namespace {

class GuideWindow : public WiredWindow {
 protected:
  void openGuide() {
    openWindow();
    EXPECT_TRUE(choose("help.introduction"));
    guide = window->findChild<QDialog*>(QStringLiteral("frmIntro"));
    ASSERT_NE(guide, nullptr);
    ASSERT_TRUE(guide->isVisible());
  }
  void step(int number) {
    click(*guide, ("cmdStep" + std::to_string(number)).c_str());
    processEvents();
  }
  /// Fields and buttons in the highlight colour: "email_ordini", "14".
  std::set<std::string> lit() {
    std::set<std::string> names;
    for (const Editor& editor : editorTable()) {
      const QWidget* field = window->page(editor.tab).binding(editor.set, editor.column)->field();
      if (field->property("evidenziato").toBool()) names.insert(std::string(editor.column));
    }
    for (const auto* button : window->findChildren<QToolButton*>()) {
      const bool usual = button->palette().color(QPalette::Button) == window->palette().color(QPalette::Button);
      if ((usual && button->styleSheet().isEmpty()) || button->defaultAction() == nullptr) continue;
      const QString name = button->defaultAction()->objectName();
      if (name.startsWith(QStringLiteral("cmdButton"))) names.insert(fromQt(name.mid(9)));
    }
    return names;
  }
  QColor fieldColour(const char* column) {
    return window->page(Tab::Site).binding(EditedSet::Generale, column)->field()->palette().color(QPalette::Base);
  }
  Tab tab() { return window->workbench().tab(); }

  QDialog* guide = nullptr;
};

TEST_F(GuideWindow, EachStepLightsWhatItTellsOnItsTab) {
  openGuide();
  const std::vector<std::pair<Tab, std::set<std::string>>> wanted{
      {Tab::Departments, {"14", "15", "20"}},
      {Tab::Articles, {"2", "3"}},
      {Tab::Site, {"email_ordini"}},
      {Tab::Internet, {"username", "password", "folderFTP", "folderCGI", "hostname"}},
      {Tab::Internet, {"db_hostname", "db_username", "db_password", "db_dbname"}},
      {Tab::Internet, {"bo_username", "bo_password"}},
      {Tab::Internet, {"cartella", "cartellaCGI", "URL"}},
      {Tab::Internet, {"50"}},
      {Tab::Internet, {"51"}}};
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    step(static_cast<int>(i));
    EXPECT_EQ(tab(), wanted[i].first) << i;
    EXPECT_EQ(lit(), wanted[i].second) << i << ": what the last step lit is out";
  }
  step(0);
  EXPECT_EQ(lit(), wanted[0].second) << "backwards too";
}

TEST_F(GuideWindow, TheFirstFieldOfAStepHasItsWholeTextSelectedAndIsInView) {
  fill("UPDATE generale SET email_ordini = 'ordini@bottega.example'");
  openGuide();
  step(2);
  auto* field = control<QLineEdit>(window->page(Tab::Site), "email_ordini");
  EXPECT_EQ(field->selectedText(), "ordini@bottega.example");
  EXPECT_EQ(window->focusWidget(), field);
  EXPECT_FALSE(field->visibleRegion().isEmpty());
}

TEST_F(GuideWindow, TheBuildAndPublishButtonsSwapTheirPicture) {
  openGuide();
  const auto picture = [this](std::string_view name) {
    return window->menus().action(name)->icon().pixmap(24).toImage();
  };
  const QImage plainBuild = picture("build"), plainPublish = picture("publish");
  step(7);
  EXPECT_NE(picture("build"), plainBuild);
  EXPECT_EQ(picture("publish"), plainPublish);
  step(8);
  EXPECT_EQ(picture("build"), plainBuild);
  EXPECT_NE(picture("publish"), plainPublish);
  guide->close();
  EXPECT_EQ(picture("publish"), plainPublish);
}

TEST_F(GuideWindow, ClosingTakesEverythingAway) {
  openGuide();
  const QColor usual = fieldColour("email_ordini");
  step(2);
  EXPECT_NE(fieldColour("email_ordini"), usual);
  click(*guide, "cmdStep3");
  QTest::keyClick(guide, Qt::Key_Escape);
  processEvents();
  EXPECT_TRUE(lit().empty());
  EXPECT_EQ(fieldColour("email_ordini"), usual);
}

TEST_F(GuideWindow, WithoutADepartmentTheFirstStepsTakeTheFirst) {
  openGuide();
  for (const int number : {0, 1}) {
    window->workbench().goToDepartment("###");
    step(number);
    EXPECT_TRUE(window->workbench().sets().onDepartment());
    EXPECT_EQ(window->tree().currentIndex().row(), 0);
    EXPECT_EQ(fromQt(window->tree().currentIndex().parent().data().toString()), "Negozio");
  }
}

TEST_F(GuideWindow, WithNoDepartmentInTheTreeTheFirstStepLightsItsButtons) {
  fill("DELETE FROM categorie; DELETE FROM articoli");
  openGuide();
  step(0);
  EXPECT_EQ(lit(), (std::set<std::string>{"14", "15", "20"}));
  EXPECT_FALSE(window->workbench().sets().onDepartment());
}

TEST_F(GuideWindow, TheMainWindowCanBeUsedBesideIt) {
  openGuide();
  EXPECT_FALSE(guide->isModal());
  step(0);
  run("department.insertAfter");
  EXPECT_EQ(fromQt(window->tree().currentIndex().data().toString()), "Nuovo Reparto");
  EXPECT_TRUE(guide->isVisible());
}

TEST_F(GuideWindow, ItIsOpenedOnceAndChosenAgainTheSameOneComesForward) {
  EXPECT_TRUE(takeIntroTurn(settings));
  EXPECT_FALSE(takeIntroTurn(settings));
  openGuide();
  EXPECT_TRUE(choose("help.introduction"));
  EXPECT_EQ(window->findChildren<QDialog*>(QStringLiteral("frmIntro")).size(), 1);
  guide->close();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(choose("help.introduction"));
  EXPECT_EQ(window->findChildren<QDialog*>(QStringLiteral("frmIntro")).size(), 1);
}

}  // namespace
}  // namespace kv::test
