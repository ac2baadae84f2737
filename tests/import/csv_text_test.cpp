// Texts of separated values: what is found out from their bytes, in five encodings.
#include "import/sheets/csv_text.h"

#include <gtest/gtest.h>

#include "platform/sheet/packed_file.h"

namespace kv::test {
namespace {

std::string shownCsv(const std::string& bytes, const CsvChoice& choice = {}) {
  CsvReading reading;
  const auto cells = readCsv(bytes, choice, {}, reading);
  if (!cells) return "too large";
  std::string text;
  for (std::size_t row = 0; row < cells->rows(); ++row) {
    text += std::to_string(cells->line(row)) + ":";
    for (std::size_t i = 0; i < cells->width(row); ++i) {
      text += (i > 0 ? "|" : "") + std::string(cells->cell(row, i).text);
    }
    text += "\n";
  }
  return text;
}

TEST(CsvText, IsReadAlikeInEveryEncoding) {
  const std::string text = "codice;nome\r\n1;\"Caffè; \"\"città\"\"\r\nalta\"\r\n";
  for (const CsvEncoding encoding : {CsvEncoding::Utf8, CsvEncoding::Utf8Mark, CsvEncoding::Windows1252,
                                     CsvEncoding::Utf16Little, CsvEncoding::Utf16Big}) {
    const std::string bytes = std::string(csvMark(encoding)) + encodedCsv(text, encoding);
    EXPECT_EQ(csvEncodingOf(bytes), encoding);
    EXPECT_EQ(shownCsv(bytes), "1:codice|nome\n2:1|Caffè; \"città\"\r\nalta\n");
  }
  EXPECT_EQ(csvEncodingOf(encodedCsv(text, CsvEncoding::Utf16Little)), CsvEncoding::Utf16Little);
}

TEST(CsvText, CountsTheLinesOfTheFileAndNotItsRecords) {
  EXPECT_EQ(shownCsv("a;b\n\n\"x\ny\";1\nz;2\n;;\nw"), "1:a|b\n3:x\ny|1\n5:z|2\n7:w\n");
}

TEST(CsvText, EndsRecordsAtAnyLineEndAndAnOpenQuoteAtTheEnd) {
  EXPECT_EQ(shownCsv("a;\"b;\"\"c\"\"\r\nd\";\r\n\r\n;x\re\nf"), "1:a|b;\"c\"\r\nd\n4:|x\n5:e\n6:f\n");
  EXPECT_EQ(shownCsv("a,\"offen"), "1:a|offen\n");
  EXPECT_EQ(shownCsv(""), "");
}

TEST(CsvText, MayNameItsSeparatorInTheFirstLine) { EXPECT_EQ(shownCsv("sep=,\na,b;c\n"), "2:a|b;c\n"); }

TEST(CsvText, TakesWhatIsGivenInsteadOfWhatIsFound) {
  CsvChoice choice;
  choice.separator = ';';
  choice.encoding = CsvEncoding::Windows1252;
  EXPECT_EQ(shownCsv("a,b;c,\xC3\xA8\n", choice), "1:a,b|c,Ã¨\n");
}

TEST(CsvText, FindsTheSignsOfItsNumbersAndItsLineEnds) {
  CsvReading reading;
  ASSERT_TRUE(readCsv("a\tb\r1.234,5\t1\r", {}, {}, reading));
  EXPECT_EQ(reading.separator, '\t');
  EXPECT_EQ(reading.decimalSeparator, ',');
  EXPECT_EQ(reading.thousands, '.');
  EXPECT_EQ(reading.lineEnd, CsvLineEnd::Cr);
}

TEST(CsvText, EndsRecordsAtTheGivenLineEndAlone) {
  CsvChoice choice;
  choice.lineEnd = CsvLineEnd::CrLf;
  EXPECT_EQ(shownCsv("a;b\r\nx\ny;\"1\"\r\n\nz\r\n", choice), "1:a|b\n2:x\ny|1\n4:\nz\n");
  choice.lineEnd = CsvLineEnd::Lf;
  EXPECT_EQ(shownCsv("a;b\nx\ry;1\n", choice), "1:a|b\n2:x\ry|1\n");
  choice.lineEnd = CsvLineEnd::Cr;
  EXPECT_EQ(shownCsv("a;b\rx;\r\nz", choice), "1:a|b\n2:x\n3:\nz\n");
}

TEST(CsvText, IsNoFormulaToASpreadsheetAndComesBackEqual) {
  EXPECT_EQ(guardedCsvText("=HYPERLINK(\"http://x\")"), "'=HYPERLINK(\"http://x\")");
  EXPECT_EQ(guardedCsvText("@SUM(A1)"), "'@SUM(A1)");
  EXPECT_EQ(guardedCsvText("-2+cmd|' /C calc'!A0"), "'-2+cmd|' /C calc'!A0");
  EXPECT_EQ(guardedCsvText("\t=1"), "'\t=1");
  for (const char* plain : {"-5", "+39 055 1234", "-1.234,50", "'Ndrina", "a=b", "", "'"}) {
    EXPECT_EQ(guardedCsvText(plain), plain);
  }
  const std::string text = "a\n'=1+1\n''=x\n'-5\n'Ndrina\n\"'+a\"\n";
  EXPECT_EQ(shownCsv(text), "1:a\n2:=1+1\n3:'=x\n4:'-5\n5:'Ndrina\n6:+a\n");
  for (const char* start : {"=", "+", "-", "@", "\t", "\r", "'", "''=", "'-", "x"}) {
    for (const char* rest : {"", "1", "A1*2", "'=1"}) {
      const std::string whole = std::string(start) + rest;
      EXPECT_EQ(unguardedCsvText(guardedCsvText(whole)), whole);
    }
  }
}

TEST(CsvText, WithAQuoteThatIsNotClosedIsRefusedAtItsLine) {
  const std::string longest(longestCsvField, 'x');
  CsvReading reading;
  for (const std::string& text : {"\"" + longest + "x\"", "\"\"\"" + longest, "\"" + longest + "\n;1\n"}) {
    const auto cells = readCsv("a;b\n\"x\ny\";2\nz;" + text, {}, {}, reading);
    ASSERT_FALSE(cells);
    EXPECT_EQ(cells.error().number, EndlessCell);
    EXPECT_EQ(cells.error().what, "4");
  }
  for (const std::string& text : {"\"" + longest + "\"", "\"" + longest.substr(1) + "\"\"\"", longest + "x"}) {
    EXPECT_TRUE(readCsv("a;b\nz;" + text, {}, {}, reading));
  }
}

TEST(CsvText, IsReadUntilTheUserEndsIt) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "a;b\n";
  CsvReading reading;
  int looks = 0;
  EXPECT_TRUE(readCsv(text, {}, {}, reading, [&] { return ++looks > 0; }));
  EXPECT_EQ(looks, 4);
  const auto cells = readCsv(text, {}, {}, reading, [&] { return --looks > 1; });
  ASSERT_FALSE(cells);
  EXPECT_EQ(cells.error().kind, ErrorKind::Cancelled);
  EXPECT_EQ(looks, 1);
}

TEST(CsvText, BeyondTheLimitsIsNotRead) {
  CsvReading reading;
  SheetLimits limits;
  limits.rows = 2;
  EXPECT_FALSE(readCsv("a\nb\nc\n", {}, limits, reading));
  EXPECT_TRUE(readCsv("a\nb\n\n\n", {}, limits, reading));
  limits.cellBytes = 3;
  EXPECT_TRUE(readCsv("abc;d\n", {}, limits, reading));
  EXPECT_FALSE(readCsv("abcd;e\n", {}, limits, reading));
}

TEST(CsvText, OfAMillionEmptyColumnsHasThoseWithText) {
  const std::string empty(1'000'000, ';');
  CsvReading reading;
  const auto cells = readCsv("a;b" + empty + "\n1;2" + empty + "\n", {}, {}, reading);
  ASSERT_TRUE(cells);
  EXPECT_EQ(cells->width(), 2U);
  EXPECT_EQ(cells->rows(), 2U);
  const auto far = readCsv("a;b\n1;2" + empty + "x\n", {}, {}, reading);
  ASSERT_FALSE(far);
  EXPECT_EQ(far.error().number, TooLargeSheet);
}

TEST(CsvText, OfAnotherEncodingThatIsHeldTwiceIsReadUpToHalfTheLength) {
  CsvReading reading;
  SheetLimits limits;
  limits.textBytes = 12;
  EXPECT_TRUE(readCsv("a;b\nc;d\ne;f\n", {}, limits, reading));
  EXPECT_FALSE(readCsv("a;b\nc;d\ne;fg\n", {}, limits, reading));
  EXPECT_TRUE(readCsv("\xE8;b\nc\n", {}, limits, reading));
  EXPECT_FALSE(readCsv("\xE8;b\ncd\n", {}, limits, reading));
}

}  // namespace
}  // namespace kv::test
