// Whatever is done in the small dialogs of the shop's settings, Annulla leaves rows, schema and serial numbers alone.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <random>

#include "builder/run/frm_impostazioni.h"
#include "commerce/settings/frm_email.h"
#include "commerce/settings/frm_obbligatori.h"
#include "commerce/settings/frm_p3p.h"
#include "commerce/settings/frm_vetrina.h"
#include "dialog_fixture.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

class RandomSettings : public DialogFixture {
 protected:
  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(chance_); }

  QString word() {
    static const char* const words[] = {"", "php", ".htm", "città", "a|b\"c", "<<importo>>", "40", " ", "CONi ADM"};
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

  /// Edits in a dialog at random and leaves it, by its button or by a key.
  void leaveAfterEdits(FormDialog& dialog) {
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
    return text;
  }

  std::mt19937 chance_{seed()};
};

TEST_F(RandomSettings, LeftByAnnullaChangeNothing) {
  ASSERT_TRUE(session.catalogue.execute(
      "UPDATE generale SET vetalign = 'left', vetopzioni = 9, vetsize = 2, colonnevetrina = 40, p3p = 'NOI',"
      " campi_obbligatori = '5', estensione = '.asp', testo_email = 'Grazie'"));
  const std::string before = whole();
  for (int round = 0; round < operationsOf(50); ++round) {
    switch (round % 5) {
      case 0: {
        frmVetrina dialog(session, env, {});
        leaveAfterEdits(dialog);
        break;
      }
      case 1: {
        frmObbligatori dialog(session, env, {});
        leaveAfterEdits(dialog);
        break;
      }
      case 2: {
        frmP3P dialog(session, env, {});
        leaveAfterEdits(dialog);
        break;
      }
      case 3: {
        frmEmail dialog("Grazie", {});
        leaveAfterEdits(dialog);
        break;
      }
      default: {
        frmImpostazioni dialog(session, env);
        leaveAfterEdits(dialog);
      }
    }
    // A look at every row costs more than a dialog.
    if (round % 10 == 9) {
      ASSERT_EQ(whole(), before) << round;
    }
  }
  EXPECT_TRUE(user.shown.empty());
}

}  // namespace
}  // namespace kv::test
