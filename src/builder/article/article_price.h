#pragma once
// The prices of one article as texts and as what the cart receives, from list price, offer, department discount, VAT
// and second currency.

#include <optional>
#include <string>

#include "builder/values/currency_form.h"
#include "platform/numbers/money.h"

namespace kv {

/// The settings the prices of every article go by.
struct PriceRules {
  CurrencyForm form;
  bool vatIncluded = false;     ///< ivacompresa
  bool showDiscount = false;    ///< vis_sconto
  bool secondCurrency = false;  ///< usa_cambio
  float exchangeRate = 0;       ///< cambio
  std::string vatLabel;         ///< the word `carrello_iva` of the language
};

/// What the price of one article depends on.
struct PriceSource {
  Money price;
  std::optional<Money> offerPrice;  ///< set when the column is not null, whatever the offer's flag says
  float vatRate = 0;                ///< aliquota, a fraction
  float factor = 1;                 ///< fattore di reparto
};

struct PriceTexts {
  std::string listino, prezzo, cambio;
  std::string iva;
  std::string offerta;  ///< the offer mark given in, with the discount text appended or in its place
  std::string cartPrice, cartVat;
};

/// Works out the texts. `offerMark` is what column `offerta` starts as. Empty when an amount leaves the range of Money.
std::optional<PriceTexts> priceTexts(const PriceRules& rules, const PriceSource& source, std::string offerMark);

}  // namespace kv
