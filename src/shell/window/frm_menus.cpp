#include "shell/window/frm_menus.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>
#include <array>
#include <cstdlib>

#include "platform/files/files.h"
#include "platform/qt/frm_dialog.h"
#include "shell/window/frm_appearance.h"
#include "shell/window/frm_icons.h"

namespace kv {
namespace {

constexpr int iconSize = 24;

/// The commands of a tab's own row of buttons.
std::span<const int> buttonsOf(Tab tab) {
  static constexpr std::array departments{17, 16, 15, 14, 20, 12, 11, 13, 7};
  static constexpr std::array articles{0, 1, 2, 3, 5, 6, 4, 21};
  if (tab == Tab::Departments) return departments;
  if (tab == Tab::Articles) return articles;
  return {};
}

MenuTab menuOf(Tab tab) {
  switch (tab) {
    case Tab::Departments:
      return MenuTab::Departments;
    case Tab::Articles:
      return MenuTab::Articles;
    case Tab::Site:
      return MenuTab::Site;
    case Tab::Internet:
      break;
  }
  return MenuTab::Internet;
}

/// The first letter of the text that no entry of the menu answers to yet; none when all are taken.
QChar freeLetter(const QString& text, QSet<QChar>& taken) {
  for (const QChar letter : text) {
    const QChar lower = letter.toLower();
    if (!letter.isLetter() || taken.contains(lower)) continue;
    taken.insert(lower);
    return lower;
  }
  return {};
}

QString withMnemonic(const QString& text, QChar letter) {
  if (text.contains(QLatin1Char('&')) || letter.isNull()) return text;
  const auto place = text.indexOf(letter, 0, Qt::CaseInsensitive);
  return place < 0 ? text : QString(text).insert(place, QLatin1Char('&'));
}

/// What the button says; the moves downwards have no caption of their own.
QString buttonText(const Command& command) {
  if (!command.caption.empty()) return toQt(command.caption);
  if (command.action == CommandAction::Move && command.argument > 0) return QObject::tr("Muovi giù");
  return toQt(command.step);
}

/// A caption in two lines of about the same length, so that a whole row of them fits; a short one stays in the first.
QString inTwoLines(const QString& caption) {
  constexpr int shortEnough = 9;
  const qsizetype middle = caption.size() / 2;
  qsizetype cut = -1;
  for (qsizetype at = caption.indexOf(QLatin1Char(' ')); at >= 0; at = caption.indexOf(QLatin1Char(' '), at + 1)) {
    if (cut < 0 || std::abs(at - middle) < std::abs(cut - middle)) cut = at;
  }
  if (cut < 0 || caption.size() <= shortEnough) return caption + QLatin1Char('\n');
  return QString(caption).replace(cut, 1, QLatin1Char('\n'));
}

/// The button takes its caption from the action at each change of it; ours comes after.
void dressButton(QToolButton& button) {
  const auto caption = [&button] {
    if (button.defaultAction() == nullptr) return;
    button.setText(inTwoLines(button.defaultAction()->iconText()));
    button.setAccessibleName(button.defaultAction()->iconText());
  };
  caption();
  if (button.defaultAction() != nullptr) QObject::connect(button.defaultAction(), &QAction::changed, &button, caption);
  button.setFocusPolicy(Qt::TabFocus);
}

}  // namespace

MainMenus::MainMenus(QMainWindow& window, Workbench& workbench) : QObject(&window), workbench_(workbench) {
  makeCommands();
  makeMenus(*window.menuBar());
  makeToolbars(window);
  helpKey_ = new QAction(tr("Aiuto"), &window);
  helpKey_->setShortcut(QKeySequence(Qt::Key_F1));
  window.addAction(helpKey_);
  connect(helpKey_, &QAction::triggered, this, [this] { workbench_.showHelp(); });
}

void MainMenus::makeCommands() {
  for (const Command& command : commandTable()) {
    auto* action = new QAction(drawnIcon(command.icon), toQt(command.caption), this);
    action->setObjectName(QStringLiteral("cmdButton%1").arg(command.number));
    action->setIconText(buttonText(command));
    action->setEnabled(false);
    const int number = command.number;
    connect(action, &QAction::triggered, this, [this, number] { workbench_.EseguiComando(number); });
    commands_[number] = action;
  }
}

QAction* MainMenus::command(int number) const {
  const auto found = commands_.find(number);
  return found == commands_.end() ? nullptr : found->second;
}

QAction* MainMenus::entry(MenuAction action, int argument) const {
  const auto found = entries_.find({-1 - static_cast<int>(action), argument});
  return found == entries_.end() ? nullptr : found->second;
}

QAction* MainMenus::actionOf(const MenuEntry& entry) {
  if (entry.command >= 0) return command(entry.command);
  QAction*& action = entries_[{-1 - static_cast<int>(entry.action), entry.argument}];
  if (action == nullptr) {
    action = new QAction(this);
    connect(action, &QAction::triggered, this, [this, &entry] {
      workbench_.runEntry(entry);
      refresh();
    });
  }
  return action;
}

QMenu* MainMenus::submenu(QMenu& menu, const QString& title) {
  for (QAction* action : menu.actions()) {
    if (action->menu() != nullptr && action->data().toString() == title) return action->menu();
  }
  QMenu* made = menu.addMenu(title);
  made->menuAction()->setData(title);
  return made;
}

void MainMenus::makeMenus(QMenuBar& bar) {
  std::map<std::pair<MenuTab, std::string_view>, QMenu*> menus;
  std::map<QMenu*, QSet<QChar>> letters;
  for (const MenuEntry& entry : menuTable()) {
    QMenu*& menu = menus[{entry.tab, entry.menu}];
    if (menu == nullptr) {
      menu = bar.addMenu(QLatin1Char('&') + toQt(entry.menu));
      if (entry.tab != MenuTab::Every) editMenus_[entry.tab] = menu;
    }
    if (entry.entry == "-") {
      menu->addSeparator();
      continue;
    }
    const std::size_t cut = entry.entry.find(" / ");
    QMenu* into = cut == std::string_view::npos ? menu : submenu(*menu, toQt(entry.entry.substr(0, cut)));
    QAction* action = actionOf(entry);
    const EntryState state = workbench_.stateOf(entry);
    into->addAction(action);
    if (!entry.shortcut.empty()) action->setShortcut(QKeySequence(toQt(entry.shortcut), QKeySequence::PortableText));
    if (entry.action == MenuAction::EditLanguage) languageMenu_ = into;
    items_.push_back({&entry, action, freeLetter(toQt(state.text), letters[into])});
  }
  for (QMenu* menu : bar.findChildren<QMenu*>()) {
    QAction* action = menu->menuAction();
    auto* holder = qobject_cast<QMenu*>(menu->parent());
    if (holder != nullptr) action->setText(withMnemonic(menu->title(), freeLetter(menu->title(), letters[holder])));
  }
}

QToolBar* MainMenus::makeTabToolbar(QMainWindow& window, Tab tab) {
  auto* bar = new QToolBar(&window);
  bar->addSeparator();  // from the row of the shop, while both stand in one line
  for (const int number : buttonsOf(tab)) bar->addAction(command(number));
  toolbars_[tab] = bar;
  return bar;
}

void MainMenus::makeToolbars(QMainWindow& window) {
  auto* shop = new QToolBar(tr("Negozio"), &window);
  for (const int number : {50, 51, 52}) shop->addAction(command(number));
  shop->addSeparator();
  for (const MenuAction each : {MenuAction::Undo, MenuAction::Redo}) {
    QAction* action = entry(each);
    action->setIcon(drawnIcon(each == MenuAction::Undo ? "annulla" : "ripeti"));
    shop->addAction(action);
  }
  allToolbars_.push_back(shop);
  window.addToolBar(shop);
  for (const auto& [tab, title] :
       {std::pair{Tab::Departments, tr("Reparti")}, std::pair{Tab::Articles, tr("Articoli")}}) {
    QToolBar* bar = makeTabToolbar(window, tab);
    bar->setWindowTitle(title);
    allToolbars_.push_back(bar);
    window.addToolBar(bar);
  }
  for (QToolBar* bar : allToolbars_) {
    bar->setObjectName(QStringLiteral("barra") + bar->windowTitle());
    bar->setAccessibleName(bar->windowTitle());
    bar->setMovable(false);
    bar->toggleViewAction()->setVisible(false);
    bar->setIconSize(QSize(iconSize, iconSize));
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    for (auto* button : bar->findChildren<QToolButton*>()) dressButton(*button);
    // What opens the buttons that a narrow window has no room for.
    if (auto* more = bar->findChild<QToolButton*>(QStringLiteral("qt_toolbar_ext_button"))) {
      more->setAccessibleName(tr("Altri comandi"));
      more->setToolTip(tr("Altri comandi"));
    }
  }
}

QToolButton* MainMenus::makeLanguageButton(QWidget* parent) {
  languageButton_ = new QToolButton(parent);
  languageButton_->setObjectName(QStringLiteral("cboLingua"));
  languageButton_->setPopupMode(QToolButton::MenuButtonPopup);
  languageButton_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  languageButton_->setAutoRaise(true);
  languageButton_->setIconSize(QSize(30, 16));
  languageButton_->setFocusPolicy(Qt::TabFocus);
  languageButton_->setMenu(languageMenu_);
  languageButton_->setToolTip(tr("La lingua che si sta modificando"));
  // The whole button opens the list, not its arrow alone.
  connect(languageButton_, &QToolButton::clicked, languageButton_, &QToolButton::showMenu);
  return languageButton_;
}

void MainMenus::fit(QMainWindow& window) {
  int widest = 0;
  for (const auto& [of, bar] : toolbars_) widest = std::max(widest, bar->sizeHint().width());
  const bool apart = allToolbars_.front()->sizeHint().width() + widest > window.width();
  QToolBar* first = toolbars_.at(Tab::Departments);
  for (const auto& [of, bar] : toolbars_) bar->actions().front()->setVisible(!apart);
  if (apart == window.toolBarBreak(first)) return;
  if (apart) {
    window.insertToolBarBreak(first);
  } else {
    window.removeToolBarBreak(first);
  }
}

void MainMenus::refresh() {
  for (const Item& item : items_) {
    const EntryState state = workbench_.stateOf(*item.entry);
    item.action->setText(withMnemonic(toQt(state.text), item.mnemonic));
    item.action->setEnabled(state.enabled && state.visible);
    item.action->setVisible(state.visible);
    item.action->setCheckable(state.checkable);
    item.action->setChecked(state.checked);
  }
  for (const auto& [number, action] : commands_) {
    action->setEnabled(workbench_.isCommandEnabled(number));
    action->setIconText(buttonText(*commandOf(number)));
    const QString keys = action->shortcut().toString(QKeySequence::NativeText);
    action->setToolTip(keys.isEmpty() ? action->iconText() : action->iconText() + QStringLiteral(" (%1)").arg(keys));
  }
  for (const auto& [action, text] :
       {std::pair{MenuAction::Undo, tr("Annulla")}, std::pair{MenuAction::Redo, tr("Ripeti")}}) {
    entry(action)->setIconText(text);
    entry(action)->setToolTip(QString(entry(action)->text()).remove(QLatin1Char('&')));
  }
}

void MainMenus::showTab(Tab tab) {
  for (const auto& [of, menu] : editMenus_) menu->menuAction()->setVisible(of == menuOf(tab));
  for (const auto& [of, bar] : toolbars_) bar->setVisible(of == tab);
}

void MainMenus::showLanguages() {
  const Session& session = workbench_.session();
  const std::string folder = joinPath(workbench_.env().applicationFolder, "languages");
  for (int language = 1; language <= maxLanguages; ++language) {
    const std::string& name = session.languageNames[static_cast<std::size_t>(language - 1)];
    const QString flag = toQt(joinPath(folder, name));
    QAction* action = entry(MenuAction::EditLanguage, language);
    action->setIcon(name.empty() ? QIcon() : flagIcon(flag));
    if (language != session.currentLanguage) continue;
    languageButton_->setIcon(name.empty() ? QIcon() : flagBesideWords(flag));
    languageButton_->setText(toQt(name));
    languageButton_->setAccessibleName(tr("Lingua: ") + toQt(name));
  }
}

void MainMenus::lightButton(int number) {
  for (QToolBar* bar : allToolbars_) {
    QWidget* button = bar->widgetForAction(command(number));
    if (button == nullptr) continue;
    QPalette palette = button->palette();
    palette.setColor(QPalette::Button, litColour);
    palette.setColor(QPalette::ButtonText, Qt::black);
    button->setPalette(palette);
    button->setAutoFillBackground(true);
  }
  command(number)->setIcon(drawnIcon(commandOf(number)->icon, IconColours::Lit));
}

void MainMenus::unlightButtons() {
  for (QToolBar* bar : allToolbars_) {
    for (const auto& [number, action] : commands_) {
      QWidget* button = bar->widgetForAction(action);
      if (button == nullptr || !button->autoFillBackground()) continue;
      button->setAutoFillBackground(false);
      button->setPalette(QPalette());
      action->setIcon(drawnIcon(commandOf(number)->icon));
    }
  }
}

}  // namespace kv
