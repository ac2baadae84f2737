// A kill in the middle of an export or an import: the open shop is whole, and half an export is no shop.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "platform/files/trees.h"
#include "shop_fixture.h"
#include "store/exchange/export_shop.h"
#include "store/exchange/primo_import.h"
#include "store/shop/load_shop.h"
#include "support/test_seed.h"

namespace kv {
namespace {

class KilledExchange : public test::ShopFixture {
 protected:
  void SetUp() override {
    shop = makeShop("negozio");
    makeShopIn(application + "/new");
    source = makeShop("primo", 250);
    destination = root / "copia";
    ASSERT_TRUE(createFolder(destination));
    run(source, "UPDATE articoli SET titolo = 'Sedia', immagine0 = 'nuova00.gif'");
    run(shop, "UPDATE articoli SET immagine0 = 'vecchia00.gif'");
    for (int i = 10; i < 30; ++i) {
      const std::string number = std::to_string(i);
      write(joinPath(shop, "work/vecchia" + number + ".gif"), std::string(20000, 'v'));
      write(joinPath(source, "work/nuova" + number + ".gif"), std::string(20000, 'n'));
    }
    ASSERT_TRUE(writeBytes(application + "/serverpath.net", shop + "\r\n"));
  }
  /// Runs `work` on the open shop in a process of its own, which is killed after so many microseconds.
  void killed(unsigned microseconds, const std::function<void()>& work) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      session.ShopFolder = shop;
      if (CaricaNegozio(session, env) == LoadResult::Opened) work();
      ::_exit(0);
    }
    ::usleep(microseconds);
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
  }
  static bool isWhole(const std::string& folder) { return read(folder, "PRAGMA integrity_check") == "ok"; }

  std::string shop, source, destination;
  std::mt19937 chance{test::seed()};
  std::uniform_int_distribution<unsigned> moment{0, 120'000};
};

TEST_F(KilledExchange, AnExportLeavesTheShopWholeAndNoHalfShop) {
  for (int i = 0; i < test::operationsOf(12); ++i) {
    killed(moment(chance), [&] {
      user.folders = {destination};
      ignore(EsportaNegozio(session, env, [](const ExportOffer&) { return "OKTLSRP"; }), "it is killed on the way");
    });
    ASSERT_TRUE(isWhole(shop)) << i;
    EXPECT_EQ(read(shop, "SELECT titolo FROM articoli"), "Lampada");
    if (fileExists(destination + "/catalog.mdb")) {
      EXPECT_TRUE(isWhole(destination));
      EXPECT_EQ(read(destination, "SELECT titolo FROM articoli"), "Lampada") << "never the model's";
      EXPECT_EQ(listFiles(destination + "/work", "vecchia*").size(), 20U) << "the catalogue comes last";
    }
    ASSERT_TRUE(removeBelow(destination));
  }
}

TEST_F(KilledExchange, AnImportLeavesTheOldRowsOrAllOfTheNewOnes) {
  for (int i = 0; i < test::operationsOf(12); ++i) {
    killed(moment(chance), [&] { ignore(importPrimoShop(session, env, source), "it is killed on the way"); });
    ASSERT_TRUE(isWhole(shop)) << i;
    const std::string title = read(shop, "SELECT titolo FROM articoli");
    if (title == "Lampada") {
      EXPECT_EQ(listFiles(shop + "/work", "vecchia*").size(), 20U) << i;
      continue;
    }
    EXPECT_EQ(title, "Sedia");
    EXPECT_EQ(read(shop, "SELECT immagine0 FROM articoli"), "nuova00.gif");
    const bool isExchanged = listFiles(shop + "/work", "nuova*").size() == 20U;
    EXPECT_TRUE(isExchanged || listFiles(shop + "/work.importa", "nuova*").size() == 20U) << "no picture is lost";
    break;  // imported: there is nothing more to interrupt
  }
}

}  // namespace
}  // namespace kv
