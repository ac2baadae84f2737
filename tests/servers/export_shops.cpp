// Builds the shop of every golden case and exports it in four ways, beside a database that holds what is hard to carry
// over: FOLDER/<case>/sql.mdb, FOLDER/<case>/<way>/db.sql and so on. For mariadb_round_trip.py.

#include <cstdio>
#include <limits>
#include <string>

#include "platform/files/files.h"
#include "platform/files/settings.h"
#include "platform/text/text.h"
#include "sqlexport/full_export.h"
#include "store/schema/schema.h"
#include "support/golden_case.h"
#include "support/golden_shop.h"
#include "support/scripted_user.h"

namespace kv::test {
namespace {

using std::string_literals::operator""s;

const std::string sec = "abcdefghijklmnopqrst";

template <class T>
T need(Result<T> result) {
  if (!result) {
    std::fprintf(stderr, "%s: %s\n", result.error().where.c_str(), result.error().what.c_str());
    std::exit(1);
  }
  if constexpr (!std::is_void_v<T>) return std::move(*result);
}

/// Exports FOLDER/sql.mdb with and without lock statements and with both separators.
void exportEachWay(const std::string& folder, int languages) {
  struct Way {
    const char* name;
    bool lock;
    const char* separator;
  };
  constexpr Way ways[] = {
      {"plain", false, ""}, {"locked", true, ""}, {"marked", false, ";\\g"}, {"locked-marked", true, ";\\g"}};
  const std::string shop = folder + "/shop";
  need(createFolders(shop + "/db"));
  need(copyFile(folder + "/sql.mdb", shop + "/db/sql.mdb"));
  for (const Way& way : ways) {
    const std::string online = folder + "/" + way.name;
    need(createFolders(online));
    need(writeText(joinPath(online, sec + ".sc"), std::to_string(languages) + "\r\n"));
    ScriptedUser user;
    MemorySettings settings;
    need(settings.set(settingsSection, "QS2", way.separator));
    const LockStatements lock{way.lock};
    ExportReport report;
    ExportFullSql({shop, online, user, settings, lock}, sec, &report);
    if (report.failed || report.languages != languages) std::exit(1);
  }
  need(deleteFile(shop + "/db/sql.mdb"));
  need(removeFolder(shop + "/db"));
  need(removeFolder(shop));
}

void exportGolden(const std::string& folder) {
  const std::string cases = std::string(KORVANE_TEST_DATA) + "/golden/build";
  for (const std::string& file : listFiles(cases, "*.txt")) {
    GoldenShop shop(withBase(need(readGoldenCase(joinPath(cases, file)))));
    shop.run();
    if (shop.outcome() != BuildOutcome::Done) continue;  // a case of a build that fails has no rows to export
    const std::string place = joinPath(folder, file.substr(0, file.size() - 4));
    need(createFolders(place));
    need(copyFile(joinPath(shop.folder(), "db/sql.mdb"), place + "/sql.mdb"));
    exportEachWay(place, shop.languages());
  }
}

ColumnInfo column(std::string name, ColumnType type, int size = 0) {
  ColumnInfo made;
  made.name = std::move(name);
  made.type = type;
  made.size = size;
  return made;
}

/// Texts with everything that has a meaning in SQL, in a pattern or on a line.
std::vector<std::string> hardTexts() {
  std::vector<std::string> texts = {"",
                                    "l'olio",
                                    "''",
                                    "\\'",
                                    "\\",
                                    "\"",
                                    "a\\nb",
                                    "a\r\nb",
                                    "a\n\rb",
                                    "a\rb\r\rc\n\nd\r\n\r\ne\r\n\re",
                                    "\r\n",
                                    "\0nul\0"s,
                                    "\b\t\x1a\x7f",
                                    "100% _x% \\% \\_",
                                    "fine;",
                                    "fine;\r\n",
                                    "fine;\\g",
                                    ");\r\nDROP TABLE testi;\r\n",
                                    "-- # /* */ ? :x @y",
                                    "NULL",
                                    " davanti e dietro ",
                                    "àèéìòù ÀÈÉÌÒÙ ß ÿ",
                                    "€ “virgolette” – … ™ Œ",
                                    "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D\xC2\xA0",
                                    "漢字 🏺 ₿ Ā"};
  std::string all;
  for (int byte = 1; byte < 128; ++byte) all += static_cast<char>(byte);
  texts.push_back(all);
  texts.push_back(fromWindows1252([] {
    std::string bytes;
    for (int byte = 128; byte < 256; ++byte) bytes += static_cast<char>(static_cast<unsigned char>(byte));
    return bytes;
  }()));
  texts.push_back(std::string(70000, '\''));
  return texts;
}

void fillTexts(Database& database) {
  TableInfo table;
  table.name = "testi";
  table.columns = {column("ID", ColumnType::Long),
                   column("breve", ColumnType::Text, 200),
                   column("lungo", ColumnType::Memo),
                   column("Order", ColumnType::Memo),
                   column(std::string(64, 'c'), ColumnType::Memo),
                   column("con spazio", ColumnType::Memo)};
  table.columns[0].attributes = autoIncrement;
  need(database.createTable(table));
  auto insert = need(database.prepare("INSERT INTO testi VALUES (NULL, ?, ?, ?, ?, ?)"));
  for (const std::string& text : hardTexts()) {
    insert.bind(1, text.size() < 100 ? std::string_view(text) : "lungo");
    for (int place = 2; place <= 5; ++place) insert.bind(place, text);
    need(insert.execute());
  }
  for (int place = 1; place <= 5; ++place) insert.bindNull(place);
  need(insert.execute());
}

void fillNumbers(Database& database) {
  TableInfo table;
  table.name = "numeri";
  table.columns = {column("si", ColumnType::Bool),       column("corto", ColumnType::Byte),
                   column("medio", ColumnType::Int),     column("intero", ColumnType::Long),
                   column("prezzo", ColumnType::Money),  column("singolo", ColumnType::Single),
                   column("doppio", ColumnType::Double), column("quando", ColumnType::DateTime)};
  need(database.createTable(table));
  auto insert = need(database.prepare("INSERT INTO numeri VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
  const auto row = [&](int flag, int byte, int small, std::int64_t whole, std::int64_t money, float one, double two,
                       const char* moment) {
    insert.bind(1, flag);
    insert.bind(2, byte);
    insert.bind(3, small);
    insert.bind(4, whole);
    insert.bind(5, money);
    insert.bind(6, static_cast<double>(one));
    insert.bind(7, two);
    insert.bind(8, moment);
    need(insert.execute());
  };
  using Limits = std::numeric_limits<std::int64_t>;
  row(0, 0, -32768, -2147483648LL, Limits::min(), -3.402823e38F, -1.79769313486231e308, "1000-01-01 00:00:00");
  row(1, 255, 32767, 2147483647, Limits::max(), 3.402823e38F, 1.79769313486231e308, "9999-12-31 23:59:59");
  row(0, 1, 0, 0, 0, 0, 0, "2024-02-29 12:30:45");
  row(1, 7, -1, 1, 1, 1.17549e-38F, 2.2250738585073e-308, "1970-01-01 00:00:00");
  row(1, 7, -1, -1, -1, 0.1F, 0.1, "2001-02-03 04:05:06");
  row(1, 7, 12, 1000000, 123456789, -1234.567F, 123456789012345.0, "2001-02-03 04:05:06");
  row(1, 7, 12, 10, 9990, 1e-5F, 1e15, "2001-02-03 04:05:06");
  for (int place = 1; place <= 8; ++place) insert.bindNull(place);
  need(insert.execute());
}

void fillBytes(Database& database) {
  TableInfo table;
  table.name = "dati";
  table.columns = {column("ID", ColumnType::Long), column("pochi", ColumnType::Binary, 255),
                   column("tanti", ColumnType::LongBinary)};
  IndexInfo key;
  key.name = "ix_dati";
  key.columns = {"ID"};
  table.indexes = {key};
  need(database.createTable(table));
  auto insert = need(database.prepare("INSERT INTO dati VALUES (?, ?, ?)"));
  Bytes every;
  for (int byte = 0; byte < 255; ++byte) every.push_back(static_cast<std::uint8_t>(byte));
  Bytes large(3000000);
  for (std::size_t at = 0; at < large.size(); ++at) large[at] = static_cast<std::uint8_t>(at * at % 251);
  const Bytes tail = {0xFF, '\r', '\n', '\r', '\r', '\n', '\n', '\'', '"', '\\', 0, 0x1A, ';'};
  int id = 0;
  for (const auto& [few, many] : {std::pair<Value, Value>{every, large}, {tail, tail}, {Bytes{}, Bytes{}}}) {
    insert.bind(1, ++id);
    insert.bind(2, few);
    insert.bind(3, many);
    need(insert.execute());
  }
  for (int place = 1; place <= 3; ++place) insert.bindNull(place);
  need(insert.execute());
}

void exportHardValues(const std::string& folder) {
  need(createFolders(folder));
  need(Database::create(folder + "/sql.mdb"));
  {
    auto database = need(Database::open(folder + "/sql.mdb", OpenMode::Scratch));
    need(database.begin());
    fillTexts(database);
    fillNumbers(database);
    fillBytes(database);
    need(database.commit());
  }
  exportEachWay(folder, 1);
}

}  // namespace
}  // namespace kv::test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc != 2) return 2;
  kv::test::exportHardValues(std::string(argv[1]) + "/hard_values");
  kv::test::exportGolden(argv[1]);
  return testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed() ? 1 : 0;
}
