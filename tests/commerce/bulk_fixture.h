#pragma once
// A catalogue alone, without a shop around it, and what chance puts into it.

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

#include "store/schema/schema.h"
#include "support/row_text.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"
#include "support/test_seed.h"

namespace kv::test {

class BulkFixture : public ::testing::Test {
 protected:
  BulkFixture() {
    std::filesystem::copy_file(model(), root / "catalog.mdb");
    auto opened = Database::open(root / "catalog.mdb", OpenMode::Scratch).value();
    catalogue = std::move(opened);
  }
  void sql(const std::string& statements) {
    const auto done = catalogue.execute(statements);
    ASSERT_TRUE(done) << done.error().what;
  }
  std::string read(const std::string& query) { return rows(catalogue, query); }
  /// All rows of the tables that the bulk dialogs write, to be compared as a whole.
  std::string everything() {
    std::string text;
    for (const char* table : {"generale", "pagamento", "categorie", "articoli", "opzioni", "dettagliop"}) {
      text += read(std::string("SELECT * FROM ") + table) + "\n";
    }
    return text;
  }
  Shown said(const std::string& text, Icon icon) const { return {text, icon, Buttons::Ok, Answer::Ok, Answer::Ok}; }

  TempFolder root;
  Database catalogue;
  ScriptedUser user;

 private:
  static std::string model() {
    static const TempFolder folder;
    const std::string path = folder / "catalog.mdb";
    if (std::filesystem::exists(path)) return path;
    EXPECT_TRUE(createDatabase(path, catalogueTables()));
    auto made = Database::open(path, OpenMode::Shared).value();
    EXPECT_TRUE(
        made.execute("INSERT INTO generale (versione) VALUES (1002); INSERT INTO pagamento (selezionato) "
                     "VALUES (1); INSERT INTO opzioni (ID, nome) VALUES (1, '(nessuna)')"));
    return path;
  }
};

/// A number from 0 to `most`.
inline int upTo(std::mt19937& chance, int most) { return static_cast<int>(chance() % static_cast<unsigned>(most + 1)); }
/// A count of ten-thousandths as chance has it, or "NULL": small and large, ties included, some below 0.
inline std::string randomPrice(std::mt19937& chance) {
  switch (upTo(chance, 5)) {
    case 0:
      return "NULL";
    case 1:
      return std::to_string(upTo(chance, 999) * 50);
    case 2:
      return std::to_string(std::int64_t{upTo(chance, 2000000)} * 10000 + upTo(chance, 9999));
    case 3:
      return "-" + std::to_string(upTo(chance, 99999));
    default:
      return std::to_string(upTo(chance, 30000) * 100);
  }
}

}  // namespace kv::test
