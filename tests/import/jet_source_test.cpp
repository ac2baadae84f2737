// Jet databases as a source: what is read from both versions of the file, that another reader sees the same, and what
// damaged files become.
#include "accounting_shop.h"
#include "platform/database/jet/jet_file.h"
#include "platform/database/jet/jet_stream.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "support/command_output.h"
#include "support/jet_samples.h"
#include "support/test_seed.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using JetRows = std::vector<std::vector<Value>>;

class JetFiles : public ::testing::TestWithParam<JetVersion> {
 protected:
  std::string written(const std::vector<JetTable>& tables) const {
    EXPECT_TRUE(writeBytes(root / "orsa.mdb", jetFile(GetParam(), tables)));
    return root / "orsa.mdb";
  }
  static JetRows rowsIn(const std::string& path, const JetTable& table) {
    std::vector<std::string> columns;
    for (const JetColumn& column : table.columns) columns.push_back(column.name);
    const auto file = JetFile::open(path);
    if (!file) return {{std::string("not opened: " + file.error().what)}};
    auto rows = file->rows(table.name, columns);
    return rows ? std::move(*rows) : JetRows{{std::string("not read: " + rows.error().what)}};
  }
  /// What a reader makes of a table: flags are numbers, deleted rows are gone.
  static JetRows wanted(const JetTable& table) {
    JetRows rows;
    for (std::size_t i = 0; i < table.rows.size(); ++i) {
      if (table.deleted.contains(i)) continue;
      rows.push_back(table.rows[i]);
      for (Value& field : rows.back()) {
        if (std::holds_alternative<bool>(field)) field = std::int64_t{asFlag(field) ? 1 : 0};
      }
    }
    return rows;
  }

  TempFolder root;
};

INSTANTIATE_TEST_SUITE_P(OfBothVersions, JetFiles, ::testing::Values(JetVersion::Jet3, JetVersion::Jet4),
                         [](const auto& version) { return version.param == JetVersion::Jet3 ? "Jet3" : "Jet4"; });

TEST_P(JetFiles, GiveEveryFieldAndNoDeletedRow) {
  const std::string path = written({categoriesTable(), articlesTable()});
  EXPECT_EQ(rowsIn(path, categoriesTable()), wanted(categoriesTable()));
  const JetRows rows = rowsIn(path, articlesTable());
  ASSERT_EQ(rows.size(), 3U) << asText(rows[0][0]);
  EXPECT_EQ(rows, wanted(articlesTable()));
}

TEST_P(JetFiles, NameTheirTablesAndColumns) {
  const auto file = JetFile::open(written({categoriesTable(), articlesTable()}));
  ASSERT_TRUE(file) << file.error().what;
  ASSERT_EQ(file->tables().size(), 2U) << "those of the database itself are left out";
  EXPECT_EQ(file->tables()[0].name, "Categoria");
  EXPECT_EQ(file->tables()[0].columns, (std::vector<std::string>{"Id", "Nome"}));
  EXPECT_EQ(valueOf(file->rows("CATEGORIA", {"NOME"})).at(2), std::vector<Value>{std::string("Città €")});
  EXPECT_EQ(file->rows("Clienti", {"Id"}).error().kind, ErrorKind::Missing);
  EXPECT_EQ(file->rows("Categoria", {"Colore"}).error().what, "Colore");
}

TEST_P(JetFiles, OfManyPagesAndColumnsAreReadWhole) {
  JetTable wide{"Larga", {}, {{}}, {}};
  for (int i = 0; i < 200; ++i) {
    wide.columns.push_back({"una colonna dal nome lungo numero " + std::to_string(i), JetType::Int});
    wide.rows[0].emplace_back(std::int64_t{i - 100});
  }
  const JetTable many = chanceArticles(seed(), 3000);
  const std::string path = written({many, wide});
  EXPECT_EQ(rowsIn(path, wide), wanted(wide));
  EXPECT_TRUE(rowsIn(path, many) == wanted(many)) << "seed " << seed();
}

/// A row as mdb-export prints it: texts in quotes, amounts with four decimals.
std::string exportedRow(const std::vector<Value>& row) {
  std::string line;
  for (const Value& field : row) {
    if (&field != &row.front()) line += ",";
    if (const auto* text = std::get_if<std::string>(&field)) {
      line += "\"" + replaceAll(*text, "\"", "\"\"") + "\"";
    } else if (const auto* amount = std::get_if<Money>(&field)) {
      line += formatNumber(*amount, "0.0000");
    } else if (const auto* number = std::get_if<double>(&field)) {
      char digits[64];
      std::snprintf(digits, sizeof digits, "%.16g", *number);
      line += digits;
    } else {
      line += asText(field);
    }
  }
  return line + "\n";
}

TEST_P(JetFiles, AgreeWithMdbExportCellByCell) {
  JetTable table = chanceArticles(seed() + 1, static_cast<std::size_t>(operationsOf(2000)));
  const std::string path = written({table});
  const std::string exported = outputOf("mdb-export '" + path + "' Articoli");
  std::string ours = "Id,IdCategoria,Codice,Descrizione,iva,Vendita1,Vendita2,Vista,Attivo,Peso,Nota\n";
  for (const auto& row : rowsIn(path, table)) ours += exportedRow(row);
  EXPECT_TRUE(ours == exported) << "seed " << seed();
}

TEST_P(JetFiles, TruncatedAnywhereAreAFailureAndNeverFewerRows) {
  const std::string whole = jetFile(GetParam(), {categoriesTable(), articlesTable()}), path = root / "mezzo.mdb";
  const std::size_t count = wanted(articlesTable()).size();
  for (std::size_t tenth = 0; tenth < 10; ++tenth) {
    ASSERT_TRUE(writeBytes(path, whole.substr(0, whole.size() * tenth / 10)));
    const auto file = JetFile::open(path);
    if (!file) continue;
    const auto rows = file->rows("Articoli", {"Id", "Descrizione"});
    EXPECT_TRUE(!rows || rows->size() == count) << tenth;
  }
}

TEST_P(JetFiles, WithDamagedBytesAreAFailureOrRowsButNoCrash) {
  const std::string whole = jetFile(GetParam(), {categoriesTable(), articlesTable()}), path = root / "guasto.mdb";
  std::mt19937 chance{seed()};
  for (int i = 0; i < operationsOf(40); ++i) {
    std::string bytes = whole;
    for (int change = 0; change < 8; ++change) bytes[20 + chance() % (bytes.size() - 20)] = static_cast<char>(chance());
    ASSERT_TRUE(writeBytes(path, bytes));
    const auto file = JetFile::open(path);
    if (!file) continue;
    const auto rows = file->rows("Articoli", {"Id", "Descrizione", "Vendita1"});
    EXPECT_TRUE(rows || rows.error().kind == ErrorKind::Malformed || rows.error().kind == ErrorKind::Missing) << i;
  }
}

TEST(JetFileTest, OtherFilesAreNone) {
  TempFolder root;
  ASSERT_TRUE(writeBytes(root / "a.mdb", std::string("\0\1\0\0Standard ACE DB\0", 20) + std::string(5000, 'x')));
  EXPECT_EQ(JetFile::open(root / "a.mdb").error().kind, ErrorKind::Malformed);
  EXPECT_EQ(JetFile::open(root / "b.mdb").error().kind, ErrorKind::Missing);
}

TEST(JetStreamTest, WhatBreaksOffInsideAFieldIsMalformed) {
  std::string stream;
  for (const Value& field : {Value(std::int64_t{-7}), Value(2.5), Value(Money::ofTenThousandths(-1)),
                             Value(std::string("tè\0x", 5)), Value(Null{}), Value(std::string())}) {
    putJetField(stream, field);
  }
  const auto rows = jetRows(stream, 3);
  ASSERT_TRUE(rows);
  EXPECT_EQ(rows->size(), 2U);
  EXPECT_EQ(rows->at(1), (std::vector<Value>{std::string("tè\0x", 5), Null{}, std::string()}));
  for (std::size_t size = 1; size < stream.size(); ++size) {
    const auto part = jetRows(stream.substr(0, size), 6);
    EXPECT_EQ(part ? ErrorKind::Other : part.error().kind, ErrorKind::Malformed) << size;
  }
  EXPECT_EQ(jetRows("x", 1).error().kind, ErrorKind::Malformed);
}

class JetImport : public AccountingShop {};

TEST_F(JetImport, AJetDatabaseIsImportedLikeAnyOther) {
  JetTable articles = articlesTable();
  request.path = root / "orsa.mdb";
  for (const JetVersion version : {JetVersion::Jet3, JetVersion::Jet4}) {
    sql("DELETE FROM articoli; DELETE FROM categorie");
    ASSERT_TRUE(writeBytes(request.path, jetFile(version, {categoriesTable(), articles})));
    EXPECT_TRUE(isAccountingSource(request.path));
    importWith("0121100");
    EXPECT_EQ(rows("SELECT ID, titolo FROM categorie ORDER BY ID"), "dgf7|Caffè e tazze\ndgf8|\ndgf9|Città €\n");
    EXPECT_EQ(rows("SELECT catID, codice, prezzo, offertaprezzo, length(titolo) FROM articoli ORDER BY ID"),
              "dgf7|OG00042|1506.17|.3|9\ndgf8|D'A-€|0|0|199\ndgf9|L1|-.01|-.52|199\n");
  }
}

TEST_F(JetImport, AListOfCompaniesCanBeAJetDatabaseToo) {
  ASSERT_TRUE(writeBytes(root / "orsa.mdb", jetFile(JetVersion::Jet3, {categoriesTable(), articlesTable()})));
  const JetTable names{"Nomi",
                       {{"ID", JetType::Long}, {"nome", JetType::Text}, {"path", JetType::Text}},
                       {{std::int64_t{3}, std::string("Unica"), std::string("C:\\orsa.mdb")}},
                       {}};
  request.path = root / "aziende.mdb";
  ASSERT_TRUE(writeBytes(request.path, jetFile(JetVersion::Jet4, {names})));
  request.variant = accountingVariants()[2];
  request.company = [](const std::vector<AccountingCompany>& list) { return std::optional(list.at(0).ID); };
  EXPECT_EQ(import(), AccountingEnd::Done) << ::testing::PrintToString(user.texts());
  EXPECT_EQ(rows("SELECT count(*) FROM articoli"), "3\n");
}

TEST_F(JetImport, ADamagedDatabaseChangesNothingAndIsTold) {
  std::string bytes = jetFile(JetVersion::Jet4, {categoriesTable(), articlesTable()});
  request.path = root / "orsa.mdb";
  ASSERT_TRUE(writeBytes(request.path, bytes.substr(0, std::size_t{3} * 4096)));
  EXPECT_EQ(import(), AccountingEnd::NotDone);
  EXPECT_EQ(user.texts().back(), "Il database \"" + request.path + "\" non può essere aperto");
  EXPECT_EQ(allRows(), "");
}

}  // namespace
}  // namespace kv::test
