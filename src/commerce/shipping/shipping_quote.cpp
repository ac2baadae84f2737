#include "commerce/shipping/shipping_quote.h"

#include <cmath>

#include "commerce/shipping/shipping_tables.h"
#include "platform/database/field_row.h"
#include "platform/numbers/number_format.h"

namespace kv {
namespace {

constexpr double parts = 10000;        // of a limit: thresholds and weights are compared in ten-thousandths
constexpr double rateParts = 1000000;  // of a rate
constexpr int centsOfUnit = 100;

/// What a build hands to the cart, and the rates that go with it.
struct CartShipping {
  AmountTables amounts;
  std::string weights;
  float vat = 0;             // a fraction
  bool vatIncluded = false;  // prices are shown with VAT
  bool byWeight = false;
  int unit = 1;  // smallest units of the currency in one of its units
};

/// A decimal of the tables as a whole number of its parts, rounded half up.
double wholeParts(const std::string& text, double per) { return std::floor(toNumber(text).value_or(0) * per + 0.5); }

/// An amount by millionths, rounded half up; in two steps, as the cart's script does it.
double partOf(double amount, double millionths) {
  const double high = std::floor(amount / rateParts) * millionths;
  return high + std::floor((std::fmod(amount, rateParts) * millionths + rateParts / 2) / rateParts);
}

/// The value of a slot in the array `name` of a script.
std::string valueAt(const std::string& script, const std::string& name, std::size_t slot) {
  const std::string opening = name + "=new Array(";
  auto at = script.starts_with(opening) ? 0 : script.find("\n" + opening);
  if (at == std::string::npos) return {};
  at = script.find('(', at) + 1;
  for (; slot > 0; --slot) at = script.find(',', at) + 1;
  return script.substr(at, script.find_first_of(",)", at) - at);
}

/// The sign of an index in "var NAME='...';"; empty after its end.
std::string_view signAt(std::string_view script, std::string_view name, std::size_t index) {
  const auto opening = script.find(name);
  if (opening == std::string_view::npos) return {};
  const auto from = script.find('\'', opening) + 1;
  const auto end = script.find('\'', from);
  return from + index < end ? script.substr(from + index, 1) : std::string_view();
}

Result<CartShipping> readCart(Database& catalogue, const FieldRow& generale, const FieldRow& pagamento) {
  const CurrencyForm form(generale);
  CartShipping cart;
  cart.vat = pagamento.single("ivaspese") / 100.0F;
  cart.vatIncluded = generale.flag("ivacompresa");
  cart.byWeight = pagamento.flag("imppeso");
  cart.unit = form.decimals ? centsOfUnit : 1;
  const ShippingPrice price{form, cart.vatIncluded ? cart.vat : 0.0F};
  auto amounts = MakeImporti(catalogue, pagamento, price);
  if (!amounts) return fail(amounts.error());
  auto weights = MakeImportiPeso(catalogue, pagamento, price);
  if (!weights) return fail(weights.error());
  cart.amounts = std::move(*amounts);
  cart.weights = std::move(*weights);
  return cart;
}

/// The cost of a slot in smallest units.
double costAt(const CartShipping& cart, std::size_t slot, const ShippingTrial& trial) {
  const std::string& script = cart.byWeight ? cart.weights : cart.amounts.java_importi;
  const std::string limit = cart.byWeight ? "imppeso" : "impord";
  const std::string cost = cart.byWeight ? "impspp" : "impspese";
  const double measure =
      cart.byWeight ? std::floor(trial.weight * parts + 0.5) : static_cast<double>(trial.amount.tenThousandths());
  const int last = cart.byWeight ? 10 : 3;
  int step = 1;
  while (step < last && measure > wholeParts(valueAt(script, limit + std::to_string(step), slot), parts)) ++step;
  return wholeParts(valueAt(script, cost + std::to_string(step), slot), cart.unit);
}

/// The VAT that a cost includes at a rate, rounded half up.
double includedIn(double cost, double rate) {
  const auto whole = static_cast<std::int64_t>(cost), part = static_cast<std::int64_t>(rate);
  const std::int64_t base = static_cast<std::int64_t>(rateParts) + part;
  const std::int64_t included = whole / base * part + (whole % base * part * 2 + base) / (base * 2);
  return static_cast<double>(included);
}

/// Added where a zone pays VAT on net costs, taken off where it pays none and costs include it.
double vatOn(double cost, double rate, bool taxed, bool included) {
  if (included) return taxed ? 0 : -includedIn(cost, rate);
  return taxed ? partOf(cost, rate) : 0;
}

/// The zone of a country; 0 when it has none.
Result<int> zoneOf(Database& catalogue, const std::string& country) {
  auto query = catalogue.prepare("SELECT zona FROM paesi WHERE strID = ?1");
  if (!query) return fail(query.error());
  query->bind(1, country);
  const auto found = query->step();
  if (!found) return fail(found.error());
  const std::int64_t zone = *found ? query->integer(0) : 0;
  return zone >= 1 && zone <= shippingZones ? static_cast<int>(zone) : 0;
}

}  // namespace

Result<ShippingQuote> quoteShipping(Database& catalogue, const ShippingTrial& trial) {
  const auto generale = firstRow(catalogue, "SELECT * FROM generale");
  if (!generale) return fail(generale.error());
  const auto pagamento = firstRow(catalogue, "SELECT * FROM pagamento");
  if (!pagamento) return fail(pagamento.error());
  const auto zone = zoneOf(catalogue, trial.country);
  if (!zone) return fail(zone.error());
  if (*zone == 0 || !pagamento->flag("attivo" + std::to_string(trial.method))) return ShippingQuote();
  const auto cart = readCart(catalogue, *generale, *pagamento);
  if (!cart) return fail(cart.error());
  std::size_t position = 0;
  for (int other = 1; other < trial.method; ++other) position += pagamento->flag("attivo" + std::to_string(other));
  const std::size_t zoneIndex = static_cast<std::size_t>(*zone) - 1;
  const std::size_t slot = position * shippingZones + zoneIndex;
  const double cost = costAt(*cart, slot, trial);
  const bool taxed = signAt(cart->amounts.java_permessi, "IvaOk", zoneIndex) == "1";
  const double vat = vatOn(cost, wholeParts(plainNumber(cart->vat), rateParts), taxed, cart->vatIncluded);
  const auto inMoney = [&cart](double smallest) { return Money::of(smallest / cart->unit).value_or(Money()); };
  return ShippingQuote{signAt(cart->amounts.java_permessi, "SpOk", slot) == "1", inMoney(cost), inMoney(vat),
                       inMoney(cost + vat)};
}

std::string quoteText(const ShippingQuote& quote, const CurrencyForm& form) {
  if (!quote.allowed) return "Questo metodo non è ammesso per il paese scelto";
  std::string text = "Spese: " + form.primaryText(quote.cost);
  if (quote.vat != Money()) text += ", IVA: " + form.primaryText(quote.vat);
  return text + ", totale: " + form.primaryText(quote.total);
}

}  // namespace kv
