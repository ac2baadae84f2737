// Whole shops of chance: what an export, an import and a purge leave builds what the shop built before.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <random>

#include "builder/run/make_pages.h"
#include "media/purge/unused_pictures.h"
#include "platform/files/files.h"
#include "store/catalogue/used_pictures.h"
#include "store/exchange/export_shop.h"
#include "store/exchange/primo_import.h"
#include "store/schema/schema.h"
#include "store/shop/load_shop.h"
#include "store/shop/shop_check.h"
#include "support/temp_shop.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

using Files = std::map<std::string, std::string>;

void addFiles(Files& files, const std::string& folder, const std::string& name) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    files[name + entry.path().string().substr(folder.size())] = readBytes(entry.path().string()).value_or("?");
  }
}

/// Names and rows of every table of the build database.
void addRows(Files& files, const std::string& path) {
  auto database = Database::open(path, OpenMode::ReadOnly);
  ASSERT_TRUE(database);
  const auto tables = database->tables();
  ASSERT_TRUE(tables);
  for (const TableInfo& table : *tables) {
    auto rows = database->prepare("SELECT * FROM \"" + table.name + "\"");
    ASSERT_TRUE(rows);
    std::string& text = files["row of " + table.name];
    for (auto row = rows->step(); row && *row; row = rows->step()) {
      for (int column = 0; column < rows->columnCount(); ++column) text += asText(rows->value(column)) + "|";
      text += "\n";
    }
  }
}

/// The first file or table in which two builds differ; empty when they are equal.
std::string differing(const Files& wanted, const Files& made) {
  for (const auto& [name, bytes] : wanted) {
    const auto found = made.find(name);
    if (found == made.end()) return name + " is missing";
    if (found->second != bytes) return name + " is\n" + found->second + "\nand not\n" + bytes;
  }
  for (const auto& [name, bytes] : made) {
    if (!wanted.contains(name)) return name + " is new";
  }
  return {};
}

constexpr int copiedZones = 4;  // of eight, those that the earlier line has

class ShopOfChance : public ::testing::Test {
 protected:
  explicit ShopOfChance() : env{shop.user, shop.settings, shop.clock, shop.random, shop.applicationFolder(), {}} {}

  /// Languages, departments, articles, variants, costs of shipping and pictures by chance.
  void fill(unsigned chanceSeed) {
    chance.seed(chanceSeed);
    model = shop.applicationFolder() + "/new";
    if (!folderExists(model)) makeModel();
    shop.sql(
        "UPDATE generale SET template = 'prova'; INSERT INTO lingue (lingua1) VALUES ('italiano');"
        "INSERT INTO opzioni (ID, nome) VALUES (1, '(nessuna)')");
    if (upTo(1) == 0) shop.sql("UPDATE lingue SET lingua2 = 'inglese'");
    for (int zone = 1; zone <= copiedZones; ++zone) {
      shop.update("zona" + std::to_string(zone), {{"m1sp1", money(std::to_string(upTo(90)) + ".50")}});
    }
    addVariants();
    const int departments = upTo(4) + 1;
    for (int i = 1; i <= departments; ++i) addDepartment(i);
    shop.update("generale", {{"immagine0", picture()}, {"immagine1", picture()}});
    ASSERT_TRUE(writeBytes(shop.applicationFolder() + "/serverpath.net", shop.folder() + "\r\n"));
    reopen(shop.session, shop.folder());
  }

  void makeModel() const {
    ASSERT_TRUE(createFolders(model + "/work"));
    for (const char* name : {"catalog.mdb", "source.new", "new.mdb", "kvftp.mdb"}) {
      ASSERT_TRUE(copyFile(shop.folder() + "/" + name, model + "/" + name));
    }
  }
  void addVariants() {
    for (int variant = 2; variant <= 4; ++variant) {
      shop.insert("opzioni", {{"ID", std::int64_t{variant}}, {"nome", word()}, {"selezionato", std::int64_t{1}}});
      const int options = upTo(15);
      for (int option = 1; option <= options; ++option) {
        shop.insert("dettagliop", {{"OpID", std::int64_t{variant}},
                                   {"testo", word()},
                                   {"testo_l2", word()},
                                   {"prezzo", money(std::to_string(upTo(90)) + ".50")},
                                   {"peso", 0.5 * upTo(8)},
                                   {"selezionato", std::string(option == 1 ? "." : " ")}});
      }
    }
  }
  void addDepartment(int number) {
    const std::string key = "cat00" + std::to_string(number);
    shop.department(key, {{"contatore", std::int64_t{number}},
                          {"titolo", word()},
                          {"titolo_l2", word()},
                          {"template", std::string("modello1")},
                          {"iva", 22.0},
                          {"immagine0", picture()},
                          {"immagine1", picture()},
                          {"immagine1_l3", picture()}});
    const int articles = upTo(5);
    for (int i = 0; i < articles; ++i) {
      shop.article(key, {{"titolo", word()},
                         {"titolo_l2", word()},
                         {"prezzo", money(std::to_string(upTo(900)) + ".25")},
                         {"opzione1", std::int64_t{1 + upTo(3)}},
                         {"immagine0", picture()},
                         {"immagine2", picture()}});
    }
  }
  int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(chance); }
  std::string word() {
    static const std::vector<std::string> words{"Vaso", "Città", "d'Epoca", "50% lana", "\"Blu\"", "È < 3", "a&b"};
    std::string text = words[static_cast<std::size_t>(upTo(6))];
    return upTo(1) == 0 ? text : text + " " + words[static_cast<std::size_t>(upTo(6))];
  }
  /// The name of a picture that is in the image folder, or an empty text.
  std::string picture() {
    if (upTo(2) == 0) return {};
    const std::string name = "foto_000" + std::to_string(upTo(9)) + ".gif";
    EXPECT_TRUE(writeBytes(joinPath(shop.folder(), "work/" + name), onePixelGif(1, 2, 3)));
    return upTo(1) == 0 ? name : "FOTO" + name.substr(4);
  }

  void reopen(Session& session, const std::string& folder) {
    session = Session();
    session.ShopFolder = folder;
    ASSERT_EQ(CaricaNegozio(session, env, {.folderJustChosen = false, .silent = true}), LoadResult::Opened)
        << ::testing::PrintToString(shop.user.texts());
  }
  /// Everything that a build makes, with the same random numbers each time.
  Files built(Session& session) {
    FixedRandom random;
    Environment same{shop.user, shop.settings, shop.clock, random, shop.applicationFolder(), {}};
    EXPECT_EQ(MakePages(session, same, {}, nullptr), BuildOutcome::Done) << ::testing::PrintToString(shop.user.texts());
    Files files;
    addFiles(files, session.onlineFolder, "online");
    addFiles(files, session.scriptFolder, "scripts");
    addRows(files, session.ShopFolder + "/db/sql.mdb");
    return files;
  }

  TempShop shop;
  Environment env;
  std::mt19937 chance;
  std::string model;
};

class ExchangeOfChance : public ShopOfChance {
 public:
  void TestBody() override {}

  void exported(unsigned number) { moved(number, "OKTLSRP"); }
  void zipped(unsigned number) { moved(number, "OKTLSRPZ"); }

  void moved(unsigned number, const std::string& tag) {
    fill(number);
    const Files wanted = built(shop.session);
    std::string copy = shop.folder() + "-copia";
    ASSERT_TRUE(createFolder(copy));
    shop.user.folders = {copy};
    ASSERT_EQ(EsportaNegozio(shop.session, env, [&](const ExportOffer&) { return tag; }), ExportOutcome::Done)
        << ::testing::PrintToString(shop.user.texts());
    if (const auto zips = listFiles(copy, "*.zip"); !zips.empty()) {
      const std::string unpacked = copy + "-aperta";
      ASSERT_EQ(std::system(("python3 -m zipfile -e '" + copy + "/" + zips[0] + "' '" + unpacked + "'").c_str()), 0);
      copy = unpacked;
    }
    ASSERT_TRUE(validateShop(copy).ok);
    Session opened;
    reopen(opened, copy);
    EXPECT_EQ(differing(wanted, built(opened)), "") << "shop " << number;
    EXPECT_EQ(differing(wanted, built(shop.session)), "") << "the original of shop " << number;
  }

  void imported(unsigned number) {
    fill(number);
    shop.sql(importedSettings());
    const Files wanted = built(shop.session);
    shop.session.catalogue.close();
    const std::string primo = shop.folder() + "-primo";
    ASSERT_TRUE(copyTree(shop.folder(), primo));
    fold(primo);
    emptyShop();
    reopen(shop.session, shop.folder());
    ASSERT_EQ(importPrimoShop(shop.session, env, primo), PrimoOutcome::Done)
        << ::testing::PrintToString(shop.user.texts());
    shop.sql("UPDATE generale SET template = 'prova'");
    reopen(shop.session, shop.folder());
    EXPECT_EQ(differing(wanted, built(shop.session)), "") << "shop " << number;
  }

  void purged(unsigned number) {
    fill(number);
    const Files wanted = built(shop.session);
    const std::string work = shop.folder() + "/work";
    ASSERT_TRUE(writeBytes(work + "/di_troppo_0001.gif", onePixelGif(9, 9, 9)));
    PicturePurge purge(
        {work, [&](const TextReader& read) { return usedPictures(shop.session.catalogue, read); }, {}, {}}, shop.user);
    ASSERT_TRUE(purge.search());
    ASSERT_EQ(purge.unused().size(), 1U) << "shop " << number;
    EXPECT_EQ(purge.unused()[0].name, "di_troppo_0001.gif") << "shop " << number;
    purge.tickAll(true);
    shop.user.answers = {Answer::Yes};
    ASSERT_TRUE(purge.deleteTicked());
    EXPECT_FALSE(fileExists(work + "/di_troppo_0001.gif"));
    const Files after = built(shop.session);
    EXPECT_EQ(differing(wanted, after), "") << "shop " << number;
  }

 private:
  /// What an import sets in every shop: four zones and the discounts are 0.
  std::string importedSettings() {
    std::string changes = "UPDATE generale SET sconto = 0";
    for (const std::string_view list : listinoSuffixes) {
      changes += ", scimp" + std::string(list) + " = 0, importo" + std::string(list) + " = 0";
    }
    for (int zone = 5; zone <= 8; ++zone) {
      const auto info = shop.session.catalogue.table("zona" + std::to_string(zone));
      if (!info) return {};
      std::string columns;
      for (const ColumnInfo& column : info->columns) columns += (columns.empty() ? "" : ", ") + column.name + " = 0";
      changes += "; UPDATE " + info->name + " SET " + columns;
    }
    return changes;
  }
  /// The form of the earlier line: options in fifteen columns of their variant.
  static void fold(const std::string& folder) {
    auto catalogue = Database::open(folder + "/catalog.mdb", OpenMode::Shared);
    ASSERT_TRUE(catalogue);
    std::string columns;
    for (int option = 1; option <= 15; ++option) {
      const std::string number = std::to_string(option);
      for (const auto& [field, column] : {std::pair<std::string, std::string>{"testo", "opzione" + number},
                                          {"testo_l2", "opzione" + number + "_l2"},
                                          {"prezzo", "prezzo" + number},
                                          {"peso", "peso" + number}}) {
        columns += (columns.empty() ? "" : ", ") + column + " = (SELECT " + field +
                   " FROM dettagliop WHERE OpID = opzioni.ID ORDER BY ID LIMIT 1 OFFSET " + std::to_string(option - 1) +
                   ")";
      }
    }
    ASSERT_TRUE(catalogue->execute("UPDATE opzioni SET " + columns));
    ASSERT_TRUE(catalogue->execute("DELETE FROM dettagliop; UPDATE generale SET versione = 250"));
  }
  /// The shop as if nothing had been entered.
  void emptyShop() const {
    auto catalogue = Database::open(shop.folder() + "/catalog.mdb", OpenMode::Shared);
    ASSERT_TRUE(catalogue);
    ASSERT_TRUE(
        catalogue->execute("DELETE FROM articoli; DELETE FROM categorie; DELETE FROM dettagliop;"
                           "DELETE FROM sqlite_sequence; UPDATE generale SET titolo = 'x', immagine0 = '';"
                           "UPDATE lingue SET lingua2 = NULL"));
    for (int zone = 1; zone <= copiedZones; ++zone) {
      ASSERT_TRUE(catalogue->execute("UPDATE zona" + std::to_string(zone) + " SET m1sp1 = 0"));
    }
    ASSERT_TRUE(emptyFolder(shop.folder() + "/work"));
  }
};

constexpr unsigned shares = 4;  // of the shops, each a case of its own

/// Runs `check` over a share of the shops, each made new.
void overShops(unsigned share, void (ExchangeOfChance::*check)(unsigned)) {
  for (unsigned i = share; i < seeds(100); i += shares) {
    ExchangeOfChance shop;
    (shop.*check)(seed() + i);
    if (::testing::Test::HasFatalFailure()) return;
  }
}

class ExportedShopsOfChance : public ::testing::TestWithParam<unsigned> {};
class ZippedShopsOfChance : public ::testing::TestWithParam<unsigned> {};
class FoldedShopsOfChance : public ::testing::TestWithParam<unsigned> {};
class PurgedShopsOfChance : public ::testing::TestWithParam<unsigned> {};

TEST_P(ExportedShopsOfChance, AnExportBuildsWhatTheShopBuilds) { overShops(GetParam(), &ExchangeOfChance::exported); }
INSTANTIATE_TEST_SUITE_P(Share, ExportedShopsOfChance, ::testing::Range(0U, shares));

TEST_P(ZippedShopsOfChance, WhatIsUnpackedBuildsWhatTheShopBuilds) { overShops(GetParam(), &ExchangeOfChance::zipped); }
INSTANTIATE_TEST_SUITE_P(Share, ZippedShopsOfChance, ::testing::Range(0U, shares));

TEST_P(FoldedShopsOfChance, AnImportOfTheFoldedShopBuildsWhatItBuilt) {
  overShops(GetParam(), &ExchangeOfChance::imported);
}
INSTANTIATE_TEST_SUITE_P(Share, FoldedShopsOfChance, ::testing::Range(0U, shares));

TEST_P(PurgedShopsOfChance, APurgeTakesNoPictureThatABuildNeeds) { overShops(GetParam(), &ExchangeOfChance::purged); }
INSTANTIATE_TEST_SUITE_P(Share, PurgedShopsOfChance, ::testing::Range(0U, shares));

}  // namespace
}  // namespace kv::test
