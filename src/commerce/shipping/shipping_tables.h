#pragma once
// The merchant's shipping costs as the arrays of the cart. All of them have 32 values, indexed by slot: (position of
// the method among the active ones, from 0) x 8 + zone - 1. They are the same on every page and in every language, so
// a build computes them once.

#include <string>

#include "commerce/shipping/currency_form.h"
#include "platform/database/database.h"
#include "platform/database/field_row.h"
#include "platform/ports/result.h"

namespace kv {

/// Payment methods that a shop can have, and zones that it can ship to.
inline constexpr int paymentMethods = 4;
inline constexpr int shippingZones = 8;

/// How an amount of shipping is written: grossed up by `aliquota`, in the form of the primary currency.
struct ShippingPrice {
  const CurrencyForm& form;
  float aliquota = 0;  ///< VAT rate of shipping, a fraction; 0 where prices are shown without VAT

  /// The gross amount as a number for scripts. Other with the number overflowFailure when it leaves the range of Money.
  Result<std::string> text(Money amount) const;
};

/// The tags of the costs by order amount.
struct AmountTables {
  std::string java_importi;    ///< impord1, impspese1, impord2, impspese2, impspese3
  std::string java_permessi;   ///< SpOk: "1" or "0" for each filled slot; IvaOk: the same for each zone
  std::string java_iva;        ///< "totiva = 0;" when the preselected zone is free of VAT
  std::string java_iva_spese;  ///< "spediva = 0;" likewise
};

/// MakeImporti (make amounts): reads zona1 to zona8 for the active methods of `pagamento`. Other when a zone lacks a
/// column, Corrupt when it lacks its row, and as ShippingPrice::text.
Result<AmountTables> MakeImporti(Database& catalogue, const FieldRow& pagamento, const ShippingPrice& price);

/// MakeImportiPeso (make amounts by weight): the arrays imppeso1 to imppeso9 and impspp1 to impspp10, sorted by weight
/// within each slot. Failures as MakeImporti.
Result<std::string> MakeImportiPeso(Database& catalogue, const FieldRow& pagamento, const ShippingPrice& price);

}  // namespace kv
