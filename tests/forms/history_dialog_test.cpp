// The history in its window: the steps of earlier sessions, what they changed, and the way back from the main window.
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTableWidget>

#include "forms/captions.h"
#include "forms/wired_window.h"
#include "store/catalogue/frm_cronologia.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

class TheHistoryWindow : public WiredWindow {
 protected:
  void edit(const std::string& name, const std::string& statement) {
    window->workbench().editThrough(name, [&] { return session.catalogue.execute(statement).has_value(); });
  }
  /// Opens the history by its command and acts in it.
  void openHistory(std::function<void(QWidget&, QTableWidget&)> act) {
    whenShown(QStringLiteral("Korvane - Cronologia"), [act = std::move(act)](QWidget& dialog) {
      act(dialog, *control<QTableWidget>(dialog, "lstPassi"));
      if (dialog.isVisible()) QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    const WorkbenchCommands& commands = window->workbench().commands();
    commands.choose(*commands.table().named("history"));
    processEvents();
  }
};

TEST_F(TheHistoryWindow, GoesBackAcrossTheEndOfASession) {
  fill("UPDATE articoli SET prezzo = 10000");
  openWindow();
  edit("Primo", "UPDATE articoli SET prezzo = 20000");
  edit("Secondo", "UPDATE articoli SET prezzo = 30000");
  ASSERT_EQ(RiavviaSessione(session, env), LoadResult::Opened);
  EXPECT_EQ(window->workbench().history().undoName(), "");
  user.answers = {Answer::Yes};
  openHistory([](QWidget& dialog, QTableWidget& steps) {
    ASSERT_EQ(steps.rowCount(), 2);
    EXPECT_EQ(steps.item(1, 1)->text(), "Primo");
    EXPECT_EQ(namelessControls(dialog), "");
    EXPECT_EQ(repeatedKeys(dialog), "");
    EXPECT_EQ(defaultButton(dialog), "Torna a prima di questo");
    steps.setCurrentCell(1, 0);
    EXPECT_TRUE(
        control<QPlainTextEdit>(dialog, "txtDettagli")->toPlainText().contains(QStringLiteral(", prezzo: 1 -> 2")));
    keepPicture(dialog, "history");
    click(dialog, "cmdTorna");
  });
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  EXPECT_EQ(stored("MAX(prezzo)", "articoli"), "10000");
  EXPECT_EQ(window->workbench().history().undoName(), "Torna a prima di: Primo");
}

TEST_F(TheHistoryWindow, GoesBackByTheDatedCopyWhereRowsNoLongerFit) {
  fill("UPDATE articoli SET prezzo = 10000");
  openWindow();
  ASSERT_EQ(listFiles(joinPath(shop, "backup"), "catalog-*.mdb").size(), 1U) << "the copy of this opening";
  edit("Primo", "UPDATE articoli SET prezzo = 20000");
  edit("Secondo", "UPDATE articoli SET peso = 3");
  ASSERT_TRUE(session.catalogue.execute("UPDATE articoli SET prezzo = 70000"));
  user.answers = {Answer::Yes};
  openHistory([](QWidget& dialog, QTableWidget& steps) {
    steps.setCurrentCell(1, 0);
    click(dialog, "cmdTorna");
  });
  ASSERT_FALSE(user.shown.empty());
  const std::string& asked = user.shown[0].text;
  EXPECT_NE(asked.find("sarà ripristinata la copia del "), std::string::npos) << asked;
  EXPECT_NE(asked.find("  Secondo\n"), std::string::npos) << asked;
  EXPECT_NE(asked.find("  Primo\n"), std::string::npos) << asked;
  EXPECT_EQ(stored("MAX(prezzo) || ' ' || COALESCE(MAX(peso = 3), 0)", "articoli"), "10000 0");
  openHistory([](QWidget&, QTableWidget& steps) {
    ASSERT_EQ(steps.rowCount(), 3);
    EXPECT_TRUE(steps.item(0, 1)->text().startsWith(QStringLiteral("Ripristinata la copia del ")));
    EXPECT_EQ(steps.item(1, 2)->text(), "perso con una copia ripristinata");
  });
}

TEST_F(TheHistoryWindow, ANoChangesNothing) {
  fill("UPDATE articoli SET prezzo = 10000");
  openWindow();
  {
    FailingStore full(1, AfterFailure::FailsToo, FailingStore::fullDisk);
    full.onlyFor("INSERT INTO passi");
    edit("Primo", "UPDATE articoli SET prezzo = 20000");
  }
  openHistory([](QWidget& dialog, QTableWidget&) {
    const auto* notice = control<QLabel>(dialog, "lblNonScritti");
    EXPECT_TRUE(notice != nullptr && notice->text().contains("il disco è pieno")) << "what waits is told";
    click(dialog, "cmdTorna");
    EXPECT_TRUE(dialog.isVisible());
  });
  EXPECT_EQ(stored("MAX(prezzo)", "articoli"), "20000");
}

TEST_F(TheHistoryWindow, SaysThatNothingWasNotedYet) {
  openWindow();
  openHistory([](QWidget& dialog, QTableWidget& steps) {
    EXPECT_EQ(steps.rowCount(), 0);
    EXPECT_FALSE(control<QPushButton>(dialog, "cmdTorna")->isEnabled());
    EXPECT_NE(control<QLabel>(dialog, "lblNessuno"), nullptr);
  });
}

}  // namespace
}  // namespace kv::test
