// The welcome page in its window.

#include "shell/dialogs/frm_welcome.h"

#include <gmock/gmock.h>

#include <QLineEdit>
#include <QListWidget>

#include "forms/dialog_fixture.h"

namespace kv::test {
namespace {

class WelcomeDialog : public DialogFixture {
 protected:
  WelcomeDialog() { facts = {root / "Negozi/negozio", {shop, root / "un altro"}, true}; }
  /// What is chosen by a button.
  WelcomeChoice chosenBy(const char* name) {
    frmWelcome dialog(facts, user);
    show(dialog);
    click(dialog, name);
    EXPECT_FALSE(dialog.isVisible()) << name;
    return dialog.choice();
  }
  WelcomeFacts facts;
};

TEST_F(WelcomeDialog, EachButtonIsAChoice) {
  EXPECT_EQ(chosenBy("cmdVuoto").what, Welcome::EmptyShop);
  EXPECT_EQ(chosenBy("cmdVuoto").folder, facts.newFolder);
  EXPECT_EQ(chosenBy("cmdModello").what, Welcome::ModelShop);
  EXPECT_EQ(chosenBy("cmdRecente").what, Welcome::Recent);
  EXPECT_EQ(chosenBy("cmdRecente").folder, shop);
  EXPECT_EQ(chosenBy("cmdApri").what, Welcome::Open);
  EXPECT_EQ(chosenBy("cmdRipristina").what, Welcome::RestoreCopy);
  EXPECT_EQ(chosenBy("cmdContinua").what, Welcome::Stay);
}

TEST_F(WelcomeDialog, EscapeStaysInTheOpenShopAndEverythingHasAName) {
  frmWelcome dialog(facts, user);
  show(dialog);
  EXPECT_EQ(fromQt(dialog.windowTitle()), "Korvane - Benvenuto");
  EXPECT_EQ(namelessControls(dialog), "");
  EXPECT_EQ(defaultButton(dialog), "Negozio vuoto");
  keepPicture(dialog, "Korvane - Benvenuto");
  expectEscapeLeaves(dialog);
  EXPECT_EQ(dialog.choice().what, Welcome::Stay);
}

TEST_F(WelcomeDialog, ARefusedFolderLeavesThePageWithTheFocusInTheField) {
  facts.newFolder = shop;
  frmWelcome dialog(facts, user);
  show(dialog);
  auto* field = control<QLineEdit>(dialog, "txtCartella");
  control<QPushButton>(dialog, "cmdModello")->setFocus();
  click(dialog, "cmdModello");
  EXPECT_EQ(user.texts(), std::vector<std::string>{"Nel percorso specificato è già presente un negozio"});
  EXPECT_TRUE(dialog.isVisible());
  EXPECT_TRUE(field->hasFocus());
  EXPECT_EQ(fromQt(field->selectedText()), shop);
}

TEST_F(WelcomeDialog, AFolderIsBrowsedForFromTheNearestThatIsThere) {
  user.folders = {root / "scelta"};
  frmWelcome dialog(facts, user);
  show(dialog);
  click(dialog, "cmdSfoglia");
  EXPECT_EQ(user.foldersAsked.at(0).initial, root.path());
  EXPECT_EQ(fromQt(control<QLineEdit>(dialog, "txtCartella")->text()), root / "scelta");
}

TEST_F(WelcomeDialog, NoCaptionIsCut) {
  frmWelcome dialog(facts, user);
  show(dialog);
  for (const QPushButton* button : dialog.findChildren<QPushButton*>()) {
    EXPECT_GE(button->width(), button->sizeHint().width()) << button->objectName().toStdString();
  }
  EXPECT_EQ(control<QListWidget>(dialog, "lstRecenti")->textElideMode(), Qt::ElideNone);
}

TEST_F(WelcomeDialog, WithoutOtherShopsAndCopiesTheirButtonsAreOff) {
  facts.recent.clear();
  facts.hasCopies = false;
  frmWelcome dialog(facts, user);
  show(dialog);
  EXPECT_FALSE(control<QPushButton>(dialog, "cmdRecente")->isEnabled());
  EXPECT_FALSE(control<QPushButton>(dialog, "cmdRipristina")->isEnabled());
  EXPECT_TRUE(control<QPushButton>(dialog, "cmdApri")->isEnabled());
}

}  // namespace
}  // namespace kv::test
