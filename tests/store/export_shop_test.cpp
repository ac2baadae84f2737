// The export of a shop: what is copied, what is told, and that the open shop stays as it is.
#include "store/exchange/export_shop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files/trees.h"
#include "shop_fixture.h"
#include "store/shop/kept_order_key.h"
#include "store/shop/load_shop.h"
#include "support/failing_files.h"
#include "support/value_of.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* failedText = "Impossibile esportare il negozio nel percorso specificato";

class ExportingAShop : public test::ShopFixture {
 protected:
  void SetUp() override {
    shop = makeShop("negozio");
    makeShopIn(application + "/new");
    write(application + "/new/new.mdb", "seme");
    write(joinPath(application + "/new", "work/modello.gif"), "del modello");
    write(joinPath(application + "/new", "work/comune.gif"), "del modello");
    write(joinPath(shop, "work/comune.gif"), "del negozio");
    write(joinPath(shop, "work/foto/interna.jpg"), "x");
    write(shop + "/db/sql.mdb", "righe");
    write(shop + "/kvftp.mdb", "spedizioni");
    run(shop, "UPDATE generale SET siteonline = '" + shop + "/online', sitescript = '" + shop + "/scripts'");
    destination = root / "copia";
    ASSERT_TRUE(createFolder(destination));
    session.ShopFolder = shop;
    ASSERT_TRUE(writeBytes(application + "/serverpath.net", shop + "\r\n"));
    ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
    user.shown.clear();
  }

  ExportOutcome exportWith(const std::string& tag) {
    user.folders = {destination};
    return EsportaNegozio(session, env, [&](const ExportOffer& given) {
      offer = given;
      ++dialogs;
      return tag;
    });
  }
  std::string copied(const std::string& name) const { return readBytes(destination + "/" + name).value_or("(none)"); }
  std::string setting(const std::string& column) const {
    return read(destination, "SELECT COALESCE(" + column + ", '') FROM generale");
  }
  std::string toldLast() const { return user.shown.empty() ? "(nothing)" : user.shown.back().text; }

  std::string shop, destination;
  ExportOffer offer;
  int dialogs = 0;
};

TEST_F(ExportingAShop, CopiesModelFoldersAndCatalogue) {
  write(shop + "/firewall.net", "segreto");
  write(shop + "/kvftp.ini", "passiva");
  ASSERT_EQ(exportWith("OK"), ExportOutcome::Done);
  EXPECT_EQ(copied("new.mdb"), "seme");
  EXPECT_EQ(copied("work/modello.gif"), "del modello") << "the model's pictures end up in every export";
  EXPECT_EQ(copied("work/comune.gif"), "del negozio") << "the shop's files lie over the model's";
  EXPECT_EQ(copied("work/foto/interna.jpg"), "x");
  EXPECT_EQ(copied("db/sql.mdb"), "righe");
  EXPECT_EQ(copied("kvftp.mdb"), "spedizioni");
  EXPECT_EQ(copied("firewall.net"), "segreto") << "it says so before";
  EXPECT_EQ(copied("kvftp.ini"), "passiva");
  EXPECT_EQ(read(destination, "SELECT titolo FROM articoli"), "Lampada");
  EXPECT_FALSE(folderExists(destination + "/template"));
  EXPECT_FALSE(folderExists(destination + "/languages"));
  EXPECT_FALSE(fileExists(destination + "/catalog.tm0"));
  EXPECT_THAT(user.shown,
              ElementsAre(said("Nella cartella \"" + destination +
                                   "\" è stato esportato il database del negozio.\n\n"
                                   "Non sono stati invece esportati eventuali script personalizzati: se necessario\n"
                                   "questi ultimi dovranno essere copiati manualmente in \"" +
                                   destination + "/code\".",
                               Icon::Information)));
  EXPECT_TRUE(session.catalogue.isOpen()) << "the session has been restarted";
}

TEST_F(ExportingAShop, TemplateLanguagesAndTagsGoAlongAndAreTold) {
  write(application + "/languages/italiano.gif", "bandiera");
  write(application + "/languages/inglese.lng", "due");
  write(application + "/languages/tedesco.lng", "no");
  session.languageNames[1] = "inglese";
  session.languageCount = 2;
  write(application + "/personal.tag", "<<5-firma>>\r\nMario");
  write(shop + "/shoptag.tag", "<<5-orari>>\r\n9-13");
  ASSERT_EQ(exportWith("OKTLP"), ExportOutcome::Done);
  EXPECT_TRUE(fileExists(destination + "/template/base/modello1.htm"));
  EXPECT_THAT(listFiles(destination + "/languages", "*"), ElementsAre("inglese.lng", "italiano.gif", "italiano.lng"));
  EXPECT_EQ(copied("shoptag.tag"), "<<5-orari>>\r\n9-13\r\n<<5-firma>>\r\nMario\r\n");
  EXPECT_THAT(toldLast(), ::testing::StartsWith(
                              "Nella cartella \"" + destination +
                              "\" sono stati esportati\nil database del negozio, il template, i moduli linguistici, "
                              "i tag personalizzati.\n\n"));
  EXPECT_EQ(readBytes(shop + "/shoptag.tag").value(), "<<5-orari>>\r\n9-13");
}

TEST_F(ExportingAShop, TheTagsOfAllShopsStayWithoutTheChoice) {
  write(application + "/personal.tag", "<<5-firma>>\r\nMario\r\n");
  write(shop + "/shoptag.tag", "<<5-orari>>\r\n9-13\r\n");
  ASSERT_EQ(exportWith("OK"), ExportOutcome::Done);
  EXPECT_EQ(copied("shoptag.tag"), "<<5-orari>>\r\n9-13\r\n");
}

TEST_F(ExportingAShop, ScriptsGoAlongOnlyWhenChosen) {
  write(shop + "/code/carrello.php", "php");
  write(shop + "/code/menu.js", "js");
  write(shop + "/code/paypal/conf.ini", "conto");
  ASSERT_EQ(exportWith("OKS"), ExportOutcome::Done);
  EXPECT_THAT(offer.scriptList, ElementsAre("carrello.php", "menu.js"));
  EXPECT_EQ(copied("code/carrello.php"), "php");
  EXPECT_EQ(toldLast(), "Nella cartella \"" + destination +
                            "\" è stato esportato il database del negozio.\n\n"
                            "Sono stati inoltre esportati i seguenti script:\n\n" +
                            shop + "/code/carrello.php\n" + shop +
                            "/code/menu.js\nEventuali altri script personalizzati se necessario dovranno essere "
                            "copiati\nmanualmente in \"" +
                            destination + "/code\".");
  destination = root / "seconda";
  ASSERT_TRUE(createFolder(destination));
  ASSERT_EQ(exportWith("OK"), ExportOutcome::Done);
  EXPECT_EQ(copied("code/carrello.php"), "(none)");
  EXPECT_EQ(copied("code/paypal/conf.ini"), "conto");
}

TEST_F(ExportingAShop, WorkingFoldersAreResetInTheCopyAlone) {
  ASSERT_EQ(exportWith("OKR"), ExportOutcome::Done);
  EXPECT_EQ(setting("siteonline"), "");
  EXPECT_EQ(setting("sitescript"), "");
  EXPECT_EQ(session.onlineFolder, shop + "/online");
  const auto own = session.catalogue.scalar("SELECT siteonline || '|' || sitescript FROM generale");
  ASSERT_TRUE(own);
  EXPECT_EQ(asText(*own), shop + "/online|" + shop + "/scripts");
}

TEST_F(ExportingAShop, WithoutTheOptionTheCopyKeepsItsWorkingFolders) {
  ASSERT_EQ(exportWith("OK"), ExportOutcome::Done);
  EXPECT_EQ(setting("siteonline"), shop + "/online");
}

TEST_F(ExportingAShop, PasswordsStayAtHomeWhenAsked) {
  write(shop + "/firewall.net", "segreto");
  write(shop + "/kvftp.ini", "passiva");
  ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET password = 'Zq7Segreta', db_password = 'Zq7Segreta'"));
  ASSERT_EQ(exportWith("OKW"), ExportOutcome::Done);
  EXPECT_EQ(setting("password") + setting("db_password"), "");
  EXPECT_EQ(copied("catalog.mdb").find("Zq7Segreta"), std::string::npos) << "not in the file's free space either";
  EXPECT_EQ(copied("firewall.net"), "(none)");
  EXPECT_EQ(copied("kvftp.ini"), "passiva");
  EXPECT_EQ(asText(test::valueOf(session.catalogue.scalar("SELECT password FROM generale"))), "Zq7Segreta");
}

TEST_F(ExportingAShop, TheKeyOfOrdersGoesAlongWithThePasswordsAlone) {
  const std::string key(64, 'a');
  ASSERT_TRUE(writeOrderKey(session.catalogue, key));
  ASSERT_EQ(exportWith("OKW"), ExportOutcome::Done);
  EXPECT_EQ(copied("catalog.mdb").find(key), std::string::npos) << "not in the file's free space either";
  EXPECT_EQ(readOrderKey(session.catalogue).value(), key);
}

TEST_F(ExportingAShop, TheOpenShopIsNotWritten) {
  const auto before = fileStamp(shop + "/catalog.mdb");
  ASSERT_TRUE(before);
  ASSERT_EQ(exportWith("OKTLSRP"), ExportOutcome::Done);
  EXPECT_EQ(test::valueOf(fileStamp(shop + "/catalog.mdb")), *before);
}

TEST_F(ExportingAShop, AFolderWithAnythingInItIsRefused) {
  for (const char* entry : {"cartella", ".nascosta"}) {
    destination = root / (std::string("piena") + entry);
    ASSERT_TRUE(createFolders(destination + "/" + entry));
    user.shown.clear();
    EXPECT_EQ(exportWith("OK"), ExportOutcome::Left) << entry;
    EXPECT_THAT(user.shown, ElementsAre(said("La cartella selezionata non è vuota", Icon::Exclamation)));
  }
  EXPECT_EQ(dialogs, 0);
}

TEST_F(ExportingAShop, TheRootOfADiskIsRefused) {
  destination = "/";
  EXPECT_EQ(exportWith("OK"), ExportOutcome::Left);
  EXPECT_THAT(user.shown,
              ElementsAre(said("La cartella '/' è la root di un disco, e non è consentito esportarvi un negozio",
                               Icon::Exclamation)));
}

TEST_F(ExportingAShop, LeavingTheFolderOrTheOptionsWritesNothing) {
  EXPECT_EQ(exportWith(""), ExportOutcome::Left);
  EXPECT_EQ(dialogs, 1);
  EXPECT_TRUE(test::valueOf(isEmptyFolder(destination)));
  destination.clear();
  EXPECT_EQ(exportWith("OK"), ExportOutcome::Left);
  EXPECT_EQ(dialogs, 1);
  EXPECT_THAT(user.shown, IsEmpty());
  EXPECT_THAT(user.foldersAsked.back().prompt, "Selezionare una cartella vuota:");
}

TEST_F(ExportingAShop, AShopWithoutTemplateIsTold) {
  session.templatePath.clear();
  EXPECT_EQ(exportWith("OK"), ExportOutcome::Left);
  EXPECT_THAT(user.shown, ElementsAre(said("Prima di esportare un negozio per Korvane Banco Banco è necessario "
                                           "selezionare un template",
                                           Icon::Exclamation)));
}

TEST_F(ExportingAShop, ATemplateThatIsNotThereIsTold) {
  session.templatePath = "template/sparito";
  EXPECT_EQ(exportWith("OK"), ExportOutcome::Left);
  EXPECT_THAT(user.texts(), ElementsAre("Impossibile accedere al template"));
}

TEST_F(ExportingAShop, ADestinationInsideTheShopDoesNotHoldItself) {
  destination = joinPath(shop, "work/x");
  ASSERT_TRUE(createFolder(destination));
  ASSERT_EQ(exportWith("OK"), ExportOutcome::Done);
  EXPECT_FALSE(folderExists(joinPath(destination, "work/x")));
  EXPECT_EQ(copied("work/comune.gif"), "del negozio");
}

TEST_F(ExportingAShop, AnImageFolderThatVanishedGoesAlongAsTheModels) {
  std::filesystem::remove_all(shop + "/work");
  ASSERT_EQ(exportWith("OK"), ExportOutcome::Done);
  EXPECT_EQ(copied("work/modello.gif"), "del modello");
  EXPECT_EQ(copied("db/sql.mdb"), "righe");
}

TEST_F(ExportingAShop, OffersScriptsAndTagsByTheSituation) {
  EXPECT_EQ(exportWith(""), ExportOutcome::Left);
  EXPECT_FALSE(offer.scripts || offer.commonTags) << "neither";
  write(shop + "/code/a.php", "");
  EXPECT_TRUE(exportOffer(session, application).scripts);
  EXPECT_FALSE(exportOffer(session, application).commonTags);
  write(application + "/personal.tag", "");
  EXPECT_TRUE(exportOffer(session, application).commonTags);
  EXPECT_FALSE(exportOffer(session, shop).scripts) << "the shop is the application folder";
}

TEST_F(ExportingAShop, TheApplicationsOwnShopLeavesItsScripts) {
  write(application + "/new/code/a.php", "modello");
  write(shop + "/code/a.php", "negozio");
  env.applicationFolder = shop;
  ASSERT_TRUE(copyTree(application + "/new", shop + "/new"));
  ASSERT_TRUE(copyTree(application + "/template", shop + "/template"));
  ASSERT_EQ(exportWith("OKS"), ExportOutcome::Done);
  EXPECT_EQ(copied("code/a.php"), "(none)");
  EXPECT_THAT(toldLast(), ::testing::HasSubstr("\n\nNon sono stati invece esportati eventuali script"));
}

TEST_F(ExportingAShop, ACancelInTheMiddleLeavesTheFolderEmpty) {
  user.cancelAtYield = 3;
  EXPECT_EQ(exportWith("OKT"), ExportOutcome::Cancelled);
  EXPECT_TRUE(test::valueOf(isEmptyFolder(destination)));
  EXPECT_THAT(user.shown, IsEmpty());
  EXPECT_TRUE(session.catalogue.isOpen());
}

TEST_F(ExportingAShop, AFullDiskAtAnyWriteIsToldAndLeavesNoShop) {
  for (std::int64_t failing = 1;; ++failing) {
    user.shown.clear();
    test::FailingFiles gate(failing, test::AfterFailure::Works, ENOSPC);
    gate.onlyAt({FileStep::Create, FileStep::Write, FileStep::Close, FileStep::Rename, FileStep::MakeFolder});
    const ExportOutcome outcome = exportWith("OKTLSRP");
    if (!gate.hasFailed()) break;
    ASSERT_EQ(outcome, ExportOutcome::Failed) << failing;
    EXPECT_THAT(user.texts(), ElementsAre(failedText)) << failing;
    EXPECT_TRUE(test::valueOf(isEmptyFolder(destination))) << failing;
    ASSERT_TRUE(session.catalogue.isOpen()) << failing;
  }
  EXPECT_TRUE(fileExists(destination + "/catalog.mdb"));
}

TEST_F(ExportingAShop, AFolderThatCantBeListedIsToldAndNothingIsLeftOut) {
  write(shop + "/code/carrello.php", "php");
  for (const std::string folder : {"/languages", "/code", "/work", "/db"}) {
    user.shown.clear();
    test::FailingFiles gate(1, test::AfterFailure::FailsToo);
    gate.onlyAt({FileStep::List});
    gate.onlyFor(folder);
    EXPECT_EQ(exportWith("OKTLS"), ExportOutcome::Failed) << folder;
    EXPECT_TRUE(offer.scripts) << folder;
    EXPECT_THAT(user.texts(), ElementsAre(failedText)) << folder;
    EXPECT_TRUE(test::valueOf(isEmptyFolder(destination))) << folder;
  }
}

TEST_F(ExportingAShop, OneZipHoldsWhatTheFolderWouldHold) {
  write(shop + "/costruzione.ini", "[Immagini]");
  ASSERT_EQ(exportWith("OKTLP"), ExportOutcome::Done);
  const std::string folder = destination, unpacked = root / "aperto";
  destination = root / "zip";
  ASSERT_TRUE(createFolder(destination));
  ASSERT_EQ(exportWith("OKTLPZ"), ExportOutcome::Done);
  EXPECT_THAT(listFiles(destination, "*"), ElementsAre("negozio.zip"));
  EXPECT_TRUE(listFolders(destination).empty());
  const std::string command = "python3 -m zipfile -e '" + destination + "/negozio.zip' '" + unpacked + "'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  const auto expected = listTree(folder), found = listTree(unpacked);
  ASSERT_TRUE(expected && found);
  ASSERT_EQ(found->size(), expected->size());
  for (std::size_t i = 0; i < found->size(); ++i) {
    EXPECT_EQ((*found)[i].path, (*expected)[i].path);
    if ((*found)[i].isFolder) continue;
    EXPECT_EQ(readBytes(joinPath(unpacked, (*found)[i].path)).value_or("?"),
              readBytes(joinPath(folder, (*found)[i].path)).value_or("!"))
        << (*found)[i].path;
  }
}

TEST_F(ExportingAShop, FilesWhoseNamesAreNoTextGoAlongUnderTheirBytes) {
  const std::vector<std::string> names{"work/\xFF\xE8.jpg", "work/due\nrighe.gif"};
  for (const std::string& name : names) write(joinPath(shop, name), "x");
  ASSERT_EQ(exportWith("OK"), ExportOutcome::Done);
  for (const std::string& name : names) EXPECT_EQ(copied(name), "x") << name;
  destination = root / "zip";
  ASSERT_TRUE(createFolder(destination));
  ASSERT_EQ(exportWith("OKZ"), ExportOutcome::Done);
  const std::string packed = readBytes(destination + "/negozio.zip").value_or("");
  for (const std::string& name : names) EXPECT_NE(packed.find(name), std::string::npos) << name;
}

TEST_F(ExportingAShop, ACancelWhilePackingLeavesTheFolderEmpty) {
  user.cancelAtYield = 1;
  EXPECT_EQ(exportWith("OKTZ"), ExportOutcome::Cancelled);
  EXPECT_TRUE(test::valueOf(isEmptyFolder(destination)));
  EXPECT_TRUE(session.catalogue.isOpen());
}

TEST_F(ExportingAShop, AFailureAtAnyStepOfPackingLeavesTheFolderEmpty) {
  for (std::int64_t failing = 1;; ++failing) {
    user.shown.clear();
    test::FailingFiles gate(failing, test::AfterFailure::Works, ENOSPC);
    gate.onlyAt({FileStep::Create, FileStep::Write, FileStep::Close, FileStep::Rename});
    const ExportOutcome outcome = exportWith("OKTLSRPZ");
    if (!gate.hasFailed()) break;
    ASSERT_EQ(outcome, ExportOutcome::Failed) << failing;
    EXPECT_THAT(user.texts(), ElementsAre(failedText)) << failing;
    EXPECT_TRUE(test::valueOf(isEmptyFolder(destination))) << failing;
  }
  EXPECT_TRUE(fileExists(destination + "/negozio.zip"));
}

TEST_F(ExportingAShop, TheProgressGoesUpToTheEnd) {
  ASSERT_EQ(exportWith("OKT"), ExportOutcome::Done);
  double before = -1;
  ASSERT_GT(user.progressShown.size(), 5U);
  for (std::size_t i = 0; i + 1 < user.progressShown.size(); ++i) {
    EXPECT_EQ(user.progressShown[i].caption, "Esportazione in corso...");
    EXPECT_GT(user.progressShown[i].position, before);
    before = user.progressShown[i].position;
  }
  EXPECT_EQ(user.progressShown.back().caption, "") << "it is taken away at the end";
}

TEST(ExportTag, HoldsTheCharactersOfWhatIsChosen) {
  EXPECT_EQ(exportTag({}), "OK");
  EXPECT_EQ(exportTag(exportChoice("OKTLSRP")), "OKTLSRP");
  EXPECT_EQ(exportTag(exportChoice("pwzt")), "OKTPWZ");
  EXPECT_EQ(exportTag(exportChoice("OKR")), "OKR");
}

}  // namespace
}  // namespace kv
