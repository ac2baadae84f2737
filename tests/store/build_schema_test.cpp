// The databases of a build: the division of the derived row, and what the MySQL text of new.mdb demands of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "platform/text/text.h"
#include "store/schema/schema.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using ::testing::ElementsAre;

// The words that the MySQL text would have to write with a mark in front, separated by spaces.
constexpr std::string_view reservedList =
    "add all alter and as asc auto_increment between bigint binary blob both by cascade char character change "
    "check column columns create data datetime dec decimal default delete desc describe distinct double drop "
    "escaped enclosed explain fields float float4 float8 foreign from for full grant group having ignore in index "
    "infile insert int integer interval int1 int2 int3 int4 int8 into is key keys leading like lines limit lock "
    "load long longblob longtext match mediumblob mediumtext mediumint middleint numeric not null on option "
    "optionally or order outfile partial precision primary procedure privileges read real references regexp "
    "repeat replace restrict rlike select set show smallint sql_big_tables sql_big_selects sql_select_limit "
    "straight_join table tables terminated tinyblob tinytext tinyint trailing to unique unlock unsigned update "
    "usage values varchar varying with write where zerofill ";

bool isReserved(const std::string& name) {
  return (" " + std::string(reservedList)).find(" " + foldCase(name) + " ") != std::string::npos;
}

std::vector<std::string> columnNamesOf(const TableInfo& table) {
  std::vector<std::string> names;
  for (const ColumnInfo& column : table.columns) names.push_back(column.name);
  return names;
}

TableInfo buildTable(std::string_view name) {
  for (const TableInfo& table : buildDatabaseTables()) {
    if (table.name == name) return table;
  }
  ADD_FAILURE() << "no table " << name;
  return {};
}

// Bytes of a column in a row of InnoDB, four for each character; a long text leaves a pointer of 20.
int rowBytes(const ColumnInfo& column) {
  switch (column.type) {
    case ColumnType::Bool:
    case ColumnType::Byte:
      return 1;
    case ColumnType::Int:
      return 2;
    case ColumnType::Long:
    case ColumnType::Single:
      return 4;
    case ColumnType::Text:
      return 4 * column.size;
    case ColumnType::Memo:
    case ColumnType::LongBinary:
      return 20;
    default:
      return 10;  // DECIMAL(20,4) takes 10, a date or a double 8
  }
}

TEST(BuildSchema, TheTablesComeInTheOrderOfTheExport) {
  std::vector<std::string> names;
  for (const TableInfo& table : buildDatabaseTables()) names.push_back(table.name);
  EXPECT_THAT(names, ElementsAre("categorie", "opcodici", "opzioni", "opzioni_l2", "opzioni_l3", "opzioni_l4",
                                 "articoli", "articoli_l2", "articoli_l3", "articoli_l4", "dettaglio", "ordinamento"));
}

TEST(BuildSchema, EachTableIsFoundByAnIndexOnItsKeyThatIsNotUnique) {
  for (const TableInfo& table : buildDatabaseTables()) {
    EXPECT_EQ(table.columnIndex("ID"), 0) << table.name;
    ASSERT_FALSE(table.indexes.empty()) << table.name;
    EXPECT_THAT(table.indexes[0].columns, ElementsAre("ID")) << table.name;
    EXPECT_FALSE(table.indexes[0].name.empty());
    EXPECT_FALSE(table.indexes[0].primary);
    EXPECT_FALSE(table.indexes[0].unique);
  }
}

TEST(BuildSchema, APageFindsItsArticlesByAnIndex) {
  for (std::string_view suffix : languageSuffixes) {
    const TableInfo table = buildTable("articoli" + std::string(suffix));
    ASSERT_EQ(table.indexes.size(), 2U);
    EXPECT_THAT(table.indexes[1].columns, ElementsAre("pagina", "sottopagina"));
    EXPECT_FALSE(table.indexes[1].unique);
  }
}

TEST(BuildSchema, NoColumnNeedsAValueOrADefault) {
  for (const TableInfo& table : buildDatabaseTables()) {
    EXPECT_EQ(table.attributes, 0U);
    for (const ColumnInfo& column : table.columns) {
      EXPECT_FALSE(column.required) << table.name << "." << column.name;
      EXPECT_EQ(column.defaultValue, "") << table.name << "." << column.name;
      EXPECT_EQ(column.attributes, 0U) << table.name << "." << column.name;
    }
  }
}

TEST(BuildSchema, NoNameIsAReservedWordOrTooLong) {
  ASSERT_TRUE(isReserved("ADD") && isReserved("order") && isReserved("zerofill") && !isReserved("ordinamento"));
  for (const TableInfo& table : buildDatabaseTables()) {
    EXPECT_FALSE(isReserved(table.name)) << table.name;
    for (const ColumnInfo& column : table.columns) {
      EXPECT_FALSE(isReserved(column.name)) << table.name << "." << column.name;
      EXPECT_LE(column.name.size(), 64U);
    }
  }
}

TEST(BuildSchema, OnlyTablesOfOtherLanguagesCarryALanguageMark) {
  for (const TableInfo& table : buildDatabaseTables()) {
    const bool marked = table.name.find("_l") != std::string::npos;
    const bool suffixed = table.name.ends_with("_l2") || table.name.ends_with("_l3") || table.name.ends_with("_l4");
    EXPECT_EQ(marked, suffixed) << table.name;
  }
}

TEST(BuildSchema, ARowOfEachTableFitsIntoHalfAPageOfInnoDb) {
  for (const TableInfo& table : buildDatabaseTables()) {
    int bytes = 0;
    for (const ColumnInfo& column : table.columns) bytes += rowBytes(column);
    EXPECT_LE(bytes, 8000) << table.name;
    EXPECT_LE(table.columns.size(), 1017U) << table.name;
  }
}

TEST(BuildSchema, EachColumnOfTheDerivedRowIsInOneTableAlone) {
  std::map<std::string, int> homes;
  for (const char* table : {"articoli", "dettaglio", "ordinamento"}) {
    for (const std::string& name : columnNamesOf(buildTable(table))) ++homes[name];
  }
  for (const ColumnInfo& column : derivedArticleColumns()) {
    EXPECT_EQ(homes[column.name], column.name == "ID" ? 3 : 1) << column.name;
    homes.erase(column.name);
  }
  std::vector<std::string> added;
  for (const auto& [name, count] : homes) added.push_back(name);
  EXPECT_THAT(added, ElementsAre("aftercode", "beforecode", "pagina", "sottopagina"));
}

TEST(BuildSchema, WhatALanguageChangesIsWithTheArticlesTexts) {
  const std::vector<std::string> wanted{
      "ID",      "pagina", "sottopagina", "titolo", "plain_titolo", "sottotitolo", "plain_sottotitolo", "cart_articolo",
      "offerta", "iva",    "descrizione", "note",   "java_acquista"};
  for (std::string_view suffix : languageSuffixes)
    EXPECT_EQ(columnNamesOf(buildTable("articoli" + std::string(suffix))), wanted);
}

TEST(BuildSchema, PositionAndAmountsAreInTheOrderTable) {
  const auto names = columnNamesOf(buildTable("ordinamento"));
  ASSERT_EQ(names.size(), 22U);
  EXPECT_EQ(names[0], "ID");
  EXPECT_EQ(names[1], "implistino");
  EXPECT_EQ(names[10], "implistino9");
  EXPECT_EQ(names[20], "importo9");
  EXPECT_EQ(names[21], "contatore");
}

TEST(BuildSchema, TheDetailsBeginWithTheCellCode) {
  const auto names = columnNamesOf(buildTable("dettaglio"));
  EXPECT_EQ(names[1], "beforecode");
  EXPECT_EQ(names[2], "aftercode");
  EXPECT_EQ(names[3], "novita");
}

TEST(BuildSchema, CopiesKeepTypeAndWidthOfTheDerivedRow) {
  std::map<std::string, ColumnInfo> derived;
  for (const ColumnInfo& column : derivedArticleColumns()) derived[column.name] = column;
  for (const char* table : {"articoli_l3", "dettaglio", "ordinamento"}) {
    for (const ColumnInfo& column : buildTable(table).columns) {
      if (!derived.contains(column.name)) continue;
      EXPECT_EQ(column.type, derived[column.name].type) << table << "." << column.name;
      EXPECT_EQ(column.size, derived[column.name].size) << table << "." << column.name;
    }
  }
}

TEST(BuildSchema, TheDepartmentsCarryAFactorAndAFlagForEachPriceList) {
  const auto names = columnNamesOf(buildTable("categorie"));
  ASSERT_EQ(names.size(), 23U);
  EXPECT_THAT(std::vector(names.begin(), names.begin() + 4), ElementsAre("ID", "nascosto", "iva", "sconto"));
  EXPECT_EQ(names[12], "sconto9");
  EXPECT_EQ(names[13], "inaccessibile");
  EXPECT_EQ(names[22], "inaccessibile9");
}

TEST(BuildSchema, TheVariantTablesHaveTheColumnsOfTheSelector) {
  EXPECT_THAT(columnNamesOf(buildTable("opzioni_l4")), ElementsAre("ID", "nomeopzione", "opzione"));
  EXPECT_THAT(columnNamesOf(buildTable("opcodici")), ElementsAre("ID", "codice", "OpID"));
}

TEST(TagSchema, ThePageTagRowHasNinetySevenLongTexts) {
  const auto tables = tagDatabaseTables();
  ASSERT_EQ(tables.size(), 2U);
  EXPECT_EQ(tables[0].name, "categoria");
  ASSERT_EQ(tables[0].columns.size(), 97U);
  EXPECT_EQ(tables[0].columns.front().name, "titolo");
  EXPECT_EQ(tables[0].columns.back().name, "paymsg");
  for (const ColumnInfo& column : tables[0].columns) EXPECT_EQ(column.type, ColumnType::Memo) << column.name;
}

TEST(TagSchema, TheArticlesAreDerivedRows) {
  const auto tables = tagDatabaseTables();
  EXPECT_EQ(tables[1].name, "articoli");
  std::vector<std::string> derived;
  for (const ColumnInfo& column : derivedArticleColumns()) derived.push_back(column.name);
  EXPECT_EQ(columnNamesOf(tables[1]), derived);
  EXPECT_EQ(derived.size(), 103U);
}

TEST(TagSchema, BothBuildDatabasesCanBeMade) {
  const test::TempFolder root;
  EXPECT_TRUE(createDatabase(root / "source.new", tagDatabaseTables()));
  EXPECT_TRUE(createDatabase(root / "new.mdb", buildDatabaseTables()));
  EXPECT_TRUE(createDatabase(root / "kvftp.mdb", transferTables()));
  auto made = Database::open(root / "new.mdb", OpenMode::Shared);
  ASSERT_TRUE(made);
  const auto tables = made->tables();
  ASSERT_TRUE(tables);
  const auto wanted = buildDatabaseTables();
  ASSERT_EQ(tables->size(), wanted.size());
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    EXPECT_EQ((*tables)[i].name, wanted[i].name);
    EXPECT_EQ(columnNamesOf((*tables)[i]), columnNamesOf(wanted[i]));
    ASSERT_EQ((*tables)[i].indexes.size(), wanted[i].indexes.size()) << wanted[i].name;
    for (std::size_t j = 0; j < wanted[i].indexes.size(); ++j) {
      EXPECT_EQ((*tables)[i].indexes[j].columns, wanted[i].indexes[j].columns) << wanted[i].name;
      EXPECT_FALSE((*tables)[i].indexes[j].primary) << wanted[i].name;
    }
  }
}

}  // namespace
}  // namespace kv
