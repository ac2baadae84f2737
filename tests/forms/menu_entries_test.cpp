// The menus as the screen shows them: entries, order, keys, marks, and that each entry does something or is off.

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
                                               "Benvenuto...",
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
                                               "Requisiti di legge...",
                                               "-",
                                               "Scegli il template...",
                                               "Impostazioni costruzione...",
                                               "Costruisci il negozio",
                                               "Aggiorna il sito...",
                                               "BackOffice...",
                                               "Ordini...",
                                               "-",
                                               "Importa da Orsa Gestionale...",
                                               "Cerca i dati di Orsa Gestionale...",
                                               "Aggiorna giacenze da Orsa Gestionale...",
                                               "Scarica ordini...",
                                               "Importa da Orsa Gestionale con gwimp...",
                                               "Importa da un foglio...",
                                               "Esporta in un foglio...",
                                               "-",
                                               "Esci"}));
}

TEST_F(Menus, TheEditMenuIsTheOneOfTheTab) {
  open();
  EXPECT_EQ(entries("Modifica"), QStringList({"Annulla",
                                              "Ripeti",
                                              "Cronologia...",
                                              "Sposta > Su",
                                              "Sposta > Giu",
                                              "Aggiungi > Prima",
                                              "Aggiungi > Dopo",
                                              "Aggiungi > Sottoreparto",
                                              "Copia",
                                              "Incolla",
                                              "Elimina",
                                              "Imposta immagine",
                                              "Elimina immagine",
                                              "Imposta immagine pulsante",
                                              "Elimina immagine pulsante",
                                              "Imposta logo negozio > normale",
                                              "Imposta logo negozio > piccolo",
                                              "Elimina logo negozio > normale",
                                              "Elimina logo negozio > piccolo",
                                              "Modifica prezzi...",
                                              "Foglio articoli..."}));
  goTab(Tab::Articles);
  EXPECT_EQ(entries("Modifica"), QStringList({"Annulla",
                                              "Ripeti",
                                              "Cronologia...",
                                              "Sposta > Su",
                                              "Sposta > Giu",
                                              "Aggiungi > Prima",
                                              "Aggiungi > Dopo",
                                              "Copia",
                                              "Incolla",
                                              "Elimina",
                                              "Ricerca...",
                                              "Duplica",
                                              "Segna > Novità",
                                              "Segna > In vetrina",
                                              "Segna > Fuori catalogo",
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
                                              "Modifica prezzi...",
                                              "Foglio articoli..."}));
  goTab(Tab::Site);
  EXPECT_EQ(entries("Modifica"), QStringList({"Annulla", "Ripeti", "Cronologia...", "Spese di spedizione...",
                                              "Sistemi di pagamento...", "Testo e-mail di conferma...",
                                              "Impostazioni vetrina...", "Campi obbligatori...", "Produttori..."}));
  goTab(Tab::Internet);
  EXPECT_EQ(entries("Modifica"),
            QStringList({"Annulla", "Ripeti", "Cronologia...", "Cartella FTP del negozio...",
                         "Cartella FTP script CGI...", "Impostazioni avanzate...", "Verifica connessione"}));
}

TEST_F(Menus, TheViewAndHelpMenusHaveTheirEntriesInOrder) {
  write(joinPath(application, "manuale_template2.pdf"), "");
  open();
  EXPECT_EQ(entries("Visualizza"),
            QStringList({"Reparti", "Articoli", "Sito", "Internet", "Lingua > 1 - italiano", "Lingua > 2 - inglese",
                         "Espandi tutti i reparti", "Comprimi tutti i reparti", "Nascondi dettagli",
                         "Aspetto > Come il sistema", "Aspetto > Chiaro", "Aspetto > Scuro"}));
  EXPECT_EQ(entries("?"), QStringList({"Sommario...", "Domande frequenti...", "Introduzione...", "Guida ai template...",
                                       "Vedi il negozio", "Aggiornamenti online...", "Controlla il negozio...",
                                       "Informazioni su..."}));
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
  answer(&WorkbenchDialogs::replicateLanguages, false);
  refreshEntries();
  EXPECT_EQ(entries("Visualizza").filter("Lingua"), QStringList({"Lingua > 1 - italiano"}));
  EXPECT_FALSE(isEntryOn("languages.replicate"));
  ASSERT_TRUE(
      session.catalogue.execute("UPDATE lingue SET lingua2 = 'inglese', lingua3 = 'francese', lingua4 = 'tedesco'"));
  ASSERT_TRUE(readLanguages(session));
  window->workbench().MostraLingue();
  processEvents();
  EXPECT_EQ(entries("Visualizza").filter("Lingua"), QStringList({"Lingua > 1 - italiano", "Lingua > 2 - inglese",
                                                                 "Lingua > 3 - francese", "Lingua > 4 - tedesco"}));
  EXPECT_TRUE(isEntryOn("languages.replicate"));
}

TEST_F(Menus, TheMarksAreAtTabLanguageAndHiddenDetails) {
  open();
  const auto marks = [this] {
    processEvents();
    QStringList text;
    for (int tab = 0; tab < tabCount; ++tab) {
      if (window->menus().action(tabCommand(static_cast<Tab>(tab)))->isChecked())
        text.append(entryText(tabCommand(static_cast<Tab>(tab))));
    }
    for (int n = 1; n <= 4; ++n) {
      if (window->menus().action(languageCommand(n))->isChecked()) text.append(QString::number(n));
    }
    if (window->menus().action("details.hide")->isChecked()) text.append("nascosti");
    return text;
  };
  EXPECT_EQ(marks(), QStringList({"Reparti", "1"}));
  EXPECT_TRUE(choose("tab.articles"));
  EXPECT_TRUE(choose("language.2"));
  EXPECT_TRUE(choose("details.hide"));
  EXPECT_EQ(marks(), QStringList({"Articoli", "2", "nascosti"}));
  EXPECT_FALSE(window->page(Tab::Articles).isVisible());
  EXPECT_TRUE(choose("tab.articles")) << "chosen again, the mark stays";
  EXPECT_TRUE(choose("details.hide"));
  EXPECT_TRUE(choose("tab.internet"));
  EXPECT_EQ(marks(), QStringList({"Internet", "2"}));
}

TEST_F(Menus, EveryEntryShowsTheKeyThatRunsIt) {
  open();
  QMap<QString, QStringList> keys;
  const CommandTable& table = window->workbench().commands().table();
  for (int menu = 0; menu < menuCount; ++menu) {
    for (const MenuItem& item : table.entriesOf(static_cast<Menu>(menu))) {
      if (item.command == nullptr) continue;
      const QAction* action = window->menus().action(item.command->name);
      EXPECT_EQ(action->shortcut().toString(), toQt(item.command->shortcut)) << item.place->text;
      if (action->shortcut().isEmpty() || action->shortcutContext() != Qt::WindowShortcut) continue;
      keys[QString::number(menu) + action->shortcut().toString()].append(toQt(item.place->text));
    }
  }
  for (const QStringList& sharing : keys) EXPECT_EQ(sharing.size(), 1) << sharing.join('/').toStdString();
}

TEST_F(Menus, NoTwoEntriesOfAMenuShareTheirCharacter) {
  open();
  const std::function<void(const QMenu&, const std::string&)> check = [&](const QMenu& menu, const std::string& name) {
    QMap<QString, QStringList> owners;
    QStringList without;
    for (const QAction* action : menu.actions()) {
      if (action->isSeparator() || !action->isVisible()) continue;
      const QString character = QKeySequence::mnemonic(action->text()).toString();
      if (!character.isEmpty()) {
        owners[character].append(plain(action->text()));
      } else {
        without.append(plain(action->text()));
      }
      if (action->menu() != nullptr) check(*action->menu(), name + " > " + fromQt(plain(action->text())));
    }
    for (const QStringList& sharing : owners) EXPECT_EQ(sharing.size(), 1) << name << ": " << fromQt(sharing.join('/'));
    // Only what has no letter left of its own.
    for (const QString& text : without) {
      for (const QChar letter : text) {
        EXPECT_TRUE(!letter.isLetter() || owners.contains(QStringLiteral("Alt+") + letter.toUpper()))
            << name << ": " << fromQt(text);
      }
    }
  };
  for (const Tab tab : {Tab::Departments, Tab::Articles, Tab::Site, Tab::Internet}) {
    goTab(tab);
    for (const QAction* top : window->menuBar()->actions()) {
      if (top->isVisible()) check(*top->menu(), std::to_string(static_cast<int>(tab)) + " " + fromQt(top->text()));
    }
  }
}

TEST_F(Menus, EveryDialogOfTheMenusIsAskedForByItsEntry) {
  using Port = WorkbenchDialogs;
  const std::vector<std::tuple<Tab, const char*, DialogMember>> entries{
      {Tab::Departments, "shop.export", &Port::exportShop},
      {Tab::Departments, "shop.import", &Port::importShop},
      {Tab::Departments, "shop.restoreCopy", &Port::restoreCopy},
      {Tab::Departments, "shop.welcome", &Port::welcome},
      {Tab::Departments, "shop.folders", &Port::changeFolders},
      {Tab::Departments, "languages", &Port::languages},
      {Tab::Departments, "languages.replicate", &Port::replicateLanguages},
      {Tab::Departments, "prices.replicate", &Port::replicatePriceList},
      {Tab::Departments, "customTags", &Port::customTags},
      {Tab::Departments, "build.settings", &Port::buildSettings},
      {Tab::Departments, "import.accounting", &Port::importAccounting},
      {Tab::Departments, "import.sheet", &Port::importSheet},
      {Tab::Departments, "export.sheet", &Port::exportSheet},
      {Tab::Departments, "prices.change", &Port::changePrices},
      {Tab::Articles, "prices.change", &Port::changePrices},
      {Tab::Site, "shipping", &Port::shipping},
      {Tab::Site, "payment", &Port::configurePayment},
      {Tab::Site, "orderMail", &Port::orderMail},
      {Tab::Site, "showcase", &Port::showcase},
      {Tab::Site, "requiredFields", &Port::requiredFields},
      {Tab::Site, "makers", &Port::makers},
      {Tab::Departments, "legalDuties", &Port::legalDuties},
      {Tab::Internet, "connection.settings", &Port::connectionSettings},
      {Tab::Departments, "help.introduction", &Port::introduction},
      {Tab::Departments, "help.about", &Port::about}};
  ASSERT_TRUE(settings.set("orsa2000/pathRete", "pathRete", "/dati/orsa.mdb"));
  open();
  for (const auto& [tab, name, member] : entries) {
    goTab(tab);
    EXPECT_FALSE(isEntryOn(name)) << "the dialog of " << name << " is not there";
    EXPECT_FALSE(choose(name)) << name;
    answer(member, false);
    refreshEntries();
    EXPECT_TRUE(choose(name)) << name;
    EXPECT_EQ(dialogsRun.size(), 1U) << name;
    EXPECT_EQ(dialogsRun.front(), std::ranges::find(plainDialogs, member, &PlainDialog::member)->name);
    dialogsRun.clear();
    dialogs().*member = nullptr;
    refreshEntries();
  }
}

TEST_F(Menus, ThePurgeOfPicturesIsGivenTheirFolderAndTheTwoFtpFoldersTheirKindsAndTheirServerIsTried) {
  run(shop, "UPDATE generale SET hostname = 'h', username = 'u', password = 'p'");
  open();
  answerPurge(false);
  answerServerFolder(false);
  answer(&WorkbenchDialogs::verifyConnection, true);
  refreshEntries();
  EXPECT_TRUE(choose("shop.purgePictures"));
  goTab(Tab::Internet);
  EXPECT_TRUE(choose("connection.shopFolder"));
  EXPECT_TRUE(choose("connection.scriptFolder"));
  EXPECT_TRUE(choose("connection.verify"));
  EXPECT_EQ(dialogsRun, (std::vector<std::string>{"purgePictures " + shop + "/work", "chooseServerFolder shop",
                                                  "chooseServerFolder scripts", "verifyConnection"}));
}

TEST_F(Menus, TheHelpEntriesOpenTheirPages) {
  write(joinPath(application, "manuale_template2.pdf"), "");
  write(joinPath(application, "ordsync.exe"), "");
  open();
  EXPECT_TRUE(choose("help.contents"));
  EXPECT_TRUE(choose("help.questions"));
  EXPECT_TRUE(choose("help.templates"));
  EXPECT_TRUE(choose("import.orders"));
  EXPECT_TRUE(choose("help.updates"));
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
  dialogs() = {};
  refreshEntries();
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
  EXPECT_TRUE(choose("exit"));
  EXPECT_FALSE(window->isVisible());
  EXPECT_TRUE(session.compactOnExit);
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"), "Orci");
}

}  // namespace
}  // namespace kv::test
