#include "shell/window/frm_menus.h"

#include <QAction>
#include <QActionGroup>
#include <QHelpEvent>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QSet>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QToolTip>
#include <algorithm>
#include <cstdlib>

#include "platform/files/files.h"
#include "platform/qt/frm_dialog.h"
#include "shell/window/look/frm_appearance.h"
#include "shell/window/look/frm_icons.h"
#include "shell/workbench/commands/language_commands.h"

namespace kv {
namespace {

constexpr int iconSize = 24;

/// The `Modifica` menu of a tab.
Menu editMenuOf(Tab tab) {
  switch (tab) {
    case Tab::Departments:
      return Menu::EditDepartments;
    case Tab::Articles:
      return Menu::EditArticles;
    case Tab::Site:
      return Menu::EditSite;
    case Tab::Internet:
      break;
  }
  return Menu::EditInternet;
}

bool isEditMenu(Menu menu) { return menu != Menu::File && menu != Menu::View && menu != Menu::Help; }

using TakenCharacters = std::map<const QMenu*, QSet<QChar>>;

/// The first character of the text that no entry of these menus answers to yet; none when all are taken.
QChar freeMnemonic(const QString& text, const std::vector<QMenu*>& menus, TakenCharacters& taken) {
  for (const QChar character : text) {
    const QChar lower = character.toLower();
    if (!character.isLetter() || std::ranges::any_of(menus, [&](QMenu* in) { return taken[in].contains(lower); }))
      continue;
    for (QMenu* in : menus) taken[in].insert(lower);
    return lower;
  }
  return {};
}

QString withMnemonic(const QString& text, QChar mnemonic) {
  if (text.contains(QLatin1Char('&')) || mnemonic.isNull()) return text;
  const auto index = text.indexOf(mnemonic, 0, Qt::CaseInsensitive);
  return index < 0 ? text : QString(text).insert(index, QLatin1Char('&'));
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

MainMenus::MainMenus(QMainWindow& window, Workbench& workbench)
    : QObject(&window), workbench_(workbench), window_(window) {
  makeActions(window);
  for (int menu = 0; menu < menuCount; ++menu) makeMenu(*window.menuBar(), static_cast<Menu>(menu));
  giveMnemonics();
  makeToolbars(window);
}

void MainMenus::makeActions(QMainWindow& window) {
  for (const Command& command : table().rows()) {
    auto* action = new QAction(toQt(command.caption), this);
    if (!command.icon.empty()) action->setIcon(drawnIcon(command.icon));
    if (!command.caption.empty()) action->setIconText(toQt(command.caption));
    if (!command.shortcut.empty())
      action->setShortcut(QKeySequence(toQt(command.shortcut), QKeySequence::PortableText));
    if (command.number >= 0) {
      action->setObjectName(QStringLiteral("cmdButton%1").arg(command.number));
      action->setEnabled(false);
    }
    // What is in no menu is reached by its key alone.
    if (command.menus.empty()) window.addAction(action);
    connect(action, &QAction::triggered, this, [this, &command] {
      if (command.number >= 0) return workbench_.commands().EseguiComando(command.number);
      workbench_.commands().choose(command);
      refresh();
    });
    actions_[command.name] = action;
    if (command.choice.empty()) continue;
    QActionGroup*& group = choices_[command.choice];
    if (group == nullptr) group = new QActionGroup(this);
    group->addAction(action);
  }
}

QAction* MainMenus::action(std::string_view name) const {
  const auto found = actions_.find(name);
  return found == actions_.end() ? nullptr : found->second;
}

QAction* MainMenus::command(int number) const {
  const Command* command = table().numbered(number);
  return command == nullptr ? nullptr : action(command->name);
}

const Command* MainMenus::commandOf(const QKeySequence& keys) const {
  for (const auto& [name, action] : actions_) {
    if (action->shortcut() != keys) continue;
    const Command& command = *table().named(name);
    const bool shows = std::ranges::any_of(command.menus, [this](const MenuPlace& place) {
      const auto edit = editMenus_.find(place.menu);
      return edit == editMenus_.end() || edit->second->menuAction()->isVisible();
    });
    if (shows || command.menus.empty()) return &command;
  }
  return nullptr;
}

bool MainMenus::eventFilter(QObject* watched, QEvent* event) {
  auto* menu = qobject_cast<QMenu*>(watched);
  if (menu == nullptr) return false;
  if (event->type() == QEvent::MouseMove) {
    const QAction* entry = menu->actionAt(static_cast<QMouseEvent*>(event)->position().toPoint());
    window_.statusBar()->showMessage(entry == nullptr ? QString() : entry->statusTip());
  }
  if (event->type() == QEvent::Hide) window_.statusBar()->clearMessage();
  if (event->type() != QEvent::ToolTip) return false;
  const auto& help = static_cast<const QHelpEvent&>(*event);
  const QAction* entry = menu->actionAt(help.pos());
  QToolTip::showText(help.globalPos(), entry == nullptr ? QString() : entry->statusTip(), menu);
  return true;
}

QMenu* MainMenus::submenu(QMenu& menu, const QString& title) {
  for (QAction* action : menu.actions()) {
    if (action->menu() != nullptr && action->data().toString() == title) return action->menu();
  }
  QMenu* made = menu.addMenu(title);
  made->menuAction()->setData(title);
  return made;
}

void MainMenus::makeMenu(QMenuBar& bar, Menu which) {
  QMenu* menu = bar.addMenu(QLatin1Char('&') + toQt(titleOf(which)));
  if (isEditMenu(which)) editMenus_[which] = menu;
  for (const MenuItem& item : table().entriesOf(which)) {
    if (item.command == nullptr) {
      menu->addSeparator();
      continue;
    }
    QMenu* into = item.place->submenu.empty() ? menu : submenu(*menu, toQt(item.place->submenu));
    QAction* entry = action(item.command->name);
    into->addAction(entry);
    if (item.command->name == languageCommand(1)) languageMenu_ = into;
    entries_.push_back({item, entry, into, {}});
  }
  menu->installEventFilter(this);
  for (QMenu* inner : menu->findChildren<QMenu*>()) inner->installEventFilter(this);
}

void MainMenus::giveMnemonics() {
  TakenCharacters taken;
  std::map<const QAction*, std::vector<QMenu*>> menus;
  for (const Entry& entry : entries_) menus[entry.action].push_back(entry.menu);
  std::map<const QAction*, QChar> given;
  for (Entry& entry : entries_) {
    const auto [place, isFirst] = given.try_emplace(entry.action);
    const std::string text = workbench_.commands().stateOf(*entry.item.command, entry.item.place).text;
    if (isFirst) place->second = freeMnemonic(toQt(text), menus[entry.action], taken);
    entry.mnemonic = place->second;
  }
  for (const QAction* top : window_.menuBar()->actions()) {
    for (QMenu* inner : top->menu()->findChildren<QMenu*>()) {
      inner->menuAction()->setText(withMnemonic(inner->title(), freeMnemonic(inner->title(), {top->menu()}, taken)));
    }
  }
}

QToolBar* MainMenus::makeToolbar(QMainWindow& window, Toolbar which, const QString& title) {
  auto* bar = new QToolBar(title, &window);
  if (which != Toolbar::Shop) bar->addSeparator();  // from the row of the shop, while both are in one line
  for (const Command* command : table().buttonsOf(which)) {
    if (command == nullptr) {
      bar->addSeparator();
    } else {
      bar->addAction(action(command->name));
    }
  }
  bar->setObjectName(QStringLiteral("barra") + title);
  bar->setAccessibleName(title);
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
  allToolbars_.push_back(bar);
  window.addToolBar(bar);
  return bar;
}

void MainMenus::makeToolbars(QMainWindow& window) {
  makeToolbar(window, Toolbar::Shop, tr("Negozio"));
  toolbars_[Tab::Departments] = makeToolbar(window, Toolbar::Departments, tr("Reparti"));
  toolbars_[Tab::Articles] = makeToolbar(window, Toolbar::Articles, tr("Articoli"));
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
  const WorkbenchCommands& commands = workbench_.commands();
  for (const Entry& entry : entries_) {
    const EntryState state = commands.stateOf(*entry.item.command, entry.item.place);
    entry.action->setText(withMnemonic(toQt(state.text), entry.mnemonic));
    entry.action->setEnabled(state.enabled && state.visible);
    entry.action->setStatusTip(toQt(state.why));
    entry.action->setVisible(state.visible);
    entry.action->setCheckable(state.checkable);
    entry.action->setChecked(state.checked);
  }
  for (const Command& command : table().rows()) {
    if (command.number >= 0) action(command.name)->setEnabled(commands.isEnabled(command));
    refreshButton(command);
  }
}

/// A button keeps its caption; what it points out is its key, or its text where that changes, and why it is off.
void MainMenus::refreshButton(const Command& command) {
  if (command.caption.empty() && command.number < 0) return;
  QAction& button = *action(command.name);
  button.setIconText(toQt(command.caption));
  const QString keys = button.shortcut().toString(QKeySequence::NativeText);
  QString tip = keys.isEmpty() ? button.iconText() : button.iconText() + QStringLiteral(" (%1)").arg(keys);
  if (command.text) tip = button.text().remove(QLatin1Char('&'));
  const std::string why = workbench_.commands().whyOff(command);
  if (!why.empty()) tip += QLatin1Char('\n') + toQt(why);
  button.setToolTip(tip);
}

void MainMenus::showTab(Tab tab) {
  for (const auto& [of, menu] : editMenus_) menu->menuAction()->setVisible(of == editMenuOf(tab));
  for (const auto& [of, bar] : toolbars_) bar->setVisible(of == tab);
}

void MainMenus::showLanguages() {
  const Session& session = workbench_.session();
  const std::string folder = entryPath(workbench_.env().applicationFolder, "languages");
  for (int language = 1; language <= maxLanguages; ++language) {
    const std::string& name = session.languageNames[static_cast<std::size_t>(language - 1)];
    const QString flag = toQt(joinPath(folder, name));
    action(languageCommand(language))->setIcon(name.empty() ? QIcon() : flagIcon(flag));
    if (language != session.currentLanguage) continue;
    languageButton_->setIcon(name.empty() ? QIcon() : flagBesideWords(flag));
    languageButton_->setText(toQt(name));
    languageButton_->setAccessibleName(tr("Lingua: ") + toQt(name));
  }
}

void MainMenus::lightButton(int number) {
  QAction* lit = command(number);
  for (QToolBar* bar : allToolbars_) {
    QWidget* button = bar->widgetForAction(lit);
    if (button == nullptr) continue;
    QPalette palette = button->palette();
    palette.setColor(QPalette::Button, litColour);
    palette.setColor(QPalette::ButtonText, Qt::black);
    button->setPalette(palette);
    button->setAutoFillBackground(true);
  }
  lit->setIcon(drawnIcon(table().numbered(number)->icon, IconColours::Lit));
}

void MainMenus::unlightButtons() {
  for (const Command& command : table().rows()) {
    if (command.toolbar.bar == Toolbar::None) continue;
    QAction* unlit = action(command.name);
    for (QToolBar* bar : allToolbars_) {
      QWidget* button = bar->widgetForAction(unlit);
      if (button == nullptr || !button->autoFillBackground()) continue;
      button->setAutoFillBackground(false);
      button->setPalette(QPalette());
      unlit->setIcon(drawnIcon(command.icon));
    }
  }
}

}  // namespace kv
