#pragma once
// What the cart in the browser knows of the shop: countries, payment methods, currencies, the rules of search and of
// the order form. Each is a ready text in a column of the page tag row.

#include <string>

#include "builder/checkout/shipping_tables.h"
#include "builder/page/page_tags.h"
#include "builder/values/currency_form.h"
#include "builder/values/field_row.h"
#include "platform/database/database.h"

namespace kv {

/// MakePaesi (make countries): the drop-down of the countries, by name with `alfabetico` set, else as they were
/// entered. Throws RunFailure when the table can't be read.
std::string MakePaesi(Database& catalogue, const FieldRow& pagamento);

/// MakePagamenti (make payments): the drop-down of the active methods under their names in the language of `pagamento`.
std::string MakePagamenti(const FieldRow& pagamento);

/// MakeTipoSel (make the selected kind): the slot that the cart starts with, counted from 1: active methods before the
/// preselected one x 8 + the zone of the preselected country; 1 when that isn't from 1 to 32. Failures as MakePaesi.
std::string MakeTipoSel(Database& catalogue, const FieldRow& pagamento);

/// JavaValuta (currency for JavaScript): the variables of currencies, notation and discount by order amount.
std::string JavaValuta(const FieldRow& generale, const CurrencyForm& form);

/// MakeObbligatori (make mandatory): the fields of the order form that have to be filled in, of the bit mask
/// `campi_obbligatori`.
std::string MakeObbligatori(const FieldRow& generale);

/// The texts of the shipping costs, worked out once per build.
struct ShippingTables {
  AmountTables amounts;
  std::string java_importi_peso;
};
ShippingTables makeShippingTables(Database& catalogue, const FieldRow& pagamento, const ShippingPrice& price);

/// What the cart's columns are made of, for one language.
struct CartTags {
  Database& catalogue;
  const FieldRow& generale;   ///< in the language view
  const FieldRow& pagamento;  ///< in the language view
  const CurrencyForm& form;
  const ShippingTables& shipping;
  float shippingVat = 0;  ///< ivaspese as a fraction
};

/// Fills the cart's columns, which are the same on all pages of a language.
void fillCartTags(PageTagRow& row, const CartTags& tags);

}  // namespace kv
