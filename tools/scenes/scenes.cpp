#include "scenes.h"

#include <QAbstractButton>
#include <QAbstractItemDelegate>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>
#include <array>

#include "platform/qt/frm_dialog.h"
#include "shell/dialogs/frm_about.h"

namespace kv::scenes {
namespace {

void takeDepartments(Stage& stage, const QString& name) {
  stage.show(Tab::Departments);
  stage.take(name);
}

/// The tree is on its root: nothing to edit yet.
void takeRoot(Stage& stage, const QString& name) {
  stage.show(Tab::Departments);
  const std::string department = stage.window().workbench().sets().department();
  stage.window().workbench().goToDepartment("###");
  stage.take(name);
  stage.window().workbench().goToDepartment(department);
}

void takeArticles(Stage& stage, const QString& name) {
  goToArticle(stage);
  stage.take(name);
}

void takePriceList(Stage& stage, const QString& name) {
  goToArticle(stage);
  stage.window().workbench().selectListino(3);
  stage.take(name);
  stage.window().workbench().selectListino(0);
}

/// A price typed in the list that is none: the former one again, with its mark and the reason.
void takeCell(Stage& stage, const QString& name) {
  goToArticle(stage);
  ArticleList& list = stage.window().articles();
  list.setFocus();
  list.editCell(ArticleModel::Price);
  auto* cell = list.findChild<QLineEdit*>(QStringLiteral("txtCella"));
  cell->selectAll();
  cell->insert(QStringLiteral("1,2,3"));
  emit cell->textEdited(cell->text());
  emit list.itemDelegate()->commitData(cell);
  stage.take(name);
  emit list.itemDelegate()->closeEditor(cell, QAbstractItemDelegate::RevertModelCache);
}

void takeColumns(Stage& stage, const QString& name) {
  goToArticle(stage);
  auto* menu = stage.window().findChild<QMenu*>(QStringLiteral("menuColonne"));
  const QTableView& list = stage.window().articles();
  menu->popup(list.mapToGlobal(QPoint(0, 0)));
  stage.take(name);
  menu->hide();
}

void takeEmptyDepartment(Stage& stage, const QString& name) {
  stage.show(Tab::Articles);
  stage.window().workbench().goToDepartment("cat001");
  stage.take(name);
}

void takeNoArticle(Stage& stage, const QString& name) {
  stage.show(Tab::Articles);
  const std::string department = stage.window().workbench().sets().department();
  stage.window().workbench().goToDepartment("###");
  stage.take(name);
  stage.window().workbench().goToDepartment(department);
}

void takeSecondLanguage(Stage& stage, const QString& name) {
  stage.show(Tab::Departments);
  stage.choose("language.2");
  stage.take(name);
  stage.choose("language.1");
}

void takeHiddenDetails(Stage& stage, const QString& name) {
  goToArticle(stage);
  stage.choose("details.hide");
  stage.take(name);
  stage.choose("details.hide");
}

/// A page that is longer than the window: from the part at `share` of its length.
void takeScrolled(Stage& stage, Tab tab, double share, const QString& name) {
  stage.show(tab);
  QScrollBar* bar = stage.window().page(tab).verticalScrollBar();
  bar->setValue(static_cast<int>(bar->maximum() * share));
  stage.take(name);
  bar->setValue(0);
}

void takeSite(Stage& stage, const QString& name) { takeScrolled(stage, Tab::Site, 0, name); }
void takeSiteMiddle(Stage& stage, const QString& name) { takeScrolled(stage, Tab::Site, 0.5, name); }
void takeSiteEnd(Stage& stage, const QString& name) { takeScrolled(stage, Tab::Site, 1, name); }
void takeInternet(Stage& stage, const QString& name) { takeScrolled(stage, Tab::Internet, 0, name); }

void takeTexts(Stage& stage, const QString& name) {
  stage.show(Tab::Site);
  EditorPage& page = stage.window().page(Tab::Site);
  auto* strip = page.findChild<QTabBar*>(QStringLiteral("tabTesti"));
  strip->setCurrentIndex(4);
  Stage::processEvents();
  page.ensureWidgetVisible(strip->parentWidget());
  stage.take(name);
  strip->setCurrentIndex(0);
  page.verticalScrollBar()->setValue(0);
}

void takeMenu(Stage& stage, const QString& title, const QString& name) {
  QMenuBar& bar = *stage.window().menuBar();
  for (QAction* action : bar.actions()) {
    if (!action->isVisible() || action->text().remove(QLatin1Char('&')) != title) continue;
    QMenu& menu = *action->menu();
    menu.popup(bar.mapToGlobal(bar.actionGeometry(action).bottomLeft()));
    stage.take(name);
    menu.hide();
    return;
  }
}

void takeFileMenu(Stage& stage, const QString& name) { takeMenu(stage, QStringLiteral("File"), name); }
void takeViewMenu(Stage& stage, const QString& name) { takeMenu(stage, QStringLiteral("Visualizza"), name); }
void takeHelpMenu(Stage& stage, const QString& name) { takeMenu(stage, QStringLiteral("?"), name); }
void takeEditMenuOf(Stage& stage, Tab tab, const QString& name) {
  stage.show(tab);
  takeMenu(stage, QStringLiteral("Modifica"), name);
}
void takeDepartmentMenu(Stage& stage, const QString& name) { takeEditMenuOf(stage, Tab::Departments, name); }
void takeArticleMenu(Stage& stage, const QString& name) { takeEditMenuOf(stage, Tab::Articles, name); }
void takeSiteMenu(Stage& stage, const QString& name) { takeEditMenuOf(stage, Tab::Site, name); }
void takeInternetMenu(Stage& stage, const QString& name) { takeEditMenuOf(stage, Tab::Internet, name); }

void takeLanguageMenu(Stage& stage, const QString& name) {
  stage.show(Tab::Departments);
  auto* button = stage.window().findChild<QToolButton*>(QStringLiteral("cboLingua"));
  QMenu& menu = *button->menu();
  menu.popup(button->mapToGlobal(QPoint(0, button->height())));
  stage.take(name);
  menu.hide();
}

void takeTemplate(Stage& stage, const QString& name) { takeEntry(stage, "template", name); }
void takeLanguages(Stage& stage, const QString& name) { takeEntry(stage, "languages", name); }
void takeTags(Stage& stage, const QString& name) { takeEntry(stage, "customTags", name); }
void takeFolders(Stage& stage, const QString& name) { takeEntry(stage, "shop.folders", name); }
void takeCopies(Stage& stage, const QString& name) { takeEntry(stage, "shop.restoreCopy", name); }
void takeDoctor(Stage& stage, const QString& name) { takeEntry(stage, "doctor", name); }
void takeHistory(Stage& stage, const QString& name) { takeEntry(stage, "history", name); }
void takeAbout(Stage& stage, const QString& name) { takeEntry(stage, "help.about", name); }
void takeCleaning(Stage& stage, const QString& name) { takeEntry(stage, "shop.cleanFolders", name); }

void takeNewTag(Stage& stage, const QString& name) {
  stage.during([&] { stage.choose("customTags"); },
               [&](QWidget& dialog) {
                 dialog.findChild<QAbstractButton*>(QStringLiteral("cmdNuovo"))->click();
                 dialog.findChild<QLineEdit*>(QStringLiteral("txtNome"))->setFocus();
                 stage.take(name);
               });
}

void takeSearch(Stage& stage, const QString& text, const QString& name) {
  stage.show(Tab::Articles);
  stage.during([&] { stage.choose("article.search"); },
               [&](QWidget& dialog) {
                 for (auto* field : dialog.findChildren<QAbstractButton*>()) {
                   if (field->objectName() == QStringLiteral("opt_titolo")) field->click();
                 }
                 dialog.findChild<QLineEdit*>(QStringLiteral("txtTesto"))->setText(text);
                 if (!text.isEmpty()) dialog.findChild<QAbstractButton*>(QStringLiteral("cmdCerca"))->click();
                 stage.take(name);
               });
}
void takeSearchStart(Stage& stage, const QString& name) { takeSearch(stage, QString(), name); }
void takeSearchHits(Stage& stage, const QString& name) { takeSearch(stage, QStringLiteral("taz"), name); }
void takeSearchNone(Stage& stage, const QString& name) { takeSearch(stage, QStringLiteral("astronave"), name); }

constexpr int mostBuilds = 5;

/// Runs a build; its window is looked at whenever the build lets the events through, until `seen` is done with it.
/// Whatever it opens is closed, wanted or not. False when it came to its end unseen.
bool playBuild(Stage& stage, const std::function<bool(QDialog&, const QProgressBar*)>& seen) {
  QTimer poll;
  bool done = false;
  QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
    auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (modal == nullptr) return;
    const auto* bar = modal->findChild<QProgressBar*>();
    if (!done) done = seen(*modal, bar);
    if (done || bar == nullptr) modal->reject();
  });
  poll.start(1);
  stage.choose("build");
  return done;
}

/// A build lets the events through a few times in a second: a quick one may have none in its later part.
void takeBuild(Stage& stage, const QString& name) {
  for (int build = 1; build <= mostBuilds; ++build) {
    const bool taken = playBuild(stage, [&](QDialog&, const QProgressBar* bar) {
      if (bar == nullptr || bar->maximum() == 0 || bar->value() * 3 * build < bar->maximum()) return false;
      stage.take(name);
      return true;
    });
    if (taken) return;
  }
  stage.fail(name + QStringLiteral(": each build ended before it was seen"));
}

/// What the build says at its end.
void takeBuilt(Stage& stage, const QString& name) {
  const bool taken = playBuild(stage, [&](QDialog&, const QProgressBar* bar) {
    if (bar != nullptr) return false;
    stage.take(name);
    return true;
  });
  if (!taken) stage.fail(name + QStringLiteral(": the build said nothing at its end"));
}

void takeReminder(Stage& stage, const QString& name) {
  const WorkbenchDialogs& dialogs = stage.window().workbench().ports().dialogs;
  stage.during([&] { ignore(dialogs.remindToBuild(), "the picture is all that counts"); },
               [&](QWidget&) { stage.take(name); });
}

/// Deleting a department with articles asks; the answer is No.
void takeQuestion(Stage& stage, const QString& name) {
  constexpr const char* leafWithArticles =
      "SELECT catID FROM articoli WHERE catID NOT IN (SELECT genitore FROM categorie WHERE genitore IS NOT NULL)"
      " GROUP BY catID ORDER BY COUNT(*) DESC, catID";
  Workbench& workbench = stage.window().workbench();
  const std::string before = workbench.sets().department();
  const auto department = stage.session().catalogue.scalar(leafWithArticles);
  stage.show(Tab::Departments);
  workbench.goToDepartment(department ? asText(*department) : std::string());
  Stage::processEvents();
  takeEntry(stage, "department.delete", name);
  workbench.goToDepartment(before);
}

/// The back office of a shop that has no address yet.
void takeMessage(Stage& stage, const QString& name) {
  const Editor& address = *editorOf(EditedSet::Generale, "URL");
  Workbench& workbench = stage.window().workbench();
  const bool hasAddress = !workbench.shown(address).empty();
  if (hasAddress) workbench.leaveField(address, "");
  takeEntry(stage, "backOffice", name);
  if (hasAddress) stage.choose("undo");
}

void takeFolderChoice(Stage& stage, const QString& name) { takeEntry(stage, "shop.open", name); }

void takeGuideStep(Stage& stage, const char* step, const QString& name) {
  const QRect before = stage.window().geometry();
  stage.choose("help.introduction");
  auto* guide = stage.window().findChild<QDialog*>(QStringLiteral("frmIntro"));
  if (step != nullptr) guide->findChild<QAbstractButton*>(QString::fromUtf8(step))->click();
  stage.take(name);
  guide->close();
  Stage::processEvents();
  stage.window().setGeometry(before);
  Stage::processEvents();
}
void takeGuide(Stage& stage, const QString& name) { takeGuideStep(stage, nullptr, name); }
void takeGuideButtons(Stage& stage, const QString& name) { takeGuideStep(stage, "cmdStep0", name); }
void takeGuideFields(Stage& stage, const QString& name) { takeGuideStep(stage, "cmdStep3", name); }
void takeGuideBuild(Stage& stage, const QString& name) { takeGuideStep(stage, "cmdStep7", name); }

void takeSplash(Stage& stage, const QString& name) {
  stage.show(Tab::Departments);
  frmAbout::showSplash(&stage.window());
  stage.take(name);
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->windowFlags().testFlag(Qt::SplashScreen)) window->close();
  }
  Stage::processEvents();
}

/// The narrowest main window.
void takeNarrow(Stage& stage, const QString& name) {
  const QRect before = stage.window().geometry();
  stage.show(Tab::Departments);
  stage.window().resize(stage.window().minimumSize());
  stage.take(name);
  stage.window().setGeometry(before);
}

}  // namespace

std::span<const Scene> windowScenes() {
  static constexpr std::array scenes{Scene{"reparti", takeDepartments},
                                     Scene{"reparti-radice", takeRoot},
                                     Scene{"reparti-lingua-2", takeSecondLanguage},
                                     Scene{"articoli", takeArticles},
                                     Scene{"articoli-listino-3", takePriceList},
                                     Scene{"articoli-cella", takeCell},
                                     Scene{"articoli-colonne", takeColumns},
                                     Scene{"articoli-vuoto", takeEmptyDepartment},
                                     Scene{"articoli-nessuno", takeNoArticle},
                                     Scene{"articoli-senza-dettagli", takeHiddenDetails},
                                     Scene{"sito", takeSite},
                                     Scene{"sito-meta", takeSiteMiddle},
                                     Scene{"sito-fine", takeSiteEnd},
                                     Scene{"sito-testi", takeTexts},
                                     Scene{"internet", takeInternet},
                                     Scene{"menu-file", takeFileMenu},
                                     Scene{"menu-modifica-reparti", takeDepartmentMenu},
                                     Scene{"menu-modifica-articoli", takeArticleMenu},
                                     Scene{"menu-modifica-sito", takeSiteMenu},
                                     Scene{"menu-modifica-internet", takeInternetMenu},
                                     Scene{"menu-visualizza", takeViewMenu},
                                     Scene{"menu-aiuto", takeHelpMenu},
                                     Scene{"menu-lingua", takeLanguageMenu},
                                     Scene{"template", takeTemplate},
                                     Scene{"lingue", takeLanguages},
                                     Scene{"tag", takeTags},
                                     Scene{"tag-nuovo", takeNewTag},
                                     Scene{"cartelle", takeFolders},
                                     Scene{"copie", takeCopies},
                                     Scene{"controllo", takeDoctor},
                                     Scene{"cronologia", takeHistory},
                                     Scene{"cerca", takeSearchStart},
                                     Scene{"cerca-trovati", takeSearchHits},
                                     Scene{"cerca-nessuno", takeSearchNone},
                                     Scene{"informazioni", takeAbout},
                                     Scene{"apertura", takeSplash},
                                     Scene{"avviso", takeReminder},
                                     Scene{"domanda", takeQuestion},
                                     Scene{"domanda-pulizia", takeCleaning},
                                     Scene{"messaggio", takeMessage},
                                     Scene{"scelta-cartella", takeFolderChoice},
                                     Scene{"guida", takeGuide},
                                     Scene{"guida-reparti", takeGuideButtons},
                                     Scene{"guida-internet", takeGuideFields},
                                     Scene{"guida-costruisci", takeGuideBuild},
                                     Scene{"costruzione", takeBuild},
                                     Scene{"costruito", takeBuilt},
                                     Scene{"stretta", takeNarrow}};
  return scenes;
}

}  // namespace kv::scenes
