// Where the keyboard is: at the start, after an addition, and which keys are a field's and which the menus'.

#include <QActionGroup>
#include <QClipboard>
#include <QMenuBar>
#include <QMouseEvent>
#include <QStatusBar>

#include "forms/driven_window.h"

namespace kv::test {
namespace {

using enum EditedSet;

class Focus : public DrivenWindow {
 protected:
  static QWidget* focus() { return QApplication::focusWidget(); }
  static std::string focusName() { return focus() == nullptr ? "" : fromQt(focus()->objectName()); }
  void typeKeys(const char* text) {
    QTest::keyClicks(focus(), text);
    processEvents();
  }
  void tabTo(const char* name, int most) {
    for (int i = 0; i < most && focusName() != name; ++i) key(Qt::Key_Tab);
    EXPECT_EQ(focusName(), name);
  }
  std::string statusText() { return fromQt(window->statusBar()->currentMessage()); }
};

TEST_F(Focus, AtTheStartTheKeyboardIsInTheTreeAndSpaceBuildsNothing) {
  open();
  EXPECT_EQ(focus(), &window->tree());
  EXPECT_TRUE(window->tree().currentIndex().isValid());
  key(Qt::Key_Space);
  EXPECT_TRUE(dialogsRun.empty());
}

TEST_F(Focus, AnotherShopBeginsInTheTreeToo) {
  open();
  window->workbench().selectTab(Tab::Internet);
  line(Generale, "hostname").setFocus();
  window->workbench().showShop();
  processEvents();
  EXPECT_EQ(focus(), &window->tree());
}

TEST_F(Focus, WhatIsAddedIsTypedAtOnce) {
  open();
  key(Qt::Key_I, Qt::ControlModifier);
  EXPECT_EQ(focus(), &line(Categorie, "titolo"));
  EXPECT_EQ(line(Categorie, "titolo").selectedText(), "Nuovo Reparto");
  typeKeys("Orci");
  key(Qt::Key_Return);
  EXPECT_EQ(treeText(selected()), "Orci");
  go("cat001");
  goArticle(1);
  EXPECT_TRUE(choose("article.insertBefore"));
  comeBack();
  EXPECT_EQ(focus(), &line(Articoli, "codice"));
}

TEST_F(Focus, TwentyArticlesAreTypedWithoutAMouse) {
  open();
  go("cat002");
  key(Qt::Key_2, Qt::AltModifier);
  window->articles().setFocus();
  for (int i = 1; i <= 20; ++i) {
    const std::string number = std::to_string(i);
    key(Qt::Key_I, Qt::ControlModifier);
    typeKeys(("C" + number).c_str());
    key(Qt::Key_Tab);
    typeKeys(("Vaso " + number).c_str());
    tabTo("prezzo", 4);
    typeKeys((number + ",5").c_str());
  }
  key(Qt::Key_Return);
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM articoli WHERE catID = 'cat002' AND codice LIKE 'C*' AND titolo LIKE 'Vaso *'"
                   " AND prezzo > 0"),
            "20");
  EXPECT_EQ(rows("SELECT codice, titolo, prezzo FROM articoli WHERE codice = 'C20'"), "C20|Vaso 20|205000");
}

TEST_F(Focus, WithTheDetailsHiddenTheKeyboardStaysInTheTree) {
  open();
  EXPECT_TRUE(choose("details.hide"));
  comeBack();
  window->tree().setFocus();
  key(Qt::Key_I, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM categorie"), "4");
  EXPECT_EQ(focus(), &window->tree());
}

TEST_F(Focus, UndoGoesFirstOverTheTypingOfAFieldThenOverTheStepsOfTheCatalogue) {
  open();
  QLineEdit& title = line(Categorie, "titolo");
  key(Qt::Key_I, Qt::ControlModifier);
  typeKeys("Orci");
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(title.text(), "Nuovo Reparto");
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM categorie"), "4") << "the department is still there";
  key(Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(title.text(), "Orci");
  key(Qt::Key_Z, Qt::ControlModifier);
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM categorie"), "3") << "then the addition is undone";
  key(Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM categorie"), "4");
}

TEST_F(Focus, WhatAFieldHasStoredIsUndoneOnceAndAsAStep) {
  open();
  type(line(Categorie, "titolo"), "Orci");
  key(Qt::Key_Return);
  line(Categorie, "titolo").setFocus();
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"), "Vasi");
  EXPECT_EQ(line(Categorie, "titolo").text(), "Vasi");
  EXPECT_FALSE(window->workbench().history().canUndo());
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"), "Vasi") << "there and back would be a step";
}

TEST_F(Focus, UndoWorksInALongTextAndInAListThatIsTypedInto) {
  open();
  auto& text = field<QPlainTextEdit>(Categorie, "descrizione");
  text.setFocus();
  typeKeys("Cotto");
  leave(text);
  EXPECT_EQ(scalar("SELECT descrizione FROM categorie WHERE ID = 'cat001'"), "Cotto");
  text.setFocus();
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(text.toPlainText(), "");
  auto& vat = field<QComboBox>(Categorie, "iva");
  vat.setFocus();
  vat.lineEdit()->selectAll();
  typeKeys("4");
  key(Qt::Key_Tab);
  vat.setFocus();
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT COALESCE(iva, 'null') FROM categorie WHERE ID = 'cat001'"), "null");
}

TEST_F(Focus, AShortcutOfTheMenusDoesItsThingInEveryField) {
  open();
  for (QWidget* target : {static_cast<QWidget*>(&line(Categorie, "titolo")),
                          static_cast<QWidget*>(&field<QPlainTextEdit>(Categorie, "descrizione")),
                          static_cast<QWidget*>(&field<QComboBox>(Categorie, "iva"))}) {
    window->menus().action("tree.collapse")->trigger();
    target->setFocus();
    key(Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(window->tree().isExpanded(window->tree().departments().indexOf("cat001")));
  }
  line(Categorie, "titolo").setFocus();
  key(Qt::Key_D, Qt::ControlModifier);
  EXPECT_TRUE(window->workbench().areDetailsHidden());
  answer(&WorkbenchDialogs::remindToBuild, true);
  refreshEntries();
  line(Categorie, "titolo").setFocus();
  key(Qt::Key_U, Qt::ControlModifier);
  ASSERT_FALSE(dialogsRun.empty());
  EXPECT_EQ(dialogsRun.back(), "remindToBuild");
}

TEST_F(Focus, AKeyWhoseCommandIsOffLeavesTheFieldAndSaysWhy) {
  open();
  QLineEdit& title = line(Categorie, "titolo");
  title.setFocus();
  dialogs().publishOptions = nullptr;
  refreshEntries();
  key(Qt::Key_U, Qt::ControlModifier);
  EXPECT_EQ(title.text(), "Vasi");
  EXPECT_NE(statusText(), "");
  goTab(Tab::Articles);
  go("cat002");
  line(Articoli, "codice").window()->setFocus();
  window->articles().setFocus();
  key(Qt::Key_Up, Qt::ControlModifier);
  EXPECT_EQ(statusText(), "Nessun articolo");
}

TEST_F(Focus, TheKeysOfTheClipboardActOnTheDepartmentWhileTheTreeHasTheFocus) {
  open();
  goArticle(0);
  go("cat002");
  window->tree().setFocus();
  key(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT titolo FROM clipcategorie"), "Piccoli");
  user.answers = {Answer::Yes};
  key(Qt::Key_Delete);
  EXPECT_EQ(treeShown(), "Negozio(Vasi Piatti)");
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM articoli"), "4");
  window->tree().setFocus();
  key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM categorie WHERE titolo = 'Piccoli'"), "1");
}

TEST_F(Focus, CopiedArticlesArePastedIntoTheDepartmentOfTheTree) {
  open();
  goArticle(1);
  window->articles().setFocus();
  key(Qt::Key_C, Qt::ControlModifier);
  go("cat002");
  window->tree().setFocus();
  key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(rows("SELECT titolo FROM articoli WHERE catID = 'cat002'"), "Brina");
}

TEST_F(Focus, OnAPageTheyActOnTheTextAndOnNoRow) {
  open();
  goArticle(0);
  QLineEdit& title = line(Articoli, "titolo");
  title.setFocus();
  title.selectAll();
  key(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "Alba");
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM cliparticoli"), "0");
  for (QWidget* target : {static_cast<QWidget*>(&field<QCheckBox>(Articoli, "novita")),
                          static_cast<QWidget*>(&line(Articoli, "opzione1"))}) {
    target->setFocus();
    key(Qt::Key_Delete);
    key(Qt::Key_C, Qt::ControlModifier);
  }
  EXPECT_TRUE(user.shown.empty());
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM cliparticoli"), "0");
}

TEST_F(Focus, AGreyButtonSaysWhyInItsToolTipAndItsStatusText) {
  openWide();
  goTab(Tab::Articles);
  go("cat002");
  const QAction* up = window->menus().action("article.up");
  EXPECT_EQ(up->toolTip(), "Muovi su (Ctrl+Up)\nNessun articolo");
  EXPECT_EQ(up->statusTip(), "Nessun articolo");
  go("cat001");
  processEvents();
  EXPECT_EQ(up->toolTip(), "Muovi su (Ctrl+Up)");
  EXPECT_EQ(up->statusTip(), "");
}

TEST_F(Focus, AGreyEntryUnderTheMouseSaysWhyInTheStatusLine) {
  openWide();
  goTab(Tab::Articles);
  go("cat002");
  QAction* up = window->menus().action("article.up");
  QMenu* menu = menusOf(*window->menuBar(), up).back();
  menu->popup(QPoint(0, 0));
  const QPointF middle = menu->actionGeometry(up).center();
  QMouseEvent over(QEvent::MouseMove, middle, menu->mapToGlobal(middle), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(menu, &over);
  EXPECT_EQ(statusText(), "Nessun articolo");
  menu->close();
  EXPECT_EQ(statusText(), "");
}

TEST_F(Focus, EveryEntryThatIsOffHasAReason) {
  openWide();
  go("###");
  const WorkbenchCommands& commands = window->workbench().commands();
  for (const Command& command : commands.table().rows()) {
    EXPECT_EQ(commands.whyOff(command).empty(), commands.isEnabled(command)) << command.name;
    const bool hasTest = command.enabled || !command.key.empty();
    EXPECT_TRUE(!hasTest || !command.whenOff.empty()) << command.name << " can be off without a reason";
  }
}

TEST_F(Focus, OfEntriesThatExcludeEachOtherTheMarkIsARadioMark) {
  open();
  for (const char* name : {"tab.departments", "language.1", "look.desktop"}) {
    const QAction* action = window->menus().action(name);
    ASSERT_NE(action->actionGroup(), nullptr) << name;
    EXPECT_TRUE(action->actionGroup()->isExclusive()) << name;
    EXPECT_EQ(action->actionGroup()->checkedAction(), action) << name;
  }
  EXPECT_EQ(window->menus().action("details.hide")->actionGroup(), nullptr);
}

}  // namespace
}  // namespace kv::test
