// The two files of one language, byte by byte: heads, definitions, tables chosen, layout of rows, every kind of value.

#include "sqlexport/export_fixture.h"

namespace kv::test {
namespace {

class DatabaseExportTest : public ExportTest {};
using std::string_literals::operator""s;

std::string spaces(std::size_t count) { return std::string(count, ' '); }

TEST_F(DatabaseExportTest, AFileStartsWithTheTokenAndEachTableWithItsDefinition) {
  sql("CREATE TABLE paesi (ID TEXT(20) COLLATE NOCASE, nome LONGTEXT, attivo BOOLEAN);"
      "CREATE INDEX ix_paesi ON paesi (ID)");
  EXPECT_EQ(load(),
            "#secsecsec\n"
            "\n"
            "CREATE TABLE paesi\n"
            "(\n"
            "ID" +
                spaces(64) +
                "CHAR(20),\n"
                "nome" +
                spaces(62) +
                "LONGTEXT,\n"
                "attivo" +
                spaces(60) +
                "TINYINT,\n"
                "KEY (ID)\n"
                ");\n"
                "\n");
  EXPECT_EQ(drop(), "#secsecsec\n\nDROP TABLE paesi;\n");
  EXPECT_TRUE(exported);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(DatabaseExportTest, AColumnNameOf64CharactersIsFollowedByTwoSpaces) {
  const std::string name(64, 'c');
  table("t", {name, "order"s + "x"});
  EXPECT_NE(load().find("\n" + name + "  INT,\norderx" + spaces(60) + "INT\n"), std::string::npos);
}

TEST_F(DatabaseExportTest, AReservedColumnIsAlignedByTheNameThatIsWritten) {
  sql("CREATE TABLE \"Table\" (\"Order\" INTEGER)");
  EXPECT_EQ(load(), "#secsecsec\n\nCREATE TABLE _Table\n(\n_Order" + spaces(60) + "INT\n);\n\n");
  EXPECT_EQ(drop(), "#secsecsec\n\nDROP TABLE _Table;\n");
}

TEST_F(DatabaseExportTest, KeysAreInTheirOrderAndAUniqueOneIsPlain) {
  sql("CREATE TABLE t (id INTEGER PRIMARY KEY AUTOINCREMENT, a INTEGER, \"key\" INTEGER);"
      "CREATE UNIQUE INDEX u ON t (a, \"key\"); CREATE INDEX i ON t (a)");
  EXPECT_NE(load().find("\nid" + spaces(64) + "INT NOT NULL AUTO_INCREMENT,\n"), std::string::npos);
  EXPECT_NE(load().find("INT,\nPRIMARY KEY (id),\nKEY (a, _key),\nKEY (a)\n);\n"), std::string::npos);
}

TEST_F(DatabaseExportTest, TablesKeepTheOrderOfTheDatabase) {
  table("zeta");
  table("alfa");
  table("mezzo");
  load();
  EXPECT_EQ(drop(), "#secsecsec\n\nDROP TABLE zeta;\n\nDROP TABLE alfa;\n\nDROP TABLE mezzo;\n");
}

TEST_F(DatabaseExportTest, TheFirstLanguageLeavesOutEveryNameWithTheMarkOfALanguageAnywhere) {
  for (const char* name : {"articoli", "articoli_l2", "prezzi_listino", "_lista"}) table(name);
  load();
  EXPECT_EQ(drop(), "#secsecsec\n\nDROP TABLE articoli;\n");
}

TEST_F(DatabaseExportTest, AnotherLanguageTakesItsOwnTablesUnderTheirFullNames) {
  for (const char* name : {"articoli", "articoli_l2", "articoli_l3", "a_l2b"}) table(name);
  load("_l2");
  EXPECT_EQ(drop(), "#secsecsec\n\nDROP TABLE articoli_l2;\n\nDROP TABLE a_l2b;\n");
}

TEST_F(DatabaseExportTest, HiddenAndSystemTablesAreNotExported) {
  TableInfo table;
  table.name = "t";
  EXPECT_TRUE(isExported(table, ""));
  for (const unsigned attributes : {1U, 2U, 0x80000000U, 0x80000002U}) {
    table.attributes = attributes;
    EXPECT_FALSE(isExported(table, "")) << attributes;
  }
  table.attributes = 0x40000000U;
  EXPECT_TRUE(isExported(table, ""));
}

TEST_F(DatabaseExportTest, ARowOfFourColumnsIsSpreadOverLinesWithABlankLineAfterIt) {
  sql("CREATE TABLE paesi (ID INTEGER, paese TEXT(50), zona SMALLINT, sigla TEXT(2));"
      "INSERT INTO paesi VALUES (1, 'Italia', 0, 'IT'), (2, 'Malta', 1, 'MT')");
  EXPECT_EQ(rows(),
            "INSERT INTO paesi\nVALUES (\n 1, \n'Italia', \n 0, \n'IT' );\n\n"
            "INSERT INTO paesi\nVALUES (\n 2, \n'Malta', \n 1, \n'MT' );\n\n");
}

TEST_F(DatabaseExportTest, ARowOfThreeColumnsIsOneLine) {
  sql("CREATE TABLE t (a INTEGER, b TEXT(9), c INTEGER); INSERT INTO t VALUES (1, 'x', -2), (3, 'y', 4)");
  EXPECT_EQ(rows(), "INSERT INTO t VALUES ( 1, 'x', -2);\nINSERT INTO t VALUES ( 3, 'y',  4);\n");
}

TEST_F(DatabaseExportTest, LockStatementsEncloseTheRows) {
  sql("CREATE TABLE \"lock\" (a INTEGER); INSERT INTO \"lock\" VALUES (1), (2)");
  style.lockTables = true;
  EXPECT_EQ(
      rows(),
      "LOCK TABLES _lock WRITE;\nINSERT INTO _lock VALUES ( 1);\nINSERT INTO _lock VALUES ( 2);\nUNLOCK TABLES;\n");
}

TEST_F(DatabaseExportTest, ATableWithoutRowsIsNotLocked) {
  table("vuota");
  style.lockTables = true;
  EXPECT_EQ(rows(), "");
}

TEST_F(DatabaseExportTest, AnotherSeparatorEndsEveryStatementAndIsNotedOnTheSecondLine) {
  sql("CREATE TABLE t (a INTEGER); INSERT INTO t VALUES (1);"
      "CREATE TABLE u (a INTEGER, b INTEGER, c INTEGER, d INTEGER); INSERT INTO u VALUES (1, 2, 3, 4)");
  style = {";\\g", true, TARGET};
  const std::string type = spaces(65) + "INT";
  EXPECT_EQ(load(), "#secsecsec\n#QS=;\\g\n\nCREATE TABLE t\n(\na" + type +
                        "\n);\\g\n\nLOCK TABLES t WRITE;\\g\nINSERT INTO t VALUES ( 1);\\g\nUNLOCK TABLES;\\g\n" +
                        "\nCREATE TABLE u\n(\na" + type + ",\nb" + type + ",\nc" + type + ",\nd" + type +
                        "\n);\\g\n\nLOCK TABLES u WRITE;\\g\nINSERT INTO u\nVALUES (\n 1, \n 2, \n 3, \n 4 );\\g\n\n" +
                        "UNLOCK TABLES;\\g\n");
  EXPECT_EQ(drop(), "#secsecsec\n#QS=;\\g\n\nDROP TABLE t;\\g\n\nDROP TABLE u;\\g\n");
}

TEST_F(DatabaseExportTest, RowsAreInTheOrderOfStorageAlsoWhereAnIndexHoldsThemAll) {
  sql("CREATE TABLE t (a INTEGER); CREATE INDEX i ON t (a); INSERT INTO t VALUES (3), (1), (2)");
  EXPECT_EQ(rows(), "INSERT INTO t VALUES ( 3);\nINSERT INTO t VALUES ( 1);\nINSERT INTO t VALUES ( 2);\n");
}

TEST_F(DatabaseExportTest, NullHasNoQuotesAndAnEmptyTextHasTwo) {
  sql("CREATE TABLE t (a TEXT(5), b BOOLEAN, c DATETIME); INSERT INTO t VALUES (NULL, NULL, NULL), ('', 0, '')");
  EXPECT_EQ(rows(), "INSERT INTO t VALUES (NULL, NULL, NULL);\nINSERT INTO t VALUES ('', 0, '');\n");
}

TEST_F(DatabaseExportTest, AFlagIsOneOrZeroWithoutASpace) {
  sql("CREATE TABLE t (a BOOLEAN, b BOOLEAN, c BOOLEAN); INSERT INTO t VALUES (1, 0, -1)");
  EXPECT_EQ(rows(), "INSERT INTO t VALUES (1, 0, 1);\n");
}

TEST_F(DatabaseExportTest, NumbersHaveASpaceOrAMinusInFrontAndAPointWithoutAZeroBeforeIt) {
  sql("CREATE TABLE t (a MONEY_INTEGER, b FLOAT, c DOUBLE);"
      "INSERT INTO t VALUES (125000, 0.1, 0.25), (-5, -1.5, -0.5), (2000, 20, 100), (0, 0, 0), (100000001, 1e20, "
      "1e-5)");
  EXPECT_EQ(rows(),
            "INSERT INTO t VALUES ( 12.5,  .1,  .25);\n"
            "INSERT INTO t VALUES (-.0005, -1.5, -.5);\n"
            "INSERT INTO t VALUES ( .2,  20,  100);\n"
            "INSERT INTO t VALUES ( 0,  0,  0);\n"
            "INSERT INTO t VALUES ( 10000.0001,  1E+20,  1E-05);\n");
}

TEST_F(DatabaseExportTest, WholeNumbersAndMoneyAreExactAtTheirLimits) {
  sql("CREATE TABLE t (a TINYINT, b INTEGER, c MONEY_INTEGER);"
      "INSERT INTO t VALUES (255, -2147483648, -9223372036854775808), (0, 2147483647, 9223372036854775807)");
  EXPECT_EQ(rows(),
            "INSERT INTO t VALUES ( 255, -2147483648, -922337203685477.5808);\n"
            "INSERT INTO t VALUES ( 0,  2147483647,  922337203685477.5807);\n");
}

TEST_F(DatabaseExportTest, ADayWithoutATimeIsItsMidnight) {
  sql("CREATE TABLE t (a DATETIME); INSERT INTO t VALUES ('2024-02-29 23:59:58'), ('2024-02-29')");
  EXPECT_EQ(rows(), "INSERT INTO t VALUES ('2024-02-29 23:59:58');\nINSERT INTO t VALUES ('2024-02-29 00:00:00');\n");
}

TEST_F(DatabaseExportTest, TextIsInTheCodePageOfTheFilesAndBytesStayBytes) {
  sql("CREATE TABLE t (a TEXT(50), b LONGTEXT, c LONGBLOB); INSERT INTO t VALUES ('è €', 'ab' || char(13, 10) || '漢', "
      "x'0D0AE80027')");
  EXPECT_EQ(rows(), "INSERT INTO t VALUES ('\xE8 \x80', 'ab\\n&#28450;', '\\r\\n\xE8\\0\\'');\n"s);
}

TEST_F(DatabaseExportTest, AFieldThatIsNotWhatItsColumnSaysIsStillANumber) {
  sql("CREATE TABLE t (a INTEGER, b MONEY_INTEGER, c BOOLEAN); INSERT INTO t VALUES ('x); DROP', 'y', 'z'), (1.5, 2.4, "
      "0.5)");
  EXPECT_EQ(rows(), "INSERT INTO t VALUES ( 0,  0, 0);\nINSERT INTO t VALUES ( 2,  .0002, 1);\n");
}

TEST_F(DatabaseExportTest, AWarningFollowsTheDefinitionItBelongsTo) {
  sql("CREATE TABLE t (a INTEGER DEFAULT 1, b INTEGER DEFAULT 2); CREATE TABLE u (a INTEGER)");
  EXPECT_EQ(
      load(),
      "#secsecsec\n\nCREATE TABLE t\n(\na" + spaces(65) + "INT,\nb" + spaces(65) +
          "INT\n);\n"
          " Warning: In new field 'a', MySQL needs NOT NULL to support default values! - it won't be set a default.\n"
          " Warning: In new field 'b', MySQL needs NOT NULL to support default values! - it won't be set a default.\n"
          "\n\nCREATE TABLE u\n(\na" +
          spaces(65) + "INT\n);\n\n");
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(DatabaseExportTest, AMissingDatabaseIsReportedByItsDescriptionAndLeavesNoFiles) {
  path = folder / "nowhere.mdb";
  EXPECT_EQ(load(), "(missing)");
  EXPECT_FALSE(exported);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].icon, Icon::Exclamation);
  EXPECT_TRUE(user.texts()[0].starts_with("Un file, una cartella o una riga non esiste più.\n")) << user.texts()[0];
  EXPECT_TRUE(user.texts()[0].ends_with(": No such file or directory")) << user.texts()[0];
  EXPECT_EQ(drop(), "(missing)");
}

TEST_F(DatabaseExportTest, AFullDiskIsReportedOnce) {
  sql("CREATE TABLE t (a INTEGER); INSERT INTO t VALUES (1)");
  std::filesystem::create_symlink("/dev/full", folder / "db.sc");
  EXPECT_FALSE(ExportDatabaseSql({path, folder / "db.sc", folder / "dbdel.sc", "", "s"}, style, user));
  ASSERT_EQ(user.texts().size(), 1U);
  EXPECT_TRUE(user.texts()[0].starts_with("Il disco è pieno.\n")) << user.texts()[0];
  EXPECT_TRUE(user.texts()[0].ends_with(": No space left on device")) << user.texts()[0];
  EXPECT_EQ(drop(), "#s\n\nDROP TABLE t;\n");
}

TEST_F(DatabaseExportTest, WhatWasWrittenBeforeAFailureStays) {
  sql("CREATE TABLE t (a INTEGER, b LONGTEXT)");
  for (int i = 0; i < 40; ++i) sql("INSERT INTO t VALUES (" + std::to_string(i) + ", hex(zeroblob(20000)))");
  database.close();
  // A page in the middle is overwritten: the rows before it can be read.
  const std::string bytes = readBytes(path).value();
  ASSERT_TRUE(
      writeBytes(path, bytes.substr(0, bytes.size() / 2) + std::string(bytes.size() - bytes.size() / 2, '\xFF')));
  const std::string text = load();
  EXPECT_FALSE(exported);
  ASSERT_EQ(user.texts().size(), 1U);
  EXPECT_TRUE(user.texts()[0].starts_with("Il file è danneggiato.\n")) << user.texts()[0];
  EXPECT_TRUE(user.texts()[0].ends_with(": database disk image is malformed")) << user.texts()[0];
  EXPECT_NE(text.find("INSERT INTO t VALUES ( 0, '0000"), std::string::npos);
  EXPECT_EQ(text.find("INSERT INTO t VALUES ( 39,"), std::string::npos);
}

TEST_F(DatabaseExportTest, OldContentOfTheFilesIsRemoved) {
  table("t");
  ASSERT_TRUE(writeBytes(folder / "db.sc", std::string(9000, 'x')));
  const std::string once = load();
  EXPECT_EQ(load(), once);
  EXPECT_LT(once.size(), 200U);
}

TEST_F(DatabaseExportTest, MSql1NamesTheColumnsAndSetsTheFirstKeyAlone) {
  sql("CREATE TABLE t (a INTEGER, b INTEGER, PRIMARY KEY (a, b)); INSERT INTO t VALUES (1, 2)");
  style.target = SqlTarget::M1;
  EXPECT_EQ(
      load(),
      "#secsecsec\n\nCREATE TABLE t\n(\na" + spaces(65) + "INT PRIMARY KEY,\nb" + spaces(65) +
          "INT\n);\n"
          " Warning: On new table 't', mSQL v1 does not support more than one PRIMARY KEY! Only first key was set.\n"
          "\nINSERT INTO t (a, b) VALUES ( 1,  2);\n");
}

TEST_F(DatabaseExportTest, MSql2HasItsIndexesAsStatements) {
  sql("CREATE TABLE t (a INTEGER, b INTEGER); CREATE UNIQUE INDEX u ON t (a, b); CREATE INDEX v ON t (b)");
  style.target = SqlTarget::M2;
  EXPECT_EQ(load(), "#secsecsec\n\nCREATE TABLE t\n(\na" + spaces(65) + "INT,\nb" + spaces(65) +
                        "INT\n);\n"
                        "CREATE UNIQUE INDEX ixu ON t (a, b);\nCREATE INDEX ixv ON t (b);\n\n");
}

}  // namespace
}  // namespace kv::test
