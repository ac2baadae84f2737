// The fields of the pages: what may be typed or pasted, what leaving writes, what shows at once, and that nobody is
// left without a name.

#include <QAbstractButton>
#include <QClipboard>
#include <QLabel>
#include <QScrollBar>
#include <QWheelEvent>

#include "forms/window_fixture.h"
#include "platform/qt/frm_dialog.h"

namespace kv::test {
namespace {

class Editors : public WindowFixture {
 protected:
  void paste(QLineEdit& into, const QString& text) {
    into.setFocus();
    into.selectAll();
    QApplication::clipboard()->setText(text);
    into.paste();
  }
};

TEST_F(Editors, AStarInAPriceTypesThreeZeros) {
  open();
  goArticles();
  QLineEdit& price = line(EditedSet::Articoli, "prezzo");
  type(price, "12*");
  EXPECT_EQ(price.text(), "12000");
  leave(price);
  EXPECT_EQ(scalar("SELECT prezzo FROM articoli WHERE ID = 1"), "12000");
}

TEST_F(Editors, APriceTakesDigitsAndTheDecimalSeparatorAlone) {
  open();
  goArticles();
  QLineEdit& price = line(EditedSet::Articoli, "prezzo");
  type(price, "a1b2-,5.0");
  EXPECT_EQ(price.text(), "12,50");
  paste(price, "EUR 1.234,50");
  EXPECT_EQ(price.text(), "1234,50");
}

TEST_F(Editors, TextFieldsRefuseTheBarAndTheBrackets) {
  open();
  goArticles();
  QLineEdit& title = line(EditedSet::Articoli, "titolo");
  type(title, "a|b[c]d");
  EXPECT_EQ(title.text(), "abcd");
  paste(title, "x|y[z]");
  EXPECT_EQ(title.text(), "xyz");
  auto& memo = field<QPlainTextEdit>(EditedSet::Articoli, "descrizione");
  memo.setFocus();
  QTest::keyClicks(&memo, "a|b[c]d");
  QApplication::clipboard()->setText("e|f");
  memo.paste();
  EXPECT_EQ(memo.toPlainText(), "abcdef");
}

TEST_F(Editors, ShowingAStoredValueDoesNotChangeIt) {
  run(shop, "UPDATE articoli SET titolo = 'vecchio|titolo', peso = -2 WHERE ID = 1");
  open();
  goArticles();
  EXPECT_EQ(line(EditedSet::Articoli, "titolo").text(), "vecchio|titolo");
  EXPECT_EQ(line(EditedSet::Articoli, "peso").text(), "-2");
  QLineEdit& title = line(EditedSet::Articoli, "titolo");
  title.setFocus();
  title.end(false);
  QTest::keyClicks(&title, "!");
  EXPECT_EQ(title.text(), "vecchio|titolo!");
}

TEST_F(Editors, APercentAboveOneHundredBecomesOneHundred) {
  open();
  QLineEdit& discount = line(EditedSet::Categorie, "sconto");
  type(discount, "250");
  EXPECT_EQ(discount.text(), "100");
  leave(discount);
  EXPECT_EQ(scalar("SELECT sconto FROM categorie WHERE ID = 'cat001'"), "100");
}

TEST_F(Editors, ANumberOfArticlesTakesDigitsAlone) {
  open();
  QLineEdit& most = line(EditedSet::Categorie, "maxarticoli");
  type(most, "1,2x");
  EXPECT_EQ(most.text(), "12");
}

TEST_F(Editors, AServerFolderTakesItsCharactersAlone) {
  open();
  window->workbench().selectTab(Tab::Internet);
  QLineEdit& folder = line(EditedSet::Generale, "folderFTP");
  type(folder, "/public html/shop-1/");
  EXPECT_EQ(folder.text(), "/publichtml/shop1/");
  type(folder, "/public_html/shop/");
  leave(folder);
  EXPECT_EQ(line(EditedSet::Generale, "cartella").text(), "shop");
}

TEST_F(Editors, ATitleShowsInTheTreeWhileItIsTyped) {
  open();
  QLineEdit& title = line(EditedSet::Categorie, "titolo");
  type(title, "Orci");
  EXPECT_EQ(treeText("cat001"), "Orci");
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"), "Vasi");
  key(Qt::Key_Return);
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"), "Orci");
  EXPECT_EQ(QApplication::focusWidget(), &window->tree());
}

TEST_F(Editors, AnArticlesTitleShowsInTheListWhileItIsTyped) {
  open();
  goArticles();
  type(line(EditedSet::Articoli, "titolo"), "Aurora");
  EXPECT_EQ(cell(0, ArticleModel::Title), "Aurora");
  type(line(EditedSet::Articoli, "codice"), "Z9");
  EXPECT_EQ(cell(0, ArticleModel::Title), "Aurora");
  EXPECT_EQ(cell(0, ArticleModel::Code), "Z9");
}

TEST_F(Editors, EscapeGivesUpWhatWasTyped) {
  open();
  QLineEdit& title = line(EditedSet::Categorie, "titolo");
  type(title, "Orci");
  key(Qt::Key_Escape);
  EXPECT_EQ(title.text(), "Vasi");
  EXPECT_EQ(treeText("cat001"), "Vasi");
  leave(title);
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"), "Vasi");
}

TEST_F(Editors, AFieldReachesTheRowWhenItIsLeft) {
  open();
  goArticles();
  QLineEdit& code = line(EditedSet::Articoli, "codice");
  type(code, "K7");
  EXPECT_EQ(scalar("SELECT codice FROM articoli WHERE ID = 1"), "A1");
  leave(code);
  EXPECT_EQ(scalar("SELECT codice FROM articoli WHERE ID = 1"), "K7");
}

TEST_F(Editors, AFieldReachesItsOwnRowWhenTheCursorMoves) {
  open();
  goArticles();
  type(line(EditedSet::Articoli, "titolo"), "Aurora");
  window->workbench().goToArticleAt(1);
  EXPECT_EQ(scalar("SELECT titolo FROM articoli WHERE ID = 1"), "Aurora");
  EXPECT_EQ(scalar("SELECT titolo FROM articoli WHERE ID = 2"), "Brina");
  EXPECT_EQ(line(EditedSet::Articoli, "titolo").text(), "Brina");
}

TEST_F(Editors, AFieldReachesTheRowBeforeABuild) {
  open();
  type(line(EditedSet::Categorie, "titolo"), "Orci");
  key(Qt::Key_B, Qt::ControlModifier);
  EXPECT_EQ(dialogsRun, std::vector<std::string>{"build"});
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"), "Orci");
}

TEST_F(Editors, ALongTextReachesTheRowWhenItIsLeft) {
  open();
  auto& memo = field<QPlainTextEdit>(EditedSet::Categorie, "descrizione");
  memo.setFocus();
  QTest::keyClicks(&memo, "una");
  QTest::keyClick(&memo, Qt::Key_Return);
  QTest::keyClicks(&memo, "due");
  leave(memo);
  EXPECT_EQ(scalar("SELECT descrizione FROM categorie WHERE ID = 'cat001'"), "una\r\ndue");
}

TEST_F(Editors, TheEightLongTextsShareOneStrip) {
  open();
  window->workbench().selectTab(Tab::Site);
  auto* strip = window->page(Tab::Site).findChild<QTabBar*>(QStringLiteral("tabTesti"));
  ASSERT_NE(strip, nullptr);
  EXPECT_EQ(strip->count(), 8);
  strip->setCurrentIndex(4);
  EXPECT_TRUE(field<QPlainTextEdit>(EditedSet::Generale, "condizioni").isVisibleTo(&window->page(Tab::Site)));
  EXPECT_FALSE(field<QPlainTextEdit>(EditedSet::Generale, "home1").isVisibleTo(&window->page(Tab::Site)));
}

TEST_F(Editors, ACheckBoxWritesAtOnceAndFreesWhatHangsOnIt) {
  open();
  window->workbench().selectTab(Tab::Site);
  EXPECT_FALSE(line(EditedSet::Generale, "valuta2").isEnabled());
  field<QCheckBox>(EditedSet::Generale, "usa_cambio").click();
  EXPECT_EQ(scalar("SELECT usa_cambio FROM generale"), "1");
  EXPECT_TRUE(line(EditedSet::Generale, "valuta2").isEnabled());
}

TEST_F(Editors, ARateShowsItsReverseWhileItIsTyped) {
  run(shop, "UPDATE generale SET usa_cambio = 1");
  open();
  window->workbench().selectTab(Tab::Site);
  type(line(EditedSet::Generale, "cambio"), "0,8");
  EXPECT_EQ(line(EditedSet::Generale, reverseRateField).text(), "1,25");
  leave(line(EditedSet::Generale, "cambio"));
  type(line(EditedSet::Generale, reverseRateField), "2");
  EXPECT_EQ(line(EditedSet::Generale, "cambio").text(), "0,5");
  leave(line(EditedSet::Generale, reverseRateField));
  EXPECT_EQ(scalar("SELECT cambio FROM generale"), ".5");
}

TEST_F(Editors, AListIsChosenOrTyped) {
  open();
  auto& vat = field<QComboBox>(EditedSet::Categorie, "iva");
  type(*vat.lineEdit(), "x10");
  EXPECT_EQ(vat.currentText(), "10");
  leave(*vat.lineEdit());
  EXPECT_EQ(scalar("SELECT iva FROM categorie WHERE ID = 'cat001'"), "10");
  auto& model = field<QComboBox>(EditedSet::Categorie, "template");
  EXPECT_EQ(model.currentText(), "modello2");
  model.setFocus();
  model.showPopup();
  model.hidePopup();
  EXPECT_EQ(model.count(), 2);
  model.setCurrentIndex(model.findText("modello1"));
  EXPECT_EQ(scalar("SELECT template FROM categorie WHERE ID = 'cat001'"), "modello1");
}

TEST_F(Editors, TheWheelPassesOverAListThatHasNoFocus) {
  open();
  auto& model = field<QComboBox>(EditedSet::Categorie, "template");
  model.showPopup();
  model.hidePopup();
  window->tree().setFocus();
  QWheelEvent turn(QPointF(4, 4), model.mapToGlobal(QPointF(4, 4)), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                   Qt::NoScrollPhase, false);
  QApplication::sendEvent(&model, &turn);
  EXPECT_EQ(model.currentText(), "modello2");
}

TEST_F(Editors, APictureShowsItsNameAndItsCommands) {
  write(joinPath(shop, "work/foto.gif"), onePixelGif(9, 9, 9));
  run(shop, "UPDATE articoli SET immagine0 = 'foto.gif', imgX0 = 1, imgY0 = 1 WHERE ID = 1");
  open();
  goArticles();
  processEvents();
  QWidget& picture = field<QWidget>(EditedSet::Articoli, "immagine0");
  QStringList texts;
  for (const QLabel* label : picture.findChildren<QLabel*>()) texts.append(label->text());
  EXPECT_TRUE(texts.contains("foto.gif\n1 x 1")) << texts.join('/').toStdString();
  const auto buttons = picture.findChildren<QAbstractButton*>();
  ASSERT_EQ(buttons.size(), 2);
  EXPECT_TRUE(buttons[1]->isEnabled());
  buttons[1]->click();
  processEvents();
  EXPECT_EQ(scalar("SELECT immagine0 FROM articoli WHERE ID = 1"), "");
  EXPECT_FALSE(buttons[1]->isEnabled());
}

TEST_F(Editors, EveryEditorOfTheTableIsOnItsPage) {
  open();
  for (const Editor& editor : editorTable()) {
    const EditorBinding* binding = window->page(editor.tab).binding(editor.set, editor.column);
    ASSERT_NE(binding, nullptr) << editor.column;
    EXPECT_FALSE(binding->field()->accessibleName().isEmpty()) << editor.column;
  }
}

TEST_F(Editors, EveryLabelBelongsToAFieldAndEveryControlHasAName) {
  open();
  for (int tab = 0; tab < tabCount; ++tab) {
    EditorPage& page = window->page(static_cast<Tab>(tab));
    for (const QLabel* label : page.findChildren<QLabel*>()) {
      if (!label->text().endsWith(':')) continue;
      EXPECT_NE(label->buddy(), nullptr) << label->text().toStdString();
    }
  }
  for (const QWidget* widget : window->findChildren<QWidget*>()) {
    if (widget->focusPolicy() == Qt::NoFocus || !widget->objectName().isEmpty()) continue;
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const bool named = !widget->accessibleName().isEmpty() || (button != nullptr && !button->text().isEmpty());
    const bool inside = widget->parentWidget() != nullptr && !widget->parentWidget()->accessibleName().isEmpty();
    EXPECT_TRUE(named || inside || widget->inherits("QScrollBar") || widget->inherits("QSplitterHandle"))
        << widget->metaObject()->className();
  }
}

}  // namespace
}  // namespace kv::test
