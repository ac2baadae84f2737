// The model shop as it is shipped: the catalogue holds a shop that is worth looking at, and keeps every rule.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/statement.h"
#include "platform/database/table_info.h"
#include "platform/database/value.h"
#include "platform/files/files.h"
#include "platform/image/image.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

using ::testing::AllOf;
using ::testing::Ge;
using ::testing::IsEmpty;
using ::testing::Le;

const std::string model = KORVANE_APP_DATA "/new";

class ModelShop : public ::testing::Test {
 protected:
  void SetUp() override {
    Result<Database> opened = Database::open(joinPath(model, "catalog.mdb"), OpenMode::ReadOnly);
    ASSERT_TRUE(opened) << opened.error().what;
    catalogue_ = std::move(*opened);
  }

  std::int64_t count(const std::string& from) { return number("SELECT COUNT(*) FROM " + from); }

  std::int64_t number(const std::string& sql) {
    const Result<Value> value = catalogue_.scalar(sql);
    EXPECT_TRUE(value) << sql;
    return value ? asInteger(*value) : -1;
  }

  std::string text(const std::string& sql) {
    const Result<Value> value = catalogue_.scalar(sql);
    EXPECT_TRUE(value) << sql;
    return value ? asText(*value) : "";
  }

  std::vector<std::string> column(const std::string& sql) {
    std::vector<std::string> texts;
    Result<Statement> rows = catalogue_.prepare(sql);
    EXPECT_TRUE(rows) << sql;
    while (rows && rows->step().value_or(false)) texts.emplace_back(rows->text(0));
    return texts;
  }

  Database catalogue_;
};

TEST_F(ModelShop, HasTheTablesOfACatalogue) {
  const Result<std::vector<TableInfo>> tables = catalogue_.tables();
  ASSERT_TRUE(tables);
  std::vector<std::string> names;
  std::vector<std::string> wanted;
  for (const TableInfo& table : *tables) names.push_back(table.name);
  for (const TableInfo& table : catalogueTables()) wanted.push_back(table.name);
  EXPECT_EQ(names, wanted);
}

TEST_F(ModelShop, HasOneRowOfEachSettingsTable) {
  for (const char* table :
       {"generale", "pagamento", "lingue", "zona1", "zona2", "zona3", "zona4", "zona5", "zona6", "zona7", "zona8"})
    EXPECT_EQ(count(table), 1) << table;
}

TEST_F(ModelShop, IsOfThePresentSchemaGeneration) { EXPECT_EQ(number("SELECT versione FROM generale"), 1002); }

TEST_F(ModelShop, SpeaksFourLanguages) {
  EXPECT_EQ(text("SELECT lingua1 || ',' || lingua2 || ',' || lingua3 || ',' || lingua4 FROM lingue"),
            "italiano,inglese,francese,tedesco");
}

TEST_F(ModelShop, HasAtLeastThirtySixArticles) { EXPECT_THAT(count("articoli WHERE NOT fuoricatalogo"), Ge(36)); }

TEST_F(ModelShop, DescribesEachArticleInProseInEachLanguage) {
  for (const std::string_view suffix : languageSuffixes)
    EXPECT_THAT(
        column("SELECT codice FROM articoli WHERE LENGTH(COALESCE(descrizione" + std::string(suffix) + ", '')) < 80"),
        IsEmpty())
        << suffix;
  EXPECT_THAT(column("SELECT codice FROM articoli WHERE descrizione IN (descrizione_l2, descrizione_l3, "
                     "descrizione_l4) OR descrizione_l2 IN (descrizione_l3, descrizione_l4) OR "
                     "descrizione_l3 = descrizione_l4"),
              IsEmpty());
}

TEST_F(ModelShop, LeavesNoTextOfAPageToOneLanguageOnly) {
  const std::vector<std::pair<std::string, std::vector<std::string>>> texts{
      {"articoli", {"titolo", "sottotitolo", "descrizione", "note"}},
      {"categorie", {"titolo", "descrizione", "note"}},
      {"opzioni WHERE ID > 1 AND ", {"nome"}},
      {"dettagliop", {"testo"}},
      {"pagamento", {"nome1", "nome2", "nome3", "nome4"}},
      {"generale",
       {"titolo", "testo1", "testo2", "home1", "home2", "condizioni", "datipers", "recesso", "rifiutato",
        "contrassegno", "anticipato", "testo_email", "keywords", "content"}}};
  for (const auto& [table, stems] : texts)
    for (const std::string& stem : stems)
      for (const std::string_view suffix : languageSuffixes) {
        std::string rows = table;
        if (rows.find("WHERE") == std::string::npos) rows += " WHERE ";
        rows += "COALESCE(" + stem + std::string(suffix) + ", '') = ''";
        EXPECT_EQ(count(rows), 0) << rows;
      }
}

TEST_F(ModelShop, NamesEachArticleInFourLanguages) {
  for (const std::string_view suffix : languageSuffixes)
    EXPECT_EQ(count("articoli WHERE COALESCE(titolo" + std::string(suffix) + ", '') = ''"), 0) << suffix;
}

TEST_F(ModelShop, HasDepartmentsOnTwoLevels) {
  EXPECT_THAT(count("categorie WHERE livello = 1"), AllOf(Ge(5), Le(7)));
  EXPECT_THAT(count("categorie WHERE livello = 2"), AllOf(Ge(8), Le(10)));
  EXPECT_EQ(count("categorie WHERE livello > 2"), 0);
}

TEST_F(ModelShop, FormsDepartmentKeysFromTheSerialNumber) {
  EXPECT_EQ(text("SELECT ID FROM categorie ORDER BY contatore LIMIT 1"), "cat001");
  EXPECT_EQ(count("categorie WHERE ID <> printf('cat%03d', contatore) OR pagina <> ID"), 0);
}

TEST_F(ModelShop, NumbersDepartmentsAndArticlesAsAnOpeningWould) {
  for (const char* walk : {"categorie ORDER BY livello, ordinamento", "articoli ORDER BY catID, ordinamento"}) {
    std::int64_t wanted = 100;
    for (const std::string& order : column("SELECT ordinamento FROM " + std::string(walk))) {
      EXPECT_EQ(order, std::to_string(wanted)) << walk;
      wanted += 5;
    }
  }
}

TEST_F(ModelShop, TellsParentsFromLeaves) {
  EXPECT_EQ(count("categorie WHERE hafigli <> (ID IN (SELECT genitore FROM categorie))"), 0);
  EXPECT_EQ(count("categorie WHERE genitore <> '###' AND genitore NOT IN (SELECT ID FROM categorie)"), 0);
}

TEST_F(ModelShop, TaxesDepartmentsAtThreeRates) {
  EXPECT_EQ(column("SELECT DISTINCT CAST(iva AS INTEGER) FROM categorie ORDER BY iva"),
            (std::vector<std::string>{"4", "10", "22"}));
}

TEST_F(ModelShop, ShowsWhatAShopCanDo) {
  EXPECT_THAT(count("articoli WHERE offerta AND offertaprezzo < prezzo"), Ge(5));
  EXPECT_THAT(count("articoli WHERE novita"), Ge(4));
  EXPECT_THAT(count("articoli WHERE inelenco"), Ge(6));
  EXPECT_THAT(count("articoli WHERE scq AND scqart0 < scqart1 AND scqperc0 < scqperc1"), Ge(3));
  EXPECT_THAT(count("articoli WHERE opzione1 > 1"), Ge(10));
  EXPECT_THAT(count("articoli WHERE popup AND immagine1 <> ''"), Ge(1));
  EXPECT_THAT(count("articoli WHERE linkesterno AND link LIKE 'http://*.example/*'"), Ge(1));
  EXPECT_THAT(count("articoli WHERE fuoricatalogo"), Ge(1));
  EXPECT_THAT(count("categorie WHERE sconto > 0"), Ge(1));
  EXPECT_THAT(count("categorie WHERE inaccessibile AND NOT inaccessibile1"), Ge(1));
  EXPECT_THAT(count("categorie WHERE nascosto AND ID IN (SELECT catID FROM articoli)"), Ge(1));
  EXPECT_THAT(count("categorie WHERE maxarticoli < (SELECT COUNT(*) FROM articoli WHERE catID = categorie.ID AND NOT "
                    "fuoricatalogo)"),
              Ge(1));
  EXPECT_THAT(count("articoli a WHERE correlazione IN (SELECT correlazione FROM articoli b WHERE b.ID <> a.ID)"),
              Ge(20));
}

TEST_F(ModelShop, HasAnOfferPriceOnlyWhereThereIsAnOffer) {
  EXPECT_EQ(count("articoli WHERE offerta <> (offertaprezzo IS NOT NULL)"), 0);
}

TEST_F(ModelShop, SellsToRetailersForLess) {
  EXPECT_EQ(count("articoli WHERE prezzo1 IS NULL OR prezzo1 > prezzo"), 0);
}

TEST_F(ModelShop, GivesEachListinoThePriceAndVariantsOfTheFirst) {
  EXPECT_EQ(count("articoli WHERE prezzo2 IS NOT prezzo OR prezzo9 IS NOT prezzo"), 0);
  EXPECT_EQ(count("articoli WHERE opzione1_1 IS NOT opzione1 OR opzione2_9 IS NOT opzione2"), 0);
}

TEST_F(ModelShop, HoldsNetPricesThatComeOutEvenWithVat) {
  // 18.00 with 22 percent.
  EXPECT_EQ(text("SELECT prezzo FROM articoli WHERE codice = 'TZ-001'"), "14.7541");
}

TEST_F(ModelShop, BeginsItsVariantsWithNone) {
  EXPECT_EQ(text("SELECT nome FROM opzioni WHERE ID = 1"), "(nessuna)");
  EXPECT_EQ(count("dettagliop WHERE OpID = 1"), 0);
}

TEST_F(ModelShop, GivesEachVariantOneDefault) {
  EXPECT_EQ(count("opzioni WHERE ID > 1 AND (SELECT COUNT(*) FROM dettagliop WHERE OpID = opzioni.ID AND "
                  "selezionato = '.') <> 1"),
            0);
}

TEST_F(ModelShop, HasVariantsWithCodesAndDifferencesBothWays) {
  EXPECT_THAT(count("dettagliop WHERE codice <> ''"), Ge(20));
  EXPECT_THAT(count("dettagliop WHERE prezzo > 0"), Ge(5));
  EXPECT_THAT(count("dettagliop WHERE prezzo < 0"), Ge(1));
  EXPECT_THAT(count("dettagliop WHERE peso <> 0"), Ge(5));
}

TEST_F(ModelShop, ShipsToSomeNinetyCountriesInFourZones) {
  EXPECT_THAT(count("paesi"), AllOf(Ge(85), Le(100)));
  EXPECT_EQ(count("paesi WHERE strID <> CAST(ID AS TEXT)"), 0);
  EXPECT_EQ(column("SELECT DISTINCT zona FROM paesi ORDER BY zona"), (std::vector<std::string>{"1", "2", "3", "4"}));
  EXPECT_EQ(text("SELECT paese FROM paesi WHERE strID = (SELECT paesesel FROM pagamento)"), "Italia");
}

TEST_F(ModelShop, OffersTheTwoMethodsThatNeedNoContractAndHasTwoMoreReady) {
  EXPECT_EQ(text("SELECT metodo1 || ',' || metodo2 || ',' || metodo3 || ',' || metodo4 FROM pagamento WHERE attivo1 "
                 "AND attivo2 AND NOT attivo3 AND NOT attivo4"),
            "Contrassegno,Pagamento anticipato,Banca Sella,Paypal");
  EXPECT_EQ(count("zona1 WHERE pag3 AND pag4 AND m3sp1 = m2sp1 AND m4sp1 = m2sp1 AND m4spp10 = m2spp10"), 1);
  EXPECT_EQ(text("SELECT nome2_l2 FROM pagamento"), "Bank transfer in advance");
}

TEST_F(ModelShop, CarriesNoLoginAndNoRealAddress) {
  EXPECT_EQ(text("SELECT COALESCE(username, '') || COALESCE(password, '') || COALESCE(bo_username, '') || "
                 "COALESCE(bo_password, '') || COALESCE(db_password, '') FROM generale"),
            "");
  EXPECT_EQ(text("SELECT URL FROM generale"), "www.bottega.example");
  EXPECT_EQ(count("generale WHERE email LIKE '*@bottega.example' AND email_ordini LIKE '*@bottega.example'"), 1);
}

TEST_F(ModelShop, ConfirmsOrdersWithItsThreeTags) {
  for (const std::string_view suffix : languageSuffixes)
    for (const char* tag : {"<<importo>>", "<<codice>>", "<<riepilogo>>"}) {
      const std::string mail = "testo_email" + std::string(suffix);
      EXPECT_EQ(count("generale WHERE INSTR(" + mail + ", '" + tag + "') AND NOT INSTR(" + mail + ", '\"')"), 1)
          << mail << " " << tag;
    }
}

TEST_F(ModelShop, HasNoNullFlags) {
  for (const char* table : {"generale", "categorie", "articoli", "pagamento", "zona1", "zona8"}) {
    const Result<TableInfo> info = catalogue_.table(table);
    ASSERT_TRUE(info);
    for (const ColumnInfo& field : info->columns) {
      if (field.type != ColumnType::Bool) continue;
      std::string rows = table;
      rows += " WHERE " + field.name + " IS NULL";
      EXPECT_EQ(count(rows), 0) << rows;
    }
  }
}

TEST_F(ModelShop, KnowsTheSizeOfEachPicture) {
  const std::string sql =
      "SELECT immagine0 || '|' || imgX0 || 'x' || imgY0 FROM articoli UNION "
      "SELECT immagine1 || '|' || imgX1 || 'x' || imgY1 FROM articoli WHERE immagine1 <> '' UNION "
      "SELECT immagine2 || '|' || imgX2 || 'x' || imgY2 FROM articoli UNION "
      "SELECT immagine0 || '|' || imgX0 || 'x' || imgY0 FROM categorie UNION "
      "SELECT immagine0 || '|' || imgX0 || 'x' || imgY0 FROM generale UNION "
      "SELECT immagine1 || '|' || imgX1 || 'x' || imgY1 FROM generale";
  const std::vector<std::string> pictures = column(sql);
  EXPECT_THAT(pictures.size(), Ge(60U));
  for (const std::string& picture : pictures) {
    const std::string name = picture.substr(0, picture.find('|'));
    const Result<ImageSize> size = imageSize(joinPath(joinPath(model, "work"), name));
    ASSERT_TRUE(size) << name;
    EXPECT_EQ(picture, name + "|" + std::to_string(size->width) + "x" + std::to_string(size->height));
  }
}

TEST_F(ModelShop, ShipsNoPictureThatNobodyShows) {
  std::set<std::string> named;
  for (const char* table : {"articoli", "categorie", "generale"}) {
    const Result<TableInfo> info = catalogue_.table(table);
    ASSERT_TRUE(info);
    for (const ColumnInfo& field : info->columns) {
      if (!field.name.starts_with("immagine")) continue;
      for (std::string& name : column("SELECT DISTINCT " + field.name + " FROM " + table))
        named.insert(std::move(name));
    }
  }
  for (const std::string& name : listFiles(joinPath(model, "work"), "*.*")) EXPECT_TRUE(named.contains(name)) << name;
}

TEST(ModelShopFolder, HoldsWhatMakesAFolderAShop) {
  for (const std::string& folder : {std::string(KORVANE_APP_DATA), model})
    for (const char* file : {"catalog.mdb", "kvftp.mdb", "source.new", "new.mdb", "work/logo.png"})
      EXPECT_TRUE(fileExists(joinPath(folder, file))) << folder << " " << file;
}

TEST(ModelShopFolder, HoldsEmptySeedsForTheBuildAndTheTransfer) {
  struct Seed {
    const char* file;
    std::vector<TableInfo> tables;
  };
  for (const Seed& seed : {Seed{"kvftp.mdb", transferTables()}, Seed{"source.new", tagDatabaseTables()},
                           Seed{"new.mdb", buildDatabaseTables()}}) {
    Result<Database> database = Database::open(joinPath(model, seed.file), OpenMode::ReadOnly);
    ASSERT_TRUE(database) << seed.file;
    const Result<std::vector<TableInfo>> tables = database->tables();
    ASSERT_TRUE(tables) << seed.file;
    ASSERT_EQ(tables->size(), seed.tables.size()) << seed.file;
    for (std::size_t i = 0; i < tables->size(); ++i) {
      EXPECT_EQ((*tables)[i].name, seed.tables[i].name);
      const Result<Value> rows = database->scalar("SELECT COUNT(*) FROM " + seed.tables[i].name);
      EXPECT_EQ(rows ? asInteger(*rows) : -1, 0) << seed.tables[i].name;
    }
  }
}

}  // namespace
}  // namespace kv
