// A merchant's first hour: from the welcome page to a built shop of twenty articles with prices in two languages, by
// keys and clicks that are counted.

#include <QComboBox>
#include <cstdlib>

#include "forms/wired_window.h"

namespace kv::test {
namespace {

constexpr int articlesTyped = 20;

class FirstShop : public WiredWindow {
 protected:
  FirstShop() : home_(std::getenv("HOME")) { setenv("HOME", (root / "casa").c_str(), 1); }
  ~FirstShop() override { setenv("HOME", home_.c_str(), 1); }

  QWidget& focus() {
    QWidget* now = QApplication::focusWidget();
    return now != nullptr ? *now : *window;
  }
  /// A key that is no text.
  void key(Qt::Key which, Qt::KeyboardModifiers modifiers = Qt::NoModifier) { keyIn(focus(), which, modifiers); }
  void keyIn(QWidget& target, Qt::Key which, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    ++actions;
    QTest::keyClick(&target, which, modifiers);
    processEvents();
  }
  void type(const std::string& text) {
    characters += static_cast<int>(text.size());
    QTest::keyClicks(&focus(), toQt(text));
    processEvents();
  }
  /// A click on the menu's title, and one for each entry on the way.
  void chooseEntry(std::string_view name) {
    actions += static_cast<int>(menusOf(*window->menuBar(), window->menus().action(name)).size()) + 1;
    EXPECT_TRUE(choose(name)) << name;
    comeBack();
  }
  /// The window is active again, as after a menu or a dialog on a desktop; the screen in memory needs a word.
  void comeBack() {
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    processEvents();
  }
  static std::string twoDigits(int number) { return (number < 10 ? "0" : "") + std::to_string(number); }

  void makeEmptyShop() {
    whenShown("Korvane - Benvenuto", [this](QWidget& page) { keyIn(page, Qt::Key_Return); });
    window->workbench().ports().dialogs.welcome();
    comeBack();
  }
  /// English beside Italian.
  void addLanguage() {
    whenShown("Korvane - Configurazione lingue", [this](QWidget& dialog) {
      keyIn(*control<QComboBox>(dialog, "cboNumero"), Qt::Key_Down);
      auto* second = control<QComboBox>(dialog, "cboLingua2");
      ++actions;  // the click into it
      second->setFocus();
      if (second->currentText() != QLatin1String("inglese")) {
        ++characters;
        QTest::keyClick(second, Qt::Key_I);
      }
      EXPECT_EQ(fromQt(second->currentText()), "inglese");
      keyIn(dialog, Qt::Key_Return);
    });
    chooseEntry("languages");
  }
  void typeArticle(int number) {
    key(Qt::Key_I, Qt::ControlModifier);
    type("L" + twoDigits(number));
    key(Qt::Key_Tab);
    type("Lampada " + std::to_string(number));
    for (int i = 0; i < 5 && focus().objectName() != QLatin1String("prezzo"); ++i) key(Qt::Key_Tab);
    EXPECT_EQ(fromQt(focus().objectName()), "prezzo");
    type(std::to_string(number) + ",50");
  }
  /// In the list, where the next article is one key away.
  void translate(int number) {
    key(Qt::Key_F2);
    type("Lamp " + std::to_string(number));
    key(Qt::Key_Return);
    if (number < articlesTyped) key(Qt::Key_Down);
  }
  std::string build() {
    std::string said;
    whenFinished(said);
    key(Qt::Key_B, Qt::ControlModifier);
    ++actions;  // the Enter in the box
    return said;
  }
  std::string rowsOf(const std::string& query) { return test::rows(session.catalogue, query); }
  std::string built(const std::string& file) {
    return readBytes(session.onlineFolder + "/" + file).value_or("(missing)");
  }

  int actions = 0;     ///< keys that are no text, and clicks
  int characters = 0;  ///< of codes, titles and prices

 private:
  std::string home_;
};

TEST_F(FirstShop, OfTwentyArticlesInTwoLanguagesIsBuiltWithoutReadingHelp) {
  openWindow();
  makeEmptyShop();
  ASSERT_TRUE(session.ShopFolder.starts_with(root / "casa/Negozi")) << session.ShopFolder;
  ASSERT_EQ(rowsOf("SELECT COUNT(*) FROM articoli"), "0\n");
  addLanguage();
  key(Qt::Key_2, Qt::AltModifier);
  for (int number = 1; number <= articlesTyped; ++number) typeArticle(number);
  chooseEntry("language.2");
  ++actions;  // a click on the first row
  window->workbench().goToArticleAt(0);
  window->articles().setFocus();
  for (int number = 1; number <= articlesTyped; ++number) translate(number);
  EXPECT_NE(build().find("Creazione del negozio terminata."), std::string::npos);

  EXPECT_EQ(rowsOf("SELECT COUNT(*), SUM(prezzo) FROM articoli"), "20|2200000\n");
  EXPECT_EQ(rowsOf("SELECT titolo, titolo_l2 FROM articoli WHERE codice = 'L20'"), "Lampada 20|Lamp 20\n");
  const std::string pages = rowsOf("SELECT pagina FROM categorie");
  const std::string page = pages.substr(0, pages.size() - 1);
  EXPECT_NE(built(page + ".php"), "(missing)");
  EXPECT_NE(built(page + "_l2.php"), "(missing)");
  RecordProperty("keysAndClicks", actions);
  RecordProperty("characters", characters);
  EXPECT_LE(actions, 180) << "five keys for an article, three for its translation, and what is around them";
}

}  // namespace
}  // namespace kv::test
