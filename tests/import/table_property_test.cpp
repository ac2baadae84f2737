// Shops of chance: a table that is exported and read again changes nothing, in three forms of file; what is imported is
// what the preview said.
#include <random>

#include "platform/files/zip_file.h"
#include "support/test_seed.h"
#include "table_shop.h"

namespace kv::test {
namespace {

/// A text as part of XML, its line ends as OpenDocument has them.
std::string odsText(std::string_view text) {
  std::string xml = "<text:p>";
  for (const char c : text) {
    if (c == '\r') continue;
    if (c == '\n') {
      xml += "</text:p><text:p>";
    } else if (c == ' ') {
      xml += "<text:s/>";
    } else {
      xml += c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
    }
  }
  return xml + "</text:p>";
}

/// The sheet of a CSV file as an ODS file.
void writeOds(const std::string& path, const CellTable& cells) {
  std::string xml = "<d xmlns:table='t' xmlns:text='x' xmlns:office='o'><table:table table:name='Foglio'>";
  for (std::size_t row = 0; row < cells.rows(); ++row) {
    xml += "<table:table-row>";
    for (std::size_t i = 0; i < cells.width(row); ++i) {
      xml += "<table:table-cell office:value-type='string'>" + odsText(cells.cell(row, i).text) + "</table:table-cell>";
    }
    xml += "</table:table-row>";
  }
  ASSERT_TRUE(writeZip(path, {{"content.xml", "", xml + "</table:table></d>"}}, {}));
}

class TablesOfChance : public TableShop {
 protected:
  int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(chance); }
  std::string chanceText(int most) {
    static const std::vector<std::string> pieces{"a",   "Z", " ",     "è",   "€",       ";", ",", "\"", "\r\n", ">",
                                                 "<b>", "&", "1.234", "0,5", "_x0041_", "'", "=", "\t", "😀",    "00"};
    std::string text;
    for (int i = upTo(most); i > 0; --i)
      text += pieces[static_cast<std::size_t>(upTo(static_cast<int>(pieces.size()) - 1))];
    return text;
  }
  Value chanceValue(const TableColumn& column) {
    if (upTo(3) == 0) return Null{};
    switch (column.field) {
      case CellField::Money:
        return Money::ofTenThousandths(upTo(1) == 0 ? upTo(2000000) : std::int64_t{9223372036854775807} - upTo(9));
      case CellField::Percent:
        return static_cast<double>(static_cast<float>(upTo(1000)) / 10.0F);
      case CellField::Number:
        return static_cast<double>(std::uniform_real_distribution<float>(0, 1000)(chance));
      case CellField::Whole:
        return std::int64_t{upTo(30000)};
      case CellField::Flag:
        return upTo(1) == 0;
      case CellField::Mark:
        return std::string(upTo(1) == 0 ? "." : "");
      case CellField::Department:
        return std::string("cat00") + std::to_string(1 + upTo(2));
      case CellField::Variant:
        return std::int64_t{100 + upTo(3)};
      case CellField::Lines:
        return chanceText(8);
      default:
        return chanceText(4);
    }
  }
  /// Gives every column of every row of a table a value of chance, but for what its rows are known by.
  void fillTable(const SheetTable& columns) {
    for (const TableColumn& column : columns.columns) {
      const bool isKept = column.field == CellField::RowKey || column.field == CellField::OwnPath ||
                          column.field == CellField::OwnVariant || !columns.canAdd;
      if (isKept) continue;
      auto keys = session.catalogue.prepare("SELECT " + columns.rowKey + " FROM " + columns.from);
      ASSERT_TRUE(keys);
      std::vector<std::int64_t> all;
      while (*keys->step()) all.push_back(keys->integer(0));
      auto update = session.catalogue.prepare("UPDATE " + columns.from + " SET " + column.stored + " = ?1 WHERE " +
                                              columns.rowKey + " = ?2");
      ASSERT_TRUE(update);
      for (const std::int64_t key : all) {
        const Value value = chanceValue(column);
        update->bind(1, value);
        update->bind(2, key);
        ASSERT_TRUE(update->execute());
      }
    }
  }
  void fillShop(unsigned number) {
    chance.seed(number);
    sql("DELETE FROM articoli; DELETE FROM dettagliop");
    for (int i = upTo(12); i >= 0; --i) {
      sql("INSERT INTO articoli (catID, codice) VALUES ('cat001', 'x'); "
          "INSERT INTO dettagliop (OpID) VALUES (" +
          std::to_string(100 + upTo(3)) + ")");
    }
    auto tables = sheetTables(session.catalogue, maxLanguages);
    ASSERT_TRUE(tables);
    for (const SheetTable& columns : *tables) fillTable(columns);
  }

  std::mt19937 chance;
};

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

TEST_F(TablesOfChance, AreImportedAsThePreviewSaidAndUndoneToEqualRows) {
  ASSERT_TRUE(sets.bind());
  for (unsigned i = 0; i < seeds(3); ++i) {
    fillShop(seed() + i);
    const std::string path = root / "prima.csv";
    auto columns = sheetTable(session.catalogue, 2, "articoli");
    ASSERT_TRUE(columns);
    ASSERT_TRUE(exportTable(session.catalogue, *columns, path, {}));
    // Another shop of chance: some IDs are there, others not.
    fillShop(seed() + i + 1000);
    sql("DELETE FROM articoli WHERE ID % 3 = 0");
    history.begin();
    const std::string before = allTables();
    TablePlan planned = planFile(path, "articoli");
    ASSERT_TRUE(history.record("Importa", [&]() -> Result<> {
      EXPECT_EQ(importPlannedTable(session, env, planned, opened.sheet, table), TableEnd::Done);
      return {};
    }));
    const TablePlan after = planFile(path, "articoli");
    EXPECT_EQ(after.sums().changed + after.sums().added, 0U) << "shop " << seed() + i << "\n" << shownPlan(after);
    if (history.canUndo()) {
      ASSERT_TRUE(history.undo());
    }
    EXPECT_EQ(allTables(), before) << "shop " << seed() + i;
    history.end();
  }
}

}  // namespace
}  // namespace kv::test
