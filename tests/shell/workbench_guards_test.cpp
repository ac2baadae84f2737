// What keeps a command of the workbench from doing more than it says: guards, defaults and the refresh after a dialog.

#include "shell/workbench_fixture.h"

namespace kv::test {
namespace {

using enum EditedSet;

class WorkbenchGuards : public WorkbenchFixture {
 protected:
  /// A dialog that writes into the catalogue, and is left with OK or with Cancel.
  void playDialog(DialogMember member, const std::string& sql, bool accepted) {
    dialogs().*member = [this, sql, accepted] {
      EXPECT_TRUE(session.catalogue.execute(sql));
      return accepted;
    };
  }
};

TEST_F(WorkbenchGuards, APicturesWidthAndHeightAreNotExchanged) {
  std::string wide = onePixelGif(1, 2, 3);
  wide[6] = 7;  // the width in the logical screen descriptor of a GIF, then the height
  wide[8] = 4;
  start();
  article(0);
  write(joinPath(shop, "work/foto.gif"), wide);
  answerPicture("foto.gif");
  press("article.picture0.set");
  press("department.picture1.set");
  EXPECT_EQ(rows("SELECT imgX0, imgY0 FROM articoli WHERE ID = 1"), "7|4\n");
  EXPECT_EQ(rows("SELECT imgX1, imgY1 FROM categorie WHERE ID = 'cat001'"), "7|4\n");
}

TEST_F(WorkbenchGuards, WithoutAnArticleNoVariantIsDefined) {
  start();
  go("cat002");
  ASSERT_FALSE(bench->sets().onArticle());
  for (const char* slot : {"article.variant1", "article.variant2", "article.variant3", "article.variant4"}) {
    press(slot);
    EXPECT_FALSE(isOffered(slot)) << slot;
  }
  EXPECT_TRUE(dialogsRun.empty());
}

TEST_F(WorkbenchGuards, ACancelForTheFirstFolderLeavesBothAsTheyWere) {
  start();
  write(shop + "/online/index.php", "x");
  write(shop + "/scripts/ordine.php", "x");
  user.answers = {Answer::Yes, Answer::Cancel, Answer::Ok};
  choose("shop.cleanFolders");
  EXPECT_EQ(user.shown.size(), 2U) << "the second folder is not asked for";
  EXPECT_TRUE(fileExists(shop + "/online/index.php"));
  EXPECT_TRUE(fileExists(shop + "/scripts/ordine.php"));
}

TEST_F(WorkbenchGuards, ANewDepartmentTakesTheModelThatWasJustChosen) {
  start();
  leave(Categorie, "template", "modello1");
  press("department.insertAfter");
  EXPECT_EQ(scalar("SELECT template FROM categorie WHERE ID = 'cat004'"), "modello1");
}

TEST_F(WorkbenchGuards, WhereTheDepartmentHasNoModelTheFirstOfTheTemplateIsTaken) {
  run(shop, "UPDATE categorie SET template = NULL WHERE ID = 'cat001'");
  start();
  press("department.insertAfter");
  EXPECT_EQ(scalar("SELECT template FROM categorie WHERE ID = 'cat004'"), "modello1");
  EXPECT_EQ(session.models.front(), "modello1");
}

TEST_F(WorkbenchGuards, WhatADialogChangedShowsWhenItIsClosed) {
  playDialog(&WorkbenchDialogs::shipping, "UPDATE categorie SET titolo = 'Orci' WHERE ID = 'cat001'", true);
  start();
  view.told.clear();
  view.fields.clear();
  press("shipping");
  EXPECT_EQ(shown(Categorie, "titolo"), "Orci");
  EXPECT_EQ(bench->sets().tree().front().titolo, "Orci");
  EXPECT_NE(std::ranges::find(view.told, "tree"), view.told.end());
  for (const EditedSet set : {Generale, Categorie, Articoli}) EXPECT_TRUE(view.fields.contains(set));
}

TEST_F(WorkbenchGuards, ADialogThatWasLeftReadsNothingAgain) {
  playDialog(&WorkbenchDialogs::shipping, "UPDATE categorie SET titolo = titolo", false);
  start();
  view.told.clear();
  press("shipping");
  EXPECT_EQ(std::ranges::find(view.told, "tree"), view.told.end());
}

TEST_F(WorkbenchGuards, TheFieldsFollowABuild) {
  playDialog(&WorkbenchDialogs::build, "UPDATE generale SET db_security = 'abc'", true);
  start();
  view.fields.clear();
  press("build");
  EXPECT_TRUE(view.fields.contains(Generale));
}

TEST_F(WorkbenchGuards, TheOnlyDepartmentStaysWithAllItsArticles) {
  run(shop, "DELETE FROM categorie WHERE ID <> 'cat001'; UPDATE categorie SET hafigli = 0");
  start();
  const std::string before = whole();
  user.answers = {Answer::Yes, Answer::Yes};
  press("department.delete");
  EXPECT_EQ(user.texts().back(), "Almeno un reparto deve essere definito: non è possibile eliminare questo reparto");
  EXPECT_EQ(whole(), before);
  EXPECT_EQ(undoName(), "");
}

}  // namespace
}  // namespace kv::test
