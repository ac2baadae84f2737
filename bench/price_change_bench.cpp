// A raise of every price of a shop by 10 %, in ten lists with their offers, with what undo keeps of it, beside one bare
// UPDATE of the same columns in a transaction; its undo, and the preview that comes first. Each runs in a process of
// its own on a fresh copy of the catalogue, all in turn, so that they see the same machine; the fastest of each counts.
//
// Arguments: --quick (10,000 articles).

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

#include "catalogue_shop.h"
#include "commerce/prices/price_change.h"
#include "measure.h"
#include "platform/database/changes/changes.h"

namespace {

using kv::bench::FreshFolder;
using kv::bench::inOwnProcess;
using kv::bench::keepFaster;
using kv::bench::Measured;
using kv::bench::printBar;
using kv::bench::secondsOf;
using kv::bench::SilentUser;
using kv::bench::Timed;

constexpr int priceRounds = 5;
constexpr double priceBar = 3;
constexpr double previewBar = 1;
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
  PricedShop(std::string folder, int articles)
      : shop_(std::move(folder), articles, setPrices("100000 + ID * 37 + ifnull(?, 0) * 0")) {}

  Timed bare() const { return {shop_.bareSeconds(setPrices("round(? * 1.1)")), 0}; }
  /// What the dialog computes before it shows the preview.
  Timed previewed() const {
    kv::Database catalogue = shop_.fresh();
    std::size_t changed = 0;
    const double seconds = secondsOf([&] {
      const auto survey = kv::surveyPrices(catalogue, raise().selection);
      if (survey) changed = kv::previewPrices(*survey, kv::ruleOfPercentage(10, false)).changed.size();
      return survey.has_value();
    });
    return {seconds, static_cast<double>(changed)};
  }
  /// The change alone, or its undo alone.
  Timed changed(bool undone) const {
    kv::Database catalogue = shop_.fresh();
    kv::ChangeRecorder recorder(catalogue, [](std::string_view) { return true; });
    SilentUser user;
    kv::RowChanges changes;
    const double seconds = secondsOf([&] {
      if (kv::ModificaPrezzi(catalogue, raise(), user) != kv::BulkEnd::Done) return false;
      auto taken = recorder.take();
      if (taken) changes = std::move(*taken);
      return taken.has_value();
    });
    const auto rows = static_cast<double>(changes.size());
    return {undone ? secondsOf([&] { return recorder.revert(changes).has_value(); }) : seconds, rows};
  }

 private:
  static kv::PriceChange raise() {
    kv::PriceChange change;
    change.selection.lists.fill(true);
    change.selection.offers = true;
    change.percentage = "+10";
    return change;
  }

  kv::bench::CatalogueShop shop_;
};

int run(const std::string& folder, int articles) {
  const PricedShop shop(folder, articles);
  Measured bare, previewed, changed, undone;
  for (int i = 0; i < priceRounds; ++i) {
    keepFaster(bare, inOwnProcess([&] { return shop.bare(); }));
    keepFaster(previewed, inOwnProcess([&] { return shop.previewed(); }));
    keepFaster(changed, inOwnProcess([&] { return shop.changed(false); }));
    keepFaster(undone, inOwnProcess([&] { return shop.changed(true); }));
  }
  if (!bare.ok || !previewed.ok || !changed.ok || !undone.ok) {
    std::printf("the bare UPDATE, the preview, the change or its undo failed\n");
    return 1;
  }
  const double peak = std::max({previewed.peakMiB, changed.peakMiB, undone.peakMiB});
  std::printf("%d articles, %.0f changed\n", articles, changed.written);
  std::printf("UPDATE %.3f s, preview %.3f s, change %.3f s, undo %.3f s\n\nBars\n", bare.wall, previewed.wall,
              changed.wall, undone.wall);
  printBar("change / UPDATE", changed.wall / bare.wall, priceBar);
  printBar("undo / UPDATE", undone.wall / bare.wall, priceBar);
  printBar("preview / UPDATE", previewed.wall / bare.wall, previewBar);
  printBar("peak memory in MiB", peak, memoryBar);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const bool quick = argc > 1 && std::string_view(argv[1]) == "--quick";
  const FreshFolder folder;
  return run(folder.path(), quick ? 10000 : 100000);
}
