// The line of options, the variants and their choice, and the rounding of prices.
#include "accounting_shop.h"
#include "import/accounting/accounting_choice.h"
#include "import/accounting/accounting_price.h"

namespace kv::test {
namespace {

TEST(AccountingOptionsTest, ALineKeepsEachDigitOfItsGeneration) {
  for (const char* line : {"1231013", "0190109"}) {
    EXPECT_EQ(accountingLine(readAccountingOptions(line, 2), 2), line);
  }
  EXPECT_EQ(accountingLine(readAccountingOptions("12310130101", 3), 3), "12310130101");
}

TEST(AccountingOptionsTest, AShortOrGarbledLineKeepsDefaultsForWhatIsMissing) {
  EXPECT_EQ(accountingLine(readAccountingOptions("", 3), 3), "01001101000");
  EXPECT_EQ(accountingLine(readAccountingOptions("12", 2), 2), "1200110");
  EXPECT_EQ(accountingLine(readAccountingOptions("x?\xC3\xA8--/:1", 3), 3), "01001101100");
  EXPECT_EQ(readAccountingOptions("00", 2).price, 1) << "there is no column Vendita0";
}

TEST(AccountingOptionsTest, AnExistingArticleIsUpdatedForAnyDigitButZero) {
  EXPECT_TRUE(readAccountingOptions("0100200", 2).update);
  EXPECT_FALSE(readAccountingOptions("0100000", 2).update);
}

TEST(AccountingOptionsTest, WithoutATargetPriceListOkSaysSo) {
  TempFolder folder;
  const AccountingVariant& variant = accountingVariants()[1];
  EXPECT_EQ(refusalOf(savedAccountingOptions(folder.path(), variant)), "Impostare il listino di destinazione");
  ASSERT_TRUE(saveAccountingLine(folder.path(), variant, "0100104"));
  EXPECT_EQ(savedAccountingOptions(folder.path(), variant).listino, 4);
  EXPECT_EQ(refusalOf(savedAccountingOptions(folder.path(), variant)), "");
}

TEST(AccountingVariantsTest, TheInstalledOnesAreThoseWithAPath) {
  MemorySettings settings;
  EXPECT_TRUE(installedVariants(settings).empty());
  ASSERT_TRUE(storeAccountingPath(settings, accountingVariants()[5], "/dati/nomi.mdb"));
  ASSERT_TRUE(storeAccountingPath(settings, accountingVariants()[1], "/dati/og.mdb"));
  const auto installed = installedVariants(settings);
  ASSERT_EQ(installed.size(), 2U);
  EXPECT_EQ(installed[0].key, "OGCASSA2002");
  EXPECT_EQ(installed[1].key, "OGMA2002V3");
}

TEST(AccountingVariantsTest, ThePackageIsKnownByItsProgramOrItsDataAndInstalledByItsDataAlone) {
  MemorySettings settings;
  EXPECT_FALSE(isAccountingKnown(settings));
  ASSERT_TRUE(settings.set("OGV3/AppPath", "AppPath", "C:\\Orsa"));
  EXPECT_TRUE(isAccountingKnown(settings));
  EXPECT_TRUE(installedVariants(settings).empty());
  MemorySettings others;
  ASSERT_TRUE(storeAccountingPath(others, accountingVariants()[2], "/dati/nomi.mdb"));
  EXPECT_TRUE(isAccountingKnown(others));
}

TEST(AccountingChoiceTest, APathIsStoredWhenTheChoiceIsApplied) {
  MemorySettings settings;
  AccountingChoice choice;
  choice.load(settings);
  EXPECT_EQ(choice.refusal(), "Selezionare una variante di Orsa Gestionale");
  choice.setPath(3, "/dati/og.mdb");
  EXPECT_EQ(choice.chosen(), 3);
  EXPECT_EQ(choice.refusal(), "");
  EXPECT_TRUE(installedVariants(settings).empty());
  ASSERT_TRUE(choice.apply(settings));
  EXPECT_EQ(accountingPath(settings, accountingVariants()[3]), "/dati/og.mdb");
}

std::string priceOf(const Value& price, const Value& vat) {
  const auto amount = importedPrice(price, vat);
  return amount ? asText(Value(*amount)) : "(none)";
}

TEST(ImportedPriceTest, ATieOfTheExactProductGoesToTheEvenHundredth) {
  EXPECT_EQ(priceOf(1.005, Null{}), "1");
  EXPECT_EQ(priceOf(1.015, Null{}), "1.02");
  EXPECT_EQ(priceOf(2.675, Null{}), "2.68");
  EXPECT_EQ(priceOf(-1.005, Null{}), "-1");
  EXPECT_EQ(priceOf(1.005000001, Null{}), "1");
  EXPECT_EQ(priceOf(1.00500001, Null{}), "1.01");
}

TEST(ImportedPriceTest, VatIsAddedBeforeTheRounding) {
  EXPECT_EQ(priceOf(std::int64_t{10}, std::int64_t{22}), "12.2");
  EXPECT_EQ(priceOf(0.25, std::int64_t{10}), ".28") << "0.275 is a tie";
  EXPECT_EQ(priceOf(0.35, std::int64_t{10}), ".38") << "0.385 is a tie";
  EXPECT_EQ(priceOf(std::string("12.34567"), std::string("22")), "15.06");
}

TEST(ImportedPriceTest, NullAndAnEmptyTextAreZeroAndOtherTextsNone) {
  EXPECT_EQ(priceOf(Null{}, Null{}), "0");
  EXPECT_EQ(priceOf(std::string(" "), Null{}), "0");
  EXPECT_EQ(priceOf(std::string("gratis"), Null{}), "(none)");
  EXPECT_EQ(priceOf(1e30, Null{}), "(none)");
}

}  // namespace
}  // namespace kv::test
