// The SQL text of a shop of 100,000 articles, beside `sqlite3 FILE .dump` of the same database, a bare read of all its
// columns, and mariadb-dump of the same rows in a server. Each runs in a process of its own, all in turn, so that they
// see the same machine; the fastest of each counts. The export's files and those of .dump are on the same disk.
//
// Arguments: --quick (10,000 articles), --no-mariadb; --once ARTICLES exports once in this process, for a profiler.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "bench_shop.h"
#include "measure.h"
#include "platform/database/database.h"
#include "platform/database/statement.h"
#include "platform/database/table_info.h"
#include "platform/database/value.h"
#include "platform/files/files.h"
#include "platform/files/settings.h"
#include "sqlexport/full_export.h"

namespace {

using kv::bench::BenchShop;
using kv::bench::FreshFolder;
using kv::bench::inOwnProcess;
using kv::bench::keepFaster;
using kv::bench::Measured;
using kv::bench::secondsOf;
using kv::bench::SilentUser;
using kv::bench::Timed;
using kv::bench::verdict;
namespace fs = std::filesystem;

constexpr double million = 1e6;
constexpr int times = 7;
const std::string sec = "abcdefghijklmnopqrst";

/// The build database of a shop that was built below `folder`.
class Dumped {
 public:
  explicit Dumped(std::string folder) : folder_(std::move(folder)) {}

  std::string database() const { return folder_ + "/shop/db/sql.mdb"; }
  std::string loadFile() const { return folder_ + "/load.sql"; }

  /// Load and drop file of the first language, which has all rows. The count is that of rows.
  Timed exportOnce() const {
    SilentUser user;
    std::int64_t rows = 0;
    const double seconds = secondsOf([&] {
      return kv::ExportDatabaseSql({database(), loadFile(), folder_ + "/drop.sql", "", sec}, {}, user, &rows);
    });
    return {seconds, static_cast<double>(rows)};
  }

  /// The whole step of a publish run: the files and their published copies.
  Timed publishOnce() const {
    SilentUser user;
    const kv::MemorySettings settings;
    const kv::LockStatements lock;
    const std::string online = folder_ + "/published";
    fs::remove_all(online);
    fs::create_directories(online);
    if (!kv::writeText(online + "/" + sec + ".sc", "1\r\n")) return {};
    kv::ExportReport report;
    const double seconds = secondsOf([&] {
      kv::ExportFullSql({folder_ + "/shop", online, user, settings, lock}, sec, &report);
      return !report.failed && report.published.size() == 2;
    });
    return {seconds, static_cast<double>(report.rows)};
  }

  /// Every field of every row, looked at and dropped.
  Timed readOnce() const {
    double bytes = 0;
    const double seconds = secondsOf([&] {
      auto database = kv::Database::open(this->database(), kv::OpenMode::ReadOnly);
      if (!database) return false;
      const auto tables = database->tables();
      if (!tables) return false;
      for (const kv::TableInfo& table : *tables) {
        auto row = database->prepare("SELECT * FROM " + table.name + " NOT INDEXED");
        if (!row) return false;
        const int columns = row->columnCount();
        for (auto found = row->step(); found && *found; found = row->step()) {
          for (int i = 0; i < columns; ++i) bytes += sizeOf(*row, i);
        }
      }
      return true;
    });
    return {seconds, bytes};
  }

  Timed sqliteDump() const {
    const std::string command = "sqlite3 '" + database() + "' .dump >'" + folder_ + "/dump.sql'";
    return {secondsOf([&] { return std::system(command.c_str()) == 0; }), 0};
  }

  double megabytes(const std::string& name) const {
    return static_cast<double>(fs::file_size(folder_ + "/" + name)) / million;
  }

 private:
  static double sizeOf(const kv::Statement& row, int column) {
    switch (row.storedAs(column)) {
      case kv::StoredAs::Text:
        return static_cast<double>(row.text(column).size());
      case kv::StoredAs::Integer:
        return row.integer(column) == 0 ? 1 : 8;
      case kv::StoredAs::Real:
        return row.number(column) > 0 ? 8 : 1;
      case kv::StoredAs::Blob:
      case kv::StoredAs::Null:
        break;
    }
    return 0;
  }

  std::string folder_;
};

struct Figures {
  Measured exported, published, dump, read;
};

Figures measure(const Dumped& shop) {
  Figures figures;
  for (int i = 0; i < times; ++i) {
    keepFaster(figures.exported, inOwnProcess([&] { return shop.exportOnce(); }));
    keepFaster(figures.dump, inOwnProcess([&] { return shop.sqliteDump(); }));
    keepFaster(figures.read, inOwnProcess([&] { return shop.readOnce(); }));
    keepFaster(figures.published, inOwnProcess([&] { return shop.publishOnce(); }));
  }
  return figures;
}

void print(const char* name, const Measured& one, double rows, double megabytes) {
  std::printf("%-24s %8.3f %8.2f %9.1f %10.0f %8.1f\n", name, one.wall, one.cpu, one.peakMiB, rows / one.wall,
              megabytes / one.wall);
}

void tellMariaDb(const Dumped& shop, double rows, double seconds) {
  if (std::system("command -v mariadb-dump >/dev/null 2>&1") != 0) {
    std::printf("mariadb-dump is not installed: no comparison\n");
    return;
  }
  std::fflush(stdout);
  const std::string command = "python3 -B '" KORVANE_SOURCE "/bench/mariadb_dump.py' '" + shop.loadFile() + "'";
  FILE* const answer = popen(command.c_str(), "r");
  double dumped = 0, bytes = 0;
  const bool read = answer != nullptr && std::fscanf(answer, "%lf %lf", &dumped, &bytes) == 2;
  if (answer == nullptr || pclose(answer) != 0 || !read) {
    std::printf("mariadb-dump failed\n");
    return;
  }
  std::printf("%-24s %8.3f %28s %.0f %8.1f\n", "mariadb-dump", dumped, "", rows / dumped, bytes / million / dumped);
  std::printf("export / mariadb-dump: %.2f\n", seconds / dumped);
}

int run(const std::string& folder, int articles, bool beside) {
  const Measured built = inOwnProcess([&] {
    BenchShop shop(folder, articles, 1);
    double written = 0;
    return Timed{secondsOf([&] { return shop.build(&written); }), written};
  });
  const Dumped shop(folder);
  const Figures figures = built.ok ? measure(shop) : Figures();
  if (!figures.exported.ok || !figures.published.ok || !figures.dump.ok || !figures.read.ok) {
    std::printf("the build, the export or sqlite3 failed\n");
    return 1;
  }
  const double rows = figures.exported.written;
  std::printf("%d articles, %.0f rows, %.1f MB of SQL\n", articles, rows, shop.megabytes("load.sql"));
  std::printf("                          seconds    cpu s  peak MiB     rows/s     MB/s\n");
  print("export", figures.exported, rows, shop.megabytes("load.sql"));
  print("export and publish", figures.published, rows, 2 * shop.megabytes("load.sql"));
  print("sqlite3 .dump", figures.dump, rows, shop.megabytes("dump.sql"));
  print("bare read", figures.read, rows, figures.read.written / million);
  if (beside) tellMariaDb(shop, rows, figures.exported.wall);
  const double ofDump = figures.exported.wall / figures.dump.wall, ofRead = figures.exported.wall / figures.read.wall;
  std::printf("\nBars\n  export / sqlite3 .dump: %.2f (bar 0.85) %s\n", ofDump, verdict(ofDump <= 0.85));
  std::printf("  export / bare read: %.2f (stretch 2) %s\n", ofRead, verdict(ofRead <= 2));
  std::printf("  peak memory: %.1f MiB (bar 64) %s\n", figures.exported.peakMiB,
              verdict(figures.exported.peakMiB < 64));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  const auto given = [&](std::string_view name) { return std::ranges::find(arguments, name) != arguments.end(); };
  const FreshFolder folder;
  int status = 0;
  if (argc == 3 && given("--once")) {
    BenchShop shop(folder.path(), std::atoi(argv[2]), 1);
    double written = 0;
    const bool built = shop.build(&written);
    const Timed timed = built ? Dumped(folder.path()).exportOnce() : Timed();
    std::printf("%.3f s, %.0f rows\n", timed.wall, timed.written);
    status = built ? 0 : 1;
  } else {
    status = run(folder.path(), given("--quick") ? 10000 : 100000, !given("--no-mariadb"));
  }
  return status;
}
