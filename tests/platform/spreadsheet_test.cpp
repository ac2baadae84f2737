// Spreadsheets as a merchant has them: what is written is read again, and what other programs write is read as it is
// shown. Damaged, protected and endless files are refused with a reason.
#include "platform/sheet/spreadsheet.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "platform/files/zip_file.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

constexpr const char* relationType = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";

class Spreadsheets : public ::testing::Test {
 protected:
  /// A packed file of these parts.
  std::string packed(const std::vector<ZipEntry>& parts) {
    EXPECT_TRUE(writeZip(root / "foglio", parts, {}));
    return root / "foglio";
  }
  static std::string relation(const std::string& ID, const std::string& type, const std::string& target) {
    return "<Relationship Id='" + ID + "' Type='" + relationType + type + "' Target='" + target + "'/>";
  }
  static std::vector<ZipEntry> xlsxParts(const std::string& rows, const std::string& texts = "",
                                         const std::string& styles = "", const std::string& properties = "") {
    return {{"_rels/.rels", "",
             "<Relationships>" + relation("r1", "officeDocument", "xl/workbook.xml") + "</Relationships>"},
            {"xl/workbook.xml", "",
             "<workbook xmlns:r='x'>" + properties +
                 "<sheets><sheet name='Uno' sheetId='1' r:id='rId7'/></sheets></workbook>"},
            {"xl/_rels/workbook.xml.rels", "",
             "<Relationships>" + relation("rId7", "worksheet", "worksheets/a.xml") +
                 relation("s", "sharedStrings", "sharedStrings.xml") + relation("t", "styles", "/xl/styles.xml") +
                 "</Relationships>"},
            {"xl/sharedStrings.xml", "", "<sst>" + texts + "</sst>"},
            {"xl/styles.xml", "", "<styleSheet>" + styles + "</styleSheet>"},
            {"xl/worksheets/a.xml", "", "<worksheet><sheetData>" + rows + "</sheetData></worksheet>"}};
  }
  static ZipEntry odsContent(const std::string& tables) {
    return {"content.xml", "",
            "<office:document-content xmlns:office='o' xmlns:table='t' xmlns:text='x'><office:body>"
            "<office:spreadsheet>" +
                tables +
                "</office:spreadsheet></office:body>"
                "</office:document-content>"};
  }
  /// Rows by line, cells parted by "|", numbers marked by "#".
  static std::string shown(const CellTable& cells) {
    std::string text;
    for (std::size_t row = 0; row < cells.rows(); ++row) {
      text += std::to_string(cells.line(row)) + ":";
      for (std::size_t i = 0; i < cells.width(row); ++i) {
        const SheetCell cell = cells.cell(row, i);
        text += (i > 0 ? "|" : "") + std::string(cell.isNumber ? "#" : "") + std::string(cell.text);
      }
      text += "\n";
    }
    return text;
  }
  static std::string read(const std::string& path, const SheetRequest& request = {}) {
    const auto form = sheetFormOf(path);
    if (!form) return "no form: " + form.error().what;
    const auto content = readSpreadsheet(path, *form, request);
    return content ? shown(content->cells) : "failed: " + content.error().what;
  }
  static Error failureOf(const std::string& path, const SheetRequest& request = {}) {
    const auto form = sheetFormOf(path);
    if (!form) return form.error();
    const auto content = readSpreadsheet(path, *form, request);
    return content ? Error{} : content.error();
  }

  TempFolder root;
};

TEST_F(Spreadsheets, AmountsAndMomentsAreNumbersAndDates) {
  auto writer = SheetWriter::create(root / "foglio.xlsx", "Uno");
  ASSERT_TRUE(writer);
  writer->setWidths({12, 20});
  ASSERT_TRUE(writer->dressedRow({{"a_x000D_", CellLook::Text},
                                  {"12.5", CellLook::Amount},
                                  {"3", CellLook::Number},
                                  {"2026-05-31 13:45:07", CellLook::Moment},
                                  {"2024-02-29", CellLook::Moment},
                                  {"2026-02-29", CellLook::Moment},
                                  {"ieri", CellLook::Moment},
                                  {"1899-12-31", CellLook::Moment}}));
  ASSERT_TRUE(writer->dressedRow({{"", CellLook::Amount}, {"b"}}));
  ASSERT_TRUE(writer->finish());
  const auto sheet = readSpreadsheet(root / "foglio.xlsx", SheetForm::Xlsx, {});
  ASSERT_TRUE(sheet) << sheet.error().what;
  EXPECT_EQ(shown(sheet->cells),
            "1:a_x000D_|#12.5|#3|2026-05-31 13:45:07|2024-02-29|2026-02-29|ieri|1899-12-31\n2:|b\n");
}

TEST_F(Spreadsheets, AreReadAsTheyWereWritten) {
  auto writer = SheetWriter::create(root / "a.xlsx", "Articoli");
  ASSERT_TRUE(writer);
  ASSERT_TRUE(writer->row({{"codice"}, {"prezzo"}, {"testo"}}));
  ASSERT_TRUE(writer->row({{"007"}, {"12.3", true}, {"Due\r\nrighe <&> \"è\" € _x0041_"}}));
  ASSERT_TRUE(writer->row({{}, {"-0.0001", true}, {" spazi  intorno "}}));
  ASSERT_TRUE(writer->row({{}, {"123456789012.345", true}}));
  ASSERT_TRUE(writer->finish());
  EXPECT_EQ(read(root / "a.xlsx"),
            "1:codice|prezzo|testo\n"
            "2:007|#12.3|Due\r\nrighe <&> \"è\" € _x0041_\n"
            "3:|#-0.0001| spazi  intorno \n"
            "4:|#123456789012.345\n");
}

TEST_F(Spreadsheets, AppearUnderTheirNameOnlyWhenTheyAreWhole) {
  {
    auto writer = SheetWriter::create(root / "a.xlsx", "Articoli");
    ASSERT_TRUE(writer);
    ASSERT_TRUE(writer->row({{"codice"}}));
  }
  EXPECT_FALSE(fileExists(root / "a.xlsx"));
  EXPECT_EQ(SheetWriter::create(root / "no/a.xlsx", "A").error().kind, ErrorKind::Missing);
}

TEST_F(Spreadsheets, ShowSharedTextsFormulasDatesAndPercentsAsTheCellsDo) {
  const std::string texts =
      "<si><t>Tazza</t></si><si><r><t>ros</t></r><r><t xml:space='preserve'>sa </t></r>"
      "<rPh><t>x</t></rPh></si>";
  const std::string styles =
      "<numFmts><numFmt numFmtId='170' formatCode='dd\\/mm\\/yyyy'/>"
      "<numFmt numFmtId='171' formatCode='\"d\"0.0%'/></numFmts>"
      "<cellStyleXfs><xf numFmtId='9'/></cellStyleXfs>"
      "<cellXfs><xf numFmtId='0'/><xf numFmtId='170'/><xf numFmtId='171'/><xf numFmtId='22'/></cellXfs>";
  const std::string rows =
      "<row r='1'><c r='A1' t='s'><v>0</v></c><c r='C1' t='s'><v>1</v></c></row>"
      "<row r='4'><c r='A4'><f>B1*2</f><v>12.300000000000001</v></c><c r='B4' s='1'><v>45443</v></c>"
      "<c r='C4' s='2'><v>0.22</v></c><c r='D4' s='3'><v>45443.573</v></c><c r='E4' t='b'><v>1</v></c></row>"
      "<row><c t='inlineStr'><is><t>sotto</t></is></c><c t='str'><f>x</f><v>calcolato</v></c><c "
      "t='e'><v>#N/A</v></c></row>";
  EXPECT_EQ(read(packed(xlsxParts(rows, texts, styles))),
            "1:Tazza||rossa \n"
            "4:#12.3|2024-05-31|#22|2024-05-31 13:45:07|#1\n"
            "5:sotto|calcolato|#N/A\n");
}

TEST_F(Spreadsheets, CountDaysFrom1904WhereTheFileSaysSo) {
  const std::string styles = "<cellXfs><xf numFmtId='14'/></cellXfs>";
  EXPECT_EQ(
      read(packed(xlsxParts("<row r='1'><c r='A1'><v>43981</v></c></row>", "", styles, "<workbookPr date1904='1'/>"))),
      "1:2024-05-31\n");
}

TEST_F(Spreadsheets, OfOpenDocumentRepeatCellsAndRowsAndLeaveOutNotes) {
  const std::string tables =
      "<table:table table:name='Primo'>"
      "<table:table-row><table:table-cell office:value-type='string'><text:p>codice</text:p>"
      "<office:annotation><text:p>nota</text:p></office:annotation></table:table-cell>"
      "<table:table-cell table:number-columns-repeated='2' office:value-type='float' office:value='2.5'>"
      "<text:p>2,50</text:p></table:table-cell><table:table-cell "
      "table:number-columns-repeated='1000000'/></table:table-row>"
      "<table:table-row table:number-rows-repeated='2'><table:table-cell office:value-type='percentage' "
      "office:value='0.22'/>"
      "<table:covered-table-cell/><table:table-cell office:value-type='string'><text:p>a<text:s text:c='2'/>"
      "<text:span>b</text:span></text:p><text:p>c</text:p></table:table-cell></table:table-row>"
      "<table:table-row table:number-rows-repeated='1048570'><table:table-cell table:number-columns-repeated='16384'/>"
      "</table:table-row>"
      "<table:table-row><table:table-cell office:value-type='date' office:date-value='2024-05-31T13:45:00'/>"
      "<table:table-cell office:value-type='boolean' office:boolean-value='true'/></table:table-row></table:table>"
      "<table:table table:name='Secondo'><table:table-row><table:table-cell office:value-type='string'>"
      "<text:p>altro</text:p></table:table-cell></table:table-row></table:table>";
  const std::string path = packed({odsContent(tables)});
  EXPECT_EQ(read(path), "1:codice|#2.5|#2.5\n2:#22||a  b\nc\n3:#22||a  b\nc\n1048574:2024-05-31 13:45:00|#1\n");
  SheetRequest second;
  second.sheet = 1;
  EXPECT_EQ(read(path, second), "1:altro\n");
  const auto content = readSpreadsheet(path, SheetForm::Ods, {});
  ASSERT_TRUE(content);
  EXPECT_EQ(content->names, (std::vector<std::string>{"Primo", "Secondo"}));
}

TEST_F(Spreadsheets, BeyondTheLimitsAreRefusedWhileTheyAreRead) {
  const std::string row =
      "<table:table-row table:number-rows-repeated='1000000000'><table:table-cell "
      "office:value-type='float' office:value='1'/></table:table-row>";
  EXPECT_EQ(failureOf(packed({odsContent("<table:table table:name='a'>" + row + "</table:table>")})).number,
            TooLargeSheet);
  const std::string wide =
      "<table:table-row><table:table-cell table:number-columns-repeated='1000000' "
      "office:value-type='float' office:value='1'/></table:table-row>";
  EXPECT_EQ(failureOf(packed({odsContent("<table:table table:name='a'>" + wide + "</table:table>")})).number,
            TooLargeSheet);
  SheetRequest small;
  small.limits.unpacked = 1000;
  const std::string blank(5000, ' ');
  EXPECT_EQ(failureOf(packed({odsContent(blank)}), small).number, TooLargeSheet);
  small = {};
  small.limits.cellBytes = 10;
  EXPECT_EQ(failureOf(packed(xlsxParts("<row><c t='str'><v>undici caratteri</v></c></row>")), small).number,
            TooLargeSheet);
  small = {};
  small.limits.textBytes = 10;
  EXPECT_EQ(failureOf(packed(xlsxParts("", "<si><t>undici caratteri</t></si>")), small).number, TooLargeSheet);
}

TEST_F(Spreadsheets, OfWhatIsNoneAreRefusedWithTheReason) {
  const auto kindOf = [&](const std::string& bytes) {
    EXPECT_TRUE(writeBytes(root / "x.xlsx", bytes));
    return failureOf(root / "x.xlsx");
  };
  EXPECT_EQ(kindOf("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1").number, OldSheet);
  EXPECT_EQ(kindOf(std::string("MZ\0\1\0\0\3\0\0", 9)).kind, ErrorKind::Malformed);
  const std::string packedPdf = "%PDF-1.4\n" + std::string("\x01q\x1f\x8f\x12", 5) + "stream";
  EXPECT_EQ(kindOf(packedPdf).kind, ErrorKind::Malformed);
  ASSERT_TRUE(writeBytes(root / "x.csv", "codice;titolo\nT-1;Tazza\x01\n"));
  EXPECT_EQ(sheetFormOf(root / "x.csv"), SheetForm::Text) << "a stray character stays in its cell";
  for (const char* page : {"<html><table><tr><td>Codice", "\xEF\xBB\xBF\n<!DOCTYPE HTML>\n", "<TABLE border=1>"}) {
    EXPECT_EQ(kindOf(page).kind, ErrorKind::Malformed) << page;
  }
  EXPECT_EQ(kindOf("PK\x03\x04 cut off").kind, ErrorKind::Corrupt);
  EXPECT_EQ(failureOf(packed({{"readme.txt", "", "x"}})).kind, ErrorKind::Malformed);
  EXPECT_EQ(failureOf(root / "none.xlsx").kind, ErrorKind::Missing);
  EXPECT_EQ(failureOf(packed(xlsxParts("<row><c></row>"))).kind, ErrorKind::Corrupt);
  auto parts = xlsxParts("");
  parts.pop_back();
  EXPECT_EQ(failureOf(packed(parts)).kind, ErrorKind::Corrupt) << "the file is there, the part of the sheet isn't";
  parts[1].content = "<workbook/>";
  EXPECT_EQ(failureOf(packed(parts)).kind, ErrorKind::Corrupt);
  const ZipEntry manifest{"META-INF/manifest.xml", "", "<m><file-entry><encryption-data/></file-entry></m>"};
  EXPECT_EQ(failureOf(packed({manifest, {"content.xml", "", "\x01\x02"}})).number, ProtectedSheet);
}

TEST_F(Spreadsheets, ThatWouldTakeMemoryAreRefusedAsDamaged) {
  std::string deep;
  for (int i = 0; i < 300; ++i) deep += "<a>";
  const std::string longPart(std::size_t{1200} << 10, 'x');
  EXPECT_EQ(failureOf(packed({{"content.xml", "", deep}})).kind, ErrorKind::Corrupt);
  EXPECT_EQ(failureOf(packed({{"content.xml", "", "<a><!--" + longPart + "--></a>"}})).kind, ErrorKind::Corrupt);
  EXPECT_EQ(failureOf(packed({{"content.xml", "", "<a b='" + longPart + "'/>"}})).kind, ErrorKind::Corrupt);
}

TEST_F(Spreadsheets, WithATextOrAListBeyondTheLimitsAreRefused) {
  SheetRequest small;
  small.limits.textBytes = 10;
  small.limits.cells = 3;
  const std::string cell = "<c r='A1' t='inlineStr'><is><t>undici caratteri</t></is></c>";
  EXPECT_EQ(failureOf(packed(xlsxParts("<row r='1'>" + cell + "</row>")), small).number, TooLargeSheet);
  EXPECT_EQ(failureOf(packed(xlsxParts("", "<si/><si/><si/><si/>")), small).number, TooLargeSheet);
  const std::string odsCell = "<table:table-cell><text:p>undici caratteri</text:p></table:table-cell>";
  EXPECT_EQ(
      failureOf(packed({odsContent("<table:table><table:table-row>" + odsCell + "</table:table-row></table:table>")}),
                small)
          .number,
      TooLargeSheet);
  std::string tables;
  for (int i = 0; i <= 10000; ++i) tables += "<table:table/>";
  EXPECT_EQ(failureOf(packed({odsContent(tables)})).number, TooLargeSheet);
  // More sheets than anyone has, named by two bytes each once they are packed.
  auto parts = xlsxParts("");
  std::string sheets;
  for (int i = 0; i <= 10000; ++i) sheets += "<sheet/>";
  parts[1].content = "<workbook>" + sheets + "</workbook>";
  EXPECT_EQ(failureOf(packed(parts)).number, TooLargeSheet);
}

TEST_F(Spreadsheets, ShowNumbersAndDaysThatAreNoneAsTheyAreWritten) {
  const std::string styles = "<cellXfs><xf numFmtId='0'/><xf numFmtId='14'/><xf numFmtId='9'/></cellXfs>";
  std::string row;
  for (const char* value : {"NaN", "inf", "-1", "1e308", "2958466"}) {
    for (const char* style : {"1", "2"}) row += std::string("<c s='") + style + "'><v>" + value + "</v></c>";
  }
  EXPECT_EQ(read(packed(xlsxParts("<row r='1'>" + row + "</row>", "", styles))),
            "1:NaN|#NaN|inf|#inf|-1|#-100|1e308|#1e308|2958466|#295846600\n");
}

TEST_F(Spreadsheets, WithEntitiesThatGrowAreRefused) {
  const ZipEntry bomb{"content.xml", "", "<!DOCTYPE a [<!ENTITY b 'bbbbbbbb'><!ENTITY c '&b;&b;&b;'>]><a>&c;</a>"};
  EXPECT_EQ(failureOf(packed({bomb})).kind, ErrorKind::Malformed);
}

TEST_F(Spreadsheets, AreLeftWhenTheUserCancels) {
  SheetRequest request;
  request.goOn = [] { return false; };
  EXPECT_EQ(failureOf(packed(xlsxParts("<row r='1'><c r='A1'><v>1</v></c></row>")), request).kind,
            ErrorKind::Cancelled);
}

}  // namespace
}  // namespace kv::test
