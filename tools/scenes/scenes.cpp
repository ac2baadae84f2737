#include "scenes.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QScrollBar>
#include <QTabBar>
#include <QTimer>
#include <QToolButton>
#include <array>

#include "platform/qt/frm_dialog.h"
#include "shell/dialogs/frm_about.h"
#include "shell/dialogs/frm_avviso.h"

namespace kv::scenes {
namespace {

constexpr int buildCommand = 50;

const char* const noBackOffice =
    "Il BackOffice non è disponibile finché non si costruisce ed aggiorna il negozio per la prima volta.\n"
    "Indicarne l'URL nella scheda \"Internet\", quindi costruire ed aggiornare il negozio.";
const char* const askDelete = "Eliminare il reparto selezionato e tutti gli articoli che contiene?";

void takeDepartments(Stage& stage, const QString& name) {
  stage.show(Tab::Departments);
  stage.take(name);
}

/// The tree stands on its root: nothing to edit yet.
void takeRoot(Stage& stage, const QString& name) {
  stage.show(Tab::Departments);
  const std::string department = stage.window().workbench().sets().department();
  stage.window().workbench().goToDepartment("###");
  stage.take(name);
  stage.window().workbench().goToDepartment(department);
}

/// To the department of the shop with the most articles, and to one of them.
void goToArticle(Stage& stage) {
  constexpr const char* fullest = "SELECT catID FROM articoli GROUP BY catID ORDER BY COUNT(*) DESC, catID";
  const auto department = stage.session().catalogue.scalar(fullest);
  stage.show(Tab::Articles);
  stage.window().workbench().goToDepartment(department ? asText(*department) : std::string());
  stage.window().workbench().goToArticlePlace(0);
  Stage::settle();
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
  stage.choose(MenuAction::EditLanguage, 2);
  stage.take(name);
  stage.choose(MenuAction::EditLanguage, 1);
}

void takeHiddenDetails(Stage& stage, const QString& name) {
  goToArticle(stage);
  stage.choose(MenuAction::HideDetails);
  stage.take(name);
  stage.choose(MenuAction::HideDetails);
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
  Stage::settle();
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

void takeEntry(Stage& stage, MenuAction action, const QString& name) {
  stage.during([&] { stage.choose(action); }, [&](QWidget&) { stage.take(name); });
}
void takeTemplate(Stage& stage, const QString& name) { takeEntry(stage, MenuAction::ChooseTemplate, name); }
void takeLanguages(Stage& stage, const QString& name) { takeEntry(stage, MenuAction::Languages, name); }
void takeTags(Stage& stage, const QString& name) { takeEntry(stage, MenuAction::CustomTags, name); }
void takeFolders(Stage& stage, const QString& name) { takeEntry(stage, MenuAction::ChangeFolders, name); }
void takeCopies(Stage& stage, const QString& name) { takeEntry(stage, MenuAction::RestoreCopy, name); }
void takeAbout(Stage& stage, const QString& name) { takeEntry(stage, MenuAction::About, name); }
void takeCleaning(Stage& stage, const QString& name) { takeEntry(stage, MenuAction::CleanFolders, name); }

void takeNewTag(Stage& stage, const QString& name) {
  stage.during([&] { stage.choose(MenuAction::CustomTags); },
               [&](QWidget& dialog) {
                 dialog.findChild<QAbstractButton*>(QStringLiteral("cmdNuovo"))->click();
                 dialog.findChild<QLineEdit*>(QStringLiteral("txtNome"))->setFocus();
                 stage.take(name);
               });
}

void takeSearch(Stage& stage, const QString& text, const QString& name) {
  stage.show(Tab::Articles);
  stage.during([&] { stage.window().workbench().EseguiComando(21); },
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

/// Runs a build; its window is looked at whenever the build lets the events through, until `seen` is done with it.
void playBuild(Stage& stage, const std::function<bool(QDialog&, const QProgressBar*)>& seen) {
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
    auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (modal == nullptr || !seen(*modal, modal->findChild<QProgressBar*>())) return;
    poll.stop();
    modal->reject();
  });
  poll.start(1);
  stage.window().workbench().EseguiComando(buildCommand);
}

void takeBuild(Stage& stage, const QString& name) {
  playBuild(stage, [&](QDialog&, const QProgressBar* bar) {
    if (bar == nullptr || bar->maximum() == 0 || bar->value() * 3 < bar->maximum()) return false;
    stage.take(name);
    return true;
  });
}

/// What is said at the end of it.
void takeBuilt(Stage& stage, const QString& name) {
  playBuild(stage, [&](QDialog&, const QProgressBar* bar) {
    if (bar != nullptr) return false;
    stage.take(name);
    return true;
  });
}

void takeReminder(Stage& stage, const QString& name) {
  stage.during(
      [&] {
        frmAvviso dialog(stage.settings(), &stage.window());
        dialog.exec();
      },
      [&](QWidget&) { stage.take(name); });
}

void takeQuestion(Stage& stage, const QString& name) {
  stage.show(Tab::Departments);
  stage.during(
      [&] {
        static_cast<void>(stage.user().question({askDelete, Buttons::YesNo, Answer::No, Icon::Question}));
      },
      [&](QWidget&) { stage.take(name); });
}

void takeMessage(Stage& stage, const QString& name) {
  stage.during([&] { stage.user().message(noBackOffice, Icon::Exclamation); }, [&](QWidget&) { stage.take(name); });
}

void takeFolderChoice(Stage& stage, const QString& name) {
  stage.during(
      [&] {
        static_cast<void>(
            stage.user().chooseFolder("Selezionare la cartella del negozio:", stage.session().ShopFolder));
      },
      [&](QWidget&) { stage.take(name); });
}

void takeGuideStep(Stage& stage, const char* step, const QString& name) {
  const QRect place = stage.window().geometry();
  stage.choose(MenuAction::Introduction);
  auto* guide = stage.window().findChild<QDialog*>(QStringLiteral("frmIntro"));
  if (step != nullptr) guide->findChild<QAbstractButton*>(QString::fromUtf8(step))->click();
  stage.take(name);
  guide->close();
  Stage::settle();
  stage.window().setGeometry(place);
  Stage::settle();
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
  Stage::settle();
}

/// The narrowest main window.
void takeNarrow(Stage& stage, const QString& name) {
  const QRect place = stage.window().geometry();
  stage.show(Tab::Departments);
  stage.window().resize(stage.window().minimumSize());
  stage.take(name);
  stage.window().setGeometry(place);
}

}  // namespace

std::span<const Scene> sceneTable() {
  static constexpr std::array scenes{Scene{"reparti", takeDepartments},
                                     Scene{"reparti-radice", takeRoot},
                                     Scene{"reparti-lingua-2", takeSecondLanguage},
                                     Scene{"articoli", takeArticles},
                                     Scene{"articoli-listino-3", takePriceList},
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
