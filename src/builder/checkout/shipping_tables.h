#pragma once
// The merchant's shipping costs as the arrays of the cart. All of them have 32 values, indexed by slot: (position of
// the method among the active ones, from 0) x 8 + zone - 1. They are the same on every page and in every language, so
// a build works them out once.

#include <string>

#include "builder/values/currency_form.h"
#include "builder/values/field_row.h"
#include "platform/database/database.h"

namespace kv {

inline constexpr int paymentMethods = 4;
inline constexpr int shippingZones = 8;

/// How an amount of shipping is written: grossed up by `aliquota` (a fraction), in the form of the primary currency.
struct ShippingPrice {
  const CurrencyForm& form;
  float aliquota = 0;

  /// Throws RunFailure for an amount that outgrows money.
  std::string text(Money amount) const;
};

/// The tags of the costs by order amount.
struct AmountTables {
  std::string java_importi;    ///< impord1, impspese1, impord2, impspese2, impspese3
  std::string java_permessi;   ///< SpOk: a letter for each filled slot; IvaOk: a letter for each zone
  std::string java_iva;        ///< "totiva = 0;" when the preselected zone is free of VAT
  std::string java_iva_spese;  ///< "spediva = 0;" likewise
};

/// MakeImporti (make amounts): reads zona1 to zona8 for the active methods of `pagamento`. Throws RunFailure when a
/// zone lacks a column or its row.
AmountTables MakeImporti(Database& catalogue, const FieldRow& pagamento, const ShippingPrice& price);

/// MakeImportiPeso (make amounts by weight): the arrays imppeso1 to imppeso9 and impspp1 to impspp10, sorted by weight
/// within each slot. Failures as MakeImporti.
std::string MakeImportiPeso(Database& catalogue, const FieldRow& pagamento, const ShippingPrice& price);

}  // namespace kv
