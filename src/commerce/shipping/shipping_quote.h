#pragma once
// What the cart would ask for shipping: read from the arrays that a build gives it, as the cart's script reads them.

#include <string>
#include <vector>

#include "commerce/shipping/currency_form.h"
#include "platform/database/database.h"
#include "platform/numbers/money.h"
#include "platform/ports/result.h"

namespace kv {

/// An order to be tried.
struct ShippingTrial {
  Money amount;         ///< of the goods, discount subtracted
  double weight = 0;    ///< in the unit of the tables
  std::string country;  ///< strID
  int method = 1;       ///< 1 to 4
};

/// The answer.
struct ShippingQuote {
  bool allowed = false;  ///< the method is offered, and available in the zone of the country
  Money cost;            ///< as the cart shows it
  Money vat;             ///< added to it, or taken off (negative) in a zone without VAT where prices include it
  Money total;           ///< of both
};

/// Computes what the cart asks for an order. A country without a zone and a method that isn't offered are not allowed.
/// Failures as MakeImporti.
Result<ShippingQuote> quoteShipping(Database& catalogue, const ShippingTrial& trial);

/// The answer as the merchant reads it, in the shop's own notation.
std::string quoteText(const ShippingQuote& quote, const CurrencyForm& form);

/// One thing that the merchant may have overlooked.
struct ShippingGap {
  std::string text;       ///< a sentence for the merchant
  bool isClosed = false;  ///< nothing can be sent to the zone; otherwise its steps are not in order
};
/// What shippingGaps tells, with what it means for a customer.
std::vector<ShippingGap> findShippingGaps(Database& catalogue);
/// What the merchant may have overlooked, a sentence each: a zone with countries and without an available method, and
/// steps that are not in ascending order (the build sorts them). Empty: nothing.
std::vector<std::string> shippingGaps(Database& catalogue);

}  // namespace kv
