// The tables of catalog.mdb and kvftp.mdb: their columns, order, types, widths and keys.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "store/schema/schema.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsSupersetOf;

TableInfo tableOf(const std::vector<TableInfo>& tables, std::string_view name) {
  for (const TableInfo& table : tables) {
    if (table.name == name) return table;
  }
  ADD_FAILURE() << "no table " << name;
  return {};
}

ColumnInfo columnOf(std::string_view table, std::string_view column) {
  const TableInfo found = tableOf(catalogueTables(), table);
  const int index = found.columnIndex(column);
  if (index < 0) {
    ADD_FAILURE() << "no column " << table << "." << column;
    return {};
  }
  return found.columns[static_cast<std::size_t>(index)];
}

std::vector<std::string> namesOf(const TableInfo& table) {
  std::vector<std::string> names;
  for (const ColumnInfo& column : table.columns) names.push_back(column.name);
  return names;
}

TEST(CatalogueSchema, HoldsItsTablesAndNoOther) {
  std::vector<std::string> names;
  for (const TableInfo& table : catalogueTables()) names.push_back(table.name);
  EXPECT_THAT(names, ElementsAre("generale", "categorie", "articoli", "clipcategorie", "cliparticoli", "opzioni",
                                 "dettagliop", "lingue", "paesi", "pagamento", "zona1", "zona2", "zona3", "zona4",
                                 "zona5", "zona6", "zona7", "zona8", "zone"));
}

TEST(CatalogueSchema, ALanguageColumnIsThereFourTimesInARow) {
  const auto names = namesOf(tableOf(catalogueTables(), "articoli"));
  const auto first = std::ranges::find(names, "titolo");
  ASSERT_NE(first, names.end());
  EXPECT_THAT(std::vector(first, first + 5),
              ElementsAre("titolo", "titolo_l2", "titolo_l3", "titolo_l4", "sottotitolo"));
}

TEST(CatalogueSchema, APriceListColumnIsThereTenTimesInARow) {
  const auto names = namesOf(tableOf(catalogueTables(), "articoli"));
  const auto first = std::ranges::find(names, "prezzo");
  ASSERT_NE(first, names.end());
  EXPECT_THAT(std::vector(first, first + 11),
              ElementsAre("prezzo", "prezzo1", "prezzo2", "prezzo3", "prezzo4", "prezzo5", "prezzo6", "prezzo7",
                          "prezzo8", "prezzo9", "offerta"));
}

TEST(CatalogueSchema, AnArticleHasFourVariantSlotsInEachOfTenPriceLists) {
  const TableInfo articles = tableOf(catalogueTables(), "articoli");
  for (int listino = 0; listino < listini; ++listino) {
    for (int slot = 1; slot <= 4; ++slot) {
      const int index = articles.columnIndex(variantColumn(slot, listino));
      ASSERT_GE(index, 0) << variantColumn(slot, listino);
      EXPECT_EQ(articles.columns[static_cast<std::size_t>(index)].type, ColumnType::Long);
    }
  }
}

TEST(CatalogueSchema, AVariantColumnOfListinoZeroIsBare) {
  EXPECT_EQ(variantColumn(1, 0), "opzione1");
  EXPECT_EQ(variantColumn(4, 9), "opzione4_9");
}

TEST(CatalogueSchema, TheTablesHaveAsManyColumnsAsTheirFamiliesDemand) {
  const auto tables = catalogueTables();
  EXPECT_EQ(tableOf(tables, "categorie").columns.size(), 59U);
  EXPECT_EQ(tableOf(tables, "clipcategorie").columns.size(), 60U);
  EXPECT_EQ(tableOf(tables, "articoli").columns.size(), 121U);
  EXPECT_EQ(tableOf(tables, "cliparticoli").columns.size(), 121U);
  EXPECT_EQ(tableOf(tables, "opzioni").columns.size(), 96U);
  EXPECT_EQ(tableOf(tables, "dettagliop").columns.size(), 10U);
  EXPECT_EQ(tableOf(tables, "generale").columns.size(), 155U);
  EXPECT_EQ(tableOf(tables, "pagamento").columns.size(), 38U);
  for (int zone = 1; zone <= 8; ++zone) EXPECT_EQ(tableOf(tables, "zona" + std::to_string(zone)).columns.size(), 100U);
}

TEST(CatalogueSchema, TheSettingsEndInTheColumnsOfThePlainTable) {
  const auto names = namesOf(tableOf(catalogueTables(), "generale"));
  EXPECT_EQ(names.front(), "URL");
  EXPECT_THAT(std::vector(names.end() - 3, names.end()), ElementsAre("reglist", "versione", "sendmail"));
}

TEST(CatalogueSchema, TextsAreAsWideAsTheEditorsLetThemGrow) {
  EXPECT_EQ(columnOf("articoli", "codice").size, 50);
  EXPECT_EQ(columnOf("articoli", "titolo_l4").size, 200);
  EXPECT_EQ(columnOf("articoli", "sottotitolo").size, 200);
  EXPECT_EQ(columnOf("articoli", "link").size, 255);
  EXPECT_EQ(columnOf("categorie", "titolo").size, 100);
  EXPECT_EQ(columnOf("generale", "URL").size, 50);
  EXPECT_EQ(columnOf("generale", "valuta1").size, 50);
  EXPECT_EQ(columnOf("generale", "valuta2").size, 50);
  EXPECT_EQ(columnOf("opzioni", "nome_l2").size, 50);
  EXPECT_EQ(columnOf("paesi", "paese").size, 50);
  EXPECT_EQ(columnOf("articoli", "correlazione").size, 255);
  EXPECT_EQ(columnOf("generale", "siteonline").size, 255);
}

TEST(CatalogueSchema, ColumnsHaveTheTypesOfTheirMeaning) {
  EXPECT_EQ(columnOf("generale", "testo1_l3").type, ColumnType::Memo);
  EXPECT_EQ(columnOf("generale", "minimo").type, ColumnType::Money);
  EXPECT_EQ(columnOf("generale", "scimp9").type, ColumnType::Single);
  EXPECT_EQ(columnOf("generale", "importo9").type, ColumnType::Money);
  EXPECT_EQ(columnOf("generale", "versione").type, ColumnType::Int);
  EXPECT_EQ(columnOf("generale", "qminima").type, ColumnType::Long);
  EXPECT_EQ(columnOf("categorie", "inaccessibile5").type, ColumnType::Bool);
  EXPECT_EQ(columnOf("categorie", "affiancati").type, ColumnType::Text);
  EXPECT_EQ(columnOf("categorie", "imgX1_l2").type, ColumnType::Int);
  EXPECT_EQ(columnOf("articoli", "offertaprezzo3").type, ColumnType::Money);
  EXPECT_EQ(columnOf("articoli", "scqperc1").type, ColumnType::Single);
  EXPECT_EQ(columnOf("zona8", "m4spp10").type, ColumnType::Money);
  EXPECT_EQ(columnOf("zona8", "m4peso9").type, ColumnType::Single);
  EXPECT_EQ(columnOf("zona1", "pag1").type, ColumnType::Bool);
  EXPECT_EQ(columnOf("pagamento", "ivaok8").type, ColumnType::Bool);
}

TEST(CatalogueSchema, TheStoreAssignsTheAutomaticKeys) {
  EXPECT_EQ(columnOf("articoli", "ID").attributes, autoIncrement);
  EXPECT_EQ(columnOf("opzioni", "ID").attributes, autoIncrement);
  EXPECT_EQ(columnOf("dettagliop", "ID").attributes, autoIncrement);
  EXPECT_EQ(columnOf("paesi", "ID").attributes, autoIncrement);
  EXPECT_EQ(columnOf("categorie", "contatore").attributes, autoIncrement);
  EXPECT_EQ(columnOf("categorie", "ID").attributes, 0U);
}

TEST(CatalogueSchema, NoTableNamesAColumnTwice) {
  auto tables = catalogueTables();
  for (auto& more : {tagDatabaseTables(), buildDatabaseTables(), transferTables()})
    tables.insert(tables.end(), more.begin(), more.end());
  for (const TableInfo& table : tables) {
    const auto names = namesOf(table);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size()) << table.name;
  }
}

TEST(CatalogueSchema, TheTransferTableHoldsNameTimeAndSize) {
  const auto tables = transferTables();
  ASSERT_EQ(tables.size(), 1U);
  EXPECT_EQ(tables[0].name, "file");
  EXPECT_THAT(namesOf(tables[0]), ElementsAre("nome", "data", "peso"));
  EXPECT_EQ(tables[0].columns[0].size, 255);
  EXPECT_EQ(tables[0].columns[1].type, ColumnType::DateTime);
  EXPECT_EQ(tables[0].columns[2].type, ColumnType::Long);
}

class CreatedCatalogue : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(createDatabase(path, catalogueTables()));
    auto opened = Database::open(path, OpenMode::Exclusive);
    ASSERT_TRUE(opened);
    catalogue = std::move(*opened);
  }
  test::TempFolder root;
  std::string path = root / "catalog.mdb";
  Database catalogue;
};

TEST_F(CreatedCatalogue, ShowsTheSchemaItWasMadeFrom) {
  const auto found = catalogue.tables();
  ASSERT_TRUE(found);
  const auto wanted = catalogueTables();
  ASSERT_EQ(found->size(), wanted.size());
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    EXPECT_EQ((*found)[i].name, wanted[i].name);
    ASSERT_EQ(namesOf((*found)[i]), namesOf(wanted[i]));
    for (std::size_t j = 0; j < wanted[i].columns.size(); ++j) {
      EXPECT_EQ((*found)[i].columns[j].type, wanted[i].columns[j].type)
          << wanted[i].name << "." << wanted[i].columns[j].name;
      EXPECT_EQ((*found)[i].columns[j].size, wanted[i].columns[j].size)
          << wanted[i].name << "." << wanted[i].columns[j].name;
    }
  }
}

TEST_F(CreatedCatalogue, GivesANewDepartmentItsCounter) {
  ASSERT_TRUE(catalogue.execute("INSERT INTO categorie (ID) VALUES ('cat001')"));
  ASSERT_TRUE(catalogue.execute("DELETE FROM categorie"));
  ASSERT_TRUE(catalogue.execute("INSERT INTO categorie (ID) VALUES ('cat002')"));
  EXPECT_EQ(asInteger(test::valueOf(catalogue.scalar("SELECT contatore FROM categorie"))), 2);
}

TEST_F(CreatedCatalogue, RefusesASecondDepartmentOfTheSameKey) {
  ASSERT_TRUE(catalogue.execute("INSERT INTO categorie (ID) VALUES ('cat001')"));
  EXPECT_FALSE(catalogue.execute("INSERT INTO categorie (ID) VALUES ('CAT001')"));
}

TEST_F(CreatedCatalogue, KeepsADepartmentWithoutKeyOnTheClipboard) {
  EXPECT_TRUE(catalogue.execute("INSERT INTO clipcategorie (titolo) VALUES ('uno')"));
  EXPECT_TRUE(catalogue.execute("INSERT INTO clipcategorie (titolo) VALUES ('due')"));
}

TEST_F(CreatedCatalogue, IsNotMadeOverAFileThatIsThere) {
  catalogue.close();
  const auto again = createDatabase(path, catalogueTables());
  ASSERT_FALSE(again);
  EXPECT_EQ(again.error().kind, ErrorKind::Exists);
}

TEST(CreateDatabase, LeavesNoFileWhenATableCannotBeMade) {
  const test::TempFolder root;
  const auto twice = std::vector{transferTables()[0], transferTables()[0]};
  EXPECT_FALSE(createDatabase(root / "half.mdb", twice));
  EXPECT_NE(::access((root / "half.mdb").c_str(), F_OK), 0);
}

}  // namespace
}  // namespace kv
