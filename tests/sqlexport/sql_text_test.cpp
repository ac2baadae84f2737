// Names and texts as SQL writes them: reserved words, widths, and every character that has an escape.

#include "sqlexport/sql_text.h"

#include <gtest/gtest.h>

#include <sstream>

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv {
namespace {

using std::string_literals::operator""s;

std::string ident(std::string_view name) {
  ExportWarnings warnings;
  const auto made = SqlIdent(name, warnings);
  EXPECT_TRUE(made) << name;
  EXPECT_EQ(warnings.pending, "");
  return made ? *made : std::string();
}

TEST(SqlIdent, ANameThatIsLegalStaysAsItIs) { EXPECT_EQ(ident("plain_titolo_l2"), "plain_titolo_l2"); }

TEST(SqlIdent, EveryWhiteSpaceBecomesAnUnderscore) { EXPECT_EQ(ident("a b\tc\nd\re"), "a_b_c_d_e"); }

TEST(SqlIdent, AReservedWordIsMatchedInAnyCase) {
  EXPECT_EQ(ident("Order"), "_Order");
  EXPECT_EQ(ident("order"), "_order");
  EXPECT_EQ(ident("ZEROFILL"), "_ZEROFILL");
  EXPECT_EQ(ident("add"), "_add");
}

TEST(SqlIdent, EachOfTheReservedWordsGetsAnUnderscore) {
  std::istringstream words(
      "add all alter and as asc auto_increment between bigint binary blob both by cascade char character "
      "change check column columns create data datetime dec decimal default delete desc describe distinct "
      "double drop escaped enclosed explain fields float float4 float8 foreign from for full grant group "
      "having ignore in index infile insert int integer interval int1 int2 int3 int4 int8 into is key keys "
      "leading like lines limit lock load long longblob longtext match mediumblob mediumtext mediumint "
      "middleint numeric not null on option optionally or order outfile partial precision primary procedure "
      "privileges read real references regexp repeat replace restrict rlike select set show smallint "
      "sql_big_tables sql_big_selects sql_select_limit straight_join table tables terminated tinyblob "
      "tinytext tinyint trailing to unique unlock unsigned update usage values varchar varying with write "
      "where zerofill ");
  int count = 0;
  for (std::string word; words >> word; ++count) EXPECT_EQ(ident(word), "_" + word);
  EXPECT_EQ(count, 127);
}

TEST(SqlIdent, ANameOfNothingStaysEmpty) { EXPECT_EQ(ident(""), ""); }

TEST(SqlIdent, AReservedWordIsMatchedAsAWhole) {
  EXPECT_EQ(ident("orders"), "orders");
  EXPECT_EQ(ident("ord"), "ord");
  EXPECT_EQ(ident("titolo"), "titolo");
}

TEST(SqlIdent, AWordThatBecomesReservedByItsUnderscoresIsSeen) {
  EXPECT_EQ(ident("sql big tables"), "_sql_big_tables");
}

TEST(SqlIdent, ANameIsCutTo64CharactersNotBytes) {
  const std::string name(64, 'x');
  EXPECT_EQ(ident(name), name);
  EXPECT_EQ(ident(name + "y"), name);
  std::string accents;
  for (int i = 0; i < 70; ++i) accents += "è";
  EXPECT_EQ(ident(accents), accents.substr(0, 128));
}

TEST(SqlIdent, AReservedWordThatNothingChangesIsAFailureWithAWarning) {
  ExportWarnings warnings;
  const auto made = SqlIdent("Key", warnings, {64, "", ""});
  ASSERT_FALSE(made);
  EXPECT_EQ(made.error().number, 5);
  EXPECT_EQ(warnings.pending,
            " Warning: In identifier 'Key', the new form 'Key' is a reserved word, and PREFIX_ON_KEYWORD ('') and "
            "SUFFIX_ON_KEYWORD ('') make it larger than IDENT_MAX_SIZE, and after cut it is the same as the original! "
            "This is usually caused by a void or empty PREFIX_ON_KEYWORD.\r\n");
}

TEST(SqlIdent, ASuffixThatIsCutAwayAgainIsAFailure) {
  ExportWarnings warnings;
  EXPECT_FALSE(SqlIdent("order", warnings, {5, "", "_"}));
  EXPECT_EQ(test::valueOf(SqlIdent("order", warnings, {6, "", "_"})), "order_");
}

TEST(SqlQuoteText, EachSpecialCharacterGetsABackslash) {
  EXPECT_EQ(SqlQuoteText("a\0b"s), R"(a\0b)");
  EXPECT_EQ(SqlQuoteText("a\bb"), R"(a\bb)");
  EXPECT_EQ(SqlQuoteText("a\tb"), R"(a\tb)");
  EXPECT_EQ(SqlQuoteText("l'olio"), R"(l\'olio)");
  EXPECT_EQ(SqlQuoteText(R"(un "vaso")"), R"(un \"vaso\")");
  EXPECT_EQ(SqlQuoteText(R"(c:\temp)"), R"(c:\\temp)");
}

TEST(SqlQuoteText, OtherCharactersAreCopied) {
  std::string controls;
  for (char c = 1; c < 32; ++c) {
    if (c != '\b' && c != '\t' && c != '\n' && c != '\r') controls += c;
  }
  EXPECT_EQ(SqlQuoteText(controls), controls);
  EXPECT_EQ(SqlQuoteText("100% _ ; -- # /* è € 漢"), "100% _ ; -- # /* è € 漢");
  EXPECT_EQ(SqlQuoteText(""), "");
}

TEST(SqlQuoteText, ALineEndOfTwoCharactersGivesOneNewline) {
  EXPECT_EQ(SqlQuoteText("a\r\nb"), R"(a\nb)");
  EXPECT_EQ(SqlQuoteText("a\n\rb"), R"(a\nb)");
  EXPECT_EQ(SqlQuoteText("a\rb\nc"), R"(a\nb\nc)");
}

TEST(SqlQuoteText, EqualLineEndsAreEachANewline) {
  EXPECT_EQ(SqlQuoteText("\r\r"), R"(\n\n)");
  EXPECT_EQ(SqlQuoteText("\n\n"), R"(\n\n)");
}

TEST(SqlQuoteText, ThePairIsForgottenOnceItIsFolded) {
  EXPECT_EQ(SqlQuoteText("\r\n\r"), R"(\n\n)");
  EXPECT_EQ(SqlQuoteText("\r\n\r\n"), R"(\n\n)");
  EXPECT_EQ(SqlQuoteText("\r\r\n"), R"(\n\n)");
}

TEST(SqlQuoteText, ACharacterBetweenTwoLineEndsSeparatesThem) {
  EXPECT_EQ(SqlQuoteText("\rx\n"), R"(\nx\n)");
  EXPECT_EQ(SqlQuoteText("\r12345678\n"), R"(\n12345678\n)");
  EXPECT_EQ(SqlQuoteText("\r'\n"), R"(\n\'\n)");
  EXPECT_EQ(SqlQuoteText("\rè\n"), R"(\nè\n)");
}

TEST(SqlQuoteBinary, LineEndsKeepTheirKind) {
  EXPECT_EQ(SqlQuoteBinary("\r\n\n\r\r"), R"(\r\n\n\r\r)");
  EXPECT_EQ(SqlQuoteBinary("\0'\\\xFF\"\t\b"s), "\\0\\'\\\\\xFF\\\"\\t\\b");
}

// Every length and position, against the table applied one character at a time.
TEST(SqlQuoteText, TheFastRoutineAgreesWithTheTable) {
  std::uint32_t chance = 12345;
  const std::string letters = "aaaaaaaabcdefgh<>/=.\0\b\t'\"\\\r\n\x0b\x0e\x7f"s;
  for (int round = 0; round < 3000; ++round) {
    std::string text, wanted;
    char before = 0;
    chance = chance * 1664525 + 1013904223;
    const std::size_t length = (chance >> 16) % 60;
    for (std::size_t i = 0; i < length; ++i) {
      chance = chance * 1664525 + 1013904223;
      const char c = letters[(chance >> 16) % letters.size()];
      text += c;
      if (c == '\r' || c == '\n') {
        const bool second = before != 0 && before != c;
        wanted += second ? "" : "\\n";
        before = second ? '\0' : c;
        continue;
      }
      before = 0;
      const std::string_view from("\0\b\t'\"\\", 6), to("0bt'\"\\");
      const std::size_t at = from.find(c);
      wanted += at == std::string_view::npos ? std::string(1, c) : std::string("\\") + to[at];
    }
    ASSERT_EQ(SqlQuoteText(text), wanted) << "round " << round;
  }
}

class QuotedFile : public ::testing::Test {
 protected:
  std::string written(std::string_view text, void (*append)(OutputFile&, std::string_view)) {
    auto file = OutputFile::create(folder / "out").value();
    append(file, text);
    EXPECT_TRUE(file.close());
    return readBytes(folder / "out").value();
  }
  test::TempFolder folder;
};

TEST_F(QuotedFile, TextIsWrittenInWindows1252WithReferencesForTheRest) {
  EXPECT_EQ(written("L'è € 漢 \xC2\x81 \xF0\x9F\x8F\xBA", appendQuotedText), "L\\'\xE8 \x80 &#28450; \x81 &#127994;");
  EXPECT_EQ(written("rotto \xC3", appendQuotedText), "rotto ?");
}

TEST_F(QuotedFile, ALongTextIsTheSameAsItsPieces) {
  std::string text, wanted;
  for (int i = 0; i < 60000; ++i) {
    text += i % 7 == 0 ? "Ā" : "\r\n";
    wanted += i % 7 == 0 ? "&#256;" : "\\n";
  }
  EXPECT_EQ(written(text, appendQuotedText), wanted);
}

TEST_F(QuotedFile, TextIsTheSameWhetherItIsEncodedBeforeOrAfter) {
  const std::vector<std::string> parts = {
      "abcdefg", "<a href=\"x\">",        "è",  "€", "漢", "\r\n", "\n", "\r", "'", "\\", "\xC3",
      "\x01",    "qualche parola in più", "\0"s};
  std::uint32_t chance = 99;
  auto file = OutputFile::create(folder / "out");
  ASSERT_TRUE(file);
  std::string wanted;
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (int i = 0; i < round % 12; ++i) {
      chance = chance * 1664525 + 1013904223;
      text += parts[(chance >> 16) % parts.size()];
    }
    appendQuotedText(*file, text);
    wanted += toWindows1252(SqlQuoteText(text));
  }
  ASSERT_TRUE(file->close());
  EXPECT_EQ(readBytes(folder / "out").value(), wanted);
}

TEST_F(QuotedFile, BinaryBytesAreNoText) {
  EXPECT_EQ(written("\xC3\xA8\r\n\0"s, appendQuotedBinary), "\xC3\xA8\\r\\n\\0");
}

TEST(AddExportWarning, EachWarningIsALineOfItsOwn) {
  ExportWarnings warnings;
  AddExportWarning(warnings, "first");
  AddExportWarning(warnings, "second");
  EXPECT_EQ(warnings.pending, " Warning: first\r\n Warning: second\r\n");
}

}  // namespace
}  // namespace kv
