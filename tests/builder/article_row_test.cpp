// The derived article row, the lists and the showcase, as a build leaves them.

#include "builder/article/article_row.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "builder/article/showcase.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(ArticleRowTest, ADepartmentWithoutDiscountPrintsNoStrike) {
  TempShop shop;
  shop.sql("UPDATE generale SET sconto = 0");
  shop.department("cat001");
  shop.article("cat001", {{"prezzo", money("10")}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT listino, prezzo FROM dettaglio"), "EUR 10,00|EUR 10,00");
}

TEST(ArticleRowTest, AnOfferPriceWithTheFlagOffStrikesTheListPriceButIsNotCharged) {
  TempShop shop;
  shop.department("cat001");
  shop.article("cat001", {{"prezzo", money("10")},
                          {"offertaprezzo", money("8")},
                          {"offerta", false},
                          {"prezzo2", money("7")},
                          {"offertaprezzo2", money("6")},
                          {"offerta2", true}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT listino, prezzo FROM dettaglio"), "<strike>EUR 10,00</strike>|EUR 8,00");
  EXPECT_EQ(shop.rows("SELECT implistino, importo, implistino2, importo2, importo5 FROM ordinamento"), "10|10|7|6|0");
}

TEST(ArticleRowTest, AnExternalLinkOpensItsOwnWindowOnTextsAndPicturesAlone) {
  TempShop shop;
  shop.sql("UPDATE generale SET elenco_titolo = 1");
  shop.department("cat001");
  shop.article("cat001", {{"titolo", std::string("Vaso")},
                          {"sottotitolo", std::string("blu")},
                          {"link", std::string("http://x")},
                          {"linkesterno", true},
                          {"immagine0", std::string("a.jpg")}});
  shop.templateFile("modello1.htm", "[<<1-elenco>>]<KV_START><KV_END>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT titolo, plain_titolo, sottotitolo FROM articoli"),
            "<a href=\"http://x\" target=\"_blank\">Vaso</a>|Vaso|<a href=\"http://x\" target=\"_blank\">blu</a>");
  EXPECT_EQ(shop.rows("SELECT immagine1 FROM dettaglio"),
            "<a href=\"http://x\" target=\"_blank\"><img border=\"0\" src=\"a.jpg\"></a>");
  EXPECT_THAT(shop.rows("SELECT java_acquista FROM articoli"), Not(HasSubstr("http://x")));
  EXPECT_THAT(shop.page("cat001.php"), HasSubstr("[<a href=\"cat001.php?n=1#1\">Vaso</a><BR>&nbsp;<BR>]"));
}

TEST(ArticleRowTest, TheBuyLinkCarriesTheArticlesOwnFields) {
  TempShop shop;
  shop.department("cat001", {{"iva", 20.0}});
  shop.article(
      "cat001",
      {{"codice", std::string("A1")}, {"titolo", std::string("L'olio")}, {"prezzo", money("3.5")}, {"peso", 0.25}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT java_acquista FROM articoli"),
            "javascript:window.status='';Acquista('A1 L\\'olio','3.50','.2',document.itemsform.qt1.value,'op11','op21',"
            "'op31','.25')\" onMouseOver=\"window.status=''; return true");
  EXPECT_EQ(shop.rows("SELECT cart_opzione1, cart_opzione4, cart_peso, cart_iva FROM dettaglio"), "op11|op41|.25|.2");
}

TEST(ArticleRowTest, ABigPictureInAPopUpIsOpenedFromTheSmallOne) {
  TempShop shop;
  shop.department("cat001");
  const Row pictures{{"immagine0", std::string("p.jpg")},
                     {"immagine1", std::string("g.jpg")},
                     {"popup", true},
                     {"link", std::string("http://x")}};
  shop.article("cat001", pictures);
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT immagine1, immagine2 FROM dettaglio"),
            "<a href=\"#\" onClick=\"javascript:PopupImage('g.jpg',600,350); return false;\"><img border=\"0\" "
            "src=\"p.jpg\"></a>|<img border=\"0\" src=\"g.jpg\">");
  shop.sql("UPDATE articoli SET imgX1 = 800, imgY1 = 500");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.rows("SELECT immagine1 FROM dettaglio"), HasSubstr("PopupImage('g.jpg',800,500)"));
}

TEST(ArticleRowTest, QuantityDiscountsBecomeFactorsAndMissingVariantsZero) {
  TempShop shop;
  shop.department("cat001");
  shop.article("cat001",
               {{"scqperc0", 12.5}, {"scqart0", std::int64_t{10}}, {"scq3", true}, {"opzione2_7", std::int64_t{9}}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.tagRows("SELECT scqperc0, scqperc1, scqart0, scqart1, scq, scq3, opzione1, opzione2_7 FROM articoli"),
            ".875|1|10|0|0|1|0|9");
}

TEST(ArticleRowTest, NullTextsAreEmptyTexts) {
  TempShop shop;
  shop.department("cat001");
  shop.article("cat001");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.tagRows("SELECT codice, correlazione, descrizione, note, titolo FROM articoli"), "||||");
}

TEST(ArticleRowTest, TheOfferMarkIsTheTemplatesPictureOfTheLanguage) {
  TempShop shop(2);
  shop.sql("UPDATE generale SET vis_offerta = 1");
  shop.department("cat001");
  shop.article("cat001");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT offerta FROM articoli"), "<img src=\"kvan_offerta.gif\">");
  EXPECT_EQ(shop.rows("SELECT offerta FROM articoli_l2"), "<img src=\"kvan_offerta_l2.gif\">");
}

TEST(ArticleRowTest, TheVatNoteIsInTheWordsOfTheLanguage) {
  TempShop shop(2);
  shop.application("languages/inglese.lng", "<<4-carrello_iva>>\r\nVAT\r\n<<4-listino_obbligatorio>>\r\nx\r\n");
  shop.department("cat001", {{"iva", 4.0}});
  shop.article("cat001", {{"prezzo", money("1")}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT iva FROM articoli"), "+ IVA 4%");
  EXPECT_EQ(shop.rows("SELECT iva FROM articoli_l2"), "+ VAT 4%");
}

TEST(ShowcaseTest, ZeroColumnsBecomeThreeAndElevenBecomeTen) {
  EXPECT_EQ(showcaseColumns(0), 3);
  EXPECT_EQ(showcaseColumns(11), 10);
  EXPECT_EQ(showcaseColumns(4), 4);
}

TEST(ShowcaseTest, AShowcaseOfOneCellIsATableWithAShortRow) {
  TempShop shop;
  shop.sql(
      "UPDATE generale SET colonnevetrina='2', vetalign='center', vetalignstyle=' hspace=3', vetsize='2', "
      "vetopzioni=31, elenco_codice=1");
  shop.department("cat001");
  shop.article("cat001", {{"titolo", std::string("Vaso")},
                          {"sottotitolo", std::string("blu")},
                          {"inelenco", true},
                          {"codice", std::string("V")},
                          {"descrizione", std::string("bello")},
                          {"immagine2", std::string("v.gif")}});
  shop.templateFile("index.htm", "<<1-vetrina>>[<<1-elenco>>]");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(
      shop.page("index.php"),
      HasSubstr("<div align=\"center\"><center><table border=\"0\" cellpadding=\"4\" cellspacing=\"0\">\r\n"
                "<tr>\r\n"
                "<td valign=\"top\" align=\"center\" width=\"50%\">\r\n"
                "<font size=\"2\">\r\n"
                "<a href=\"cat001.php?n=1#1\"> <img border=\"0\" src=\"v.gif\" hspace=3></a><BR><B>Vaso</B><BR>blu"
                "<BR>bello<BR><?php echo ArtPrice(1); ?><BR><?php echo ArtCambio(1); ?></font></td>\r\n"
                "</tr>\r\n"
                "</table></center></div>\r\n"
                "[<BR><a href=\"cat001.php?n=1#1\">V</a><BR>&nbsp;<BR>]"));
}

TEST(ShowcaseTest, WithOneArticleAPageTheSingleArticleLinkChangesNothing) {
  TempShop shop;
  shop.sql("UPDATE generale SET singleitem_vet=1, vetopzioni=0");
  shop.department("cat001", {{"maxarticoli", std::int64_t{1}}});
  shop.department("cat002");
  shop.article("cat001", {{"inelenco", true}});
  shop.article("cat002", {{"inelenco", true}});
  shop.templateFile("index.htm", "<<1-vetrina>>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("index.php"), HasSubstr("<a href=\"cat001.php?n=1\"></a>"));
  EXPECT_THAT(shop.page("index.php"), HasSubstr("<a href=\"cat002.php?n=1&prod=1\"></a>"));
}

TEST(ShowcaseTest, ATemplatesOwnCellLinksToTheOneArticleWhereTheSettingSaysSo) {
  TempShop shop;
  shop.sql("UPDATE generale SET singleitem_vet=1");
  shop.application("template/prova/kvan_vet.ini", "<p id=\"#\">%link</p>");
  shop.department("cat001");
  shop.article("cat001", {{"inelenco", true}});
  shop.templateFile("index.htm", "<<1-vetrina>>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("index.php"), HasSubstr("<p id=\"#\">cat001.php?n=1&prod=1</p>"))
      << "the template's own # stays";
}

TEST(ShowcaseTest, ATemplatesOwnCellHasItsPlaceholdersFilled) {
  TempShop shop;
  shop.application("template/prova/kvan_vet.ini",
                   " <p>%title_html|%title|\r\n%code|%link|%image1|%x1|%y1|%x3|%price|%change|%offer</p> \r\n");
  shop.department("cat001");
  shop.article("cat001", {{"titolo", std::string("Caffè")},
                          {"codice", std::string("C")},
                          {"inelenco", true},
                          {"immagine0", std::string("a.jpg")},
                          {"imgX0", std::int64_t{12}},
                          {"imgY0", std::int64_t{34}}});
  shop.templateFile("index.htm", "<<1-vetrina>>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("index.php"),
              HasSubstr("<p>Caff&egrave;|Caffè|C|cat001.php?n=1#1|a.jpg|12|34|0|<?php echo ArtPrice(1); ?>|"
                        "<?php echo ArtCambio(1); ?>|<?php echo VetOfferta(1); ?></p>"));
  EXPECT_THAT(shop.page("index.php"), HasSubstr("</table></center></div>\r\n<?php\r\nfunction VetOfferta($aid) {\r\n"));
}

}  // namespace
}  // namespace kv::test
