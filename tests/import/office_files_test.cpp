// A sheet as an office program writes it, with a date, formulas, merged cells and empty rows, in three forms: all of
// them read alike.
#include <gtest/gtest.h>

#include "import/sheets/sheet_file.h"

namespace kv::test {
namespace {

std::string officeRows(const std::string& name) {
  const std::string path = std::string(KORVANE_TEST_DATA) + "/import/sheets/" + name;
  const auto sheet = readSheetFile(path, {});
  if (!sheet) return sheetFailureText(sheet.error(), path);
  std::string text = readingText(sheet->reading) + "\n";
  for (std::size_t row = 0; row < sheet->cells.rows(); ++row) {
    text += std::to_string(sheet->cells.line(row)) + ":";
    for (std::size_t i = 0; i < sheet->cells.width(row); ++i) {
      text += (i > 0 ? "|" : "") + std::string(sheet->cells.cell(row, i).text);
    }
    text += "\n";
  }
  return text;
}

constexpr const char* officeCells =
    "1:codice|titolo|prezzo|note|scqperc0\n2:007|Caffè  lungo\nin due righe|12.3|2024-05-31|22\n"
    "6:1000001|Unita|24.6|1\n7:€ \"x\"; <y>||0.1\n";

TEST(OfficeFiles, AreReadAsTheProgramShowsThem) {
  EXPECT_EQ(officeRows("listino.xlsx"), std::string("XLSX, decimali \",\", migliaia nessuno\n") + officeCells);
  EXPECT_EQ(officeRows("listino.ods"), std::string("ODS, decimali \",\", migliaia nessuno\n") + officeCells);
}

TEST(OfficeFiles, AsTextHaveWhatTheirCellsShow) {
  EXPECT_EQ(officeRows("listino.csv"),
            "CSV, UTF-8, separatore \";\", fine riga LF, decimali \".\", migliaia nessuno\n"
            "1:codice|titolo|prezzo|note|scqperc0\n2:007|Caffè  lungo\nin due righe|12.3|31/05/2024|22%\n"
            "7:1000001|Unita|24.6|TRUE\n8:€ \"x\"; <y>||0.1\n");
}

}  // namespace
}  // namespace kv::test
