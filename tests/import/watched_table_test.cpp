// Long works on sheets are ended at any look at the user, and leave nothing that is half done.
#include "import/tables/table_guide.h"
#include "platform/text/text.h"
#include "table_shop.h"
#include "tables_of_chance.h"

namespace kv::test {
namespace {

class WatchedTable : public TableShop {
 protected:
  /// Runs a work that ends at the n-th look for each n, until one goes through; how many were ended.
  template <class Work>
  static int endEverywhere(Work work) {
    for (int end = 1;; ++end) {
      int looks = 0;
      if (work([&] { return ++looks < end; })) return end - 1;
      if (end > 1000) return -1;
    }
  }
  static std::string manyRows() {
    std::string text = "codice;titolo\r\n";
    for (int i = 0; i < 3000; ++i) text += "N-" + std::to_string(i) + ";Vaso " + std::to_string(i) + "\r\n";
    return text;
  }
  /// A sheet of many rows in the form that a name tells.
  std::string manyRowsAs(const std::string& name) {
    const std::string csv = root / "molte.csv", path = root / name;
    EXPECT_TRUE(writeBytes(csv, manyRows()));
    const auto read = readSheetFile(csv, {});
    if (!read || name.ends_with(".csv")) return csv;
    if (name.ends_with(".ods")) {
      writeOds(path, read->cells);
      return path;
    }
    auto output = openSheetOutput(path, "Foglio");
    for (std::size_t row = 0; output && row < read->cells.rows(); ++row) {
      EXPECT_TRUE((*output)->row({read->cells.cell(row, 0), read->cells.cell(row, 1)}));
    }
    EXPECT_TRUE(output && (*output)->finish());
    return path;
  }
};

TEST_F(WatchedTable, IsReadWholeOrNotAtAllInEveryForm) {
  for (const char* name : {"molte.csv", "molte.xlsx", "molte.ods"}) {
    TableGuide guide(session, settings, "cat003", "modello1");
    guide.path = manyRowsAs(name);
    EXPECT_GT(endEverywhere([&](const std::function<bool()>& goOn) {
                EXPECT_EQ(guide.read(goOn), "");
                return guide.isRead();
              }),
              0)
        << name;
    EXPECT_EQ(guide.sheet().sheet.cells.rows(), 3001U) << name;
  }
}

TEST_F(WatchedTable, IsReadWholeOrNotAtAllInTheShapeOfAnotherShop) {
  std::string text = "Handle,Title,Body (HTML),Variant SKU,Variant Price,Variant Grams,Image Src\n";
  for (int i = 0; i < 3000; ++i) text += "vaso,Vaso,,V-" + std::to_string(i) + ",2.50,100,\n";
  TableGuide guide(session, settings, "cat003", "modello1");
  guide.path = root / "forma.csv";
  ASSERT_TRUE(writeBytes(guide.path, text));
  const int ended = endEverywhere([&](const std::function<bool()>& goOn) {
    EXPECT_EQ(guide.read(goOn), "");
    return guide.isRead();
  });
  EXPECT_GT(ended, 3) << "both while it is read and while it is turned into ours";
  EXPECT_FALSE(guide.sheet().shape.empty());
}

TEST_F(WatchedTable, IsPlannedWholeOrNotAtAll) {
  TableGuide guide(session, settings, "cat003", "modello1");
  guide.path = manyRowsAs("molte.csv");
  ASSERT_EQ(guide.read(), "");
  const std::string before = allTables();
  double last = 0;
  const int ended = endEverywhere([&](const std::function<bool()>& goOn) {
    last = 0;
    EXPECT_EQ(guide.makePlan([&](std::size_t done, std::size_t all) {
      const double share = static_cast<double>(done) / static_cast<double>(all);
      EXPECT_TRUE(share >= last && share <= 1) << "the bar goes forward alone";
      last = share;
      return goOn();
    }),
              "");
    return guide.hasPlan();
  });
  EXPECT_GT(ended, 20);
  EXPECT_EQ(guide.plan().sums().added, 3000U);
  EXPECT_EQ(allTables(), before);
}

TEST_F(WatchedTable, IsExportedWholeOrNotAtAll) {
  ASSERT_EQ(importSheet(replaceAll(replaceAll(manyRows(), "\r\n", ";Vetri\r\n"), "titolo;Vetri", "titolo;reparto")),
            TableEnd::Done);
  const auto columns = sheetTable(session.catalogue, 1, "articoli");
  ASSERT_TRUE(columns);
  for (const char* name : {"articoli.csv", "articoli.xlsx"}) {
    const std::string folder = root / (std::string("cartella_") + name), path = joinPath(folder, name);
    ASSERT_TRUE(createFolders(folder) && writeBytes(path, "older"));
    const int ended = endEverywhere([&](const std::function<bool()>& goOn) {
      TableExport what;
      what.columns = {"codice", "titolo"};
      what.goOn = [&](std::size_t done, std::size_t all) {
        EXPECT_TRUE(done <= all && all == 3003);
        return goOn();
      };
      const auto written = exportTable(session.catalogue, *columns, path, what);
      if (written) return true;
      EXPECT_EQ(written.error().kind, ErrorKind::Cancelled);
      EXPECT_EQ(readBytes(path), "older");
      EXPECT_EQ(listFiles(folder, "*").size(), 1U);
      return false;
    });
    EXPECT_GT(ended, 5) << name;
    EXPECT_EQ(planFile(path, "articoli").sums().same, 3003U) << name;
  }
}

}  // namespace
}  // namespace kv::test
