// A source of text files: what is found out about their form, and what is read from them.
#include "import/accounting/csv_source.h"
#include "accounting_shop.h"
#include "import/sheets/number_signs.h"

namespace kv::test {
namespace {

TEST(CsvTest, TheSeparatorIsTheMostFrequentOneOfTheFirstLine) {
  EXPECT_EQ(separatorOf("Id;Nome\n1,2,3,4;b"), ';');
  EXPECT_EQ(separatorOf("Id,Nome,x;y\n"), ',');
  EXPECT_EQ(separatorOf("Id\tNome\n"), '\t');
  EXPECT_EQ(separatorOf("Id"), ';');
}

TEST(CsvTest, TheDecimalSeparatorIsFoundAmongTheNumbers) {
  EXPECT_EQ(decimalSeparatorOf({"1.234", "12,50"}, ';'), ',');
  EXPECT_EQ(decimalSeparatorOf({"1,234", "12.50"}, ';'), '.');
  EXPECT_EQ(decimalSeparatorOf({"1.234,500"}, ';'), ',');
  EXPECT_EQ(decimalSeparatorOf({"1.234", "5"}, ';'), ',');
  EXPECT_EQ(decimalSeparatorOf({"5"}, ','), '.');
  EXPECT_EQ(decimalSeparatorOf({"0.250"}, ';'), '.') << "no group of thousands starts with a 0";
  EXPECT_EQ(decimalSeparatorOf({"-0.250", "-.125"}, ';'), '.');
  EXPECT_EQ(decimalSeparatorOf({"36210,845"}, ','), ',') << "no group has five digits";
  EXPECT_EQ(plainCsvNumber(" 1.234,50 ", ','), "1234.50");
  EXPECT_EQ(plainCsvNumber("1,234.50", '.'), "1234.50");
}

class CsvFolder : public AccountingShop {
 protected:
  CsvFolder() {
    request.path = root / "dati";
    EXPECT_TRUE(createFolders(request.path));
    EXPECT_TRUE(writeBytes(request.path + "/categoria.CSV", "Id;Nome\r\n7;Caff\xE8\r\n"));
    EXPECT_TRUE(writeBytes(
        request.path + "/Articoli.csv",
        "Vendita1;Id;IdCategoria;Codice;Descrizione;iva\r\n\"1.234,56\";42;7;;\"Tazza; \"\"blu\"\"\";22,0\r\n"));
  }
};

TEST_F(CsvFolder, IsImportedLikeADatabase) {
  importWith("0101100");
  EXPECT_EQ(rows("SELECT ID, titolo FROM categorie"), "dgf7|Caffè\n");
  EXPECT_EQ(rows("SELECT codice, titolo, prezzo FROM articoli"), "OG00042|Tazza; \"blu\"|1506.16\n");
}

TEST_F(CsvFolder, ItsFormIsShownInThePreview) {
  const std::string preview = previewText();
  EXPECT_TRUE(preview.starts_with(
      "Categoria.csv: Windows-1252, separatore di campo \";\", separatore decimale \",\"\n"
      "Articoli.csv: Unicode, separatore di campo \";\", separatore decimale \",\"\nReparti: 1 nuovi"))
      << preview;
}

TEST_F(CsvFolder, ThatNamesItsSeparatorAndEndsInEmptyRowsIsImportedAlike) {
  ASSERT_TRUE(writeBytes(request.path + "/Articoli.csv",
                         "sep=|\nId|IdCategoria|Codice|Descrizione|iva|Vendita1\n42|7|T1|Tazza|22|3,50\n|||||\n"));
  importWith("0100100");
  EXPECT_EQ(rows("SELECT codice, titolo, prezzo FROM articoli"), "T1|Tazza|3.5\n");
}

TEST_F(CsvFolder, WithMoreThanASheetMayHoldIsRefusedWithTheReason) {
  const std::string columns(1024, ';');
  ASSERT_TRUE(writeBytes(request.path + "/Articoli.csv",
                         "Id;IdCategoria;Codice;Descrizione;iva;Vendita1\n1;7;A;B;22;1;" + columns + "x\n"));
  EXPECT_TRUE(isAccountingSource(request.path));
  const auto plan = previewAccounting(session, settings, request);
  ASSERT_FALSE(plan);
  EXPECT_EQ(plan.error().what,
            "Non è stato possibile importare i dati (Il foglio \"Articoli.csv\" è troppo grande: dividerlo in più "
            "fogli)");
  EXPECT_EQ(import(), AccountingEnd::NotDone);
  EXPECT_EQ(user.texts().back(), "Non è stato possibile importare i dati");
  EXPECT_EQ(allRows(), "");
}

TEST_F(CsvFolder, WithoutItsTwoFilesIsNoSource) {
  EXPECT_TRUE(isAccountingSource(request.path));
  ASSERT_TRUE(deleteFile(request.path + "/Articoli.csv"));
  EXPECT_FALSE(isAccountingSource(request.path));
  EXPECT_EQ(import(), AccountingEnd::NotDone);
  EXPECT_EQ(user.texts()[0], "Il database \"" + request.path + "\" non può essere aperto");
}

TEST_F(CsvFolder, AFileThatIsCutOffAnywhereIsReadOrRefusedButNeverHalfARow) {
  const std::string whole = readBytes(request.path + "/Articoli.csv").value();
  for (std::size_t size = 0; size < whole.size(); ++size) {
    ASSERT_TRUE(writeBytes(request.path + "/Articoli.csv", whole.substr(0, size)));
    const auto plan = previewAccounting(session, settings, request);
    EXPECT_LE(plan ? plan->articles.size() : 0, 1U) << size;
  }
}

TEST_F(AccountingShop, AFileOfAnotherKindIsNoSource) {
  request.path = root / "testo.mdb";
  ASSERT_TRUE(writeBytes(request.path, "niente"));
  EXPECT_FALSE(isAccountingSource(request.path));
  EXPECT_FALSE(isAccountingSource(root / "manca"));
  EXPECT_FALSE(isAccountingSource(shop + "/catalog.mdb"));
  EXPECT_TRUE(isAccountingSource(source));
}

}  // namespace
}  // namespace kv::test
