// Record sets: the order of the rows, the cursor, finding and seeking, and sources that are no table.

#include "platform/database/recordset.h"
#include "platform/store_fixture.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

class StoreRecordset : public StoreTest {
 protected:
  StoreRecordset() {
    run(database_,
        "CREATE TABLE categorie (ID TEXT(255) COLLATE NOCASE PRIMARY KEY, titolo TEXT(100) COLLATE NOCASE,"
        " titolo_l2 TEXT(100) COLLATE NOCASE, genitore TEXT(255) COLLATE NOCASE, livello SMALLINT,"
        " ordinamento INTEGER, iva FLOAT, sconto MONEY_INTEGER, nascosto BOOLEAN);"
        "INSERT INTO categorie VALUES"
        " ('cat003', 'Dischi', 'Records', '###', 1, 200, 20, 15000, 0),"
        " ('cat001', 'Libri', 'Books', '###', 1, 100, 4, NULL, 0),"
        " ('cat005', 'Gialli', NULL, 'cat001', 2, 105, 4, 0, 1),"
        " ('cat004', 'Città', '', 'cat001', 2, 100, 4, 0, 0),"
        " ('cat002', 'Opera', 'Opera', 'cat003', 2, 100, 20, 5, 0)");
  }
  Recordset open(std::string_view source) {
    auto records = database_.openRecordset(source);
    if (records) return std::move(*records);
    ADD_FAILURE() << source << ": " << records.error().what;
    return valueOf(database_.openRecordset("SELECT 1"));
  }
  static std::string id(const Recordset& records) { return asText(records.get("ID")); }
  static std::string all(Recordset& records, std::string_view column = "ID") {
    std::string text;
    for (records.moveFirst(); !records.eof(); records.moveNext()) text += asText(records.get(column)) + " ";
    return text;
  }
  static constexpr const char* walk = "SELECT * FROM categorie ORDER BY livello, ordinamento";
};

TEST_F(StoreRecordset, ATableNameGivesTheRowsInTheTablesOrder) {
  for (const char* source : {"categorie", "CATEGORIE", " categorie ", "[categorie]", "\"categorie\""}) {
    Recordset records = open(source);
    EXPECT_EQ(all(records), "cat003 cat001 cat005 cat004 cat002 ") << source;
  }
}

TEST_F(StoreRecordset, AQueryGivesTheRowsInItsOrder) {
  Recordset records = open(walk);
  EXPECT_EQ(records.size(), 5U);
  EXPECT_EQ(all(records), "cat001 cat003 cat004 cat002 cat005 ");
  records = open("SELECT ID FROM categorie WHERE livello = 2 ORDER BY titolo DESC;\n");
  EXPECT_EQ(all(records), "cat002 cat005 cat004 ");
  records = open("SELECT titolo, ID FROM categorie ORDER BY 1 LIMIT 2");
  EXPECT_EQ(all(records), "cat004 cat003 ");
}

TEST_F(StoreRecordset, RowsOfEqualOrderComeInTheTablesOrder) {
  run(database_, "CREATE INDEX ix_categorie_livello ON categorie (livello DESC, titolo)");
  Recordset records = open("SELECT * FROM categorie ORDER BY livello");
  EXPECT_EQ(all(records), "cat003 cat001 cat005 cat004 cat002 ");
  records = open("SELECT * FROM categorie WHERE livello > 0 LIMIT 3");
  EXPECT_EQ(all(records), "cat003 cat001 cat005 ");
  records = open("SELECT * FROM categorie AS c WHERE livello IN (SELECT livello FROM categorie LIMIT 9) -- tutte");
  EXPECT_EQ(all(records), "cat003 cat001 cat005 cat004 cat002 ");
}

TEST_F(StoreRecordset, AnAliasShowsAnotherColumnUnderABareName) {
  Recordset records = open("SELECT categorie.ID, categorie.titolo_l2 AS titolo FROM categorie ORDER BY titolo");
  EXPECT_EQ(all(records, "titolo"), "  Books Opera Records ");
  ASSERT_TRUE(valueOf(records.findFirst("titolo = 'opera'")));
  EXPECT_EQ(id(records), "cat002");
  EXPECT_FALSE(valueOf(records.findFirst("titolo = 'Libri'")));
  EXPECT_FALSE(records.findFirst("genitore = '###'"));
}

TEST_F(StoreRecordset, AColumnThatIsTwiceInTheListDoesNoHarm) {
  Recordset records = open("SELECT ID, livello, livello FROM categorie ORDER BY livello, ordinamento");
  EXPECT_EQ(asText(records.get("livello")), "1");
  ASSERT_TRUE(valueOf(records.findFirst("livello = 2")));
  EXPECT_EQ(id(records), "cat004");
}

TEST_F(StoreRecordset, FieldsAreOfTheirColumnsTypes) {
  Recordset records = open(walk);
  records.moveTo(1);
  EXPECT_EQ(records.get("iva"), Value(20.0));
  EXPECT_EQ(records.get("sconto"), Value(Money::ofTenThousandths(15000)));
  EXPECT_EQ(records.get("NASCOSTO"), Value(false));
  EXPECT_EQ(records.get("livello"), Value(std::int64_t{1}));
  EXPECT_EQ(records.get("manca"), Value(Null{}));
  records.moveTo(0);
  EXPECT_EQ(records.get("sconto"), Value(Null{}));
  EXPECT_EQ(records.columnIndex("Titolo_L2"), 2);
  EXPECT_EQ(records.columnIndex("manca"), -1);
  EXPECT_EQ(records.columns()[1].size, 100);
}

TEST_F(StoreRecordset, TheCursorMovesBeforeTheFirstRowAndAfterTheLast) {
  Recordset records = open(walk);
  EXPECT_FALSE(records.bof() || records.eof());
  EXPECT_EQ(records.position(), 0U);
  records.movePrevious();
  EXPECT_TRUE(records.bof());
  EXPECT_FALSE(records.eof());
  EXPECT_EQ(records.position(), 5U);
  EXPECT_EQ(records.get("ID"), Value(Null{}));
  records.movePrevious();
  records.moveNext();
  EXPECT_EQ(id(records), "cat001");
  records.moveLast();
  EXPECT_EQ(id(records), "cat005");
  records.moveNext();
  records.moveNext();
  EXPECT_TRUE(records.eof());
  EXPECT_FALSE(records.bof());
  EXPECT_EQ(records.get("ID"), Value(Null{}));
  records.movePrevious();
  EXPECT_EQ(id(records), "cat005");
  records.moveTo(99);
  EXPECT_TRUE(records.eof());
}

TEST_F(StoreRecordset, AnEmptySetIsAtBothEnds) {
  Recordset records = open("SELECT * FROM categorie WHERE ID = '###'");
  EXPECT_TRUE(records.bof() && records.eof());
  records.moveFirst();
  records.moveLast();
  records.moveNext();
  records.movePrevious();
  EXPECT_TRUE(records.bof() && records.eof());
  EXPECT_EQ(records.position(), 0U);
  EXPECT_FALSE(valueOf(records.findFirst("ID = 'cat001'")));
  EXPECT_FALSE(valueOf(records.seek("ID", std::string("cat001"))));
}

TEST_F(StoreRecordset, FindFollowsTheOrderOfTheSet) {
  Recordset records = open(walk);
  ASSERT_TRUE(valueOf(records.findFirst("genitore = 'CAT001'")));
  EXPECT_EQ(id(records), "cat004");
  ASSERT_TRUE(valueOf(records.findNext("genitore = 'CAT001'")));
  EXPECT_EQ(id(records), "cat005");
  EXPECT_FALSE(valueOf(records.findNext("genitore = 'CAT001'")));
  EXPECT_EQ(id(records), "cat005");
  ASSERT_TRUE(valueOf(records.findPrevious("genitore = 'CAT001'")));
  EXPECT_EQ(id(records), "cat004");
  EXPECT_FALSE(valueOf(records.findPrevious("genitore = 'CAT001'")));
  ASSERT_TRUE(valueOf(records.findLast("genitore = '###'")));
  EXPECT_EQ(id(records), "cat003");
}

TEST_F(StoreRecordset, FindWorksFromBothEnds) {
  Recordset records = open(walk);
  records.moveTo(5);
  EXPECT_FALSE(valueOf(records.findNext("livello = 1")));
  EXPECT_TRUE(records.eof());
  ASSERT_TRUE(valueOf(records.findPrevious("livello = 1")));
  EXPECT_EQ(id(records), "cat003");
  records.moveFirst();
  records.movePrevious();
  EXPECT_FALSE(valueOf(records.findPrevious("livello = 1")));
  ASSERT_TRUE(valueOf(records.findNext("livello = 1")));
  EXPECT_EQ(id(records), "cat001");
}

TEST_F(StoreRecordset, FindTakesAnySqlCondition) {
  Recordset records = open(walk);
  ASSERT_TRUE(valueOf(records.findFirst("titolo LIKE 'citt?' AND NOT nascosto")));
  EXPECT_EQ(id(records), "cat004");
  ASSERT_TRUE(valueOf(records.findFirst("titolo = 'CITTÀ' -- con una nota")));
  ASSERT_TRUE(valueOf(records.findFirst("categorie.sconto = 15000")));
  EXPECT_EQ(id(records), "cat003");
  ASSERT_TRUE(valueOf(records.findFirst("livello = 9 OR titolo_l2 IS NULL")));
  EXPECT_EQ(id(records), "cat005");
  EXPECT_EQ(kindOf(records.findFirst("livello = = 2")), ErrorKind::Other);
  EXPECT_EQ(id(records), "cat005");
}

TEST_F(StoreRecordset, FindSeesWhatWasWrittenSinceTheLastFind) {
  Recordset records = open(walk);
  const char* condition = "titolo = 'Fumetti'";
  EXPECT_FALSE(valueOf(records.findFirst(condition)));
  ASSERT_TRUE(database_.begin());
  run(database_, "UPDATE categorie SET titolo = 'Fumetti' WHERE ID = 'cat002'");
  EXPECT_TRUE(valueOf(records.findFirst(condition)));
  database_.rollback();
  EXPECT_FALSE(valueOf(records.findFirst(condition)));
  ASSERT_TRUE(database_.begin());
  ASSERT_TRUE(database_.begin());
  run(database_, "UPDATE categorie SET titolo = 'Fumetti' WHERE ID = 'cat002'");
  EXPECT_TRUE(valueOf(records.findFirst(condition)));
  database_.rollback();
  EXPECT_FALSE(valueOf(records.findFirst(condition)));
  ASSERT_TRUE(database_.commit());
  auto other = valueOf(Database::open(path_, OpenMode::Shared));
  run(other, "UPDATE categorie SET titolo = 'Fumetti' WHERE ID = 'cat001'");
  ASSERT_TRUE(valueOf(records.findFirst(condition)));
  EXPECT_EQ(id(records), "cat001");
}

TEST_F(StoreRecordset, FindLeavesOutRowsThatAreNotInTheSet) {
  Recordset records = open("SELECT * FROM categorie WHERE livello = 2 ORDER BY ordinamento");
  EXPECT_FALSE(valueOf(records.findFirst("ID = 'cat001'")));
  run(database_, "INSERT INTO categorie (ID, livello) VALUES ('cat009', 2)");
  EXPECT_FALSE(valueOf(records.findFirst("ID = 'cat009'")));
  ASSERT_TRUE(records.requery());
  EXPECT_TRUE(valueOf(records.findFirst("ID = 'cat009'")));
}

TEST_F(StoreRecordset, FindInALongSetAgreesWithAWalk) {
  run(database_,
      "CREATE TABLE lunga (n INTEGER, resto INTEGER);"
      "WITH RECURSIVE c(n) AS (VALUES (1) UNION ALL SELECT n + 1 FROM c WHERE n < 3000)"
      " INSERT INTO lunga SELECT n, n % 7 FROM c");
  Recordset records = open("SELECT * FROM lunga WHERE n <> 10 ORDER BY resto DESC, n");
  ASSERT_EQ(records.size(), 2999U);
  std::string found;
  for (bool more = valueOf(records.findFirst("n % 500 = 3")); more; more = valueOf(records.findNext("n % 500 = 3"))) {
    found += asText(records.get("n")) + " ";
  }
  std::string walked;
  for (records.moveFirst(); !records.eof(); records.moveNext()) {
    if (asInteger(records.get("n")) % 500 == 3) walked += asText(records.get("n")) + " ";
  }
  EXPECT_EQ(found, walked);
  EXPECT_EQ(found, "503 1503 2503 3 1003 2003 ");
}

TEST_F(StoreRecordset, SeekFindsAValueByTheColumnsOwnComparison) {
  Recordset records = open(walk);
  ASSERT_TRUE(valueOf(records.seek("titolo", std::string("CITTÀ"))));
  EXPECT_EQ(id(records), "cat004");
  ASSERT_TRUE(valueOf(records.seek("sconto", Money::ofTenThousandths(5))));
  EXPECT_EQ(id(records), "cat002");
  ASSERT_TRUE(valueOf(records.seek("titolo_l2", Null{})));
  EXPECT_EQ(id(records), "cat005");
  ASSERT_TRUE(valueOf(records.seek("titolo_l2", std::string())));
  EXPECT_EQ(id(records), "cat004");
  ASSERT_TRUE(valueOf(records.seek("sconto", std::string("1.5"))));
  EXPECT_EQ(id(records), "cat003");
  EXPECT_FALSE(valueOf(records.seek("livello", 7)));
  EXPECT_FALSE(valueOf(records.seek("livello", std::string("due"))));
  EXPECT_EQ(id(records), "cat003");
  EXPECT_EQ(kindOf(records.seek("manca", 1)), ErrorKind::Missing);
}

TEST_F(StoreRecordset, ATextWithAQuoteCanBeSought) {
  run(database_, "UPDATE categorie SET titolo = 'L''arte \"nuova\"' WHERE ID = 'cat002'");
  Recordset records = open(walk);
  ASSERT_TRUE(valueOf(records.seek("titolo", std::string("l'arte \"NUOVA\""))));
  EXPECT_EQ(id(records), "cat002");
}

TEST_F(StoreRecordset, AFieldIsReadAsItIsNow) {
  Recordset records = open(walk);
  EXPECT_EQ(asText(records.get("titolo")), "Libri");
  run(database_, "UPDATE categorie SET titolo = 'Volumi' WHERE ID = 'cat001'");
  EXPECT_EQ(asText(records.get("titolo")), "Volumi");
  run(database_, "DELETE FROM categorie WHERE ID = 'cat001'");
  EXPECT_EQ(records.get("titolo"), Value(Null{}));
  EXPECT_EQ(records.size(), 5U);
}

TEST_F(StoreRecordset, SumsAndJoinsCanBeReadAndSearchedButNotChanged) {
  Recordset records = open("SELECT COUNT(*) AS nArt FROM categorie");
  EXPECT_EQ(records.get("nart"), Value(std::int64_t{5}));
  records = open(
      "SELECT a.ID, b.titolo AS padre, a.sconto, a.ID FROM categorie AS a JOIN categorie AS b"
      " ON a.genitore = b.ID ORDER BY a.ID");
  EXPECT_EQ(all(records), "cat002 cat004 cat005 ");
  ASSERT_TRUE(valueOf(records.findLast("padre = 'LIBRI'")));
  EXPECT_EQ(id(records), "cat005");
  ASSERT_TRUE(valueOf(records.seek("sconto", Money::ofTenThousandths(5))));
  EXPECT_EQ(asText(records.get("padre")), "Dischi");
  EXPECT_EQ(kindOf(records.edit()), ErrorKind::ReadOnly);
  EXPECT_EQ(kindOf(records.addNew()), ErrorKind::ReadOnly);
  EXPECT_EQ(kindOf(records.remove()), ErrorKind::ReadOnly);
  for (const char* source :
       {"SELECT DISTINCT genitore FROM categorie", "SELECT livello FROM categorie GROUP BY livello",
        "SELECT ID FROM categorie UNION SELECT titolo FROM categorie",
        "WITH c AS (SELECT * FROM categorie) SELECT * FROM c", "SELECT a.ID FROM categorie a, categorie b",
        "SELECT ID, upper(titolo) FROM categorie"}) {
    Recordset other = open(source);
    EXPECT_FALSE(other.edit()) << source;
    EXPECT_GT(other.size(), 0U) << source;
  }
}

TEST_F(StoreRecordset, AReadingOfASumIsMadeAgainByRequery) {
  Recordset records = open("SELECT livello, count(*) AS n FROM categorie GROUP BY livello ORDER BY livello DESC");
  EXPECT_EQ(all(records, "n"), "3 2 ");
  run(database_, "DELETE FROM categorie WHERE ID = 'cat002'");
  EXPECT_EQ(all(records, "n"), "3 2 ");
  ASSERT_TRUE(records.requery());
  EXPECT_EQ(records.position(), 0U);
  EXPECT_EQ(all(records, "n"), "2 2 ");
}

TEST_F(StoreRecordset, ATableOfAnAttachedFileIsASource) {
  const std::string other = folder_ / "altro.mdb";
  auto created = valueOf(Database::create(other));
  run(created,
      "CREATE TABLE file (ID INTEGER PRIMARY KEY AUTOINCREMENT, nome TEXT(99)); INSERT INTO file VALUES (4, 'x')");
  created.close();
  ASSERT_TRUE(database_.attach(other, "ext"));
  Recordset records = open("SELECT * FROM ext.file");
  ASSERT_TRUE(records.addNew());
  EXPECT_EQ(asText(records.get("ID")), "5");
  ASSERT_TRUE(records.set("nome", std::string("y")));
  ASSERT_TRUE(records.update());
  EXPECT_EQ(rows(database_, "SELECT * FROM ext.file"), "4|x\n5|y\n");
}

TEST_F(StoreRecordset, ASourceThatIsNotThereIsAFailure) {
  EXPECT_EQ(kindOf(database_.openRecordset("manca")), ErrorKind::Missing);
  EXPECT_EQ(kindOf(database_.openRecordset("SELECT * FROM manca")), ErrorKind::Other);
  EXPECT_EQ(kindOf(database_.openRecordset("SELECT manca FROM categorie")), ErrorKind::Other);
}

}  // namespace
}  // namespace kv::test
