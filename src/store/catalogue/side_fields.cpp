#include "store/catalogue/side_fields.h"

#include "platform/text/text.h"
#include "store/catalogue/tree_change.h"
#include "store/schema/schema.h"
#include "store/schema/side_tables.h"

namespace kv {
namespace {

std::string_view tableOf(SideField field) {
  if (field == SideField::Delivery) return "consegna";
  return field == SideField::Maker ? "sicurezza" : "unita";
}

std::string timeColumn(int language) {
  return "tempo" + std::string(languageSuffixes[static_cast<std::size_t>(language - 1)]);
}

std::string timeColumns() {
  std::string names;
  for (int language = 1; language <= maxLanguages; ++language) {
    names += (language > 1 ? ", " : "") + timeColumn(language);
  }
  return names;
}

Result<> createUnlessThere(Database& catalogue, const TableInfo& table) {
  const auto found = findSideTable(catalogue, table.name);
  if (!found) return fail(found.error());
  return *found ? Result<>() : catalogue.createTable(table);
}

/// Whether the catalogue has both of two tables.
Result<bool> findBoth(Database& catalogue, std::string_view one, std::string_view other) {
  auto found = findSideTable(catalogue, one);
  return found && *found ? findSideTable(catalogue, other) : found;
}

bool isEmptied(const Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  return isNull(value) || (text != nullptr && trim(*text).empty());
}

Result<> writeMaker(Database& catalogue, const std::string& key, const Value& name) {
  if (isEmptied(name)) return runWith(catalogue, "DELETE FROM sicurezza WHERE chiave = ?", {Value(key)});
  auto maker = scalarWith(catalogue, "SELECT ID FROM produttori WHERE nome = ? ORDER BY ID LIMIT 1", {name});
  if (!maker) return fail(maker.error());
  if (isNull(*maker)) return runWith(catalogue, "DELETE FROM sicurezza WHERE chiave = ?", {Value(key)});
  return runWith(catalogue,
                 "INSERT INTO sicurezza (chiave, produttore) VALUES (?, ?)"
                 " ON CONFLICT (chiave) DO UPDATE SET produttore = excluded.produttore",
                 {Value(key), *maker});
}

/// A column of one language, or of one of the two that `unita` has.
Result<> writeCell(Database& catalogue, const std::string& sql, const std::string& key, const Value& value) {
  return runWith(catalogue, sql, {Value(key), isEmptied(value) ? Value(Null{}) : value});
}

Result<> writeUnit(Database& catalogue, const std::string& column, const std::string& key, const Value& value) {
  auto written = writeCell(catalogue,
                           "INSERT INTO unita (ID, " + column + ") VALUES (CAST(? AS INTEGER), ?) ON CONFLICT (ID) DO" +
                               " UPDATE SET " + column + " = excluded." + column,
                           key, value);
  if (!written) return written;
  return runWith(catalogue, "DELETE FROM unita WHERE ID = CAST(? AS INTEGER) AND contenuto IS NULL AND misura IS NULL",
                 {Value(key)});
}

Result<> writeTime(Database& catalogue, const std::string& column, const std::string& key, const Value& value) {
  auto written = writeCell(catalogue,
                           "INSERT INTO consegna (chiave, " + column + ") VALUES (?, ?) ON CONFLICT (chiave) DO" +
                               " UPDATE SET " + column + " = excluded." + column,
                           key, value);
  if (!written) return written;
  return runWith(catalogue, "DELETE FROM consegna WHERE chiave = ? AND COALESCE(" + timeColumns() + ") IS NULL",
                 {Value(key)});
}

/// A table that rows of an article are in: its key, the SQL type of that, and what else it holds.
struct SideRows {
  std::string table, key, keyType, columns;
};

std::vector<SideRows> sideRows() {
  return {{"unita", "ID", "INTEGER", "contenuto, misura"},
          {"sicurezza", "chiave", "TEXT", "produttore"},
          {"consegna", "chiave", "TEXT", timeColumns()}};
}

/// Copies rows within the tables, or from or to their like of the clipboard, whose names begin with "clip".
Result<> copyRows(Database& catalogue, const std::string& from, const std::string& to,
                  const std::vector<CopiedRow>& copies) {
  for (const SideRows& rows : sideRows()) {
    const auto there = findBoth(catalogue, from + rows.table, to + rows.table);
    if (!there) return fail(there.error());
    if (!*there) continue;
    const std::string sql = "INSERT OR REPLACE INTO " + to + rows.table + " (" + rows.key + ", " + rows.columns +
                            ") SELECT CAST(? AS " + rows.keyType + "), " + rows.columns + " FROM " + from + rows.table +
                            " WHERE " + rows.key + " = CAST(? AS " + rows.keyType + ")";
    for (const CopiedRow& copy : copies) {
      if (auto done = runWith(catalogue, sql, {Value(copy.to), Value(copy.from)}); !done) return done;
    }
  }
  return {};
}

}  // namespace

Result<bool> findSideTable(Database& catalogue, std::string_view table) {
  const auto found = catalogue.table(table);
  if (found) return true;
  return found.error().kind == ErrorKind::Missing ? Result<bool>(false) : fail(found.error());
}

bool hasSideTable(Database& catalogue, std::string_view table) { return catalogue.table(table).has_value(); }

Result<Value> readSideField(Database& catalogue, SideField field, const std::string& key, int language) {
  const auto there = findSideTable(catalogue, tableOf(field));
  if (!there) return fail(there.error());
  if (!*there) return Value(Null{});
  switch (field) {
    case SideField::Content:
      return scalarWith(catalogue, "SELECT contenuto FROM unita WHERE ID = CAST(? AS INTEGER)", {Value(key)});
    case SideField::Measure:
      return scalarWith(catalogue, "SELECT misura FROM unita WHERE ID = CAST(? AS INTEGER)", {Value(key)});
    case SideField::Delivery:
      return scalarWith(catalogue, "SELECT " + timeColumn(language) + " FROM consegna WHERE chiave = ?", {Value(key)});
    case SideField::Maker:
      break;
  }
  return scalarWith(catalogue,
                    "SELECT nome FROM produttori INNER JOIN sicurezza ON produttore = produttori.ID WHERE chiave = ?",
                    {Value(key)});
}

Result<> prepareSideField(Database& catalogue, SideField field) {
  if (field == SideField::Delivery) return createUnlessThere(catalogue, deliveryTable());
  if (field != SideField::Maker) return createUnlessThere(catalogue, unitTable());
  if (auto made = createUnlessThere(catalogue, makersTable()); !made) return made;
  return createUnlessThere(catalogue, safetyTable());
}

Result<> writeSideField(Database& catalogue, SideField field, const std::string& key, const Value& value,
                        int language) {
  switch (field) {
    case SideField::Content:
      return writeUnit(catalogue, "contenuto", key, value);
    case SideField::Measure:
      return writeUnit(catalogue, "misura", key, value);
    case SideField::Delivery:
      return writeTime(catalogue, timeColumn(language), key, value);
    case SideField::Maker:
      break;
  }
  return writeMaker(catalogue, key, value);
}

Result<> clearSideFields(Database& catalogue) {
  for (const std::string_view table :
       {"unita", "sicurezza", "consegna", "clipunita", "clipsicurezza", "clipconsegna"}) {
    const auto there = findSideTable(catalogue, table);
    if (!there) return fail(there.error());
    if (!*there) continue;
    if (auto emptied = catalogue.execute("DELETE FROM " + std::string(table)); !emptied) return emptied;
  }
  return {};
}

std::vector<std::string> makerNames(Database& catalogue) {
  std::vector<std::string> names;
  if (!hasSideTable(catalogue, "produttori")) return names;
  auto rows = catalogue.prepare("SELECT nome FROM produttori WHERE nome <> '' ORDER BY nome, ID");
  if (!rows) return names;
  for (auto more = rows->step(); more && *more; more = rows->step()) names.emplace_back(rows->text(0));
  return names;
}

Result<> copySideRows(Database& catalogue, const std::vector<CopiedRow>& copies) {
  return copyRows(catalogue, "", "", copies);
}

Result<> copySideRowsToClipboard(Database& catalogue, const std::vector<CopiedRow>& copies) {
  const auto made = [&](TableInfo table) -> Result<> {
    const auto wanted = findSideTable(catalogue, table.name);
    if (!wanted) return fail(wanted.error());
    table.name = "clip" + table.name;
    const auto there = findSideTable(catalogue, table.name);
    if (!there) return fail(there.error());
    if (*there) return catalogue.execute("DELETE FROM " + table.name);
    for (IndexInfo& index : table.indexes) index.name.clear();
    return *wanted ? catalogue.createTable(table) : Result<>();
  };
  for (const TableInfo& table : {unitTable(), safetyTable(), deliveryTable()}) {
    if (auto done = made(table); !done) return done;
  }
  return copyRows(catalogue, "", "clip", copies);
}

Result<> copySideRowsFromClipboard(Database& catalogue, const std::vector<CopiedRow>& copies) {
  return copyRows(catalogue, "clip", "", copies);
}

}  // namespace kv
