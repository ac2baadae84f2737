// The pictures of an import whose exchange fails: which are the shop's, what the user is told, and what is never lost.
#include "store/shop/staged_pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files/trees.h"
#include "shop_fixture.h"
#include "store/exchange/primo_import.h"
#include "store/exchange/primo_preview.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"
#include "support/failing_files.h"
#include "support/value_of.h"

namespace kv {
namespace {

class ExchangedPictures : public test::ShopFixture {
 protected:
  void SetUp() override {
    shop = makeShop("negozio");
    source = makeShop("primo", 250);
    run(source, "UPDATE articoli SET titolo = 'Sedia'");
    write(joinPath(shop, "work/vecchia.gif"), "v");
    write(joinPath(source, "work/nuova.gif"), "n");
    ASSERT_TRUE(writeBytes(application + "/serverpath.net", shop + "\r\n"));
  }
  void open() { ASSERT_EQ(loadSession(session, env, {.folderJustChosen = false, .silent = true}), LoadResult::Opened); }

  std::string shop, source;
};

TEST_F(ExchangedPictures, PicturesThatCantBeExchangedAreNamedAndSubfoldersStay) {
  write(joinPath(shop, "work/mie/foto.jpg"), "f");
  open();
  {
    test::FailingFiles gate(1, test::AfterFailure::FailsToo);
    gate.onlyAt({FileStep::Rename});
    gate.onlyFor("/work");
    EXPECT_EQ(importPrimoShop(session, env, source), PrimoOutcome::Done);
  }
  EXPECT_THAT(user.shown, ::testing::ElementsAre(said(
                              "I dati sono stati importati, ma non è stato possibile sostituire le immagini.\nLe nuove "
                              "immagini sono nella cartella " +
                                  shop + "/work.importa",
                              Icon::Exclamation)));
  EXPECT_EQ(asText(test::valueOf(session.catalogue.scalar("SELECT titolo FROM articoli"))), "Sedia");
  EXPECT_TRUE(fileExists(joinPath(shop, "work.importa/nuova.gif")));
  session.catalogue.close();
  open();
  EXPECT_THAT(listFiles(shop + "/work", "*"), ::testing::ElementsAre("vecchia.gif")) << "the old ones are back";
  EXPECT_TRUE(fileExists(joinPath(shop, "work/mie/foto.jpg")));
  EXPECT_TRUE(fileExists(joinPath(shop, "work.importa/nuova.gif"))) << "where the message has named it";
}

TEST_F(ExchangedPictures, AFullDiskAtAnyWriteIsToldAndLeavesTheRowsTheirPictures) {
  write(joinPath(source, "work/altra.gif"), "a");
  int refused = 0;
  for (std::int64_t failing = 1;; ++failing) {
    open();
    user.shown.clear();
    test::FailingFiles gate(failing, test::AfterFailure::Works, ENOSPC);
    gate.onlyAt({FileStep::Create, FileStep::Write, FileStep::Close, FileStep::MakeFolder});
    gate.onlyFor(".gif");
    const PrimoOutcome outcome = importPrimoShop(session, env, source);
    if (!gate.hasFailed()) break;
    ++refused;
    ASSERT_EQ(outcome, PrimoOutcome::NotDone) << failing;
    ASSERT_EQ(user.shown.size(), 1U) << failing;
    EXPECT_THAT(user.shown[0].text, ::testing::StartsWith("Impossibile importare a causa del seguente errore: \n"));
    EXPECT_EQ(asText(*session.catalogue.scalar("SELECT titolo FROM articoli")), "Lampada") << failing;
    EXPECT_THAT(listFiles(shop + "/work", "*"), ::testing::ElementsAre("vecchia.gif")) << failing;
    EXPECT_FALSE(folderExists(shop + "/work.importa")) << failing;
    session.catalogue.close();
  }
  EXPECT_GE(refused, 6) << "two pictures are made, written and closed";
  EXPECT_THAT(listFiles(shop + "/work", "*"), ::testing::ElementsAre("altra.gif", "nuova.gif"))
      << "there is room again";
}

TEST_F(ExchangedPictures, AnImageFolderThatVanishedIsMadeOfTheirs) {
  std::filesystem::remove_all(shop + "/work");
  open();
  EXPECT_EQ(importPrimoShop(session, env, source), PrimoOutcome::Done);
  EXPECT_THAT(listFiles(shop + "/work", "*"), ::testing::ElementsAre("nuova.gif"));
}

TEST_F(ExchangedPictures, AListOfFilesThatFailsCostsNoPicture) {
  write(joinPath(shop, "work/mie/foto.jpg"), "f");
  const std::string kept = root / "prima";
  ASSERT_TRUE(copyTree(shop, kept));
  bool reached = true;
  for (std::int64_t failing = 1; reached; ++failing) {
    std::filesystem::remove_all(shop);
    ASSERT_TRUE(copyTree(kept, shop));
    open();
    user.shown.clear();
    PrimoOutcome outcome = PrimoOutcome::NotDone;
    {
      test::FailingFiles gate(failing, test::AfterFailure::Works);
      gate.onlyAt({FileStep::List});
      outcome = importPrimoShop(session, env, source);
      reached = gate.hasFailed();
    }
    EXPECT_FALSE(user.shown.empty()) << failing;
    session.catalogue.close();
    open();
    const std::string title = asText(*session.catalogue.scalar("SELECT titolo FROM articoli"));
    EXPECT_EQ(title, outcome == PrimoOutcome::Done ? "Sedia" : "Lampada") << failing;
    EXPECT_TRUE(fileExists(joinPath(shop, title == "Sedia" ? "work/nuova.gif" : "work/vecchia.gif"))) << failing;
    EXPECT_TRUE(fileExists(joinPath(shop, "work/mie/foto.jpg"))) << failing;
    session.catalogue.close();
  }
}

TEST_F(ExchangedPictures, APreviewOfAFolderCountsItsPicturesAndTellsWhyThereIsNone) {
  open();
  EXPECT_THAT(test::valueOf(previewOfShop(session.catalogue, source)),
              ::testing::HasSubstr("Immagini che sostituiranno quelle attuali: 1\n"));
  EXPECT_EQ(test::valueOf(previewOfShop(session.catalogue, "")), "");
  run(source, "UPDATE generale SET versione = 300");
  EXPECT_EQ(previewOfShop(session.catalogue, source).error().what,
            "Impossibile importare: la versione del database di origine non è supportata\n"
            "Versione del negozio di origine: 300");
  EXPECT_EQ(previewOfShop(session.catalogue, source + "/work").error().what,
            "La cartella selezionata non contiene un negozio");
}

TEST_F(ExchangedPictures, TheirNumberIsNotNoneWhereTheFolderCantBeListed) {
  open();
  test::FailingFiles gate(1);
  gate.onlyAt({FileStep::List});
  gate.onlyFor("/work");
  const auto failed = previewOfShop(session.catalogue, source);
  const std::string preview = failed ? *failed : failed.error().what;
  EXPECT_TRUE(gate.hasFailed());
  EXPECT_EQ(preview.find("Immagini che sostituiranno"), std::string::npos) << preview;
  EXPECT_NE(preview.find("/work"), std::string::npos) << preview;
}

TEST_F(ExchangedPictures, AnImportAfterOneThatCouldNotExchangeLosesNoSubfolder) {
  write(joinPath(shop, "work.importa/mie/foto.jpg"), "f");
  write(joinPath(shop, "work.importa/mezza.gif"), "m");
  open();
  EXPECT_EQ(importPrimoShop(session, env, source), PrimoOutcome::Done);
  EXPECT_TRUE(fileExists(joinPath(shop, "work/mie/foto.jpg")));
  EXPECT_THAT(listFiles(shop + "/work", "*"), ::testing::ElementsAre("nuova.gif"));
}

}  // namespace
}  // namespace kv
