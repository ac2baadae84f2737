// Sheets as an office program writes them, with dates, formulas, merged cells, empty rows and empty cells in every
// column there is, in three forms and several encodings: all of them read alike, and damaged ones are refused with a
// reason.
#include <gtest/gtest.h>

#include <random>

#include "import/sheets/sheet_file.h"
#include "platform/files/files.h"
#include "support/temp_folder.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

std::string officePath(const std::string& name) { return std::string(KORVANE_TEST_DATA) + "/import/sheets/" + name; }

/// How a file is read, and its rows.
std::string sheetRows(const std::string& path) {
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

std::string officeRows(const std::string& name) { return sheetRows(officePath(name)); }

constexpr const char* officeCells =
    "1:codice|titolo|prezzo|note|scqperc0\n2:007|Caffè  lungo\nin due righe|12.3|2024-05-31|22\n"
    "6:1000001|Unita|24.6|1\n7:€ \"x\"; <y>||0.1\n";

TEST(OfficeFiles, AreReadAsTheProgramShowsThem) {
  EXPECT_EQ(officeRows("listino.xlsx"), std::string("XLSX, decimali \",\", migliaia nessuno\n") + officeCells);
  EXPECT_EQ(officeRows("listino.ods"), std::string("ODS, decimali \",\", migliaia nessuno\n") + officeCells);
}

TEST(OfficeFiles, ShowZerosBeforeTheirCodesAndAmountsInColors) {
  const std::string cells = "1:codice|titolo|prezzo|peso\n2:000123|Tazza|12.5|0.25\n3:1234567|Piatto|1303.5|2\n";
  EXPECT_EQ(officeRows("formati.xlsx"), "XLSX, decimali \",\", migliaia nessuno\n" + cells + "4:000124|#N/A|0|12\n");
  EXPECT_EQ(officeRows("formati.ods"), "ODS, decimali \",\", migliaia nessuno\n" + cells + "4:000124|#N/A|0|12\n");
}

TEST(OfficeFiles, AsTextHaveWhatTheirCellsShow) {
  EXPECT_EQ(officeRows("listino.csv"),
            "CSV, UTF-8, separatore \";\", fine riga LF, decimali \".\", migliaia nessuno\n"
            "1:codice|titolo|prezzo|note|scqperc0\n2:007|Caffè  lungo\nin due righe|12.3|31/05/2024|22%\n"
            "7:1000001|Unita|24.6|TRUE\n8:€ \"x\"; <y>||0.1\n");
}

/// The rows without how they were read.
std::string withoutReading(const std::string& text) { return text.substr(std::min(text.find('\n') + 1, text.size())); }
std::string officeCellsOf(const std::string& name) { return withoutReading(officeRows(name)); }

TEST(OfficeFiles, WithEmptyCellsInEveryColumnReadAlikeInBothForms) {
  const std::string xlsx = officeCellsOf("magazzino.xlsx");
  EXPECT_TRUE(
      xlsx.starts_with("1:codice|titolo|prezzo|prezzo1|scqperc0|note|peso|descrizione\n"
                       "2:00001|perché Tazza|1303.53|2607.06|10|2039-04-01|0.25\n"
                       "3:00002|&c \"x\"|1703.54|3407.08|23||0.25|una riga\n"))
      << xlsx;
  EXPECT_EQ(officeCellsOf("magazzino.ods"), xlsx);
}

TEST(OfficeFiles, AsTextReadAlikeInEveryEncoding) {
  const std::string utf8 = officeCellsOf("magazzino_utf8.csv");
  EXPECT_TRUE(
      utf8.starts_with("1:codice|titolo|prezzo|prezzo1|scqperc0|note|peso|descrizione\n"
                       "2:00001|perché Tazza|1303.53|2607.06|10%|01/04/2039|0.25\n"
                       "3:00002|&c \"x\"|1703.54|3407.08|23%||0.25|una riga\n"))
      << utf8;
  for (const char* form : {"cp1252", "utf16", "comma"}) {
    EXPECT_EQ(officeCellsOf("magazzino_" + std::string(form) + ".csv"), utf8) << form;
  }
  // The two forms that this release of the program doesn't write, made of those it wrote.
  const TempFolder root;
  const auto bare = readBytes(officePath("magazzino_utf8.csv"));
  auto swapped = readBytes(officePath("magazzino_utf16.csv"));
  ASSERT_TRUE(bare && swapped);
  for (std::size_t at = 0; at + 1 < swapped->size(); at += 2) std::swap((*swapped)[at], (*swapped)[at + 1]);
  ASSERT_TRUE(writeBytes(root / "contrassegno.csv", "\xEF\xBB\xBF" + *bare));
  ASSERT_TRUE(writeBytes(root / "utf16be.csv", *swapped));
  const std::string marked = sheetRows(root / "contrassegno.csv"), big = sheetRows(root / "utf16be.csv");
  EXPECT_TRUE(marked.starts_with("CSV, UTF-8 con contrassegno, ")) << marked;
  EXPECT_TRUE(big.starts_with("CSV, UTF-16 (big endian), ")) << big;
  EXPECT_EQ(withoutReading(marked), utf8);
  EXPECT_EQ(withoutReading(big), utf8);
}

TEST(OfficeFiles, ThatAreNotThereOrCannotBeWrittenSaySo) {
  EXPECT_EQ(officeRows("manca.xlsx"), "Il foglio \"manca.xlsx\" non esiste");
  const TempFolder root;
  EXPECT_EQ(sheetRows(root / "."), "\"" + (root / ".") + "\" è una cartella: indicare un foglio XLSX, ODS o CSV");
  for (const char* name : {"manca/foglio.csv", "manca/foglio.xlsx"}) {
    const std::string path = root / name;
    auto output = openSheetOutput(path, "Foglio");
    const Result<> written = output ? (*output)->finish() : Result<>(fail(output.error()));
    ASSERT_FALSE(written) << name;
    EXPECT_TRUE(sheetWritingFailureText(written.error(), path).starts_with("Impossibile scrivere " + path + ":\n"));
  }
  const auto other = openSheetOutput(root / "listino.ODS", "Foglio");
  ASSERT_FALSE(other);
  EXPECT_EQ(sheetWritingFailureText(other.error(), root / "listino.ODS"),
            "Un foglio si scrive in un file CSV o XLSX: \"listino.ODS\" deve finire in .csv o in .xlsx");
}

TEST(OfficeFiles, UnderAPasswordOrOfAnEarlierFormSaySo) {
  EXPECT_EQ(officeRows("protetto.xlsx"),
            "Il foglio \"protetto.xlsx\" è protetto da una password: salvarne una copia senza");
  EXPECT_EQ(officeRows("protetto.ods"),
            "Il foglio \"protetto.ods\" è protetto da una password: salvarne una copia senza");
  EXPECT_EQ(
      officeRows("vecchio.xls"),
      "Il foglio \"vecchio.xls\" è protetto, o nel formato di un vecchio programma: salvarlo come XLSX, ODS o CSV");
}

TEST(OfficeFiles, AreKnownByTheirContentUnderAnyName) {
  const TempFolder root;
  for (const char* name : {"listino.xlsx", "listino.ods", "listino.csv"}) {
    const auto whole = readBytes(std::string(KORVANE_TEST_DATA) + "/import/sheets/" + name);
    for (const char* wrong : {"foglio.csv", "foglio.xlsx", "foglio.xls", "foglio"}) {
      ASSERT_TRUE(whole && writeBytes(root / wrong, *whole));
      const auto sheet = readSheetFile(root / wrong, {});
      ASSERT_TRUE(sheet) << name << " as " << wrong;
      EXPECT_EQ(sheet->headers()[1], "titolo");
    }
  }
}

TEST(OfficeFiles, ThatAreCutOffOrChangedAreRefusedOrReadAndNothingElse) {
  const TempFolder root;
  const std::string path = root / "listino.xlsx";
  std::mt19937 chance(seed());
  for (const char* name : {"listino.xlsx", "listino.ods"}) {
    const auto whole = readBytes(std::string(KORVANE_TEST_DATA) + "/import/sheets/" + name);
    ASSERT_TRUE(whole);
    for (int i = 0; i < operationsOf(100); ++i) {
      std::string bytes = *whole;
      if (i % 2 == 0) bytes.resize(chance() % bytes.size());
      for (unsigned flips = chance() % 4; flips > 0 && !bytes.empty(); --flips) {
        bytes[chance() % bytes.size()] = static_cast<char>(chance());
      }
      ASSERT_TRUE(writeBytes(path, bytes));
      const auto sheet = readSheetFile(path, {});
      if (sheet) continue;
      const std::string text = sheetFailureText(sheet.error(), path);
      EXPECT_TRUE(text.starts_with("Il foglio \"listino.xlsx\" ") || text.starts_with("Il file \"listino.xlsx\" "));
      EXPECT_EQ(text.find("\n\n"), std::string::npos) << text;
    }
  }
}

TEST(OfficeFiles, OfMoreRowsThanASheetHasAreRefused) {
  const TempFolder root;
  const std::string path = root / "lungo.csv";
  std::string rows = "codice\n";
  for (std::size_t i = 1; i < SheetLimits().rows; ++i) rows += "x\n";
  ASSERT_TRUE(writeBytes(path, rows));
  EXPECT_TRUE(readSheetFile(path, {}));
  ASSERT_TRUE(writeBytes(path, rows + "x\n"));
  const auto sheet = readSheetFile(path, {});
  ASSERT_FALSE(sheet);
  EXPECT_EQ(sheetFailureText(sheet.error(), path), "Il foglio \"lungo.csv\" è troppo grande: dividerlo in più fogli");
}

}  // namespace
}  // namespace kv::test
