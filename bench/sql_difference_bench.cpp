// The difference of a shop of 100,000 articles of which one in a hundred has changed, beside `sqldiff` of the same two
// databases with a copy of one, which is what the export begins with. Each runs in a process of its own, all in turn,
// so that they see the same machine; the fastest of each counts.
//
// Arguments: --quick (10,000 articles).

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "bench_shop.h"
#include "measure.h"
#include "platform/files/files.h"
#include "platform/files/settings.h"
#include "sqlexport/incremental_export.h"

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

constexpr int rounds = 7;
const std::string buildToken = "abcdefghijklmnopqrst";

/// The databases of a shop that was built below `folder`, before and after a change of one article in a hundred.
class ChangedShop {
 public:
  explicit ChangedShop(std::string folder) : folder_(std::move(folder)) {}

  bool change() const {
    const std::string command = "cp '" + database("sql") + "' '" + database("last") + "' && sqlite3 '" +
                                database("sql") +
                                "' \"UPDATE articoli SET titolo = titolo || 'x' WHERE ID % 100 = 0;"
                                "UPDATE ordinamento SET importo = importo + 1 WHERE ID % 100 = 0\"";
    return std::system(command.c_str()) == 0;
  }

  /// The whole step of a publish run. The count is that of rows.
  Timed exportOnce() const {
    SilentUser user;
    const kv::MemorySettings settings;
    const kv::LockStatements lock;
    const std::string online = folder_ + "/published";
    fs::remove_all(online);
    fs::create_directories(online);
    if (!kv::writeText(online + "/" + buildToken + ".sc", "1\r\n")) return {};
    kv::ExportReport report;
    const double seconds = secondsOf([&] {
      return kv::ExportIncrementalSql({folder_ + "/shop", online, user, settings, lock}, buildToken, &report);
    });
    return {seconds, static_cast<double>(report.rows)};
  }

  Timed compareOnce() const {
    const std::string command =
        "sqldiff '" + database("last") + "' '" + database("sql") + "' >'" + folder_ + "/difference.sql'";
    return {secondsOf([&] { return std::system(command.c_str()) == 0; }), 0};
  }

  Timed copyOnce() const {
    const std::string command = "cp '" + database("sql") + "' '" + folder_ + "/copy.mdb'";
    return {secondsOf([&] { return std::system(command.c_str()) == 0; }), 0};
  }

 private:
  std::string database(const char* name) const { return folder_ + "/shop/db/" + name + ".mdb"; }
  std::string folder_;
};

int run(const std::string& folder, int articles) {
  const Measured built = inOwnProcess([&] {
    kv::bench::BenchShop shop(folder, articles, 1);
    double written = 0;
    return Timed{secondsOf([&] { return shop.build(&written); }), written};
  });
  const ChangedShop shop(folder);
  Measured exported, compared, copied;
  for (int i = 0; built.ok && i < rounds; ++i) {
    if (i == 0 && !shop.change()) break;
    keepFaster(exported, inOwnProcess([&] { return shop.exportOnce(); }));
    keepFaster(compared, inOwnProcess([&] { return shop.compareOnce(); }));
    keepFaster(copied, inOwnProcess([&] { return shop.copyOnce(); }));
  }
  if (!exported.ok || !compared.ok || !copied.ok) {
    std::printf("the build, the export, sqldiff or cp failed\n");
    return 1;
  }
  const double beside = compared.wall + copied.wall;
  std::printf("%d articles, %.0f rows sent\n", articles, exported.written);
  std::printf("difference %.3f s, sqldiff %.3f s, cp %.3f s\n", exported.wall, compared.wall, copied.wall);
  std::printf("\nBars\n  difference / (sqldiff + cp): %.2f (bar 1.5) %s\n", exported.wall / beside,
              verdict(exported.wall <= 1.5 * beside));
  std::printf("  peak memory: %.1f MiB (bar 100) %s\n", exported.peakMiB, verdict(exported.peakMiB < 100));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const bool quick = argc > 1 && std::string_view(argv[1]) == "--quick";
  const FreshFolder folder;
  const int status = run(folder.path(), quick ? 10000 : 100000);
  return status;
}
