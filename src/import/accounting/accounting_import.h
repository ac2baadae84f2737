#pragma once
// The import of departments and articles from the accounting package into the open catalogue: the options are kept, a
// backup is made, the source is found and opened, the rows are written, and the merchant is told how it went.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "import/accounting/accounting_plan.h"
#include "import/accounting/accounting_source.h"
#include "import/accounting/accounting_variants.h"
#include "store/shop/session.h"

namespace kv {

// What the merchant is told.
inline constexpr std::string_view accountingNotFound = "Orsa Gestionale non è stato trovato";
inline constexpr std::string_view accountingFailed = "Non è stato possibile importare i dati";
inline constexpr std::string_view accountingDone = "Importazione completata";

/// Lets the merchant choose a company: its `ID`, the first one being offered; none when he leaves.
using CompanyChoice = std::function<std::optional<std::string>(const std::vector<AccountingCompany>&)>;

/// What is imported, and how.
struct AccountingRequest {
  AccountingVariant variant;
  std::string line;        ///< the options as a line of digits
  std::string path;        ///< of the source; empty: `pathRete` of the variant
  CompanyChoice company;   ///< asked by the variants with a list of companies
  std::string department;  ///< ID of the department after which new ones come; empty or "###": the last at the top
  std::string model;       ///< the page model of new departments
};

/// How an import ended.
enum class AccountingEnd {
  Done,     ///< every row is written
  Partial,  ///< an error: the rows before it stay, and the merchant knows
  NotDone   ///< nothing was written: left, cancelled, or the merchant knows why
};

/// Runs an import. Everything is written in one transaction; an error at a row ends it and keeps the rows before, a
/// cancel undoes them. The caller makes one step of the history of it, and shows the catalogue again.
AccountingEnd importAccountingRows(Session& session, Environment& env, const AccountingRequest& request);

/// The source of a request without a word to the merchant: the companies to choose from where there are any, and the
/// path of the database to read. Failures as openAccountingSource; Missing too for a company that isn't in the list.
struct LocatedSource {
  std::vector<AccountingCompany> companies;
  std::string path;
};
Result<LocatedSource> locateAccounting(const Settings& settings, const AccountingRequest& request);

/// What an import would do. Writes nothing. Of a failure the text, `what`, is the message that the import would end
/// with.
Result<AccountingPlan> previewAccounting(Session& session, const Settings& settings, const AccountingRequest& request);

}  // namespace kv
