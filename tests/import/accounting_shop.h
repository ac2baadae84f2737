#pragma once
// The model shop, emptied and opened, and a source of the accounting package that a test fills.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "import/accounting/accounting_import.h"
#include "platform/files/files.h"
#include "platform/files/settings.h"
#include "store/catalogue/undo_history.h"
#include "store/shop/session.h"
#include "support/fixed_clock.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv::test {

/// An import as one step of the history.
inline AccountingEnd recordedImport(UndoHistory& history, const std::function<AccountingEnd()>& import) {
  AccountingEnd end = AccountingEnd::NotDone;
  EXPECT_TRUE(history.record("Importa", [&]() -> Result<> {
    end = import();
    return {};
  }));
  return end;
}

class AccountingShop : public ::testing::Test {
 protected:
  AccountingShop() : shop(root / "negozio"), source(root / "orsa.db"), env{user, settings, clock, random, shop, {}} {
    session.ShopFolder = shop;
    EXPECT_TRUE(createFolders(shop));
    EXPECT_TRUE(copyFile(std::string(KORVANE_APP_DATA) + "/catalog.mdb", shop + "/catalog.mdb"));
    auto opened = Database::open(shop + "/catalog.mdb", OpenMode::Scratch);
    EXPECT_TRUE(opened);
    if (opened) session.catalogue = std::move(*opened);
    sql("DELETE FROM articoli; DELETE FROM categorie");
    auto made = Database::create(source);
    EXPECT_TRUE(made && made->execute("CREATE TABLE Categoria (Id INTEGER, Nome TEXT);"
                                      "CREATE TABLE Articoli (Id INTEGER, IdCategoria INTEGER, Codice TEXT,"
                                      " Descrizione TEXT, iva DOUBLE, Vendita1 DOUBLE, Vendita2 DOUBLE, Vista INTEGER);"
                                      "INSERT INTO Categoria VALUES (7, 'Vasi')"));
    request.variant = accountingVariants()[0];
    request.line = "0100100";
    request.path = source;
    request.model = "modello1";
  }

  void sql(const std::string& statements) {
    const auto done = session.catalogue.execute(statements);
    ASSERT_TRUE(done) << done.error().what;
  }
  /// Writes into the source.
  void fill(const std::string& statements) { fill(source, statements); }
  static void fill(const std::string& path, const std::string& statements) {
    auto opened = Database::open(path, OpenMode::Shared);
    ASSERT_TRUE(opened);
    const auto done = opened->execute(statements);
    ASSERT_TRUE(done) << done.error().what;
  }
  void article(const std::string& values) { fill("INSERT INTO Articoli VALUES (" + values + ")"); }

  /// The preview of the request as the command line prints it, or why there is none.
  std::string previewText() {
    const auto plan = previewAccounting(session, settings, request);
    if (!plan) return plan.error().what;
    return planText(*plan, readAccountingOptions(request.line, request.variant.generation));
  }
  AccountingEnd import() { return importAccountingRows(session, env, request); }
  /// Imports with a line of options, and expects it to succeed.
  void importWith(const std::string& line) {
    request.line = line;
    ASSERT_EQ(import(), AccountingEnd::Done) << ::testing::PrintToString(user.shown);
  }
  /// The fields of the rows of a query, parted by "|", rows by "\n"; null as "(null)".
  std::string rows(const std::string& query) {
    auto statement = session.catalogue.prepare(query);
    if (!statement) return "failed: " + statement.error().what;
    std::string text;
    for (;;) {
      const auto row = statement->step();
      if (!row) return "failed: " + row.error().what;
      if (!*row) return text;
      for (int i = 0; i < statement->columnCount(); ++i) {
        text += (i > 0 ? "|" : "") + (statement->isNull(i) ? std::string("(null)") : asText(statement->value(i)));
      }
      text += "\n";
    }
  }
  std::string allRows() { return rows("SELECT * FROM categorie") + rows("SELECT * FROM articoli"); }

  TempFolder root;
  std::string shop, source;
  ScriptedUser user;
  MemorySettings settings;
  FixedClock clock;
  FixedRandom random;
  Session session;
  Environment env;
  AccountingRequest request;
};

/// The same with a history, in which each import is one step.
class RecordedAccounting : public AccountingShop {
 protected:
  RecordedAccounting() : sets(session), history(sets) {
    session.languageCount = 1;
    EXPECT_TRUE(sets.bind());
    history.begin();
  }
  ~RecordedAccounting() override { history.end(); }
  AccountingEnd recorded() {
    return recordedImport(history, [this] { return import(); });
  }
  CatalogueSets sets;
  UndoHistory history;
};

}  // namespace kv::test
