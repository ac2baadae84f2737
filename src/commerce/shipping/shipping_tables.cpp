#include "commerce/shipping/shipping_tables.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>
#include <vector>

#include "commerce/shipping/overflow_failure.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::size_t cartSlots = std::size_t{paymentMethods} * shippingZones;
constexpr std::size_t weightLimits = 9;
constexpr std::size_t weightAmounts = weightLimits + 1;  // the last one is for what is heavier

/// The numbers of the active methods, in their order.
std::vector<int> activeMethods(const FieldRow& pagamento) {
  std::vector<int> methods;
  for (int i = 1; i <= paymentMethods; ++i) {
    if (pagamento.flag("attivo" + std::to_string(i))) methods.push_back(i);
  }
  return methods;
}

/// A filled slot, and where its columns start in the row of its zone.
struct SlotView {
  std::size_t slot;
  const Statement& row;
  int first;
};

/// The columns of all methods by name, parted by commas; a "#" in `columns` is the number of the method.
std::string columnNames(const std::vector<int>& methods, const std::vector<std::string>& columns) {
  std::string names;
  for (const int method : methods) {
    for (const std::string& column : columns) {
      names += (names.empty() ? "" : ", ") + replaceAll(column, "#", std::to_string(method));
    }
  }
  return names;
}

// Calls `use` for each filled slot, zone by zone. The columns are asked for by name, so that a zone without one of
// them fails instead of costing nothing.
Result<> readSlots(Database& catalogue, const FieldRow& pagamento, const std::vector<std::string>& columns,
                   const std::function<void(const SlotView&)>& use) {
  const std::vector<int> methods = activeMethods(pagamento);
  if (methods.empty()) return {};
  const std::string names = columnNames(methods, columns);
  for (std::size_t zone = 0; zone < shippingZones; ++zone) {
    const std::string table = "zona" + std::to_string(zone + 1);
    auto query = catalogue.prepare("SELECT " + names + " FROM " + table);
    if (!query) return fail(query.error());
    const auto found = query->step();
    if (!found) return fail(found.error());
    if (!*found) return fail(ErrorKind::Corrupt, table, "no row");
    for (std::size_t k = 0; k < methods.size(); ++k) {
      use({k * shippingZones + zone, *query, static_cast<int>(k * columns.size())});
    }
  }
  return {};
}

// Appends one array of the cart: value( slot ), a Result<std::string>, for each slot.
template <class ValueOf>
Result<> appendArray(std::string& out, std::string_view name, const ValueOf& value) {
  out.append(name).append("=new Array(");
  for (std::size_t slot = 0; slot < cartSlots; ++slot) {
    const Result<std::string> text = value(slot);
    if (!text) return fail(text.error());
    out.append(slot > 0 ? "," : "").append(*text);
  }
  out.append(");\r\n");
  return {};
}

struct AmountSteps {
  Money amount1, shipping1, amount2, shipping2, shipping3;
};

/// One array of the costs by order amount: limits are written as they are, costs as the price of shipping.
struct AmountArray {
  std::string_view name;
  Money AmountSteps::*field;
  bool isCost;
};
constexpr std::array<AmountArray, 5> amountArrays{{{"impord1", &AmountSteps::amount1, false},
                                                   {"impspese1", &AmountSteps::shipping1, true},
                                                   {"impord2", &AmountSteps::amount2, false},
                                                   {"impspese2", &AmountSteps::shipping2, true},
                                                   {"impspese3", &AmountSteps::shipping3, true}}};

Result<std::string> amountText(const std::array<AmountSteps, cartSlots>& steps, const ShippingPrice& price) {
  std::string out;
  for (const AmountArray& array : amountArrays) {
    const auto appended = appendArray(out, array.name, [&](std::size_t slot) -> Result<std::string> {
      const Money amount = steps[slot].*array.field;
      if (array.isCost) return price.text(amount);
      return trimmedNumber(amount);
    });
    if (!appended) return fail(appended.error());
  }
  return out;
}

struct WeightSteps {
  std::array<std::pair<float, Money>, weightLimits> steps{};
  Money beyond;
};

Result<std::array<WeightSteps, cartSlots>> readWeights(Database& catalogue, const FieldRow& pagamento) {
  std::vector<std::string> columns;
  for (std::size_t i = 1; i <= weightLimits; ++i) columns.push_back("m#peso" + std::to_string(i));
  for (std::size_t i = 1; i <= weightAmounts; ++i) columns.push_back("m#spp" + std::to_string(i));
  std::array<WeightSteps, cartSlots> weights;
  const auto read = readSlots(catalogue, pagamento, columns, [&weights](const SlotView& view) {
    WeightSteps& steps = weights[view.slot];
    int column = view.first;
    for (auto& step : steps.steps) step.first = view.row.single(column++);
    for (auto& step : steps.steps) step.second = view.row.money(column++);
    steps.beyond = view.row.money(column);
    // Equal weights keep their order, so that of two costs for one limit the first stays the first.
    std::stable_sort(steps.steps.begin(), steps.steps.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
  });
  if (!read) return fail(read.error());
  return weights;
}

struct SlotAmounts {
  std::array<AmountSteps, cartSlots> steps{};
  std::string allowed;  ///< "1" or "0" for each filled slot, in the order of the slots
};

Result<SlotAmounts> readAmounts(Database& catalogue, const FieldRow& pagamento) {
  SlotAmounts amounts;
  std::array<std::string, cartSlots> allowed;  // a slot without a method has no sign
  const auto read = readSlots(catalogue, pagamento, {"pag#", "m#imp1", "m#sp1", "m#imp2", "m#sp2", "m#sp3"},
                              [&](const SlotView& view) {
                                AmountSteps& step = amounts.steps[view.slot];
                                const auto amount = [&view](int i) { return view.row.money(view.first + i); };
                                step = {amount(1), amount(2), amount(3), amount(4), amount(5)};
                                if (step.amount1 > step.amount2) {
                                  std::swap(step.amount1, step.amount2);
                                  std::swap(step.shipping1, step.shipping2);
                                }
                                allowed[view.slot] = view.row.flag(view.first) ? "1" : "0";
                              });
  if (!read) return fail(read.error());
  for (const std::string& sign : allowed) amounts.allowed += sign;
  return amounts;
}

}  // namespace

Result<std::string> ShippingPrice::text(Money amount) const {
  const auto gross = multiplyThroughSingle(amount, 1.0F + aliquota);
  if (!gross) return fail(ErrorKind::Other, "", "Spese di spedizione troppo grandi", overflowFailure);
  return form.NumeroJS(*gross);
}

Result<AmountTables> MakeImporti(Database& catalogue, const FieldRow& pagamento, const ShippingPrice& price) {
  AmountTables tables;
  std::string withVat;
  for (int zone = 1; zone <= shippingZones; ++zone) {
    const bool taxed = pagamento.flag("ivaok" + std::to_string(zone));
    withVat += taxed ? '1' : '0';
    if (taxed || pagamento.integer("zonasel") != zone) continue;
    tables.java_iva = "totiva = 0;";
    tables.java_iva_spese = "spediva = 0;";
  }
  const auto amounts = readAmounts(catalogue, pagamento);
  if (!amounts) return fail(amounts.error());
  auto text = amountText(amounts->steps, price);
  if (!text) return fail(text.error());
  tables.java_importi = std::move(*text);
  tables.java_permessi = "var SpOk='" + amounts->allowed + "';\r\nvar IvaOk='" + withVat + "';";
  return tables;
}

Result<std::string> MakeImportiPeso(Database& catalogue, const FieldRow& pagamento, const ShippingPrice& price) {
  const auto weights = readWeights(catalogue, pagamento);
  if (!weights) return fail(weights.error());
  std::string out;
  for (std::size_t j = 0; j < weightAmounts; ++j) {
    const std::string number = std::to_string(j + 1);
    if (j < weightLimits) {
      const auto limits = appendArray(out, "imppeso" + number, [&](std::size_t slot) -> Result<std::string> {
        return trimmedNumber((*weights)[slot].steps[j].first);
      });
      if (!limits) return fail(limits.error());
    }
    const auto costs = appendArray(out, "impspp" + number, [&](std::size_t slot) {
      const WeightSteps& steps = (*weights)[slot];
      return price.text(j < weightLimits ? steps.steps[j].second : steps.beyond);
    });
    if (!costs) return fail(costs.error());
  }
  return out;
}

}  // namespace kv
