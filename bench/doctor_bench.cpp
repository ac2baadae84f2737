// A whole check of a shop of four languages by the shop doctor, beside a bare read of the columns of its articles: each
// row stepped to, each field fetched. Each runs in a process of its own, in turn; the fastest of each counts.
//
// Arguments: --quick (10,000 articles).

#include <cstdio>
#include <string>
#include <string_view>

#include "builder/doctor/doctor.h"
#include "catalogue_shop.h"
#include "measure.h"

namespace {

using kv::bench::FreshFolder;
using kv::bench::inOwnProcess;
using kv::bench::keepFaster;
using kv::bench::Measured;
using kv::bench::printBar;
using kv::bench::secondsOf;
using kv::bench::Timed;

constexpr int doctorRounds = 5;
constexpr int doctorLanguages = 4;
constexpr double doctorBar = 3;
constexpr double doctorMemoryBar = 400;

/// One article of ten has a picture that isn't there and no code.
constexpr const char* spoilEachTenth =
    "UPDATE articoli SET prezzo = 10000 + ID, opzione1 = 1, codice = CASE WHEN ID % 10 > 0 THEN 'K' || ID END,"
    " immagine0 = CASE WHEN ID % 10 = 0 THEN immagine0 END";

class DoctorsShop {
 public:
  DoctorsShop(std::string folder, int articles) : shop_(std::move(folder), articles, spoilEachTenth) {}

  Timed bare() const {
    kv::Database catalogue = shop_.fresh();
    std::size_t bytes = 0;
    const double seconds = secondsOf([&] {
      auto row = catalogue.prepare(kv::articleFactsQuery(doctorLanguages));
      if (!row) return false;
      for (auto found = row->step(); found && *found; found = row->step()) {
        for (int i = 0; i < row->columnCount(); ++i) bytes += row->bytes(i).size();
      }
      return true;
    });
    return {seconds, static_cast<double>(bytes)};
  }

  Timed examined() const {
    kv::Session session;
    session.catalogue = shop_.fresh();
    session.ShopFolder = shop_.shop();
    session.languageCount = doctorLanguages;
    session.languageNames = {"italiano", "inglese", "francese", "tedesco"};
    std::size_t findings = 0;
    const double seconds = secondsOf([&] {
      const auto examination = kv::examineShop(session, shop_.shop());
      if (examination) findings = examination->findings.size();
      return examination.has_value();
    });
    return {seconds, static_cast<double>(findings)};
  }

 private:
  kv::bench::CatalogueShop shop_;
};

int run(const std::string& folder, int articles) {
  const DoctorsShop shop(folder, articles);
  Measured bare, examined;
  for (int i = 0; i < doctorRounds; ++i) {
    keepFaster(bare, inOwnProcess([&] { return shop.bare(); }));
    keepFaster(examined, inOwnProcess([&] { return shop.examined(); }));
  }
  if (!bare.ok || !examined.ok) {
    std::printf("the bare read or the check failed\n");
    return 1;
  }
  std::printf("%d articles, %.0f findings\nread %.3f s, check %.3f s\n\nBars\n", articles, examined.written, bare.wall,
              examined.wall);
  printBar("check / read", examined.wall / bare.wall, doctorBar);
  printBar("peak memory in MiB", examined.peakMiB, doctorMemoryBar);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const bool quick = argc > 1 && std::string_view(argv[1]) == "--quick";
  const FreshFolder folder;
  return run(folder.path(), quick ? 10000 : 100000);
}
