// How long a build keeps its user waiting: the longest stretch between two moments at which it processes events,
// from its first line to its last, for shops of many articles, of many departments and of one large department.
//
// Arguments: --quick (a tenth of each).

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "bench_shop.h"
#include "measure.h"
#include "platform/database/database.h"

namespace {

using kv::bench::BenchShop;
using kv::bench::FreshFolder;
using kv::bench::verdict;
namespace fs = std::filesystem;

constexpr double limit = 0.1;  // seconds
constexpr double milli = 1e3;
constexpr int times = 3;

double cpuSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}
double wallSeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// A stretch without a yield, and where the build was after it.
struct Gap {
  double wall = 0, cpu = 0;
  std::string where;
};

/// The user of a build, with a watch in his hand.
class WaitingUser final : public kv::UserPort {
 public:
  void message(const std::string& text, kv::Icon icon) override {
    if (icon != kv::Icon::Information) std::fprintf(stderr, "%s\n", text.c_str());
  }
  kv::Answer question(const kv::Question& question) override { return question.preset; }
  std::string chooseFolder(const std::string&, const std::string&) override { return {}; }
  void progress(const kv::Progress& progress) override { caption_ = progress.caption; }
  bool yield() override {
    note(caption_);
    return yields_ != stopAt_;
  }
  /// Cancels at a yield; at none when 0.
  void stopAt(long yield) { stopAt_ = yield; }

  void start() {
    wall_ = wallSeconds();
    cpu_ = cpuSeconds();
  }
  void end() { note("the end"); }
  const Gap& longest() const { return longest_; }
  long yields() const { return yields_; }

 private:
  void note(const std::string& where) {
    const double wall = wallSeconds(), cpu = cpuSeconds();
    ++yields_;
    if (cpu - cpu_ > longest_.cpu) {
      longest_ = {wall - wall_, cpu - cpu_, "yield " + std::to_string(yields_) + ", \"" + where + "\""};
    }
    wall_ = wall;
    cpu_ = cpu;
  }

  double wall_ = 0, cpu_ = 0;
  long yields_ = 0, stopAt_ = 0;
  Gap longest_;
  std::string caption_;
};

struct Case {
  const char* name;
  int articles, departments, inLargest, languages;
  long stopAt;  ///< the yield at which it is cancelled: every page of many departments shows them all
};

bool measure(const std::string& folder, const Case& one) {
  BenchShop shop(folder, one.articles, one.languages, one.departments);
  if (one.inLargest > 0) {
    auto catalogue = kv::Database::open(folder + "/shop/catalog.mdb", kv::OpenMode::Shared);
    if (!catalogue ||
        !catalogue->execute("UPDATE articoli SET catID = 'cat001' WHERE ID <= " + std::to_string(one.inLargest) +
                            "; UPDATE categorie SET maxarticoli = 32000 WHERE ID = 'cat001'")) {
      return false;
    }
  }
  Gap best;
  long yields = 0;
  for (int i = 0; i < times; ++i) {
    WaitingUser user;
    double written = 0;
    user.stopAt(one.stopAt);
    user.start();
    if (!shop.build(&written, &user) && one.stopAt == 0) return false;
    user.end();
    if (i == 0 || user.longest().cpu < best.cpu) best = user.longest();
    yields = user.yields();
  }
  std::printf("%-26s %9ld %9.1f %9.1f   %.2f of the limit %s  (%s)\n", one.name, yields, best.wall * milli,
              best.cpu * milli, best.cpu / limit, verdict(best.cpu < limit), best.where.c_str());
  std::fflush(stdout);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  const int part = std::ranges::find(arguments, "--quick") != arguments.end() ? 10 : 1;
  const FreshFolder folder;
  const std::vector<Case> cases{{"100,000 articles", 100000 / part, 100, 0, 1, 0},
                                {"the same in 4 languages", 100000 / part, 100, 0, 4, 0},
                                {"one page of 5,000 articles", 10000 / part, 100, 5000 / part, 1, 0},
                                {"5,000 departments", 20000 / part, 5000 / part, 0, 1, 2000}};
  std::printf("longest stretch between two yields of a build, limit %.0f ms\n", limit * milli);
  std::printf("                              yields        ms ms of cpu\n");
  int status = 0;
  for (const Case& one : cases) {
    if (!measure(folder.path() + "/shop", one)) {
      std::printf("%s: the build failed\n", one.name);
      status = 1;
    }
    fs::remove_all(folder.path() + "/shop");
  }
  return status;
}
