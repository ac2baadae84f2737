#pragma once
// The prices of one article as texts and as what the cart receives, from list price, offer, department discount, VAT
// and second currency. Texts are complete: the pages print them as they are.

#include <optional>
#include <string>

#include "commerce/shipping/currency_form.h"
#include "platform/numbers/money.h"

namespace kv {

/// The settings the prices of every article go by.
struct PriceRules {
  CurrencyForm form;            ///< how amounts are written
  bool vatIncluded = false;     ///< ivacompresa: prices are shown with VAT added
  bool showDiscount = false;    ///< vis_sconto: discounts are shown in percent
  bool secondCurrency = false;  ///< usa_cambio
  float exchangeRate = 0;       ///< cambio: primary currency for one unit of the second; 0 turns it off
  std::string vatLabel;         ///< the word `carrello_iva` of the language
};

/// What the price of one article depends on.
struct PriceSource {
  Money price;                      ///< list price, without VAT
  std::optional<Money> offerPrice;  ///< set when the column is not null, whatever the offer's flag says
  float vatRate = 0;                ///< aliquota, a fraction
  float factor = 1;                 ///< fattore di reparto: what the department's discount leaves of a price
};

/// The columns of the derived row that have to do with the price.
struct PriceTexts {
  std::string listino;    ///< list price, struck out when the visitor pays another one
  std::string prezzo;     ///< what the visitor pays
  std::string cambio;     ///< the same in the second currency; empty without one
  std::string iva;        ///< the note "+ IVA 20%"; empty when VAT is included or 0
  std::string offerta;    ///< the offer mark, followed by the offer's percentage or replaced by the department's
  std::string cartPrice;  ///< what the visitor pays, as a number for scripts
  std::string cartVat;    ///< the rate the cart adds, "0" when VAT is included
};

/// Computes the texts. An offer wins over the department's discount. `offerMark` is what column `offerta` starts as.
/// Empty when an amount leaves the range of Money.
std::optional<PriceTexts> priceTexts(const PriceRules& rules, const PriceSource& source, std::string offerMark);

}  // namespace kv
