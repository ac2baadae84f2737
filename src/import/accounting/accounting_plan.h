#pragma once
// What an import would do, row by row, computed from the source and the catalogue before anything is written. The
// preview shows it and the import writes it, so that both say the same.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "import/accounting/accounting_options.h"
#include "import/accounting/accounting_source.h"
#include "import/sheets/row_fate.h"
#include "platform/database/database.h"
#include "platform/numbers/money.h"

namespace kv {

/// What becomes of a department of the source.
struct PlannedDepartment {
  RowFate fate = RowFate::New;
  std::string ID;           ///< "dgf" and the row's `Id`
  std::string titolo;       ///< of at most 99 characters and the mark
  std::string descrizione;  ///< `Nome`, uncut
  std::string reason;       ///< in Italian; empty unless left out
};

/// What becomes of an article of the source.
struct PlannedArticle {
  RowFate fate = RowFate::New;
  std::size_t of = 0;  ///< the article that it changes: its position in the plan's `keys`
  std::string catID, codice, titolo;
  Money prezzo, offertaprezzo;
  double iva = 0;  ///< the rate, 0.22 for 22 percent
  std::string reason;
};

/// The catalogue and the options that an import has.
struct AccountingTarget {
  AccountingOptions options;
  int generation = 2;
};

/// What an import would do, and what is left out.
struct AccountingPlan {
  std::vector<PlannedDepartment> departments;
  std::vector<PlannedArticle> articles;
  /// IDs of the articles that rows of the plan mean; 0 for one that the import adds first.
  std::vector<std::int64_t> keys;
  bool hasVat = false;  ///< the catalogue's articles have a column `iva`
  std::string form;     ///< what was found out about the form of the source: lines in Italian, often none

  /// How many rows have a fate.
  std::size_t countDepartments(RowFate fate) const;
  /// How many articles have this fate.
  std::size_t countArticles(RowFate fate) const;
};

/// Plans an import. The source is read whole first: Missing when it lacks a table or column. Failures of the
/// catalogue as Database::prepare.
Result<AccountingPlan> planAccountingImport(Database& catalogue, const AccountingSource& source,
                                            const AccountingTarget& target);

/// A row of a plan as it is shown: a department's code is its key.
struct ShownPlanRow {
  std::string fate, code, title;
  std::string price, offer;  ///< empty for a department and for a row that is left out; offer too where none is taken
  std::string reason;        ///< why the row is left out
};
/// How many rows are shown, the departments before the articles.
std::size_t shownRowCount(const AccountingPlan& plan);
ShownPlanRow shownRow(const AccountingPlan& plan, const AccountingOptions& options, std::size_t index);

/// The form of the source and how many rows become what: lines of text in Italian.
std::string planTotals(const AccountingPlan& plan);
/// The plan as lines of text in Italian: totals, then each row with what becomes of it and why.
std::string planText(const AccountingPlan& plan, const AccountingOptions& options);

}  // namespace kv
