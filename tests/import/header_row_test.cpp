// Sheets with a title, a date or an address above their headers: the row that names the columns is found in every form,
// another one can be given, and nothing above it is taken for an article.
#include "import/tables/header_row.h"

#include "import/tables/table_guide.h"
#include "tables_of_chance.h"

namespace kv::test {
namespace {

class HeaderRows : public TableShop {
 protected:
  /// The same rows in the three forms.
  std::vector<std::string> threeForms(const std::string& csv) {
    EXPECT_TRUE(writeBytes(root / "listino.csv", csv));
    const auto read = readSheetFile(root / "listino.csv", {});
    EXPECT_TRUE(read);
    auto xlsx = openSheetOutput(root / "listino.xlsx", "Listino");
    EXPECT_TRUE(read && xlsx);
    for (std::size_t row = 0; row < read->cells.rows(); ++row) {
      std::vector<SheetCell> cells;
      for (std::size_t i = 0; i < read->cells.width(row); ++i) cells.push_back(read->cells.cell(row, i));
      EXPECT_TRUE((*xlsx)->row(cells));
    }
    EXPECT_TRUE((*xlsx)->finish());
    writeOds(root / "listino.ods", read->cells);
    return {root / "listino.csv", root / "listino.xlsx", root / "listino.ods"};
  }
  /// The line of the headers, and the headers.
  std::string headersOf(const std::string& csv) {
    EXPECT_TRUE(writeBytes(root / "foglio.csv", csv));
    const auto read = openTableSheet(session, settings, root / "foglio.csv", "articoli");
    EXPECT_TRUE(read);
    std::string text = std::to_string(read->sheet.cells.line(0)) + ":";
    for (const std::string& header : read->sheet.headers()) text += (text.ends_with(':') ? " " : "|") + header;
    return text;
  }
  /// The line of the headers and what becomes of the rows below them.
  std::string found(const std::string& csv) {
    const TablePlan planned = plan(csv);
    return std::to_string(opened.sheet.cells.line(0)) + "\n" + shownPlan(planned);
  }
};

TEST_F(HeaderRows, AreFoundBelowATitleInEveryForm) {
  const std::string titled =
      "Listino 2026;;\nCeramiche Rossi;tel. 055 1234;\nCodice;Prezzo;Titolo\nT-1;13,00;Tazza\nT-9;1;x\n";
  for (const std::string& path : threeForms(titled)) {
    SCOPED_TRACE(path);
    const TablePlan planned = planFile(path, "articoli");
    EXPECT_EQ(opened.sheet.headers(), (std::vector<std::string>{"Codice", "Prezzo", "Titolo"}));
    EXPECT_EQ(shownPlan(planned), "4 modificato [Prezzo 12,50>13,00]\n5 tralasciato: manca Reparto\n");
  }
}

TEST_F(HeaderRows, OfATextAreFoundBelowATitleWithoutItsSeparator) {
  const std::string rows = "\nCodice;Prezzo\nT-1;13,00\n", fate = "modificato [Prezzo 12,50>13,00]\n";
  EXPECT_EQ(found("Listino 2026" + rows), "2\n3 " + fate);
  EXPECT_EQ(found("Listino, aggiornato il 3/1, Rossi\n\n" + rows), "4\n5 " + fate);
  EXPECT_EQ(found("Listino\nCodice,Prezzo\nT-1,\"13,00\"\n"), "2\n3 " + fate);
  EXPECT_EQ(headersOf("Titolo\nVaso, blu\nTazza, rossa\n"), "1: Titolo") << "a header of one column";
}

TEST_F(HeaderRows, StayTheFirstOnesWhereAnArticleIsNamedLikeAColumn) {
  EXPECT_EQ(found("codice;titolo;x\nT-1;Prezzo;Peso\n"), "1\n2 modificato [Titolo Tazza>Prezzo]\n");
  EXPECT_EQ(headersOf("a;b\nlink;z\n"), "1: a|b") << "one word isn't enough";
}

TEST_F(HeaderRows, AreThoseWhoseColumnsWereChosenBefore) {
  const auto columns = sheetTable(session.catalogue, 2, "articoli");
  ASSERT_TRUE(columns);
  const std::vector<std::string> headers{"Sigla art.", "Euro"};
  ASSERT_TRUE(
      keepMapping(settings, *columns, headers, {columns->columnIndex("codice"), columns->columnIndex("prezzo")}));
  EXPECT_EQ(found("Listino;\nSigla art.;Euro\nT-1;13\n"), "2\n3 modificato [Prezzo 12,50>13,00]\n");
}

TEST_F(HeaderRows, AreShownByTheGuideAndChanged) {
  ASSERT_TRUE(writeBytes(root / "foglio.csv", "Listino 2026;\nCodice;Prezzo\nT-1;13\nT-2;2\n"));
  TableGuide guide(session, settings, "cat003", "modello1");
  guide.path = root / "foglio.csv";
  ASSERT_EQ(guide.read(), "");
  const std::string usual = "CSV, UTF-8, separatore \";\", fine riga LF, decimali \",\", migliaia nessuno";
  EXPECT_EQ(guide.reading(), usual + ", intestazioni alla riga 2, 2 righe");
  EXPECT_EQ(guide.firstRows(2)[0], (std::vector<std::string>{"Codice", "Prezzo"}));
  ASSERT_EQ(guide.sheet().headerRows.size(), 4U);
  EXPECT_EQ(guide.sheet().headerRows[0].text, "Listino 2026");
  EXPECT_EQ(guide.sheet().headerRows[2].text, "T-1, 13");
  guide.choice.headerLine = 1;
  ASSERT_EQ(guide.read(), "");
  EXPECT_EQ(guide.reading(), usual + ", 3 righe");
  EXPECT_EQ(guide.firstRows(1)[0][0], "Listino 2026");
  guide.choice.headerLine = 3;
  ASSERT_EQ(guide.read(), "");
  EXPECT_EQ(guide.firstRows(1)[0][0], "T-1");
}

}  // namespace
}  // namespace kv::test
