// The search from the main window: typed, found, and the jump to the article in tree, list and tab.

#include <QRadioButton>
#include <QTableView>

#include "forms/wired_window.h"

namespace kv::test {
namespace {

const QString searchTitle = QStringLiteral("Korvane - Cerca articoli");

class SearchJump : public WiredWindow {
 protected:
  SearchJump() {
    fill(std::string("DELETE FROM categorie; DELETE FROM opzioni;") + threeDepartments);
    fill(
        "INSERT INTO articoli (catID, ordinamento, codice, titolo, titolo_l2) VALUES"
        " ('cat002', 100, 'E1', 'vaso blu scuro', 'dark blue'), ('cat002', 105, 'E2', 'un blu', 'a blue'),"
        " ('cat002', 110, 'E3', 'blu', 'blue'), ('cat003', 120, 'E4', 'bluastro', 'bluish')");
  }
  /// Types into the search, presses Enter, and does the rest in `then`.
  void search(const char* text, std::function<void(QWidget&, QTableView&)> then) {
    whenShown(searchTitle, [text, then = std::move(then)](QWidget& dialog) {
      auto* field = control<QLineEdit>(dialog, "txtTesto");
      EXPECT_TRUE(field->hasFocus());
      QTest::keyClicks(field, text);
      then(dialog, *control<QTableView>(dialog, "lstArticoli"));
      if (dialog.isVisible()) QTest::keyClick(&dialog, Qt::Key_Escape);
    });
  }
  static std::string hits(const QTableView& list) {
    std::string codes;
    for (int row = 0; row < list.model()->rowCount(); ++row) {
      codes += fromQt(list.model()->index(row, 0).data().toString()) + " ";
    }
    return codes;
  }
  std::string current() {
    const QModelIndex index = window->articles().currentIndex();
    return fromQt(index.siblingAtColumn(ArticleModel::Title).data().toString());
  }
};

TEST_F(SearchJump, TheKeyOpensItAndEnterJumpsToTheHit) {
  openWindow();
  goTab(Tab::Articles);
  window->articles().setFocus();
  search("un b", [](QWidget& dialog, QTableView& list) {
    QTest::keyClick(&dialog, Qt::Key_Return);
    EXPECT_EQ(hits(list), "E2 ");
    QTest::keyClick(&list, Qt::Key_Return);
  });
  QTest::keyClick(&window->articles(), Qt::Key_F, Qt::ControlModifier);
  processEvents();
  EXPECT_EQ(path(), "Negozio/Vasi/Piccoli");
  EXPECT_TRUE(window->tree().isExpanded(window->tree().departments().indexOf("cat001"))) << "the node is in view";
  EXPECT_EQ(current(), "un blu");
  EXPECT_EQ(window->tabs().currentIndex(), static_cast<int>(Tab::Articles));
  EXPECT_EQ(control<QLineEdit>(window->page(Tab::Articles), "codice")->text(), "E2");
}

TEST_F(SearchJump, TheButtonOpensItAndADoubleClickJumps) {
  openWindow();
  goTab(Tab::Articles);
  search("blu", [](QWidget& dialog, QTableView& list) {
    click(dialog, "cmdCerca");
    EXPECT_EQ(hits(list), "E1 E2 E3 E4 ");
    const QPoint place = list.visualRect(list.model()->index(3, 1)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, place);
  });
  run("article.search");
  EXPECT_EQ(path(), "Negozio/Piatti");
  EXPECT_EQ(current(), "bluastro");
}

TEST_F(SearchJump, WholeWordsLeaveTheBareWordOut) {
  openWindow();
  goTab(Tab::Articles);
  search("blu", [](QWidget& dialog, QTableView& list) {
    QTest::mouseClick(control<QCheckBox>(dialog, "chkParole"), Qt::LeftButton, {}, QPoint(8, 8));
    QTest::keyClick(&dialog, Qt::Key_Return);
    EXPECT_EQ(hits(list), "E1 E2 ");
    click(dialog, "cmdMostra");
  });
  run("article.search");
  EXPECT_EQ(current(), "vaso blu scuro");
}

TEST_F(SearchJump, TheLanguageInUseIsSearched) {
  openWindow();
  goTab(Tab::Articles);
  window->workbench().CambiaLingua(2);
  search("bluish", [](QWidget& dialog, QTableView& list) {
    QTest::keyClick(&dialog, Qt::Key_Return);
    EXPECT_EQ(hits(list), "E4 ");
    click(dialog, "cmdMostra");
  });
  run("article.search");
  EXPECT_EQ(path(), "Negozio/Plates");
  EXPECT_EQ(current(), "bluish");
}

TEST_F(SearchJump, WhatIsTypedIsSavedBeforeItIsSearched) {
  openWindow();
  goTab(Tab::Articles);
  auto* title = control<QLineEdit>(window->page(Tab::Articles), "titolo");
  title->setFocus();
  title->selectAll();
  QTest::keyClicks(title, "Zaffiro");
  search("zaff", [](QWidget& dialog, QTableView& list) {
    QTest::keyClick(&dialog, Qt::Key_Return);
    EXPECT_EQ(hits(list), "A1 ");
  });
  run("article.search");
  EXPECT_EQ(current(), "Zaffiro") << "left by Escape, nothing moves";
  EXPECT_EQ(path(), "Negozio/Vasi");
}

}  // namespace
}  // namespace kv::test
