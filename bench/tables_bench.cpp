// Sheets of articles in and out: 100,000 rows of 20 columns. XLSX in beside expat reading the same parts for nobody,
// and a bare INSERT of the rows; CSV in beside sqlite3's .import into a table of its own, which has those columns
// alone; a preview beside the reading of its import; XLSX out beside libxlsxwriter writing the same cells. Each runs in
// a process of its own, all in turn; the fastest of each counts, by processor time, which another program on the
// machine changes little.
//
// Arguments: --quick (a tenth of the rows), and the name of one pair ("CSV in") to measure it alone.

#include <xlsxwriter.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "import/tables/table_export.h"
#include "import/tables/table_import.h"
#include "measure.h"
#include "platform/files/files.h"
#include "platform/ports/clock.h"

namespace {

using kv::bench::inOwnProcess;
using kv::bench::Measured;
using kv::bench::secondsOf;
using kv::bench::Timed;
namespace fs = std::filesystem;

constexpr int tableRounds = 3, departments = 100;
constexpr double importLimit = 2, exportLimit = 1.5, peakLimit = 400;

/// The columns, and in SQL what article number i has in them.
struct BenchColumn {
  const char *name, *sql;
};
constexpr std::array<BenchColumn, 20> tableColumns{
    {{"codice", "'COD-' || i"},
     {"titolo", "'Articolo numero ' || i"},
     {"titolo_l2", "'Article number ' || i"},
     {"sottotitolo", "'Ceramica, pezzo ' || (i % 977)"},
     {"descrizione", "'Smaltato a mano, adatto alla lavastoviglie; altezza ' || (i % 40) || ' cm, città di Faenza.'"},
     {"note", "'Serie ' || (i % 31)"},
     {"prezzo", "(i % 9973) * 100 + 125000"},
     {"prezzo1", "(i % 9973) * 90 + 100000"},
     {"prezzo2", "(i % 9973) * 80 + 90000"},
     {"offerta", "i % 2"},
     {"offertaprezzo", "(i % 9973) * 70 + 80000"},
     {"catID", "printf('cat%03d', 1 + i % 100)"},
     {"peso", "0.25 * (1 + i % 20)"},
     {"link", "'http://www.esempio.example/' || i"},
     {"novita", "i % 3 = 0"},
     {"inelenco", "i % 5 = 0"},
     {"correlazione", "'serie' || (i % 31)"},
     {"scqart0", "i % 10"},
     {"scqperc0", "i % 50"},
     {"fuoricatalogo", "i % 7 = 0"}}};

/// The columns as an INSERT or an export names them.
std::string columnList(bool asExport) {
  std::string list;
  for (const BenchColumn& column : tableColumns) {
    const std::string name = asExport && std::string_view(column.name) == "catID" ? "reparto" : column.name;
    list += (list.empty() ? "" : ",") + name;
  }
  return list;
}

class SheetsAndShop {
 public:
  SheetsAndShop(std::string folder, int articles) : folder_(std::move(folder)) {
    fs::copy_file(std::string(KORVANE_APP_DATA) + "/catalog.mdb", empty());
    std::string sql = "DELETE FROM articoli; DELETE FROM categorie;";
    for (int i = 1; i <= departments; ++i) {
      const std::string number = std::to_string(1000 + i).substr(1);
      sql += "INSERT INTO categorie (ID, titolo, genitore, livello, ordinamento) VALUES ('cat" + number +
             "', 'Reparto " + number + "', '###', 1, " + std::to_string(i) + ");";
    }
    change(empty(), sql);
    fs::copy_file(empty(), full());
    sql = "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(articles) +
          ") INSERT INTO articoli (" + columnList(false) + ") SELECT ";
    for (const BenchColumn& column : tableColumns) {
      sql += (column.name == tableColumns.front().name ? "" : ", ") + std::string(column.sql);
    }
    change(full(), sql + " FROM n");
    kv::Session session = open(full());
    for (const std::string& path : {csv(), xlsx()}) {
      if (!writeSheet(session, path)) std::abort();
    }
  }

  Timed imported(const std::string& sheet) const {
    const std::string work = folder_ + "/work.mdb";
    fs::copy_file(empty(), work, fs::copy_options::overwrite_existing);
    kv::Session session = open(work);
    kv::MemorySettings settings;
    return {secondsOf([&] {
              auto opened = kv::openTableSheet(session, settings, sheet, "articoli");
              auto plan = opened ? planOf(session, *opened) : kv::Result<kv::TablePlan>();
              if (!opened || !plan) return false;
              kv::bench::SilentUser user;
              kv::Environment env{user, settings, kv::systemClock(), kv::systemRandom(), folder_, {}};
              return kv::importPlannedTable(session, env, *plan, opened->sheet, requestOf(*opened)) ==
                     kv::TableEnd::Done;
            }),
            0};
  }
  Timed previewed(const std::string& sheet) const {
    kv::Session session = open(full());
    const kv::MemorySettings settings;
    std::size_t same = 0;
    const double seconds = secondsOf([&] {
      auto opened = kv::openTableSheet(session, settings, sheet, "articoli");
      auto plan = opened ? planOf(session, *opened) : kv::Result<kv::TablePlan>();
      if (plan) same = plan->sums().same;
      return plan.has_value();
    });
    return {seconds, static_cast<double>(same)};
  }
  /// The parts of the file read as XML, and the rows of the shop inserted one by one.
  Timed bareXlsx() const {
    struct Nobody final : kv::XmlListener {
      bool start(std::string_view, const kv::XmlAttributes&) override { return true; }
      bool end(std::string_view) override { return true; }
      bool text(std::string_view) override { return true; }
    } nobody;
    return {secondsOf([&] {
              constexpr std::uint64_t most = std::uint64_t{1} << 32;
              auto file = kv::PackedFile::open(xlsx(), most);
              for (const char* part : {"xl/sharedStrings.xml", "xl/worksheets/sheet1.xml"}) {
                if (file && file->has(part) && !file->readXml(part, nobody)) return false;
              }
              return file && insertedBare();
            }),
            0};
  }
  Timed bareCsv() const {
    const std::string target = folder_ + "/tools.db";
    fs::copy_file(empty(), target, fs::copy_options::overwrite_existing);
    // The headers are captions, so .import makes a table of its own.
    const std::string command = "sqlite3 '" + target + "' '.mode csv' '.separator ;' '.import " + csv() + " letti'";
    return {secondsOf([&] { return std::system(command.c_str()) == 0; }), 0};
  }
  Timed exported() const {
    kv::Session session = open(full());
    return {secondsOf([&] { return writeSheet(session, folder_ + "/out.xlsx"); }), 0};
  }
  /// Reads the cells that bareExport writes, before it runs: every process is measured as a whole.
  bool readCells() {
    auto sheet = kv::readSheetFile(xlsx(), {});
    if (sheet) cells_ = std::move(sheet->cells);
    return sheet.has_value();
  }
  /// The cells of the shop's sheet by the library alone.
  Timed bareExport() const {
    const std::string path = folder_ + "/bare.xlsx";
    return {secondsOf([&] { return writtenBare(cells_, path); }), 0};
  }
  std::string csv() const { return folder_ + "/articoli.csv"; }
  std::string xlsx() const { return folder_ + "/articoli.xlsx"; }

 private:
  std::string empty() const { return folder_ + "/empty.mdb"; }
  std::string full() const { return folder_ + "/full.mdb"; }
  static void change(const std::string& path, const std::string& sql) {
    auto database = kv::Database::open(path, kv::OpenMode::Exclusive);
    if (!database || !database->execute(sql)) std::abort();
  }
  kv::Session open(const std::string& path) const {
    kv::Session session;
    session.ShopFolder = folder_;
    session.languageCount = 2;
    auto catalogue = kv::Database::open(path, kv::OpenMode::Exclusive);
    if (!catalogue) std::abort();
    session.catalogue = std::move(*catalogue);
    return session;
  }
  static bool writeSheet(kv::Session& session, const std::string& path) {
    const auto table = kv::sheetTable(session.catalogue, 2, "articoli");
    if (!table) return false;
    kv::TableExport what;
    const std::string list = columnList(true);
    for (std::size_t at = 0; at <= list.size();) {
      const std::size_t end = std::min(list.find(',', at), list.size());
      what.columns.push_back(list.substr(at, end - at));
      at = end + 1;
    }
    return kv::exportTable(session.catalogue, *table, path, what).has_value();
  }
  kv::TableRequest requestOf(const kv::OpenSheet& opened) const {
    kv::TableRequest request;
    request.mapping = opened.mapping;
    request.shopFolder = request.sheetFolder = folder_;
    return request;
  }
  kv::Result<kv::TablePlan> planOf(kv::Session& session, const kv::OpenSheet& opened) const {
    return kv::planTable(session.catalogue, opened.table, opened.sheet, requestOf(opened));
  }
  bool insertedBare() const {
    const std::string work = folder_ + "/work.mdb";
    fs::copy_file(empty(), work, fs::copy_options::overwrite_existing);
    kv::Session from = open(full()), to = open(work);
    std::string places;
    for (std::size_t i = 1; i <= tableColumns.size(); ++i) places += (i > 1 ? ", ?" : "?") + std::to_string(i);
    auto rows = from.catalogue.prepare("SELECT " + columnList(false) + " FROM articoli");
    auto insert = to.catalogue.prepare("INSERT INTO articoli (" + columnList(false) + ") VALUES (" + places + ")");
    if (!rows || !insert || !to.catalogue.begin()) return false;
    for (;;) {
      const auto row = rows->step();
      if (!row) return false;
      if (!*row) break;
      for (int i = 0; i < static_cast<int>(tableColumns.size()); ++i) insert->bind(i + 1, rows->value(i));
      if (!insert->execute()) return false;
    }
    return to.catalogue.commit().has_value();
  }
  static bool writtenBare(const kv::CellTable& cells, const std::string& path) {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    lxw_workbook* const workbook = workbook_new_opt(path.c_str(), &options);
    lxw_worksheet* const sheet = workbook_add_worksheet(workbook, "Articoli");
    for (std::size_t row = 0; row < cells.rows(); ++row) {
      for (std::size_t i = 0; i < cells.width(row); ++i) {
        const kv::SheetCell cell = cells.cell(row, i);
        const std::string text(cell.text);
        const auto at = static_cast<lxw_row_t>(row);
        const auto column = static_cast<lxw_col_t>(i);
        if (cell.isNumber) {
          worksheet_write_number(sheet, at, column, std::strtod(text.c_str(), nullptr), nullptr);
        } else if (!text.empty()) {
          worksheet_write_string(sheet, at, column, text.c_str(), nullptr);
        }
      }
    }
    return workbook_close(workbook) == LXW_NO_ERROR;
  }

  std::string folder_;
  kv::CellTable cells_;
};

/// A run beside the one that it is measured by.
struct Pair {
  const char* name;
  double limit;
  std::function<Timed()> work, bare;
};

/// Runs both in turn and prints their ratio; the peak of the work in MiB, nothing when a run failed.
std::optional<double> measurePair(const Pair& pair) {
  Measured best, bare;
  for (int i = 0; i < tableRounds; ++i) {
    const Measured one = inOwnProcess(pair.work), other = inOwnProcess(pair.bare);
    if (!one.ok || !other.ok) return std::nullopt;
    if (!best.ok || one.cpu < best.cpu) best = one;
    if (!bare.ok || other.cpu < bare.cpu) bare = other;
  }
  const double ratio = best.cpu / bare.cpu;
  std::printf("  %-24s %7.2f s beside %7.2f s: %5.2f (bar %.1f) %s, %4.0f MiB\n", pair.name, best.cpu, bare.cpu, ratio,
              pair.limit, kv::bench::verdict(ratio <= pair.limit), best.peakMiB);
  std::fflush(stdout);  // the next process would print it again
  return best.peakMiB;
}

}  // namespace

int main(int count, char** arguments) {
  const bool quick = count > 1 && std::string_view(arguments[1]) == "--quick";
  const int articles = quick ? 10000 : 100000;
  const kv::bench::FreshFolder folder;
  SheetsAndShop sheets(folder.path(), articles);
  std::printf("%d articles of %zu columns, seconds of processor\n", articles, tableColumns.size());
  std::fflush(stdout);
  const auto bareXlsx = [&] { return sheets.bareXlsx(); };
  const std::string_view only = count > 1 ? arguments[count - 1] : "";
  double peak = 0;
  for (const Pair& pair :
       {Pair{"XLSX in", importLimit, [&] { return sheets.imported(sheets.xlsx()); }, bareXlsx},
        Pair{"XLSX preview", importLimit, [&] { return sheets.previewed(sheets.xlsx()); }, bareXlsx},
        Pair{"CSV in", importLimit, [&] { return sheets.imported(sheets.csv()); }, [&] { return sheets.bareCsv(); }},
        Pair{"CSV preview", importLimit, [&] { return sheets.previewed(sheets.csv()); },
             [&] { return sheets.bareCsv(); }},
        Pair{"XLSX out", exportLimit, [&] { return sheets.exported(); }, [&] { return sheets.bareExport(); }}}) {
    if (!only.empty() && only.front() != '-' && only != pair.name) continue;
    const bool isReady = pair.limit != exportLimit || sheets.readCells();
    const auto peakOfPair = isReady ? measurePair(pair) : std::nullopt;
    if (!peakOfPair) {
      std::printf("one of the runs failed\n");
      return 1;
    }
    peak = std::max(peak, *peakOfPair);
  }
  std::printf("  peak of memory %.0f MiB, limit %.0f: %s\n", peak, peakLimit, kv::bench::verdict(peak <= peakLimit));
  return 0;
}
