#include "builder/article/article_price.h"

#include "platform/numbers/number_form.h"

namespace kv {

namespace {

constexpr int percentDecimals = 2;

std::optional<Money> withVat(Money price, float rate, bool included) {
  if (!included) return price;
  const auto vat = multiplyThroughSingle(price, rate);
  return vat ? add(price, *vat) : std::nullopt;
}

std::string struck(const std::string& text) { return "<strike>" + text + "</strike>"; }

// " - 20% ": the blank behind the minus sign comes from the number form.
template <class Number>
std::string discountText(const CurrencyForm& form, Number percent) {
  return " -" + form.SepDecimale(plainNumber(percent)) + "% ";
}

}  // namespace

std::optional<PriceTexts> priceTexts(const PriceRules& rules, const PriceSource& source, std::string offerMark) {
  PriceTexts texts;
  texts.offerta = std::move(offerMark);
  auto price = withVat(source.price, source.vatRate, rules.vatIncluded);
  if (!price) return std::nullopt;
  if (!rules.vatIncluded && source.vatRate != 0) {
    texts.iva = "+ " + rules.vatLabel + plainNumber(source.vatRate * 100.0F) + "%";
  }
  texts.prezzo = rules.form.primaryText(*price);
  texts.listino = texts.prezzo;

  if (source.offerPrice) {
    texts.listino = struck(texts.prezzo);
    const Money before = *price;
    price = withVat(*source.offerPrice, source.vatRate, rules.vatIncluded);
    if (!price) return std::nullopt;
    if (rules.showDiscount && before > *price && before != Money()) {
      const double percent = (1.0 - price->toDouble() / before.toDouble()) * 100.0;
      texts.offerta += discountText(rules.form, roundHalfEven(percent, percentDecimals));
    }
    texts.prezzo = rules.form.primaryText(*price);
  } else if (source.factor != 1.0F) {
    texts.listino = struck(texts.prezzo);
    const auto discounted = multiplyThroughSingle(source.price, source.factor);
    price = discounted ? withVat(*discounted, source.vatRate, rules.vatIncluded) : std::nullopt;
    if (!price) return std::nullopt;
    if (rules.showDiscount) {
      const double percent = roundHalfEven(static_cast<double>(100.0F - 100.0F * source.factor), percentDecimals);
      texts.offerta = discountText(rules.form, static_cast<float>(percent));
    }
    texts.prezzo = rules.form.primaryText(*price);
  }

  texts.cartPrice = rules.form.NumeroJS(*price);
  texts.cartVat = rules.vatIncluded ? "0" : trimmedNumber(source.vatRate);
  if (rules.secondCurrency && rules.exchangeRate > 0) {
    texts.cambio = rules.form.secondaryText(price->toDouble() / static_cast<double>(rules.exchangeRate));
  }
  return texts;
}

}  // namespace kv
