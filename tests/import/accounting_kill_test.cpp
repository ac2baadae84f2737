// A kill in the middle of an import from the accounting package: the catalogue is whole, with the rows of before or
// with all of the new ones.
#include "accounting_shop.h"
#include "support/jet_samples.h"
#include "support/killed_process.h"

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
  void importIt() {
    auto opened = Database::open(shop + "/catalog.mdb", OpenMode::Exclusive);
    if (!opened) return;
    session.catalogue = std::move(*opened);
    ignore(import() == AccountingEnd::Done, "the files tell how far it came");
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
  KilledProcess process;
  std::string imported;
  for (int i = 0; i <= operationsOf(50); ++i) {
    ASSERT_TRUE(writeBytes(catalogue, before));
    process.run([this] { importIt(); });
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
