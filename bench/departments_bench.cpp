// Builds of shops of 500 and of 2,000 departments: every page carries navigation, so that the site grows with more than
// the number of departments, and the time of a build has to grow with the site alone.
//
// Arguments: --quick (100 and 500 departments).

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "bench_shop.h"
#include "measure.h"

namespace {

using kv::bench::BenchShop;
using kv::bench::FreshFolder;
namespace fs = std::filesystem;

constexpr int times = 5;
constexpr double bar = 1.3;
constexpr double million = 1e6;

struct Row {
  int departments = 0;
  double seconds = 0;  // of the fastest build; 0 when one failed
  double bytes = 0;    // of pages and scripts

  double perMegabyte() const { return seconds / bytes * million; }
};

double buildSeconds(BenchShop& shop) {
  shop.clearOutput();
  double written = 0;
  const auto start = std::chrono::steady_clock::now();
  const bool done = shop.build(&written);
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
  return done ? passed.count() : 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  const bool quick = std::find(arguments.begin(), arguments.end(), "--quick") != arguments.end();
  const FreshFolder folder;

  std::vector<Row> rows{{quick ? 100 : 500}, {quick ? 500 : 2000}};
  std::vector<BenchShop> shops;
  for (const Row& row : rows) {
    shops.emplace_back(folder.path() + "/" + std::to_string(row.departments), row.departments, 1, row.departments);
  }
  // Small and large in turn, so that both see the same machine.
  bool failed = false;
  for (int i = 0; i < times && !failed; ++i) {
    for (std::size_t s = 0; s < shops.size(); ++s) {
      const double seconds = buildSeconds(shops[s]);
      failed = failed || seconds <= 0;
      if (rows[s].seconds <= 0 || seconds < rows[s].seconds) rows[s].seconds = seconds;
      rows[s].bytes = static_cast<double>(shops[s].outputBytes());
    }
  }
  if (failed) {
    std::printf("a build failed\n");
    return 1;
  }
  std::printf("departments  seconds        MB     MB/s   ms/MB\n");
  for (const Row& row : rows) {
    std::printf("%11d %8.3f %9.2f %8.1f %7.2f\n", row.departments, row.seconds, row.bytes / million,
                row.bytes / million / row.seconds, row.perMegabyte() * 1e3);
  }
  const double ratio = rows[1].perMegabyte() / rows[0].perMegabyte();
  std::printf("time per byte, %d departments beside %d: %.2f (bar %.1f) %s\n", rows[1].departments, rows[0].departments,
              ratio, bar, ratio <= bar ? "met" : "MISSED");
  return 0;
}
