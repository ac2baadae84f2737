#include "store/catalogue/table_rollback.h"

#include <algorithm>

#include "store/schema/working_copies.h"
#include "store/shop/session_start.h"

namespace kv {
namespace {

using Names = std::span<const std::string_view>;

bool hasAutomaticKey(const TableInfo& table) {
  return std::ranges::any_of(table.columns,
                             [](const ColumnInfo& column) { return (column.attributes & autoIncrement) != 0; });
}

/// "[a], [b]", after the engine's row number in a table that has no key for it: the history knows rows by that number.
Result<std::string> rowColumns(Database& catalogue, std::string_view name) {
  const auto table = catalogue.table(name);
  if (!table) return fail(table.error());
  std::string list = hasAutomaticKey(*table) ? "" : "rowid";
  for (const ColumnInfo& column : table->columns) list += (list.empty() ? "[" : ", [") + column.name + "]";
  return list;
}

/// Replaces all rows of one table by those of another one of the same columns.
Result<> replaceRows(Database& catalogue, const std::string& from, const std::string& to) {
  const auto columns = rowColumns(catalogue, from);
  if (!columns) return fail(columns.error());
  return catalogue.execute("DELETE FROM [" + to + "];INSERT INTO [" + to + "] (" + *columns + ") SELECT " + *columns +
                           " FROM [" + from + "]");
}

/// Sets the last automatic number of a table to that of another one.
Result<> copyLastKey(Database& catalogue, const std::string& from, const std::string& to) {
  return catalogue.execute("DELETE FROM sqlite_sequence WHERE name = '" + to +
                           "';INSERT INTO sqlite_sequence (name, seq) SELECT '" + to +
                           "', seq FROM sqlite_sequence WHERE name = '" + from + "'");
}

/// All of it or nothing.
Result<> inTransaction(Database& catalogue, const std::function<Result<>()>& work) {
  if (auto begun = catalogue.begin(); !begun) return begun;
  if (auto done = work(); !done) {
    catalogue.rollback();
    return done;
  }
  return catalogue.commit();
}

Result<> keepCopies(Database& catalogue, Names tables) {
  return inTransaction(catalogue, [&]() -> Result<> {
    if (auto dropped = dropWorkingCopies(catalogue); !dropped) return dropped;
    for (const std::string_view table : tables) {
      const std::string copy = workingCopyOf(table);
      if (auto copied = catalogue.copyTable(table, copy); !copied) return copied;
      // The copy of a table without a key has numbered its rows from 1.
      if (auto numbered = replaceRows(catalogue, std::string(table), copy); !numbered) return numbered;
      if (auto kept = copyLastKey(catalogue, std::string(table), copy); !kept) return kept;
    }
    return {};
  });
}

Result<> restoreCopies(Database& catalogue, Names tables) {
  return inTransaction(catalogue, [&]() -> Result<> {
    for (const std::string_view table : tables) {
      const std::string copy = workingCopyOf(table);
      if (auto replaced = replaceRows(catalogue, copy, std::string(table)); !replaced) return replaced;
      if (auto kept = copyLastKey(catalogue, copy, std::string(table)); !kept) return kept;
    }
    return dropWorkingCopies(catalogue);
  });
}

void releaseSession(Session& session, const Environment& env) {
  if (session.bound && env.hooks.release) env.hooks.release(session);
  session.bound = false;
}

}  // namespace

Result<bool> TableRollback::guarded(Tables tables, const TableDialog& dialog) {
  if (running_) return false;
  running_ = true;
  auto ended = run(tables, dialog);
  running_ = false;
  return ended;
}

Result<bool> TableRollback::run(Tables tables, const TableDialog& dialog) {
  Session& session = sets_.session();
  if (auto kept = keepCopies(session.catalogue, tables); !kept) return fail(kept.error());
  auto ended = dialog();
  const bool reload = !ended && ended.error().number == outOfMemory;
  if (reload) {
    releaseSession(session, env_);
    ended = dialog();
  }
  const bool committed = ended && *ended;
  const Result<> finished = committed ? dropWorkingCopies(session.catalogue) : restoreCopies(session.catalogue, tables);
  if (reload) RiavviaSessione(session, env_, {.silent = true});
  if (!ended) return ended;
  if (!finished) return fail(finished.error());
  return committed;
}

Result<bool> TableRollback::SalvaTabelleSpedizione(const TableDialog& dialog) {
  return guarded(shippingTables, dialog);
}

Result<bool> TableRollback::SalvaTabelleVarianti(const std::string& column, const VariantDialog& dialog) {
  if (!sets_.onArticle()) return false;
  const std::int64_t article = sets_.article();
  const Value stored = sets_.dataArticoli().get(column);
  const std::string current = isNull(stored) ? " " : asText(stored);
  return guarded(variantTables, [&]() -> Result<bool> {
    auto chosen = dialog(current);
    if (!chosen) return fail(chosen.error());
    if (!*chosen) return false;
    if (auto done = storeVariant(column, article, **chosen); !done) return fail(done.error());
    return true;
  });
}

Result<> TableRollback::storeVariant(const std::string& column, std::int64_t article, std::int64_t ID) {
  if (sets_.isBound()) return sets_.store(EditedSet::Articoli, column, Value{ID});
  // The lists were released for want of memory.
  auto statement = sets_.session().catalogue.prepare("UPDATE articoli SET [" + column + "] = ?1 WHERE ID = ?2");
  if (!statement) return fail(statement.error());
  statement->bind(1, ID);
  statement->bind(2, article);
  return statement->execute();
}

}  // namespace kv
