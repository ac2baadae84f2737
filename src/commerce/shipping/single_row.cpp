#include "commerce/shipping/single_row.h"

#include "platform/database/recordset.h"

namespace kv {

Result<Value> readSingle(Database& catalogue, std::string_view table, std::string_view column) {
  return catalogue.scalar("SELECT " + std::string(column) + " FROM " + std::string(table));
}

Result<> storeSingle(Database& catalogue, std::string_view table, std::string_view column, const Value& value) {
  auto row = catalogue.openRecordset(table);
  if (!row) return fail(row.error());
  row->moveFirst();
  if (auto begun = row->edit(); !begun) return begun;
  if (auto set = row->set(column, value); !set) return set;
  return row->update();
}

}  // namespace kv
