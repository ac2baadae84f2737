// Product exports of other shop programs, in the shapes that their manuals list: they become articles of ours without a
// column being chosen.
#include "import/tables/export_shapes.h"

#include "import/tables/table_guide.h"
#include "table_shop.h"

namespace kv::test {
namespace {

class ExportShapes : public TableShop {
 protected:
  /// Columns of ours that the sheet fills.
  std::string mapped() const {
    std::string names;
    for (const auto& column : opened.mapping) {
      names += (column ? opened.table.columns[*column].name : "-") + std::string(" ");
    }
    return names;
  }
};

TEST_F(ExportShapes, ByHandleBecomeArticlesWithTheirFurtherVariants) {
  ASSERT_EQ(importSheet("Handle,Title,Body (HTML),Vendor,Product Category,Type,Published,Option1 Value,Variant SKU,"
                        "Variant Grams,Variant Price,Variant Compare At Price,Image Src\n"
                        "vaso,Vaso,<p>Alto</p>,Noi,Home > Decor,Vetri,true,Blu,VA-1,1250,20.00,25.00,http://x/v.jpg\n"
                        "vaso,,,,,,,Rosso,VA-2,900,18.50,,\n"
                        "vaso,,,,,,,,,,,,http://x/v2.jpg\n"
                        "ciotola,Ciotola,,Noi,,Ceramiche > Tazze,false,,CI-1,80,7.00,7.00,\n"),
            TableEnd::Done);
  EXPECT_EQ(mapped(), "- titolo descrizione - - reparto fuoricatalogo - codice peso prezzo - - offertaprezzo offerta ");
  EXPECT_EQ(rows("SELECT codice, titolo, descrizione, catID, peso, prezzo, offertaprezzo, offerta, fuoricatalogo "
                 "FROM articoli WHERE ID > 3 ORDER BY ID"),
            "VA-1|Vaso|<p>Alto</p>|cat003|1.25|25|20|1|0\n"
            "VA-2|Vaso|<p>Alto</p>|cat003|.9|18.5|(null)|0|0\n"
            "CI-1|Ciotola|(null)|cat002|.08|7|(null)|0|1\n");
}

TEST_F(ExportShapes, ByTypeAndSkuLeaveTheOtherProgramsNumbersOut) {
  ASSERT_EQ(importSheet("ID,Type,SKU,Name,Published,Short description,Description,Weight (kg),Sale price,"
                        "Regular price,Categories,Images,Parent\n"
                        "1,simple,T-1,Tazza nuova,1,,\"Riga\\nuna\",0.3,10,12.5,\"Ceramiche > Tazze, Regali\",,\n"
                        "44,variable,CAL,Calice,0,Breve,,,,,Vetri,http://x/c.jpg,\n"
                        "45,variation,CAL-R,Calice - Rosso,1,,,0.2,,9,,,id:44\n"),
            TableEnd::Done);
  EXPECT_EQ(rows("SELECT ID < 4, codice, titolo, note, descrizione, catID, peso, prezzo, offertaprezzo, offerta, "
                 "fuoricatalogo FROM articoli WHERE codice NOT IN ('T-2', 'V-1') ORDER BY ID"),
            "1|T-1|Tazza nuova|(null)|Riga\r\nuna|cat002|.3|12.5|10|1|(null)\n"
            "0|CAL|Calice|Breve|(null)|cat003|(null)|(null)|(null)|0|1\n"
            "0|CAL-R|Calice - Rosso|(null)|(null)|cat003|.2|9|(null)|0|0\n");
}

TEST_F(ExportShapes, ByReferenceTakeThePriceWithTax) {
  ASSERT_EQ(importSheet("Product ID;Active (0/1);Name *;Categories (x,y,z...);Price tax excluded;Price tax included;"
                        "Reference #;Weight;Summary;Image URLs (x,y,z...)\n"
                        "3;1;Vaso;Vetri,Home;10.000000;12.200000;RE-1;0.500000;Breve;\n"),
            TableEnd::Done);
  EXPECT_EQ(rows("SELECT codice, titolo, note, catID, peso, prezzo, fuoricatalogo FROM articoli WHERE ID > 3"),
            "RE-1|Vaso|Breve|cat003|.5|12.2|0\n");
}

TEST_F(ExportShapes, OfAFeedAreReadFromItsXml) {
  ASSERT_EQ(importSheet("<?xml version='1.0'?><rss version='2.0' xmlns:g='x'><channel><item><g:id>T-1</g:id>"
                        "<g:title>Tazza blu</g:title><link>http://altrove/t1</link><g:price>1250.00 EUR</g:price>"
                        "<g:sale_price>EUR 999.90</g:sale_price><g:availability>in_stock</g:availability>"
                        "<g:image_link>http://altrove/t1.jpg</g:image_link>"
                        "<g:product_type>Vetri</g:product_type><g:shipping_weight>250 g</g:shipping_weight></item>"
                        "</channel></rss>"),
            TableEnd::Done);
  EXPECT_EQ(rows("SELECT codice, titolo, prezzo, offertaprezzo, offerta, catID, peso, link, immagine0 FROM articoli "
                 "WHERE ID = 1"),
            "T-1|Tazza blu|1250|999.9|1|cat003|.25|(null)|(null)\n");
}

TEST_F(ExportShapes, TakeAPictureByItsNameWhereItIsNoAddress) {
  const std::string picture = std::string(KORVANE_TEST_DATA) + "/platform/pictures/corners.gif";
  ASSERT_TRUE(copyFile(picture, joinPath(joinPath(shop, "work"), "vaso.gif")));
  ASSERT_EQ(importSheet("Type,SKU,Name,Regular price,Categories,Images\nsimple,VA,Vaso,1,Vetri,\"vaso.gif, b.gif\"\n"),
            TableEnd::Done);
  EXPECT_EQ(rows("SELECT immagine0, imgX0 > 0 FROM articoli WHERE codice = 'VA'"), "vaso.gif|1\n");
}

TEST_F(ExportShapes, AreKnownByTheirHeadersAndOtherSheetsAreLeftAsTheyAre) {
  EXPECT_EQ(exportShapeOf({"Handle", "Title", "Variant SKU"}), "handle");
  EXPECT_EQ(exportShapeOf({"Product ID", "Name", "Reference", "Category"}), "riferimento");
  EXPECT_EQ(exportShapeOf({"ID", "Title", "Price"}), "");
  EXPECT_EQ(exportShapeOf({"g:id", "title", "g:price"}), "feed");
  ASSERT_TRUE(writeBytes(root / "foglio.csv", "ID,Type,SKU,Name,Regular price\n1,simple,T-1,Tazza,2\n"));
  TableGuide guide(session, settings, "cat003", "modello1");
  guide.path = root / "foglio.csv";
  ASSERT_EQ(guide.read(), "");
  EXPECT_EQ(guide.usualKey(), "codice");
  EXPECT_EQ(guide.reading(),
            "CSV, UTF-8, separatore \",\", fine riga LF, decimali \".\", migliaia nessuno, esportazione ID, Type, SKU, "
            "Name, 1 righe");
  guide.choice.shape = "no";
  ASSERT_EQ(guide.read(), "");
  EXPECT_EQ(guide.usualKey(), "id");
}

TEST_F(ExportShapes, ShowWhatBecomesOfAllAmounts) {
  TablePlan planned = plan("codice;prezzo;prezzo1;reparto\nT-1;13;11;Vetri\nT-2;1,5;2;Vetri\nN-1;4,25;;Vetri\n");
  EXPECT_EQ(amountsText(planned),
            "Prezzo: 2 importi cambiano, in tutto da 12,50 a 17,25\n"
            "Prezzo listino 1: 1 importo cambia, in tutto da 0,00 a 2,00");
  planned.rows[2].isChosen = false;
  EXPECT_EQ(amountsText(planned).substr(0, 53), "Prezzo: 1 importo cambia, in tutto da 12,50 a 13,00\nP");
}

}  // namespace
}  // namespace kv::test
