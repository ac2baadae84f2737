// The window of a build: what it shows, how it ends, and how it is left in the middle.
#include <gtest/gtest.h>

#include <QProgressBar>

#include "builder/run/frm_elabora.h"
#include "dialog_fixture.h"
#include "support/temp_shop.h"

namespace kv {
namespace {

using test::control;
using test::TempShop;
using test::whenModal;

const char* const finished = "Creazione del negozio terminata. Aggiornare il sito per rendere effettive le modifiche.";

class TheBuildDialog : public ::testing::Test {
 protected:
  TheBuildDialog() : env{shop.user, shop.settings, shop.clock, shop.random, shop.applicationFolder(), {}} {
    shop.department("cat001");
  }
  /// Enough for a build that lasts many turns of the events.
  void fill(int articles) {
    ASSERT_TRUE(shop.session.catalogue.begin());
    for (int i = 0; i < articles; ++i) shop.article("cat001", {{"titolo", "Articolo " + std::to_string(i)}});
    ASSERT_TRUE(shop.session.catalogue.commit());
  }

  TempShop shop;
  Environment env;
};

TEST_F(TheBuildDialog, ReadsAsToldBeforeItStarts) {
  const frmElabora dialog(shop.session, env);
  EXPECT_EQ(dialog.windowTitle(), "Korvane - Costruzione sito");
  EXPECT_EQ(control<QLabel>(dialog, "lblStato")->text(), "Inizializzazione");
  EXPECT_EQ(control<QPushButton>(dialog, "cmdAnnulla")->text(), "Annulla");
  bool heading = false;
  for (const QLabel* label : dialog.findChildren<QLabel*>()) heading |= label->text() == "Elaborazione in corso...";
  EXPECT_TRUE(heading);
  EXPECT_EQ(test::namelessControls(dialog), "");
}

TEST_F(TheBuildDialog, BuildsOnceSaysSoAndCloses) {
  shop.article("cat001");
  frmElabora dialog(shop.session, env);
  EXPECT_EQ(dialog.exec(), QDialog::Accepted);
  EXPECT_EQ(dialog.tag(), "OK");
  EXPECT_EQ(dialog.outcome(), BuildOutcome::Done);
  EXPECT_EQ(dialog.counts().articles, 1);
  EXPECT_EQ(shop.user.texts(), std::vector<std::string>{finished});
  EXPECT_EQ(shop.user.shown[0].icon, Icon::Information);
  EXPECT_TRUE(shop.hasPage("cat001.php"));
  EXPECT_FALSE(dialog.isVisible());
}

TEST_F(TheBuildDialog, SaysInALineWhatVisitorsWouldMeet) {
  shop.article("cat001");
  frmElabora dialog(shop.session, env);
  dialog.exec();
  const QString notice = control<QLabel>(dialog, "lblAvvisi")->text();
  EXPECT_TRUE(notice.contains(QStringLiteral(" errori, ")) && notice.endsWith(QStringLiteral(" avvisi")))
      << fromQt(notice);
}

TEST_F(TheBuildDialog, OffersWaysToLookAtWhatWasBuilt) {
  std::vector<std::string> opened;
  const BuildViews views{[&opened] { opened.emplace_back("negozio"); }, [&opened] { opened.emplace_back("cartella"); }};
  const std::vector<std::pair<const char*, std::vector<std::string>>> cases{
      {"cmdOK", {}}, {"cmdBrowser", {"negozio"}}, {"cmdCartella", {"cartella"}}};
  for (const auto& [button, wanted] : cases) {
    opened.clear();
    frmElabora dialog(shop.session, env, views);
    // The box comes up in the middle of the build's own turn, once the build is done.
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &dialog, [&, button = button] {
      QWidget* modal = QApplication::activeModalWidget();
      if (modal == nullptr || modal == &dialog) return;
      poll.stop();
      EXPECT_EQ(test::defaultButton(*modal), "OK");
      EXPECT_EQ(control<QPushButton>(*modal, "cmdBrowser")->text(), "Apri il &sito online");
      EXPECT_EQ(control<QPushButton>(*modal, "cmdCartella")->text(), "Apri la &cartella");
      // A text takes no keys: a screen reader reads it when the box comes.
      for (const QLabel* text : modal->findChildren<QLabel*>()) EXPECT_EQ(text->focusPolicy(), Qt::NoFocus);
      test::keepPicture(*modal, "costruito");
      test::click(*modal, button);
    });
    poll.start(5);
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_EQ(opened, wanted) << button;
    EXPECT_TRUE(shop.user.shown.empty()) << "the box says it";
  }
}

TEST_F(TheBuildDialog, ShowsHowFarTheBuildIs) {
  fill(3000);
  frmElabora dialog(shop.session, env);
  std::string caption;
  int maximum = 0;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &dialog, [&] {
    const std::string now = fromQt(control<QLabel>(dialog, "lblStato")->text());
    if (now.find("Articoli 0/") != std::string::npos || now.find("Lingua") == std::string::npos) return;
    caption = now;
    maximum = control<QProgressBar>(dialog, "prgBarra")->maximum();
    QTest::keyClick(&dialog, Qt::Key_Tab);
    EXPECT_EQ(dialog.focusWidget(), control<QPushButton>(dialog, "cmdAnnulla"));
    test::keepPicture(dialog, "elabora");
    poll.stop();
  });
  poll.start(1);
  dialog.exec();
  EXPECT_EQ(caption.substr(0, 25), "Lingua 1: Reparti 0/1 Art");
  EXPECT_NE(caption.find("/3000"), std::string::npos);
  EXPECT_EQ(maximum, 30000);
}

/// Leaves a build by `leave` at its first turn of the events.
void expectCancelled(TempShop& shop, Environment& env, const std::function<void(frmElabora&)>& leave) {
  frmElabora dialog(shop.session, env);
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &dialog, [&] {
    if (dialog.counts().articles == 0 && control<QLabel>(dialog, "lblStato")->text() == "Inizializzazione") return;
    poll.stop();
    leave(dialog);
    EXPECT_FALSE(control<QPushButton>(dialog, "cmdAnnulla")->isEnabled());
  });
  poll.start(1);
  EXPECT_EQ(dialog.exec(), QDialog::Rejected);
  EXPECT_EQ(dialog.tag(), "");
  EXPECT_EQ(dialog.outcome(), BuildOutcome::Cancelled);
  EXPECT_TRUE(shop.user.shown.empty());
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_TRUE(folderExists(shop.folder() + "/tmp")) << "a cancel cleans nothing";
}

TEST_F(TheBuildDialog, AnnullaEscapeAndTheCloseBoxLeaveWithoutAWord) {
  fill(3000);
  expectCancelled(shop, env, [](frmElabora& dialog) { test::click(dialog, "cmdAnnulla"); });
  expectCancelled(shop, env, [](frmElabora& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
  expectCancelled(shop, env, [](frmElabora& dialog) {
    dialog.close();
    EXPECT_TRUE(dialog.isVisible()) << "refused as a close, taken as the button";
  });
  EXPECT_EQ(shop.build(), BuildOutcome::Done) << "the next build goes through";
}

TEST_F(TheBuildDialog, AFailureIsToldAndTheWindowCloses) {
  std::filesystem::remove_all(shop.session.onlineFolder);
  frmElabora dialog(shop.session, env);
  EXPECT_EQ(dialog.exec(), QDialog::Rejected);
  EXPECT_EQ(dialog.tag(), "");
  EXPECT_EQ(dialog.outcome(), BuildOutcome::Failed);
  EXPECT_EQ(shop.user.shown.size(), 1U);
}

}  // namespace
}  // namespace kv
