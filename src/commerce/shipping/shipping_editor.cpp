#include "commerce/shipping/shipping_editor.h"

#include <algorithm>
#include <limits>

#include "commerce/shipping/shipping_texts.h"
#include "commerce/shipping/single_row.h"
#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/numbers/typed_number.h"
#include "platform/ports/failure_text.h"
#include "platform/text/single_line.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t descriptorEnding = 4;  // ".kpg"

std::string zoneTable(int zone) { return "zona" + std::to_string(zone); }

bool isZone(std::int64_t zone) { return zone >= 1 && zone <= shippingZones; }

/// A typed number as the column takes it; none when it is no number, or one that the column can't hold.
std::optional<Value> costValue(const Value& before, const std::string& stored) {
  if (std::holds_alternative<Money>(before)) {
    const auto money = Money::parse(stored);
    return money ? std::optional<Value>(*money) : std::nullopt;
  }
  const auto number = toNumber(stored);
  if (!number || *number < -std::numeric_limits<float>::max() || *number > std::numeric_limits<float>::max()) {
    return std::nullopt;
  }
  return Value(*number);
}

/// The kind of a column whose field may be null.
Value kindOf(std::string_view column, const Value& stored) {
  if (!isNull(stored)) return stored;
  const bool isWeight = column.find("peso") != std::string_view::npos || column == "ivaspese";
  return isWeight ? Value(0.0) : Value(Money());
}

std::string numberText(const Value& value) {
  if (const auto* single = std::get_if<double>(&value)) return trimmedNumber(static_cast<float>(*single));
  return asText(value);
}

}  // namespace

bool ShippingEditor::told(const Result<>& outcome) {
  if (!outcome) user_.message(failureText(outcome.error()), Icon::Exclamation);
  return outcome.has_value();
}

bool ShippingEditor::toldOnce(const Result<>& outcome) {
  failure_ = outcome ? std::string() : failureText(outcome.error());
  // The detail below the empty line differs from field to field.
  const std::string condition = failure_.substr(0, failure_.find("\n\n"));
  if (!outcome && condition != toldFailure_) user_.message(failure_, Icon::Exclamation);
  toldFailure_ = condition;
  return outcome.has_value();
}

bool ShippingEditor::refuse(std::string_view text) {
  user_.message(std::string(text), Icon::Exclamation);
  return false;
}

Value ShippingEditor::payment(const std::string& column) {
  auto value = readSingle(session_.catalogue, "pagamento", column);
  return value ? std::move(*value) : Value(Null{});
}

bool ShippingEditor::storePayment(const std::string& column, const Value& value) {
  return told(storeSingle(session_.catalogue, "pagamento", column, value));
}

std::vector<std::string> ShippingEditor::modules() const {
  std::vector<std::string> names = listFiles(entryPath(session_.ShopFolder, "code"), "*.kpg");
  for (std::string& name : names) name.resize(name.size() - descriptorEnding);
  return names;
}

std::string ShippingEditor::nameColumn(int number) const {
  const auto language = static_cast<std::size_t>(std::clamp(session_.currentLanguage, 1, maxLanguages)) - 1;
  return "nome" + std::to_string(number) + std::string(languageSuffixes[language]);
}

ShippingMethod ShippingEditor::method(int number) {
  return {asText(payment("metodo" + std::to_string(number))), asText(payment(nameColumn(number))), isActive(number)};
}

bool ShippingEditor::setModule(int number, const std::string& module) {
  if (!storePayment("metodo" + std::to_string(number), Value(module))) return false;
  return !method(number).name.empty() || setMethodName(number, {});
}

bool ShippingEditor::setMethodName(int number, const std::string& name) {
  const std::string line = singleLine(name);
  const std::string wanted = trim(line).empty() ? method(number).module : line;
  failure_.clear();
  return wanted == method(number).name ||
         toldOnce(storeSingle(session_.catalogue, "pagamento", nameColumn(number), Value(wanted)));
}

bool ShippingEditor::switchMethod(int number, bool on) {
  if (!on) {
    if (asInteger(payment("selezionato")) == number) return refuse(shippingMethodPreselected);
    int left = 0;
    for (int other = 1; other <= paymentMethods; ++other) left += other != number && isActive(other) ? 1 : 0;
    if (left == 0) return refuse(shippingLastMethod);
  }
  return storePayment("attivo" + std::to_string(number), Value(on));
}

OfferedMethods ShippingEditor::PopolaMetodi() {
  OfferedMethods offered;
  const std::int64_t preselected = asInteger(payment("selezionato"));
  for (int number = 1; number <= paymentMethods; ++number) {
    const ShippingMethod one = method(number);
    if (!one.active) continue;
    if (number == preselected) offered.selected = static_cast<int>(offered.items.size());
    offered.items.push_back({one.name, number});
  }
  return offered;
}

bool ShippingEditor::preselectMethod(int number) { return storePayment("selezionato", Value(std::int64_t{number})); }

std::string ShippingEditor::shown(std::string_view table, std::string_view column) {
  const auto value = readSingle(session_.catalogue, table, column);
  if (!value || isNull(*value)) return {};
  return shownNumber(numberText(*value), separator_);
}

std::string ShippingEditor::leave(std::string_view table, std::string_view column, const std::string& typed) {
  failure_.clear();
  std::string before = shown(table, column);
  if (typed == before) return before;
  const auto stored = readSingle(session_.catalogue, table, column);
  if (!stored) return before;
  const auto value = costValue(kindOf(column, *stored), storedNumber(typed, separator_));
  if (!value) return before;
  return toldOnce(storeSingle(session_.catalogue, table, column, *value)) ? shown(table, column) : before;
}

std::string ShippingEditor::number(int zone, std::string_view column) { return shown(zoneTable(zone), column); }

std::string ShippingEditor::leaveNumber(int zone, std::string_view column, const std::string& typed) {
  return leave(zoneTable(zone), column, typed);
}

bool ShippingEditor::isAllowed(int zone, int number) {
  const auto value = readSingle(session_.catalogue, zoneTable(zone), "pag" + std::to_string(number));
  return value && asFlag(*value);
}

bool ShippingEditor::allow(int zone, int number, bool allowed) {
  return told(storeSingle(session_.catalogue, zoneTable(zone), "pag" + std::to_string(number), Value(allowed)));
}

bool ShippingEditor::paysVat(int zone) { return asFlag(payment("ivaok" + std::to_string(zone))); }

bool ShippingEditor::setPaysVat(int zone, bool pays) {
  return storePayment("ivaok" + std::to_string(zone), Value(pays));
}

bool ShippingEditor::isByWeight() { return asFlag(payment("imppeso")); }

bool ShippingEditor::setByWeight(bool byWeight) {
  return storePayment("imppeso", Value(std::int64_t{byWeight ? 1 : 0}));
}

std::string ShippingEditor::vatRate() { return shown("pagamento", "ivaspese"); }
std::string ShippingEditor::leaveVatRate(const std::string& typed) { return leave("pagamento", "ivaspese", typed); }
bool ShippingEditor::isAlphabetic() { return asFlag(payment("alfabetico")); }
bool ShippingEditor::setAlphabetic(bool alphabetic) { return storePayment("alfabetico", Value(alphabetic)); }

ShippingAnswer ShippingEditor::accept() {
  const std::string preselected = preselectedCountry();
  const std::vector<ShippingCountry> all = countries();
  const auto country = std::ranges::find(all, preselected, &ShippingCountry::strID);
  if (preselected.empty() || country == all.end()) return {refuse(shippingOtherCountry), 0};
  if (!isZone(country->zona)) return {refuse(shippingOtherMethod), 0};
  const auto selected = static_cast<int>(asInteger(payment("selezionato")));
  const bool isMethod = selected >= 1 && selected <= paymentMethods;
  if (!isMethod || !isActive(selected) || !isAllowed(country->zona, selected)) {
    return {refuse(shippingOtherMethod), country->zona};
  }
  return {storePayment("zonasel", Value(std::int64_t{country->zona})), country->zona};
}

}  // namespace kv
