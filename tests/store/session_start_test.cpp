// Start, restart and close of the session.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shop_fixture.h"
#include "store/shop/open_shop.h"
#include "store/shop/session_start.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SessionStart : public test::ShopFixture {
 protected:
  void nameShop(const std::string& folder) { write(application + "/serverpath.net", folder + "\r\n"); }
  std::string noValidShop(const std::string& folder) const {
    return "La cartella '" + folder + "' non contiene un negozio valido.\nSi desidera aprire un altro negozio?";
  }
};

TEST_F(SessionStart, OpensTheApplicationsOwnShopWhenNoFolderIsNamed) {
  makeShopIn(application);
  EXPECT_EQ(startSession(session, env), LoadResult::Opened);
  EXPECT_EQ(session.ShopFolder, application);
}

TEST_F(SessionStart, DoesTheSameWithANameThatIsEmptyOrSpacesAlone) {
  makeShopIn(application);
  for (const char* content : {"", "   \r\n"}) {
    write(application + "/serverpath.net", content);
    EXPECT_EQ(startSession(session, env), LoadResult::Opened);
    EXPECT_EQ(session.ShopFolder, application);
    session.catalogue.close();
  }
}

TEST_F(SessionStart, OpensTheShopThatIsNamed) {
  const std::string shop = makeShop("mio negozio à");
  ASSERT_TRUE(ApriNegozio(session, env, shop));
  closeSession(session, env);
  session = Session();
  EXPECT_EQ(startSession(session, env), LoadResult::Opened);
  EXPECT_EQ(session.ShopFolder, shop);
  EXPECT_EQ(session.numberFormats, (std::array<std::string, 2>{"0", "0"}));
}

TEST_F(SessionStart, WritesTheSettingsThatAreMissing) {
  makeShopIn(application);
  ASSERT_EQ(startSession(session, env), LoadResult::Opened);
  EXPECT_EQ(settings.get("AppIni", "smartbuild"), "1");
  EXPECT_EQ(settings.get("AppIni", "Path"), application);
  EXPECT_TRUE(session.smartBuild);
}

TEST_F(SessionStart, KeepsIncrementalBuildOffAcrossARestart) {
  makeShopIn(application);
  ASSERT_TRUE(settings.set("AppIni", "smartbuild", "0"));
  ASSERT_EQ(startSession(session, env), LoadResult::Opened);
  EXPECT_EQ(settings.get("AppIni", "smartbuild"), "0");
  EXPECT_FALSE(session.smartBuild);
  EXPECT_EQ(RiavviaSessione(session, env), LoadResult::Opened);
  EXPECT_FALSE(session.smartBuild);
}

TEST_F(SessionStart, AsksForAnotherShopWhenTheNamedFolderIsGone) {
  nameShop(root / "gone");
  user.answers = {Answer::No};
  EXPECT_EQ(startSession(session, env), LoadResult::Failed);
  EXPECT_THAT(user.shown, ElementsAre(asked(noValidShop(root / "gone"), Answer::Yes, Answer::No)));
  EXPECT_FALSE(session.catalogue.isOpen());
}

TEST_F(SessionStart, IsReplacedByTheShopChosenInstead) {
  nameShop(root / "gone");
  const std::string shop = makeShop("due");
  user.answers = {Answer::Yes};
  user.folders = {shop};
  EXPECT_EQ(startSession(session, env), LoadResult::Replaced);
  EXPECT_EQ(session.ShopFolder, shop);
  EXPECT_TRUE(session.catalogue.isOpen());
  EXPECT_EQ(serverPath(), shop + "\r\n");
}

TEST_F(SessionStart, EndsWhenNoOtherShopIsChosen) {
  nameShop(root / "gone");
  user.answers = {Answer::Yes};
  EXPECT_EQ(startSession(session, env), LoadResult::Failed);
  EXPECT_EQ(user.foldersAsked.size(), 1U);
}

TEST_F(SessionStart, DoesNotJudgeTheVersionBeforeLoading) {
  const std::string shop = makeShop("uno", 500);
  nameShop(shop);
  user.answers = {Answer::No};
  EXPECT_EQ(startSession(session, env), LoadResult::Failed);
  EXPECT_THAT(user.texts(),
              ElementsAre("Negozio non compatibile con la versione Korvane\nSi desidera aprire un altro negozio?"));
}

TEST_F(SessionStart, OpensAShopOfALaterVersionThatIsNamed) {
  nameShop(makeShop("uno", 1100));
  EXPECT_EQ(startSession(session, env), LoadResult::Opened);
}

TEST_F(SessionStart, FindsTheOptionalEntriesByTheirFiles) {
  OptionalEntries none = optionalEntries(application);
  EXPECT_EQ(none.manual, "");
  EXPECT_FALSE(none.orders || none.availability || none.accounting);
  for (const char* name : {"manuale_template2.rtf", "ordsync.exe", "ogg.exe", "gwimp.exe"})
    write(application + "/" + name, "");
  const OptionalEntries some = optionalEntries(application);
  EXPECT_EQ(some.manual, application + "/manuale_template2.rtf");
  EXPECT_TRUE(some.orders && some.availability && some.accounting);
  write(application + "/manuale_template2.pdf", "");
  EXPECT_EQ(optionalEntries(application).manual, application + "/manuale_template2.pdf");
}

class SessionRestart : public SessionStart {
 protected:
  void SetUp() override {
    first = makeShop("uno");
    ASSERT_TRUE(ApriNegozio(session, env, first));
  }
  std::string first;
};

TEST_F(SessionRestart, ClearsTheSessionAndFollowsTheServerPath) {
  const std::string second = makeShop("due");
  run(second, "DELETE FROM articoli");
  session.currentLanguage = 3;
  session.compactOnExit = true;
  nameShop(second);
  EXPECT_EQ(RiavviaSessione(session, env), LoadResult::Opened);
  EXPECT_EQ(session.ShopFolder, second);
  EXPECT_EQ(session.articleCount, 0);
  EXPECT_EQ(session.currentLanguage, 1);
  EXPECT_FALSE(session.compactOnExit);
  EXPECT_EQ(session.onlineFolder, second + "/online");
}

TEST_F(SessionRestart, FreesTheCatalogueOfTheOldShop) {
  nameShop(makeShop("due"));
  ASSERT_EQ(RiavviaSessione(session, env), LoadResult::Opened);
  EXPECT_TRUE(Database::open(first + "/catalog.mdb", OpenMode::Exclusive));
}

TEST_F(SessionRestart, ReleasesBeforeItClosesAndBindsAgain) {
  std::vector<std::string> steps;
  env.hooks.bind = [&](Session& bound) { steps.push_back("bind " + bound.ShopFolder); };
  env.hooks.release = [&](Session& released) {
    steps.push_back(released.catalogue.isOpen() ? "release open" : "release closed");
  };
  EXPECT_EQ(RiavviaSessione(session, env), LoadResult::Opened);
  EXPECT_THAT(steps, ElementsAre("release open", "bind " + first));
}

TEST_F(SessionRestart, LetsTheProgramLoadItsWindowAgain) {
  int reloads = 0;
  env.hooks.reload = [&](const LoadOptions&) {
    ++reloads;
    EXPECT_FALSE(session.catalogue.isOpen());
    EXPECT_EQ(session.ShopFolder, "");
    EXPECT_EQ(loadSession(session, env), LoadResult::Opened);
  };
  EXPECT_EQ(RiavviaSessione(session, env), LoadResult::Opened);
  EXPECT_EQ(reloads, 1);
}

TEST_F(SessionRestart, HandsItsOptionsToTheNextLoad) {
  env.hooks.reload = [](const LoadOptions& options) {
    EXPECT_TRUE(options.silent);
    EXPECT_FALSE(options.folderJustChosen);
  };
  ignore(RiavviaSessione(session, env, {.silent = true}), "the state afterwards is looked at");
}

TEST_F(SessionRestart, DoesNotCountTowardsCompaction) {
  EXPECT_EQ(RiavviaSessione(session, env), LoadResult::Opened);
  EXPECT_EQ(settings.get("AppIni", "Times"), "");
}

TEST_F(SessionRestart, OfASecondProgramOnTheSameShopFindsItInUse) {
  Session second;
  EXPECT_EQ(startSession(second, env), LoadResult::Failed);
  EXPECT_THAT(user.texts(), ElementsAre("Il database è utilizzato da un altro utente."));
  EXPECT_TRUE(session.catalogue.isOpen());
}

TEST_F(SessionRestart, ClosingFreesTheCatalogueAndCountsOnlyALeavingUser) {
  closeSession(session, env);
  EXPECT_EQ(settings.get("AppIni", "Times"), "");
  EXPECT_TRUE(Database::open(first + "/catalog.mdb", OpenMode::Exclusive));
  ASSERT_EQ(startSession(session, env), LoadResult::Opened);
  session.compactOnExit = true;
  closeSession(session, env);
  EXPECT_EQ(settings.get("AppIni", "Times"), "1");
}

}  // namespace
}  // namespace kv
