// What an import from the accounting package writes into departments and articles.
#include "accounting_shop.h"

namespace kv::test {
namespace {

const std::string fieldsOfArticle = "SELECT catID, codice, titolo, prezzo FROM articoli ORDER BY ID";

class AccountingRows : public AccountingShop {};

TEST_F(AccountingRows, ANewDepartmentHasItsKeyAsPageAndItsNameUncutAsDescription) {
  importWith("1100100");
  EXPECT_EQ(rows("SELECT ID, pagina, titolo, descrizione, genitore, livello, ordinamento, template FROM categorie"),
            "dgf7|dgf7|*Vasi|Vasi|###|1|1|modello1\n");
}

TEST_F(AccountingRows, AFoundDepartmentStaysAsItIs) {
  sql("INSERT INTO categorie (ID, titolo, genitore) VALUES ('dgf7', 'Mio', '###')");
  importWith("0100100");
  EXPECT_EQ(rows("SELECT ID, titolo, pagina FROM categorie"), "dgf7|Mio|(null)\n");
}

TEST_F(AccountingRows, ImportingTwiceCreatesNoSecondDepartment) {
  importWith("0100100");
  importWith("1100100");
  EXPECT_EQ(rows("SELECT ID, titolo FROM categorie"), "dgf7|Vasi\n");
}

TEST_F(AccountingRows, NewDepartmentsFollowTheCurrentOneUnderItsParent) {
  sql("INSERT INTO categorie (ID, genitore, livello, ordinamento) VALUES ('a', '###', 1, 1), ('b', 'a', 2, 5),"
      " ('c', 'a', 2, 6)");
  fill("INSERT INTO Categoria VALUES (8, 'Tazze')");
  request.department = "b";
  importWith("0100100");
  EXPECT_EQ(rows("SELECT ID, livello FROM categorie WHERE genitore = 'a' ORDER BY ordinamento"),
            "b|2\ndgf7|2\ndgf8|2\nc|2\n");
}

TEST_F(AccountingRows, DepartmentsWithoutParentAreSiblingsAtTheTop) {
  sql("INSERT INTO categorie (ID, livello, ordinamento) VALUES ('a', 1, 5), ('c', 1, 6)");
  request.department = "a";
  importWith("0100100");
  EXPECT_EQ(rows("SELECT ID, genitore, livello, ordinamento FROM categorie ORDER BY ordinamento"),
            "a|(null)|1|5\ndgf7|###|1|6\nc|(null)|1|7\n");
}

TEST_F(AccountingRows, NewDepartmentsAtTheTopFollowThoseWithoutParent) {
  sql("INSERT INTO categorie (ID, livello, ordinamento) VALUES ('a', 1, 5)");
  importWith("0100100");
  EXPECT_EQ(rows("SELECT ID, ordinamento FROM categorie ORDER BY ordinamento"), "a|5\ndgf7|6\n");
}

TEST_F(AccountingRows, ATitleIsCutBeforeTheMarkGoesOn) {
  const std::string name(120, 'd'), text(230, 'a');
  fill("UPDATE Categoria SET Nome = '" + name + "'");
  article("1, 7, 'A', '" + text + "', 22, 1, 1, 0");
  importWith("1100100");
  EXPECT_EQ(rows("SELECT titolo FROM categorie"), "*" + std::string(99, 'd') + "\n");
  EXPECT_EQ(rows("SELECT titolo FROM articoli"), "*" + std::string(199, 'a') + "\n");
}

TEST_F(AccountingRows, ATitleIsCutByCharactersAndANullOneIsTheMarkAlone) {
  std::string name, cut;
  for (int i = 0; i < 105; ++i) name += "è";
  for (int i = 0; i < 99; ++i) cut += "è";
  fill("UPDATE Categoria SET Nome = '" + name + "'; INSERT INTO Categoria VALUES (8, NULL)");
  article("1, 7, 'A', NULL, 22, 1, 1, 0");
  importWith("1100100");
  EXPECT_EQ(rows("SELECT titolo, descrizione FROM categorie ORDER BY ID"), "*" + cut + "|" + name + "\n*|\n");
  EXPECT_EQ(rows("SELECT titolo FROM articoli"), "*\n");
}

TEST_F(AccountingRows, NumbersThatAreTextsAreTrimmed) {
  fill(
      "DROP TABLE Categoria; CREATE TABLE Categoria (Id TEXT, Nome TEXT);"
      "INSERT INTO Categoria VALUES (' 7 ', 'Vasi'); DROP TABLE Articoli;"
      "CREATE TABLE Articoli (Id TEXT, IdCategoria TEXT, Codice TEXT, Descrizione TEXT, iva TEXT, Vendita1 TEXT);"
      "INSERT INTO Articoli VALUES (' 42 ', '7 ', NULL, 'Vaso', '22', '3.50')");
  importWith("0101100");
  EXPECT_EQ(rows(fieldsOfArticle), "dgf7|OG00042|Vaso|4.27\n");
}

TEST_F(AccountingRows, ARepeatedImportPutsOneMarkInFront) {
  article("1, 7, 'A', 'Vaso', 22, 1, 1, 0");
  importWith("1100100");
  importWith("1100100");
  EXPECT_EQ(rows("SELECT titolo FROM articoli"), "*Vaso\n");
}

TEST_F(AccountingRows, ANullNameGivesAnEmptyTitle) {
  fill("UPDATE Categoria SET Nome = NULL");
  importWith("0100100");
  EXPECT_EQ(rows("SELECT titolo FROM categorie"), "\n");
}

TEST_F(AccountingRows, AnArticleWithoutCodeIsCalledByItsId) {
  article("42, 7, NULL, 'Vaso', 22, 1, 1, 0");
  article("123456, 7, '', 'Tazza', 22, 1, 1, 0");
  importWith("0100100");
  EXPECT_EQ(rows("SELECT codice FROM articoli ORDER BY ID"), "OG00042\nOG123456\n");
}

TEST_F(AccountingRows, AnArticleOfAMissingDepartmentIsSkipped) {
  article("1, 9, 'A', 'Vaso', 22, 1, 1, 0");
  importWith("0100100");
  EXPECT_EQ(rows(fieldsOfArticle), "");
}

TEST_F(AccountingRows, ArticlesComeAtTheEndOfTheirDepartment) {
  sql("INSERT INTO categorie (ID, genitore) VALUES ('dgf7', '###');"
      "INSERT INTO articoli (catID, codice, ordinamento) VALUES ('dgf7', 'vecchio', 12)");
  article("1, 7, 'A', 'Vaso', 22, 1, 1, 0");
  article("2, 7, 'B', 'Vaso', 22, 1, 1, 0");
  importWith("0100100");
  EXPECT_EQ(rows("SELECT codice, ordinamento FROM articoli ORDER BY ordinamento"), "vecchio|12\nA|13\nB|14\n");
}

TEST_F(AccountingRows, AFoundArticleIsUpdatedAndStaysInItsDepartment) {
  sql("INSERT INTO articoli (catID, codice, titolo, descrizione) VALUES ('altro', 'a''1', 'Mio', 'Testo')");
  article("1, 7, 'A''1', 'Vaso', 22, 3.5, 1, 0");
  importWith("0100100");
  EXPECT_EQ(rows("SELECT catID, codice, titolo, descrizione, prezzo FROM articoli"), "altro|A'1|Vaso|Testo|3.5\n");
}

TEST_F(AccountingRows, AFoundArticleStaysAsItIsWhenExistingOnesAreLeftOut) {
  sql("INSERT INTO articoli (catID, codice, titolo) VALUES ('altro', 'A', 'Mio')");
  article("1, 7, 'A', 'Vaso', 22, 3.5, 1, 0");
  importWith("0100000");
  EXPECT_EQ(rows(fieldsOfArticle), "altro|A|Mio|(null)\n");
}

TEST_F(AccountingRows, TwoRowsOfOneCodeAreOneArticle) {
  article("1, 7, 'A', 'Primo', 22, 1, 1, 0");
  article("2, 7, 'a', 'Secondo', 22, 2, 1, 0");
  importWith("0100100");
  EXPECT_EQ(rows(fieldsOfArticle), "dgf7|a|Secondo|2\n");
  sql("DELETE FROM articoli");
  importWith("0100000");
  EXPECT_EQ(rows(fieldsOfArticle), "dgf7|A|Primo|1\n");
}

TEST_F(AccountingRows, ACodeWithQuotesIsFoundAgainLikeAnyOther) {
  article("1, 7, 'L''anfora \"A\"', 'Primo', 22, 1, 1, 0");
  importWith("0100100");
  fill("UPDATE Articoli SET Descrizione = 'L''altra'");
  importWith("0100100");
  EXPECT_EQ(rows(fieldsOfArticle), "dgf7|L'anfora \"A\"|L'altra|1\n");
}

TEST_F(AccountingRows, AnOfferColumnOfZeroLeavesTheOfferAlone) {
  sql("INSERT INTO articoli (catID, codice, offertaprezzo) VALUES ('x', 'A', 70000)");
  article("1, 7, 'A', 'Vaso', 22, 1, 2, 0");
  importWith("0100100");
  EXPECT_EQ(rows("SELECT offertaprezzo FROM articoli"), "7\n");
  importWith("0120100");
  EXPECT_EQ(rows("SELECT prezzo, offertaprezzo FROM articoli"), "1|2\n");
  fill("UPDATE Articoli SET Vendita2 = NULL");
  importWith("0120100");
  EXPECT_EQ(rows("SELECT prezzo, offertaprezzo FROM articoli"), "1|0\n");
}

TEST_F(AccountingRows, PricesGoToTheChosenPriceListWithVat) {
  article("1, 7, 'A', 'Vaso', 22, 10.5, 2, 0");
  importWith("0121103");
  EXPECT_EQ(rows("SELECT prezzo, prezzo3, offertaprezzo3 FROM articoli"), "(null)|12.81|2.44\n");
}

TEST_F(AccountingRows, ANullPriceCountsAsZeroAndANullRateAsNone) {
  article("1, 7, 'A', 'Vaso', NULL, NULL, 2, 0");
  importWith("0121100");
  EXPECT_EQ(rows("SELECT prezzo, offertaprezzo FROM articoli"), "0|2\n");
}

TEST_F(AccountingRows, TheRateIsWrittenOnlyWhereTheCatalogueHasAColumnForIt) {
  sql("ALTER TABLE articoli ADD COLUMN iva FLOAT");
  article("1, 7, 'A', 'Vaso', 22, 1, 1, 0");
  importWith("0100100");
  EXPECT_EQ(rows("SELECT iva FROM articoli"), ".22\n");
}

TEST_F(AccountingRows, OnlyRowsOfTickedVisibilitiesAreTakenAndNullIsTheFirst) {
  request.variant = accountingVariants()[3];
  for (const char* vista : {"NULL", "0", "1", "2", "3", "4"}) {
    article("1, 7, 'V" + std::string(vista) + "', 'Vaso', 22, 1, 1, " + vista);
  }
  importWith("01001001000");
  EXPECT_EQ(rows("SELECT codice FROM articoli ORDER BY ID"), "VNULL\nV0\n");
  importWith("01001000101");
  EXPECT_EQ(rows("SELECT codice FROM articoli ORDER BY ID"), "VNULL\nV0\nV1\nV3\n");
}

TEST_F(AccountingRows, TheSecondGenerationNeedsNoVisibility) {
  fill("ALTER TABLE Articoli DROP COLUMN Vista; INSERT INTO Articoli VALUES (1, 7, 'A', 'Vaso', 22, 1, 1)");
  importWith("0100100");
  EXPECT_EQ(rows("SELECT codice FROM articoli"), "A\n");
}

TEST_F(AccountingRows, ImportedAgainNothingChangesInEitherMode) {
  article("1, 7, 'A', 'Vaso', 22, 1.005, 2, 0");
  article("2, 7, 'a', 'Tazza', 10, 3, 2, 0");
  article("3, 9, 'C', 'Fuori', 10, 3, 2, 0");
  importWith("1121100");
  const std::string before = allRows();
  importWith("1121100");
  EXPECT_EQ(allRows(), before);
  importWith("1121000");
  EXPECT_EQ(allRows(), before);
}

TEST_F(AccountingRows, ACodeTooLongForItsColumnAndAPriceThatIsNoNumberAreLeftOutAndSaid) {
  article("1, 7, '" + std::string(60, 'x') + "', 'Vaso', 22, 1, 1, 0");
  article("2, 7, 'B', 'Tazza', 22, 'gratis', 1, 0");
  const std::string preview = previewText();
  EXPECT_NE(preview.find("\tVaso\tcodice più lungo di 50 caratteri\n"), std::string::npos) << preview;
  EXPECT_NE(preview.find("tralasciato\tB\tTazza\tprezzo non valido\n"), std::string::npos) << preview;
  importWith("0100100");
  EXPECT_EQ(rows(fieldsOfArticle), "");
}

TEST_F(AccountingRows, ThePreviewTellsEachRowWithTotalsAndWritesNothing) {
  sql("INSERT INTO articoli (catID, codice, titolo) VALUES ('altro', 'A', 'Mio')");
  article("1, 7, 'A', 'Vaso', 22, 3.5, 1, 0");
  article("2, 7, 'B', 'Tazza', 22, 2, 1, 0");
  article("3, 9, 'C', 'Fuori', 22, 2, 1, 0");
  const std::string before = allRows();
  EXPECT_EQ(previewText(),
            "Reparti: 1 nuovi, 0 invariati\nArticoli: 1 nuovi, 1 modificati, 0 invariati, 1 tralasciati\n"
            "nuovo\tdgf7\tVasi\nmodificato\tA\tVaso\t3,50\nnuovo\tB\tTazza\t2,00\n"
            "tralasciato\tC\tFuori\treparto dgf9 mancante\n");
  EXPECT_EQ(allRows(), before);
  EXPECT_FALSE(fileExists(shop + "/og.ini"));
  EXPECT_TRUE(user.shown.empty());
}

}  // namespace
}  // namespace kv::test
