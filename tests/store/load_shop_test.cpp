// Loading a shop into the session: what is filled in, and each way to fail.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "shop_fixture.h"
#include "store/shop/load_shop.h"
#include "support/value_of.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* const incompatible =
    "Negozio non compatibile con la versione Korvane\nSi desidera aprire un altro negozio?";
const char* const inUse = "Il database è utilizzato da un altro utente.";
const char* const corrupt = "Il database è corrotto, oppure sono stati cancellati alcuni file del programma.";
const char* const readOnly =
    "Il file \"catalog.mdb\" potrebbe essere in sola lettura.\n\n"
    "Se la cartella del negozio è stata copiata da un CD o altro supporto\n"
    "di sola lettura, per aprire il negozio sarà necessario rimuovere l'attributo\n"
    "\"sola lettura\" da tutti i file della cartella e delle sottocartelle.\n\nSi desidera farlo ora?";

class LoadingAShop : public test::ShopFixture {
 protected:
  LoadResult load(const std::string& folder, const LoadOptions& options = {}) {
    session.ShopFolder = folder;
    return CaricaNegozio(session, env, options);
  }
};

TEST_F(LoadingAShop, ResultsHaveTheirNumbers) {
  EXPECT_EQ(static_cast<int>(LoadResult::Failed), 0);
  EXPECT_EQ(static_cast<int>(LoadResult::Opened), 1);
  EXPECT_EQ(static_cast<int>(LoadResult::Replaced), 2);
}

TEST_F(LoadingAShop, FillsTheSession) {
  const std::string shop = makeShop("uno");
  EXPECT_EQ(load(shop), LoadResult::Opened);
  EXPECT_TRUE(session.catalogue.isOpen());
  EXPECT_EQ(session.articleCount, 1);
  EXPECT_EQ(session.onlineFolder, shop + "/online");
  EXPECT_EQ(session.scriptFolder, shop + "/scripts");
  EXPECT_EQ(session.templatePath, "template/base");
  EXPECT_THAT(session.models, ElementsAre("modello1", "modello2"));
  EXPECT_EQ(session.languageCount, 1);
  EXPECT_EQ(session.languageNames[0], "italiano");
  EXPECT_EQ(session.currentLanguage, 1);
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(LoadingAShop, KeepsTheCatalogueWithItsPasswordsFromOtherUsers) {
  const std::string catalogue = makeShop("uno") + "/catalog.mdb";
  ASSERT_EQ(::chmod(catalogue.c_str(), 0644), 0);
  unsigned whenCopied = 0;
  const auto modeNow = [&] {
    struct stat status {};
    EXPECT_EQ(::stat(catalogue.c_str(), &status), 0);
    return status.st_mode & 07777U;
  };
  env.hooks.CopiaCatalogo = [&](const std::string&) { whenCopied = modeNow(); };
  ASSERT_EQ(load(std::string(folderOf(catalogue))), LoadResult::Opened);
  EXPECT_EQ(whenCopied, 0600U) << "its copies take over what it has";
  EXPECT_EQ(modeNow(), 0600U);
}

TEST_F(LoadingAShop, HoldsTheCatalogueForItself) {
  const std::string shop = makeShop("uno");
  ASSERT_EQ(load(shop), LoadResult::Opened);
  const auto second = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
  ASSERT_FALSE(second);
  EXPECT_EQ(second.error().kind, ErrorKind::InUse);
}

TEST_F(LoadingAShop, FailsSilentlyWithoutAFolder) {
  EXPECT_EQ(load(""), LoadResult::Failed);
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(LoadingAShop, RunsTheStepsOfTheHigherFoldersInTheirOrder) {
  const std::string shop = makeShop("uno");
  std::vector<std::string> steps;
  env.hooks.CompletaGateway = [&](const std::string& folder) {
    steps.push_back("gateway " + std::string(baseName(folder)) + (session.catalogue.isOpen() ? " open" : " closed"));
  };
  env.hooks.AggiornaNegozio = [&](const std::string& folder) {
    steps.push_back("upgrade " + std::string(baseName(folder)) + (session.catalogue.isOpen() ? " open" : " closed"));
  };
  env.hooks.bind = [&](Session& bound) {
    steps.push_back("bind " + std::to_string(bound.articleCount) + " [" + bound.onlineFolder + "]");
  };
  EXPECT_EQ(load(shop), LoadResult::Opened);
  EXPECT_THAT(steps, ElementsAre("gateway uno closed", "upgrade uno closed", "bind 1 []"));
}

TEST_F(LoadingAShop, OffersAnotherShopForAnIncompatibleOne) {
  for (const int version : {0, 298, 299, 999}) {
    user.shown.clear();
    user.answers = {Answer::No};
    EXPECT_EQ(load(makeShop("v" + std::to_string(version), version)), LoadResult::Failed);
    EXPECT_THAT(user.shown, ElementsAre(asked(incompatible, Answer::Yes, Answer::No)));
    EXPECT_FALSE(session.catalogue.isOpen());
  }
}

TEST_F(LoadingAShop, DoesNotUpgradeAnIncompatibleShop) {
  const std::string shop = makeShop("uno", 999);
  env.hooks.AggiornaNegozio = [](const std::string& folder) { run(folder, "UPDATE generale SET versione = 1002"); };
  user.answers = {Answer::No};
  EXPECT_EQ(load(shop), LoadResult::Failed);
  EXPECT_EQ(read(shop, "SELECT versione FROM generale"), "999");
}

TEST_F(LoadingAShop, IsReplacedByTheShopChosenInstead) {
  const std::string other = makeShop("due");
  user.answers = {Answer::Yes};
  user.folders = {other};
  EXPECT_EQ(load(makeShop("uno", 500)), LoadResult::Replaced);
  EXPECT_EQ(session.ShopFolder, other);
  EXPECT_TRUE(session.catalogue.isOpen());
}

TEST_F(LoadingAShop, FailsWhenTheShopChosenInsteadIsRefused) {
  const std::string shop = makeShop("uno", 500);
  user.answers = {Answer::Yes};
  user.folders = {shop};
  EXPECT_EQ(load(shop), LoadResult::Failed);
  EXPECT_THAT(user.texts(), ElementsAre(incompatible, "Versione non riconosciuta: il negozio non può essere aperto."));
}

TEST_F(LoadingAShop, SaysThatAnotherUserHoldsTheCatalogue) {
  const std::string shop = makeShop("uno");
  const auto other = Database::open(shop + "/catalog.mdb", OpenMode::Exclusive);
  ASSERT_TRUE(other);
  EXPECT_EQ(load(shop), LoadResult::Failed);
  EXPECT_THAT(user.shown, ElementsAre(said(inUse, Icon::Critical)));
  EXPECT_EQ(session.ShopFolder, "");
}

TEST_F(LoadingAShop, SaysThatTheCatalogueIsCorrupt) {
  const std::string shop = makeShop("uno");
  write(shop + "/catalog.mdb", "no database");
  EXPECT_EQ(load(shop), LoadResult::Failed);
  EXPECT_THAT(user.shown, ElementsAre(said(corrupt, Icon::Critical)));
  EXPECT_EQ(session.ShopFolder, "");
  EXPECT_FALSE(session.catalogue.isOpen());
}

TEST_F(LoadingAShop, SaysTheSameOfACatalogueThatIsCutShortEmptyOrGone) {
  const std::string whole = readBytes(makeShop("source") + "/catalog.mdb").value();
  const std::string shop = makeShop("uno");
  for (const std::size_t size : {std::size_t{0}, std::size_t{50}, std::size_t{3000}}) {
    user.shown.clear();
    write(shop + "/catalog.mdb", std::string_view(whole).substr(0, size));
    EXPECT_EQ(load(shop), LoadResult::Failed) << size;
    EXPECT_THAT(user.texts(), ElementsAre(corrupt)) << size;
  }
  user.shown.clear();
  ASSERT_TRUE(deleteFile(shop + "/catalog.mdb"));
  EXPECT_EQ(load(shop), LoadResult::Failed);
  EXPECT_THAT(user.texts(), ElementsAre(corrupt));
}

TEST_F(LoadingAShop, SaysTheSameOfACatalogueThatLacksATableOrItsRow) {
  int number = 0;
  for (const char* damage :
       {"DROP TABLE articoli", "DELETE FROM generale", "DELETE FROM lingue", "DROP TABLE lingue"}) {
    user.shown.clear();
    const std::string shop = makeShop("damaged" + std::to_string(++number));
    run(shop, damage);
    EXPECT_EQ(load(shop), LoadResult::Failed) << damage;
    EXPECT_THAT(user.shown, ElementsAre(said(corrupt, Icon::Critical))) << damage;
    EXPECT_FALSE(session.catalogue.isOpen()) << damage;
  }
}

TEST_F(LoadingAShop, ReleasesWhatWasBoundWhenALaterStepFails) {
  const std::string shop = makeShop("uno");
  run(shop, "DELETE FROM lingue");
  int bound = 0;
  env.hooks.bind = [&](Session&) { ++bound; };
  env.hooks.release = [&](Session& released) {
    EXPECT_TRUE(released.catalogue.isOpen());
    --bound;
  };
  EXPECT_EQ(load(shop), LoadResult::Failed);
  EXPECT_EQ(bound, 0);
}

TEST_F(LoadingAShop, RepairsAReadOnlyShopWhenWanted) {
  const std::string shop = makeShop("uno");
  std::filesystem::permissions(shop + "/catalog.mdb", std::filesystem::perms::owner_read);
  std::filesystem::permissions(shop + "/kvftp.mdb", std::filesystem::perms::owner_read);
  user.answers = {Answer::Yes};
  EXPECT_EQ(load(shop), LoadResult::Failed);
  EXPECT_THAT(user.shown,
              ElementsAre(asked(readOnly, Answer::Yes, Answer::Yes, Icon::Exclamation),
                          said("Operazione completata. Sarà necessario riavviare il programma.", Icon::Information)));
  EXPECT_EQ(load(shop), LoadResult::Opened);
  EXPECT_TRUE(writeBytes(shop + "/kvftp.mdb", "x"));
}

TEST_F(LoadingAShop, LeavesAReadOnlyShopAsItIsWhenNot) {
  const std::string shop = makeShop("uno");
  std::filesystem::permissions(shop + "/catalog.mdb", std::filesystem::perms::owner_read);
  user.answers = {Answer::No};
  EXPECT_EQ(load(shop), LoadResult::Failed);
  EXPECT_THAT(user.shown, ElementsAre(asked(readOnly, Answer::Yes, Answer::No, Icon::Exclamation)));
  EXPECT_EQ(session.ShopFolder, "");
  EXPECT_EQ(std::filesystem::status(shop + "/catalog.mdb").permissions(), std::filesystem::perms::owner_read);
}

TEST_F(LoadingAShop, TakesTheWorkingFoldersOfTheSettings) {
  const std::string shop = makeShop("uno");
  ASSERT_TRUE(createFolders(root / "pubblico"));
  ASSERT_TRUE(createFolders(root / "script"));
  run(shop, "UPDATE generale SET siteonline = '" + root / "pubblico" + "', sitescript = '" + root / "script" + "'");
  EXPECT_EQ(load(shop), LoadResult::Opened);
  EXPECT_EQ(session.onlineFolder, root / "pubblico");
  EXPECT_EQ(session.scriptFolder, root / "script");
}

TEST_F(LoadingAShop, TakesAnEmptyWorkingFolderForTheDefault) {
  const std::string shop = makeShop("uno");
  run(shop, "UPDATE generale SET siteonline = '', sitescript = ''");
  EXPECT_EQ(load(shop), LoadResult::Opened);
  EXPECT_EQ(session.onlineFolder, shop + "/online");
  EXPECT_EQ(session.scriptFolder, shop + "/scripts");
}

TEST_F(LoadingAShop, ResetsAMissingWorkingFolderWhenWanted) {
  const std::string shop = makeShop("uno");
  run(shop, "UPDATE generale SET siteonline = '/gone/online'");
  user.answers = {Answer::Yes};
  EXPECT_EQ(load(shop), LoadResult::Opened);
  EXPECT_THAT(user.shown, ElementsAre(asked("La cartella di lavoro \"/gone/online\" non esiste:\nSi desidera "
                                            "resettarla e utilizzare quella predefinita?",
                                            Answer::No, Answer::Yes)));
  EXPECT_EQ(session.onlineFolder, shop + "/online");
  EXPECT_EQ(asText(test::valueOf(session.catalogue.scalar("SELECT siteonline FROM generale"))), "");
}

TEST_F(LoadingAShop, GoesOnWithAMissingWorkingFolderWhenNot) {
  const std::string shop = makeShop("uno");
  run(shop, "UPDATE generale SET sitescript = '/gone/scripts'");
  user.answers = {Answer::No};
  EXPECT_EQ(load(shop), LoadResult::Opened);
  EXPECT_THAT(user.shown, ElementsAre(asked("La cartella di lavoro \"/gone/scripts\" non esiste:\nSi desidera "
                                            "resettarla e utilizzare quella predefinita?",
                                            Answer::No, Answer::No)));
  EXPECT_EQ(session.scriptFolder, "/gone/scripts");
  EXPECT_EQ(asText(test::valueOf(session.catalogue.scalar("SELECT sitescript FROM generale"))), "/gone/scripts");
}

TEST_F(LoadingAShop, AsksForEachMissingWorkingFolder) {
  const std::string shop = makeShop("uno");
  run(shop, "UPDATE generale SET siteonline = '/gone/a', sitescript = '/gone/b'");
  user.answers = {Answer::No, Answer::Yes};
  EXPECT_EQ(load(shop), LoadResult::Opened);
  EXPECT_EQ(user.shown.size(), 2U);
  EXPECT_EQ(session.onlineFolder, "/gone/a");
  EXPECT_EQ(session.scriptFolder, shop + "/scripts");
}

TEST_F(LoadingAShop, SkipsTheTestOfTheWorkingFoldersOfAFolderJustChosen) {
  const std::string shop = makeShop("uno");
  run(shop, "UPDATE generale SET siteonline = '/gone/online'");
  EXPECT_EQ(load(shop, {.folderJustChosen = true}), LoadResult::Opened);
  EXPECT_THAT(user.shown, IsEmpty());
  session.catalogue.close();
  EXPECT_EQ(load(shop), LoadResult::Opened);
  EXPECT_EQ(user.shown.size(), 1U) << "only once";
}

TEST_F(LoadingAShop, CountsLanguagesUpToTheFirstEmptyName) {
  const std::string shop = makeShop("uno");
  run(shop, "UPDATE lingue SET lingua1='italiano', lingua2='english', lingua3='', lingua4='deutsch'");
  EXPECT_EQ(load(shop), LoadResult::Opened);
  EXPECT_EQ(session.languageCount, 2);
}

TEST_F(LoadingAShop, CountsFourLanguagesAtMostAndNoneWithoutAName) {
  const std::string four = makeShop("four");
  run(four, "UPDATE lingue SET lingua1='a', lingua2='b', lingua3='c', lingua4='d'");
  EXPECT_EQ(load(four), LoadResult::Opened);
  EXPECT_EQ(session.languageCount, 4);
  session.catalogue.close();
  const std::string none = makeShop("none");
  run(none, "UPDATE lingue SET lingua1=NULL, lingua2='b'");
  EXPECT_EQ(load(none), LoadResult::Opened);
  EXPECT_EQ(session.languageCount, 0);
}

}  // namespace
}  // namespace kv
