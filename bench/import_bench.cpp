// Rows from elsewhere: a shop of the earlier line into an open one, beside a bare INSERT ... SELECT of its articles;
// and the accounting package's Jet database, beside mdb-export into sqlite3's .import, first and again. Each runs in a
// process of its own on a fresh copy of the catalogue, all in turn, so that they see the same machine; the fastest of
// each counts.
//
// Arguments: --quick (a tenth of the rows).

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "bench_shop.h"
#include "import/accounting/accounting_import.h"
#include "measure.h"
#include "platform/files/files.h"
#include "platform/ports/clock.h"
#include "store/exchange/primo_rows.h"
#include "support/jet_samples.h"

namespace {

using kv::bench::inOwnProcess;
using kv::bench::Measured;
using kv::bench::secondsOf;
using kv::bench::Timed;
using kv::bench::verdict;
namespace fs = std::filesystem;

constexpr int importRounds = 5;
constexpr double primoBar = 1.5, accountingBar = 3, againBar = 1.1;

class ImportedShop {
 public:
  ImportedShop(std::string folder, int articles) : folder_(std::move(folder)) {
    kv::bench::BenchShop(folder_, articles, 2);
    const std::string catalogue = folder_ + "/shop/catalog.mdb";
    fs::copy_file(catalogue, primo());
    if (!change(primo(), "UPDATE generale SET versione = 250; UPDATE articoli SET titolo = titolo || ' nuovo'") ||
        !change(catalogue, "DELETE FROM articoli WHERE ID % 2 = 0")) {
      std::abort();
    }
    const kv::test::JetTable table = kv::test::chanceArticles(1, static_cast<std::size_t>(articles) / 2);
    if (!kv::writeBytes(jet(), kv::test::jetFile(kv::test::JetVersion::Jet4, {departments(), table}))) std::abort();
  }

  Timed barePrimo() const {
    kv::Database catalogue = fresh();
    if (!catalogue.attach(primo(), kv::primoSchema)) std::abort();
    return {secondsOf([&] {
              return catalogue.begin() &&
                     catalogue.execute(
                         "DELETE FROM main.articoli; INSERT INTO main.articoli"
                         " SELECT * FROM primo.articoli") &&
                     catalogue.commit();
            }),
            0};
  }
  Timed takenPrimo() const {
    kv::Database catalogue = fresh();
    return {secondsOf([&] { return kv::takePrimoRows(catalogue, primo()).has_value(); }), 0};
  }

  /// Both tables by the tools that anybody has, into a database of their own.
  Timed bareAccounting() const {
    const std::string target = folder_ + "/tools.db";
    fs::remove(target);
    return {secondsOf([&] {
              for (const std::string table : {"Categoria", "Articoli"}) {
                const std::string command = "mdb-export '" + jet() + "' " + table + " | sqlite3 '" + target +
                                            "' '.import --csv /dev/stdin " + table + "'";
                if (std::system(command.c_str()) != 0) return false;
              }
              return true;
            }),
            0};
  }
  /// The import alone; `again`: once more, over the rows that it has written.
  Timed takenAccounting(bool again) const {
    kv::Session session;
    session.ShopFolder = folder_;
    session.catalogue = fresh();
    kv::AccountingRequest request;
    request.variant = kv::accountingVariants()[0];
    request.line = "0120100";
    request.path = jet();
    const auto import = [&] {
      kv::bench::SilentUser user;
      kv::MemorySettings settings;
      kv::Environment env{user, settings, kv::systemClock(), kv::systemRandom(), folder_, {}};
      return kv::importAccountingRows(session, env, request) == kv::AccountingEnd::Done;
    };
    const double first = secondsOf(import);
    return {again ? secondsOf(import) : first, 0};
  }

 private:
  static bool change(const std::string& path, const std::string& sql) {
    auto database = kv::Database::open(path, kv::OpenMode::Exclusive);
    return database && database->execute(sql);
  }
  static kv::test::JetTable departments() {
    kv::test::JetTable table = kv::test::categoriesTable();
    table.rows.clear();
    for (std::int64_t i = 0; i < 10; ++i) table.rows.push_back({i, "Reparto " + std::to_string(i)});
    return table;
  }
  std::string primo() const { return folder_ + "/primo.mdb"; }
  std::string jet() const { return folder_ + "/orsa.mdb"; }
  /// The catalogue as it was made.
  kv::Database fresh() const {
    const std::string work = folder_ + "/work.mdb";
    fs::copy_file(folder_ + "/shop/catalog.mdb", work, fs::copy_options::overwrite_existing);
    auto catalogue = kv::Database::open(work, kv::OpenMode::Exclusive);
    if (!catalogue) std::abort();
    return std::move(*catalogue);
  }

  std::string folder_;
};

/// The fastest of several runs; not ok when one of them failed.
Measured fastestOf(const std::function<Timed()>& work) {
  Measured best;
  for (int i = 0; i < importRounds; ++i) {
    const Measured one = inOwnProcess(work);
    if (!one.ok || one.wall <= 0) return {};
    if (!best.ok || one.wall < best.wall) best = one;
  }
  return best;
}

void printRatio(const char* what, const Measured& run, const Measured& bare, double bar) {
  std::printf("  %s: %.2f (bar %.1f) %s\n", what, run.wall / bare.wall, bar, verdict(run.wall <= bar * bare.wall));
}

int run(const std::string& folder, int articles) {
  const ImportedShop shop(folder, articles);
  const Measured barePrimo = fastestOf([&] { return shop.barePrimo(); });
  const Measured primo = fastestOf([&] { return shop.takenPrimo(); });
  const Measured tools = fastestOf([&] { return shop.bareAccounting(); });
  const Measured first = fastestOf([&] { return shop.takenAccounting(false); });
  const Measured again = fastestOf([&] { return shop.takenAccounting(true); });
  for (const Measured& one : {barePrimo, primo, tools, first, again}) {
    if (one.ok) continue;
    std::printf("one of the runs failed\n");
    return 1;
  }
  std::printf("%d articles of a Primo shop, %d of the accounting package\n", articles, articles / 2);
  std::printf("INSERT %.3f s, Primo %.3f s; tools %.3f s, accounting %.3f s, again %.3f s\n\nBars\n", barePrimo.wall,
              primo.wall, tools.wall, first.wall, again.wall);
  printRatio("Primo import / INSERT ... SELECT", primo, barePrimo, primoBar);
  printRatio("accounting import / mdb-export and .import", first, tools, accountingBar);
  printRatio("accounting import again / first", again, first, againBar);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const bool quick = argc > 1 && std::string_view(argv[1]) == "--quick";
  const kv::bench::FreshFolder folder;
  return run(folder.path(), quick ? 10000 : 100000);
}
