// Values of kinds that no column of the store declares, as files brought from elsewhere may.

#include "sqlexport/sql_rows.h"

#include "sqlexport/export_fixture.h"
#include "sqlexport/sql_types.h"

namespace kv::test {
namespace {

class SqlRowsTest : public ExportTest {
 protected:
  /// The statements for the rows of table "t" whose only column is of a type.
  std::string rowsAs(int code) {
    TableInfo table;
    table.name = "t";
    table.columns = {column("c", static_cast<ColumnType>(code))};
    auto out = OutputFile::create(folder / "rows.sql").value();
    ExportWarnings warnings;
    EXPECT_TRUE(writeRows(out, database, table, style, warnings));
    EXPECT_TRUE(out.close());
    return plainLines(readBytes(folder / "rows.sql").value_or("(missing)"));
  }
};

TEST_F(SqlRowsTest, ATimeOfTheDayIsTheEndOfAMoment) {
  sql("CREATE TABLE t (c TEXT(20)); INSERT INTO t VALUES ('1899-12-30 14:05:09'), ('23:59:58'), ('9:05'), ('o''clock'),"
      " (NULL)");
  EXPECT_EQ(rowsAs(timeCode),
            "INSERT INTO t VALUES ('14:05:09');\nINSERT INTO t VALUES ('23:59:58');\nINSERT INTO t VALUES ('9:05');\n"
            "INSERT INTO t VALUES ('o\\'clock');\nINSERT INTO t VALUES (NULL);\n");
}

}  // namespace
}  // namespace kv::test
