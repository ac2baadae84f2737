#include "builder/article/article_price.h"

#include "platform/numbers/number_format.h"

namespace kv {

namespace {

constexpr int percentDecimals = 2;

std::optional<Money> withVat(Money price, float rate, bool included) {
  if (!included) return price;
  const auto vat = multiplyThroughSingle(price, rate);
  return vat ? add(price, *vat) : std::nullopt;
}

std::string struck(const std::string& text) { return "<strike>" + text + "</strike>"; }

// " - 20% ": the space after the minus sign comes from the number format.
template <class Number>
std::string discountText(const CurrencyForm& form, Number percent) {
  return " -" + form.SepDecimale(plainNumber(percent)) + "% ";
}

// A price from 0 has no percentage that it is lower by.
std::string offerPercent(const PriceRules& rules, Money before, Money now) {
  if (!rules.showDiscount || now >= before || before == Money()) return {};
  const double percent = (1.0 - now.toDouble() / before.toDouble()) * 100.0;
  return discountText(rules.form, roundHalfEven(percent, percentDecimals));
}

std::string departmentPercent(const PriceRules& rules, float factor) {
  const double percent = roundHalfEven(static_cast<double>(100.0F - 100.0F * factor), percentDecimals);
  return discountText(rules.form, static_cast<float>(percent));
}

// What the visitor pays: the offer, else the list price less the discount of the department.
std::optional<Money> chargedPrice(const PriceRules& rules, const PriceSource& source) {
  if (source.offerPrice) return withVat(*source.offerPrice, source.vatRate, rules.vatIncluded);
  if (source.factor == 1.0F) return withVat(source.price, source.vatRate, rules.vatIncluded);
  const auto discounted = multiplyThroughSingle(source.price, source.factor);
  return discounted ? withVat(*discounted, source.vatRate, rules.vatIncluded) : std::nullopt;
}

std::string vatNote(const PriceRules& rules, float rate) {
  if (rules.vatIncluded || rate == 0) return {};
  return "+ " + rules.vatLabel + plainNumber(rate * 100.0F) + "%";
}

std::string secondaryPrice(const PriceRules& rules, Money price) {
  if (!rules.secondCurrency || !(rules.exchangeRate > 0)) return {};
  return rules.form.secondaryText(price.toDouble() / static_cast<double>(rules.exchangeRate));
}

}  // namespace

std::optional<PriceTexts> priceTexts(const PriceRules& rules, const PriceSource& source, std::string offerMark) {
  const auto listPrice = withVat(source.price, source.vatRate, rules.vatIncluded);
  const auto price = chargedPrice(rules, source);
  if (!listPrice || !price) return std::nullopt;
  PriceTexts texts;
  texts.offerta = std::move(offerMark);
  texts.iva = vatNote(rules, source.vatRate);
  const bool isReduced = source.offerPrice || source.factor != 1.0F;
  texts.prezzo = rules.form.primaryText(*price);
  texts.listino = isReduced ? struck(rules.form.primaryText(*listPrice)) : texts.prezzo;
  if (source.offerPrice) {
    texts.offerta += offerPercent(rules, *listPrice, *price);
  } else if (source.factor != 1.0F && rules.showDiscount) {
    texts.offerta = departmentPercent(rules, source.factor);
  }
  texts.cartPrice = rules.form.NumeroJS(*price);
  texts.cartVat = rules.vatIncluded ? "0" : trimmedNumber(source.vatRate);
  texts.cambio = secondaryPrice(rules, *price);
  return texts;
}

}  // namespace kv
