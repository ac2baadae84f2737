// The reminder to build before publishing, and the box with the version.
#include <gtest/gtest.h>

#include <QCheckBox>

#include "dialog_fixture.h"
#include "shell/dialogs/frm_about.h"
#include "shell/dialogs/frm_avviso.h"

namespace kv {
namespace {

using test::click;
using test::control;

TEST(TheReminderDialog, SaysItsTextsWithSiAsTheDefault) {
  MemorySettings settings;
  frmAvviso dialog(settings);
  dialog.show();
  std::vector<std::string> texts;
  for (const QLabel* label : dialog.findChildren<QLabel*>()) {
    if (!label->text().isEmpty()) texts.push_back(fromQt(label->text()));
  }
  EXPECT_EQ(texts,
            (std::vector<std::string>{
                "Se sono state effettuate modifiche al negozio, prima di aggiornare il sito (trasferire i file sul "
                "server) è necessario costruire il negozio.",
                "Le modifiche apportate al negozio, infatti, non avranno effetto finché il negozio non sarà "
                "ricostruito.",
                "Si desidera procedere con l'aggiornamento?"}));
  EXPECT_EQ(fromQt(control<QCheckBox>(dialog, "chkMai")->text()), "Non mostrare più questo avviso in futuro");
  EXPECT_EQ(test::defaultButton(dialog), "Sì");
  EXPECT_EQ(test::namelessControls(dialog), "");
  test::keepPicture(dialog, "avviso");
  QTest::keyClick(&dialog, Qt::Key_Return);
  EXPECT_EQ(dialog.tag(), "OK");
  EXPECT_EQ(settings.get("AppIni", "NoShow"), "");
}

TEST(TheReminderDialog, RemembersTheCheckBoxWhicheverButtonIsPressed) {
  for (const char* button : {"cmdOK", "cmdAnnulla"}) {
    MemorySettings settings;
    frmAvviso dialog(settings);
    dialog.show();
    control<QCheckBox>(dialog, "chkMai")->setChecked(true);
    click(dialog, button);
    EXPECT_EQ(dialog.tag(), button == std::string("cmdOK") ? "OK" : "");
    EXPECT_EQ(settings.get("AppIni", "NoShow"), "1");
  }
}

TEST(TheReminderDialog, EscapeChangesNothing) {
  MemorySettings settings;
  frmAvviso dialog(settings);
  dialog.show();
  control<QCheckBox>(dialog, "chkMai")->setChecked(true);
  QTest::keyClick(&dialog, Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(dialog.tag(), "");
  EXPECT_EQ(settings.get("AppIni", "NoShow"), "");
}

TEST(TheAboutBox, TellsTheVersionAndClosesByEnter) {
  frmAbout dialog;
  dialog.show();
  EXPECT_EQ(control<QLabel>(dialog, "lblVersione")->text(), "Versione " KORVANE_VERSION);
  EXPECT_EQ(test::defaultButton(dialog), "OK");
  test::keepPicture(dialog, "about");
  QTest::keyClick(&dialog, Qt::Key_Return);
  EXPECT_FALSE(dialog.isVisible());
}

TEST(TheAboutBox, AsASplashHasNoButtonsAndGoesAtAClick) {
  QWidget window;
  window.resize(600, 400);
  window.show();
  frmAbout::showSplash(&window);
  auto* splash = window.findChild<frmAbout*>();
  ASSERT_NE(splash, nullptr);
  EXPECT_TRUE(splash->isVisible());
  EXPECT_FALSE(splash->isModal());
  EXPECT_TRUE(splash->findChildren<QPushButton*>().isEmpty());
  test::keepPicture(*splash, "splash");
  QTest::mouseClick(splash, Qt::LeftButton);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(window.findChild<frmAbout*>(), nullptr);
}

}  // namespace
}  // namespace kv
