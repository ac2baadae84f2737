// Language and price list of the main window: by menu, by the drop-down with the flags, by keys, by the strip of pages.

#include "forms/driven_window.h"

namespace kv::test {
namespace {

class FourLanguages : public DrivenWindow {
 protected:
  FourLanguages() {
    run(shop,
        "UPDATE lingue SET lingua2 = 'inglese', lingua3 = 'francese', lingua4 = 'tedesco';"
        "UPDATE categorie SET titolo_l3 = 'Vases', titolo_l4 = 'Vasen' WHERE ID = 'cat001';"
        "UPDATE articoli SET titolo_l3 = 'Givre', titolo_l4 = 'Reif' WHERE ID = 2;"
        "UPDATE generale SET home1 = 'benvenuti', home1_l2 = 'welcome', home1_l3 = 'bienvenue', home1_l4 = "
        "'willkommen'");
    for (const char* name : {"italiano", "inglese", "francese"}) {
      write(application + "/languages/" + name + ".gif", onePixelGif(1, 2, 3));
    }
  }
  /// Department, article and first text as the language in use shows them.
  std::string shown() {
    processEvents();
    return fromQt(line(EditedSet::Categorie, "titolo").text()) + " " +
           fromQt(line(EditedSet::Articoli, "titolo").text()) + " " +
           fromQt(field<QPlainTextEdit>(EditedSet::Generale, "home1").toPlainText());
  }
  QToolButton& dropDown() { return *window->findChild<QToolButton*>(QStringLiteral("cboLingua")); }
  static constexpr std::array<const char*, 4> wanted{"Vasi Brina benvenuti", "Pots Frost welcome",
                                                     "Vases Givre bienvenue", "Vasen Reif willkommen"};
};

TEST_F(FourLanguages, TheMenuChangesTheLanguageAndKeepsTheCursors) {
  openWide();
  goArticle(1);
  for (const int language : {2, 3, 4, 1}) {
    EXPECT_TRUE(choose(languageCommand(language)));
    EXPECT_EQ(shown(), wanted[static_cast<std::size_t>(language - 1)]);
    EXPECT_EQ(selected(), "cat001");
    EXPECT_EQ(window->articles().currentIndex().row(), 1);
    EXPECT_EQ(window->tabs().currentIndex(), static_cast<int>(Tab::Articles));
  }
}

TEST_F(FourLanguages, TheKeysChangeTheLanguage) {
  openWide();
  goArticle(1);
  const std::array keys{Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4};
  for (const std::size_t place : {3U, 2U, 1U, 0U}) {
    window->articles().setFocus();
    key(keys[place], Qt::ControlModifier);
    EXPECT_EQ(shown(), wanted[place]);
    EXPECT_TRUE(window->menus().action(languageCommand(static_cast<int>(place) + 1))->isChecked());
  }
}

TEST_F(FourLanguages, TheDropDownShowsTheFlagAndChangesTheLanguage) {
  openWide();
  goArticle(1);
  EXPECT_EQ(dropDown().text(), "italiano");
  EXPECT_FALSE(dropDown().icon().isNull());
  QTimer::singleShot(0, window.get(), [this] {
    QMenu* menu = dropDown().menu();
    ASSERT_TRUE(QTest::qWaitFor([&] { return menu->isVisible(); }));
    QAction* german = window->menus().action("language.4");
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(german).center());
  });
  QTest::mouseClick(&dropDown(), Qt::LeftButton);
  EXPECT_EQ(shown(), wanted[3]);
  EXPECT_EQ(dropDown().text(), "tedesco");
  EXPECT_TRUE(dropDown().icon().isNull()) << "there is no flag of it";
  EXPECT_EQ(fromQt(dropDown().accessibleName()), "Lingua: tedesco");
}

TEST_F(FourLanguages, WhatIsTypedBelongsToTheLanguageItWasTypedIn) {
  openWide();
  goArticle(1);
  type(line(EditedSet::Articoli, "titolo"), "Galaverna");
  key(Qt::Key_3, Qt::ControlModifier);
  EXPECT_EQ(rows("SELECT titolo, titolo_l3 FROM articoli WHERE ID = 2"), "Galaverna|Givre");
  type(line(EditedSet::Articoli, "titolo"), "Frimas");
  key(Qt::Key_1, Qt::ControlModifier);
  EXPECT_EQ(rows("SELECT titolo, titolo_l3 FROM articoli WHERE ID = 2"), "Galaverna|Frimas");
  goTab(Tab::Site);
  auto& memo = field<QPlainTextEdit>(EditedSet::Generale, "home1");
  memo.setFocus();
  memo.selectAll();
  QTest::keyClicks(&memo, "salve");
  key(Qt::Key_4, Qt::ControlModifier);
  EXPECT_EQ(rows("SELECT home1, home1_l4 FROM generale"), "salve|willkommen");
}

TEST_F(FourLanguages, OffTheTableTheRootStaysSelected) {
  openWide();
  go("###");
  EXPECT_TRUE(choose("language.2"));
  EXPECT_EQ(selected(), "###");
  EXPECT_EQ(treeShown(), "Negozio(Pots(Small) Plates)");
}

TEST_F(FourLanguages, AKeyOfALanguageThatIsNotThereDoesNothing) {
  run(shop, "UPDATE lingue SET lingua3 = '', lingua4 = ''");
  openWide();
  window->tree().setFocus();
  key(Qt::Key_4, Qt::ControlModifier);
  EXPECT_EQ(session.currentLanguage, 1);
}

class PriceLists : public DrivenWindow {
 protected:
  PriceLists() {
    for (int n = 0; n < 10; ++n) {
      const std::string suffix = n == 0 ? "" : std::to_string(n), number = std::to_string(n);
      run(shop, "UPDATE articoli SET prezzo" + suffix + " = " + number + "0000 + 5000, offertaprezzo" + suffix + " = " +
                    number + "0000, offerta" + suffix + " = " + std::to_string(n % 2) + ", scq" + suffix + " = " +
                    std::to_string((n + 1) % 2) +
                    " WHERE ID = 2;"
                    "UPDATE categorie SET sconto" +
                    suffix + " = " + number + "0, inaccessibile" + suffix + " = " + std::to_string(n % 2) +
                    " WHERE ID = 'cat001'; UPDATE generale SET scimp" + suffix + " = " + number + ", importo" + suffix +
                    " = " + number + "00000");
    }
  }
  QTabBar& strip(Tab tab) { return *window->page(tab).findChild<QTabBar*>(QStringLiteral("tabListino")); }
  void pick(Tab tab, int listino) {
    goTab(tab);
    QTabBar& pages = strip(tab);
    window->page(tab).ensureWidgetVisible(&pages);
    processEvents();
    QTest::mouseClick(&pages, Qt::LeftButton, {}, pages.tabRect(listino).center());
    processEvents();
  }
  std::string text(EditedSet set, std::string_view column) { return fromQt(line(set, column).text()); }
  bool flag(EditedSet set, std::string_view column) { return field<QCheckBox>(set, column).isChecked(); }
};

TEST_F(PriceLists, EachOfTheTenPagesShowsItsOwnValues) {
  openWide();
  goArticle(1);
  EXPECT_EQ(strip(Tab::Articles).count(), 10);
  for (int n = 9; n >= 0; --n) {
    const std::string number = std::to_string(n);
    pick(Tab::Articles, n);
    EXPECT_EQ(window->workbench().listino(), n);
    EXPECT_EQ(text(EditedSet::Articoli, "prezzo"), number + ",5");
    EXPECT_EQ(text(EditedSet::Articoli, "offertaprezzo"), number);
    EXPECT_EQ(flag(EditedSet::Articoli, "offerta"), n % 2 == 1) << n;
    EXPECT_EQ(flag(EditedSet::Articoli, "scq"), n % 2 == 0) << n;
    EXPECT_EQ(fromQt(cell(1, ArticleModel::Price)), number + ",5");
    EXPECT_EQ(text(EditedSet::Categorie, "sconto"), n == 0 ? "0" : number + "0");
    EXPECT_EQ(flag(EditedSet::Categorie, "inaccessibile"), n % 2 == 1) << n;
    EXPECT_EQ(text(EditedSet::Generale, "scimp"), number);
  }
}

TEST_F(PriceLists, OneListIsInUseOnAllTabs) {
  openWide();
  pick(Tab::Departments, 4);
  for (const Tab tab : {Tab::Departments, Tab::Articles, Tab::Site}) EXPECT_EQ(strip(tab).currentIndex(), 4);
  pick(Tab::Site, 7);
  for (const Tab tab : {Tab::Departments, Tab::Articles, Tab::Site}) EXPECT_EQ(strip(tab).currentIndex(), 7);
}

TEST_F(PriceLists, WhatIsTypedGoesIntoTheListItWasTypedFor) {
  openWide();
  goArticle(1);
  type(line(EditedSet::Articoli, "prezzo"), "77");
  pick(Tab::Articles, 2);
  type(line(EditedSet::Articoli, "prezzo"), "88,25");
  field<QCheckBox>(EditedSet::Articoli, "offerta").click();
  pick(Tab::Departments, 0);
  EXPECT_EQ(rows("SELECT prezzo, prezzo2, offerta2, prezzo3 FROM articoli WHERE ID = 2"), "770000|882500|1|35000");
  type(line(EditedSet::Categorie, "sconto"), "15");
  pick(Tab::Departments, 9);
  field<QCheckBox>(EditedSet::Categorie, "inaccessibile").click();
  EXPECT_EQ(rows("SELECT sconto, sconto9, inaccessibile9 FROM categorie WHERE ID = 'cat001'"), "15.0|90.0|0");
}

}  // namespace
}  // namespace kv::test
