#include "commerce/variants/variant_rows.h"

#include <functional>

#include "platform/database/recordset.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

constexpr int variantSlots = 4;
constexpr int oldOptions = 15;  // columns of the layout before `dettagliop`

Result<> wholly(Database& catalogue, const std::function<Result<>()>& work) {
  if (auto begun = catalogue.begin(); !begun) return begun;
  if (auto done = work(); !done) {
    catalogue.rollback();
    return done;
  }
  return catalogue.commit();
}

/// Adds a row with these fields to a table with an automatic ID, which is returned.
Result<std::int64_t> insertRow(Database& catalogue, std::string_view table,
                               const std::vector<std::pair<std::string, Value>>& fields) {
  auto rows = catalogue.openRecordset("SELECT * FROM " + std::string(table) + " WHERE ID = 0");
  if (!rows) return fail(rows.error());
  if (auto begun = rows->addNew(); !begun) return fail(begun.error());
  const std::int64_t ID = asInteger(rows->get("ID"));
  for (const auto& [column, value] : fields) {
    if (auto set = rows->set(column, value); !set) return fail(set.error());
  }
  if (auto updated = rows->update(); !updated) return fail(updated.error());
  return ID;
}

/// Every column of a variant but its ID.
std::string variantColumns() {
  std::string names = "selezionato";
  for (const std::string_view suffix : languageSuffixes) names += ", nome" + std::string(suffix);
  for (int n = 1; n <= oldOptions; ++n) {
    const std::string number = std::to_string(n);
    for (const std::string_view suffix : languageSuffixes) names += ", opzione" + number + std::string(suffix);
    names += ", prezzo" + number + ", peso" + number;
  }
  return names;
}

}  // namespace

Result<> executeFor(Database& catalogue, std::string_view sql, std::int64_t first, std::int64_t second) {
  auto statement = catalogue.prepare(sql);
  if (!statement) return fail(statement.error());
  statement->bind(1, first);
  if (sql.find("?2") != std::string_view::npos) statement->bind(2, second);
  return statement->execute();
}

std::string allSlotColumns() {
  std::string names;
  for (int listino = 0; listino < listini; ++listino) {
    for (int slot = 1; slot <= variantSlots; ++slot)
      names += (names.empty() ? "" : ", ") + variantColumn(slot, listino);
  }
  return names;
}

Result<std::int64_t> insertVariant(Database& catalogue) { return insertRow(catalogue, "opzioni", {}); }

Result<> removeVariant(Database& catalogue, std::int64_t ID) {
  return wholly(catalogue, [&]() -> Result<> {
    if (auto gone = executeFor(catalogue, "DELETE FROM opzioni WHERE ID = ?1", ID); !gone) return gone;
    return executeFor(catalogue, "DELETE FROM dettagliop WHERE OpID = ?1", ID);
  });
}

Result<std::int64_t> copyVariant(Database& catalogue, std::int64_t ID) {
  std::int64_t copy = 0;
  const auto copied = wholly(catalogue, [&]() -> Result<> {
    const std::string columns = variantColumns();
    auto done = executeFor(
        catalogue, "INSERT INTO opzioni (" + columns + ") SELECT " + columns + " FROM opzioni WHERE ID = ?1", ID);
    if (!done) return done;
    const auto last = catalogue.scalar("SELECT last_insert_rowid()");
    if (!last) return fail(last.error());
    copy = asInteger(*last);
    const std::string fields = "codice, testo, testo_l2, testo_l3, testo_l4, peso, prezzo, selezionato";
    return executeFor(catalogue,
                      "INSERT INTO dettagliop (OpID, " + fields + ") SELECT ?2, " + fields +
                          " FROM dettagliop WHERE OpID = ?1 ORDER BY ID",
                      ID, copy);
  });
  if (!copied) return fail(copied.error());
  return copy;
}

Result<std::int64_t> insertOptions(Database& catalogue, std::int64_t variant, std::string_view suffix,
                                   const std::vector<NewOption>& options) {
  std::int64_t ID = 0;
  const auto text = [](const std::string& field) { return field.empty() ? Value(Null{}) : Value(field); };
  const auto inserted = wholly(catalogue, [&]() -> Result<> {
    for (const NewOption& option : options) {
      const auto row = insertRow(catalogue, "dettagliop",
                                 {{"OpID", Value(variant)},
                                  {"codice", text(option.codice)},
                                  {"testo" + std::string(suffix), text(option.testo)},
                                  {"prezzo", option.prezzo ? Value(*option.prezzo) : Value(Null{})},
                                  {"peso", option.peso ? Value(*option.peso) : Value(Null{})}});
      if (!row) return fail(row.error());
      ID = *row;
    }
    return {};
  });
  if (!inserted) return fail(inserted.error());
  return ID;
}

Result<> moveMark(Database& catalogue, std::int64_t variant, std::int64_t option) {
  return wholly(catalogue, [&]() -> Result<> {
    auto cleared =
        executeFor(catalogue, "UPDATE dettagliop SET selezionato = '' WHERE OpID = ?1 AND selezionato <> ''", variant);
    if (!cleared) return cleared;
    return executeFor(catalogue, "UPDATE dettagliop SET selezionato = '.' WHERE OpID = ?1 AND ID = ?2", variant,
                      option);
  });
}

}  // namespace kv
