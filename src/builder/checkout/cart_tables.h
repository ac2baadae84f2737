#pragma once
// What the cart in the browser knows of the shop: countries, payment methods, currencies, the rules of search and of
// the order form. Each is a ready text in a column of the page tag row, and none depends on the page it is shown on.

#include <string>

#include "builder/page/page_tags.h"
#include "commerce/shipping/currency_form.h"
#include "commerce/shipping/shipping_tables.h"
#include "platform/database/database.h"
#include "platform/database/field_row.h"
#include "platform/ports/result.h"

namespace kv {

/// MakePaesi (make countries): the drop-down of the countries, by name with `alfabetico` set, else in the order in
/// which they were entered. Failures as Database::prepare and Statement::step.
Result<std::string> MakePaesi(Database& catalogue, const FieldRow& pagamento);

/// MakePagamenti (make payments): the drop-down of the active methods under their names in the language of `pagamento`.
std::string MakePagamenti(const FieldRow& pagamento);

/// MakeTipoSel (make the selected kind): the slot that the cart starts with, counted from 1: active methods before the
/// preselected one x 8 + the zone of the preselected country; 1 when that isn't from 1 to 32. Failures as MakePaesi.
Result<std::string> MakeTipoSel(Database& catalogue, const FieldRow& pagamento);

/// JavaValuta (currency for JavaScript): the variables of currencies, notation and discount by order amount, one
/// assignment per line (CR LF). A rate of 0 is written as 1 and turns the second currency off.
std::string JavaValuta(const FieldRow& generale, const CurrencyForm& form);

/// MakeObbligatori (make mandatory): the fields of the order form that have to be filled in, of the bit mask
/// `campi_obbligatori`; lines parted by CR LF, empty when the defaults of the form hold.
std::string MakeObbligatori(const FieldRow& generale);

/// The texts of the shipping costs, computed once per build.
struct ShippingTables {
  AmountTables amounts;           ///< by order amount
  std::string java_importi_peso;  ///< by weight
};
/// Computes both kinds of costs. Failures as MakeImporti.
Result<ShippingTables> makeShippingTables(Database& catalogue, const FieldRow& pagamento, const ShippingPrice& price);

/// What the cart's columns are made of, for one language.
struct CartTags {
  Database& catalogue;             ///< for the countries
  const FieldRow& generale;        ///< in the language view
  const FieldRow& pagamento;       ///< in the language view
  const CurrencyForm& form;        ///< how amounts are written
  const ShippingTables& shipping;  ///< of this build
  float shippingVat = 0;           ///< ivaspese as a fraction
};

/// Fills the cart's columns. Failures as MakePaesi; the row is then filled in part.
Result<> fillCartTags(PageTagRow& row, const CartTags& tags);

}  // namespace kv
