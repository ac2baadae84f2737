// The list of articles as it is worked with: several rows, filter, order, and the commands at the mouse.

#include <QHeaderView>
#include <QTimer>

#include "forms/driven_window.h"

namespace kv::test {
namespace {

using enum EditedSet;

class WorkedList : public DrivenWindow {
 protected:
  void openList() {
    openWide();
    goArticle(0);
    window->articles().setFocus();
  }
  void clickHead(int column) {
    QHeaderView& head = *window->articles().horizontalHeader();
    const QPoint at(head.sectionViewportPosition(column) + 5, head.height() / 2);
    QTest::mouseClick(head.viewport(), Qt::LeftButton, {}, at);
    processEvents();
  }
  QLineEdit& filter() { return *window->findChild<QLineEdit*>(QStringLiteral("txtFiltro")); }
  QToolButton& shopOrder() { return *window->findChild<QToolButton*>(QStringLiteral("cmdOrdine")); }
};

TEST_F(WorkedList, SeveralRowsAreSelectedByShiftAndDeletedByOneQuestion) {
  openList();
  key(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(window->selectedArticles(), (std::vector<std::int64_t>{1, 2}));
  EXPECT_EQ(window->workbench().sets().article(), 2) << "the page shows the one the keyboard is on";
  user.answers = {Answer::Yes};
  key(Qt::Key_Delete);
  EXPECT_EQ(user.texts(), std::vector<std::string>{"Eliminare i 2 articoli selezionati?"});
  EXPECT_EQ(listShown(), "[Cielo]");
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(window->articles().articles().rowCount(), 3);
}

TEST_F(WorkedList, RowsThatMoveStaySelected) {
  openList();
  key(Qt::Key_Down);
  key(Qt::Key_Down, Qt::ShiftModifier);
  key(Qt::Key_Up, Qt::ControlModifier);
  EXPECT_EQ(titlesShown(), "Brina Cielo Alba");
  EXPECT_EQ(window->selectedArticles(), (std::vector<std::int64_t>{2, 3}));
}

TEST_F(WorkedList, AClickOnAHeadSortsAndTheThirdIsTheOrderOfTheShopAgain) {
  openList();
  EXPECT_FALSE(shopOrder().isVisible());
  clickHead(ArticleModel::Price);
  EXPECT_EQ(titlesShown(), "Cielo Alba Brina");
  EXPECT_EQ(line(Articoli, "titolo").text(), "Alba") << "the current article stays";
  EXPECT_EQ(window->articles().currentIndex().row(), 1);
  clickHead(ArticleModel::Price);
  EXPECT_EQ(titlesShown(), "Brina Alba Cielo");
  clickHead(ArticleModel::Price);
  EXPECT_EQ(titlesShown(), "Alba Brina Cielo");
  clickHead(ArticleModel::Title);
  EXPECT_TRUE(shopOrder().isVisible());
  shopOrder().click();
  EXPECT_EQ(titlesShown(), "Alba Brina Cielo");
  EXPECT_FALSE(shopOrder().isVisible());
  EXPECT_EQ(rows("SELECT ordinamento FROM articoli WHERE catID = 'cat001' ORDER BY ID"), "100 105 110");
}

TEST_F(WorkedList, ARowOfASortedListIsTheArticleThatItShows) {
  openList();
  clickHead(ArticleModel::Price);
  key(Qt::Key_Up);
  EXPECT_EQ(line(Articoli, "titolo").text(), "Cielo");
  type(line(Articoli, "titolo"), "Cobalto");
  EXPECT_EQ(cell(0, ArticleModel::Title), "Cobalto");
}

TEST_F(WorkedList, TheFilterTakesEveryCharacterAndLooksInCodeAndTitle) {
  run(shop, "UPDATE articoli SET codice = 'TZ-001' WHERE ID = 2");
  openList();
  filter().setFocus();
  QTest::keyClicks(&filter(), "tz-0");
  processEvents();
  EXPECT_EQ(titlesShown(), "Brina");
  filter().setText("cIE");
  EXPECT_EQ(titlesShown(), "Cielo");
  filter().setText("nulla");
  EXPECT_EQ(titlesShown(), "");
  EXPECT_EQ(line(Articoli, "titolo").text(), "Alba") << "what is not shown stays current";
  filter().clear();
  EXPECT_EQ(titlesShown(), "Alba Brina Cielo");
  EXPECT_EQ(window->articles().currentIndex().row(), 0);
}

TEST_F(WorkedList, WhatIsAddedIsShownWhateverTheFilterIs) {
  openList();
  filter().setText("Brina");
  key(Qt::Key_I, Qt::ControlModifier);
  EXPECT_EQ(filter().text(), "");
  EXPECT_EQ(window->articles().articles().rowCount(), 4);
  EXPECT_EQ(QApplication::focusWidget(), &line(Articoli, "codice"));
}

TEST_F(WorkedList, TheMenuAtTheMouseHasTheCommandsOfTheButtons) {
  openWide();
  for (const Tab tab : {Tab::Departments, Tab::Articles}) {
    goTab(tab);
    QWidget& list = tab == Tab::Articles ? static_cast<QWidget&>(window->articles()) : window->tree();
    std::vector<std::string> names;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, window.get(), [&] {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      if (menu == nullptr) return;
      poll.stop();
      for (const QAction* action : menu->actions()) {
        if (!action->isSeparator()) names.push_back(fromQt(plain(action->text())));
      }
      menu->close();
    });
    poll.start(2);
    emit list.customContextMenuRequested(QPoint(5, 5));
    std::vector<std::string> wanted{"Su", "Giu", "Prima", "Dopo"};
    for (const char* name : {"Copia", "Incolla", "Elimina"}) EXPECT_NE(std::ranges::find(names, name), names.end());
    EXPECT_TRUE(std::ranges::equal(wanted, std::span(names).first(wanted.size())));
    EXPECT_EQ(std::ranges::find(names, "Duplica") != names.end(), tab == Tab::Articles);
    EXPECT_EQ(std::ranges::find(names, "Sottoreparto") != names.end(), tab == Tab::Departments);
  }
}

TEST_F(WorkedList, ThePriceWithVatIsBesideTheNetOneInListAndField) {
  run(shop, "UPDATE categorie SET iva = 22");
  openList();
  EXPECT_EQ(cell(0, ArticleModel::Price), "14,5");
  EXPECT_EQ(cell(0, ArticleModel::Vat), "17,69");
  const auto beside = [this] {
    for (const QLabel* label : window->page(Tab::Articles).findChildren<QLabel*>()) {
      if (label->text().endsWith(QStringLiteral("con IVA"))) return fromQt(label->text());
    }
    return std::string();
  };
  EXPECT_EQ(beside(), "17,69 con IVA");
  type(line(Articoli, "prezzo"), "100");
  EXPECT_EQ(beside(), "122,00 con IVA") << "while it is typed";
}

TEST_F(WorkedList, AnUntranslatedFieldShowsTheFirstLanguagesTextInGrey) {
  run(shop, "UPDATE articoli SET titolo_l2 = '' WHERE ID = 1");
  openList();
  EXPECT_TRUE(choose("language.2"));
  EXPECT_EQ(line(Articoli, "titolo").text(), "");
  EXPECT_EQ(line(Articoli, "titolo").placeholderText(), "Alba");
  EXPECT_TRUE(choose("language.1"));
  EXPECT_EQ(line(Articoli, "titolo").placeholderText(), "");
}

TEST_F(WorkedList, AnUntranslatedTitleIsTheFirstLanguagesInGreyInTheListToo) {
  run(shop, "UPDATE articoli SET titolo_l2 = '' WHERE ID = 1");
  openList();
  EXPECT_TRUE(choose("language.2"));
  ArticleModel& model = window->articles().articles();
  const QModelIndex title = model.index(0, ArticleModel::Title);
  EXPECT_EQ(title.data().toString(), "Alba");
  EXPECT_EQ(title.data(Qt::ForegroundRole).value<QBrush>(), QApplication::palette().placeholderText());
  model.preview(0, ArticleModel::Title, "Dawn");
  EXPECT_EQ(title.data().toString(), "Dawn");
  EXPECT_FALSE(title.data(Qt::ForegroundRole).isValid());
  EXPECT_FALSE(model.index(1, ArticleModel::Title).data(Qt::ForegroundRole).isValid());
}

TEST_F(WorkedList, WhatIsToBeTranslatedCanBeFilteredInAShopOfSeveralLanguages) {
  run(shop, "UPDATE articoli SET titolo_l2 = '' WHERE ID = 1; UPDATE articoli SET titolo_l2 = NULL WHERE ID = 3");
  openList();
  auto* untranslated = window->findChild<QToolButton*>(QStringLiteral("cmdDaTradurre"));
  ASSERT_TRUE(untranslated->isVisible());
  EXPECT_TRUE(choose("language.2"));
  untranslated->click();
  const std::vector<std::int64_t> wanted{1, 3};
  std::vector<std::int64_t> shown;
  ArticleModel& model = window->articles().articles();
  for (int row = 0; row < model.rowCount(); ++row) shown.push_back(model.articleAt(row));
  EXPECT_EQ(shown, wanted);
  EXPECT_TRUE(choose("language.1"));
  EXPECT_EQ(model.rowCount(), 0) << "every article has an Italian title";
  untranslated->click();
  EXPECT_EQ(titlesShown(), "Alba Brina Cielo");
}

TEST_F(WorkedList, AShopOfOneLanguageOffersNoFilterOfWhatIsToBeTranslated) {
  run(shop, "UPDATE lingue SET lingua2 = NULL");
  openList();
  EXPECT_FALSE(window->findChild<QToolButton*>(QStringLiteral("cmdDaTradurre"))->isVisible());
}

TEST_F(WorkedList, TheStatusLineSaysWhatIsStored) {
  openList();
  auto* built = window->findChild<QLabel*>(QStringLiteral("lblCostruito"));
  processEvents();
  EXPECT_EQ(built->text(), "Tutto salvato - Mai costruito");
  type(line(Articoli, "titolo"), "Aurora");
  EXPECT_EQ(built->text(), "Non tutto è salvato - Mai costruito");
  leave(line(Articoli, "titolo"));
  EXPECT_EQ(built->text(), "Tutto salvato - Mai costruito");
  for (const char* asStored : {"14,5", ",,"}) {
    type(line(Articoli, "prezzo"), asStored);
    EXPECT_EQ(built->text(), "Non tutto è salvato - Mai costruito") << asStored;
    leave(line(Articoli, "prezzo"));
    processEvents();
    EXPECT_EQ(built->text(), "Tutto salvato - Mai costruito") << asStored;
  }
}

}  // namespace
}  // namespace kv::test
