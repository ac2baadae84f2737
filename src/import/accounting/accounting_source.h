#pragma once
// The data of the accounting package as rows of named tables, whatever file holds them.
//
// What is read: `Categoria` (Id, Nome), `Articoli` (Id, IdCategoria, Codice, Descrizione, iva, Vendita1 and further
// prices; third generation also Vista) and, in a list of companies, `Nomi` (ID, nome, path).

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/value.h"
#include "platform/ports/result.h"

namespace kv {

/// The fields of a row, one for each column that was asked for.
using AccountingRow = std::vector<Value>;

/// An opened source; the file it reads is never changed.
class AccountingSource {
 public:
  virtual ~AccountingSource() = default;
  /// The rows of a table in their order. Names ignore case. Missing when there is no such table or column, which `what`
  /// names; Malformed when the file contradicts itself.
  virtual Result<std::vector<AccountingRow>> rows(std::string_view table,
                                                  const std::vector<std::string>& columns) const = 0;
  /// What was found out about the file's form, for the merchant; empty when nothing had to be.
  virtual std::string description() const { return {}; }
};

/// Opens a database file with these tables, of Jet or of SQLite, or a folder with `Categoria.csv` and `Articoli.csv`.
/// Missing when there is nothing at `path`, Malformed when it is neither or is damaged.
Result<std::unique_ptr<AccountingSource>> openAccountingSource(const std::string& path);
/// Whether what is at `path` is such a source rather than a shop: the file or folder holds the two tables, even such as
/// can't be read.
bool isAccountingSource(const std::string& path);

/// A company of a list of companies.
struct AccountingCompany {
  std::string ID, nome;
  std::string path;  ///< of its database, as the list has it
};
/// The companies in the list `source`, in its order.
Result<std::vector<AccountingCompany>> readCompanies(const AccountingSource& source);
/// Where a company's database is: `path` as it is when something is there; otherwise, its drive left out and "\" read
/// as "/", below the folder of the list, when something is there. Else `path`.
std::string companyPath(const std::string& path, const std::string& listPath);

}  // namespace kv
