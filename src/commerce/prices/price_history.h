#pragma once
// What the shop on the web has really asked for its articles: `prezzi.mdb` of the shop folder, beside the catalogue and
// not in it, so that a restored copy of the catalogue does not forget what was published since. One row per article,
// price list and change. It is written when the host has confirmed a load, from the build database that was loaded, and
// read by the next build.

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "commerce/prices/lowest_price.h"
#include "platform/database/database.h"
#include "platform/ports/result.h"
#include "store/schema/schema.h"

namespace kv {

/// The file of the history in a shop folder.
std::string priceHistoryPath(const std::string& shopFolder);

/// What an article of a build database costs in each price list, without VAT.
struct BuiltPrices {
  std::int64_t article = 0;
  std::array<PriceState, listini> lists;  ///< `since` is not set
};

/// The articles of a build database with their prices, by rising numbers.
class BuiltPriceReader {
 public:
  /// Failures as Database::prepare. The database outlives the reader.
  static Result<BuiltPriceReader> open(Database& build);
  /// The next article; none at the end.
  Result<std::optional<BuiltPrices>> next();

 private:
  explicit BuiltPriceReader(Statement rows) : rows_(std::move(rows)) {}
  Statement rows_;
};

/// The states of one article by price list, in the order of time.
using ArticleHistory = std::array<std::vector<PriceState>, listini>;

/// The history, read once by rising numbers of articles.
class PriceHistoryReader {
 public:
  /// A reader without any history.
  PriceHistoryReader() = default;
  /// Failures as Database::prepare. The database outlives the reader.
  static Result<PriceHistoryReader> open(Database& history);
  /// The states of an article; empty lists for one without any. `article` is greater than that of the last call;
  /// articles between the two are left out. Failures as Statement::step.
  Result<ArticleHistory> of(std::int64_t article);
  /// The number of the next article that has states; none at the end.
  std::optional<std::int64_t> upcoming() const { return upcoming_; }

 private:
  Result<> advance();
  std::optional<Statement> rows_;
  std::optional<std::int64_t> upcoming_;
};

/// Notes what the build database `db/sql.mdb` of a shop asks as published at `now`, seconds since 1970; makes the
/// history where there is none. Prices that are as they were get no row. All of it or nothing, unless goOn, asked every
/// few milliseconds, says false: what was noted by then is kept, as it is true, and the next call notes the rest.
/// Cancelled then; other failures as Database::open, Database::create and Statement::execute.
Result<> recordPublishedPrices(const std::string& shopFolder, double now, const std::function<bool()>& goOn = {});

}  // namespace kv
