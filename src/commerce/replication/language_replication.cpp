#include "commerce/replication/language_replication.h"

#include <algorithm>

#include "platform/ports/failure_text.h"
#include "platform/text/text.h"
#include "store/schema/column_family.h"

namespace kv {
namespace {

constexpr std::string_view nothingChosen = "E' necessario selezionare le informazioni da replicare";
constexpr std::string_view overwriteQuestion =
    "Verranno sovrascritti tutti i dati della lingua di destinazione.\nProcedere con la replica?";
constexpr std::string_view shopCaption = "Replica negozio e sito...";
constexpr std::string_view variantCaption = "Replica varianti...";
// Rows between two repaintings of the window.
constexpr std::int64_t rowsAtOnce = 500;

/// The tables of the four boxes.
const std::array<std::vector<ReplicatedTable>, copiedParts.size()>& tablesOfParts() {
  static const std::array<std::vector<ReplicatedTable>, copiedParts.size()> tables{
      {{{"generale", shopCaption}, {"pagamento", shopCaption}},
       {{"categorie", "Replica reparti..."}},
       {{"articoli", "Replica articoli..."}},
       {{"opzioni", variantCaption}, {"dettagliop", variantCaption}}}};
  return tables;
}

std::vector<ReplicatedTable> tablesOf(const LanguageReplication& replication) {
  std::vector<ReplicatedTable> tables;
  for (std::size_t i = 0; i < replication.parts.size(); ++i) {
    if (!replication.parts[i]) continue;
    tables.insert(tables.end(), tablesOfParts()[i].begin(), tablesOfParts()[i].end());
  }
  return tables;
}

/// A column that is copied: its name in the destination, and what it gets there as an SQL expression.
struct CopiedColumn {
  std::string name;
  std::string value;
};

std::string suffixed(const std::string& name, int language) {
  return name + std::string(languageSuffixes[static_cast<std::size_t>(language - 1)]);
}

std::string copiedValue(const std::string& from, const std::string& to, bool onlyEmpty) {
  return onlyEmpty ? "iif(ifnull(" + to + ", '') = '', " + from + ", " + to + ")" : from;
}

/// The columns that the views of both languages have, each with a version for every language.
std::vector<CopiedColumn> copiedColumns(std::string_view table, const LanguageReplication& replication) {
  std::vector<CopiedColumn> columns;
  const TableRule* rule = languageViewRule(table);
  if (rule == nullptr) return columns;
  const bool isPayment = equalsIgnoringCase(table, "pagamento");
  for (const ColumnRule& column : rule->columns) {
    const bool isText = column.type == ColumnType::Text || column.type == ColumnType::Memo;
    if (!isText || !column.inLanguageView || column.spread != Spread::Languages) continue;
    const std::string from = suffixed(column.name, replication.source);
    const std::string to = suffixed(column.name, replication.destination);
    std::string value = copiedValue(from, to, replication.onlyEmpty);
    // An empty name of a payment method would leave the shop without one.
    if (isPayment && matchesLike(column.name, "nome?")) value = "ifnull(nullif(" + value + ", ''), ' ')";
    columns.push_back({to, std::move(value)});
  }
  return columns;
}

/// Whether a field gets another text, every character counted with its case.
std::string differs(const CopiedColumn& column) {
  return "(" + column.value + ") COLLATE BINARY IS NOT " + column.name;
}

std::string anyDiffers(const std::vector<CopiedColumn>& columns) {
  std::string condition;
  for (const CopiedColumn& column : columns) condition += (condition.empty() ? "" : " OR ") + differs(column);
  return condition;
}

/// The rowid at which a range of rowsAtOnce rows that starts at ?1 ends, `last` where fewer are left.
Result<std::int64_t> endOfRange(Statement& ends, std::int64_t from, std::int64_t last) {
  ends.bind(1, from);
  ends.bind(2, rowsAtOnce - 1);
  const auto found = ends.step();
  if (!found) return fail(found.error());
  const std::int64_t end = *found ? ends.integer(0) : last;
  ends.reset();
  return end;
}

/// The rows of a table: the first and the last rowid, and how many there are.
struct RowBounds {
  std::int64_t first = 0, last = 0, count = 0;
};

Result<RowBounds> boundsOf(Database& catalogue, const std::string& table) {
  auto bounds = catalogue.prepare("SELECT min(rowid), max(rowid), count(*) FROM " + table);
  if (!bounds) return fail(bounds.error());
  const auto found = bounds->step();
  if (!found) return fail(found.error());
  return RowBounds{bounds->integer(0), bounds->integer(1), bounds->integer(2)};
}

Result<> replicateRows(Database& catalogue, const ReplicatedTable& table, const std::string& update, UserPort& user) {
  const std::string name(table.name);
  const auto bounds = boundsOf(catalogue, name);
  if (!bounds) return fail(bounds.error());
  if (bounds->count == 0) return {};
  std::int64_t from = bounds->first;
  // The ends come from the rows: IDs may be far apart.
  auto ends = catalogue.prepare("SELECT rowid FROM " + name + " WHERE rowid >= ?1 ORDER BY rowid LIMIT 1 OFFSET ?2");
  if (!ends) return fail(ends.error());
  auto writer = catalogue.prepare(update);
  if (!writer) return fail(writer.error());
  for (double written = 0;; written += rowsAtOnce) {
    const auto end = endOfRange(*ends, from, bounds->last);
    if (!end) return fail(end.error());
    writer->bind(1, from);
    writer->bind(2, *end);
    if (auto done = writer->execute(); !done) return done;
    user.progress({table.caption, written, static_cast<double>(bounds->count)});
    ignore(user.yield(), "the window repaints; the run has no cancel");
    if (*end >= bounds->last) return {};
    from = *end + 1;
  }
}

Result<> replicateAll(Database& catalogue, const LanguageReplication& replication, UserPort& user) {
  if (auto begun = catalogue.begin(); !begun) return begun;
  for (const ReplicatedTable& table : tablesOf(replication)) {
    if (auto done = ReplicaLingua(catalogue, table, replication, user); !done) {
      catalogue.rollback();
      return done;
    }
  }
  return catalogue.commit();
}

}  // namespace

std::string languageItem(const Session& session, int language) {
  return "Lingua " + std::to_string(language) + " (" + session.languageNames[static_cast<std::size_t>(language - 1)] +
         ")";
}

std::vector<int> destinationsOf(const Session& session, int source) {
  std::vector<int> languages;
  for (int language = 1; language <= session.languageCount; ++language) {
    if (language != source) languages.push_back(language);
  }
  return languages;
}

std::string ReplicationCount::text(bool written) const {
  return (written ? "Campi scritti: " : "Campi da scrivere: ") + std::to_string(fields) + ", in " +
         std::to_string(rows) + (rows == 1 ? " riga" : " righe") + beyondSummary(beyond);
}

Result<ReplicationCount> countReplication(Database& catalogue, const LanguageReplication& replication) {
  ReplicationCount count;
  for (const ReplicatedTable& table : tablesOf(replication)) {
    const auto columns = copiedColumns(table.name, replication);
    std::string sum;
    for (const CopiedColumn& column : columns) sum += (sum.empty() ? "(" : " + (") + differs(column) + ")";
    auto query = catalogue.prepare("SELECT total(n), count(*) FROM (SELECT " + sum + " AS n FROM " +
                                   std::string(table.name) + ") WHERE n > 0");
    if (!query) return fail(query.error());
    const auto found = query->step();
    if (!found) return fail(found.error());
    count.fields += static_cast<std::size_t>(query->integer(0));
    count.rows += static_cast<std::size_t>(query->integer(1));
  }
  return count;
}

Result<> ReplicaLingua(Database& catalogue, const ReplicatedTable& table, const LanguageReplication& replication,
                       UserPort& user) {
  const auto columns = copiedColumns(table.name, replication);
  user.progress({table.caption, 0, 1});
  if (columns.empty()) return {};
  std::string assignments;
  for (const CopiedColumn& column : columns) {
    assignments += (assignments.empty() ? "" : ", ") + column.name + " = " + column.value;
  }
  return replicateRows(catalogue, table,
                       "UPDATE " + std::string(table.name) + " SET " + assignments +
                           " WHERE rowid BETWEEN ?1 AND ?2 AND (" + anyDiffers(columns) + ")",
                       user);
}

BulkEnd ReplicaLingue(Database& catalogue, const LanguageReplication& replication, UserPort& user) {
  if (std::ranges::none_of(replication.parts, [](bool ticked) { return ticked; })) {
    user.message(std::string(nothingChosen), Icon::Exclamation);
    return BulkEnd::Stay;
  }
  const Question question{std::string(overwriteQuestion), Buttons::YesNo, Answer::No, Icon::Question};
  if (user.question(question) != Answer::Yes) return BulkEnd::Stay;
  const auto done = replicateAll(catalogue, replication, user);
  user.progress({});
  if (done) return BulkEnd::Done;
  user.message(failureText(done.error(), "La replica della lingua"), Icon::Critical);
  return BulkEnd::Stay;
}

}  // namespace kv
