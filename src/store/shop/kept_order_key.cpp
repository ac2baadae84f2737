#include "store/shop/kept_order_key.h"

#include <algorithm>

#include "store/schema/side_tables.h"

namespace kv {
namespace {

bool isOrderKey(std::string_view text) {
  return text.size() == orderKeyDigits &&
         std::ranges::all_of(text, [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

Result<bool> hasKeyTable(Database& catalogue) {
  const auto found = catalogue.table(orderKeyTableName);
  if (found) return true;
  return found.error().kind == ErrorKind::Missing ? Result<bool>(false) : fail(found.error());
}

}  // namespace

Result<std::string> readOrderKey(Database& catalogue) {
  const auto there = hasKeyTable(catalogue);
  if (!there) return fail(there.error());
  if (!*there) return std::string();
  const auto value = catalogue.scalar("SELECT chiave FROM chiave_ordini WHERE ID = 1");
  if (!value) return fail(value.error());
  std::string key = asText(*value);
  return isOrderKey(key) ? key : std::string();
}

Result<> writeOrderKey(Database& catalogue, const std::string& key) {
  if (!isOrderKey(key)) return fail(ErrorKind::Malformed, std::string(orderKeyTableName), "no key");
  const auto there = hasKeyTable(catalogue);
  if (!there) return fail(there.error());
  if (!*there) {
    if (auto made = catalogue.createTable(orderKeyTable()); !made) return made;
  }
  // A key has no character that SQL would read otherwise.
  return catalogue.execute("INSERT OR REPLACE INTO chiave_ordini (ID, chiave) VALUES (1, '" + key + "')");
}

Result<> dropOrderKey(Database& catalogue) { return catalogue.execute("DROP TABLE IF EXISTS chiave_ordini"); }

}  // namespace kv
