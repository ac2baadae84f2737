// Editing through record sets: what a column takes, the automatic key of a row just begun, rows added and removed.

#include "platform/database/recordset.h"
#include "platform/store_fixture.h"

namespace kv::test {
namespace {

class StoreEdit : public StoreTest {
 protected:
  StoreEdit() {
    TableInfo table;
    table.name = "articoli";
    table.columns = {automaticKey("ID"),
                     column("codice", ColumnType::Text, 5),
                     column("descrizione", ColumnType::Memo),
                     column("prezzo", ColumnType::Money),
                     column("peso", ColumnType::Single),
                     column("popup", ColumnType::Bool),
                     column("imgX0", ColumnType::Int),
                     column("affiancati", ColumnType::Byte),
                     column("ordinamento", ColumnType::Long),
                     column("quota", ColumnType::Double),
                     column("momento", ColumnType::DateTime),
                     column("dati", ColumnType::Binary, 4),
                     column("descrizione_l2", ColumnType::Memo)};
    table.columns[8].defaultValue = "100";
    EXPECT_TRUE(database_.createTable(table));
    run(database_, "INSERT INTO articoli (codice, prezzo) VALUES ('a', 10000), ('b', 20000), ('c', NULL)");
  }
  Recordset open(std::string_view source = "articoli") {
    auto records = database_.openRecordset(source);
    if (!records) ADD_FAILURE() << records.error().what;
    return std::move(*records);
  }
  std::string codes() { return rows(database_, "SELECT group_concat(ID || codice, ' ') FROM articoli NOT INDEXED"); }

  /// What a column makes of a value: the stored field, or the kind of the failure.
  std::string stored(std::string_view name, const Value& value) {
    Recordset records = open("SELECT * FROM articoli WHERE ID = 1");
    EXPECT_TRUE(records.edit());
    if (auto set = records.set(name, value); !set) {
      if (set.error().kind == ErrorKind::TextInNumber) return "text in number";
      return set.error().kind == ErrorKind::Malformed ? "malformed" : set.error().what;
    }
    EXPECT_TRUE(records.update());
    const std::string field(name);
    return rows(database_, "SELECT typeof(" + field + "), " + field + " FROM articoli WHERE ID = 1");
  }
};

TEST_F(StoreEdit, AnEditWritesTheFieldsThatWereSetAndNoOthers) {
  Recordset records = open();
  records.moveTo(1);
  ASSERT_TRUE(records.edit());
  ASSERT_TRUE(records.set("codice", std::string("z")));
  run(database_, "UPDATE articoli SET prezzo = 30000 WHERE ID = 2");
  ASSERT_TRUE(records.update());
  EXPECT_EQ(rows(database_, "SELECT ID, codice, prezzo FROM articoli"), "1|a|10000\n2|z|30000\n3|c|null\n");
  EXPECT_EQ(records.position(), 1U);
  EXPECT_EQ(asText(records.get("codice")), "z");
}

TEST_F(StoreEdit, AFieldReadsAsInTheEditUntilItIsGivenUp) {
  Recordset records = open();
  ASSERT_TRUE(records.edit());
  ASSERT_TRUE(records.set("codice", std::string("z")));
  EXPECT_EQ(asText(records.get("codice")), "z");
  EXPECT_EQ(asText(records.get("prezzo")), "1");
  records.cancelUpdate();
  EXPECT_EQ(asText(records.get("codice")), "a");
  EXPECT_FALSE(records.update());
}

TEST_F(StoreEdit, LeavingTheRowGivesTheEditUp) {
  Recordset records = open();
  ASSERT_TRUE(records.edit());
  ASSERT_TRUE(records.set("codice", std::string("z")));
  records.moveNext();
  EXPECT_FALSE(records.update());
  EXPECT_EQ(codes(), "1a 2b 3c\n");
}

TEST_F(StoreEdit, AnAliasWritesToItsColumn) {
  Recordset records = open("SELECT articoli.ID, articoli.descrizione_l2 AS descrizione FROM articoli WHERE ID = 2");
  ASSERT_TRUE(records.edit());
  ASSERT_TRUE(records.set("descrizione", std::string("two")));
  ASSERT_TRUE(records.update());
  EXPECT_EQ(rows(database_, "SELECT descrizione, descrizione_l2 FROM articoli WHERE ID = 2"), "null|two\n");
}

TEST_F(StoreEdit, TheAutomaticKeyCanBeReadAsSoonAsTheRowIsBegun) {
  Recordset records = open();
  ASSERT_TRUE(records.addNew());
  EXPECT_EQ(records.get("ID"), Value(std::int64_t{4}));
  EXPECT_EQ(records.size(), 3U);
  ASSERT_TRUE(records.set("codice", std::string("d")));
  ASSERT_TRUE(records.update());
  EXPECT_EQ(records.size(), 4U);
  EXPECT_EQ(records.position(), 3U);
  EXPECT_EQ(asText(records.get("ID")), "4");
  EXPECT_EQ(codes(), "1a 2b 3c 4d\n");
}

TEST_F(StoreEdit, AnAutomaticKeyIsNeverGivenTwice) {
  Recordset records = open();
  ASSERT_TRUE(records.addNew());
  records.cancelUpdate();
  Recordset other = open();
  ASSERT_TRUE(records.addNew());
  ASSERT_TRUE(other.addNew());
  EXPECT_EQ(asText(records.get("ID")), "5");
  EXPECT_EQ(asText(other.get("ID")), "6");
  ASSERT_TRUE(other.update());
  ASSERT_TRUE(records.update());
  run(database_, "DELETE FROM articoli WHERE ID > 2; INSERT INTO articoli (codice) VALUES ('e')");
  ASSERT_TRUE(records.addNew());
  EXPECT_EQ(asText(records.get("ID")), "8");
  EXPECT_EQ(rows(database_, "SELECT max(ID) FROM articoli"), "7\n");
}

TEST_F(StoreEdit, TheFirstRowOfATableGetsTheNumberOne) {
  run(database_, "CREATE TABLE vuota (ID INTEGER PRIMARY KEY AUTOINCREMENT)");
  Recordset records = open("vuota");
  ASSERT_TRUE(records.addNew());
  EXPECT_EQ(asText(records.get("ID")), "1");
  ASSERT_TRUE(records.update());
  ASSERT_TRUE(records.addNew());
  EXPECT_EQ(asText(records.get("ID")), "2");
}

TEST_F(StoreEdit, AKeyReservedOutlivesTheHandle) {
  {
    Recordset records = open();
    ASSERT_TRUE(records.addNew());
    EXPECT_EQ(asText(records.get("ID")), "4");
  }
  database_.close();
  database_ = valueOf(Database::open(path_, OpenMode::Exclusive));
  Recordset records = open();
  ASSERT_TRUE(records.addNew());
  EXPECT_EQ(asText(records.get("ID")), "5");
}

TEST_F(StoreEdit, ANewRowStartsWithTheDefaultsAndOtherwiseNull) {
  Recordset records = open();
  ASSERT_TRUE(records.addNew());
  EXPECT_EQ(records.get("ordinamento"), Value(std::int64_t{100}));
  EXPECT_EQ(records.get("codice"), Value(Null{}));
  ASSERT_TRUE(records.update());
  EXPECT_EQ(rows(database_, "SELECT ordinamento, codice FROM articoli WHERE ID = 4"), "100|null\n");
}

TEST_F(StoreEdit, AnAddedRowIsTheLastOneWhateverTheOrder) {
  Recordset records = open("SELECT * FROM articoli WHERE codice < 'x' ORDER BY codice");
  ASSERT_TRUE(valueOf(records.findFirst("codice = 'b'")));
  ASSERT_TRUE(records.addNew());
  ASSERT_TRUE(records.set("codice", std::string("Aa")));
  ASSERT_TRUE(records.update());
  EXPECT_EQ(records.position(), 3U);
  records.moveFirst();
  ASSERT_TRUE(valueOf(records.findNext("codice = 'AA'")));
  EXPECT_EQ(records.position(), 3U);
  ASSERT_TRUE(records.requery());
  ASSERT_TRUE(valueOf(records.findFirst("ID = 4")));
  EXPECT_EQ(records.position(), 1U);
}

TEST_F(StoreEdit, ARowEditedOutOfTheQueryStaysInTheSet) {
  Recordset records = open("SELECT * FROM articoli WHERE codice = 'b'");
  ASSERT_TRUE(records.edit());
  ASSERT_TRUE(records.set("codice", std::string("q")));
  ASSERT_TRUE(records.update());
  EXPECT_TRUE(valueOf(records.findFirst("codice = 'q'")));
  ASSERT_TRUE(records.requery());
  EXPECT_EQ(records.size(), 0U);
}

TEST_F(StoreEdit, AfterARemovalTheCursorIsOnTheNextRow) {
  Recordset records = open();
  ASSERT_TRUE(valueOf(records.findFirst("codice = 'b'")));
  ASSERT_TRUE(records.remove());
  EXPECT_EQ(asText(records.get("codice")), "c");
  EXPECT_EQ(records.size(), 2U);
  ASSERT_TRUE(valueOf(records.findFirst("codice = 'c'")));
  EXPECT_EQ(records.position(), 1U);
  ASSERT_TRUE(records.remove());
  EXPECT_TRUE(records.eof());
  EXPECT_EQ(kindOf(records.remove()), ErrorKind::Missing);
  EXPECT_EQ(codes(), "1a\n");
}

TEST_F(StoreEdit, AnEditWithoutARowOrWithoutABeginFails) {
  Recordset records = open();
  EXPECT_EQ(kindOf(records.set("codice", std::string("z"))), ErrorKind::Other);
  EXPECT_EQ(kindOf(records.update()), ErrorKind::Other);
  records.moveTo(3);
  EXPECT_EQ(kindOf(records.edit()), ErrorKind::Missing);
}

TEST_F(StoreEdit, AnEditOfARowThatIsGoneFails) {
  Recordset records = open();
  ASSERT_TRUE(records.edit());
  ASSERT_TRUE(records.set("codice", std::string("z")));
  run(database_, "DELETE FROM articoli WHERE ID = 1");
  EXPECT_EQ(kindOf(records.update()), ErrorKind::Missing);
}

TEST_F(StoreEdit, AColumnThatIsNotThereIsMissing) {
  Recordset records = open();
  ASSERT_TRUE(records.edit());
  EXPECT_EQ(kindOf(records.set("manca", 1)), ErrorKind::Missing);
}

TEST_F(StoreEdit, TheKeyOfARowCannotBeChangedButThatOfANewOneCanBeGiven) {
  Recordset records = open();
  ASSERT_TRUE(records.edit());
  EXPECT_FALSE(records.set("ID", 9));
  ASSERT_TRUE(records.addNew());
  ASSERT_TRUE(records.set("ID", 50));
  ASSERT_TRUE(records.update());
  EXPECT_EQ(asText(records.get("ID")), "50");
  ASSERT_TRUE(records.addNew());
  EXPECT_EQ(asText(records.get("ID")), "51");
}

TEST_F(StoreEdit, ARefusedRowLeavesTheEditOpen) {
  run(database_, "CREATE UNIQUE INDEX ix_articoli_codice ON articoli (codice)");
  Recordset records = open();
  ASSERT_TRUE(records.edit());
  ASSERT_TRUE(records.set("codice", std::string("B")));
  auto refused = records.update();
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().number, SQLITE_CONSTRAINT_UNIQUE);
  ASSERT_TRUE(records.set("codice", std::string("y")));
  EXPECT_TRUE(records.update());
  EXPECT_EQ(codes(), "1y 2b 3c\n");
}

TEST_F(StoreEdit, ATextThatIsNoNumberIsRefusedByEveryNumericColumn) {
  for (const char* name : {"prezzo", "peso", "popup", "imgX0", "affiancati", "ordinamento", "quota"}) {
    EXPECT_EQ(stored(name, std::string("dodici")), "text in number") << name;
    EXPECT_EQ(stored(name, std::string()), "text in number") << name;
    EXPECT_EQ(stored(name, std::string("1 2")), "text in number") << name;
  }
}

TEST_F(StoreEdit, ATextThatIsANumberIsStoredAsOne) {
  EXPECT_EQ(stored("prezzo", std::string("12,50")), "integer|125000\n");
  EXPECT_EQ(stored("prezzo", std::string("922337203685477.5807")), "integer|9223372036854775807\n");
  EXPECT_EQ(stored("peso", std::string(" .5 ")), "real|0.5\n");
  EXPECT_EQ(stored("ordinamento", std::string("105")), "integer|105\n");
  EXPECT_EQ(stored("popup", std::string("-1")), "integer|1\n");
}

TEST_F(StoreEdit, NumbersAreBroughtToTheKindOfTheirColumn) {
  EXPECT_EQ(stored("prezzo", 2.5), "integer|25000\n");
  EXPECT_EQ(stored("prezzo", 3), "integer|30000\n");
  EXPECT_EQ(stored("prezzo", Money::ofTenThousandths(1)), "integer|1\n");
  EXPECT_EQ(stored("ordinamento", 2.5), "integer|2\n");
  EXPECT_EQ(stored("ordinamento", 3.5), "integer|4\n");
  EXPECT_EQ(stored("quota", 0.1), "real|0.1\n");
  EXPECT_EQ(stored("popup", 7), "integer|1\n");
  EXPECT_EQ(stored("popup", false), "integer|0\n");
  EXPECT_EQ(stored("codice", 12), "text|12\n");
  EXPECT_EQ(stored("prezzo", Null{}), "null|null\n");
}

TEST_F(StoreEdit, ASingleColumnRoundsToSinglePrecision) {
  stored("peso", 0.1);
  Recordset records = open("SELECT peso FROM articoli WHERE ID = 1");
  EXPECT_EQ(records.get("peso"), Value(static_cast<double>(0.1F)));
  EXPECT_EQ(asText(records.get("peso")), ".1");
}

TEST_F(StoreEdit, NumbersOutOfAColumnsRangeAreRefused) {
  EXPECT_EQ(stored("imgX0", 32768), "malformed");
  EXPECT_EQ(stored("imgX0", -32768), "integer|-32768\n");
  EXPECT_EQ(stored("affiancati", -1), "malformed");
  EXPECT_EQ(stored("affiancati", 255), "integer|255\n");
  EXPECT_EQ(stored("ordinamento", std::int64_t{2147483648}), "malformed");
  EXPECT_EQ(stored("peso", 1e39), "malformed");
  EXPECT_EQ(stored("prezzo", 1e15), "malformed");
}

TEST_F(StoreEdit, ATextIsMeasuredInCharacters) {
  EXPECT_EQ(stored("codice", std::string("èèèèè")), "text|èèèèè\n");
  EXPECT_EQ(stored("codice", std::string("èèèèèè")), "malformed");
  EXPECT_EQ(stored("descrizione", std::string(3, 'x')), "text|xxx\n");
  EXPECT_EQ(stored("codice", std::string("0012")), "text|0012\n");
  EXPECT_EQ(stored("codice", std::string()), "text|\n");
}

TEST_F(StoreEdit, DatesAndBytesKeepTheirFormat) {
  EXPECT_EQ(stored("momento", std::string("2004-05-06 07:08:09")), "text|2004-05-06 07:08:09\n");
  EXPECT_EQ(stored("momento", std::string("2004-05-06")), "text|2004-05-06\n");
  EXPECT_EQ(stored("momento", std::string("6/5/2004")), "malformed");
  EXPECT_EQ(stored("momento", std::string()), "malformed");
  EXPECT_EQ(stored("dati", Bytes{65, 66}), "blob|AB\n");
  EXPECT_EQ(stored("dati", Bytes{1, 2, 3, 4, 5}), "malformed");
}

TEST_F(StoreEdit, AReadOnlyFileRefusesEditsAtOnce) {
  database_.close();
  database_ = valueOf(Database::open(path_, OpenMode::ReadOnly));
  Recordset records = open();
  EXPECT_EQ(kindOf(records.edit()), ErrorKind::ReadOnly);
  EXPECT_EQ(kindOf(records.addNew()), ErrorKind::ReadOnly);
  EXPECT_EQ(kindOf(records.remove()), ErrorKind::ReadOnly);
}

}  // namespace
}  // namespace kv::test
