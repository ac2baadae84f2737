// Sheets and shops of chance: what an import writes is row by row what its preview said, in every table, mode, key and
// form of file; undone, every table has the rows it had.
#include <map>

#include "import/tables/cell_reading.h"
#include "platform/text/text.h"
#include "tables_of_chance.h"

namespace kv::test {
namespace {

using SheetRows = std::vector<std::vector<std::string>>;
/// Rows of a table by their keys; each value as the preview writes it.
using ShownRows = std::map<std::int64_t, std::vector<std::string>>;

class ImportsOfChance : public TablesOfChance {
 protected:
  bool isOneOf(int count) { return upTo(count - 1) == 0; }
  template <class Values>
  const auto& oneOf(const Values& values) {
    return values[static_cast<std::size_t>(upTo(static_cast<int>(values.size()) - 1))];
  }

  /// The rows of a table as they are exported, headers first.
  SheetRows exported(const SheetTable& columns) {
    const std::string path = root / "esportato.csv";
    EXPECT_TRUE(exportTable(session.catalogue, columns, path, {}));
    const auto sheet = readSheetFile(path, {});
    SheetRows all;
    for (std::size_t row = 0; sheet && row < sheet->cells.rows(); ++row) {
      all.emplace_back();
      for (std::size_t i = 0; i < sheet->cells.width(); ++i) all.back().emplace_back(sheet->cells.cell(row, i).text);
    }
    return all;
  }
  static bool isKey(std::string_view header) {
    for (const std::string_view name :
         {"ID", "Codice", "Reparto", "Percorso", "Nome", "Variante", "Testo", "Paese", "Sigla", "Zona"}) {
      if (header == name) return true;
    }
    return false;
  }
  /// Another cell: one that is right, one that a row is refused for, or none.
  std::string otherCell(const SheetRows& from, std::size_t column) {
    const int kind = upTo(4);
    if (kind == 0) return "dodici";
    if (kind == 1) return "";
    if (kind == 2) return chanceText(3);
    return kind == 3 ? "12,5" : from[static_cast<std::size_t>(1 + upTo(static_cast<int>(from.size()) - 2))][column];
  }
  /// Gives a row keys that the shop hasn't.
  void renew(std::vector<std::string>& row, const std::vector<std::string>& headers) {
    const std::string number = std::to_string(++made_);
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (headers[i] == "ID") row[i].clear();
      if (headers[i] == "Percorso") row[i] = path_ += " > Nuovo " + number;
      if (headers[i] == "Reparto" || headers[i] == "Variante") continue;
      if (isKey(headers[i]) && headers[i] != "ID" && headers[i] != "Percorso") row[i] = "N" + number;
    }
  }
  /// A sheet that has some rows and columns of a shop, some of them changed, and some new rows.
  SheetRows changedSheet(const SheetRows& from) {
    path_ = "Vetri";
    SheetRows sheet{from[0]};
    for (std::size_t row = 1; row < from.size(); ++row) {
      if (isOneOf(5)) continue;
      sheet.push_back(from[row]);
      for (int i = isOneOf(2) ? 0 : upTo(3); i > 0; --i) {
        const auto column = static_cast<std::size_t>(upTo(static_cast<int>(from[0].size()) - 1));
        sheet.back()[column] = otherCell(from, column);
      }
      if (isOneOf(4)) renew(sheet.back(), from[0]);
      if (isOneOf(9)) sheet.push_back(from[row]);
    }
    for (std::size_t column = from[0].size(); column-- > 0;) {
      if (isKey(from[0][column]) || !isOneOf(3)) continue;
      for (auto& row : sheet) row.erase(row.begin() + static_cast<std::ptrdiff_t>(column));
    }
    return sheet;
  }
  /// Writes a sheet in one of the three forms; its path.
  std::string written(const SheetRows& sheet, unsigned form) {
    const std::string csv = root / "foglio.csv", xlsx = root / "foglio.xlsx", ods = root / "foglio.ods";
    const std::string path = form % 3 == 1 ? xlsx : csv;
    auto output = openSheetOutput(path, "Foglio");
    EXPECT_TRUE(output);
    for (const auto& row : sheet) {
      std::vector<SheetCell> cells;
      for (const std::string& text : row) cells.push_back({text});
      EXPECT_TRUE(output && (*output)->row(cells));
    }
    EXPECT_TRUE(output && (*output)->finish());
    if (form % 3 != 2) return path;
    const auto read = readSheetFile(csv, {});
    EXPECT_TRUE(read);
    if (read) writeOds(ods, read->cells);
    return ods;
  }

  /// Plans the import of a sheet of chance into a shop of chance; false where no row can be known by the key.
  bool planByChance(unsigned number, const SheetTable& columns, unsigned form) {
    fillShop(number);
    SheetRows sheet = changedSheet(exported(columns));
    if (isOneOf(2)) fillShop(number + 1000);
    const std::string path = written(sheet, form);
    table.mode =
        oneOf(std::vector{TableMode::AddAndChange, TableMode::AddAndChange, TableMode::OnlyChange, TableMode::OnlyAdd});
    table.unlistedOut = columns.name == "articoli" && isOneOf(2);
    table.key = oneOf(columns.keys).name;
    table.department = isOneOf(2) ? "cat003" : "";
    planned = planFile(path, columns.name);
    for (std::size_t i = 0; i < planned.rows.size(); ++i) {
      const bool isWritten = planned.rows[i].fate == RowFate::New || planned.rows[i].fate == RowFate::Changed;
      if (isWritten && isOneOf(6)) planned.choose(opened.sheet, i, false);
    }
    for (UnlistedArticle& article : planned.unlisted) article.isChosen = !isOneOf(4);
    return !planned.columns.empty();
  }

  ShownRows shownRows(const SheetTable& columns) {
    ShownRows all;
    const auto names = CatalogueNames::read(session.catalogue);
    EXPECT_TRUE(names);
    const CsvReading signs;
    const CellReader reader(signs, *names);
    std::string sql = "SELECT " + columns.rowKey;
    for (const TableColumn& column : columns.columns) sql += ", " + column.stored;
    auto rows = session.catalogue.prepare(sql + " FROM " + columns.from);
    EXPECT_TRUE(rows);
    while (rows && *rows->step()) {
      auto& values = all[rows->integer(0)];
      for (std::size_t i = 0; i < columns.columns.size(); ++i) {
        const TableColumn& column = columns.columns[i];
        const std::string text = reader.shown(column, *rows, static_cast<int>(i) + 1);
        values.push_back(sameFor(column, reader.plain(column, {text, isNumberField(column.field)})));
      }
    }
    return all;
  }
  /// A value in the one form in which equal ones are equal: names know no case, texts have the line ends of one system.
  static std::string sameFor(const TableColumn& column, const std::string& text) {
    const bool isName = column.field == CellField::Department || column.field == CellField::Variant ||
                        column.field == CellField::OwnVariant || column.field == CellField::OwnPath;
    return isName ? plainPath(text) : replaceAll(replaceAll(text, "\r\n", "\n"), "\r", "\n");
  }
  /// Enters into a row of the table what the preview says of a row of the sheet; false when the value before isn't
  /// what it says.
  void apply(const PlannedRow& row, const std::vector<ShownChange>& changes, std::vector<std::string>& values) {
    ASSERT_EQ(changes.size(), row.changed.size());
    for (std::size_t i = 0; i < changes.size(); ++i) {
      const std::size_t index = planned.columns[row.changed[i]].column;
      const TableColumn& column = planned.table.columns[index];
      EXPECT_EQ(changes[i].column, column.italian);
      if (row.key != 0) EXPECT_EQ(sameFor(column, changes[i].before), values[index]) << column.name;
      values[index] = sameFor(column, changes[i].after);
    }
  }
  /// What the rows are to be when the plan says the truth: those that are there, by key, and the new ones in order.
  void expectRows(const SheetTable& columns, const ShownRows& before, ShownRows& expected, SheetRows& added) {
    expected = before;
    const std::vector<std::string> nothing = emptyRow(columns);
    for (const PlannedRow& row : planned.rows) {
      if (!row.isChosen || row.fate == RowFate::Same || row.fate == RowFate::LeftOut) continue;
      const auto changes = shownChanges(session.catalogue, planned, opened.sheet, row);
      ASSERT_TRUE(changes);
      if (row.fate == RowFate::New) added.push_back(nothing);
      ASSERT_TRUE(row.fate == RowFate::New || expected.contains(row.key));
      apply(row, *changes, row.fate == RowFate::New ? added.back() : expected[row.key]);
    }
    const auto out = columns.columnIndex("fuoricatalogo");
    for (const auto& [key, isChosen] : planned.unlisted) {
      if (isChosen) expected[key][*out] = "sì";
    }
  }
  static std::vector<std::string> emptyRow(const SheetTable& columns) {
    std::vector<std::string> values;
    for (const TableColumn& column : columns.columns) {
      values.emplace_back(column.field == CellField::Flag || column.field == CellField::Mark ? "no" : "");
    }
    return values;
  }
  /// Whether the import decides about a column by itself: keys of its own, the order in a department, the path that
  /// follows from titles; of a new row what it can't be without, where the sheet doesn't say it.
  static bool isGiven(const TableColumn& column, bool isNew, const std::string& wanted) {
    if (column.field == CellField::RowKey || column.field == CellField::OwnPath) return true;
    if (column.name == "ordinamento") return true;
    return isNew && wanted.empty() &&
           (column.name == "reparto" || column.name == "titolo" || column.name == "template");
  }
  static void compare(const SheetTable& columns, const std::vector<std::string>& is,
                      const std::vector<std::string>& wanted, bool isNew) {
    for (std::size_t i = 0; i < is.size(); ++i) {
      const TableColumn& column = columns.columns[i];
      if (!isGiven(column, isNew, wanted[i])) EXPECT_EQ(is[i], wanted[i]) << column.name;
    }
  }

  /// The first line of a text that another one hasn't at its position, of both.
  static std::string firstDifference(const std::string& one, const std::string& other) {
    const auto at =
        static_cast<std::size_t>(std::mismatch(one.begin(), one.end(), other.begin(), other.end()).first - one.begin());
    const auto lineOf = [&](const std::string& text) {
      const std::size_t begin = at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
      return text.substr(begin, text.find('\n', at) - begin);
    };
    return one == other ? "" : lineOf(one) + "\n" + lineOf(other);
  }
  /// Every row of every table of the catalogue.
  std::string wholeCatalogue() {
    std::string text;
    const std::string names = rows("SELECT name FROM sqlite_master WHERE type = 'table' AND name <> 'sqlite_sequence'");
    for (std::size_t at = 0; at < names.size(); at = names.find('\n', at) + 1) {
      const std::string name = names.substr(at, names.find('\n', at) - at);
      text += name + "\n" + rows("SELECT * FROM " + name);
    }
    return text;
  }
  TableEnd import() { return importPlannedTable(session, env, planned, opened.sheet, table); }
  std::string scene(const SheetTable& columns, unsigned number) {
    return columns.name + " by " + table.key + ", mode " + std::to_string(static_cast<int>(table.mode)) + ", shop " +
           std::to_string(number) + "\n" + shownPlan(planned);
  }

  TablePlan planned;
  std::map<RowFate, std::size_t> seen;  // rows of each fate, in all imports

 private:
  int made_ = 0;
  std::string path_;
};

TEST_F(ImportsOfChance, WriteRowByRowWhatThePreviewSaid) {
  session.languageCount = maxLanguages;
  for (unsigned i = 0; i < seeds(3); ++i) {
    const auto tables = sheetTables(session.catalogue, maxLanguages);
    ASSERT_TRUE(tables);
    for (std::size_t t = 0; t < tables->size(); ++t) {
      const SheetTable& columns = (*tables)[t];
      if (!planByChance(seed() + i, columns, i + static_cast<unsigned>(t))) continue;
      SCOPED_TRACE(scene(columns, seed() + i));
      const ShownRows before = shownRows(columns);
      ShownRows expected;
      SheetRows added;
      expectRows(columns, before, expected, added);
      ASSERT_EQ(import(), TableEnd::Done);
      const ShownRows after = shownRows(columns);
      ASSERT_EQ(after.size(), before.size() + added.size());
      auto next = added.begin();
      for (const auto& [key, values] : after) {
        const bool isNew = !expected.contains(key);
        SCOPED_TRACE(key);
        compare(columns, values, isNew ? *next++ : expected[key], isNew);
      }
      for (const PlannedRow& row : planned.rows) ++seen[row.fate];
      ASSERT_FALSE(HasFailure());
    }
  }
  for (const RowFate fate : {RowFate::New, RowFate::Changed, RowFate::Same, RowFate::LeftOut}) {
    EXPECT_GT(seen[fate], 0U) << fateWord(fate);
  }
}

TEST_F(ImportsOfChance, AreUndoneToEqualRowsOfEveryTable) {
  ASSERT_TRUE(sets.bind());
  session.languageCount = maxLanguages;
  std::size_t changed = 0;
  for (unsigned i = 0; i < seeds(3); ++i) {
    const auto tables = sheetTables(session.catalogue, maxLanguages);
    ASSERT_TRUE(tables);
    for (std::size_t t = 0; t < tables->size(); ++t) {
      if (!planByChance(seed() + i, (*tables)[t], i + static_cast<unsigned>(t) + 1)) continue;
      history.begin();
      const std::string before = wholeCatalogue();
      ASSERT_TRUE(history.record("Importa", [&]() -> Result<> {
        EXPECT_EQ(import(), TableEnd::Done);
        return {};
      }));
      EXPECT_EQ(history.canUndo(), wholeCatalogue() != before);
      if (history.canUndo()) {
        ++changed;
        ASSERT_TRUE(history.undo());
      }
      ASSERT_EQ(firstDifference(wholeCatalogue(), before), "") << scene((*tables)[t], seed() + i);
      history.end();
    }
  }
  EXPECT_GT(changed, 2 * seeds(3));
}

}  // namespace
}  // namespace kv::test
