// A kill in the middle of an export or an import: the open shop is whole, and half an export is no shop.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "platform/files/file_gate.h"
#include "platform/files/trees.h"
#include "shop_fixture.h"
#include "store/exchange/export_shop.h"
#include "store/exchange/primo_import.h"
#include "store/shop/load_shop.h"
#include "store/shop/price_history_file.h"
#include "store/shop/session_start.h"
#include "support/killed_process.h"

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
    run(source, "UPDATE articoli SET titolo = 'Sedia', immagine0 = 'nuova10.gif'");
    run(shop, "UPDATE articoli SET immagine0 = 'vecchia10.gif'");
    for (int i = 10; i < 30; ++i) {
      const std::string number = std::to_string(i);
      write(joinPath(shop, "work/vecchia" + number + ".gif"), std::string(20000, 'v'));
      write(joinPath(source, "work/nuova" + number + ".gif"), std::string(20000, 'n'));
    }
    write(joinPath(shop, "work/mie/foto.jpg"), "f");
    write(joinPath(shop, priceHistoryFile), "prezzi");
    ASSERT_TRUE(writeBytes(application + "/serverpath.net", shop + "\r\n"));
  }
  /// Runs `work` on the open shop.
  void onShop(const std::function<void()>& work) {
    session.ShopFolder = shop;
    if (CaricaNegozio(session, env) == LoadResult::Opened) work();
  }
  void restoreFrom(const std::string& kept) const {
    std::filesystem::remove_all(shop);
    ASSERT_TRUE(copyTree(kept, shop));
  }
  /// Opens the shop as the next start does: rows and pictures are those of before, or all of them the new ones.
  void expectOneShop(const std::string& when) {
    SCOPED_TRACE(when);
    Session next;
    ASSERT_EQ(loadSession(next, env, {.folderJustChosen = false, .silent = true}), LoadResult::Opened);
    next.catalogue.close();
    ASSERT_TRUE(isWhole(shop));
    const bool isNew = read(shop, "SELECT titolo FROM articoli") == "Sedia";
    EXPECT_EQ(read(shop, "SELECT immagine0 FROM articoli"), isNew ? "nuova10.gif" : "vecchia10.gif");
    EXPECT_EQ(listFiles(shop + "/work", "vecchia*").size(), isNew ? 0U : 20U);
    EXPECT_EQ(listFiles(shop + "/work", "nuova*").size(), isNew ? 20U : 0U);
    EXPECT_TRUE(fileExists(joinPath(shop, "work/mie/foto.jpg"))) << "a subfolder is the merchant's own";
    EXPECT_EQ(fileExists(joinPath(shop, priceHistoryFile)), !isNew) << "its numbers are those of the former articles";
  }
  static bool isWhole(const std::string& folder) { return read(folder, "PRAGMA integrity_check") == "ok"; }

  std::string shop, source, destination;
  test::KilledProcess process;
};

TEST_F(KilledExchange, AnExportLeavesTheShopWholeAndNoHalfShop) {
  const auto work = [&] {
    user.folders = {destination};
    ignore(EsportaNegozio(session, env, [](const ExportOffer&) { return "OKTLSRP"; }), "it is killed on the way");
  };
  for (int i = 0; i <= test::operationsOf(50); ++i) {
    process.run([&] { onShop(work); });
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

TEST_F(KilledExchange, AnImportLeavesTheOldShopOrAllOfTheNewOne) {
  const std::string kept = root / "prima";
  ASSERT_TRUE(copyTree(shop, kept));
  const auto work = [&] { ignore(importPrimoShop(session, env, source), "it is killed on the way"); };
  for (int i = 0; i <= test::operationsOf(50); ++i) {
    restoreFrom(kept);
    process.run([&] { onShop(work); });
    expectOneShop("kill " + std::to_string(i));
  }
}

/// Ends the process before the call of the system that removes the history of prices or changes an image folder as
/// such, counted from 1.
class EndingBefore final : public FileGate {
 public:
  explicit EndingBefore(int call) : left_(call) { setFileGate(this); }
  int refusal(FileStep step, const std::string& path) override {
    static const std::vector<std::string> taken{"/mie", "/work", "/work.prima", "/prezzi.mdb"};
    const bool isTaken = std::ranges::any_of(taken, [&](const std::string& end) { return path.ends_with(end); });
    const bool isStep = isTaken && (step == FileStep::Rename || step == FileStep::Remove);
    if (isStep && --left_ == 0) ::kill(::getpid(), SIGKILL);
    return 0;
  }

 private:
  int left_;
};

TEST_F(KilledExchange, BeforeAnyStepAfterTheRowsTheNextStartFinishesIt) {
  const std::string kept = root / "prima";
  ASSERT_TRUE(copyTree(shop, kept));
  // The history goes, the subfolder is moved, the old folder and the new one get their names, the old one is removed.
  for (int step = 1; step <= 5; ++step) {
    restoreFrom(kept);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      onShop([&] {
        const EndingBefore gate(step);
        ignore(importPrimoShop(session, env, source), "it ends on the way");
      });
      ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "there is no step " << step;
    EXPECT_EQ(read(shop, "SELECT titolo FROM articoli"), "Sedia");
    expectOneShop("step " + std::to_string(step));
    EXPECT_FALSE(folderExists(shop + "/work.importa")) << step;
    EXPECT_FALSE(folderExists(shop + "/work.prima")) << step;
    EXPECT_EQ(read(shop, "PRAGMA user_version"), "0") << step;
  }
}

}  // namespace
}  // namespace kv
