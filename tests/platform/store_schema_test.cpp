// The schema view, the statements that createTable writes, and copies of tables.

#include "platform/store_fixture.h"

namespace kv::test {
namespace {

/// A table as a page: a line a column, then a line an index.
std::string asText(const TableInfo& table) {
  std::string text = table.name + "\n";
  for (const ColumnInfo& each : table.columns) {
    text += "  " + each.name + " " + std::to_string(static_cast<int>(each.type)) + "/" + std::to_string(each.size);
    if (each.attributes != 0) text += " attributes " + std::to_string(each.attributes);
    if (each.required) text += " required";
    if (!each.defaultValue.empty()) text += " default " + each.defaultValue;
    text += "\n";
  }
  for (const IndexInfo& index : table.indexes) {
    text += std::string("  ") + (index.primary ? "primary " : "") + (index.unique ? "unique " : "") + index.name + ":";
    for (const std::string& each : index.columns) text += " " + each;
    text += "\n";
  }
  return text;
}

/// A department's table in little: a text as primary key beside an automatic number.
TableInfo departments() {
  TableInfo table;
  table.name = "categorie";
  table.columns = {column("ID", ColumnType::Text, 255), column("titolo", ColumnType::Text, 100),
                   automaticKey("contatore"), column("iva", ColumnType::Single)};
  table.indexes = {{"", true, true, {"ID"}}, {"", false, false, {"titolo", "iva"}}};
  return table;
}

class StoreSchema : public StoreTest {
 protected:
  std::string view(std::string_view name) { return asText(valueOf(database_.table(name))); }
  std::string sql(const std::string& name) {
    return rows(database_, "SELECT sql FROM sqlite_schema WHERE name = '" + name + "'");
  }
};

TEST_F(StoreSchema, EveryTypeIsReadBackAsItWasDeclared) {
  TableInfo table;
  table.name = "tipi";
  for (int code = 1; code <= 12; ++code) {
    table.columns.push_back(column("c" + std::to_string(code), static_cast<ColumnType>(code)));
  }
  table.columns[8].size = 16;
  table.columns[9].size = 50;
  ASSERT_TRUE(database_.createTable(table));
  EXPECT_EQ(view("TIPI"),
            "tipi\n  c1 1/0\n  c2 2/0\n  c3 3/0\n  c4 4/0\n  c5 5/0\n  c6 6/0\n  c7 7/0\n  c8 8/0\n  c9 9/16\n"
            "  c10 10/50\n  c11 11/0\n  c12 12/0\n");
}

TEST_F(StoreSchema, TypesOfOtherProgramsFilesAreTakenByTheirKind) {
  run(database_, "CREATE TABLE t (a VARCHAR(30), b BIGINT, c REAL, d CLOB, e, f text ( 20 ), g DECIMAL(10,2))");
  EXPECT_EQ(view("t"), "t\n  a 10/30\n  b 4/0\n  c 7/0\n  d 12/0\n  e 11/0\n  f 10/20\n  g 7/0\n");
}

TEST_F(StoreSchema, ATableReadsWellInAPlainShell) {
  TableInfo table = departments();
  table.columns[1].required = true;
  table.columns[3].defaultValue = "20";
  table.columns.push_back(column("order", ColumnType::Memo));
  ASSERT_TRUE(database_.createTable(table));
  EXPECT_EQ(sql("categorie"),
            "CREATE TABLE categorie (\n"
            "  ID TEXT(255) COLLATE NOCASE,\n"
            "  titolo TEXT(100) COLLATE NOCASE NOT NULL,\n"
            "  contatore INTEGER PRIMARY KEY AUTOINCREMENT,\n"
            "  iva FLOAT DEFAULT 20,\n"
            "  \"order\" LONGTEXT COLLATE NOCASE\n"
            ")\n");
  EXPECT_EQ(sql("ix_categorie_titolo_iva"), "CREATE INDEX ix_categorie_titolo_iva ON categorie (titolo, iva)\n");
}

TEST_F(StoreSchema, APrimaryKeyBesideTheAutomaticNumberStaysPrimary) {
  ASSERT_TRUE(database_.createTable(departments()));
  EXPECT_EQ(view("categorie"),
            "categorie\n  ID 10/255\n  titolo 10/100\n  contatore 4/0 attributes 16\n  iva 6/0\n"
            "  primary unique pk_categorie: ID\n  ix_categorie_titolo_iva: titolo iva\n");
  EXPECT_FALSE(database_.execute("INSERT INTO categorie (ID) VALUES ('cat001'), ('CAT001')"));
}

TEST_F(StoreSchema, AnAutomaticKeyIsThePrimaryIndex) {
  TableInfo table;
  table.name = "opzioni";
  table.columns = {automaticKey("ID"), column("nome", ColumnType::Text, 50)};
  table.indexes = {{"PrimaryKey", true, true, {"ID"}}, {"perNome", false, true, {"nome"}}};
  ASSERT_TRUE(database_.createTable(table));
  EXPECT_EQ(view("opzioni"),
            "opzioni\n  ID 4/0 attributes 16\n  nome 10/50\n  primary unique PrimaryKey: ID\n"
            "  unique perNome: nome\n");
}

TEST_F(StoreSchema, AKeyOfTwoColumnsAndAPlainNumberKeyArePrimary) {
  TableInfo table;
  table.name = "ordinamento";
  table.columns = {column("pagina", ColumnType::Text, 50), column("posto", ColumnType::Long)};
  table.indexes = {{"PrimaryKey", true, true, {"pagina", "posto"}}};
  ASSERT_TRUE(database_.createTable(table));
  table.name = "opcodici";
  table.indexes = {{"PrimaryKey", true, true, {"posto"}}};
  ASSERT_TRUE(database_.createTable(table));
  EXPECT_EQ(view("ordinamento"),
            "ordinamento\n  pagina 10/50\n  posto 4/0\n  primary unique PrimaryKey: pagina posto\n");
  EXPECT_EQ(view("opcodici"), "opcodici\n  pagina 10/50\n  posto 4/0\n  primary unique PrimaryKey: posto\n");
}

TEST_F(StoreSchema, TablesAndIndexesKeepTheOrderOfTheirCreation) {
  for (const char* name : {"zeta", "alfa", "mezzo"}) {
    TableInfo table;
    table.name = name;
    table.columns = {automaticKey("ID"), column("z", ColumnType::Long), column("a", ColumnType::Long)};
    table.indexes = {{"", false, false, {"z"}}, {"", false, false, {"a"}}};
    ASSERT_TRUE(database_.createTable(table));
  }
  run(database_, "DROP TABLE alfa; CREATE TABLE alfa (n INTEGER)");
  const std::string copy = folder_ / "compatto.mdb";
  ASSERT_TRUE(Database::compact(path_, copy));
  auto compact = valueOf(Database::open(copy, OpenMode::ReadOnly));
  for (Database* each : {&database_, &compact}) {
    std::string names;
    const auto tables = valueOf(each->tables());
    for (const TableInfo& table : tables) names += table.name + " ";
    EXPECT_EQ(names, "zeta mezzo alfa ");
    ASSERT_EQ(tables.size(), 3U);
    EXPECT_EQ(asText(tables[0]),
              "zeta\n  ID 4/0 attributes 16\n  z 4/0\n  a 4/0\n  primary unique PrimaryKey: ID\n"
              "  ix_zeta_z: z\n  ix_zeta_a: a\n");
  }
}

TEST_F(StoreSchema, AnIndexNameTakenByAnotherTableIsReplaced) {
  TableInfo table;
  table.name = "uno";
  table.columns = {column("ID", ColumnType::Long)};
  table.indexes = {{"perID", false, false, {"ID"}}};
  ASSERT_TRUE(database_.createTable(table));
  table.name = "due";
  ASSERT_TRUE(database_.createTable(table));
  EXPECT_EQ(view("uno"), "uno\n  ID 4/0\n  perID: ID\n");
  EXPECT_EQ(view("due"), "due\n  ID 4/0\n  ix_due_ID: ID\n");
}

TEST_F(StoreSchema, DefaultsAreReadBackAsDeclaredAndTakeEffect) {
  TableInfo table;
  table.name = "t";
  table.columns = {column("a", ColumnType::Text, 9), column("b", ColumnType::Bool), column("c", ColumnType::Memo),
                   column("d", ColumnType::Long)};
  table.columns[0].defaultValue = "\"ab c\"";
  table.columns[1].defaultValue = "no";
  table.columns[2].defaultValue = "lower('ABC')";
  table.columns[3].defaultValue = "-5";
  ASSERT_TRUE(database_.createTable(table));
  EXPECT_EQ(view("t"),
            "t\n  a 10/9 default \"ab c\"\n  b 1/0 default no\n  c 12/0 default lower('ABC')\n  d 4/0 default -5\n");
  run(database_, "INSERT INTO t DEFAULT VALUES");
  EXPECT_EQ(rows(database_, "SELECT a, c, d FROM t"), "ab c|abc|-5\n");
}

TEST_F(StoreSchema, AnAddedColumnIsTheLastOne) {
  run(database_, "CREATE TABLE generale (URL TEXT(50) COLLATE NOCASE)");
  run(database_, "ALTER TABLE generale ADD COLUMN p3p LONGTEXT COLLATE NOCASE");
  EXPECT_EQ(view("generale"), "generale\n  URL 10/50\n  p3p 12/0\n");
  EXPECT_FALSE(database_.execute("ALTER TABLE generale ADD COLUMN P3P LONGTEXT"));
}

TEST_F(StoreSchema, ATableThatIsThereOrIsNotThereIsTold) {
  run(database_, "CREATE TABLE t (n INTEGER)");
  TableInfo table;
  table.name = "T";
  table.columns = {column("n", ColumnType::Long)};
  EXPECT_EQ(kindOf(database_.createTable(table)), ErrorKind::Exists);
  EXPECT_EQ(kindOf(database_.table("u")), ErrorKind::Missing);
  EXPECT_EQ(kindOf(database_.table("sqlite_schema")), ErrorKind::Missing);
}

TEST_F(StoreSchema, AnIndexThatFailsLeavesNoTable) {
  TableInfo table = departments();
  table.indexes.push_back({"", false, false, {"manca"}});
  EXPECT_FALSE(database_.createTable(table));
  EXPECT_TRUE(valueOf(database_.tables()).empty());
}

TEST_F(StoreSchema, ColumnsAreFoundWithoutRegardToCase) {
  const TableInfo table = departments();
  EXPECT_EQ(table.columnIndex("TITOLO"), 1);
  EXPECT_EQ(table.columnIndex("manca"), -1);
}

TEST_F(StoreSchema, APlainEngineReadsAndWritesTheFile) {
  ASSERT_TRUE(database_.createTable(departments()));
  run(database_, "INSERT INTO categorie (ID, titolo) VALUES ('cat001', 'Libri')");
  database_.close();
  EXPECT_EQ(rowsOfPlainEngine(path_,
                              "INSERT INTO categorie (ID, titolo) VALUES ('cat002', 'Dischi');"
                              "SELECT ID, contatore FROM categorie WHERE titolo = 'LIBRI' OR titolo LIKE 'd%';"
                              "PRAGMA integrity_check"),
            "cat001|1\ncat002|2\nok\n");
}

TEST_F(StoreSchema, ACopyHasTheColumnsTheIndexesAndTheRows) {
  ASSERT_TRUE(database_.createTable(departments()));
  run(database_, "INSERT INTO categorie VALUES ('cat005', 'Cinque', 5, 20.5), ('cat003', NULL, 3, NULL)");
  ASSERT_TRUE(database_.copyTable("CATEGORIE", "temp categorie"));
  EXPECT_EQ(view("temp categorie"),
            "temp categorie\n  ID 10/255\n  titolo 10/100\n  contatore 4/0 attributes 16\n  iva 6/0\n"
            "  primary unique pk_temp categorie: ID\n  ix_temp categorie_titolo_iva: titolo iva\n");
  EXPECT_EQ(rows(database_, "SELECT * FROM [temp categorie] ORDER BY contatore"),
            "cat003|null|3|null\ncat005|Cinque|5|20.5\n");
}

TEST_F(StoreSchema, CopyingThereAndBackKeepsTheNextAutomaticNumber) {
  ASSERT_TRUE(database_.createTable(departments()));
  const std::string before = view("categorie");
  const std::string declared = sql("categorie");
  run(database_, "INSERT INTO categorie (ID) VALUES ('a'), ('b'), ('c'); DELETE FROM categorie WHERE contatore > 1");
  ASSERT_TRUE(database_.copyTable("categorie", "tempcategorie"));
  run(database_, "INSERT INTO categorie (ID) VALUES ('d'); DROP TABLE categorie");
  ASSERT_TRUE(database_.copyTable("tempcategorie", "categorie"));
  run(database_, "DROP TABLE tempcategorie; INSERT INTO categorie (ID) VALUES ('e')");
  EXPECT_EQ(rows(database_, "SELECT ID, contatore FROM categorie"), "a|1\ne|4\n");
  EXPECT_EQ(view("categorie"), before);
  EXPECT_EQ(sql("categorie"), declared);
}

TEST_F(StoreSchema, ACopyOfAnEmptiedTableKeepsTheNextAutomaticNumber) {
  ASSERT_TRUE(database_.createTable(departments()));
  run(database_, "INSERT INTO categorie (ID) VALUES ('a'), ('b'); DELETE FROM categorie");
  ASSERT_TRUE(database_.copyTable("categorie", "copia"));
  run(database_, "INSERT INTO copia (ID) VALUES ('c')");
  EXPECT_EQ(rows(database_, "SELECT contatore FROM copia"), "3\n");
}

TEST_F(StoreSchema, CopyingOntoATableOrFromNoneFails) {
  run(database_, "CREATE TABLE a (n INTEGER); CREATE TABLE b (n INTEGER)");
  EXPECT_EQ(kindOf(database_.copyTable("a", "B")), ErrorKind::Exists);
  EXPECT_EQ(kindOf(database_.copyTable("c", "d")), ErrorKind::Missing);
}

}  // namespace
}  // namespace kv::test
