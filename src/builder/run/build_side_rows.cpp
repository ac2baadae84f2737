// The tables of the build database that only some shops have.

#include <algorithm>

#include "builder/run/build_phases.h"
#include "commerce/prices/price_history.h"
#include "platform/files/files.h"
#include "store/catalogue/side_fields.h"
#include "store/schema/side_tables.h"

namespace kv {

namespace {

/// The maker of each article on sale: its own, else that of the nearest department above it that has one.
constexpr const char* makersOfArticles =
    "WITH RECURSIVE eredita (ID, produttore, livelli) AS ("
    "  SELECT c.ID, s.produttore, 0 FROM categorie c LEFT JOIN sicurezza s ON s.chiave = c.ID"
    "   WHERE c.genitore IS NULL OR c.genitore NOT IN (SELECT ID FROM categorie)"
    "  UNION ALL"
    "  SELECT c.ID, COALESCE(s.produttore, e.produttore), e.livelli + 1 FROM categorie c"
    "   INNER JOIN eredita e ON e.ID = c.genitore LEFT JOIN sicurezza s ON s.chiave = c.ID WHERE e.livelli < 100)"
    " SELECT a.ID, p.ID FROM articoli a LEFT JOIN sicurezza s ON s.chiave = CAST(a.ID AS TEXT)"
    " LEFT JOIN eredita e ON e.ID = a.catID INNER JOIN produttori p ON p.ID = COALESCE(s.produttore, e.produttore)"
    " WHERE COALESCE(a.fuoricatalogo, 0) = 0 ORDER BY a.ID";
constexpr const char* usedMakers =
    "SELECT ID, nome, indirizzo, contatto, responsabile, resp_indirizzo, resp_contatto FROM produttori"
    " WHERE ID IN (SELECT produttore FROM sicurezza) ORDER BY ID";
/// The time of delivery of each department, its own or that of the nearest one above it, and of articles on sale that
/// have their own.
constexpr const char* timesOfDelivery =
    "WITH RECURSIVE eredita (ID, chiave, livelli) AS ("
    "  SELECT c.ID, s.chiave, 0 FROM categorie c LEFT JOIN consegna s ON s.chiave = c.ID"
    "   WHERE c.genitore IS NULL OR c.genitore NOT IN (SELECT ID FROM categorie)"
    "  UNION ALL"
    "  SELECT c.ID, COALESCE(s.chiave, e.chiave), e.livelli + 1 FROM categorie c"
    "   INNER JOIN eredita e ON e.ID = c.genitore LEFT JOIN consegna s ON s.chiave = c.ID WHERE e.livelli < 100)"
    " SELECT e.ID AS ID, tempo, tempo_l2, tempo_l3, tempo_l4 FROM eredita e INNER JOIN consegna USING (chiave)"
    " UNION ALL SELECT chiave, tempo, tempo_l2, tempo_l3, tempo_l4 FROM consegna INNER JOIN articoli a"
    " ON chiave = CAST(a.ID AS TEXT) WHERE COALESCE(a.fuoricatalogo, 0) = 0 ORDER BY ID";
constexpr const char* completeUnits =
    "SELECT u.ID, u.contenuto, u.misura FROM unita u INNER JOIN articoli a ON a.ID = u.ID"
    " WHERE u.contenuto > 0 AND u.misura <> '' AND COALESCE(a.fuoricatalogo, 0) = 0 ORDER BY u.ID";

std::vector<std::string> namesOf(const TableInfo& table) {
  std::vector<std::string> names;
  for (const ColumnInfo& column : table.columns) names.push_back(column.name);
  return names;
}

Result<> insertRow(Statement& insert, const Statement& row) {
  std::vector<Value> values;  // bound texts must live until the row is written
  const int columns = row.columnCount();
  values.reserve(static_cast<std::size_t>(columns));
  for (int column = 0; column < columns; ++column) {
    values.push_back(row.value(column));
    insert.bind(column + 1, values.back());
  }
  return insert.execute();
}

/// Copies the rows of a query, as many columns as the table has, into a new table; none is made without a row.
Result<> copyQuery(Database& catalogue, const char* query, const TableInfo& table, BuildOutput& output) {
  auto rows = catalogue.prepare(query);
  if (!rows) return fail(rows.error());
  auto more = rows->step();
  if (!more) return fail(more.error());
  if (!*more) return {};
  if (auto made = output.addTable(table); !made) return made;
  auto insert = output.insertInto(table.name, namesOf(table));
  if (!insert) return fail(insert.error());
  for (; more && *more; more = rows->step()) {
    if (auto written = insertRow(*insert, *rows); !written) return written;
  }
  return more ? Result<>() : fail(more.error());
}

/// Copies the rows of queries into new tables, those of the side tables that the queries need.
struct SideCopy {
  Database& catalogue;
  BuildOutput& output;

  Result<> copy(const char* query, const TableInfo& table) const { return copyQuery(catalogue, query, table, output); }
  Result<> copyIf(const char* source, const char* query, const TableInfo& table) const {
    const auto present = findSideTable(catalogue, source);
    if (!present) return fail(present.error());
    return *present ? copy(query, table) : Result<>();
  }
  Result<> copySafety() const {
    const auto safety = findSideTable(catalogue, "sicurezza");
    if (!safety) return fail(safety.error());
    const auto makers = findSideTable(catalogue, "produttori");
    if (!makers) return fail(makers.error());
    if (!*safety || !*makers) return {};
    if (auto copied = copy(makersOfArticles, sentSafetyTable()); !copied) return copied;
    return copy(usedMakers, sentMakersTable());
  }
};

/// Writes the lowest prices of articles; the table is made with the first one.
class LowestWriter {
 public:
  explicit LowestWriter(BuildOutput& output) : output_(output) {}

  /// Nothing for an article that is reduced in no price list, or has no earlier price.
  Result<> add(const BuiltPrices& prices, const ArticleHistory& history, double now) {
    std::array<std::optional<LowestPrice>, listini> lowest;
    for (std::size_t list = 0; list < lowest.size(); ++list) {
      if (prices.lists[list].reduced) lowest[list] = lowestBefore(history[list], now);
    }
    if (std::ranges::none_of(lowest, [](const auto& one) { return one.has_value(); })) return {};
    if (auto ready = prepare(); !ready) return ready;
    insert_->bind(1, prices.article);
    for (int list = 0; list < listini; ++list) {
      const auto& one = lowest[static_cast<std::size_t>(list)];
      insert_->bind(2 + list, one ? Value(one->price) : Value(Null{}));
      insert_->bind(2 + listini + list, one ? Value(std::int64_t{one->days}) : Value(Null{}));
    }
    return insert_->execute();
  }

 private:
  Result<> prepare() {
    if (insert_) return {};
    const TableInfo table = sentLowestTable();
    if (auto made = output_.addTable(table); !made) return made;
    auto insert = output_.insertInto(table.name, namesOf(table));
    if (!insert) return fail(insert.error());
    insert_ = std::move(*insert);
    return {};
  }

  BuildOutput& output_;
  std::optional<Statement> insert_;
};

Result<> addLowest(PriceHistoryReader& known, double now, BuildOutput& output) {
  LowestWriter writer(output);
  auto built = BuiltPriceReader::open(output.writtenRows());
  if (!built) return fail(built.error());
  auto prices = built->next();
  for (; prices && *prices; prices = built->next()) {
    if (std::ranges::none_of((**prices).lists, &PriceState::reduced)) continue;
    auto states = known.of((**prices).article);
    if (!states) return fail(states.error());
    if (auto added = writer.add(**prices, *states, now); !added) return added;
  }
  return prices ? Result<>() : fail(prices.error());
}

Result<> copyLowestPrices(const std::string& shopFolder, double now, BuildOutput& output) {
  const std::string path = priceHistoryPath(shopFolder);
  if (!fileExists(path)) return {};
  auto history = Database::open(path, OpenMode::ReadOnly);
  auto known = history ? PriceHistoryReader::open(*history) : Result<PriceHistoryReader>(fail(history.error()));
  if (!known) {
    output.warn("Impossibile leggere i prezzi pubblicati in precedenza (" + path +
                "): accanto ai prezzi ridotti non comparirà il prezzo più basso dei 30 giorni precedenti.");
    return {};
  }
  return addLowest(*known, now, output);
}

}  // namespace

Result<> copySideTables(Database& catalogue, const ShopFacts& shop, double now, BuildOutput& output) {
  const SideCopy sides{catalogue, output};
  if (auto copied = sides.copyIf("unita", completeUnits, sentUnitTable()); !copied) return copied;
  if (auto copied = sides.copySafety(); !copied) return copied;
  if (auto copied = sides.copyIf("consegna", timesOfDelivery, sentDeliveryTable()); !copied) return copied;
  return copyLowestPrices(shop.folders.shop, now, output);
}

}  // namespace kv
