// The choice when no shop is open.

#include "shell/dialogs/frm_rescue.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "forms/dialog_fixture.h"

namespace kv::test {
namespace {

/// Shows the dialog, presses a button by its name (none: Escape), and returns the choice.
Rescue chosen(frmRescue& dialog, const char* name) {
  QTimer::singleShot(0, &dialog, [&dialog, name] {
    auto* button = name != nullptr ? dialog.findChild<QPushButton*>(QString::fromUtf8(name)) : nullptr;
    if (button != nullptr) {
      QTest::keyClick(button, Qt::Key_Space);
    } else {
      QTest::keyClick(&dialog, Qt::Key_Escape);
    }
  });
  dialog.exec();
  return dialog.choice();
}

TEST(RescueDialog, EachButtonIsAChoiceAndEscapeLeaves) {
  frmRescue dialog("/negozi/mio", true);
  EXPECT_EQ(chosen(dialog, "cmdRipristina"), Rescue::RestoreCopy);
  EXPECT_EQ(chosen(dialog, "cmdApri"), Rescue::OpenAnother);
  EXPECT_EQ(chosen(dialog, "cmdNuovo"), Rescue::NewShop);
  EXPECT_EQ(chosen(dialog, "cmdEsci"), Rescue::Leave);
  EXPECT_EQ(chosen(dialog, nullptr), Rescue::Leave);
}

TEST(RescueDialog, ItNamesTheShopAndOffersACopyOnlyWhereThereIsOne) {
  frmRescue dialog("/negozi/mio", false);
  EXPECT_TRUE(dialog.findChild<QLabel*>("lblTesto")->text().contains("/negozi/mio"));
  EXPECT_FALSE(dialog.findChild<QPushButton*>("cmdRipristina")->isEnabled());
  EXPECT_TRUE(dialog.findChild<QPushButton*>("cmdApri")->isDefault());
  std::vector<std::string> captions;
  for (const char* name : {"cmdRipristina", "cmdApri", "cmdNuovo", "cmdEsci"}) {
    captions.push_back(fromQt(dialog.findChild<QPushButton*>(name)->text().remove('&')));
  }
  EXPECT_EQ(captions,
            (std::vector<std::string>{"Ripristina una copia", "Apri un altro negozio", "Nuovo negozio", "Esci"}));
}

}  // namespace
}  // namespace kv::test
