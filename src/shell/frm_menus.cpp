#include "shell/frm_menus.h"

#include <QAction>
#include <QFile>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QToolBar>
#include <QToolButton>
#include <array>

#include "platform/files.h"
#include "platform/frm_dialog.h"

/// Icons live in a library, whose resources nothing else would bring to life.
static void bringIcons() { Q_INIT_RESOURCE(icons); }

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

}  // namespace

QIcon MainMenus::icon(std::string_view name) {
  const QString path = QStringLiteral(":/icons/") + toQt(name) + QStringLiteral(".svg");
  return QFile::exists(path) ? QIcon(path) : QIcon();
}

MainMenus::MainMenus(QMainWindow& window, Workbench& workbench) : QObject(&window), workbench_(workbench) {
  bringIcons();
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
    auto* action = new QAction(icon(command.icon), toQt(command.caption), this);
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
    action->setIcon(icon(each == MenuAction::Undo ? "annulla" : "ripeti"));
    shop->addAction(action);
  }
  makeLanguageButton(*shop);
  allToolbars_.push_back(shop);
  window.addToolBar(shop);
  window.addToolBarBreak();
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
    for (auto* button : bar->findChildren<QToolButton*>()) button->setFocusPolicy(Qt::TabFocus);
  }
}

void MainMenus::makeLanguageButton(QToolBar& bar) {
  auto* gap = new QWidget(&bar);
  gap->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  bar.addWidget(gap);
  languageButton_ = new QToolButton(&bar);
  languageButton_->setObjectName(QStringLiteral("cboLingua"));
  languageButton_->setPopupMode(QToolButton::InstantPopup);
  languageButton_->setMenu(languageMenu_);
  languageButton_->setToolTip(tr("La lingua che si sta modificando"));
  bar.addWidget(languageButton_);
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
  const std::string folder = joinPath(workbench_.surroundings().applicationFolder, "languages");
  for (int language = 1; language <= maxLanguages; ++language) {
    const std::string& name = session.languageNames[static_cast<std::size_t>(language - 1)];
    const QString flag = toQt(joinPath(folder, name + ".gif"));
    QAction* action = entry(MenuAction::EditLanguage, language);
    const QIcon picture = !name.empty() && QFile::exists(flag) ? QIcon(flag) : QIcon();
    action->setIcon(picture);
    if (language != session.currentLanguage) continue;
    languageButton_->setIcon(picture);
    languageButton_->setText(toQt(name));
    languageButton_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    languageButton_->setAccessibleName(tr("Lingua: ") + toQt(name));
  }
}

void MainMenus::lightButton(int number) {
  for (QToolBar* bar : allToolbars_) {
    QWidget* button = bar->widgetForAction(command(number));
    if (button == nullptr) continue;
    button->setStyleSheet(
        QStringLiteral("QToolButton { background-color: #b9f2b0; color: black; border-radius: 4px; }"));
  }
  command(number)->setIcon(icon(std::string(commandOf(number)->icon) + "-acceso").isNull()
                               ? icon(commandOf(number)->icon)
                               : icon(std::string(commandOf(number)->icon) + "-acceso"));
}

void MainMenus::unlightButtons() {
  for (QToolBar* bar : allToolbars_) {
    for (const auto& [number, action] : commands_) {
      QWidget* button = bar->widgetForAction(action);
      if (button == nullptr || button->styleSheet().isEmpty()) continue;
      button->setStyleSheet(QString());
      action->setIcon(icon(commandOf(number)->icon));
    }
  }
}

}  // namespace kv
