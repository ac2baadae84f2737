// Undo and redo of the commands that the session listens to: what it keeps of the rows follows.

#include "shell/workbench_fixture.h"
#include "store/shop/session_facts.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class UndoneSession : public WorkbenchFixture {
 protected:
  void SetUp() override {
    write(application + "/template/altro/modello7.htm", "<KV_START><KV_END>");
    start();
  }
  /// A dialog that runs a statement and is confirmed.
  void play(DialogMember member, const std::string& statement) {
    dialogs().*member = [this, statement] { return session.catalogue.execute(statement).has_value(); };
  }
  /// What a session that is filled again from the rows would hold.
  std::string freshFacts() {
    Session fresh;
    fresh.ShopFolder = session.ShopFolder;
    std::swap(fresh.catalogue, session.catalogue);
    EXPECT_TRUE(readSessionFacts(fresh, application));
    std::swap(fresh.catalogue, session.catalogue);
    return factsOf(fresh);
  }
  static std::string factsOf(const Session& of) {
    std::string text = of.templatePath + "|" + of.onlineFolder + "|" + of.scriptFolder;
    for (const std::string& model : of.models) text += "|" + model;
    for (const std::string& name : of.languageNames) text += "|" + name;
    return text + "|" + std::to_string(of.languageCount);
  }
};

TEST_F(UndoneSession, ABuildAfterAnUndoneTemplateUsesTheOneInTheCatalogue) {
  env.hooks.frmTemplate = [](const std::string&) { return std::string("altro"); };
  press("template");
  ASSERT_EQ(session.templatePath, "template/altro");
  undo();
  EXPECT_EQ(scalar("SELECT template FROM generale"), "base");
  EXPECT_EQ(session.templatePath, "template/base");
  EXPECT_THAT(session.models, ElementsAre("modello1", "modello2"));
  redo();
  EXPECT_EQ(session.templatePath, "template/altro");
  EXPECT_EQ(factsOf(session), freshFacts());
}

TEST_F(UndoneSession, TheLanguagesShownAreThoseOfTheCatalogue) {
  play(&WorkbenchDialogs::languages, "UPDATE lingue SET lingua1 = 'inglese', lingua2 = NULL");
  press("languages");
  ASSERT_EQ(session.languageCount, 1);
  view.told.clear();
  undo();
  EXPECT_EQ(session.languageNames[0], "italiano");
  EXPECT_EQ(session.languageCount, 2);
  EXPECT_THAT(view.told, ::testing::Contains("languages"));
  EXPECT_EQ(factsOf(session), freshFacts());
}

TEST_F(UndoneSession, CleaningAfterAnUndoneChangeOfFoldersNamesTheFoldersInUse) {
  play(&WorkbenchDialogs::changeFolders, "UPDATE generale SET siteonline = '/altrove'");
  press("shop.folders");
  undo();
  EXPECT_EQ(session.onlineFolder, shop + "/online");
  user.shown.clear();
  press("shop.cleanFolders");
  ASSERT_FALSE(user.shown.empty());
  EXPECT_THAT(user.shown.front().text, HasSubstr(shop + "/online\n"));
}

TEST_F(UndoneSession, EveryCommandWithADialogLeavesTheSessionAsOpenedAfterUndoAndRedo) {
  const char* const statement =
      "UPDATE generale SET template = 'altro', siteonline = '/a', sitescript = '/b';"
      "UPDATE lingue SET lingua2 = 'tedesco', lingua3 = 'francese'";
  for (const PlainDialog& dialog : plainDialogs) play(dialog.member, statement);
  int steps = 0;
  for (const Command& row : bench->commands().table().rows()) {
    if (row.step.empty() || row.number >= 0) continue;
    const std::string before = undoName();
    choose(row.name);
    if (undoName().empty() || undoName() == before) continue;
    ++steps;
    undo();
    EXPECT_EQ(factsOf(session), freshFacts()) << row.name << " undone";
    redo();
    EXPECT_EQ(factsOf(session), freshFacts()) << row.name << " redone";
    undo();
  }
  EXPECT_GT(steps, 3);
}

TEST_F(UndoneSession, AFailedUndoKeepsTheSessionOfTheRowsAsTheyAre) {
  play(&WorkbenchDialogs::changeFolders, "UPDATE generale SET siteonline = '/altrove'");
  press("shop.folders");
  session.onlineFolder = "/altrove";
  bool failed = true;
  for (int n = 1; failed; ++n) {
    {
      const FailingStore store(n);
      undo();
      failed = store.hasFailed();
    }
    EXPECT_EQ(factsOf(session), freshFacts()) << n;
    if (!undoName().empty()) continue;
    redo();
  }
}

TEST_F(UndoneSession, AFailureIsToldInItalianWithTheTechnicalTextBelow) {
  go("cat001");
  const FailingStore store(1, AfterFailure::FailsToo);
  leave(EditedSet::Articoli, "titolo", "Aurora");
  ASSERT_FALSE(user.shown.empty());
  EXPECT_THAT(user.shown.back().text, HasSubstr("\n\nDettaglio: "));
  EXPECT_EQ(user.shown.back().icon, Icon::Critical);
}

}  // namespace
}  // namespace kv::test
