// A kill in the middle of an import from the accounting package: the catalogue is whole, with the rows of before or
// with all of the new ones.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "accounting_shop.h"
#include "support/jet_samples.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

class KilledAccountingImport : public AccountingShop {
 protected:
  KilledAccountingImport() {
    JetTable articles = chanceArticles(seed(), 1500);
    request.path = root / "orsa.mdb";
    request.line = "0100110";
    EXPECT_TRUE(writeBytes(request.path, jetFile(JetVersion::Jet4, {categoriesTable(), articles})));
    sql("INSERT INTO articoli (codice, titolo) VALUES ('prima', 'Mio')");
    session.catalogue.close();
  }
  /// Imports in a process of its own, which is killed after so many microseconds.
  void importKilledAfter(unsigned microseconds) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      auto opened = Database::open(shop + "/catalog.mdb", OpenMode::Exclusive);
      if (opened) {
        session.catalogue = std::move(*opened);
        ignore(import() == AccountingEnd::Done, "the files tell how far it came");
      }
      ::_exit(0);
    }
    ::usleep(microseconds);
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
  }
  static std::string readIn(const std::string& path, const std::string& query) {
    auto opened = Database::open(path, OpenMode::Shared);
    const auto value = opened ? opened->scalar(query) : fail(opened.error());
    return value ? asText(*value) : value.error().what;
  }
};

TEST_F(KilledAccountingImport, LeavesTheRowsOfBeforeOrAllOfTheNewOnes) {
  const std::string catalogue = shop + "/catalog.mdb";
  const std::string before = *readBytes(catalogue);
  std::mt19937 chance{seed()};
  std::uniform_int_distribution<unsigned> moment{0, 150'000};
  std::string imported;
  for (int i = 0; i < operationsOf(5); ++i) {
    ASSERT_TRUE(writeBytes(catalogue, before));
    importKilledAfter(moment(chance));
    ASSERT_EQ(readIn(catalogue, "PRAGMA integrity_check"), "ok") << i;
    EXPECT_EQ(readIn(catalogue, "SELECT titolo FROM articoli WHERE codice = 'prima'"), "Mio") << i;
    const std::string count = readIn(catalogue, "SELECT COUNT(*) FROM articoli");
    if (count == "1") continue;
    EXPECT_EQ(readIn(catalogue, "SELECT COUNT(*) FROM categorie"), "3") << i;
    EXPECT_EQ(count, imported.empty() ? count : imported) << i;
    imported = count;
  }
  for (const std::string& backup : listFiles(shop, "catalog.0*")) {
    EXPECT_EQ(readIn(joinPath(shop, backup), "SELECT COUNT(*) FROM articoli"), "1") << backup;
  }
}

}  // namespace
}  // namespace kv::test
