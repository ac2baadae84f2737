// The main window by the keyboard alone: Tab reaches every control in the order of the eye, and the way from an empty
// department to a built shop needs no mouse. And every control of every window has a name.

#include <QScrollBar>

#include "builder/run/frm_elabora.h"
#include "forms/wired_window.h"
#include "shell/dialogs/frm_about.h"
#include "shell/dialogs/frm_avviso.h"
#include "shell/dialogs/frm_backup.h"
#include "shell/dialogs/frm_browse.h"
#include "shell/dialogs/frm_search.h"
#include "shell/window/frm_intro.h"
#include "tags/custom/frm_tags.h"
#include "tags/language/frm_info_lingua.h"
#include "tags/language/frm_lingue.h"
#include "tags/package/frm_template.h"

namespace kv::test {
namespace {

/// The controls of a window that the keyboard must reach.
std::set<const QWidget*> reachable(const QWidget& window) {
  std::set<const QWidget*> found;
  for (const QWidget* one : window.findChildren<QWidget*>()) {
    if ((one->focusPolicy() & Qt::TabFocus) == 0 || one->focusProxy() != nullptr) continue;
    if (one->isVisible() && one->isEnabled() && one->window() == &window) found.insert(one);
  }
  // Of a group of choices one is reached by Tab, the others by the arrows.
  std::erase_if(found, [](const QWidget* one) {
    const auto* button = qobject_cast<const QAbstractButton*>(one);
    return button != nullptr && button->autoExclusive() && button->isCheckable() && !button->isChecked();
  });
  return found;
}

/// Where Tab leads from the control that has the focus, once around.
std::vector<QWidget*> tabWay(QWidget& window) {
  std::vector<QWidget*> way;
  for (int step = 0; step < 400; ++step) {
    QTest::keyClick(window.focusWidget() != nullptr ? window.focusWidget() : &window, Qt::Key_Tab);
    QWidget* now = window.focusWidget();
    if (now == nullptr || std::ranges::find(way, now) != way.end()) break;
    way.push_back(now);
  }
  return way;
}

std::string nameOf(const QWidget& widget) {
  return widget.metaObject()->className() + std::string(" '") + fromQt(widget.objectName()) + "' " +
         fromQt(widget.accessibleName());
}

/// Controls that Tab doesn't lead to.
std::string missed(QWidget& window) {
  const std::vector<QWidget*> way = tabWay(window);
  std::string names;
  for (const QWidget* one : reachable(window)) {
    if (std::ranges::find(way, one) == way.end()) names += nameOf(*one) + "; ";
  }
  return names;
}

/// Labels that end in a colon and lead nowhere.
std::string looseLabels(const QWidget& window) {
  std::string texts;
  for (const QLabel* label : window.findChildren<QLabel*>()) {
    if (label->text().endsWith(QLatin1Char(':')) && label->buddy() == nullptr && !label->wordWrap()) {
      texts += fromQt(label->text()) + "; ";
    }
  }
  return texts;
}

/// Access keys that more than one control or menu on the screen answers to with Alt: pressed, none of them would act.
std::string accessKeyClashes(const frmMain& window) {
  std::map<std::string, std::vector<std::string>> owners;
  const auto add = [&](const QString& text) {
    const QKeySequence letter = QKeySequence::mnemonic(text);
    if (!letter.isEmpty()) owners[fromQt(letter.toString())].push_back(fromQt(text));
  };
  for (const QAction* menu : window.menuBar()->actions()) {
    if (menu->isVisible()) add(menu->text());
  }
  for (const QLabel* label : window.findChildren<QLabel*>()) {
    if (label->isVisible() && label->buddy() != nullptr) add(label->text());
  }
  for (const QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
    if (button->isVisible()) add(button->text());
  }
  for (const auto* strip : window.findChildren<QTabBar*>()) {
    for (int tab = 0; strip->isVisible() && tab < strip->count(); ++tab) add(strip->tabText(tab));
  }
  std::string text;
  for (const auto& [letter, names] : owners) {
    if (names.size() < 2) continue;
    text += letter + ":";
    for (const std::string& name : names) text += " '" + name + "'";
    text += '\n';
  }
  return text;
}

class Keyboard : public WiredWindow {
 protected:
  QWidget& focus() {
    QWidget* now = QApplication::focusWidget();
    return now != nullptr ? *now : *window;
  }
  void key(Qt::Key which, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(&focus(), which, modifiers);
    processEvents();
  }
  void type(const char* text) {
    QTest::keyClicks(&focus(), text);
    processEvents();
  }
};

TEST_F(Keyboard, TabReachesEveryControlOfEveryTab) {
  fill("UPDATE generale SET usa_cambio = 1, regobbl = 1");
  openWindow();
  for (const Tab tab : {Tab::Departments, Tab::Articles, Tab::Site, Tab::Internet}) {
    goTab(tab);
    window->tabs().setFocus();
    EXPECT_EQ(missed(*window), "") << static_cast<int>(tab);
  }
}

TEST_F(Keyboard, TabGoesThroughAGroupFromTopToBottom) {
  openWindow();
  for (const Tab tab : {Tab::Departments, Tab::Articles, Tab::Site, Tab::Internet}) {
    goTab(tab);
    window->tabs().setFocus();
    const QWidget* before = nullptr;
    for (const QWidget* now : tabWay(*window)) {
      if (!window->page(tab).isAncestorOf(now)) continue;
      if (before != nullptr && before->parentWidget() == now->parentWidget()) {
        const QPoint from = before->geometry().center(), to = now->geometry().center();
        const bool sameRow = std::abs(from.y() - to.y()) < before->height() / 2;
        EXPECT_TRUE(sameRow ? to.x() > from.x() : to.y() > from.y()) << nameOf(*before) << " -> " << nameOf(*now);
      }
      before = now;
    }
  }
}

TEST_F(Keyboard, AFieldThatTakesTheFocusComesIntoView) {
  openWindow();
  window->resize(900, 500);
  processEvents();
  goTab(Tab::Internet);
  window->tabs().setFocus();
  for (QWidget* now : tabWay(*window)) {
    if (!window->page(Tab::Internet).isAncestorOf(now)) continue;
    now->setFocus(Qt::TabFocusReason);
    processEvents();
    EXPECT_FALSE(now->visibleRegion().isEmpty()) << nameOf(*now);
  }
}

TEST_F(Keyboard, FromANewDepartmentToABuiltShop) {
  openWindow();
  window->tree().setFocus();
  key(Qt::Key_I, Qt::ControlModifier);
  key(Qt::Key_F2);
  type("Lampade");
  key(Qt::Key_Return);
  EXPECT_EQ(path(), "Negozio/Lampade");
  key(Qt::Key_2, Qt::AltModifier);
  window->articles().setFocus();
  key(Qt::Key_I, Qt::ControlModifier);
  key(Qt::Key_F2);
  type("Lume");
  for (int i = 0; i < 20 && focus().objectName() != QLatin1String("prezzo"); ++i) key(Qt::Key_Tab);
  type("12,50");
  std::string said;
  whenFinished(said);
  key(Qt::Key_B, Qt::ControlModifier);
  EXPECT_NE(said.find("Creazione del negozio terminata."), std::string::npos);
  EXPECT_EQ(stored("titolo", "articoli ORDER BY ID DESC LIMIT 1"), "Lume");
  const std::string page = stored("pagina", "categorie ORDER BY contatore DESC LIMIT 1");
  EXPECT_NE(readBytes(shop + "/online/" + page + ".php").value_or("").find("Lampade"), std::string::npos);
}

TEST_F(Keyboard, NoTwoControlsOfATabShareAnAccessKey) {
  openWindow();
  for (const Tab tab : {Tab::Departments, Tab::Articles, Tab::Site, Tab::Internet}) {
    goTab(tab);
    EXPECT_EQ(accessKeyClashes(*window), "") << static_cast<int>(tab);
  }
}

TEST_F(Keyboard, TheMenusOpenByTheirAccessKeys) {
  openWindow();
  window->tree().setFocus();
  for (const auto& [letter, title] :
       {std::pair{Qt::Key_F, "File"}, std::pair{Qt::Key_M, "Modifica"}, std::pair{Qt::Key_V, "Visualizza"}}) {
    key(letter, Qt::AltModifier);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr) << title;
    EXPECT_EQ(plain(menu->title()), title);
    while (QApplication::activePopupWidget() != nullptr)
      QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    processEvents();
  }
}

TEST_F(Keyboard, EveryControlOfTheMainWindowHasANameAndEveryLabelAField) {
  openWindow();
  for (const Tab tab : {Tab::Departments, Tab::Articles, Tab::Site, Tab::Internet}) {
    goTab(tab);
    EXPECT_EQ(namelessControls(*window), "");
    EXPECT_EQ(looseLabels(*window), "");
  }
  for (const Editor& editor : editorTable()) {
    const QWidget* field = window->page(editor.tab).binding(editor.set, editor.column)->field();
    bool labelled = editor.control == Control::Check || editor.group == longTexts;
    for (const QLabel* label : window->page(editor.tab).findChildren<QLabel*>()) labelled |= label->buddy() == field;
    EXPECT_TRUE(labelled) << editor.column;
    EXPECT_FALSE(field->accessibleName().isEmpty()) << editor.column;
  }
}

TEST_F(Keyboard, EveryDialogIsNamedLabelledAndReachedByTab) {
  openWindow();
  const std::vector<std::function<std::unique_ptr<QDialog>()>> dialogs{
      [&] { return std::make_unique<frmSearch>(session, env, window.get()); },
      [&] { return std::make_unique<frmBrowse>(session, env, window.get()); },
      [&] { return std::make_unique<frmLingue>(session, env, LanguageHooks{}, window.get()); },
      [&] { return std::make_unique<frmTags>(session, env, window.get()); },
      [&] { return std::make_unique<frmTemplate>(application, "", HelpOpener{}, window.get()); },
      [&] { return std::make_unique<frmAvviso>(settings, window.get()); },
      [&] { return std::make_unique<frmBackup>(shop, env, window.get()); },
      [&] { return std::make_unique<frmAbout>(window.get()); },
      [&] { return std::make_unique<frmInfoLingua>(window.get()); },
      [&] { return std::make_unique<frmIntro>(*window, window.get()); }};
  for (const auto& make : dialogs) {
    const std::unique_ptr<QDialog> dialog = make();
    const std::string title = fromQt(dialog->windowTitle());
    dialog->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get())) << title;
    processEvents();
    EXPECT_FALSE(title.empty());
    EXPECT_EQ(namelessControls(*dialog), "") << title;
    EXPECT_EQ(looseLabels(*dialog), "") << title;
    EXPECT_EQ(missed(*dialog), "") << title;
    dialog->close();
  }
}

}  // namespace
}  // namespace kv::test
