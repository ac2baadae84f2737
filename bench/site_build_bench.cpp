// Whole builds of shops of 1,000, 10,000 and 100,000 articles in 100 departments, in one language and in four, beside
// the floor of the same run: a bare loop that inserts the same rows into the same tables in one transaction and writes
// the same bytes of pages. Each measurement runs in a process of its own, so that its peak memory is its own.
//
// Arguments: --quick (1,000 and 10,000 articles only), --no-hugo, --hugo-alone; --once ARTICLES LANGUAGES makes one
// shop and builds it in this process, for a profiler.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench_shop.h"
#include "measure.h"
#include "platform/files/files.h"

namespace {

using kv::bench::BenchShop;
using kv::bench::FreshFolder;
using kv::bench::inOwnProcess;
using kv::bench::Measured;
using kv::bench::secondsOf;
using kv::bench::Timed;
using kv::bench::verdict;
namespace fs = std::filesystem;

Measured best(int times, const std::function<Measured()>& measure) {
  Measured result;
  for (int i = 0; i < times; ++i) {
    const Measured one = measure();
    if (!one.ok) return one;
    if (!result.ok || one.wall < result.wall) result = one;
  }
  return result;
}

struct Row {
  int articles = 0;
  int languages = 0;
  Measured first, second, floor;
};

// The fastest of several pairs, build and floor in turn, so that both see the same machine.
Row measure(const std::string& folder, int articles, int languages) {
  Row row{articles, languages, {}, {}, {}};
  BenchShop shop(folder + "/" + std::to_string(articles) + "x" + std::to_string(languages), articles, languages);
  const int times = articles > 20000 ? 3 : 7;
  const auto build = [&shop] {
    return inOwnProcess([&shop] {
      Timed timed;
      timed.wall = secondsOf([&shop, &timed] { return shop.build(&timed.written); });
      return timed;
    });
  };
  const auto freshBuild = [&shop, &build] {
    shop.clearOutput();
    return build();
  };
  const auto floor = [&shop] {
    return inOwnProcess([&shop] {
      const kv::bench::FloorWork work = shop.loadFloor();
      return Timed{secondsOf([&shop, &work] { return shop.runFloor(work); }), 0};
    });
  };
  for (int i = 0; i < times; ++i) {
    const Measured fresh = best(1, freshBuild);
    const Measured again = best(1, build);
    const Measured bare = best(1, floor);
    if (!row.first.ok || fresh.wall < row.first.wall) row.first = fresh;
    if (!row.second.ok || again.wall < row.second.wall) row.second = again;
    if (!row.floor.ok || bare.wall < row.floor.wall) row.floor = bare;
  }
  return row;
}

void print(const Row& row) {
  const double each = row.first.wall / row.articles * 1e6;
  std::printf("%7d %5d %9.3f %8.2f %8.1f %10.0f %9.1f %9.3f %7.2f %9.3f %6.0f\n", row.articles, row.languages,
              row.first.wall, row.first.cpu, row.first.peakMiB, row.articles / row.first.wall, each, row.floor.wall,
              row.first.wall / row.floor.wall, row.second.wall, row.second.written);
  std::fflush(stdout);
}

void judge(const std::vector<Row>& rows) {
  const auto find = [&rows](int articles, int languages) {
    return std::find_if(rows.begin(), rows.end(),
                        [=](const Row& row) { return row.articles == articles && row.languages == languages; });
  };
  std::printf("\nBars\n");
  for (const Row& row : rows) {
    std::printf("  build / floor, %d articles, %d languages: %.2f (bar 3, stretch 2) %s\n", row.articles, row.languages,
                row.first.wall / row.floor.wall, verdict(row.first.wall <= 3 * row.floor.wall));
    std::printf("  rebuild: %.0f pages written, %.2f of the first (bar 0 and 1) %s\n", row.second.written,
                row.second.wall / row.first.wall, verdict(row.second.written < 1 && row.second.wall <= row.first.wall));
  }
  for (const Row& row : rows) {
    const auto one = find(row.articles, 1);
    if (row.languages != 4 || one == rows.end()) continue;
    const double ratio = row.first.wall / one->first.wall;
    std::printf("  four languages / one, %d articles: %.2f (bar 3.5) %s\n", row.articles, ratio, verdict(ratio <= 3.5));
  }
  for (const int languages : {1, 4}) {
    const auto small = find(1000, languages);
    const auto large = find(100000, languages);
    if (small == rows.end() || large == rows.end()) continue;
    // The pages of the hundred departments cost the same whatever they hold; an article costs what is left.
    const auto middle = find(10000, languages);
    const double low = (middle->first.wall - small->first.wall) / 9000;
    const double high = (large->first.wall - middle->first.wall) / 90000;
    std::printf(
        "  time per further article, 10,000 to 100,000 beside 1,000 to 10,000, %d languages: %.2f (bar 1.15) %s\n",
        languages, high / low, verdict(high <= 1.15 * low));
    std::printf("  peak memory at 100,000, %d languages: %.1f MiB, %.2f of that at 1,000 (bar 150 and 1.3) %s\n",
                languages, large->first.peakMiB, large->first.peakMiB / small->first.peakMiB,
                verdict(large->first.peakMiB <= 150 && large->first.peakMiB <= 1.3 * small->first.peakMiB));
  }
}

// A file system takes its time over new files in the seconds after many were deleted; nobody builds a site at such a
// moment, so both sides are given a rest first.
void restAfterDeleting() { std::this_thread::sleep_for(std::chrono::seconds(6)); }

double bestOfThree(const std::function<void()>& clear, const std::function<double()>& run) {
  double shortest = 0;
  for (int i = 0; i < 3; ++i) {
    clear();
    restAfterDeleting();
    const double seconds = run();
    if (seconds <= 0) return 0;
    if (shortest <= 0 || seconds < shortest) shortest = seconds;
  }
  return shortest;
}

void compareWithHugo(const std::string& folder, int articles) {
  if (std::system("command -v hugo >/dev/null 2>&1") != 0) {
    std::printf("\nhugo is not installed: no comparison\n");
    return;
  }
  BenchShop shop(folder + "/beside-hugo", articles, 1);
  const std::string site = folder + "/hugo";
  kv::bench::writeHugoSite(site, articles);
  const std::string command = "cd '" + site + "' && hugo --quiet >/dev/null 2>&1";
  const double build = bestOfThree([&shop] { shop.clearOutput(); },
                                   [&shop] {
                                     return inOwnProcess([&shop] {
                                              Timed timed;
                                              timed.wall =
                                                  secondsOf([&shop, &timed] { return shop.build(&timed.written); });
                                              return timed;
                                            })
                                         .wall;
                                   });
  const double hugo =
      bestOfThree([&site] { fs::remove_all(site + "/public"); },
                  [&command] { return secondsOf([&command] { return std::system(command.c_str()) == 0; }); });
  if (build <= 0 || hugo <= 0) {
    std::printf("\nhugo or the build failed\n");
    return;
  }
  std::printf("\nhugo, %d product pages: %.3f s; this build: %.3f s, %.3f of it (bar 0.15) %s\n", articles, hugo, build,
              build / hugo, verdict(build <= 0.15 * hugo));
  std::printf("(hugo writes a file for each product, this build rows that one page of each department reads)\n");
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  const auto given = [&arguments](std::string_view name) {
    return std::find(arguments.begin(), arguments.end(), name) != arguments.end();
  };
  const FreshFolder folder;
  if (given("--hugo-alone")) {
    compareWithHugo(folder.path(), 10000);
    return 0;
  }
  if (argc == 4 && arguments[0] == "--once") {
    BenchShop shop(folder.path() + "/once", std::atoi(argv[2]), std::atoi(argv[3]));
    double written = 0;
    const double seconds = secondsOf([&shop, &written] { return shop.build(&written); });
    std::printf("%.3f s, %.0f pages written\n", seconds, written);
    return seconds > 0 ? 0 : 1;
  }
  std::vector<int> sizes{1000, 10000};
  if (!given("--quick")) sizes.push_back(100000);
  std::printf("articles langs  first s    cpu s peak MiB articles/s  us/artic   floor s  ratio  again s pages\n");
  std::vector<Row> rows;
  for (const int languages : {1, 4}) {
    for (const int articles : sizes) {
      rows.push_back(measure(folder.path(), articles, languages));
      if (!rows.back().first.ok || !rows.back().floor.ok) {
        std::printf("%d articles, %d languages: the build or its floor failed\n", articles, languages);
        return 1;
      }
      print(rows.back());
    }
  }
  judge(rows);
  if (!given("--no-hugo")) compareWithHugo(folder.path(), 10000);
  return 0;
}
