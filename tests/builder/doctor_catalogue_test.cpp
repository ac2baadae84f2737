// The shop doctor on articles, departments, variants and pictures: the smallest shop with each fault, and the same shop
// without it.
#include "builder/doctor_shop.h"
#include "platform/image/pixels.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

using DoctorCatalogue = DoctorShop;

TEST_F(DoctorCatalogue, AShopInOrderHasNoFindings) { EXPECT_THAT(told(), IsEmpty()); }

TEST_F(DoctorCatalogue, AnArticleWithoutCodeIsTold) {
  sql("UPDATE articoli SET codice = ' '");
  EXPECT_THAT(told(),
              ElementsAre("code.missing: Articolo Vaso: manca il codice, che distingue l'articolo negli ordini"));
}

TEST_F(DoctorCatalogue, ACodeOfTwoArticlesIsToldWhateverItsCase) {
  shop.article("cat001", {{"codice", std::string("v1")},
                          {"titolo", std::string("Brocca")},
                          {"titolo_l2", std::string("Jug")},
                          {"prezzo", money("1")}});
  EXPECT_THAT(told(), ElementsAre("code.doubled: Articolo v1 Brocca: ha lo stesso codice dell'articolo V1 Vaso"));
}

TEST_F(DoctorCatalogue, AnArticleOutOfTheCatalogueMayBeUnfinished) {
  sql("UPDATE articoli SET codice = '', titolo = '', prezzo = 0, fuoricatalogo = 1, immagine0 = 'manca.jpg', link = "
      "'manca.php', note = '<<4-manca>>'");
  EXPECT_THAT(told(), ElementsAre("department.empty: Reparto Reparto cat001: non contiene articoli, chi lo apre trova "
                                  "una pagina vuota"));
}

TEST_F(DoctorCatalogue, AMissingTitleIsAnErrorAndATranslationAWarning) {
  sql("UPDATE articoli SET titolo_l2 = NULL");
  Findings found = findings();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].text, "Articolo V1 Vaso: manca il titolo in inglese");
  EXPECT_EQ(found[0].severity, Severity::Warning);
  EXPECT_EQ(found[0].target.language, 2);
  sql("UPDATE articoli SET titolo = ''");
  found = findings();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].text, "Articolo V1: manca il titolo");
  EXPECT_EQ(found[0].severity, Severity::Error);
}

TEST_F(DoctorCatalogue, ATitleOfTwoArticlesOfADepartmentIsToldOnceWhateverItsCase) {
  const auto add = [&](const std::string& department, const std::string& code, const std::string& english) {
    shop.article(department, {{"codice", code},
                              {"titolo", std::string(code == "E" ? "Brocca" : "VASO")},
                              {"titolo_l2", english},
                              {"prezzo", money("1")}});
  };
  shop.department("cat002", {{"titolo_l2", std::string("Jugs")}, {"template", std::string("modello1")}});
  add("cat001", "D", "vase");
  add("cat002", "F", "Vase");
  add("cat001", "E", "VASE");
  EXPECT_THAT(told(),
              ElementsAre("title.doubled: Articolo D VASO: ha lo stesso titolo dell'articolo V1 Vaso nel reparto",
                          "title.doubled: Articolo E Brocca: ha lo stesso titolo dell'articolo V1 Vaso nel reparto in "
                          "inglese"));
  sql("UPDATE articoli SET fuoricatalogo = 1 WHERE codice = 'V1'");
  EXPECT_EQ(told().size(), 1U);
}

TEST_F(DoctorCatalogue, SubtitlesAndNotesAreMissedWhereLanguageOneHasThem) {
  sql("UPDATE articoli SET sottotitolo = 'Alto', note = 'Fatto a mano'");
  EXPECT_THAT(told(), ElementsAre("article.untranslated: Articolo V1 Vaso: manca il sottotitolo in inglese",
                                  "article.untranslated: Articolo V1 Vaso: mancano le note in inglese"));
  sql("UPDATE articoli SET sottotitolo_l2 = 'Tall', note_l2 = 'By hand'");
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, ADescriptionIsMissedWhereLanguageOneHasOne) {
  sql("UPDATE articoli SET descrizione = 'Di terracotta'");
  EXPECT_THAT(told(), ElementsAre("article.untranslated: Articolo V1 Vaso: manca la descrizione in inglese"));
}

TEST_F(DoctorCatalogue, APriceOfZeroIsToldInPriceListsThatAreInUse) {
  sql("UPDATE articoli SET prezzo = 0");
  EXPECT_THAT(told(), ElementsAre("price.zero: Articolo V1 Vaso: si può ordinare al prezzo di 0"));
  sql("UPDATE articoli SET prezzo = 10000");
  shop.article("cat001", {{"codice", std::string("B")},
                          {"titolo", std::string("Brocca")},
                          {"titolo_l2", std::string("Jug")},
                          {"prezzo", money("3")},
                          {"prezzo4", money("2")}});
  const Findings found = findings();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].text, "Articolo V1 Vaso: si può ordinare al prezzo di 0 nel listino 4");
  EXPECT_EQ(found[0].target.listino, 4);
  EXPECT_EQ(found[0].target.column, "prezzo");
}

TEST_F(DoctorCatalogue, APriceOfZeroIsToldOnceForAllPriceLists) {
  shop.article("cat001", {{"codice", std::string("B")},
                          {"titolo", std::string("Brocca")},
                          {"titolo_l2", std::string("Jug")},
                          {"prezzo", money("3")},
                          {"prezzo1", money("2")},
                          {"prezzo2", money("2")},
                          {"prezzo7", money("2")}});
  const Findings found = findings();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].text, "Articolo V1 Vaso: si può ordinare al prezzo di 0 nei listini 1, 2 e 7");
  EXPECT_EQ(found[0].target.listino, 1) << "the jump leads to the first of them";
}

TEST_F(DoctorCatalogue, AnOfferAboveThePriceIsEndedByTheMending) {
  sql("UPDATE articoli SET prezzo2 = 10000, offerta2 = 1, offertaprezzo2 = 10000");
  EXPECT_THAT(
      told(),
      ElementsAre("offer.abovePrice: Articolo V1 Vaso: il prezzo in offerta non è inferiore al prezzo nel listino 2"));
  EXPECT_EQ(mendAll("offer.abovePrice"), 1);
  EXPECT_EQ(field("SELECT offerta2 FROM articoli"), "0");
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, AnOfferWithoutAPriceIsAnErrorEndedByTheMending) {
  sql("UPDATE articoli SET offerta = 1, offertaprezzo = NULL");
  EXPECT_THAT(told(), ElementsAre("offer.free: Articolo V1 Vaso: è in offerta al prezzo di 0"));
  EXPECT_EQ(findings()[0].severity, Severity::Error);
  EXPECT_EQ(mendAll("offer.free"), 1);
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, AnOfferBelowThePriceIsInOrder) {
  sql("UPDATE articoli SET offerta = 1, offertaprezzo = prezzo - 1");
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, AnOfferOfAHiddenArticleIsEndedByTheMending) {
  shop.article("cat001", {{"offerta", true}, {"fuoricatalogo", true}, {"codice", std::string("X")}});
  EXPECT_THAT(told(), ElementsAre("offer.hidden: Articolo X: è fuori catalogo, ma in offerta"));
  EXPECT_EQ(mendAll("offer.hidden"), 1);
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, AnArticleWithoutDepartmentIsTold) {
  const std::int64_t lost = shop.article("cat999", {{"codice", std::string("X")},
                                                    {"titolo", std::string("Perso")},
                                                    {"titolo_l2", std::string("Lost")},
                                                    {"prezzo", money("1")}});
  ASSERT_TRUE(
      writeSideField(shop.session.catalogue, SideField::Maker, std::to_string(lost), Value(std::string("Forno"))));
  EXPECT_THAT(told(), ElementsAre("article.stray: Articolo X Perso: il suo reparto non esiste, nessuno può vederlo"));
}

TEST_F(DoctorCatalogue, AVariantThatDoesNotExistIsEmptiedByTheMending) {
  sql("UPDATE articoli SET opzione3_2 = 77, opzione1 = 1, opzione2 = NULL");
  EXPECT_THAT(told(), ElementsAre("variant.lost: Articolo V1 Vaso: la variante 3 nel listino 2 non esiste"));
  EXPECT_EQ(mendAll("variant.lost"), 1);
  EXPECT_EQ(field("SELECT opzione3_2 FROM articoli"), "1");
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, ADepartmentCountsTheArticlesBelowIt) {
  shop.department("cat002", {{"titolo_l2", std::string("Inner")}, {"template", std::string("modello1")}});
  EXPECT_THAT(told(), ElementsAre("department.empty: Reparto Reparto cat002: non contiene articoli, chi lo apre trova "
                                  "una pagina vuota"));
  sql("UPDATE articoli SET catID = 'cat002'; UPDATE categorie SET genitore = 'cat001', livello = 2 WHERE ID = "
      "'cat002'");
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, AHiddenBranchWithArticlesIsTold) {
  shop.department("cat002", {{"titolo_l2", std::string("Inner")},
                             {"template", std::string("modello1")},
                             {"genitore", std::string("cat001")},
                             {"livello", std::int64_t{2}}});
  sql("UPDATE articoli SET catID = 'cat002'; UPDATE categorie SET nascosto = 1 WHERE ID = 'cat001'");
  EXPECT_THAT(told(),
              ElementsAre("department.hidden: Reparto Reparto cat002: è nascosto, ma i suoi articoli in catalogo "
                          "compaiono ancora nelle ricerche"));
  sql("UPDATE articoli SET fuoricatalogo = 1");
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, DepartmentsInARingAreReadToTheEnd) {
  sql("UPDATE categorie SET genitore = 'cat001'");
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, ADepartmentWithoutParentIsOneAtTheTop) {
  shop.department("cat002", {{"titolo_l2", std::string("Inner")},
                             {"template", std::string("modello1")},
                             {"genitore", std::string("cat001")},
                             {"livello", std::int64_t{2}}});
  sql("UPDATE articoli SET catID = 'cat002'; UPDATE categorie SET genitore = NULL WHERE ID = 'cat001'");
  EXPECT_THAT(told(), IsEmpty());
  sql("UPDATE categorie SET nascosto = 1 WHERE ID = 'cat001'");
  EXPECT_EQ(told().size(), 1U);
}

TEST_F(DoctorCatalogue, ADepartmentNeedsATitleInEachLanguage) {
  sql("UPDATE categorie SET titolo_l2 = ''");
  EXPECT_THAT(told(), ElementsAre("department.untranslated: Reparto Reparto cat001: manca il titolo in inglese"));
  sql("UPDATE categorie SET titolo = ''");
  EXPECT_THAT(told(),
              ElementsAre("department.untitled: Reparto cat001: manca il titolo, nel menu resta una riga vuota"));
}

TEST_F(DoctorCatalogue, APageModelThatIsNotThereIsMendedByTheOnlyOne) {
  sql("UPDATE categorie SET template = 'modello9'");
  EXPECT_THAT(
      told(),
      ElementsAre("department.model: Reparto Reparto cat001: il template non ha il modello di pagina modello9"));
  EXPECT_EQ(mendAll("department.model"), 1);
  EXPECT_THAT(told(), IsEmpty());
  sql("UPDATE categorie SET template = 'modello9'");
  shop.templateFile("modello2.htm", "<KV_START><KV_END>");
  EXPECT_EQ(mendAll("department.model"), 0);
}

TEST_F(DoctorCatalogue, AVariantNeedsValuesAndOneDefault) {
  sql("INSERT INTO opzioni (ID, nome) VALUES (5, 'Taglia'); UPDATE articoli SET opzione2_3 = 5");
  Findings found = findings();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].text, "Variante Taglia: non ha opzioni fra cui scegliere");
  EXPECT_EQ(found[0].target.key, std::to_string(vase));
  EXPECT_EQ(found[0].target.column, "opzione2");
  EXPECT_EQ(found[0].target.listino, 3);
  sql("INSERT INTO dettagliop (ID, OpID, testo, testo_l2, selezionato) VALUES (1, 5, 'S', 'S', ' '), (2, 5, 'M', 'M', "
      "'')");
  EXPECT_THAT(told(), ElementsAre("variant.default: Variante Taglia: nessuna opzione è predefinita"));
  EXPECT_EQ(mendAll("variant.default"), 1);
  EXPECT_EQ(field("SELECT ID FROM dettagliop WHERE selezionato = '.'"), "1");
  sql("UPDATE dettagliop SET selezionato = '.'");
  EXPECT_THAT(told(), ElementsAre("variant.default: Variante Taglia: più di un'opzione è predefinita"));
  EXPECT_EQ(mendAll("variant.default"), 1);
  EXPECT_EQ(field("SELECT COUNT(*) FROM dettagliop WHERE selezionato = '.'"), "1");
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, ValueCodesAndTextsOfAVariantAreTold) {
  sql("INSERT INTO opzioni (ID, nome) VALUES (5, 'Taglia');"
      "INSERT INTO dettagliop (ID, OpID, codice, testo, testo_l2, selezionato) VALUES (1, 5, 'a', 'S', 'S', '.'),"
      "(2, 5, 'A', 'M', '', '')");
  EXPECT_THAT(told(), ElementsAre("variant.codes: Variante Taglia: il codice A è di più opzioni",
                                  "variant.untranslated: Variante Taglia: un'opzione è senza testo in inglese"));
}

TEST_F(DoctorCatalogue, PicturesAreLookedForAndMeasured) {
  const auto pixels = PixelBuffer::create({40, 30});
  ASSERT_TRUE(pixels && writeBytes(joinPath(shop.folder(), "work/Vaso.jpg"), valueOf(jpegOf(*pixels, 90))));
  sql("UPDATE articoli SET immagine0 = 'vaso.jpg', imgX0 = 40, imgY0 = 30, immagine2 = 'manca.gif'");
  EXPECT_THAT(told(), ElementsAre("picture.missing: Articolo V1 Vaso: l'immagine manca.gif non esiste"));
  sql("UPDATE articoli SET immagine2 = '', imgX0 = 80");
  EXPECT_THAT(told(), ElementsAre("picture.size: Articolo V1 Vaso: l'immagine vaso.jpg è mostrata 80x30, ma è 40x30"));
  EXPECT_EQ(mendAll("picture.size"), 1);
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, PicturesOfDepartmentsAndShopAreMendedInTheirOwnColumns) {
  const auto pixels = PixelBuffer::create({40, 30});
  ASSERT_TRUE(pixels && writeBytes(joinPath(shop.folder(), "work/a.jpg"), valueOf(jpegOf(*pixels, 90))));
  sql("UPDATE categorie SET immagine1_l2 = 'a.jpg', imgX1_l2 = 1, imgY1_l2 = 1;"
      "UPDATE generale SET immagine1 = 'a.jpg', imgX1 = 2, imgY1 = 2");
  EXPECT_EQ(mendAll("picture.size"), 2);
  EXPECT_EQ(field("SELECT imgX1_l2 || 'x' || imgY1_l2 FROM categorie"), "40x30");
  EXPECT_EQ(field("SELECT imgX1 || 'x' || imgY1 FROM generale"), "40x30");
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorCatalogue, APictureThatNoBrowserShowsIsTold) {
  ASSERT_TRUE(writeBytes(joinPath(shop.folder(), "work/a.jpg"), "<html>404"));
  ASSERT_TRUE(writeBytes(joinPath(shop.folder(), "work/a.svg"), "<svg/>"));
  ASSERT_TRUE(writeBytes(joinPath(shop.folder(), "work/a.webp"), "RIFF"));
  sql("UPDATE articoli SET immagine0 = 'a.jpg', immagine1 = 'a.svg', immagine2 = 'a.webp'");
  EXPECT_THAT(told(), ElementsAre("picture.damaged: Articolo V1 Vaso: l'immagine a.jpg è danneggiata e non si vede",
                                  "picture.damaged: Articolo V1 Vaso: l'immagine a.webp è danneggiata e non si vede"));
}

TEST_F(DoctorCatalogue, APictureOfMoreThan500KilobytesIsTold) {
  std::string bytes = valueOf(jpegOf(valueOf(PixelBuffer::create({40, 30})), 90));
  bytes.resize(500 * 1024);
  ASSERT_TRUE(writeBytes(joinPath(shop.folder(), "work/a.jpg"), bytes));
  sql("UPDATE articoli SET immagine0 = 'a.jpg'");
  EXPECT_THAT(told(), IsEmpty());
  ASSERT_TRUE(writeBytes(joinPath(shop.folder(), "work/a.jpg"), bytes + "x"));
  EXPECT_THAT(told(),
              ElementsAre("picture.heavy: Articolo V1 Vaso: l'immagine a.jpg è di 500 KB e si carica lentamente"));
}

}  // namespace
}  // namespace kv::test
