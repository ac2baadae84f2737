// The small texts of a page: entities, tags, JavaScript and PHP forms, links and image tags.

#include "builder/values/html_text.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

TEST(HtmlTextTest, ATextWithMarkupIsLeftAsItIs) {
  EXPECT_EQ(HtmlText{}.TestoHTML("<b>Sale</b> è\r\n"), "<b>Sale</b> è\r\n");
  EXPECT_EQ(HtmlText{}.TestoHTML("a > b < è"), "a > b < &egrave;");
}

TEST(HtmlTextTest, LineEndsBecomeBreaksAndAccentedCharactersEntities) {
  EXPECT_EQ(HtmlText{}.TestoHTML("Caffè\r\nperché\nno"), "Caff&egrave;<BR>perch&eacute;\nno");
}

TEST(HtmlTextTest, ExactlySixtyOneCharactersHaveEntities) {
  EXPECT_EQ(HtmlText{}.TestoHTML("ÁÂÀÅÃÄÆÉÊÈËÍÎÌÏÓÔÒÕÖÚÛÙÜÝ"),
            "&Aacute;&Acirc;&Agrave;&Aring;&Atilde;&Auml;&AElig;&Eacute;&Ecirc;&Egrave;&Euml;&Iacute;&Icirc;&Igrave;"
            "&Iuml;&Oacute;&Ocirc;&Ograve;&Otilde;&Ouml;&Uacute;&Ucirc;&Ugrave;&Uuml;&Yacute;");
  EXPECT_EQ(HtmlText{}.TestoHTML("áâàåãäæéêèëíîìïóôòõöúûùüý"),
            "&aacute;&acirc;&agrave;&aring;&atilde;&auml;&aelig;&eacute;&ecirc;&egrave;&euml;&iacute;&icirc;&igrave;"
            "&iuml;&oacute;&ocirc;&ograve;&otilde;&ouml;&uacute;&ucirc;&ugrave;&uuml;&yacute;");
  EXPECT_EQ(HtmlText{}.TestoHTML("ÿÇçÑØøÐðÞþß"),
            "&yuml;&Ccedil;&ccedil;&Ntilde;&Oslash;&oslash;&ETH;&eth;&THORN;&thorn;&szlig;");
  EXPECT_EQ(HtmlText{}.TestoHTML("ñ × ÷ €"), "ñ × ÷ €");
}

TEST(HtmlTextTest, EntitiesCanBeSwitchedOff) { EXPECT_EQ(HtmlText{false}.TestoHTML("è\r\n"), "è<BR>"); }

TEST(HtmlTextTest, TagsAreStrippedFromTheNearestOpeningBracket) {
  EXPECT_EQ(TogliTag("<b>Sale</b>"), "Sale");
  EXPECT_EQ(TogliTag("a>b<c"), "a>b<c");
  EXPECT_EQ(TogliTag("1<2<i>x"), "1<2x");
  EXPECT_EQ(TogliTag("<<a>b>c"), "c");
}

TEST(HtmlTextTest, JavaScriptTextCannotEndItsArgument) {
  EXPECT_EQ(TestoJS("L'\"olio\" \\ 100%;[a]|£"), "L\\'%22olio%22 \\\\ 100%25, a   ");
}

TEST(HtmlTextTest, ATitleWithAnApostropheOrAQuoteReachesTheCartEscaped) {
  EXPECT_EQ(CartArticolo("A1", "<b>Sale</b>"), "A1 Sale");
  EXPECT_EQ(CartArticolo("", "L'olio"), "L\\'olio");
  EXPECT_EQ(CartArticolo("x", "12\" largo"), "x 12%22 largo");
}

TEST(HtmlTextTest, PhpTextHasItsQuotesEscaped) { EXPECT_EQ(EscapePHP("a\"b'c\\"), "a\\\"b\\'c\\"); }

TEST(HtmlTextTest, ALinkNeedsATextAndAnAddress) {
  EXPECT_EQ(PutLink("t", "u", false), "<a href=\"u\">t</a>");
  EXPECT_EQ(PutLink("t", "u", true), "<a href=\"u\" target=\"_blank\">t</a>");
  EXPECT_EQ(PutLink("", "u", true), "");
  EXPECT_EQ(PutLink("t", "", true), "t");
  EXPECT_EQ(PutOnClick("t", "s"), "<a href=\"#\" onClick=\"s\">t</a>");
  EXPECT_EQ(PutOnClick("t", ""), "t");
}

TEST(HtmlTextTest, APictureWithoutAWidthHasNoSizes) {
  EXPECT_EQ(pictureTag("a.jpg", 10, 20), "<img border=\"0\" src=\"a.jpg\" width=\"10\" height=\"20\">");
  EXPECT_EQ(pictureTag("a.jpg", 0, 20), "<img border=\"0\" src=\"a.jpg\">");
  EXPECT_EQ(pictureTag("", 10, 20), "");
}

TEST(HtmlTextTest, ATemplateImageCarriesItsSizeWhenItCanBeRead) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "Marchio.GIF", onePixelGif(1, 2, 3)).has_value());
  ASSERT_TRUE(writeBytes(folder / "rotto.gif", "no").has_value());
  EXPECT_EQ(CreaTagImg(folder.path(), "marchio.gif"), "<img src=\"marchio.gif\" height=\"1\" width=\"1\">");
  EXPECT_EQ(CreaTagImg(folder.path(), "rotto.gif"), "<img src=\"rotto.gif\">");
  EXPECT_EQ(CreaTagImg(folder.path(), "manca.gif"), "<img src=\"manca.gif\">");
}

TEST(HtmlTextTest, ASearchKeyHoldsCharactersAndDigitsBetweenSigns) {
  EXPECT_EQ(CampoRicerca("  Olio  EXTRA-vergine 1l "), "#olio##extravergine##1l#");
  EXPECT_EQ(CampoRicerca("Caffè ñ"), "#caffè###");
  EXPECT_EQ(CampoRicerca("  -- "), "");
}

}  // namespace
}  // namespace kv::test
