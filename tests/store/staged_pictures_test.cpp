// The pictures of an import whose exchange fails: which are the shop's, what the user is told, and what is never lost.
#include "store/shop/staged_pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shop_fixture.h"
#include "store/exchange/primo_import.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"
#include "support/failing_files.h"

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
  EXPECT_EQ(asText(*session.catalogue.scalar("SELECT titolo FROM articoli")), "Sedia");
  EXPECT_TRUE(fileExists(joinPath(shop, "work.importa/nuova.gif")));
  session.catalogue.close();
  open();
  EXPECT_THAT(listFiles(shop + "/work", "*"), ::testing::ElementsAre("vecchia.gif")) << "the old ones are back";
  EXPECT_TRUE(fileExists(joinPath(shop, "work/mie/foto.jpg")));
  EXPECT_TRUE(fileExists(joinPath(shop, "work.importa/nuova.gif"))) << "where the message has named it";
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
