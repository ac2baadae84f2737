// Code, title and price typed in the list of articles, and the choice of its columns.

#include <QHeaderView>

#include "forms/driven_window.h"
#include "platform/qt/frm_field_mark.h"
#include "platform/qt/frm_note.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

using enum EditedSet;

class ArticleCells : public DrivenWindow {
 protected:
  void openList() {
    openWide();
    goArticle(0);
    window->articles().setFocus();
  }
  QLineEdit* cellField() {
    for (auto* field : window->articles().findChildren<QLineEdit*>(QStringLiteral("txtCella"))) {
      if (field->isVisible()) return field;
    }
    return nullptr;
  }
  /// Opens a cell by a double click.
  QLineEdit& openCell(int row, ArticleModel::Column column) {
    QTableView& list = window->articles();
    const QPoint at = list.visualRect(list.model()->index(row, column)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, at);
    processEvents();
    QLineEdit* field = cellField();
    if (field == nullptr) throw std::runtime_error("the cell has not opened");
    return *field;
  }
  void typeCell(QLineEdit& field, const QString& text) {
    field.selectAll();
    QTest::keyClicks(&field, text);
  }
  std::string reason(const QLineEdit& field) { return fromQt(field.findChild<FieldMark*>()->reason()); }
  QAction& columnEntry(const QString& heading) {
    for (QAction* entry : window->findChild<QMenu*>(QStringLiteral("menuColonne"))->actions()) {
      if (entry->text() == heading) return *entry;
    }
    throw std::runtime_error("no such column");
  }
  std::string headsShown() {
    std::string text;
    const QHeaderView& head = *window->articles().horizontalHeader();
    for (int column = 0; column < head.count(); ++column) {
      if (head.isSectionHidden(column)) continue;
      text += (text.empty() ? "" : "|") + fromQt(head.model()->headerData(column, Qt::Horizontal).toString());
    }
    return text;
  }
};

TEST_F(ArticleCells, ADoubleClickOpensATitleAndEnterStoresIt) {
  openList();
  QLineEdit& field = openCell(1, ArticleModel::Title);
  EXPECT_EQ(field.text(), "Brina");
  EXPECT_EQ(field.accessibleName(), "Titolo");
  typeCell(field, "Bruma");
  key(Qt::Key_Return);
  EXPECT_EQ(cellField(), nullptr);
  EXPECT_EQ(scalar("SELECT titolo FROM articoli WHERE ID = 2"), "Bruma");
  EXPECT_EQ(cell(1, ArticleModel::Title), "Bruma");
  EXPECT_EQ(line(Articoli, "titolo").text(), "Bruma") << "the page follows";
  processEvents();
  EXPECT_EQ(entryText("undo"), "Annulla: Modifica Titolo");
}

TEST_F(ArticleCells, F2OpensTheCellOfTheCurrentColumnAndEscapeChangesNothing) {
  openList();
  const std::string before = whole();
  key(Qt::Key_F2);
  ASSERT_NE(cellField(), nullptr);
  EXPECT_EQ(cellField()->text(), "Alba");
  QTest::keyClicks(cellField(), "xyz");
  key(Qt::Key_Escape);
  EXPECT_EQ(cellField(), nullptr);
  EXPECT_EQ(whole(), before);
  key(Qt::Key_Right);
  key(Qt::Key_F2);
  ASSERT_NE(cellField(), nullptr);
  EXPECT_EQ(cellField()->text(), "14,5");
  key(Qt::Key_Escape);
  key(Qt::Key_Right);
  key(Qt::Key_F2);
  ASSERT_NE(cellField(), nullptr);
  EXPECT_EQ(cellField()->text(), "Alba") << "the price with VAT is computed";
}

TEST_F(ArticleCells, TabGoesFromCellToCellAndStoresEach) {
  openList();
  typeCell(openCell(0, ArticleModel::Code), "Z9");
  key(Qt::Key_Tab);
  ASSERT_NE(cellField(), nullptr);
  EXPECT_EQ(cellField()->text(), "Alba");
  key(Qt::Key_Tab);
  typeCell(*cellField(), "7,25");
  key(Qt::Key_Tab);
  ASSERT_NE(cellField(), nullptr);
  EXPECT_EQ(cellField()->text(), "B1") << "after the price comes the next article";
  EXPECT_EQ(window->workbench().sets().article(), 2);
  key(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(cellField()->text(), "7,25");
  EXPECT_EQ(rows("SELECT codice, prezzo FROM articoli WHERE ID = 1"), "Z9|72500");
}

TEST_F(ArticleCells, APriceFollowsTheRulesOfItsField) {
  openList();
  QLineEdit& field = openCell(0, ArticleModel::Price);
  typeCell(field, "12*");
  EXPECT_EQ(field.text(), "12000");
  QTest::keyClicks(&field, "a");
  EXPECT_EQ(field.text(), "12000");
  EXPECT_FALSE(reason(field).empty()) << "a refused key says so";
  key(Qt::Key_Return);
  EXPECT_EQ(scalar("SELECT prezzo FROM articoli WHERE ID = 1"), "12000");
}

TEST_F(ArticleCells, ANumberThatIsNoneKeepsTheCellOpenWithTheFormerValueAndAMark) {
  openList();
  QLineEdit& field = openCell(0, ArticleModel::Price);
  typeCell(field, "1,2,3");
  key(Qt::Key_Return);
  ASSERT_EQ(cellField(), &field);
  EXPECT_EQ(field.text(), "14,5");
  EXPECT_FALSE(reason(field).empty());
  EXPECT_EQ(QApplication::focusWidget(), &field);
  EXPECT_EQ(scalar("SELECT prezzo FROM articoli WHERE ID = 1"), "14.5");
  typeCell(field, "1,5");
  EXPECT_EQ(reason(field), "");
  key(Qt::Key_Return);
  EXPECT_EQ(cellField(), nullptr);
  EXPECT_EQ(scalar("SELECT prezzo FROM articoli WHERE ID = 1"), "1.5");
}

TEST_F(ArticleCells, ANumberThatIsNoneIsToldBesideTheListWhenItsCellIsLeft) {
  openList();
  typeCell(openCell(0, ArticleModel::Price), "1,2,3");
  line(Articoli, "sottotitolo").setFocus();
  processEvents();
  EXPECT_EQ(cellField(), nullptr);
  EXPECT_EQ(cell(0, ArticleModel::Price), "14,5");
  EXPECT_FALSE(noteOf(*window).isEmpty());
}

TEST_F(ArticleCells, WhatCannotBeStoredStaysInItsCellAndNothingMovesOn) {
  openList();
  QLineEdit& field = openCell(0, ArticleModel::Title);
  typeCell(field, "Aurora");
  {
    FailingStore full(1, AfterFailure::FailsToo, FailingStore::fullDisk);
    full.onlyFor("UPDATE");
    key(Qt::Key_Return);
    ASSERT_EQ(cellField(), &field);
    EXPECT_EQ(field.text(), "Aurora");
    EXPECT_TRUE(reason(field).starts_with("Non salvato. Titolo: il disco è pieno.")) << reason(field);
    window->workbench().goToArticle(2);
    EXPECT_EQ(window->workbench().sets().article(), 1);
    user.answers = {Answer::No};
    EXPECT_FALSE(window->QWidget::close());
    EXPECT_EQ(field.text(), "Aurora");
  }
  EXPECT_EQ(user.shown.size(), 2U) << "the failure once, and the question of closing";
  field.setFocus();
  key(Qt::Key_Return);
  EXPECT_EQ(scalar("SELECT titolo FROM articoli WHERE ID = 1"), "Aurora");
  EXPECT_EQ(cellField(), nullptr);
}

TEST_F(ArticleCells, ACommandStoresWhatIsTypedFirst) {
  openList();
  typeCell(openCell(0, ArticleModel::Title), "Aurora");
  key(Qt::Key_Down, Qt::ControlModifier);
  EXPECT_EQ(titlesShown(), "Brina Aurora Cielo");
}

TEST_F(ArticleCells, TheTextsAreThoseOfTheLanguageAndThePriceList) {
  openList();
  EXPECT_TRUE(choose("language.2"));
  window->workbench().selectListino(3);
  comeBack();
  typeCell(openCell(0, ArticleModel::Title), "Sunrise");
  key(Qt::Key_Tab);
  typeCell(*cellField(), "9");
  key(Qt::Key_Return);
  EXPECT_EQ(rows("SELECT titolo, titolo_l2, prezzo, prezzo3 FROM articoli WHERE ID = 1"), "Alba|Sunrise|145000|90000");
}

TEST_F(ArticleCells, WithoutThePanelsANewArticleIsTypedInTheList) {
  openList();
  window->workbench().hideDetails(true);
  processEvents();
  key(Qt::Key_I, Qt::ControlModifier);
  ASSERT_NE(cellField(), nullptr);
  typeCell(*cellField(), "Eco");
  key(Qt::Key_Return);
  EXPECT_EQ(titlesShown(), "Alba Eco Brina Cielo");
}

TEST_F(ArticleCells, ColumnsAreChosenAndComeBackAtTheNextStart) {
  openList();
  EXPECT_EQ(headsShown(), "Codice|Titolo|Prezzo|Con IVA");
  EXPECT_FALSE(columnEntry("Titolo").isEnabled());
  columnEntry("Codice").trigger();
  columnEntry("Peso").trigger();
  columnEntry("Vetrina").trigger();
  EXPECT_EQ(headsShown(), "Titolo|Prezzo|Con IVA|Peso|Vetrina");
  EXPECT_EQ(settings.get("Finestra", "colonne"), "titolo prezzo iva peso vetrina");
  frmMain again(session, env, portsWithCommands());
  again.restoreLayout();
  EXPECT_TRUE(again.articles().isColumnHidden(ArticleModel::Code));
  EXPECT_FALSE(again.articles().isColumnHidden(ArticleModel::Showcase));
}

TEST_F(ArticleCells, TheOptionalColumnsShowWhatTheRowSays) {
  run(shop,
      "UPDATE articoli SET offerta = 1, offertaprezzo = 99000, peso = 2.5, inelenco = 1 WHERE ID = 1;"
      "UPDATE articoli SET offerta = 0, offertaprezzo = 99000 WHERE ID = 2");
  openList();
  EXPECT_EQ(cell(0, ArticleModel::Offer), "9,9");
  EXPECT_EQ(cell(0, ArticleModel::Weight), "2,5");
  EXPECT_EQ(cell(0, ArticleModel::Showcase), "Sì");
  for (const auto column : {ArticleModel::Offer, ArticleModel::Weight, ArticleModel::Showcase}) {
    EXPECT_EQ(cell(1, column), "");
  }
}

TEST_F(ArticleCells, AnOrderWhoseColumnIsHiddenEnds) {
  openList();
  QHeaderView& head = *window->articles().horizontalHeader();
  QTest::mouseClick(head.viewport(), Qt::LeftButton, {},
                    QPoint(head.sectionViewportPosition(ArticleModel::Price) + 5, head.height() / 2));
  EXPECT_EQ(titlesShown(), "Cielo Alba Brina");
  columnEntry("Prezzo").trigger();
  EXPECT_EQ(titlesShown(), "Alba Brina Cielo");
}

}  // namespace
}  // namespace kv::test
