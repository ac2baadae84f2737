// Shops of chance: a table that is exported and read again changes nothing, in three forms of file.
#include "tables_of_chance.h"

namespace kv::test {
namespace {

TEST_F(TablesOfChance, ReadAgainFromWhatWasExportedChangeNothing) {
  for (unsigned i = 0; i < seeds(3); ++i) {
    fillShop(seed() + i);
    const auto tables = sheetTables(session.catalogue, maxLanguages);
    ASSERT_TRUE(tables);
    for (const SheetTable& columns : *tables) {
      const std::string csv = root / (columns.name + ".csv"), xlsx = root / (columns.name + ".xlsx"),
                        ods = root / (columns.name + ".ods");
      ASSERT_TRUE(exportTable(session.catalogue, columns, csv, {}));
      ASSERT_TRUE(exportTable(session.catalogue, columns, xlsx, {}));
      const auto sheet = readSheetFile(csv, {});
      ASSERT_TRUE(sheet);
      writeOds(ods, sheet->cells);
      for (const std::string& path : {csv, xlsx, ods}) {
        session.languageCount = maxLanguages;
        const TablePlan planned = planFile(path, columns.name);
        const TableSums sums = planned.sums();
        EXPECT_EQ(planned.columns.size(), sheet->cells.width()) << path;
        EXPECT_EQ(sums.same, planned.rows.size()) << path << " of shop " << seed() + i << "\n" << shownPlan(planned);
      }
    }
  }
}

}  // namespace
}  // namespace kv::test
