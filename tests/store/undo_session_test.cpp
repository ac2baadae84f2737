// Undo and redo bring along what the session keeps of the rows: after each the session is that of a shop opened again.
#include <gtest/gtest.h>

#include <random>

#include "store/shop/kept_order_key.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_facts.h"
#include "store/tree_fixture.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

/// What a session keeps of the rows, as one text.
std::string factsOf(const Session& session) {
  std::string text = session.templatePath + "|" + session.onlineFolder + "|" + session.scriptFolder + "|";
  for (const std::string& model : session.models) text += model + ",";
  text += "|" + std::to_string(session.languageCount);
  for (const std::string& name : session.languageNames) text += "," + name;
  return text + "|" + std::to_string(session.currentLanguage);
}

class UndoSession : public TreeFixture {
 protected:
  void SetUp() override {
    write(application + "/template/altro/modello7.htm", "<KV_START><KV_END>");
    sql("PRAGMA synchronous=OFF");  // the shop lives for one test
    ASSERT_TRUE(readSessionFacts(session, application));
    bind();
    steps.begin();
  }
  void TearDown() override { steps.end(); }

  /// One step that changes a row; the session follows as the dialog of that row would have it.
  void change(const std::string& statement) {
    ASSERT_TRUE(steps.record("Passo", [&]() -> Result<> {
      if (auto done = session.catalogue.execute(statement); !done) return done;
      return readSessionFacts(session, application);
    }));
  }

  UndoHistory steps{sets, [this] { return readSessionFacts(session, application); }};
};

TEST_F(UndoSession, TheTemplateAndItsModelsFollow) {
  EXPECT_EQ(session.models, (std::vector<std::string>{"modello1", "modello2"}));
  change("UPDATE generale SET template = 'altro'");
  EXPECT_EQ(session.models, (std::vector<std::string>{"modello7"}));
  ASSERT_TRUE(steps.undo());
  EXPECT_EQ(session.templatePath, "template/base");
  EXPECT_EQ(session.models, (std::vector<std::string>{"modello1", "modello2"}));
  ASSERT_TRUE(steps.redo());
  EXPECT_EQ(session.templatePath, "template/altro");
}

TEST_F(UndoSession, TheWorkingFoldersFollow) {
  change("UPDATE generale SET siteonline = '/altrove/sito', sitescript = '/altrove/bo'");
  EXPECT_EQ(session.onlineFolder, "/altrove/sito");
  ASSERT_TRUE(steps.undo());
  EXPECT_EQ(session.onlineFolder, session.ShopFolder + "/online");
  EXPECT_EQ(session.scriptFolder, session.ShopFolder + "/scripts");
  ASSERT_TRUE(steps.redo());
  EXPECT_EQ(session.scriptFolder, "/altrove/bo");
}

TEST_F(UndoSession, TheLanguagesFollowAndOneThatIsGoneGivesWayToTheFirst) {
  change("UPDATE lingue SET lingua2 = 'inglese'");
  ASSERT_TRUE(sets.CambiaLingua(2));
  ASSERT_TRUE(steps.undo());
  EXPECT_EQ(session.languageNames[1], "");
  EXPECT_EQ(session.languageCount, 1);
  EXPECT_EQ(session.currentLanguage, 1);
  ASSERT_TRUE(steps.redo());
  EXPECT_EQ(session.languageNames[1], "inglese");
}

TEST_F(UndoSession, AKeyOfOrdersStaysWhateverIsUndone) {
  change("UPDATE generale SET template = 'altro'");
  const std::string key(64, 'a');
  ASSERT_TRUE(steps.record("Ordini", [&] { return writeOrderKey(session.catalogue, key); }));
  ASSERT_TRUE(steps.undo());
  EXPECT_EQ(session.templatePath, "template/base") << "the key was no step";
  EXPECT_EQ(readOrderKey(session.catalogue).value(), key);
}

TEST_F(UndoSession, AfterEveryUndoAndRedoTheSessionIsThatOfTheStateShown) {
  SCOPED_TRACE("KORVANE_TEST_SEED=" + std::to_string(seed()));
  std::mt19937 chance(seed());
  const auto pick = [&](int below) { return std::uniform_int_distribution<int>(0, below - 1)(chance); };
  const std::vector<std::string> changes{
      "UPDATE generale SET template = 'altro'", "UPDATE generale SET template = 'base'",
      "UPDATE generale SET template = NULL",    "UPDATE generale SET template = 'scomparso'",
      "UPDATE generale SET siteonline = '/a'",  "UPDATE generale SET siteonline = NULL",
      "UPDATE generale SET sitescript = '/b'",  "UPDATE generale SET sitescript = ''",
      "UPDATE lingue SET lingua2 = 'inglese'",  "UPDATE lingue SET lingua2 = NULL",
      "UPDATE lingue SET lingua1 = 'tedesco'",  "UPDATE lingue SET lingua3 = 'francese'"};
  const auto stored = [&] { return rows("SELECT * FROM generale") + rows("SELECT * FROM lingue"); };
  std::vector<std::string> shown{factsOf(session)};
  std::size_t at = 0;
  for (int round = 0; round < 300; ++round) {
    const int what = pick(3);
    if (what == 0) {
      const std::string before = stored();
      change(changes[static_cast<std::size_t>(pick(static_cast<int>(changes.size())))]);
      // A statement that left the rows as they were is no step.
      if (stored() == before) continue;
      shown.resize(++at);
      shown.push_back(factsOf(session));
    } else if (what == 1 && at > 0) {
      ASSERT_TRUE(steps.undo());
      ASSERT_EQ(factsOf(session), shown[--at]) << "round " << round;
    } else if (what == 2 && at + 1 < shown.size()) {
      ASSERT_TRUE(steps.redo());
      ASSERT_EQ(factsOf(session), shown[++at]) << "round " << round;
    }
  }
}

}  // namespace
}  // namespace kv::test
