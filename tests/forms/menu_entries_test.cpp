// The menus as they stand on the screen: entries, order, keys, marks, and that each entry does something or is off.

#include "forms/driven_window.h"

namespace kv::test {
namespace {

class Menus : public DrivenWindow {
 protected:
  /// The lines of a menu: submenus as "Sposta > Su", separators as "-".
  static QStringList lines(const QMenu& menu, const QString& front = {}) {
    QStringList text;
    for (const QAction* action : menu.actions()) {
      if (!action->isVisible()) continue;
      if (action->isSeparator()) {
        text.append(front + "-");
      } else if (action->menu() != nullptr) {
        text += lines(*action->menu(), front + plain(action->menu()->title()) + " > ");
      } else {
        text.append(front + plain(action->text()));
      }
    }
    return text;
  }
  QMenu* menu(const QString& title) {
    for (const QAction* action : window->menuBar()->actions()) {
      if (action->isVisible() && plain(action->text()) == title) return action->menu();
    }
    return nullptr;
  }
  QStringList entries(const QString& title) {
    QStringList text = lines(*menu(title));
    text.removeAll(QStringLiteral("-"));
    return text;
  }
  std::string on(const QString& title) {
    std::string text;
    const std::function<void(const QMenu&)> walk = [&](const QMenu& in) {
      for (const QAction* action : in.actions()) {
        if (action->menu() != nullptr) {
          walk(*action->menu());
        } else if (!action->isSeparator() && action->isVisible() && action->isEnabled()) {
          text += fromQt(plain(action->text())) + ";";
        }
      }
    };
    walk(*menu(title));
    return text;
  }
};

TEST_F(Menus, TheFileMenuHasItsEntriesInOrder) {
  write(joinPath(application, "ogg.exe"), "");
  write(joinPath(application, "ordsync.exe"), "");
  write(joinPath(application, "gwimp.exe"), "");
  open();
  EXPECT_EQ(lines(*menu("File")), QStringList({"Nuovo negozio..",
                                               "Apri negozio...",
                                               "Esporta negozio per Korvane Banco",
                                               "Importa negozio Primo...",
                                               "Ripristina una copia...",
                                               "-",
                                               "Cambia le cartelle di lavoro...",
                                               "Pulisci le cartelle di lavoro...",
                                               "Rimuovi immagini inutilizzate...",
                                               "-",
                                               "Configura lingue...",
                                               "Replica lingue...",
                                               "-",
                                               "Replica listino...",
                                               "-",
                                               "Tag personalizzati...",
                                               "-",
                                               "Scegli il template...",
                                               "Impostazioni costruzione...",
                                               "Costruisci il negozio",
                                               "Aggiorna il sito...",
                                               "BackOffice...",
                                               "-",
                                               "Importa da Orsa Gestionale...",
                                               "Aggiorna giacenze da Orsa Gestionale...",
                                               "Scarica ordini...",
                                               "Importa da Orsa Gestionale con gwimp...",
                                               "-",
                                               "Esci"}));
}

TEST_F(Menus, TheEditMenuIsTheOneOfTheTab) {
  open();
  EXPECT_EQ(entries("Modifica"),
            QStringList({"Annulla", "Ripeti", "Sposta > Su", "Sposta > Giu", "Aggiungi > Prima", "Aggiungi > Dopo",
                         "Aggiungi > Sottoreparto", "Copia", "Incolla", "Elimina", "Imposta immagine",
                         "Elimina immagine", "Imposta immagine pulsante", "Elimina immagine pulsante",
                         "Imposta logo negozio > normale", "Imposta logo negozio > piccolo",
                         "Elimina logo negozio > normale", "Elimina logo negozio > piccolo", "Modifica prezzi..."}));
  goTab(Tab::Articles);
  EXPECT_EQ(entries("Modifica"), QStringList({"Annulla",
                                              "Ripeti",
                                              "Sposta > Su",
                                              "Sposta > Giu",
                                              "Aggiungi > Prima",
                                              "Aggiungi > Dopo",
                                              "Copia",
                                              "Incolla",
                                              "Elimina",
                                              "Ricerca...",
                                              "Definisci varianti > 1",
                                              "Definisci varianti > 2",
                                              "Definisci varianti > 3",
                                              "Definisci varianti > 4",
                                              "Imposta immagine > 1",
                                              "Imposta immagine > 2",
                                              "Imposta immagine > piccola",
                                              "Elimina immagine > 1",
                                              "Elimina immagine > 2",
                                              "Elimina immagine > piccola",
                                              "Imposta logo negozio > normale",
                                              "Imposta logo negozio > piccolo",
                                              "Elimina logo negozio > normale",
                                              "Elimina logo negozio > piccolo",
                                              "Modifica prezzi..."}));
  goTab(Tab::Site);
  EXPECT_EQ(entries("Modifica"),
            QStringList({"Annulla", "Ripeti", "Spese di spedizione...", "Sistemi di pagamento...",
                         "Testo e-mail di conferma...", "Impostazioni vetrina...", "Campi obbligatori..."}));
  goTab(Tab::Internet);
  EXPECT_EQ(entries("Modifica"), QStringList({"Annulla", "Ripeti", "Cartella FTP del negozio...",
                                              "Cartella FTP script CGI...", "Impostazioni avanzate..."}));
}

TEST_F(Menus, TheViewAndHelpMenusHaveTheirEntriesInOrder) {
  write(joinPath(application, "manuale_template2.pdf"), "");
  open();
  EXPECT_EQ(entries("Visualizza"),
            QStringList({"Reparti", "Articoli", "Sito", "Internet", "Lingua > 1 - italiano", "Lingua > 2 - inglese",
                         "Espandi tutti i reparti", "Comprimi tutti i reparti", "Nascondi dettagli",
                         "Aspetto > Come il sistema", "Aspetto > Chiaro", "Aspetto > Scuro"}));
  EXPECT_EQ(entries("?"), QStringList({"Sommario...", "Domande frequenti...", "Introduzione...", "Guida ai template...",
                                       "Aggiornamenti online...", "Informazioni su..."}));
}

TEST_F(Menus, TheEntriesOfCompanionsAndManualAreHiddenWithoutTheirFiles) {
  open();
  for (const char* hidden :
       {"Aggiorna giacenze da Orsa Gestionale...", "Scarica ordini...", "Importa da Orsa Gestionale con gwimp..."}) {
    EXPECT_FALSE(entries("File").contains(hidden)) << hidden;
  }
  EXPECT_FALSE(entries("?").contains("Guida ai template..."));
}

TEST_F(Menus, OneLanguageShowsOneEntryAndFourShowFour) {
  run(shop, "UPDATE lingue SET lingua2 = ''");
  open();
  answer("frmReplica", "");
  EXPECT_EQ(entries("Visualizza").filter("Lingua"), QStringList({"Lingua > 1 - italiano"}));
  EXPECT_FALSE(window->menus().entry(MenuAction::ReplicateLanguages)->isEnabled());
  ASSERT_TRUE(
      session.catalogue.execute("UPDATE lingue SET lingua2 = 'inglese', lingua3 = 'francese', lingua4 = 'tedesco'"));
  ASSERT_TRUE(readLanguages(session));
  window->workbench().MostraLingue();
  settle();
  EXPECT_EQ(entries("Visualizza").filter("Lingua"), QStringList({"Lingua > 1 - italiano", "Lingua > 2 - inglese",
                                                                 "Lingua > 3 - francese", "Lingua > 4 - tedesco"}));
  EXPECT_TRUE(window->menus().entry(MenuAction::ReplicateLanguages)->isEnabled());
}

TEST_F(Menus, TheMarksStandAtTabLanguageAndHiddenDetails) {
  open();
  const auto marks = [this] {
    settle();
    QStringList text;
    for (int tab = 0; tab < tabCount; ++tab) {
      if (window->menus().entry(MenuAction::ShowTab, tab)->isChecked())
        text.append(entryText(MenuAction::ShowTab, tab));
    }
    for (int n = 1; n <= 4; ++n) {
      if (window->menus().entry(MenuAction::EditLanguage, n)->isChecked()) text.append(QString::number(n));
    }
    if (window->menus().entry(MenuAction::HideDetails)->isChecked()) text.append("nascosti");
    return text;
  };
  EXPECT_EQ(marks(), QStringList({"Reparti", "1"}));
  EXPECT_TRUE(choose(MenuAction::ShowTab, 1));
  EXPECT_TRUE(choose(MenuAction::EditLanguage, 2));
  EXPECT_TRUE(choose(MenuAction::HideDetails));
  EXPECT_EQ(marks(), QStringList({"Articoli", "2", "nascosti"}));
  EXPECT_FALSE(window->page(Tab::Articles).isVisible());
  EXPECT_TRUE(choose(MenuAction::ShowTab, 1)) << "chosen again, the mark stays";
  EXPECT_TRUE(choose(MenuAction::HideDetails));
  EXPECT_TRUE(choose(MenuAction::ShowTab, 3));
  EXPECT_EQ(marks(), QStringList({"Internet", "2"}));
}

TEST_F(Menus, EveryEntryShowsTheKeyThatRunsIt) {
  open();
  QMap<QString, QStringList> keys;
  for (const MenuEntry& entry : menuTable()) {
    if (entry.entry == "-") continue;
    const QAction* action = entry.command >= 0 ? window->menus().command(entry.command)
                                               : window->menus().entry(entry.action, entry.argument);
    EXPECT_EQ(action->shortcut().toString(), toQt(entry.shortcut)) << entry.entry;
    if (entry.shortcut.empty() || action->shortcutContext() != Qt::WindowShortcut) continue;
    keys[QString::number(static_cast<int>(entry.tab)) + action->shortcut().toString()].append(toQt(entry.entry));
  }
  for (const QStringList& sharing : keys) EXPECT_EQ(sharing.size(), 1) << sharing.join('/').toStdString();
}

TEST_F(Menus, EveryDialogOfTheMenusIsAskedForByItsEntry) {
  const std::vector<std::tuple<Tab, MenuAction, const char*>> dialogs{
      {Tab::Departments, MenuAction::ExportShop, "frmEsporta"},
      {Tab::Departments, MenuAction::ImportShop, "frmImportaPrimo"},
      {Tab::Departments, MenuAction::RestoreCopy, "frmBackup"},
      {Tab::Departments, MenuAction::ChangeFolders, "frmBrowse"},
      {Tab::Departments, MenuAction::Languages, "frmLingue"},
      {Tab::Departments, MenuAction::ReplicateLanguages, "frmReplica"},
      {Tab::Departments, MenuAction::ReplicatePriceList, "frmReplicaListini"},
      {Tab::Departments, MenuAction::CustomTags, "frmTags"},
      {Tab::Departments, MenuAction::BuildSettings, "frmImpostazioni"},
      {Tab::Departments, MenuAction::ImportAccounting, "frmImportaOG"},
      {Tab::Departments, MenuAction::ChangePrices, "frmVariaPrezzi"},
      {Tab::Articles, MenuAction::ChangePrices, "frmVariaPrezzi"},
      {Tab::Site, MenuAction::Shipping, "frmSpedizione"},
      {Tab::Site, MenuAction::PaymentSystems, "frmPagamento"},
      {Tab::Site, MenuAction::OrderMail, "frmEmail"},
      {Tab::Site, MenuAction::Showcase, "frmVetrina"},
      {Tab::Site, MenuAction::RequiredFields, "frmObbligatori"},
      {Tab::Internet, MenuAction::ConnectionSettings, "frmFirewall"},
      {Tab::Departments, MenuAction::Introduction, "frmIntro"},
      {Tab::Departments, MenuAction::About, "frmAbout"}};
  open();
  for (const auto& [tab, action, name] : dialogs) {
    goTab(tab);
    EXPECT_FALSE(window->menus().entry(action)->isEnabled()) << name << " is not there";
    EXPECT_FALSE(choose(action)) << name;
    answer(name, "");
    EXPECT_TRUE(choose(action)) << name;
    EXPECT_EQ(dialogsRun, std::vector<std::string>{name});
    dialogsRun.clear();
    window->workbench().ports().dialogs.erase(name);
    window->entriesChanged();
    settle();
  }
}

TEST_F(Menus, ThePurgeOfPicturesIsGivenTheirFolderAndTheTwoFtpFoldersTheirNames) {
  run(shop, "UPDATE generale SET hostname = 'h', username = 'u', password = 'p'");
  open();
  answer("frmPulisciImmagini", "");
  answer("frmFolderFTP", "");
  EXPECT_TRUE(choose(MenuAction::PurgeImages));
  goTab(Tab::Internet);
  EXPECT_TRUE(choose(MenuAction::ShopFtpFolder));
  EXPECT_TRUE(choose(MenuAction::ScriptFtpFolder));
  EXPECT_EQ(dialogsRun, (std::vector<std::string>{"frmPulisciImmagini " + shop + "/work", "frmFolderFTP folderFTP",
                                                  "frmFolderFTP folderCGI"}));
}

TEST_F(Menus, TheHelpEntriesOpenTheirPages) {
  write(joinPath(application, "manuale_template2.pdf"), "");
  write(joinPath(application, "ordsync.exe"), "");
  open();
  EXPECT_TRUE(choose(MenuAction::HelpContents));
  EXPECT_TRUE(choose(MenuAction::HelpQuestions));
  EXPECT_TRUE(choose(MenuAction::TemplateGuide));
  EXPECT_TRUE(choose(MenuAction::DownloadOrders));
  EXPECT_TRUE(choose(MenuAction::CheckUpdates));
  ASSERT_EQ(opened.size(), 5U);
  const std::vector<std::string> first(opened.begin(), opened.end() - 1);
  EXPECT_EQ(first, (std::vector<std::string>{application + "/help/index.htm", application + "/help/pagine/faq.htm",
                                             application + "/manuale_template2.pdf", application + "/ordsync.exe"}));
  EXPECT_NE(opened.back().find("/update/checkupdate.php?id="), std::string::npos);
  EXPECT_EQ(opened.back().size() - opened.back().find('=') - 1, 7U) << "two digits, two digits, three digits";
}

TEST_F(Menus, TheHelpKeyOpensThePageOfTheTab) {
  open();
  for (const Tab tab : {Tab::Departments, Tab::Articles, Tab::Site, Tab::Internet}) {
    goTab(tab);
    key(Qt::Key_F1);
  }
  const std::string pages = application + "/help/pagine/";
  EXPECT_EQ(opened, (std::vector<std::string>{pages + "reparti.htm", pages + "articoli.htm", pages + "sito.htm",
                                              pages + "internet.htm"}));
}

TEST_F(Menus, WithNoDialogAtAllNothingThatIsOnIsDead) {
  open();
  window->workbench().ports().dialogs.clear();
  window->entriesChanged();
  settle();
  EXPECT_EQ(on("File"), "Nuovo negozio..;Apri negozio...;Pulisci le cartelle di lavoro...;BackOffice...;Esci;");
  EXPECT_EQ(on("Modifica"), "Su;Giu;Prima;Dopo;Sottoreparto;Copia;Elimina;");
  EXPECT_EQ(on("?"), "Sommario...;Domande frequenti...;Aggiornamenti online...;");
  goTab(Tab::Site);
  EXPECT_EQ(on("Modifica"), "");
  goTab(Tab::Internet);
  EXPECT_EQ(on("Modifica"), "");
}

TEST_F(Menus, EsciSavesWhatIsTypedAndClosesTheWindow) {
  open();
  type(line(EditedSet::Categorie, "titolo"), "Orci");
  EXPECT_TRUE(choose(MenuAction::Exit));
  EXPECT_FALSE(window->isVisible());
  EXPECT_TRUE(session.compactOnExit);
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"), "Orci");
}

}  // namespace
}  // namespace kv::test
