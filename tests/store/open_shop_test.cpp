// Opening a shop by choice: the switch, the refusals, the templates and language modules it brings along.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shop_fixture.h"
#include "store/shop/open_shop.h"
#include "store/shop/session_start.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* const importTemplates =
    "Il negozio selezionato contiene uno o più template. \n\n"
    "Se si sceglie di importare i template, eventuali template\n"
    "già installati con lo stesso nome saranno sovrascritti.\n\nImportare i template?";
const char* const importLanguages =
    "Il negozio selezionato contiene uno o più moduli linguistici. \n\n"
    "Se si sceglie di importarli, eventuali moduli linguistici\n"
    "già installati con lo stesso nome saranno sovrascritti.\n\nImportare i moduli linguistici?";
const char* const chooseAnother =
    "La cartella selezionata non contiene un negozio\n(oppure il negozio contenuto è corrotto)\n\n"
    "Selezionare un'altra cartella?";

class OpeningAShop : public test::ShopFixture {};

TEST_F(OpeningAShop, SwitchesTheSessionAndRemembersTheFolder) {
  const std::string shop = makeShop("uno");
  EXPECT_TRUE(ApriNegozio(session, env, shop));
  EXPECT_EQ(session.ShopFolder, shop);
  EXPECT_TRUE(session.catalogue.isOpen());
  EXPECT_EQ(serverPath(), shop + "\r\n");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(OpeningAShop, AcceptsNamesWithSpacesAccentsAndForeignLetters) {
  for (const char* name : {"il mio negozio", "città perché", "магазин"}) {
    const std::string shop = makeShop(name);
    EXPECT_TRUE(ApriNegozio(session, env, shop));
    EXPECT_EQ(session.ShopFolder, shop);
  }
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(OpeningAShop, DropsASeparatorAtTheEndOfThePath) {
  const std::string shop = makeShop("uno");
  EXPECT_TRUE(ApriNegozio(session, env, shop + "/"));
  EXPECT_EQ(session.ShopFolder, shop);
}

TEST_F(OpeningAShop, AShopNamedAtTheStartIsAskedAboutAsOneOpenedFromTheMenu) {
  const std::string shop = makeShop("uno");
  write(shop + "/languages/klingon.lng", "words");
  user.answers = {Answer::Yes};
  const auto options = chooseShop(session, env, shop);
  ASSERT_TRUE(options);
  EXPECT_FALSE(session.catalogue.isOpen()) << "the start loads it";
  EXPECT_EQ(startSession(session, env, *options), LoadResult::Opened);
  EXPECT_THAT(user.texts(), ElementsAre(importLanguages));
  EXPECT_TRUE(fileExists(application + "/languages/klingon.lng"));
  EXPECT_FALSE(chooseShop(session, env, root / "nessuno"));
  EXPECT_EQ(serverPath(), shop + "\r\n") << "a refused name leaves the last shop";
}

TEST_F(OpeningAShop, AsksForTheFolderWhenToldTo) {
  user.folders = {makeShop("uno")};
  EXPECT_TRUE(ApriNegozio(session, env, "*"));
  ASSERT_EQ(user.foldersAsked.size(), 1U);
  EXPECT_EQ(user.foldersAsked[0].prompt, "Selezionare la cartella che contiene il negozio da aprire:");
}

TEST_F(OpeningAShop, StartsTheChoiceAtTheOpenShop) {
  const std::string shop = makeShop("uno");
  ASSERT_TRUE(ApriNegozio(session, env, shop));
  EXPECT_FALSE(ApriNegozio(session, env, "*"));
  EXPECT_EQ(user.foldersAsked.at(0).initial, shop);
}

TEST_F(OpeningAShop, EndsQuietlyWhenNoFolderIsChosen) {
  EXPECT_FALSE(ApriNegozio(session, env, "*"));
  EXPECT_THAT(user.shown, IsEmpty());
  EXPECT_EQ(serverPath(), "(none)");
}

TEST_F(OpeningAShop, RefusesTheRootOfADisk) {
  EXPECT_FALSE(ApriNegozio(session, env, "/"));
  EXPECT_FALSE(ApriNegozio(session, env, "C:\\"));
  EXPECT_THAT(user.shown,
              ElementsAre(said("La cartella '/' è la root di un disco: non è consentito aprire un negozio in "
                               "questa posizione",
                               Icon::Exclamation),
                          said("La cartella 'C:\\' è la root di un disco: non è consentito aprire un negozio in "
                               "questa posizione",
                               Icon::Exclamation)));
}

TEST_F(OpeningAShop, JudgesAFolderDirectlyBelowTheRootLikeAnyOther) {
  EXPECT_FALSE(ApriNegozio(session, env, "/no-such-shop-here"));
  EXPECT_THAT(user.texts(),
              ElementsAre("La cartella selezionata non contiene un negozio\n(oppure il negozio contenuto è corrotto)"));
}

TEST_F(OpeningAShop, LeavesTheRunningSessionAsItWasWhenTheFolderIsRefused) {
  const std::string shop = makeShop("uno");
  ASSERT_TRUE(ApriNegozio(session, env, shop));
  EXPECT_FALSE(ApriNegozio(session, env, makeShop("due", 1100)));
  EXPECT_THAT(user.shown,
              ElementsAre(said("Versione non riconosciuta: il negozio non può essere aperto.", Icon::Exclamation)));
  EXPECT_EQ(session.ShopFolder, shop);
  EXPECT_TRUE(session.catalogue.isOpen());
  EXPECT_EQ(serverPath(), shop + "\r\n");
}

TEST_F(OpeningAShop, ShowsADatabaseErrorAsAnError) {
  const std::string shop = makeShop("uno");
  const auto other = Database::open(shop + "/catalog.mdb", OpenMode::Exclusive);
  ASSERT_TRUE(other);
  EXPECT_FALSE(ApriNegozio(session, env, shop));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_TRUE(user.shown[0].text.starts_with("Impossibile aprire il database:\n")) << user.shown[0].text;
  EXPECT_TRUE(user.shown[0].text.ends_with("\n\nIl database è utilizzato da un altro utente.")) << user.shown[0].text;
  EXPECT_EQ(user.shown[0].icon, Icon::Critical);
}

TEST_F(OpeningAShop, OpensTheShopAgainThatIsOpen) {
  const std::string shop = makeShop("uno");
  ASSERT_TRUE(ApriNegozio(session, env, shop));
  EXPECT_TRUE(ApriNegozio(session, env, shop));
  EXPECT_TRUE(session.catalogue.isOpen());
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(OpeningAShop, OffersAnotherFolderWhenAWorkingFolderCannotBeMade) {
  const std::string broken = makeShop("uno");
  ASSERT_TRUE(removeFolder(broken + "/db"));
  write(broken + "/db", "");
  const std::string shop = makeShop("due");
  user.answers = {Answer::Yes};
  user.folders = {shop};
  EXPECT_TRUE(ApriNegozio(session, env, broken));
  EXPECT_THAT(user.shown, ElementsAre(asked(chooseAnother, Answer::Yes, Answer::Yes)));
  EXPECT_EQ(session.ShopFolder, shop);
}

TEST_F(OpeningAShop, GivesUpWhenNoOtherFolderIsWanted) {
  const std::string broken = makeShop("uno");
  ASSERT_TRUE(removeFolder(broken + "/db"));
  write(broken + "/db", "");
  user.answers = {Answer::No};
  user.folders = {broken};
  EXPECT_FALSE(ApriNegozio(session, env, "*"));
  EXPECT_EQ(serverPath(), "(none)");
}

TEST_F(OpeningAShop, CountsAServerPathThatCannotBeWrittenAsAFailure) {
  const std::string shop = makeShop("uno");
  ASSERT_TRUE(createFolders(application + "/serverpath.net/in the way"));
  user.answers = {Answer::No};
  EXPECT_FALSE(ApriNegozio(session, env, shop));
  EXPECT_THAT(user.shown, ElementsAre(asked(chooseAnother, Answer::Yes, Answer::No)));
  EXPECT_FALSE(session.catalogue.isOpen());
}

TEST_F(OpeningAShop, ForgetsTheFolderWhenTheApplicationFolderIsOpened) {
  makeShopIn(application);
  write(application + "/serverpath.net", "/somewhere\r\n");
  EXPECT_TRUE(ApriNegozio(session, env, application));
  EXPECT_EQ(serverPath(), "(none)");
  EXPECT_EQ(session.ShopFolder, application);
  // Its own template and languages folders are no baggage of a shop.
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(OpeningAShop, ComparesWithTheApplicationFolderWithoutCase) {
  const std::string upper = makeShop("APP");
  write(upper + "/template/base/modello1.htm", "other");
  write(application + "/serverpath.net", "/somewhere\r\n");
  makeShopIn(application);
  EXPECT_TRUE(ApriNegozio(session, env, upper));
  EXPECT_EQ(serverPath(), "(none)");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(OpeningAShop, ImportsTheTemplatesItBringsAlong) {
  const std::string shop = makeShop("uno");
  write(shop + "/template/base/modello1.htm", "brought");
  write(shop + "/template/nuovo/modello1.htm", "new");
  user.answers = {Answer::Yes};
  EXPECT_TRUE(ApriNegozio(session, env, shop));
  EXPECT_THAT(user.shown, ElementsAre(asked(importTemplates, Answer::No, Answer::Yes)));
  EXPECT_EQ(readBytes(application + "/template/base/modello1.htm").value(), "brought");
  EXPECT_EQ(readBytes(application + "/template/nuovo/modello1.htm").value(), "new");
  EXPECT_TRUE(fileExists(application + "/template/base/modello2.htm"));
}

TEST_F(OpeningAShop, LeavesTheInstalledTemplatesWhenTheImportIsDeclined) {
  const std::string shop = makeShop("uno");
  write(shop + "/template/base/modello1.htm", "brought");
  user.answers = {Answer::No};
  EXPECT_TRUE(ApriNegozio(session, env, shop));
  EXPECT_THAT(user.shown, ElementsAre(asked(importTemplates, Answer::No, Answer::No)));
  EXPECT_EQ(readBytes(application + "/template/base/modello1.htm").value(), "<KV_START><KV_END>");
  EXPECT_EQ(session.ShopFolder, shop);
}

TEST_F(OpeningAShop, ImportsTheLanguageModulesItBringsAlong) {
  const std::string shop = makeShop("uno");
  write(shop + "/languages/deutsch.lng", "wort");
  user.answers = {Answer::Yes};
  EXPECT_TRUE(ApriNegozio(session, env, shop));
  EXPECT_THAT(user.shown, ElementsAre(asked(importLanguages, Answer::No, Answer::Yes)));
  EXPECT_EQ(readBytes(application + "/languages/deutsch.lng").value(), "wort");
}

TEST_F(OpeningAShop, AsksForTemplatesFirstAndLanguagesThen) {
  const std::string shop = makeShop("uno");
  write(shop + "/template/nuovo/modello1.htm", "new");
  write(shop + "/languages/deutsch.lng", "wort");
  user.answers = {Answer::No, Answer::Yes};
  EXPECT_TRUE(ApriNegozio(session, env, shop));
  EXPECT_THAT(user.shown, ElementsAre(asked(importTemplates, Answer::No, Answer::No),
                                      asked(importLanguages, Answer::No, Answer::Yes)));
  EXPECT_FALSE(folderExists(application + "/template/nuovo"));
  EXPECT_TRUE(fileExists(application + "/languages/deutsch.lng"));
}

TEST_F(OpeningAShop, StaysWithTheOldShopWhenAnImportFails) {
  const std::string first = makeShop("uno");
  ASSERT_TRUE(ApriNegozio(session, env, first));
  const std::string shop = makeShop("due");
  write(shop + "/template/base/modello1.htm/in the way", "");
  user.answers = {Answer::Yes, Answer::No};
  EXPECT_FALSE(ApriNegozio(session, env, shop));
  EXPECT_THAT(user.shown, ElementsAre(asked(importTemplates, Answer::No, Answer::Yes),
                                      asked(chooseAnother, Answer::Yes, Answer::No)));
  EXPECT_EQ(serverPath(), first + "\r\n");
  EXPECT_EQ(session.ShopFolder, first);
}

TEST_F(OpeningAShop, SkipsTheTestOfTheWorkingFoldersOnceAfterAChoice) {
  const std::string shop = makeShop("uno");
  run(shop, "UPDATE generale SET siteonline = '/gone/online'");
  user.folders = {shop};
  EXPECT_TRUE(ApriNegozio(session, env, "*"));
  EXPECT_THAT(user.shown, IsEmpty());
  EXPECT_EQ(session.onlineFolder, "/gone/online");
}

TEST_F(OpeningAShop, OpensAReadOnlyShopUpToTheRepairAndThenForGood) {
  const std::string shop = makeShop("uno");
  std::filesystem::permissions(shop + "/catalog.mdb", std::filesystem::perms::owner_read);
  user.answers = {Answer::Yes};
  EXPECT_TRUE(ApriNegozio(session, env, shop));
  EXPECT_FALSE(session.catalogue.isOpen());
  EXPECT_EQ(user.texts().back(), "Operazione completata. Sarà necessario riavviare il programma.");
  EXPECT_EQ(startSession(session, env), LoadResult::Opened);
  EXPECT_EQ(session.ShopFolder, shop);
}

class MakingAShop : public test::ShopFixture {
 protected:
  void SetUp() override {
    makeShopIn(application + "/new");
    write(application + "/new/code/funcs.php", "<?php");
  }
};

TEST_F(MakingAShop, LaysTheModelIntoAnEmptyFolderAndOpensIt) {
  const std::string folder = root / "nuovo negozio à";
  ASSERT_TRUE(createFolder(folder));
  user.folders = {folder};
  EXPECT_TRUE(NuovoNegozio(session, env));
  EXPECT_EQ(session.ShopFolder, folder);
  EXPECT_TRUE(session.catalogue.isOpen());
  EXPECT_TRUE(fileExists(folder + "/code/funcs.php"));
  EXPECT_THAT(user.shown, IsEmpty());
  EXPECT_EQ(user.foldersAsked.at(0).prompt,
            "Selezionare la cartella del nuovo negozio (la cartella deve essere preferibilmente vuota):");
}

TEST_F(MakingAShop, MakesAFolderThatIsNotThere) {
  user.folders = {root / "a/b"};
  EXPECT_TRUE(NuovoNegozio(session, env));
  EXPECT_EQ(session.ShopFolder, root / "a/b");
}

TEST_F(MakingAShop, OverlaysAFolderThatHoldsFiles) {
  const std::string folder = root / "full";
  write(folder + "/note.txt", "mine");
  write(folder + "/code/funcs.php", "mine");
  user.folders = {folder};
  EXPECT_TRUE(NuovoNegozio(session, env));
  EXPECT_EQ(readBytes(folder + "/note.txt").value(), "mine");
  EXPECT_EQ(readBytes(folder + "/code/funcs.php").value(), "<?php");
}

TEST_F(MakingAShop, RefusesAFolderWithACatalogue) {
  const std::string folder = makeShop("uno", 1050);
  user.folders = {folder};
  EXPECT_FALSE(NuovoNegozio(session, env));
  EXPECT_THAT(user.shown, ElementsAre(said("Nel percorso specificato è già presente un negozio", Icon::Exclamation)));
  EXPECT_EQ(read(folder, "SELECT versione FROM generale"), "1050");
}

TEST_F(MakingAShop, RefusesTheRootOfADiskInItsOwnWords) {
  user.folders = {"/"};
  EXPECT_FALSE(NuovoNegozio(session, env));
  EXPECT_THAT(user.shown, ElementsAre(said("La cartella '/' è la root di un disco, e non è consentito crearvi un "
                                           "nuovo negozio",
                                           Icon::Exclamation)));
}

TEST_F(MakingAShop, EndsQuietlyWhenNoFolderIsChosen) {
  EXPECT_FALSE(NuovoNegozio(session, env));
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(MakingAShop, SaysWhenTheModelCannotBeLaidOut) {
  const std::string folder = root / "uno";
  write(folder + "/code", "a file where the model has a folder");
  user.folders = {folder};
  EXPECT_FALSE(NuovoNegozio(session, env));
  EXPECT_THAT(user.shown, ElementsAre(said("Impossibile creare un negozio nel percorso specificato", Icon::Critical)));
  EXPECT_FALSE(fileExists(folder + "/catalog.mdb"));
  EXPECT_EQ(session.ShopFolder, "");
}

TEST_F(MakingAShop, SaysWhenTheApplicationHasNoModel) {
  std::filesystem::remove_all(application + "/new");
  user.folders = {root / "uno"};
  EXPECT_FALSE(NuovoNegozio(session, env));
  EXPECT_THAT(user.texts(), ElementsAre("Impossibile creare un negozio nel percorso specificato"));
}

}  // namespace
}  // namespace kv
