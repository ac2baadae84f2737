// The countries of the shipping dialog.

#include <algorithm>

#include "commerce/shipping/shipping_editor.h"
#include "commerce/shipping/shipping_texts.h"
#include "commerce/shipping/single_row.h"
#include "platform/database/recordset.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t longestCountry = 50;                      // characters
constexpr std::string_view countryMask = "##################";  // of strID

/// Inserts a country, whose `strID` is its own automatic number.
Result<std::int64_t> insertCountry(Database& catalogue, std::string_view name) {
  auto rows = catalogue.openRecordset("paesi");
  if (!rows) return fail(rows.error());
  if (auto begun = rows->addNew(); !begun) return fail(begun.error());
  const std::int64_t ID = asInteger(rows->get("ID"));
  const Value paese = std::string(firstCharacters(name, longestCountry));
  for (const auto& [column, value] : {std::pair{"strID", Value(formatNumber(ID, countryMask))},
                                      std::pair{"paese", paese}, std::pair{"zona", Value(std::int64_t{1})}}) {
    if (auto set = rows->set(column, value); !set) return fail(set.error());
  }
  if (auto updated = rows->update(); !updated) return fail(updated.error());
  return ID;
}

Result<> executeWith(Database& catalogue, std::string_view sql, std::int64_t first, std::int64_t second = 0) {
  auto statement = catalogue.prepare(sql);
  if (!statement) return fail(statement.error());
  statement->bind(1, first);
  if (sql.find("?2") != std::string_view::npos) statement->bind(2, second);
  return statement->execute();
}

}  // namespace

std::vector<ShippingCountry> ShippingEditor::countries() {
  std::vector<ShippingCountry> all;
  auto query = session_.catalogue.prepare("SELECT ID, strID, paese, zona FROM paesi ORDER BY ID");
  if (!query) return all;
  auto more = query->step();
  for (; more && *more; more = query->step()) {
    all.push_back({query->integer(0), std::string(query->text(1)), std::string(query->text(2)),
                   static_cast<int>(query->integer(3))});
  }
  return all;
}

std::optional<std::int64_t> ShippingEditor::addCountry(std::string_view name) {
  if (name.empty()) return std::nullopt;
  const auto added = insertCountry(session_.catalogue, name);
  if (added) return *added;
  ignore(told(fail(added.error())), "the user knows");
  return std::nullopt;
}

std::optional<std::size_t> ShippingEditor::deleteCountry(std::int64_t ID) {
  const std::vector<ShippingCountry> all = countries();
  const auto country = std::ranges::find(all, ID, &ShippingCountry::ID);
  if (country == all.end()) return std::nullopt;
  if (country->strID == preselectedCountry()) {
    refuse(shippingCountryPreselected);
    return std::nullopt;
  }
  if (all.size() == 1) {
    refuse(shippingLastCountry);
    return std::nullopt;
  }
  const auto index = static_cast<std::size_t>(country - all.begin());
  if (!told(executeWith(session_.catalogue, "DELETE FROM paesi WHERE ID = ?1", ID))) return std::nullopt;
  return std::min(index, all.size() - 2);
}

bool ShippingEditor::setCountryZone(std::int64_t ID, int zone) {
  return told(executeWith(session_.catalogue, "UPDATE paesi SET zona = ?1 WHERE ID = ?2", zone, ID));
}

std::string ShippingEditor::preselectedCountry() { return asText(payment("paesesel")); }

bool ShippingEditor::preselectCountry(const std::string& strID) {
  return storePayment("paesesel", strID.empty() ? Value(Null{}) : Value(strID));
}

std::vector<std::string> ShippingEditor::zoneNames() {
  std::vector<std::string> names;
  for (int zone = 1; zone <= shippingZones; ++zone) names.push_back("Zona " + std::to_string(zone));
  // The list of zones is the merchant's; a shop of another make may have other columns in it.
  auto query = session_.catalogue.prepare("SELECT zona, nome FROM zone ORDER BY ID");
  if (!query) return names;
  auto more = query->step();
  for (; more && *more; more = query->step()) {
    const std::int64_t zone = query->integer(0);
    if (zone < 1 || zone > shippingZones || query->text(1).empty()) continue;
    names[static_cast<std::size_t>(zone - 1)] = std::to_string(zone) + " - " + std::string(query->text(1));
  }
  return names;
}

}  // namespace kv
