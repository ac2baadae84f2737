// Whatever is done in the dialogs of selling that store by OK alone, Annulla leaves rows, schema, serial numbers and
// the files of the payment modules as they were.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <memory>
#include <random>

#include "builder/run/frm_impostazioni.h"
#include "commerce/gateways/frm_pg.h"
#include "commerce/prices/frm_varia_prezzi.h"
#include "commerce/replication/frm_replica.h"
#include "commerce/replication/frm_replica_listini.h"
#include "commerce/settings/frm_email.h"
#include "commerce/settings/frm_obbligatori.h"
#include "commerce/settings/frm_p3p.h"
#include "commerce/settings/frm_vetrina.h"
#include "dialog_fixture.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

class RandomDialogs : public DialogFixture {
 protected:
  void SetUp() override {
    ASSERT_TRUE(copyTree(std::string(KORVANE_APP_DATA) + "/new/code", shop + "/code"));
    DialogFixture::SetUp();
    session.languageCount = 3;
    session.languageNames = {"italiano", "inglese", "francese", ""};
  }

  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(chance_); }

  QString word() {
    static const char* const words[] = {"",   "php", ".htm",  "città",   "a|b\"c", "<<importo>>",
                                        "40", " ",   "-12,5", "CONi ADM"};
    return QString::fromUtf8(words[below(static_cast<int>(std::size(words)))]);
  }

  /// Uses one control of a dialog, of those that don't end it.
  void useOne(FormDialog& dialog) {
    const auto widgets = dialog.findChildren<QWidget*>();
    QWidget* one = widgets[below(static_cast<int>(widgets.size()))];
    if (!one->isEnabled() || one->objectName().startsWith(QStringLiteral("qt_"))) return;
    if (auto* line = qobject_cast<QLineEdit*>(one)) line->setText(word());
    if (auto* text = qobject_cast<QPlainTextEdit*>(one)) text->insertPlainText(word());
    if (auto* list = qobject_cast<QComboBox*>(one)) list->setCurrentIndex(below(list->count()));
    auto* button = qobject_cast<QAbstractButton*>(one);
    const QString name = one->objectName();
    const bool stays = name.startsWith(QStringLiteral("chk")) || name.startsWith(QStringLiteral("opt")) ||
                       name.startsWith(QStringLiteral("cmdTag")) || name == QStringLiteral("cmdReset");
    if (button != nullptr && stays) button->click();
  }

  std::unique_ptr<FormDialog> dialogOf(int number) {
    switch (number) {
      case 0:
        return std::make_unique<frmVetrina>(session, env, HelpOpener());
      case 1:
        return std::make_unique<frmObbligatori>(session, env, HelpOpener());
      case 2:
        return std::make_unique<frmP3P>(session, env, frmP3P::AddressOpener());
      case 3:
        return std::make_unique<frmEmail>("Grazie", HelpOpener());
      case 4:
        return std::make_unique<frmVariaPrezzi>(session, env, PriceDialogFacts{"cat001", "Vasi", ','}, HelpOpener());
      case 5:
        return std::make_unique<frmReplica>(session, env, HelpOpener());
      case 6:
        return std::make_unique<frmReplicaListini>(session, env, ',', HelpOpener());
      case 7: {
        const auto modules = gatewayModules();
        return std::make_unique<frmPG>(session, env, modules[static_cast<std::size_t>(below(15))], GatewayHooks{});
      }
      default:
        return std::make_unique<frmImpostazioni>(session, env);
    }
  }

  /// Edits in a dialog at random and leaves it, by its button or by a key.
  void leaveAfterEdits(std::unique_ptr<FormDialog> left) {
    FormDialog& dialog = *left;
    show(dialog);
    for (int n = 1 + below(8); n > 0; --n) useOne(dialog);
    if (below(2) == 0) {
      click(dialog, "cmdAnnulla");
    } else {
      QTest::keyClick(&dialog, Qt::Key_Escape);
    }
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.tag(), "");
  }

  /// Every table with the engine's row numbers, the serial numbers given last, the schema, and the stored settings.
  std::string whole() {
    std::string text = settings.get("AppIni", "smartbuild") + (session.smartBuild ? "1" : "0");
    auto names = session.catalogue.prepare("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name");
    EXPECT_TRUE(names);
    std::vector<std::string> queries{"SELECT type, name, sql FROM sqlite_master ORDER BY name"};
    for (auto more = names->step(); more && *more; more = names->step()) {
      queries.push_back("SELECT rowid, * FROM " + std::string(names->text(0)) + " ORDER BY rowid");
    }
    for (const std::string& query : queries) {
      auto rows = session.catalogue.prepare(query);
      EXPECT_TRUE(rows) << query;
      for (auto more = rows->step(); more && *more; more = rows->step()) {
        for (int i = 0; i < rows->columnCount(); ++i) text += std::string(rows->text(i)) + "|";
        text += "\n";
      }
    }
    for (const std::string& name : listFiles(shop, "*.ini")) text += name;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(shop + "/code")) {
      if (entry.is_regular_file()) text += readBytes(entry.path().string()).value_or("(missing)");
    }
    return text;
  }

  std::mt19937 chance_{seed()};
};

TEST_F(RandomDialogs, LeftByAnnullaChangeNothing) {
  ASSERT_TRUE(session.catalogue.execute(
      "UPDATE generale SET vetalign = 'left', vetopzioni = 9, vetsize = 2, colonnevetrina = 40, p3p = 'NOI',"
      " campi_obbligatori = '5', estensione = '.asp', testo_email = 'Grazie'"));
  const std::string before = whole();
  for (int round = 0; round < operationsOf(90); ++round) {
    leaveAfterEdits(dialogOf(round % 9));
    // A look at every row costs more than a dialog.
    if (round % 18 == 17) {
      ASSERT_EQ(whole(), before) << round;
    }
  }
  EXPECT_TRUE(user.shown.empty());
}

}  // namespace
}  // namespace kv::test
