// The SELECT texts with which readers see a table in one language.
#include <gtest/gtest.h>

#include "platform/database/recordset.h"
#include "store/schema/schema.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

TEST(LanguageView, OfLanguageOneIsThePlainTableWhateverItsName) {
  EXPECT_EQ(SelezionaLingua("articoli", 1), "SELECT * FROM articoli");
  EXPECT_EQ(SelezionaLingua("paesi", 1), "SELECT * FROM paesi");
  EXPECT_EQ(SelezionaLingua("non_esiste", ""), "SELECT * FROM non_esiste");
}

TEST(LanguageView, PutsTheRestAfterOneSpace) {
  EXPECT_EQ(SelezionaLingua("categorie", 1, "ORDER BY livello, ordinamento"),
            "SELECT * FROM categorie ORDER BY livello, ordinamento");
  EXPECT_TRUE(SelezionaLingua("categorie", 2, "ORDER BY livello").ends_with(" FROM categorie ORDER BY livello"));
}

TEST(LanguageView, SelectsLanguageColumnsUnderTheirBareNames) {
  EXPECT_EQ(SelezionaLingua("dettagliop", 2),
            "SELECT dettagliop.ID, dettagliop.codice, dettagliop.testo_l2 AS testo, dettagliop.prezzo, "
            "dettagliop.peso, dettagliop.OpID, dettagliop.selezionato FROM dettagliop");
}

TEST(LanguageView, LeavesOutTheColumnsOfThePlainTable) {
  EXPECT_EQ(SelezionaLingua("opzioni", 4),
            "SELECT opzioni.ID, opzioni.nome_l4 AS nome, opzioni.selezionato FROM opzioni");
  const std::string settings = SelezionaLingua("generale", 2);
  EXPECT_EQ(settings.find("versione"), std::string::npos);
  EXPECT_EQ(settings.find("sendmail"), std::string::npos);
}

TEST(LanguageView, OfASettingsRowBeginsAndEndsAsTheTableDoes) {
  const std::string text = SelezionaLingua("generale", 3);
  EXPECT_TRUE(
      text.starts_with("SELECT generale.URL, generale.cartella, generale.testo1_l3 AS testo1, "
                       "generale.testo2_l3 AS testo2, generale.home1_l3 AS home1, "));
  EXPECT_TRUE(text.ends_with("generale.singleitem_vet, generale.showsigns, generale.reglist FROM generale"));
}

TEST(LanguageView, OfADepartmentTakesTheButtonOfItsLanguageAndSharesThePicture) {
  const std::string text = SelezionaLingua("categorie", 3);
  EXPECT_NE(text.find("categorie.immagine1_l3 AS immagine1, "), std::string::npos);
  EXPECT_NE(text.find("categorie.immagine0, "), std::string::npos);
}

TEST(LanguageView, WritesTheAliasOfTheNotesInBrackets) {
  EXPECT_NE(SelezionaLingua("categorie", 2).find("categorie.note_l2 AS [note], "), std::string::npos);
  EXPECT_NE(SelezionaLingua("articoli", 2).find("articoli.note_l2 AS [note], "), std::string::npos);
}

TEST(LanguageView, OfDepartmentsEndsInABareColumn) {
  EXPECT_TRUE(SelezionaLingua("categorie", 2).ends_with(", categorie.inaccessibile9, nascosto FROM categorie"));
}

TEST(LanguageView, OfArticlesNamesTheHeightOfTheMainImageTwice) {
  const std::string text = SelezionaLingua("articoli", 4);
  const std::size_t first = text.find("articoli.imgY0, ");
  ASSERT_NE(first, std::string::npos);
  EXPECT_NE(text.find("articoli.imgY0, ", first + 1), std::string::npos);
}

TEST(LanguageView, OfPaymentTakesTheNamesOfItsLanguage) {
  EXPECT_NE(SelezionaLingua("pagamento", 2).find("pagamento.nome4_l2 AS nome4, pagamento.selezionato, "),
            std::string::npos);
}

TEST(LanguageView, TakesASuffixForItsNumber) {
  EXPECT_EQ(SelezionaLingua("opzioni", "_l2"), SelezionaLingua("opzioni", 2));
  EXPECT_EQ(SelezionaLingua("opzioni", "_l4", "WHERE ID=3"), SelezionaLingua("opzioni", 4, "WHERE ID=3"));
}

TEST(LanguageView, CountsAnyOtherLanguageAsTheFirst) {
  for (const int language : {-1, 5, 99}) EXPECT_EQ(SelezionaLingua("opzioni", language), "SELECT * FROM opzioni");
  for (const char* suffix : {"_l1", "_l5", "l2", "_L2", "2"})
    EXPECT_EQ(SelezionaLingua("opzioni", suffix), "SELECT * FROM opzioni") << suffix;
}

TEST(LanguageView, OfATableWithoutOneIsEmpty) {
  EXPECT_EQ(SelezionaLingua("paesi", 2), "");
  EXPECT_EQ(SelezionaLingua("lingue", 3, "WHERE 1=1"), "");
}

TEST(LanguageSuffix, GivesItsNumber) {
  EXPECT_EQ(languageOfSuffix(""), 1);
  EXPECT_EQ(languageOfSuffix("_l2"), 2);
  EXPECT_EQ(languageOfSuffix("_l3"), 3);
  EXPECT_EQ(languageOfSuffix("_l4"), 4);
  EXPECT_EQ(languageOfSuffix("_l9"), 1);
}

class LanguageViewOnACatalogue : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(createDatabase(root / "catalog.mdb", catalogueTables()));
    auto opened = Database::open(root / "catalog.mdb", OpenMode::Exclusive);
    ASSERT_TRUE(opened);
    catalogue = std::move(*opened);
  }
  test::TempFolder root;
  Database catalogue;
};

TEST_F(LanguageViewOnACatalogue, RunsForEachTableAndLanguage) {
  for (const char* table : {"articoli", "categorie", "opzioni", "dettagliop", "pagamento", "generale"}) {
    for (int language = 1; language <= maxLanguages; ++language) {
      const auto statement = catalogue.prepare(SelezionaLingua(table, language));
      EXPECT_TRUE(statement) << table << " " << language;
    }
  }
}

TEST_F(LanguageViewOnACatalogue, ShowsTheTextOfTheLanguageAndWhatAllShare) {
  ASSERT_TRUE(
      catalogue.execute("INSERT INTO articoli (catID, codice, titolo, titolo_l2, note_l2, imgY0) "
                        "VALUES ('cat001', 'A1', 'Lampada', 'Lamp', 'fragile', 70)"));
  auto rows = catalogue.openRecordset(SelezionaLingua("articoli", 2, "WHERE catID='cat001'"));
  ASSERT_TRUE(rows);
  ASSERT_EQ(rows->size(), 1U);
  EXPECT_EQ(asText(rows->get("titolo")), "Lamp");
  EXPECT_EQ(asText(rows->get("note")), "fragile");
  EXPECT_EQ(asText(rows->get("codice")), "A1");
  EXPECT_EQ(asInteger(rows->get("imgY0")), 70);
}

}  // namespace
}  // namespace kv
