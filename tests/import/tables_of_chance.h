#pragma once
// Shops of chance: every column of every table that sheets hold has values that a careless reader or writer would lose.

#include <map>
#include <random>

#include "platform/files/zip_file.h"
#include "store/schema/schema.h"
#include "support/test_seed.h"
#include "table_shop.h"

namespace kv::test {

/// A text as part of XML, its line ends as OpenDocument has them.
inline std::string odsText(std::string_view text) {
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

/// Writes cells as an ODS file, each of them a text.
inline void writeOds(const std::string& path, const CellTable& cells) {
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
  TablesOfChance() {
    for (const TableInfo& one : catalogueTables()) {
      rowsAtFirst_[one.name] = std::stoll(rows("SELECT COALESCE(MAX(rowid), 0) FROM " + one.name));
    }
  }
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
  /// Takes out the rows that imports before have added, so that no shop is larger than the first.
  void takeOutAdded() {
    for (const auto& [name, most] : rowsAtFirst_) {
      sql("DELETE FROM " + name + " WHERE rowid > " + std::to_string(most));
    }
  }
  void fillShop(unsigned number) {
    chance.seed(number);
    takeOutAdded();
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

 private:
  std::map<std::string, std::int64_t> rowsAtFirst_;  // the highest row of each table
};

}  // namespace kv::test
