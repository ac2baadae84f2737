// The rows of the sheet of articles over a shop of 100,000: opening it, the next screen, filter and sort, the search of
// find and replace, and the peak of memory.
//
// Arguments: --quick (10,000 articles).

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "measure.h"
#include "shell/sheet/sheet_rows.h"
#include "shell/sheet/text_replacement.h"
#include "workbench_shop.h"

namespace {

using kv::bench::secondsOf;
using kv::bench::verdict;

constexpr int sheetTimes = 5;
constexpr std::size_t screenRows = 50;
constexpr double milliseconds = 1e3;

/// The fastest of some runs, in milliseconds.
double fastest(const std::function<bool()>& work) {
  double best = 0;
  for (int i = 0; i < sheetTimes; ++i) {
    const double seconds = secondsOf(work);
    if (seconds > 0 && (best <= 0 || seconds < best)) best = seconds;
  }
  return best * milliseconds;
}

void print(const char* name, double taken, double limit) {
  std::printf("  %-42s %8.1f ms, limit %5.0f: %s\n", name, taken, limit, verdict(taken > 0 && taken <= limit));
}

bool readScreen(kv::SheetRows& rows, std::size_t from) {
  bool any = false;
  for (std::size_t i = from; i < from + screenRows; ++i) any = !rows.cells(i).empty();
  return any;
}

/// Each column is one that the merchant may click.
void printSlowestSort(kv::SheetRows& rows, const std::vector<kv::SheetColumn>& columns) {
  double slowest = 0;
  std::string name;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const double taken = fastest([&] { return rows.refresh({}, {i, true}).has_value(); });
    if (taken <= slowest) continue;
    slowest = taken;
    name = columns[i].name;
  }
  print(("slowest sort of all, by " + name).c_str(), slowest, 150);
}

kv::bench::Timed measureSheet(const std::string& shop) {
  kv::Session session;
  auto opened = kv::Database::open(shop + "/catalog.mdb", kv::OpenMode::Exclusive);
  if (!opened) return {};
  session.catalogue = std::move(*opened);
  session.languageCount = 4;
  const auto columns = kv::sheetColumns(session);
  if (!columns) return {};
  kv::SheetRows rows(session, *columns, ',');
  const auto price = std::ranges::find(*columns, "prezzo", &kv::SheetColumn::name) - columns->begin();
  const auto title = std::ranges::find(*columns, "titolo", &kv::SheetColumn::name) - columns->begin();
  print("open, first screen", fastest([&] { return rows.refresh({}, {}).has_value() && readScreen(rows, 0); }), 500);
  std::size_t screen = 0;
  print("next screen, every column", fastest([&] { return readScreen(rows, screen += screenRows); }), 16);
  print("filter by text", fastest([&] { return rows.refresh({.text = "7"}, {}).has_value(); }), 150);
  print("filter by flag", fastest([&] { return rows.refresh({.flag = "inelenco"}, {}).has_value(); }), 150);
  for (const auto column : {price, title}) {
    const kv::SheetOrder order{static_cast<std::size_t>(column), false};
    print(column == price ? "sort by price" : "sort by title",
          fastest([&] { return rows.refresh({}, order).has_value(); }), 150);
  }
  printSlowestSort(rows, *columns);
  kv::ReplaceRequest request;
  request.words.text = "articolo";
  request.replacement = "x";
  request.columns.push_back(static_cast<std::size_t>(title));
  for (std::size_t i = 0; i < rows.size(); ++i) request.articles.push_back(rows.article(i));
  const double found = fastest([&] { return kv::findHits(session, *columns, request, ',').has_value(); });
  std::printf("  %-42s %8.1f ms\n", "find in one column", found);
  std::fflush(stdout);  // the process ends without it
  return {1, static_cast<double>(rows.size())};
}

}  // namespace

int main(int count, char** arguments) {
  const bool quick = count > 1 && std::string_view(arguments[1]) == "--quick";
  const int articles = quick ? 10000 : 100000;
  const kv::bench::FreshFolder folder;
  const kv::bench::WorkbenchShop shop(folder.path(), {articles, articles / 20, articles / 20});
  std::printf("%d articles\n", articles);
  std::fflush(stdout);
  const auto run = kv::bench::inOwnProcess([&] { return measureSheet(folder.path() + "/shop"); });
  constexpr double mostMiB = 400;
  std::printf("  %-42s %8.0f MiB, limit %4.0f: %s\n", "peak of memory", run.peakMiB, mostMiB,
              verdict(run.ok && run.peakMiB <= mostMiB));
  return run.ok ? 0 : 1;
}
