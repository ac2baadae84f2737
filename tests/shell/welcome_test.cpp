// The welcome page's rules: new shops, the shops that were open last, and what each choice does.

#include "shell/dialogs/welcome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/files/user_folders.h"
#include "shell/dialogs/recent_shops.h"
#include "store/shop/backup_copies.h"
#include "store/shop/session_start.h"
#include "store/shop_fixture.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class WelcomePage : public ShopFixture {
 protected:
  WelcomePage() {
    makeShopIn(application + "/new");
    write(joinPath(application + "/new", "work/tazza.jpg"), "picture");
    write(application + "/new/code/site.js", "script");
    run(application + "/new",
        "UPDATE generale SET titolo = 'Bottega', titolo_l2 = 'Shop', testo1 = 'Ciao', immagine0 = 'logo.png',"
        " imgX0 = 345, email = 'a@b.example', valuta1 = 'EUR';"
        "UPDATE lingue SET lingua2 = 'inglese';"
        "INSERT INTO opzioni (ID, nome) VALUES (1, '(nessuna)'), (2, 'Smalto');"
        "INSERT INTO categorie (contatore, ID, genitore, titolo) VALUES (5, 'cat005', '###', 'Ceramiche')");
  }
  ~WelcomePage() override { closeSession(session, env); }

  bool carryOut(Welcome what, const std::string& folder = {}) {
    return carryOutWelcome({what, folder}, session, env, [this] { return ++copiesAsked > 0; });
  }
  std::string held(const std::string& sql) {
    const auto value = session.catalogue.scalar(sql);
    return value ? asText(*value) : "failed: " + value.error().what;
  }
  /// Some values of a query with one column, joined.
  std::string all(const std::string& column, const std::string& table) {
    return held("SELECT group_concat(" + column + ") FROM " + table);
  }

  int copiesAsked = 0;
};

TEST_F(WelcomePage, AnEmptyShopHasOneDepartmentNoArticleAndNothingOfTheModelsOwn) {
  const std::string folder = root / "Negozi/il mio";
  EXPECT_TRUE(carryOut(Welcome::EmptyShop, folder)) << "folders that are missing are made";
  EXPECT_EQ(session.ShopFolder, folder);
  EXPECT_EQ(all("ID || ' ' || titolo || ' ' || genitore", "categorie"), "cat001 Nuovo Reparto ###");
  EXPECT_EQ(all("ID", "articoli"), "");
  EXPECT_EQ(all("nome", "opzioni"), "(nessuna)");
  EXPECT_EQ(session.languageCount, 1);
  EXPECT_EQ(held("SELECT coalesce(titolo, titolo_l2, testo1, immagine0, email, '-') || imgX0 FROM generale"), "-0");
  EXPECT_EQ(held("SELECT valuta1 FROM generale"), "EUR") << "settings stay";
  EXPECT_THAT(listFiles(folder + "/work", "*.*"), IsEmpty());
  EXPECT_TRUE(fileExists(folder + "/code/site.js"));
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(WelcomePage, AShopFromTheModelIsTheModel) {
  EXPECT_TRUE(carryOut(Welcome::ModelShop, root / "a/b"));
  EXPECT_EQ(all("titolo", "categorie"), "Ceramiche");
  EXPECT_TRUE(fileExists(joinPath(root / "a/b", "work/tazza.jpg")));
}

TEST_F(WelcomePage, AnEmptyShopThatCantBeMadeIsNoShopToOpen) {
  run(application + "/new", "DROP TABLE cliparticoli");
  EXPECT_FALSE(carryOut(Welcome::EmptyShop, root / "nuovo"));
  EXPECT_THAT(user.shown, ElementsAre(said("Impossibile creare un negozio nel percorso specificato", Icon::Critical)));
  EXPECT_FALSE(fileExists(root / "nuovo/catalog.mdb"));
  EXPECT_EQ(serverPath(), "(none)");
}

TEST_F(WelcomePage, AFolderIsRefusedWhenItIsMissingTheRootOrAShop) {
  EXPECT_EQ(welcomeRefusal(""), "Indicare la cartella del nuovo negozio");
  EXPECT_EQ(welcomeRefusal("/"), "La cartella '/' è la root di un disco, e non è consentito crearvi un nuovo negozio");
  EXPECT_EQ(welcomeRefusal(makeShop("uno")), "Nel percorso specificato è già presente un negozio");
  EXPECT_EQ(welcomeRefusal(root / "non c'è ancora"), "");
}

TEST_F(WelcomePage, OpeningLeadsToTheShopThatIsChosen) {
  const std::string one = makeShop("uno"), other = makeShop("due");
  user.folders = {other};
  EXPECT_TRUE(carryOut(Welcome::Open));
  EXPECT_EQ(session.ShopFolder, other);
  EXPECT_TRUE(carryOut(Welcome::Recent, one));
  EXPECT_EQ(session.ShopFolder, one);
}

TEST_F(WelcomePage, StayingChangesNothingAndACopyIsAskedFor) {
  EXPECT_FALSE(carryOut(Welcome::Stay));
  EXPECT_EQ(serverPath(), "(none)");
  EXPECT_TRUE(carryOut(Welcome::RestoreCopy));
  EXPECT_EQ(copiesAsked, 1);
}

TEST_F(WelcomePage, ATypedTildeIsTheHomeFolder) {
  EXPECT_EQ(typedShopFolder(" ~/Negozi/uno/ "), joinPath(homeFolder(), "Negozi/uno"));
  EXPECT_EQ(typedShopFolder("/a/../b"), "/b");
  EXPECT_EQ(typedShopFolder("   "), "");
}

TEST_F(WelcomePage, BrowsingBeginsAtTheNearestFolderThatIsThere) {
  EXPECT_EQ(nearestFolder(root / "Negozi/uno"), root.path());
  EXPECT_EQ(nearestFolder("/"), "/");
}

TEST_F(WelcomePage, TheProposedFolderIsBelowNegoziAndNotThereYet) {
  const std::string home = homeFolder();
  setenv("HOME", root.path().c_str(), 1);
  EXPECT_EQ(welcomeFacts(session, env).newFolder, root / "Negozi/negozio");
  EXPECT_TRUE(createFolders(root / "Negozi/negozio"));
  EXPECT_EQ(welcomeFacts(session, env).newFolder, root / "Negozi/negozio 2");
  setenv("HOME", home.c_str(), 1);
}

TEST_F(WelcomePage, TheLastShopsComeFirstWithoutTheOpenOneAndThoseThatAreGone) {
  const std::string one = makeShop("uno"), two = makeShop("due"), three = makeShop("tre");
  for (const std::string& shop : {one, two, three, one, root / "sparito"}) rememberShop(settings, shop);
  rememberShop(settings, "");
  EXPECT_THAT(recentShops(settings), ElementsAre(one, three, two));
  session.ShopFolder = three;
  EXPECT_THAT(welcomeFacts(session, env).recent, ElementsAre(one, two));
  session.ShopFolder.clear();
}

TEST_F(WelcomePage, EightShopsAreRemembered) {
  std::vector<std::string> shops;
  for (int i = 0; i < 10; ++i) shops.push_back(makeShop("shop" + std::to_string(i)));
  for (const std::string& shop : shops) rememberShop(settings, shop);
  const std::vector<std::string> recent = recentShops(settings);
  EXPECT_EQ(recent.size(), mostRecentShops);
  EXPECT_EQ(recent.front(), shops.back());
  EXPECT_EQ(recent.back(), shops[2]);
}

TEST_F(WelcomePage, ACopyIsOfferedWhereThereIsOne) {
  session.ShopFolder = makeShop("uno");
  EXPECT_FALSE(welcomeFacts(session, env).hasCopies);
  ASSERT_TRUE(keepDatedCopy(session.ShopFolder, env.clock).value_or(false));
  EXPECT_TRUE(welcomeFacts(session, env).hasCopies);
  session.ShopFolder.clear();
}

}  // namespace
}  // namespace kv::test
