#include "store/catalogue/side_fields.h"

#include "platform/text/text.h"
#include "store/catalogue/tree_change.h"
#include "store/schema/side_tables.h"

namespace kv {
namespace {

std::string_view tableOf(SideField field) { return field == SideField::Maker ? "sicurezza" : "unita"; }

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

/// The two tables that rows of an article are in, or their like of the clipboard.
struct SideTables {
  std::string units, makers;
};

Result<> copyRows(Database& catalogue, const SideTables& from, const SideTables& to,
                  const std::vector<CopiedRow>& copies) {
  const auto units = findBoth(catalogue, from.units, to.units);
  if (!units) return fail(units.error());
  const auto makers = findBoth(catalogue, from.makers, to.makers);
  if (!makers) return fail(makers.error());
  for (const CopiedRow& copy : copies) {
    Result<> done;
    if (*units) {
      done = runWith(catalogue,
                     "INSERT OR REPLACE INTO " + to.units +
                         " (ID, contenuto, misura) SELECT ?, contenuto, misura FROM " + from.units + " WHERE ID = ?",
                     {Value(copy.to), Value(copy.from)});
    }
    if (done && *makers) {
      done =
          runWith(catalogue,
                  "INSERT OR REPLACE INTO " + to.makers + " (chiave, produttore) SELECT CAST(? AS TEXT), produttore" +
                      " FROM " + from.makers + " WHERE chiave = CAST(? AS TEXT)",
                  {Value(copy.to), Value(copy.from)});
    }
    if (!done) return done;
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

Result<Value> readSideField(Database& catalogue, SideField field, const std::string& key) {
  const auto there = findSideTable(catalogue, tableOf(field));
  if (!there) return fail(there.error());
  if (!*there) return Value(Null{});
  switch (field) {
    case SideField::Content:
      return scalarWith(catalogue, "SELECT contenuto FROM unita WHERE ID = CAST(? AS INTEGER)", {Value(key)});
    case SideField::Measure:
      return scalarWith(catalogue, "SELECT misura FROM unita WHERE ID = CAST(? AS INTEGER)", {Value(key)});
    case SideField::Maker:
      break;
  }
  return scalarWith(catalogue,
                    "SELECT nome FROM produttori INNER JOIN sicurezza ON produttore = produttori.ID WHERE chiave = ?",
                    {Value(key)});
}

Result<> prepareSideField(Database& catalogue, SideField field) {
  if (field != SideField::Maker) return createUnlessThere(catalogue, unitTable());
  if (auto made = createUnlessThere(catalogue, makersTable()); !made) return made;
  return createUnlessThere(catalogue, safetyTable());
}

Result<> writeSideField(Database& catalogue, SideField field, const std::string& key, const Value& value) {
  if (field == SideField::Maker) return writeMaker(catalogue, key, value);
  const std::string column = field == SideField::Content ? "contenuto" : "misura";
  const Value stored = isEmptied(value) ? Value(Null{}) : value;
  auto written = runWith(catalogue,
                         "INSERT INTO unita (ID, " + column + ") VALUES (CAST(? AS INTEGER), ?) ON CONFLICT (ID) DO" +
                             " UPDATE SET " + column + " = excluded." + column,
                         {Value(key), stored});
  if (!written) return written;
  return runWith(catalogue, "DELETE FROM unita WHERE ID = CAST(? AS INTEGER) AND contenuto IS NULL AND misura IS NULL",
                 {Value(key)});
}

Result<> clearSideFields(Database& catalogue) {
  for (const std::string_view table : {"unita", "sicurezza", "clipunita", "clipsicurezza"}) {
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
  return copyRows(catalogue, {"unita", "sicurezza"}, {"unita", "sicurezza"}, copies);
}

Result<> copySideRowsToClipboard(Database& catalogue, const std::vector<CopiedRow>& copies) {
  const auto made = [&](std::string_view of, std::string_view clip, TableInfo table) -> Result<> {
    const auto there = findSideTable(catalogue, clip);
    if (!there) return fail(there.error());
    if (*there) return catalogue.execute("DELETE FROM " + std::string(clip));
    table.name = clip;
    for (IndexInfo& index : table.indexes) index.name.clear();
    const auto wanted = findSideTable(catalogue, of);
    if (!wanted) return fail(wanted.error());
    return *wanted ? catalogue.createTable(table) : Result<>();
  };
  if (auto units = made("unita", "clipunita", unitTable()); !units) return units;
  if (auto makers = made("sicurezza", "clipsicurezza", safetyTable()); !makers) return makers;
  return copyRows(catalogue, {"unita", "sicurezza"}, {"clipunita", "clipsicurezza"}, copies);
}

Result<> copySideRowsFromClipboard(Database& catalogue, const std::vector<CopiedRow>& copies) {
  return copyRows(catalogue, {"clipunita", "clipsicurezza"}, {"unita", "sicurezza"}, copies);
}

}  // namespace kv
