// A raise of every price of a shop by 10 %, in ten lists with their offers, with what undo keeps of it, beside one bare
// UPDATE of the same columns in a transaction; then its undo. Each runs in a process of its own on a fresh copy of the
// catalogue, all in turn, so that they see the same machine; the fastest of each counts.
//
// Arguments: --quick (10,000 articles).

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "bench_shop.h"
#include "commerce/prices/price_change.h"
#include "measure.h"
#include "platform/database/changes.h"

namespace {

using kv::bench::FreshFolder;
using kv::bench::inOwnProcess;
using kv::bench::keepFaster;
using kv::bench::Measured;
using kv::bench::secondsOf;
using kv::bench::SilentUser;
using kv::bench::Timed;
using kv::bench::verdict;
namespace fs = std::filesystem;

constexpr int priceRounds = 5;
constexpr double priceBar = 3;
constexpr double memoryBar = 300;

/// "SET" of every price column of articoli to a term, in which "?" is the column itself.
std::string setPrices(const std::string& term) {
  std::string fields;
  for (const char* column : {"prezzo", "offertaprezzo"}) {
    for (const std::string_view suffix : kv::listinoSuffixes) {
      const std::string name = column + std::string(suffix);
      std::string value = term;
      value.replace(value.find("?"), 1, name);
      fields += (fields.empty() ? "UPDATE articoli SET " : ", ") + name + " = " + value;
    }
  }
  return fields;
}

class PricedShop {
 public:
  PricedShop(std::string folder, int articles) : folder_(std::move(folder)) {
    kv::bench::BenchShop(folder_, articles, 4);
    auto catalogue = kv::Database::open(folder_ + "/shop/catalog.mdb", kv::OpenMode::Shared);
    if (!catalogue || !catalogue->execute(setPrices("100000 + ID * 37 + ifnull(?, 0) * 0"))) std::abort();
  }
  /// The catalogue as it was made.
  kv::Database fresh() const {
    fs::copy_file(folder_ + "/shop/catalog.mdb", folder_ + "/work.mdb", fs::copy_options::overwrite_existing);
    auto catalogue = kv::Database::open(folder_ + "/work.mdb", kv::OpenMode::Exclusive);
    if (!catalogue) std::abort();
    return std::move(*catalogue);
  }
  Timed bare() const {
    kv::Database catalogue = fresh();
    return {secondsOf([&] {
              return catalogue.begin() && catalogue.execute(setPrices("round(? * 1.1)")) && catalogue.commit();
            }),
            0};
  }
  /// The change alone, or its undo alone.
  Timed changed(bool undone) const {
    kv::Database catalogue = fresh();
    kv::ChangeRecorder recorder(catalogue, [](std::string_view) { return true; });
    SilentUser user;
    kv::PriceChange change;
    change.selection.lists.fill(true);
    change.selection.offers = true;
    change.percentage = "+10";
    kv::RowChanges changes;
    const double seconds = secondsOf([&] {
      if (kv::ModificaPrezzi(catalogue, change, user) != kv::BulkEnd::Done) return false;
      auto taken = recorder.take();
      if (taken) changes = std::move(*taken);
      return taken.has_value();
    });
    const auto rows = static_cast<double>(changes.size());
    return {undone ? secondsOf([&] { return recorder.revert(changes).has_value(); }) : seconds, rows};
  }

 private:
  std::string folder_;
};

int run(const std::string& folder, int articles) {
  const PricedShop shop(folder, articles);
  Measured bare, changed, undone;
  for (int i = 0; i < priceRounds; ++i) {
    keepFaster(bare, inOwnProcess([&] { return shop.bare(); }));
    keepFaster(changed, inOwnProcess([&] { return shop.changed(false); }));
    keepFaster(undone, inOwnProcess([&] { return shop.changed(true); }));
  }
  if (!bare.ok || !changed.ok || !undone.ok) {
    std::printf("the bare UPDATE, the change or its undo failed\n");
    return 1;
  }
  const double peak = std::max(changed.peakMiB, undone.peakMiB);
  std::printf("%d articles, %.0f changed\n", articles, changed.written);
  std::printf("UPDATE %.3f s, change %.3f s, undo %.3f s\n\nBars\n", bare.wall, changed.wall, undone.wall);
  std::printf("  change / UPDATE: %.2f (bar %.0f) %s\n", changed.wall / bare.wall, priceBar,
              verdict(changed.wall <= priceBar * bare.wall));
  std::printf("  undo / UPDATE: %.2f (bar %.0f) %s\n", undone.wall / bare.wall, priceBar,
              verdict(undone.wall <= priceBar * bare.wall));
  std::printf("  peak memory: %.1f MiB (bar %.0f) %s\n", peak, memoryBar, verdict(peak < memoryBar));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const bool quick = argc > 1 && std::string_view(argv[1]) == "--quick";
  const FreshFolder folder;
  const int status = run(folder.path(), quick ? 10000 : 100000);
  return status;
}
