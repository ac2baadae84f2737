// Fields whose row can't be written: what was typed is kept, tree and list show what is stored, and nothing moves on.

#include <array>

#include "shell/workbench_fixture.h"
#include "store/catalogue/side_fields.h"
#include "store/schema/side_tables.h"
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

/// Two texts that the field of an editor takes.
std::array<std::string, 2> textsOf(const Editor& editor) {
  if (editor.control == Control::Check || editor.control == Control::Choice) return {"1", "0"};
  if (editor.column == "misura") return {"kg", "l"};
  if (editor.column == "produttore") return {"Forno", "Vetreria"};
  if (editor.column == "affiancati") return {"3", "4"};
  return isNumberKind(editor.kind) ? std::array<std::string, 2>{"7", "8"}
                                   : std::array<std::string, 2>{"altro", "anfora"};
}

bool isTyped(const Editor& editor) {
  return editor.control != Control::Picture && editor.control != Control::Variant && editor.control != Control::Shown &&
         editor.column != reverseRateField;
}

class FailingFieldOf : public FailingField, public ::testing::WithParamInterface<EditedSet> {
 protected:
  void open() {
    FailingField::open();
    ASSERT_TRUE(prepareSideField(session.catalogue, SideField::Maker));
    ASSERT_TRUE(session.catalogue.execute("INSERT INTO produttori (nome) VALUES ('Vetreria'), ('Forno')"));
  }
  /// The rows of the catalogue, and of the tables beside it that have any.
  std::string everything() {
    std::string text = whole();
    for (const char* table : {"identita", "unita", "sicurezza", "consegna"}) {
      if (hasSideTable(session.catalogue, table)) text += rows(std::string("SELECT * FROM ") + table);
    }
    return text;
  }
  /// Leaves a field with another text than it shows, while one call of the store fails. False when there were less.
  bool leaveOnce(const Editor& editor, std::int64_t call) {
    const auto texts = textsOf(editor);
    const std::string& text = bench->shown(editor) == texts[0] ? texts[1] : texts[0];
    const std::string before = everything();
    FailingStore store(call);
    const Workbench::LeftField left = bench->leaveField(editor, text);
    const bool hasFailed = store.hasFailed();
    setStatementGate(nullptr);
    const bool isStored = bench->shown(editor) == text;
    EXPECT_EQ(everything() == before, !isStored);
    // What can't be read again after the row was written is no failure of the field.
    EXPECT_TRUE(isStored || !left.saved);
    EXPECT_TRUE(left.saved || !left.mark.empty());
    EXPECT_TRUE(hasFailed || left.saved);
    EXPECT_EQ(bench->sets().department(), "cat001");
    EXPECT_EQ(bench->sets().article(), 1);
    return hasFailed;
  }
};

TEST_P(FailingFieldOf, KeepsItsTextWhicheverCallOfTheStoreFails) {
  open();
  int failed = 0;
  for (const Editor& editor : editorTable()) {
    if (editor.set != GetParam() || !isTyped(editor)) continue;
    for (std::int64_t call = 1; !HasFailure(); ++call) {
      SCOPED_TRACE(std::string(editor.column) + " at call " + std::to_string(call));
      if (!leaveOnce(editor, call)) break;
      ++failed;
    }
  }
  EXPECT_GT(failed, 100);
}

INSTANTIATE_TEST_SUITE_P(EachSet, FailingFieldOf,
                         ::testing::Values(EditedSet::Articoli, EditedSet::Categorie, EditedSet::Generale),
                         [](const auto& tried) {
                           return tried.param == EditedSet::Articoli    ? "Articles"
                                  : tried.param == EditedSet::Categorie ? "Departments"
                                                                        : "Shop";
                         });

}  // namespace
}  // namespace kv::test
