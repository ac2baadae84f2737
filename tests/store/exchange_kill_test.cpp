// A kill in the middle of an export or an import: the open shop is whole, and half an export is no shop.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "platform/files/file_gate.h"
#include "platform/files/trees.h"
#include "shop_fixture.h"
#include "store/exchange/export_shop.h"
#include "store/exchange/primo_import.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"
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
    run(source, "UPDATE articoli SET titolo = 'Sedia', immagine0 = 'nuova10.gif'");
    run(shop, "UPDATE articoli SET immagine0 = 'vecchia10.gif'");
    for (int i = 10; i < 30; ++i) {
      const std::string number = std::to_string(i);
      write(joinPath(shop, "work/vecchia" + number + ".gif"), std::string(20000, 'v'));
      write(joinPath(source, "work/nuova" + number + ".gif"), std::string(20000, 'n'));
    }
    write(joinPath(shop, "work/mie/foto.jpg"), "f");
    ASSERT_TRUE(writeBytes(application + "/serverpath.net", shop + "\r\n"));
  }
  /// Runs `work` on the open shop in a process of its own.
  pid_t started(const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
      session.ShopFolder = shop;
      if (CaricaNegozio(session, env) == LoadResult::Opened) work();
      ::_exit(0);
    }
    return child;
  }
  /// The same; the process is killed after so many microseconds.
  void killed(unsigned microseconds, const std::function<void()>& work) {
    const pid_t child = started(work);
    ASSERT_GT(child, 0);
    ::usleep(microseconds);
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
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

TEST_F(KilledExchange, AnImportLeavesTheOldShopOrAllOfTheNewOne) {
  const std::string kept = root / "prima";
  ASSERT_TRUE(copyTree(shop, kept));
  for (int i = 0; i < test::operationsOf(12); ++i) {
    restoreFrom(kept);
    killed(moment(chance), [&] { ignore(importPrimoShop(session, env, source), "it is killed on the way"); });
    expectOneShop("kill " + std::to_string(i));
  }
}

/// Ends the process before the call of the system that changes an image folder as such, counted from 1.
class EndingBefore final : public FileGate {
 public:
  explicit EndingBefore(int call) : left_(call) { setFileGate(this); }
  int refusal(FileStep step, const std::string& path) override {
    const bool isFolder = path.ends_with("/mie") || path.ends_with("/work") || path.ends_with("/work.prima");
    const bool isStep = isFolder && (step == FileStep::Rename || step == FileStep::Remove);
    if (isStep && --left_ == 0) ::kill(::getpid(), SIGKILL);
    return 0;
  }

 private:
  int left_;
};

TEST_F(KilledExchange, BeforeAnyStepOfTheExchangeOfPicturesTheNextStartFinishesIt) {
  const std::string kept = root / "prima";
  ASSERT_TRUE(copyTree(shop, kept));
  // The subfolder is moved, the old folder and the new one get their names, the old one is removed.
  for (int step = 1; step <= 4; ++step) {
    restoreFrom(kept);
    const pid_t child = started([&] {
      const EndingBefore gate(step);
      ignore(importPrimoShop(session, env, source), "it ends on the way");
    });
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
