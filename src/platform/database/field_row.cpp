#include "platform/database/field_row.h"

#include "platform/text/text.h"

namespace kv {

FieldRow::FieldRow(const Statement& row) {
  for (int i = 0; i < row.columnCount(); ++i) fields_.try_emplace(foldCase(row.columnName(i)), row.value(i));
}

const Value& FieldRow::value(std::string_view column) const {
  static const Value null = Null{};
  const auto found = fields_.find(foldCase(column));
  return found == fields_.end() ? null : found->second;
}

Result<FieldRow> firstRow(Database& database, std::string_view query) {
  auto statement = database.prepare(query);
  if (!statement) return fail(statement.error());
  const auto found = statement->step();
  if (!found) return fail(found.error());
  return *found ? FieldRow(*statement) : FieldRow();
}

}  // namespace kv
