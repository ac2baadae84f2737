#include "builder/checkout/shipping_tables.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>
#include <vector>

#include "builder/values/run_failure.h"
#include "platform/numbers/number_form.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::size_t slots = std::size_t{paymentMethods} * shippingZones;
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

// Calls `use` for each filled slot, zone by zone. In `columns` a "#" stands for the number of the method. They are
// asked for by name, so that a zone without one of them fails instead of costing nothing.
void readSlots(Database& catalogue, const FieldRow& pagamento, const std::vector<std::string>& columns,
               const std::function<void(const SlotView&)>& use) {
  const std::vector<int> methods = activeMethods(pagamento);
  if (methods.empty()) return;
  std::string names;
  for (const int method : methods) {
    for (const std::string& column : columns) {
      names += (names.empty() ? "" : ", ") + replaceAll(column, "#", std::to_string(method));
    }
  }
  for (std::size_t zone = 0; zone < shippingZones; ++zone) {
    const std::string table = "zona" + std::to_string(zone + 1);
    Statement query = must(catalogue.prepare("SELECT " + names + " FROM " + table));
    if (!must(query.step())) throw RunFailure(Error{ErrorKind::Corrupt, table, "no row"});
    for (std::size_t k = 0; k < methods.size(); ++k) {
      use({k * shippingZones + zone, query, static_cast<int>(k * columns.size())});
    }
  }
}

// One array of the cart: value( slot ) for each slot.
template <class ValueOf>
std::string arrayLine(const std::string& name, const ValueOf& value) {
  std::string line = name + "=new Array(";
  for (std::size_t slot = 0; slot < slots; ++slot) {
    if (slot > 0) line += ",";
    line += value(slot);
  }
  return line + ");\r\n";
}

struct AmountSteps {
  Money amount1, shipping1, amount2, shipping2, shipping3;
};

std::string amountArrays(const std::array<AmountSteps, slots>& steps, const ShippingPrice& price) {
  const auto limit = [&steps](Money AmountSteps::*field) {
    return [&steps, field](std::size_t slot) { return trimmedNumber(steps[slot].*field); };
  };
  const auto cost = [&steps, &price](Money AmountSteps::*field) {
    return [&steps, &price, field](std::size_t slot) { return price.text(steps[slot].*field); };
  };
  return arrayLine("impord1", limit(&AmountSteps::amount1)) + arrayLine("impspese1", cost(&AmountSteps::shipping1)) +
         arrayLine("impord2", limit(&AmountSteps::amount2)) + arrayLine("impspese2", cost(&AmountSteps::shipping2)) +
         arrayLine("impspese3", cost(&AmountSteps::shipping3));
}

struct WeightSteps {
  std::array<std::pair<float, Money>, weightLimits> steps{};
  Money beyond;
};

std::array<WeightSteps, slots> readWeights(Database& catalogue, const FieldRow& pagamento) {
  std::vector<std::string> columns;
  for (std::size_t i = 1; i <= weightLimits; ++i) columns.push_back("m#peso" + std::to_string(i));
  for (std::size_t i = 1; i <= weightAmounts; ++i) columns.push_back("m#spp" + std::to_string(i));
  std::array<WeightSteps, slots> weights;
  readSlots(catalogue, pagamento, columns, [&weights](const SlotView& view) {
    WeightSteps& steps = weights[view.slot];
    int column = view.first;
    for (auto& step : steps.steps) step.first = view.row.single(column++);
    for (auto& step : steps.steps) step.second = view.row.money(column++);
    steps.beyond = view.row.money(column);
    // Equal weights keep their order, so that of two costs for one limit the first stays the first.
    std::stable_sort(steps.steps.begin(), steps.steps.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
  });
  return weights;
}

}  // namespace

std::string ShippingPrice::text(Money amount) const {
  const auto gross = multiplyThroughSingle(amount, 1.0F + aliquota);
  if (!gross) throw RunFailure(overflowFailure, "Spese di spedizione troppo grandi");
  return form.NumeroJS(*gross);
}

AmountTables MakeImporti(Database& catalogue, const FieldRow& pagamento, const ShippingPrice& price) {
  AmountTables tables;
  std::string withVat;
  for (int zone = 1; zone <= shippingZones; ++zone) {
    const bool taxed = pagamento.flag("ivaok" + std::to_string(zone));
    withVat += taxed ? '1' : '0';
    if (taxed || pagamento.integer("zonasel") != zone) continue;
    tables.java_iva = "totiva = 0;";
    tables.java_iva_spese = "spediva = 0;";
  }
  std::array<AmountSteps, slots> steps{};
  std::array<std::string, slots> allowed;  // a slot without a method has no letter
  readSlots(catalogue, pagamento, {"pag#", "m#imp1", "m#sp1", "m#imp2", "m#sp2", "m#sp3"}, [&](const SlotView& view) {
    AmountSteps& step = steps[view.slot];
    const auto amount = [&view](int i) { return view.row.money(view.first + i); };
    step = {amount(1), amount(2), amount(3), amount(4), amount(5)};
    if (step.amount1 > step.amount2) {
      std::swap(step.amount1, step.amount2);
      std::swap(step.shipping1, step.shipping2);
    }
    allowed[view.slot] = view.row.flag(view.first) ? "1" : "0";
  });
  std::string letters;
  for (const std::string& letter : allowed) letters += letter;
  tables.java_importi = amountArrays(steps, price);
  tables.java_permessi = "var SpOk='" + letters + "';\r\nvar IvaOk='" + withVat + "';";
  return tables;
}

std::string MakeImportiPeso(Database& catalogue, const FieldRow& pagamento, const ShippingPrice& price) {
  const std::array<WeightSteps, slots> weights = readWeights(catalogue, pagamento);
  std::string out;
  for (std::size_t j = 0; j < weightLimits; ++j) {
    const std::string number = std::to_string(j + 1);
    out += arrayLine("imppeso" + number, [&](std::size_t slot) { return trimmedNumber(weights[slot].steps[j].first); });
    out += arrayLine("impspp" + number, [&](std::size_t slot) { return price.text(weights[slot].steps[j].second); });
  }
  return out + arrayLine("impspp" + std::to_string(weightAmounts),
                         [&](std::size_t slot) { return price.text(weights[slot].beyond); });
}

}  // namespace kv
