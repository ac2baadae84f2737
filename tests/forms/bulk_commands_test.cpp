// The commands of prices, replication and settings in the main window: their entries, and one step of the history each.
#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QToolButton>

#include "shell/window/fields/frm_page.h"
#include "support/failing_store.h"
#include "wired_window.h"

namespace kv {
namespace {

using test::click;
using test::control;

class BulkCommands : public test::WiredWindow {
 protected:
  std::string everything() {
    std::string text;
    for (const char* columns :
         {"group_concat(ifnull(prezzo, '-') || ifnull(prezzo3, '-') || ifnull(titolo_l2, '-'))"}) {
      text += stored(columns, "articoli");
    }
    return text + stored("ifnull(testo_email, '') || ifnull(vetalign, '') || ifnull(p3p, '')") +
           stored("'|' || ifnull(campi_obbligatori, '-') || '|' || ifnull(estensione, '-')");
  }
  /// Runs a command, acts in its dialog, and expects one step that undo and redo move over.
  void expectOneStep(Tab tab, const char* command, const char* title, const char* step,
                     const std::function<void(QWidget&)>& act) {
    goTab(tab);
    const std::string before = everything();
    whenShown(QString::fromUtf8(title), act);
    EXPECT_TRUE(choose(command)) << command;
    const std::string after = everything();
    EXPECT_NE(after, before) << command;
    EXPECT_EQ(window->workbench().history().undoName(), step);
    EXPECT_TRUE(choose("undo"));
    EXPECT_EQ(everything(), before) << command;
    EXPECT_TRUE(choose("redo"));
    EXPECT_EQ(everything(), after) << command;
    EXPECT_TRUE(choose("undo"));
  }
  /// Runs a command whose second row fails: what it has done is one step, and its undo leaves nothing of it.
  void expectInterruptedStep(const char* command, const char* title, const char* step,
                             const std::function<void(QWidget&)>& fill) {
    goTab(Tab::Departments);
    const std::string before = everything();
    user.shown.clear();
    whenShown(QString::fromUtf8(title), [&fill](QWidget& dialog) {
      fill(dialog);
      test::FailingStore failing(3);
      failing.onlyFor("UPDATE articoli");
      click(dialog, "cmdOK");
      EXPECT_TRUE(failing.hasFailed());
    });
    EXPECT_TRUE(choose(command)) << command;
    ASSERT_EQ(user.shown.size(), 1U) << command;
    EXPECT_EQ(user.shown[0].icon, Icon::Critical) << command;
    EXPECT_NE(everything(), before) << command;
    EXPECT_EQ(window->workbench().history().undoName(), step);
    EXPECT_TRUE(choose("undo"));
    EXPECT_EQ(everything(), before) << command;
  }
};

TEST_F(BulkCommands, AreEachOneStepOfTheHistory) {
  openWindow();
  expectOneStep(Tab::Departments, "prices.change", "Korvane - Variazione prezzi", "Modifica prezzi",
                [](QWidget& dialog) {
                  control<QCheckBox>(dialog, "chkListino0")->setChecked(true);
                  control<QRadioButton>(dialog, "optEstensione1")->setChecked(true);
                  control<QComboBox>(dialog, "cboVariazione")->setEditText(QStringLiteral("+10"));
                  click(dialog, "cmdOK");
                });
  expectOneStep(Tab::Departments, "prices.replicate", "Korvane - Replica listini", "Replica listino",
                [](QWidget& dialog) {
                  control<QCheckBox>(dialog, "chkListino3")->setChecked(true);
                  control<QComboBox>(dialog, "cboVariazione")->setEditText(QStringLiteral("-5"));
                  click(dialog, "cmdOK");
                });
  expectOneStep(Tab::Site, "showcase", "Korvane - Impostazioni vetrina", "Impostazioni vetrina", [](QWidget& dialog) {
    const bool isRight = control<QRadioButton>(dialog, "optAllineamento2")->isChecked();
    control<QRadioButton>(dialog, isRight ? "optAllineamento0" : "optAllineamento2")->setChecked(true);
    click(dialog, "cmdOK");
  });
}

TEST_F(BulkCommands, OfTheSmallSettingsAreOneStepToo) {
  fill("UPDATE generale SET campi_obbligatori = '5', estensione = '.htm'");
  openWindow();
  expectOneStep(Tab::Site, "requiredFields", "Korvane - Campi obbligatori", "Campi obbligatori", [](QWidget& dialog) {
    click(dialog, "cmdReset");
    click(dialog, "cmdOK");
  });
  expectOneStep(Tab::Site, "build.settings", "Korvane - Impostazioni costruzione negozio", "Impostazioni costruzione",
                [](QWidget& dialog) {
                  control<QLineEdit>(dialog, "txtEstensione")->setText(QStringLiteral(".html"));
                  click(dialog, "cmdOK");
                });
  EXPECT_EQ(stored("campi_obbligatori || estensione"), "5.htm");
}

TEST_F(BulkCommands, InterruptedByAFailureAreUndoneAsOneStep) {
  openWindow();
  expectInterruptedStep("prices.change", "Korvane - Variazione prezzi", "Modifica prezzi", [](QWidget& dialog) {
    control<QCheckBox>(dialog, "chkListino0")->setChecked(true);
    control<QRadioButton>(dialog, "optEstensione1")->setChecked(true);
    control<QComboBox>(dialog, "cboVariazione")->setEditText(QStringLiteral("+10"));
  });
  expectInterruptedStep("prices.replicate", "Korvane - Replica listini", "Replica listino", [](QWidget& dialog) {
    control<QCheckBox>(dialog, "chkListino3")->setChecked(true);
    control<QComboBox>(dialog, "cboVariazione")->setEditText(QStringLiteral("-5"));
  });
}

TEST_F(BulkCommands, OfLanguagesFillTheOneBeingEdited) {
  openWindow();
  ASSERT_GT(session.languageCount, 1);
  user.answers = {Answer::Yes};
  ASSERT_TRUE(session.catalogue.execute("UPDATE articoli SET titolo = titolo || ' nuovo'"));
  window->workbench().CambiaLingua(2);
  expectOneStep(Tab::Departments, "languages.replicate", "Korvane - Replica lingue", "Replica lingue",
                [](QWidget& dialog) {
                  control<QCheckBox>(dialog, "chkCopy2")->setChecked(true);
                  // The question of the replication is asked through the test's user.
                  click(dialog, "cmdOK");
                });
}

TEST_F(BulkCommands, OfLanguagesShowTheNewTextsOfTheOneBeingEdited) {
  fill("UPDATE generale SET titolo = 'Bottega', titolo_l2 = 'Shop'");
  openWindow();
  goTab(Tab::Site);
  window->workbench().CambiaLingua(2);
  auto* title = qobject_cast<QLineEdit*>(window->page(Tab::Site).binding(EditedSet::Generale, "titolo")->field());
  ASSERT_EQ(fromQt(title->text()), "Shop");
  user.answers = {Answer::Yes};
  whenShown(QStringLiteral("Korvane - Replica lingue"), [](QWidget& dialog) {
    control<QCheckBox>(dialog, "chkCopy0")->setChecked(true);
    click(dialog, "cmdOK");
  });
  EXPECT_TRUE(choose("languages.replicate"));
  EXPECT_EQ(fromQt(title->text()), "Bottega");
}

TEST_F(BulkCommands, OfPricesAndListsComeBackToArticleAndDepartment) {
  fill("UPDATE articoli SET prezzo = 200000");
  openWindow();
  CatalogueSets& sets = window->workbench().sets();
  window->workbench().MostraArticolo(3);
  processEvents();
  const std::string department = sets.department(), shown = path();
  auto* price = qobject_cast<QLineEdit*>(window->page(Tab::Articles).binding(EditedSet::Articoli, "prezzo")->field());
  whenShown(QStringLiteral("Korvane - Variazione prezzi"), [](QWidget& dialog) {
    control<QCheckBox>(dialog, "chkListino0")->setChecked(true);
    control<QRadioButton>(dialog, "optEstensione1")->setChecked(true);
    control<QComboBox>(dialog, "cboVariazione")->setEditText(QStringLiteral("+10"));
    click(dialog, "cmdOK");
  });
  EXPECT_TRUE(choose("prices.change"));
  EXPECT_EQ(sets.article(), 3);
  EXPECT_EQ(sets.department(), department);
  EXPECT_EQ(fromQt(price->text()), "22");
  goTab(Tab::Departments);
  whenShown(QStringLiteral("Korvane - Replica listini"), [](QWidget& dialog) {
    control<QCheckBox>(dialog, "chkListino3")->setChecked(true);
    control<QCheckBox>(dialog, "chkRestr")->setChecked(true);
    click(dialog, "cmdOK");
  });
  EXPECT_TRUE(choose("prices.replicate"));
  EXPECT_EQ(sets.article(), 3);
  EXPECT_EQ(sets.department(), department);
  EXPECT_EQ(path(), shown);
}

TEST_F(BulkCommands, AreOnInTheMenusOfTheirTabs) {
  openWindow();
  window->workbench().MostraArticolo(1);
  for (const auto& [tab, commands] : std::vector<std::pair<Tab, std::vector<const char*>>>{
           {Tab::Departments, {"prices.change", "prices.replicate", "languages.replicate"}},
           {Tab::Articles, {"prices.change"}},
           {Tab::Site, {"shipping", "payment", "orderMail", "showcase", "requiredFields", "build.settings"}}}) {
    goTab(tab);
    for (const char* command : commands) EXPECT_TRUE(window->menus().action(command)->isEnabled()) << command;
  }
}

TEST_F(BulkCommands, OfAPaymentSystemTakeItsFilesBackAndForward) {
  openWindow();
  goTab(Tab::Site);
  const auto state = [this] {
    std::string text = stored("ifnull(contrassegno, '')");
    for (const char* name :
         {"Omnipay/conf.ini", "Omnipay.kpg", "Omnipay/omniend.php", "Contrassegno/conf.ini", "Contrassegno.kpg"}) {
      text += readBytes(shop + "/code/" + name).value_or("(missing)");
    }
    return text;
  };
  const std::string before = state();
  whenShown(QStringLiteral("Korvane - Configurazione sistemi di pagamento"), [this](QWidget& dialog) {
    whenShown(QStringLiteral("Korvane - Omnipay"), [](QWidget& account) {
      control<QLineEdit>(account, "txt_sto")->setText(QStringLiteral("4711"));
      click(account, "cmdOK");
    });
    click(dialog, "cmdConfigura8");
    whenShown(QStringLiteral("Korvane - Contrassegno"), [](QWidget& account) {
      control<QPlainTextEdit>(account, "txt_info")->setPlainText(QStringLiteral("Si paga al corriere"));
      click(account, "cmdOK");
    });
    click(dialog, "cmdConfigura4");
    click(dialog, "cmdChiudi");
  });
  EXPECT_TRUE(choose("payment"));
  const std::string after = state();
  EXPECT_THAT(after, testing::AllOf(testing::HasSubstr("sto=4711"), testing::HasSubstr("info=Si paga al corriere")));
  EXPECT_EQ(window->workbench().history().undoName(), "Sistemi di pagamento");
  EXPECT_TRUE(choose("undo"));
  EXPECT_EQ(state(), before);
  EXPECT_TRUE(choose("redo"));
  EXPECT_EQ(state(), after);
}

TEST_F(BulkCommands, OfAPaymentSystemAndTheFieldOfItsTextShowWhatWasStoredLast) {
  fill("UPDATE generale SET contrassegno = 'prima', contrassegno_l2 = 'in English'");
  openWindow();
  goTab(Tab::Site);
  auto* field =
      qobject_cast<QPlainTextEdit*>(window->page(Tab::Site).binding(EditedSet::Generale, "contrassegno")->field());
  ASSERT_NE(field, nullptr);
  /// Opens the dialog of the text and types over it; what it showed.
  const auto edit = [&](const char* typed) {
    std::string shown;
    whenShown(QStringLiteral("Korvane - Configurazione sistemi di pagamento"), [&](QWidget& dialog) {
      whenShown(QStringLiteral("Korvane - Contrassegno"), [&](QWidget& account) {
        auto* text = control<QPlainTextEdit>(account, "txt_info");
        shown = fromQt(text->toPlainText());
        if (typed != nullptr) text->setPlainText(QString::fromUtf8(typed));
        click(account, "cmdOK");
      });
      click(dialog, "cmdConfigura4");
      click(dialog, "cmdChiudi");
    });
    EXPECT_TRUE(choose("payment"));
    return shown;
  };
  const auto texts = [this] { return stored("contrassegno || '|' || contrassegno_l2"); };
  EXPECT_EQ(edit("dal modulo"), "prima");
  EXPECT_EQ(fromQt(field->toPlainText()), "dal modulo");
  field->setFocus();
  field->selectAll();
  QTest::keyClicks(field, QStringLiteral("dalla scheda"));
  EXPECT_EQ(edit(nullptr), "dalla scheda") << "what is being typed is saved first";
  EXPECT_EQ(texts(), "dalla scheda|in English");
  EXPECT_THAT(readBytes(shop + "/code/Contrassegno.kpg").value_or(""), testing::HasSubstr("dalla scheda"));

  window->workbench().CambiaLingua(2);
  EXPECT_EQ(fromQt(field->toPlainText()), "in English");
  EXPECT_EQ(edit("ancora"), "dalla scheda") << "the dialog is of the first language";
  EXPECT_EQ(fromQt(field->toPlainText()), "in English");
  field->setFocus();
  QTest::keyClick(field, Qt::Key_Tab);
  EXPECT_EQ(texts(), "ancora|in English");
  EXPECT_TRUE(choose("undo"));
  EXPECT_EQ(texts(), "dalla scheda|in English");
}

TEST_F(BulkCommands, OfTheMailGoThroughTheFieldOfTheWindow) {
  fill("UPDATE generale SET testo_email = 'Grazie'");
  openWindow();
  expectOneStep(Tab::Site, "orderMail", "Korvane - Testo e-mail di conferma", "Testo e-mail di conferma",
                [](QWidget& dialog) {
                  auto* field = control<QPlainTextEdit>(dialog, "txtTesto");
                  EXPECT_EQ(fromQt(field->toPlainText()), "Grazie");
                  field->setPlainText(QStringLiteral("Grazie\nA presto"));
                  click(dialog, "cmdOK");
                });
  EXPECT_EQ(stored("testo_email"), "Grazie");
}

TEST_F(BulkCommands, OfTheMailEditTheLanguageBeingEdited) {
  fill("UPDATE generale SET testo_email = 'Grazie', testo_email_l2 = 'Thanks'");
  openWindow();
  window->workbench().CambiaLingua(2);
  goTab(Tab::Site);
  whenShown(QStringLiteral("Korvane - Testo e-mail di conferma"), [](QWidget& dialog) {
    auto* field = control<QPlainTextEdit>(dialog, "txtTesto");
    EXPECT_EQ(fromQt(field->toPlainText()), "Thanks");
    field->setPlainText(QStringLiteral("Thank you"));
    click(dialog, "cmdOK");
  });
  EXPECT_TRUE(choose("orderMail"));
  EXPECT_EQ(stored("testo_email || '|' || testo_email_l2"), "Grazie|Thank you");
}

TEST_F(BulkCommands, OfThePrivacyPolicyHaveAButtonBesideTheField) {
  fill("UPDATE generale SET p3p = 'NOI'");
  openWindow();
  goTab(Tab::Site);
  EditorBinding* binding = window->page(Tab::Site).binding(EditedSet::Generale, "p3p");
  ASSERT_NE(binding, nullptr);
  ASSERT_NE(binding->row(), nullptr);
  auto* button = qobject_cast<QToolButton*>(binding->row()->itemAt(1)->widget());
  ASSERT_NE(button, nullptr);
  EXPECT_EQ(fromQt(button->text()), "...");
  EXPECT_FALSE(button->accessibleName().isEmpty());
  whenShown(QStringLiteral("Korvane - Compact Privacy Policy"), [](QWidget& dialog) {
    click(dialog, "cmdReset");
    click(dialog, "cmdOK");
  });
  button->click();
  EXPECT_EQ(fromQt(qobject_cast<QLineEdit*>(binding->field())->text()),
            "ALL CUR ADM CONi PHY ONL UNI PUR COM NAV INT OUR STP");
  EXPECT_TRUE(choose("undo"));
  EXPECT_EQ(stored("p3p"), "NOI");
}

TEST_F(BulkCommands, LeftByEscapeMakeNoStep) {
  openWindow();
  goTab(Tab::Site);
  for (const auto& [command, title] : {std::pair{"showcase", "Korvane - Impostazioni vetrina"},
                                       std::pair{"requiredFields", "Korvane - Campi obbligatori"},
                                       std::pair{"orderMail", "Korvane - Testo e-mail di conferma"}}) {
    whenShown(QString::fromUtf8(title), [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_TRUE(choose(command)) << command;
    EXPECT_FALSE(window->workbench().history().canUndo()) << command;
  }
}

}  // namespace
}  // namespace kv
