// The type map with its modifiers and warnings, for MySQL and the two dialects of mSQL.

#include "sqlexport/sql_types.h"

#include <gtest/gtest.h>

#include <array>
#include <span>

namespace kv {
namespace {

struct Defined {
  std::string text;
  std::string warnings;
};

Defined define(const ColumnInfo& column, SqlTarget target = TARGET) {
  ExportWarnings warnings;
  const auto made = columnDefinition(column, target, warnings);
  return {made ? *made : "failed", warnings.pending};
}

ColumnInfo columnOf(int code, int size = 0) {
  ColumnInfo column;
  column.name = "c";
  column.type = static_cast<ColumnType>(code);
  column.size = size;
  return column;
}

std::string typeOf(int code, int size = 0) {
  const Defined made = define(columnOf(code, size));
  EXPECT_EQ(made.warnings, "") << code;
  return made.text;
}

ColumnInfo withDefault(ColumnType type, const std::string& value) {
  ColumnInfo column = columnOf(static_cast<int>(type));
  column.required = true;
  column.defaultValue = value;
  return column;
}

TEST(ColumnDefinition, TheDialectIsMySql) { EXPECT_EQ(TARGET, SqlTarget::MY); }

TEST(ColumnDefinition, EachTypeHasItsCounterpartInMySql) {
  const std::array<std::pair<int, const char*>, 20> map{{{1, "TINYINT"},        {2, "TINYINT UNSIGNED"},
                                                         {3, "SMALLINT"},       {4, "INT"},
                                                         {5, "DECIMAL(20,4)"},  {6, "FLOAT"},
                                                         {7, "REAL"},           {8, "DATETIME"},
                                                         {9, "TINYBLOB"},       {11, "LONGBLOB"},
                                                         {12, "LONGTEXT"},      {17, "TINYBLOB"},
                                                         {19, "DECIMAL(20,4)"}, {20, "DECIMAL(20,4)"},
                                                         {21, "REAL"},          {22, "TIME"},
                                                         {23, "TIMESTAMP"},     {13, "LONGBLOB"},
                                                         {14, "LONGBLOB"},      {99, "LONGBLOB"}}};
  for (const auto& [code, type] : map) EXPECT_EQ(typeOf(code), type) << code;
}

TEST(ColumnDefinition, TextHasItsWidthAnd255WhenItHasNone) {
  EXPECT_EQ(typeOf(10, 50), "CHAR(50)");
  EXPECT_EQ(typeOf(10, 0), "CHAR(255)");
  EXPECT_EQ(typeOf(18, 7), "CHAR(7)");
}

TEST(ColumnDefinition, GuidAndBigIntEndTheExportWithAWarning) {
  for (const int code : {15, 16}) {
    ExportWarnings warnings;
    const auto made = columnDefinition(columnOf(code), TARGET, warnings);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().number, 5);
    EXPECT_EQ(warnings.pending, " Warning: In new field 'c', dbBigInt and dbGUID are not currently supported!\r\n");
  }
}

TEST(ColumnDefinition, AnAutomaticKeyIsNotNullAutoIncrement) {
  ColumnInfo column = columnOf(4);
  column.attributes = autoIncrement;
  EXPECT_EQ(define(column).text, "INT NOT NULL AUTO_INCREMENT");
  column.required = true;
  EXPECT_EQ(define(column).text, "INT NOT NULL AUTO_INCREMENT");
}

TEST(ColumnDefinition, ARequiredColumnIsNotNull) {
  ColumnInfo column = columnOf(10, 20);
  column.required = true;
  EXPECT_EQ(define(column).text, "CHAR(20) NOT NULL");
}

TEST(ColumnDefinition, ADefaultWithoutRequiredIsLeftOutWithAWarning) {
  ColumnInfo column = columnOf(4);
  column.defaultValue = "7";
  const std::string warning =
      " Warning: In new field 'c', MySQL needs NOT NULL to support default values! - it won't be set a default.\r\n";
  EXPECT_EQ(define(column).text, "INT");
  EXPECT_EQ(define(column).warnings, warning);
  column.attributes = autoIncrement;
  EXPECT_EQ(define(column).text, "INT NOT NULL AUTO_INCREMENT");
  EXPECT_EQ(define(column).warnings, warning);
}

TEST(ColumnDefinition, ATextDefaultIsQuotedAgain) {
  EXPECT_EQ(define(withDefault(ColumnType::Memo, "\"l'uno\"")).text, "LONGTEXT NOT NULL DEFAULT 'l\\'uno'");
  EXPECT_EQ(define(withDefault(ColumnType::Memo, "\"\"")).text, "LONGTEXT NOT NULL DEFAULT ''");
}

TEST(ColumnDefinition, ThePresentTimeMakesATimestamp) {
  for (const char* now : {"Now()", "date()", "TIME()"}) {
    EXPECT_EQ(define(withDefault(ColumnType::DateTime, now)).text, "TIMESTAMP NOT NULL") << now;
    EXPECT_EQ(define(withDefault(static_cast<ColumnType>(timeCode), now)).text, "TIMESTAMP NOT NULL") << now;
  }
  EXPECT_EQ(define(withDefault(ColumnType::Long, "now()")).text, "INT NOT NULL DEFAULT now()");
}

TEST(ColumnDefinition, YesAndNoAreNumbers) {
  EXPECT_EQ(define(withDefault(ColumnType::Bool, "No")).text, "TINYINT NOT NULL DEFAULT 0");
  EXPECT_EQ(define(withDefault(ColumnType::Bool, "YES")).text, "TINYINT NOT NULL DEFAULT 1");
}

TEST(ColumnDefinition, AnyOtherDefaultIsCopied) {
  EXPECT_EQ(define(withDefault(ColumnType::Double, "1.5")).text, "REAL NOT NULL DEFAULT 1.5");
}

struct OldRule {
  int code;
  const char* type;
  const char* warning;
};

void expectRules(std::span<const OldRule> rules, SqlTarget target) {
  for (const OldRule& rule : rules) {
    const Defined made = define(columnOf(rule.code), target);
    EXPECT_EQ(made.text, rule.type) << rule.code;
    const std::string warning =
        *rule.warning == 0 ? "" : std::string(" Warning: In new field 'c") + rule.warning + "\r\n";
    EXPECT_EQ(made.warnings, warning) << rule.code;
  }
}

constexpr const char* precision = "', currency/BCD will be converted to REAL - there may be precision loss!";
constexpr const char* moment = "', date/time/timestamp will be converted to CHAR(19).";
constexpr const char* smallBinary =
    "', dbBinary and dbVarBinary are not supported by mSQL! - will use a text (CHAR(255)) field.";
constexpr OldRule sharedRules[] = {
    {18, "CHAR(0)", ""},
    {10, "CHAR(255)", ""},
    {1, "INT", ""},
    {2, "INT", ""},
    {3, "INT", ""},
    {4, "INT", ""},
    {6, "REAL", ""},
    {7, "REAL", ""},
    {21, "REAL", ""},
    {5, "REAL", precision},
    {19, "REAL", precision},
    {20, "REAL", precision},
    {8, "CHAR(19)", moment},
    {22, "CHAR(8)", "', date/time/timestamp will be converted to CHAR(8)."},
    {9, "CHAR(255)", smallBinary},
    {17, "CHAR(255)", smallBinary},
    {11, "CHAR(2048)", "', dbLongBinary is not supported by mSQL! - will use a text (CHAR(2048)) field."}};

TEST(ColumnDefinition, BothOldDialectsShareTheseTypes) {
  expectRules(sharedRules, SqlTarget::M1);
  expectRules(sharedRules, SqlTarget::M2);
}

TEST(ColumnDefinition, TheOldDialectsDifferInMemosAndTimestamps) {
  const OldRule first[] = {{23, "CHAR(19)", moment},
                           {12, "CHAR(2048)",
                            "', dbMemo is not supported by mSQL v1 - fields larger than MSQL_64kb_AVG (2048) will not "
                            "be accepted!"}};
  const OldRule second[] = {{23, "CHAR(19)",
                             "', date/time/timestamp will be converted to CHAR(19). Consider using pseudo field "
                             "'_timestamp'."},
                            {12, "TEXT(2048)", ""}};
  expectRules(first, SqlTarget::M1);
  expectRules(second, SqlTarget::M2);
}

TEST(ColumnDefinition, TheOldDialectsHaveNeitherAutomaticKeysNorDefaults) {
  ColumnInfo column = columnOf(4);
  column.attributes = autoIncrement;
  column.defaultValue = "1";
  const std::string noDefault =
      " Warning: In new field 'c', mSQL does not support default values! - they won't be initialised.\r\n";
  const std::string noKey =
      " Warning: In new field 'c', mSQL does not support auto-increment fields! - they will be pure INTs.";
  EXPECT_EQ(define(column, SqlTarget::M1).text, "INT");
  EXPECT_EQ(define(column, SqlTarget::M1).warnings, noKey + "\r\n" + noDefault);
  EXPECT_EQ(define(column, SqlTarget::M2).warnings,
            noKey + " Consider using pseudo field '_rowid' or SEQUENCEs.\r\n" + noDefault);
}

}  // namespace
}  // namespace kv
