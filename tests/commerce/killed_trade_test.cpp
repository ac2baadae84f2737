// A kill in the middle of the dialogs of shipping and variants, of a price change and of a replication: the shop opens,
// no working copy is left, what was told to be done is there, and a bulk change is done wholly or not at all.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <map>

#include "commerce/prices/price_change.h"
#include "commerce/replication/language_replication.h"
#include "commerce/replication/list_replication.h"
#include "platform/text/text.h"
#include "random_merchant.h"
#include "store/catalogue/table_rollback.h"
#include "store/schema/working_copies.h"
#include "store/shop/load_shop.h"
#include "store/shop_fixture.h"
#include "store/upgrade/shop_upgrade.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

constexpr std::int64_t markedVariant = 2;
constexpr unsigned longestTrade = 100'000;  // microseconds from the first line to the kill

class KilledTrade : public ShopFixture {
 protected:
  void SetUp() override {
    std::string rows =
        "INSERT INTO pagamento (selezionato, attivo1, paesesel) VALUES (1, 1, 1);"
        "INSERT INTO paesi (strID, paese, zona) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n"
        " WHERE i < 95) SELECT i, 'Paese ' || i, 1 FROM n;"
        "INSERT INTO categorie (ID, genitore, livello, contatore, ordinamento) VALUES ('cat001', '###', 1, 1, 100);"
        "INSERT INTO opzioni (ID, nome) VALUES (1, '(nessuna)'), (2, 'Colore');";
    for (int zone = 1; zone <= shippingZones; ++zone) {
      rows += "INSERT INTO zona" + std::to_string(zone) + " (m1sp1) VALUES (50000);";
    }
    rows +=
        "INSERT INTO articoli (catID, titolo, ordinamento) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1"
        " FROM n WHERE i < 300) SELECT 'cat001', 'T0', 100 + 5 * i FROM n;"
        "UPDATE articoli SET titolo = 'T0', titolo_l2 = 'T0', prezzo = 100000";
    for (int listino = 1; listino < listini; ++listino) rows += ", prezzo" + std::to_string(listino) + " = 100000";
    run(shop, rows);
    env.hooks.AggiornaNegozio = [this](const std::string& folder) { AggiornaNegozio(folder, application); };
    user.answers.assign(20000, Answer::Yes);
    session.ShopFolder = shop;
  }

  /// Runs `trade` on the open shop in a process of its own, which is killed at a moment that chance has chosen: after
  /// the opening, every other time after its first line. What it said until then, line by line.
  std::vector<std::string> killed(const std::function<void()>& trade) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      ::close(ends[0]);
      out = ends[1];
      if (CaricaNegozio(session, env) == LoadResult::Opened) writeLine("open");
      trade();
      ::_exit(1);
    }
    ::close(ends[1]);
    ++kills;
    std::string said;
    while (said.size() < (kills % 2 == 0 ? 1U : std::string_view("open\n?").size()) && readMore(ends[0], said)) {
    }
    EXPECT_FALSE(said.empty()) << "the shop did not open";
    ::usleep(std::uniform_int_distribution<unsigned>(0, longestTrade)(chance));
    ::kill(child, SIGKILL);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status)) << "it ended by itself";
    while (readMore(ends[0], said)) {
    }
    ::close(ends[0]);
    std::vector<std::string> lines;
    for (const std::string_view line : splitLines(said)) lines.emplace_back(line);
    return lines;
  }
  static bool readMore(int from, std::string& text) {
    char piece[4096];
    const ssize_t size = ::read(from, piece, sizeof piece);
    if (size > 0) text.append(piece, static_cast<std::size_t>(size));
    return size > 0;
  }
  void writeLine(const std::string& line) const {
    const std::string whole = line + "\n";
    if (::write(out, whole.data(), whole.size()) < 0) ::_exit(2);
  }
  /// The shop opens without a word, whole and without working copies.
  void checkOpening() {
    Session again;
    again.ShopFolder = shop;
    ASSERT_EQ(CaricaNegozio(again, env), LoadResult::Opened);
    EXPECT_TRUE(user.shown.empty());
    for (const auto& [tables, name] : {std::pair{std::span<const std::string_view>(shippingTables), "shipping"},
                                       std::pair{std::span<const std::string_view>(variantTables), "variants"}}) {
      for (const std::string_view table : tables) {
        EXPECT_FALSE(again.catalogue.table(workingCopyOf(table))) << name << " " << table;
      }
    }
    again.catalogue.close();
    EXPECT_EQ(read(shop, "PRAGMA integrity_check"), "ok");
  }
  /// The most rounds that a line "done N" names; 0 without one.
  static int lastDone(const std::vector<std::string>& lines) {
    int last = 0;
    for (const std::string& line : lines) {
      if (line.starts_with("done ")) last = std::stoi(line.substr(5));
    }
    return last;
  }
  /// Whether a column of all articles holds one text, and this is that of a round done or the one in progress.
  void expectWhole(const std::string& column, const std::string& done, const std::string& next) const {
    EXPECT_EQ(read(shop, "SELECT count(DISTINCT ifnull(" + column + ", '')) FROM articoli"), "1") << column;
    const std::string held = read(shop, "SELECT " + column + " FROM articoli");
    EXPECT_TRUE(held == done || held == next) << column << " is " << held << ", not " << done << " or " << next;
  }

  std::string shop = makeShop("negozio");
  std::mt19937 chance{seed()};
  int out = -1;
  int kills = 0;
};

/// The dialogs that edit whole tables. Each adds marked rows "d.1", "d.2", and so on beside what chance does; those of
/// even numbers end with OK.
class KilledDialog : public KilledTrade {
 protected:
  using Edit = std::function<void(RandomMerchant&, const std::string& mark)>;

  /// What is known of one dialog.
  struct Known {
    int rows = 0;
    bool closing = false;
    bool closed = false;
  };

  /// Opens one dialog after the other, and tells what it does. `isShipping`: which of the two.
  void trade(bool isShipping, unsigned seedOfRound, int firstDialog, const Edit& mark) {
    CatalogueSets sets(session);
    if (!sets.bind() || !sets.MostraArticolo(1).value_or(false)) ::_exit(3);
    TableRollback rollback(sets, env);
    ShippingEditor shipping(session, user, ',');
    VariantEditor variants(session, user, ',');
    RandomMerchant merchant(shipping, variants, seedOfRound);
    merchant.spare(markedVariant);
    for (int dialog = firstDialog;; ++dialog) {
      const std::string name = std::to_string(dialog);
      const auto edit = [&] {
        for (int row = 1, rows = 1 + merchant.below(5); row <= rows; ++row) {
          mark(merchant, name + "." + std::to_string(row));
          writeLine("row " + name);
        }
        writeLine("closing " + name);
        return dialog % 2 == 0;
      };
      const auto ended = isShipping ? rollback.SalvaTabelleSpedizione([&]() -> Result<bool> { return edit(); })
                                    : rollback.SalvaTabelleVarianti("opzione1", [&](const std::string&) {
                                        return Result<std::optional<std::int64_t>>(
                                            edit() ? std::optional<std::int64_t>(2) : std::optional<std::int64_t>());
                                      });
      if (!ended || (*ended != (dialog % 2 == 0))) ::_exit(4);
      writeLine("closed " + name);
    }
  }
  static std::map<int, Known> knownOf(const std::vector<std::string>& lines) {
    std::map<int, Known> dialogs;
    for (const std::string& line : lines) {
      const auto space = line.find(' ');
      if (space == std::string::npos) continue;
      Known& dialog = dialogs[std::stoi(line.substr(space + 1))];
      if (line.starts_with("row")) ++dialog.rows;
      if (line.starts_with("closing")) dialog.closing = true;
      if (line.starts_with("closed")) dialog.closed = true;
    }
    return dialogs;
  }
  /// The marked rows are those that the state of each dialog allows; `marks` counts those of one dialog.
  void checkRows(const std::vector<std::string>& lines, const std::function<int(int)>& marks) {
    for (const auto& [number, dialog] : knownOf(lines)) {
      const int held = marks(number);
      const bool isCancelled = number % 2 != 0;
      if (isCancelled && dialog.closed) {
        EXPECT_EQ(held, 0) << number;
      } else if (isCancelled && dialog.closing) {
        EXPECT_TRUE(held == 0 || held == dialog.rows) << number << ": " << held << " of " << dialog.rows;
      } else if (dialog.closing) {
        EXPECT_EQ(held, dialog.rows) << number;
      } else {
        // The last one may have been stored without being told.
        EXPECT_TRUE(held == dialog.rows || held == dialog.rows + 1) << number << ": " << held << " of " << dialog.rows;
      }
    }
  }
  /// Rounds of kills. `query`: counts the marked rows of a dialog, whose number goes after it.
  void killOften(bool isShipping, const Edit& mark, const std::string& query) {
    int dialogs = 0;
    for (int round = 1; round <= operationsOf(5); ++round) {
      SCOPED_TRACE("KORVANE_TEST_SEED=" + std::to_string(seed()) + ", round " + std::to_string(round));
      const auto lines = killed([&] { trade(isShipping, seed() + static_cast<unsigned>(round), 1000 * round, mark); });
      checkOpening();
      checkRows(lines, [&](int dialog) { return std::stoi(read(shop, query + std::to_string(dialog) + ".*'")); });
      dialogs += static_cast<int>(knownOf(lines).size());
    }
    EXPECT_GT(dialogs, 0);
  }
};

TEST_F(KilledDialog, OfShippingKeepsWhatWasStoredAndLeavesNoCopy) {
  const Edit mark = [this](RandomMerchant& merchant, const std::string& name) {
    merchant.editShipping();
    ShippingEditor(session, user, ',').addCountry("P" + name);
  };
  killOften(true, mark, "SELECT count(*) FROM paesi WHERE paese GLOB 'P");
}

TEST_F(KilledDialog, OfVariantsKeepsWhatWasStoredAndLeavesNoCopy) {
  const Edit mark = [this](RandomMerchant& merchant, const std::string& name) {
    merchant.editVariants();
    VariantEditor(session, user, ',').pasteOptions(markedVariant, "P" + name + "\tmisura\t1,5\t2");
  };
  killOften(false, mark, "SELECT count(*) FROM dettagliop WHERE codice GLOB 'P");
}

TEST_F(KilledTrade, OfPricesChangesAllOrNone) {
  const auto percentage = [](int round) { return round % 2 == 0 ? -10 : 10; };
  Money price = Money::ofUnits(10);
  for (int round = 1; round <= operationsOf(5); ++round) {
    const auto lines = killed([&] {
      for (int n = 1;; ++n) {
        PriceChange change;
        change.selection.lists.fill(true);
        change.percentage = std::to_string(percentage(n));
        if (ModificaPrezzi(session.catalogue, change, user) != BulkEnd::Done) ::_exit(3);
        writeLine("done " + std::to_string(n));
      }
    });
    checkOpening();
    for (int n = 1; n <= lastDone(lines); ++n) price = Trasforma(price, ruleOfPercentage(percentage(n), false));
    const Money next = Trasforma(price, ruleOfPercentage(percentage(lastDone(lines) + 1), false));
    for (int listino = 0; listino < listini; ++listino) {
      expectWhole("prezzo" + std::string(listinoSuffixes[static_cast<std::size_t>(listino)]), asText(Value(price)),
                  asText(Value(next)));
    }
    if (read(shop, "SELECT prezzo FROM articoli") == asText(Value(next))) price = next;
    EXPECT_EQ(read(shop, "SELECT count(*) FROM articoli WHERE prezzo IS NOT prezzo9"), "0") << "all lists or none";
  }
}

TEST_F(KilledTrade, OfReplicationsCopiesAllOrNone) {
  for (int round = 1; round <= operationsOf(5); ++round) {
    const std::string before = read(shop, "SELECT titolo_l2 FROM articoli");
    const std::string listBefore = read(shop, "SELECT prezzo1 FROM articoli");
    const auto titleOf = [round](int n) { return "T" + std::to_string(1000 * round + n); };
    const auto priceOf = [](int n) {
      return asText(Value(Trasforma(Money::ofUnits(10), ruleOfPercentage(n % 50, false))));
    };
    const auto lines = killed([&] {
      for (int n = 1;; ++n) {
        if (!session.catalogue.execute("UPDATE articoli SET titolo = '" + titleOf(n) + "'")) ::_exit(3);
        if (ReplicaLingue(session.catalogue, {1, 2, {false, false, true, false}}, user) != BulkEnd::Done) ::_exit(4);
        writeLine("translated " + std::to_string(n));
        ListReplication lists;
        lists.destinations.fill(true);
        lists.destinations[0] = false;
        lists.percentage = std::to_string(n % 50);
        if (ReplicaListino(session.catalogue, lists, user) != BulkEnd::Done) ::_exit(5);
        writeLine("done " + std::to_string(n));
      }
    });
    checkOpening();
    const int done = lastDone(lines);
    const bool isTranslated = lines.back() == "translated " + std::to_string(done + 1);
    const int titles = isTranslated ? done + 1 : done;
    expectWhole("titolo_l2", titles == 0 ? before : titleOf(titles), titleOf(titles + 1));
    for (const char* column : {"prezzo1", "prezzo5", "prezzo9"}) {
      expectWhole(column, done == 0 ? listBefore : priceOf(done), priceOf(done + 1));
    }
    EXPECT_EQ(read(shop, "SELECT count(*) FROM articoli WHERE prezzo1 IS NOT prezzo9"), "0") << "all lists or none";
  }
}

}  // namespace
}  // namespace kv::test
