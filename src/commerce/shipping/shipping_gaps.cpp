// What the merchant may have overlooked in the tables of shipping.

#include "commerce/shipping/shipping_quote.h"
#include "commerce/shipping/shipping_tables.h"
#include "platform/database/field_row.h"

namespace kv {
namespace {

constexpr int limitsByWeight = 9;
constexpr int limitsByAmount = 2;

/// Whether the limits of a method are in ascending order; those that were left at 0 after the last one don't count.
bool isAscending(const FieldRow& zone, const std::string& column, int limits) {
  double highest = 0;
  for (int step = 1; step <= limits; ++step) {
    const double limit = zone.number(column + std::to_string(step));
    if (limit < highest && limit != 0) return false;
    if (limit > highest) highest = limit;
  }
  return true;
}

/// A limit of 0 before another one, which the build moves to the front with its cost.
bool hasHole(const FieldRow& zone, const std::string& column, int limits) {
  bool zeroSeen = false;
  for (int step = 1; step <= limits; ++step) {
    const bool isZero = zone.number(column + std::to_string(step)) == 0;
    if (zeroSeen && !isZero) return true;
    zeroSeen = zeroSeen || isZero;
  }
  return false;
}

void addZoneGaps(std::vector<ShippingGap>& gaps, const FieldRow& pagamento, const FieldRow& zone,
                 const std::string& name) {
  const bool byWeight = pagamento.flag("imppeso");
  bool anyMethod = false;
  for (int method = 1; method <= paymentMethods; ++method) {
    const std::string digit = std::to_string(method);
    if (!pagamento.flag("attivo" + digit) || !zone.flag("pag" + digit)) continue;
    anyMethod = true;
    const std::string column = "m" + digit + (byWeight ? "peso" : "imp");
    const int limits = byWeight ? limitsByWeight : limitsByAmount;
    if (isAscending(zone, column, limits) && !hasHole(zone, column, limits)) continue;
    gaps.push_back({name + ", " + pagamento.text("nome" + digit) + ": i limiti non sono in ordine crescente"});
  }
  if (!anyMethod) gaps.push_back({name + ": nessun metodo è ammesso", true});
}

}  // namespace

std::vector<ShippingGap> findShippingGaps(Database& catalogue) {
  std::vector<ShippingGap> gaps;
  const auto pagamento = firstRow(catalogue, "SELECT * FROM pagamento");
  if (!pagamento) return gaps;
  for (int zone = 1; zone <= shippingZones; ++zone) {
    const std::string digit = std::to_string(zone);
    const auto countries = catalogue.scalar("SELECT COUNT(*) FROM paesi WHERE zona = " + digit);
    const auto row = firstRow(catalogue, "SELECT * FROM zona" + digit);
    if (countries && row && asInteger(*countries) > 0) addZoneGaps(gaps, *pagamento, *row, "Zona " + digit);
  }
  return gaps;
}

std::vector<std::string> shippingGaps(Database& catalogue) {
  std::vector<std::string> texts;
  for (ShippingGap& gap : findShippingGaps(catalogue)) texts.push_back(std::move(gap.text));
  return texts;
}

}  // namespace kv
