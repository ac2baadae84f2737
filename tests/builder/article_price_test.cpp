// The price of an article in every form it takes, computed by hand from the rules.

#include "builder/article/article_price.h"

#include <gtest/gtest.h>

#include "support/temp_shop.h"

namespace kv::test {
namespace {

PriceRules rules() {
  PriceRules rules;
  rules.form.label = "EUR ";
  rules.form.label2 = "USD ";
  rules.form.sepdec = ",";
  rules.form.sepmigl = ".";
  rules.showDiscount = true;
  rules.vatLabel = "IVA";
  return rules;
}

PriceTexts texts(const PriceRules& rules, const PriceSource& source, const std::string& mark = "") {
  const auto made = priceTexts(rules, source, mark);
  EXPECT_TRUE(made.has_value());
  return made.value_or(PriceTexts());
}

TEST(ArticlePriceTest, WithoutDiscountTheListPriceIsThePriceAndNothingIsStruck) {
  const PriceTexts made = texts(rules(), {money("1234.5"), {}, 0.2F, 1.0F});
  EXPECT_EQ(made.listino, "EUR 1.234,50");
  EXPECT_EQ(made.prezzo, "EUR 1.234,50");
  EXPECT_EQ(made.iva, "+ IVA 20%");
  EXPECT_EQ(made.cartPrice, "1234.50");
  EXPECT_EQ(made.cartVat, ".2");
  EXPECT_EQ(made.offerta, "");
  EXPECT_EQ(made.cambio, "");
}

TEST(ArticlePriceTest, PricesWithVatIncludedCarryNoNote) {
  PriceRules included = rules();
  included.vatIncluded = true;
  const PriceTexts made = texts(included, {money("100"), {}, 0.22F, 1.0F});
  EXPECT_EQ(made.prezzo, "EUR 122,00");
  EXPECT_EQ(made.iva, "");
  EXPECT_EQ(made.cartVat, "0");
}

TEST(ArticlePriceTest, ARateOfZeroHasNoNote) {
  const PriceTexts made = texts(rules(), {money("1"), {}, 0.0F, 1.0F});
  EXPECT_EQ(made.iva, "");
  EXPECT_EQ(made.cartVat, "0");
}

TEST(ArticlePriceTest, AnOfferPriceWinsOverTheDepartmentDiscount) {
  const PriceTexts made = texts(rules(), {money("100"), money("80"), 0.0F, 0.5F}, "MARK");
  EXPECT_EQ(made.listino, "<strike>EUR 100,00</strike>");
  EXPECT_EQ(made.prezzo, "EUR 80,00");
  EXPECT_EQ(made.offerta, "MARK - 20% ");
}

TEST(ArticlePriceTest, ADiscountPercentHasTwoDecimalsInTheShopsNotation) {
  EXPECT_EQ(texts(rules(), {money("3"), money("2"), 0.0F, 1.0F}).offerta, " - 33,33% ");
  EXPECT_EQ(texts(rules(), {money("1000"), money("998.5"), 0.0F, 1.0F}).offerta, " - ,15% ");
}

TEST(ArticlePriceTest, AnOfferAtOrAboveTheListPriceStrikesItButPrintsNoPercentage) {
  for (const char* offer : {"100", "120"}) {
    const PriceTexts made = texts(rules(), {money("100"), money(offer), 0.0F, 1.0F}, "M");
    EXPECT_EQ(made.listino, "<strike>EUR 100,00</strike>");
    EXPECT_EQ(made.offerta, "M");
  }
}

TEST(ArticlePriceTest, AnOfferBelowAListPriceOfZeroPrintsNoPercentage) {
  const PriceTexts made = texts(rules(), {money("0"), money("-5"), 0.0F, 1.0F}, "M");
  EXPECT_EQ(made.listino, "<strike>EUR 0,00</strike>");
  EXPECT_EQ(made.offerta, "M");
}

TEST(ArticlePriceTest, AnOfferOfZeroIsAnOffer) {
  const PriceTexts made = texts(rules(), {money("10"), money("0"), 0.0F, 1.0F});
  EXPECT_EQ(made.prezzo, "EUR 0,00");
  EXPECT_EQ(made.offerta, " - 100% ");
}

TEST(ArticlePriceTest, TheDepartmentDiscountReplacesTheOfferMark) {
  const PriceTexts made = texts(rules(), {money("100"), {}, 0.0F, 0.9F}, "MARK");
  EXPECT_EQ(made.listino, "<strike>EUR 100,00</strike>");
  EXPECT_EQ(made.prezzo, "EUR 90,00");
  EXPECT_EQ(made.offerta, " - 10% ");
}

TEST(ArticlePriceTest, WithoutTheSettingNoPercentageIsShownAndTheMarkStays) {
  PriceRules silent = rules();
  silent.showDiscount = false;
  EXPECT_EQ(texts(silent, {money("100"), {}, 0.0F, 0.9F}, "MARK").offerta, "MARK");
  EXPECT_EQ(texts(silent, {money("100"), money("50"), 0.0F, 0.9F}, "MARK").offerta, "MARK");
}

TEST(ArticlePriceTest, VatIsComputedOnTheDiscountedPrice) {
  PriceRules included = rules();
  included.vatIncluded = true;
  const PriceTexts made = texts(included, {money("100"), {}, 0.2F, 0.9F});
  EXPECT_EQ(made.listino, "<strike>EUR 120,00</strike>");
  EXPECT_EQ(made.prezzo, "EUR 108,00");
  EXPECT_EQ(made.cartPrice, "108.00");
}

// 123456.78 x 0.1 in double is 12345.678; the nearest single is 12345.677734375, whose four decimals are 12345.6777.
TEST(ArticlePriceTest, AProductIsRoundedThroughSinglePrecision) {
  EXPECT_EQ(multiplyThroughSingle(money("123456.78"), 0.1F), money("12345.6777"));
  PriceRules included = rules();
  included.vatIncluded = true;
  // The single next to 0.22 is 0.219999998807907; times 98765432.1 it is 21728394.94..., and singles of that size are
  // two apart: 21728394. The cents of the tax are lost on purpose.
  EXPECT_EQ(texts(included, {money("98765432.1"), {}, 0.22F, 1.0F}).cartPrice, "120493826.10");
}

TEST(ArticlePriceTest, WithoutDecimalsAmountsAreWholeEverywhere) {
  PriceRules whole = rules();
  whole.form.decimals = false;
  const PriceTexts made = texts(whole, {money("1234.5"), {}, 0.0F, 1.0F});
  EXPECT_EQ(made.prezzo, "EUR 1.235");
  EXPECT_EQ(made.cartPrice, "1235");
}

TEST(ArticlePriceTest, EnglishNotationSwapsTheSeparators) {
  PriceRules english = rules();
  english.form.sepdec = ".";
  english.form.sepmigl = ",";
  EXPECT_EQ(texts(english, {money("1234567.891"), {}, 0.0F, 1.0F}).prezzo, "EUR 1,234,567.89");
}

TEST(ArticlePriceTest, TheSecondCurrencyIsThePriceDividedByTheRate) {
  PriceRules second = rules();
  second.secondCurrency = true;
  second.exchangeRate = 0.5F;
  EXPECT_EQ(texts(second, {money("10"), {}, 0.0F, 1.0F}).cambio, "USD 20,00");
  for (const float none : {0.0F, -2.0F}) {
    second.exchangeRate = none;
    EXPECT_EQ(texts(second, {money("10"), {}, 0.0F, 1.0F}).cambio, "") << none;
  }
}

TEST(ArticlePriceTest, AnAmountBeyondTheRangeOfMoneyHasNoTexts) {
  PriceRules included = rules();
  included.vatIncluded = true;
  EXPECT_FALSE(priceTexts(included, {money("900000000000000"), {}, 0.22F, 1.0F}, "").has_value());
}

TEST(ArticlePriceTest, TheShopFactorIgnoresADiscountOutOfRange) {
  EXPECT_EQ(shopFactor("0"), 1.0F);
  EXPECT_EQ(shopFactor("25"), 0.75F);
  EXPECT_EQ(shopFactor("100"), 0.0F);
  EXPECT_EQ(shopFactor("150"), 1.0F);
  EXPECT_EQ(shopFactor("-1"), 1.0F);
  EXPECT_EQ(shopFactor(""), 1.0F);
  EXPECT_EQ(discountFactor(10.0F, 0.5F), 0.45F);
}

TEST(ArticlePriceTest, ANegativeDiscountOfADepartmentIsASurcharge) {
  EXPECT_EQ(discountFactor(-10.0F, 1.0F), 1.1F);
  EXPECT_EQ(discountFactor(-10.0F, 0.5F), 0.55F);
  const PriceTexts made = texts(rules(), {money("100"), {}, 0.0F, discountFactor(-10.0F, 1.0F)});
  EXPECT_EQ(made.prezzo, "EUR 110,00");
  EXPECT_EQ(made.listino, "<strike>EUR 100,00</strike>");
}

}  // namespace
}  // namespace kv::test
