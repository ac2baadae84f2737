#pragma once
// The model shop with a few departments, articles and variants, and sheets that a test writes for it.

#include <string>

#include "accounting_shop.h"
#include "import/tables/shown_plan.h"
#include "import/tables/table_export.h"
#include "import/tables/table_import.h"
#include "store/catalogue/undo_history.h"
#include "support/value_of.h"

namespace kv::test {

class TableShop : public AccountingShop {
 protected:
  TableShop() : sets(session), history(sets) {
    session.languageCount = 2;
    sql("INSERT INTO categorie (ID, titolo, genitore, livello, ordinamento, hafigli) VALUES"
        " ('cat001', 'Ceramiche', '###', 1, 1, 1), ('cat002', 'Tazze', 'cat001', 2, 1, 0),"
        " ('cat003', 'Vetri', '###', 1, 2, 0);"
        "DELETE FROM dettagliop; DELETE FROM opzioni WHERE ID > 1;"
        "INSERT INTO opzioni (ID, nome) VALUES (101, 'Taglia'), (102, 'Colore');"
        "INSERT INTO articoli (ID, catID, codice, titolo, titolo_l2, prezzo, prezzo1, peso, opzione1, ordinamento)"
        " VALUES (1, 'cat002', 'T-1', 'Tazza', 'Cup', 125000, 110000, 0.2, 101, 1),"
        " (2, 'cat002', 'T-2', 'Tazza grande', '', 15000, NULL, 0.25, NULL, 2),"
        " (3, 'cat003', 'V-1', 'Bicchiere', '', 0, NULL, NULL, NULL, 1)");
    table.shopFolder = shop;
    table.sheetFolder = root / "";
    table.model = "modello1";
    EXPECT_TRUE(createFolders(joinPath(shop, "work")));
  }

  /// Reads a sheet with this text and plans its import; an empty plan where it fails.
  TablePlan plan(const std::string& text, const std::string& name = "articoli") {
    EXPECT_TRUE(writeBytes(root / "foglio.csv", text));
    return planFile(root / "foglio.csv", name);
  }
  TablePlan planFile(const std::string& path, const std::string& name) {
    auto read = openTableSheet(session, settings, path, name);
    EXPECT_TRUE(read) << (read ? "" : read.error().what);
    if (!read) return {};
    opened = std::move(*read);
    table.mapping = opened.mapping;
    auto planned = planTable(session.catalogue, opened.table, opened.sheet, table);
    EXPECT_TRUE(planned) << (planned ? "" : planned.error().what);
    return planned ? std::move(*planned) : TablePlan();
  }
  /// Plans and writes a sheet.
  TableEnd importSheet(const std::string& text, const std::string& name = "articoli") {
    TablePlan planned = plan(text, name);
    return importPlannedTable(session, env, planned, opened.sheet, table);
  }
  /// Each row of a plan: its line, its fate, and why or what changes.
  std::string shownPlan(const TablePlan& planned) {
    std::string text;
    for (const PlannedRow& row : planned.rows) {
      text += std::to_string(opened.sheet.cells.line(row.row)) + " " + fateWord(row.fate);
      if (!row.reason.empty()) text += ": " + row.reason;
      const auto changes = checked(shownChanges(session.catalogue, planned, opened.sheet, row));
      EXPECT_TRUE(changes);
      for (const ShownChange& change : *changes) {
        text += " [" + change.column + " " + change.before + ">" + change.after + "]";
      }
      text += "\n";
    }
    return text;
  }
  std::string allTables() {
    std::string text = allRows();
    for (const char* name : {"opzioni", "dettagliop", "paesi", "zona1", "zona8"}) {
      text += rows("SELECT * FROM " + std::string(name));
    }
    return text;
  }

  CatalogueSets sets;
  UndoHistory history;
  TableRequest table;
  OpenSheet opened;
};

}  // namespace kv::test
