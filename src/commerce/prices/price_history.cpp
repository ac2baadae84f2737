#include "commerce/prices/price_history.h"

#include <algorithm>
#include <limits>

#include "platform/files/files.h"
#include "store/schema/column_family.h"
#include "store/shop/price_history_file.h"

namespace kv {

using namespace columns;  // the shorthands of a list of rules

namespace {

/// Columns of a price list in the reader's rows: list price, price asked, factor of the department.
constexpr int columnsOfList = 3;
/// A millisecond or two.
constexpr std::size_t articlesPerLook = 256;
constexpr const char* insertState =
    "INSERT INTO prezzi (articolo, listino, dal, netto, ridotto) VALUES (?, ?, ?, ?, ?)";

TableInfo historyTable() {
  ColumnRule since = number("dal");
  since.type = ColumnType::Double;
  TableInfo table =
      spreadTable({"prezzi", {number("articolo"), smallNumber("listino"), since, money("netto"), flag("ridotto")}});
  IndexInfo index;
  index.name = "ix_prezzi_articolo";
  index.columns = {"articolo", "listino", "dal"};
  table.indexes.push_back(std::move(index));
  return table;
}

std::string builtQuery() {
  std::string sql = "SELECT o.ID";
  for (const std::string_view suffix : listinoSuffixes) {
    const std::string n(suffix);
    sql += ", o.implistino" + n + ", o.importo" + n + ", c.sconto" + n;
  }
  return sql +
         " FROM ordinamento o INNER JOIN dettaglio d ON d.ID = o.ID LEFT JOIN categorie c ON c.ID = d.catID"
         " ORDER BY o.ID";
}

/// The price asked in the list whose columns begin at `at`, as the site's scripts compute it: an offer as it is, else
/// the list price by the factor of the department. Nothing where neither is entered, or the amount is out of range.
PriceState readState(const Statement& rows, int at) {
  PriceState state;
  const Money list = rows.money(at);
  const Money asked = rows.money(at + 1);
  if (list == Money() && asked == Money()) return state;
  const float factor = asked != list || rows.isNull(at + 2) ? 1.0F : rows.single(at + 2);
  state.price = factor == 1.0F ? asked : multiplyThroughSingle(list, factor);
  state.reduced = state.price && *state.price < list;
  return state;
}

bool isSame(const PriceState& a, const PriceState& b) { return a.price == b.price && a.reduced == b.reduced; }

Result<Database> openHistory(const std::string& path) {
  if (!fileExists(path)) {
    const std::vector<TableInfo> tables{historyTable()};
    if (auto created = createDatabase(path, tables); !created) return fail(created.error());
  }
  return Database::open(path, OpenMode::Exclusive);
}

/// When prices are noted, and who may end it.
struct Noting {
  double now = 0;
  const std::function<bool()>& goOn;
};

/// Adds the states that differ from the last ones; `build` is read while `history` is written.
class HistoryWriter {
 public:
  HistoryWriter(Statement insert, const Noting& noting) : insert_(std::move(insert)), noting_(noting) {}

  /// Cancelled when whoever is asked now and then says so.
  Result<> add(const BuiltPrices& prices, const ArticleHistory& known) {
    if (noting_.goOn && ++articles_ % articlesPerLook == 0 && !noting_.goOn()) {
      return fail(ErrorKind::Cancelled, "", "cancelled");
    }
    for (std::size_t list = 0; list < prices.lists.size(); ++list) {
      const PriceState last = known[list].empty() ? PriceState() : known[list].back();
      if (isSame(last, prices.lists[list])) continue;
      if (auto written = write(prices.article, list, prices.lists[list], last.since); !written) return written;
    }
    return {};
  }

 private:
  /// A clock that was set back must not change the order of what was published.
  Result<> write(std::int64_t article, std::size_t list, const PriceState& state, double atLeast) {
    insert_.bind(1, article);
    insert_.bind(2, static_cast<std::int64_t>(list));
    insert_.bind(3, std::max(noting_.now, atLeast));
    insert_.bindNull(4);
    if (state.price) insert_.bind(4, *state.price);
    insert_.bind(5, state.reduced);
    return insert_.execute();
  }

  Statement insert_;
  const Noting& noting_;
  std::size_t articles_ = 0;
};

/// Articles that the history has and the build has not, up to `until`: they have no price any more.
Result<> endOthers(PriceHistoryReader& known, std::int64_t until, HistoryWriter& writer) {
  while (known.upcoming() && *known.upcoming() < until) {
    const BuiltPrices none{*known.upcoming(), {}};
    auto states = known.of(none.article);
    if (!states) return fail(states.error());
    if (auto written = writer.add(none, *states); !written) return written;
  }
  return {};
}

/// The reader never meets a row that is added: those of an article come before its position when they are written.
Result<> addStates(Database& build, Database& history, const Noting& noting) {
  auto insert = history.prepare(insertState);
  if (!insert) return fail(insert.error());
  HistoryWriter writer(std::move(*insert), noting);
  auto built = BuiltPriceReader::open(build);
  if (!built) return fail(built.error());
  auto known = PriceHistoryReader::open(history);
  if (!known) return fail(known.error());
  auto prices = built->next();
  for (; prices && *prices; prices = built->next()) {
    const std::int64_t article = (**prices).article;
    if (auto ended = endOthers(*known, article, writer); !ended) return ended;
    auto states = known->of(article);
    if (!states) return fail(states.error());
    if (auto written = writer.add(**prices, *states); !written) return written;
  }
  if (!prices) return fail(prices.error());
  return endOthers(*known, std::numeric_limits<std::int64_t>::max(), writer);
}

}  // namespace

std::string priceHistoryPath(const std::string& shopFolder) { return entryPath(shopFolder, priceHistoryFile); }

Result<BuiltPriceReader> BuiltPriceReader::open(Database& build) {
  auto rows = build.prepare(builtQuery());
  if (!rows) return fail(rows.error());
  return BuiltPriceReader(std::move(*rows));
}

Result<std::optional<BuiltPrices>> BuiltPriceReader::next() {
  const auto more = rows_.step();
  if (!more) return fail(more.error());
  if (!*more) return std::optional<BuiltPrices>();
  BuiltPrices prices;
  prices.article = rows_.integer(0);
  for (std::size_t list = 0; list < prices.lists.size(); ++list) {
    prices.lists[list] = readState(rows_, 1 + columnsOfList * static_cast<int>(list));
  }
  return std::optional<BuiltPrices>(prices);
}

Result<PriceHistoryReader> PriceHistoryReader::open(Database& history) {
  auto rows =
      history.prepare("SELECT articolo, listino, dal, netto, ridotto FROM prezzi ORDER BY articolo, listino, dal");
  if (!rows) return fail(rows.error());
  PriceHistoryReader reader;
  reader.rows_ = std::move(*rows);
  if (auto first = reader.advance(); !first) return fail(first.error());
  return reader;
}

Result<> PriceHistoryReader::advance() {
  const auto more = rows_->step();
  if (!more) return fail(more.error());
  upcoming_ = *more ? std::optional(rows_->integer(0)) : std::nullopt;
  return {};
}

Result<ArticleHistory> PriceHistoryReader::of(std::int64_t article) {
  ArticleHistory states;
  while (upcoming_ && *upcoming_ <= article) {
    const std::int64_t list = rows_->integer(1);
    if (*upcoming_ == article && list >= 0 && list < listini) {
      const auto price = rows_->isNull(3) ? std::nullopt : std::optional(rows_->money(3));
      states[static_cast<std::size_t>(list)].push_back({rows_->number(2), price, rows_->flag(4)});
    }
    if (auto next = advance(); !next) return fail(next.error());
  }
  return states;
}

Result<> recordPublishedPrices(const std::string& shopFolder, double now, const std::function<bool()>& goOn) {
  auto build = Database::open(entryPath(shopFolder, "db/sql.mdb"), OpenMode::ReadOnly);
  if (!build) return fail(build.error());
  auto history = openHistory(priceHistoryPath(shopFolder));
  if (!history) return fail(history.error());
  if (auto begun = history->begin(); !begun) return begun;
  auto added = addStates(*build, *history, {now, goOn});
  const bool isCancelled = !added && added.error().kind == ErrorKind::Cancelled;
  if (!added && !isCancelled) {
    history->rollback();
    return added;
  }
  auto kept = history->commit();
  return kept && isCancelled ? added : kept;
}

}  // namespace kv
