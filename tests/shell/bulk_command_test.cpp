// The commands of korvane-cli that change many rows: their arguments, their previews, and what they leave.
#include <gmock/gmock.h>

#include <sstream>

#include "platform/files/files.h"
#include "shell/cli/cli_program.h"
#include "shell/cli/command_line.h"
#include "support/row_text.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

std::string whatIsWrong(const std::vector<std::string>& arguments) {
  const auto line = parseCommandLine(arguments);
  return line ? "" : line.error().what;
}

TEST(TheArgumentsOfABulkCommand, AreReadInAnyOrderAndForm) {
  const auto line = parseCommandLine(std::vector<std::string>{"--percent", "-5,5", "prices", "--list=0,3,9", "shop",
                                                              "--department=cat001", "--offers", "--dry-run"});
  ASSERT_TRUE(line) << line.error().what;
  EXPECT_EQ(line->command, CliCommand::Prices);
  EXPECT_EQ(line->bulk.percent, "-5,5");
  EXPECT_EQ(line->bulk.lists, (PriceLists{true, false, false, true, false, false, false, false, false, true}));
  EXPECT_EQ(line->bulk.department, "cat001");
  EXPECT_TRUE(line->bulk.offers && line->bulk.dryRun);
  EXPECT_FALSE(line->bulk.variants || line->bulk.round);
}

TEST(TheArgumentsOfABulkCommand, NameEveryBoxOfTheListReplication) {
  const auto line = parseCommandLine(
      std::vector<std::string>{"replicate-list", "shop", "--from", "2", "--to", "0,1", "--round", "--offers",
                               "--variants", "--quantity-discounts", "--department-discounts", "--restrictions"});
  ASSERT_TRUE(line) << line.error().what;
  EXPECT_EQ(line->bulk.from, 2);
  EXPECT_TRUE(line->bulk.to[0] && line->bulk.to[1]);
  EXPECT_TRUE(line->bulk.round && line->bulk.offers && line->bulk.variants && line->bulk.quantityDiscounts &&
              line->bulk.departmentDiscounts && line->bulk.restrictions);
}

TEST(TheArgumentsOfABulkCommand, NameThePartsOfTheLanguageReplication) {
  const auto line = parseCommandLine(std::vector<std::string>{"replicate-language", "shop", "--from=1", "--to=2",
                                                              "--what=shop,variants", "--only-empty"});
  ASSERT_TRUE(line) << line.error().what;
  EXPECT_EQ(line->bulk.parts, (std::array<bool, 4>{true, false, false, true}));
  EXPECT_TRUE(line->bulk.onlyEmpty);
}

TEST(TheArgumentsOfABulkCommand, AreRefusedWithTheReason) {
  EXPECT_EQ(whatIsWrong({"prices", "shop", "--list", "0"}), "manca l'opzione --percent");
  EXPECT_EQ(whatIsWrong({"prices", "shop", "--percent", "5"}), "manca l'opzione --list");
  EXPECT_EQ(whatIsWrong({"prices", "shop", "--percent", "5", "--list", "0,10"}), "valore non ammesso per --list: 0,10");
  EXPECT_EQ(whatIsWrong({"prices", "shop", "--percent", "5", "--list", "0,"}), "valore non ammesso per --list: 0,");
  EXPECT_EQ(whatIsWrong({"prices", "shop", "--percent"}), "manca il valore di --percent");
  EXPECT_EQ(whatIsWrong({"replicate-list", "shop", "--to", "1"}), "manca l'opzione --from");
  EXPECT_EQ(whatIsWrong({"replicate-list", "shop", "--from", "1"}), "manca l'opzione --to");
  EXPECT_EQ(whatIsWrong({"replicate-language", "shop", "--from", "1", "--to", "2"}), "manca l'opzione --what");
  EXPECT_EQ(whatIsWrong({"replicate-language", "shop", "--what", "prices"}), "valore non ammesso per --what: prices");
  EXPECT_EQ(whatIsWrong({"build", "shop", "--dry-run"}), "opzione non prevista per il comando build: --dry-run");
  EXPECT_EQ(whatIsWrong({"upgrade", "shop", "--round"}), "opzione non prevista per il comando upgrade: --round");
  EXPECT_EQ(whatIsWrong({"prices", "shop", "--dry-run=1"}), "opzione sconosciuta: --dry-run=1");
}

/// A new shop, and runs of the program within this process.
class ABulkCommand : public ::testing::Test {
 protected:
  ABulkCommand() {
    ::setenv("XDG_DATA_HOME", (home / "data").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (home / "config").c_str(), 1);
    EXPECT_EQ(run({"new", shop}), CliOutcome::Done);
  }
  CliOutcome run(const std::vector<std::string>& arguments) {
    out.str("");
    err.str("");
    return runCommandLine(arguments, {out, err, {}, std::string(folderOf(KORVANE_CLI))});
  }
  std::string read(const std::string& query) {
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    return catalogue ? test::rows(*catalogue, query) : catalogue.error().what;
  }
  void sql(const std::string& statements) {
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    ASSERT_TRUE(catalogue);
    ASSERT_TRUE(catalogue->execute(statements));
  }
  std::string bytes() const { return readBytes(shop + "/catalog.mdb").value_or("(none)"); }
  std::size_t copies() const { return listFiles(shop + "/backup", "catalog-*.mdb").size(); }

  test::TempFolder home;
  std::string shop = home / "shop";
  std::ostringstream out, err;
};

TEST_F(ABulkCommand, OfPricesShowsItsPreviewAndThenDoesIt) {
  sql("DELETE FROM articoli; INSERT INTO articoli (ID, catID, codice, titolo, prezzo) VALUES"
      " (1, 'cat001', 'V1', 'Vaso', 199900)");
  const std::string before = bytes();
  EXPECT_EQ(run({"prices", shop, "--percent", "+10", "--list", "0", "--dry-run"}), CliOutcome::Done);
  EXPECT_EQ(out.str(),
            "V1\tVaso\tListino 0\t19,99\t21,99\n"
            "Prezzi da modificare: 1 di 1; variazione maggiore: 19,99 -> 21,99 (Vaso, Listino 0)\n");
  EXPECT_EQ(bytes(), before);
  EXPECT_EQ(copies(), 1U) << "that of the first opening alone";
  EXPECT_EQ(run({"prices", shop, "--percent", "+10", "--list", "0", "--round"}), CliOutcome::Done);
  EXPECT_EQ(out.str(), "Prezzi modificati: 1\n");
  EXPECT_EQ(read("SELECT prezzo FROM articoli"), "220000\n");
  EXPECT_EQ(copies(), 2U);
}

TEST_F(ABulkCommand, OfPricesAnswersItsQuestionByTheArguments) {
  sql("UPDATE articoli SET opzione1 = 2, opzione1_5 = 2; INSERT OR IGNORE INTO opzioni (ID, nome) VALUES (2, 'C')");
  const std::string before = read("SELECT ID, prezzo FROM articoli");
  const std::vector<std::string> arguments{"prices", shop, "--percent", "5", "--list", "0", "--variants"};
  EXPECT_EQ(run(arguments), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("Si desidera procedere ugualmente?"));
  EXPECT_EQ(read("SELECT ID, prezzo FROM articoli"), before);
  std::vector<std::string> answered = arguments;
  answered.insert(answered.end(), {"--answer", "yes"});
  EXPECT_EQ(run(answered), CliOutcome::Done);
  EXPECT_NE(read("SELECT ID, prezzo FROM articoli"), before);
}

TEST_F(ABulkCommand, OfPricesRefusesAPercentageAndADepartmentThatIsNone) {
  EXPECT_EQ(run({"prices", shop, "--percent", "101", "--list", "0"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("Percentuale non valida (deve essere compresa tra -100 e +100)"));
  EXPECT_EQ(run({"prices", shop, "--percent", "1", "--list", "0", "--department", "nessuno"}), CliOutcome::Failed);
  EXPECT_THAT(err.str(), HasSubstr("Il reparto 'nessuno' non esiste"));
}

TEST_F(ABulkCommand, OfAPriceListCountsAndThenCopies) {
  sql("DELETE FROM articoli; INSERT INTO articoli (ID, catID, titolo, prezzo) VALUES (1, 'cat001', 'Vaso', 200000)");
  const std::string before = bytes();
  EXPECT_EQ(run({"replicate-list", shop, "--from", "0", "--to", "1,2", "--percent", "-5", "--dry-run"}),
            CliOutcome::Done);
  EXPECT_EQ(out.str(), "Campi da scrivere: 2, in 1 riga\n");
  EXPECT_EQ(bytes(), before);
  EXPECT_EQ(copies(), 1U);
  EXPECT_EQ(run({"replicate-list", shop, "--from", "0", "--to", "1,2"}), CliOutcome::Done);
  EXPECT_EQ(out.str(), "Campi scritti: 2, in 1 riga\n");
  EXPECT_EQ(read("SELECT prezzo1, prezzo2 FROM articoli"), "200000|200000\n");
  EXPECT_EQ(copies(), 2U);
}

TEST_F(ABulkCommand, OfALanguageCountsAsksAndCopies) {
  sql("UPDATE lingue SET lingua1 = 'italiano', lingua2 = 'inglese', lingua3 = NULL; DELETE FROM articoli;"
      "INSERT INTO articoli (ID, catID, titolo) VALUES (1, 'cat001', 'Vaso')");
  const std::vector<std::string> arguments{
      "replicate-language", shop, "--from", "1", "--to", "2", "--what", "articles"};
  std::vector<std::string> dry = arguments;
  dry.emplace_back("--dry-run");
  const std::string before = bytes();
  EXPECT_EQ(run(dry), CliOutcome::Done);
  EXPECT_EQ(out.str(), "Campi da scrivere: 1, in 1 riga\n");
  EXPECT_EQ(bytes(), before);
  EXPECT_EQ(copies(), 1U);
  EXPECT_EQ(run(arguments), CliOutcome::Failed) << "the question's default is no";
  EXPECT_EQ(read("SELECT titolo_l2 FROM articoli"), "null\n");
  std::vector<std::string> answered = arguments;
  answered.insert(answered.end(), {"--answer", "yes"});
  EXPECT_EQ(run(answered), CliOutcome::Done);
  EXPECT_EQ(out.str(), "Campi scritti: 1, in 1 riga\n");
  EXPECT_EQ(read("SELECT titolo_l2 FROM articoli"), "Vaso\n");
  EXPECT_GE(copies(), 2U) << "one before the first question, and one before the second unless it would be equal";
  for (const char* to : {"1", "3", "2,3"}) {
    answered[5] = to;
    EXPECT_EQ(run(answered), CliOutcome::Failed) << to;
    EXPECT_THAT(err.str(), HasSubstr("Origine e destinazione sono due lingue diverse del negozio, da 1 a 2"));
  }
}

TEST_F(ABulkCommand, OfAnUpgradeSaysWhatItDidAndNothingTheSecondTime) {
  sql("UPDATE generale SET versione = 1001; ALTER TABLE generale DROP COLUMN showsigns");
  ASSERT_TRUE(writeBytes(shop + "/code/ve.dat", "1.0.6\r\n"));
  ASSERT_TRUE(writeBytes(shop + "/code/SysPay/conf.ini", "shop=1\r\n"));
  const std::string before = bytes();
  const std::string done =
      "Colonne aggiunte: generale.showsigns\n"
      "File rinnovati: SysPay.kpg, SysPay/syspay.new, SysPay/syspayurlms.php, SysPay/syspayrec.php, "
      "SysPay/syspayback.php, SysPay/form.kpg, SysPay/conf.ini, Omnipay/omniend.new\n";
  const std::string modules = "Sistemi di pagamento da confermare con OK: Omnipay, SysPay\n";
  EXPECT_EQ(run({"upgrade", shop, "--dry-run"}), CliOutcome::Done);
  EXPECT_EQ(out.str(), "Il negozio sarebbe aggiornato.\n" + done + modules);
  EXPECT_EQ(bytes(), before);
  EXPECT_EQ(readBytes(shop + "/code/ve.dat").value_or(""), "1.0.6\r\n");
  EXPECT_EQ(run({"upgrade", shop}), CliOutcome::Done);
  EXPECT_EQ(out.str(), "Il negozio è stato aggiornato.\n" + done + "Conservati: " + shop +
                           "/backup/code/SysPay/conf.ini\n" + modules);
  EXPECT_EQ(copies(), 2U);
  EXPECT_EQ(run({"upgrade", shop}), CliOutcome::Done);
  EXPECT_EQ(out.str(), "Il negozio è già aggiornato.\n");
  EXPECT_EQ(run({"upgrade", shop, "--dry-run"}), CliOutcome::Done);
  EXPECT_EQ(out.str(), "Il negozio è già aggiornato.\n");
}

TEST_F(ABulkCommand, RefusesAFolderWithoutAShop) {
  for (const char* command : {"upgrade --dry-run", "upgrade"}) {
    std::vector<std::string> arguments{"upgrade", home / "vuota"};
    if (std::string(command).ends_with("run")) arguments.emplace_back("--dry-run");
    EXPECT_EQ(run(arguments), CliOutcome::Failed);
    EXPECT_EQ(out.str(), "");
    EXPECT_NE(err.str(), "");
  }
}

TEST_F(ABulkCommand, PatchesTheScriptsOfABuildAndLeavesTheMerchantsOwnAlone) {
  const std::string old = "<?php\n$Out = implode('', file($name));\n";
  ASSERT_TRUE(writeBytes(shop + "/code/logcheck.php", old));
  EXPECT_EQ(run({"build", shop}), CliOutcome::Done) << err.str();
  EXPECT_EQ(readBytes(shop + "/code/logcheck.php").value_or(""), old);
  EXPECT_THAT(readBytes(shop + "/online/logcheck.php").value_or(readBytes(shop + "/scripts/logcheck.php").value_or("")),
              HasSubstr("@readfile($name)"));
}

}  // namespace
}  // namespace kv
