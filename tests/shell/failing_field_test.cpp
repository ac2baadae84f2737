// Fields whose row can't be written: what was typed is kept, tree and list show what is stored, and nothing moves on.

#include "shell/workbench_fixture.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

class FailingField : public WorkbenchFixture {
 protected:
  void open() {
    start();
    go("cat001");
    article(0);
  }
  /// Leaves a field while the store is full.
  Workbench::LeftField leaveOnFullDisk(EditedSet set, std::string_view column, const std::string& text) {
    FailingStore full(1, AfterFailure::FailsToo, FailingStore::fullDisk);
    full.onlyFor("UPDATE");
    return bench->leaveField(*editorOf(set, column), text);
  }
};

TEST_F(FailingField, WhatWasTypedIsKeptAndTheFieldSaysWhy) {
  open();
  const std::string before = whole();
  const Workbench::LeftField left = leaveOnFullDisk(EditedSet::Articoli, "titolo", "Aurora");
  EXPECT_FALSE(left.saved);
  EXPECT_TRUE(left.mark.starts_with("Non salvato. Titolo: il disco è pieno.")) << left.mark;
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_TRUE(user.shown[0].text.starts_with("Titolo: il disco è pieno.")) << user.shown[0].text;
  EXPECT_EQ(user.shown[0].icon, Icon::Critical);
  EXPECT_EQ(whole(), before);
  EXPECT_FALSE(bench->history().canUndo());
}

TEST_F(FailingField, TheSameFailureOfTheSameTextIsToldOnce) {
  open();
  EXPECT_FALSE(leaveOnFullDisk(EditedSet::Articoli, "titolo", "Aurora").saved);
  EXPECT_FALSE(leaveOnFullDisk(EditedSet::Articoli, "titolo", "Aurora").saved);
  EXPECT_EQ(user.shown.size(), 1U);
  EXPECT_FALSE(leaveOnFullDisk(EditedSet::Articoli, "titolo", "Aurora 2").saved);
  EXPECT_EQ(user.shown.size(), 2U);
  EXPECT_TRUE(bench->leaveField(*editorOf(EditedSet::Articoli, "titolo"), "Aurora 2").saved);
  EXPECT_EQ(shown(EditedSet::Articoli, "titolo"), "Aurora 2");
}

TEST_F(FailingField, TheTreeShowsTheTitleThatIsStored) {
  open();
  EXPECT_FALSE(leaveOnFullDisk(EditedSet::Categorie, "titolo", "Orci").saved);
  EXPECT_EQ(view.told.back(), "title cat001=Vasi");
}

TEST_F(FailingField, NothingMovesOffARowThatIsNotSaved) {
  open();
  view.canFinish = false;
  go("cat003");
  EXPECT_EQ(bench->sets().department(), "cat001");
  EXPECT_EQ(view.selected, "cat001");
  article(1);
  EXPECT_EQ(bench->sets().article(), 1);
  bench->MostraArticolo(4);
  EXPECT_EQ(bench->sets().article(), 1);
  bench->selectTab(Tab::Site);
  EXPECT_EQ(bench->tab(), Tab::Departments);
  EXPECT_EQ(view.tab, Tab::Departments);
  bench->CambiaLingua(2);
  EXPECT_EQ(session.currentLanguage, 1);
  bench->selectListino(3);
  EXPECT_EQ(bench->listino(), 0);
  bench->SpostaNodo("cat002", "cat003");
  EXPECT_EQ(scalar("SELECT genitore FROM categorie WHERE ID = 'cat002'"), "cat001");
  press("article.down");
  EXPECT_EQ(titles(), "Alba\nBrina\nCielo\n");
}

TEST_F(FailingField, LeavingTheProgramAsksAndNoIsTheDefault) {
  open();
  EXPECT_TRUE(bench->mayLeave());
  EXPECT_TRUE(user.shown.empty());
  view.canFinish = false;
  user.answers = {Answer::No};
  EXPECT_FALSE(bench->mayLeave());
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text,
            "Alcune modifiche non sono state salvate e andranno perse.\nSi desidera uscire ugualmente?");
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  user.answers = {Answer::Yes};
  EXPECT_TRUE(bench->mayLeave());
}

/// A text that each kind of field takes and that differs from what the rows of the fixture hold.
std::string anotherText(const Editor& editor) {
  if (editor.control == Control::Check) return "1";
  if (editor.control == Control::Choice) return "1";
  return isNumberKind(editor.kind) ? "7" : "altro";
}

TEST_F(FailingField, EveryFieldKeepsItsTextWhicheverCallOfTheStoreFails) {
  open();
  int failed = 0;
  for (const Editor& editor : editorTable()) {
    const bool isTyped = editor.control != Control::Picture && editor.control != Control::Variant &&
                         editor.control != Control::Shown && editor.column != reverseRateField && !editor.beside;
    if (!isTyped) continue;
    const std::string text = bench->shown(editor) == anotherText(editor) ? "0" : anotherText(editor);
    const std::string before = whole();
    for (std::int64_t call = 1;; ++call) {
      FailingStore store(call);
      const Workbench::LeftField left = bench->leaveField(editor, text);
      if (!store.hasFailed()) {
        EXPECT_TRUE(left.saved) << editor.column;
        break;
      }
      if (left.saved) break;  // what failed was only read again, and the row is written
      ++failed;
      EXPECT_FALSE(left.mark.empty()) << editor.column << " at call " << call;
      const bool isStored = bench->shown(editor) == text;
      EXPECT_EQ(whole() == before, !isStored) << editor.column << " at call " << call;
    }
  }
  EXPECT_GT(failed, 200);
}

}  // namespace
}  // namespace kv::test
