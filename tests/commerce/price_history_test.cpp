// The history of published prices: which rows a confirmed load adds, and sixty days against a literal calculation.
#include "commerce/prices/price_history.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platform/files/files.h"
#include "support/row_text.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

constexpr double secondsPerDay = 86400;

class PublishedPrices : public testing::Test {
 protected:
  PublishedPrices() {
    EXPECT_TRUE(createFolders(root.path() + "/db"));
    EXPECT_TRUE(createDatabase(buildPath(), buildDatabaseTables()));
    build("INSERT INTO categorie (ID, sconto, sconto2) VALUES ('cat001', 1, 1)");
  }
  std::string buildPath() const { return root.path() + "/db/sql.mdb"; }
  void build(const std::string& sql) {
    auto database = Database::open(buildPath(), OpenMode::Scratch).value();
    const auto done = database.execute(sql);
    ASSERT_TRUE(done) << done.error().what;
  }
  /// An article with a list price and what is asked for it, in ten-thousandths; -1: it is gone.
  void article(int ID, std::int64_t list, std::int64_t asked, const std::string& n = "") {
    const std::string id = std::to_string(ID);
    std::string sql = "BEGIN; DELETE FROM dettaglio WHERE ID = " + id + "; DELETE FROM ordinamento WHERE ID = " + id;
    if (list >= 0) {
      sql += "; INSERT INTO dettaglio (ID, catID) VALUES (" + id +
             ", 'cat001'); INSERT INTO ordinamento (ID, implistino" + n + ", importo" + n + ") VALUES (" + id + ", " +
             std::to_string(list) + ", " + std::to_string(asked) + ")";
    }
    build(sql + "; COMMIT");
  }
  void publish(double day) {
    const auto done = recordPublishedPrices(root.path(), day * secondsPerDay);
    ASSERT_TRUE(done) << done.error().what;
  }
  std::string history() {
    auto database = Database::open(priceHistoryPath(root.path()), OpenMode::ReadOnly).value();
    return rows(database,
                "SELECT articolo, listino, CAST(dal / 86400 AS INTEGER), netto, ridotto FROM prezzi ORDER BY rowid");
  }
  std::optional<LowestPrice> lowest(int ID, int list, double day) {
    if (!fileExists(priceHistoryPath(root.path()))) return {};
    auto database = Database::open(priceHistoryPath(root.path()), OpenMode::ReadOnly).value();
    auto reader = PriceHistoryReader::open(database).value();
    const ArticleHistory states = reader.of(ID).value();
    return lowestBefore(states[static_cast<std::size_t>(list)], day * secondsPerDay);
  }

  TempFolder root;
};

TEST_F(PublishedPrices, TheFirstLoadNotesEveryPriceThatIsEntered) {
  article(1, 200000, 200000);
  article(2, 90000, 70000, "2");
  publish(3);
  EXPECT_EQ(history(), "1|0|3|200000|0\n2|2|3|70000|1\n");
}

TEST_F(PublishedPrices, ALoadWithoutAChangeAddsNoRow) {
  article(1, 200000, 200000);
  publish(3);
  publish(4);
  EXPECT_EQ(history(), "1|0|3|200000|0\n");
}

TEST_F(PublishedPrices, AChangedPriceAReductionAndAnArticleThatGoesAreARowEach) {
  article(1, 200000, 200000);
  article(5, 10000, 10000);
  publish(3);
  article(1, 250000, 250000);
  publish(4);
  article(1, 300000, 250000);
  publish(5);
  article(5, -1, 0);
  publish(6);
  article(5, 10000, 10000);
  publish(7);
  EXPECT_EQ(history(), "1|0|3|200000|0\n5|0|3|10000|0\n1|0|4|250000|0\n1|0|5|250000|1\n5|0|6|null|0\n5|0|7|10000|0\n");
}

TEST_F(PublishedPrices, TheDiscountOfTheDepartmentCountsButNotForAnOffer) {
  article(1, 199900, 199900);
  article(2, 199900, 190000);
  build("UPDATE categorie SET sconto = 0.85");
  publish(3);
  EXPECT_EQ(history(), "1|0|3|169915|1\n2|0|3|190000|1\n");
}

TEST_F(PublishedPrices, AnArticleThatIsNewAmongOthersIsFound) {
  article(2, 20000, 20000);
  article(9, 90000, 90000);
  publish(1);
  article(5, 50000, 50000);
  article(2, -1, 0);
  publish(2);
  EXPECT_EQ(history(), "2|0|1|20000|0\n9|0|1|90000|0\n2|0|2|null|0\n5|0|2|50000|0\n");
}

TEST_F(PublishedPrices, AClockThatWasSetBackKeepsTheOrder) {
  article(1, 200000, 200000);
  publish(10);
  article(1, 100000, 100000);
  publish(4);
  EXPECT_EQ(history(), "1|0|10|200000|0\n1|0|10|100000|0\n");
}

TEST_F(PublishedPrices, WithoutABuildNothingIsNoted) {
  ASSERT_TRUE(deleteFile(buildPath()));
  EXPECT_FALSE(recordPublishedPrices(root.path(), 1));
  EXPECT_FALSE(fileExists(priceHistoryPath(root.path())));
}

TEST_F(PublishedPrices, ACancelAmongManyArticlesKeepsWhatWasNotedAndTheNextLoadNotesTheRest) {
  build(
      "WITH RECURSIVE n(i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM n WHERE i < 1000) INSERT INTO ordinamento (ID, "
      "implistino, importo) SELECT i, 10000, 10000 FROM n; INSERT INTO dettaglio (ID, catID) SELECT ID, 'cat001' FROM "
      "ordinamento");
  const auto cancelAt = [&](double day, int asking) {
    const auto done = recordPublishedPrices(root.path(), day * secondsPerDay, [&] { return --asking > 0; });
    return !done && done.error().kind == ErrorKind::Cancelled;
  };
  const auto noted = [&] {
    auto database = Database::open(priceHistoryPath(root.path()), OpenMode::ReadOnly).value();
    return rows(database, "SELECT CAST(dal / 86400 AS INTEGER), COUNT(netto), COUNT(*) FROM prezzi GROUP BY 1");
  };
  EXPECT_TRUE(cancelAt(3, 3));
  EXPECT_EQ(noted(), "3|767|767\n") << "the window is asked at every 256th article";
  publish(4);
  EXPECT_EQ(noted(), "3|767|767\n4|233|233\n");
  build("DELETE FROM ordinamento WHERE ID > 2");
  EXPECT_TRUE(cancelAt(5, 1)) << "articles that are gone are as many";
  publish(5);
  EXPECT_EQ(noted(), "3|767|767\n4|233|233\n5|0|998\n");
}

/// A merchant's calendar, kept hour by hour and searched hour by hour.
class Calendar {
 public:
  static constexpr int perDay = 24;
  struct Hour {
    std::int64_t price = -1;  ///< in ten-thousandths; -1: not on sale
    bool reduced = false;
  };
  /// What the shop on the web shows in the hour that begins.
  void pass(Hour hour) { hours_.push_back(hour); }
  int now() const { return static_cast<int>(hours_.size()); }

  /// The lowest price of the 720 hours before the reduction, which began in the first of the last reduced hours.
  std::int64_t lowest() const {
    int start = now();
    while (start > 0 && hours_[at(start - 1)].reduced && hours_[at(start - 1)].price >= 0) --start;
    std::int64_t found = -1;
    for (int hour = std::max(0, start - daysBeforeReduction * perDay); hour < start; ++hour) {
      const std::int64_t price = hours_[at(hour)].price;
      if (price >= 0 && (found < 0 || price < found)) found = price;
    }
    return found;
  }

 private:
  static std::size_t at(int hour) { return static_cast<std::size_t>(hour); }
  std::vector<Hour> hours_;
};

/// What the merchant may do in an hour of publishing.
struct Shelf {
  std::int64_t list = 200000;
  std::int64_t asked = 200000;
  bool sold = true;

  void change(std::mt19937& random) {
    switch (random() % 5) {
      case 0:
        list = asked = 50000 + static_cast<std::int64_t>(random() % 40) * 5000;
        break;
      case 1:
        asked = std::max<std::int64_t>(100, list - static_cast<std::int64_t>(random() % 10) * 3000);
        break;
      case 2:
        asked = list;
        break;
      case 3:
        sold = random() % 4 != 0;
        break;
      default:
        break;
    }
  }
  Calendar::Hour shown() const {
    if (!sold) return {};
    return {asked, asked < list};
  }
};

TEST_F(PublishedPrices, SixtyDaysAgreeWithALiteralCalculation) {
  std::mt19937 random(20261122);
  Shelf shelf;
  Calendar calendar;
  Calendar::Hour shown;
  for (int hour = 0; hour < 60 * Calendar::perDay; ++hour) {
    // Weeks without any publishing, days with several; one load in four fails and leaves the former prices.
    const bool away = hour / Calendar::perDay % 20 > 14;
    if (!away && random() % 24 == 0) {
      shelf.change(random);
      article(1, shelf.sold ? shelf.list : -1, shelf.asked);
      if (random() % 4 != 0) {
        publish(static_cast<double>(hour) / Calendar::perDay);
        shown = shelf.shown();
      }
    }
    calendar.pass(shown);
    if (hour % 12 != 0) continue;
    const auto told = lowest(1, 0, static_cast<double>(hour + 1) / Calendar::perDay);
    ASSERT_EQ(told ? told->price.tenThousandths() : -1, calendar.lowest()) << "hour " << hour;
  }
}

}  // namespace
}  // namespace kv::test
