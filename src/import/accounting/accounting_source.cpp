#include "import/accounting/accounting_source.h"

#include "import/accounting/csv_source.h"
#include "platform/database/database.h"
#include "platform/database/jet/jet_file.h"
#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view storeMark = "SQLite format 3";

std::string quotedName(std::string_view name) { return "\"" + replaceAll(name, "\"", "\"\"") + "\""; }

/// A database file of the engine.
class StoreSource final : public AccountingSource {
 public:
  explicit StoreSource(Database database) : database_(std::move(database)) {}

  Result<std::vector<AccountingRow>> rows(std::string_view table,
                                          const std::vector<std::string>& columns) const override {
    const auto info = database_.table(table);
    if (!info && info.error().kind == ErrorKind::Missing) {
      return fail(ErrorKind::Missing, info.error().where, std::string(table));
    }
    if (!info) return fail(info.error());
    std::string list;
    for (const std::string& column : columns) {
      // A quoted name that is no column would be taken for a text.
      if (info->columnIndex(column) < 0) return fail(ErrorKind::Missing, std::string(table), column);
      list += (list.empty() ? "" : ", ") + quotedName(column);
    }
    auto query = database_.prepare("SELECT " + list + " FROM " + quotedName(info->name));
    if (!query) return fail(query.error());
    std::vector<AccountingRow> found;
    for (;;) {
      const auto row = query->step();
      if (!row) return fail(row.error());
      if (!*row) return found;
      AccountingRow fields;
      for (int i = 0; i < query->columnCount(); ++i) fields.push_back(fieldOf(*query, i));
      found.push_back(std::move(fields));
    }
  }

 private:
  /// As the engine holds it: a foreign file declares its types in words of its own.
  static Value fieldOf(const Statement& query, int column) {
    switch (query.storedAs(column)) {
      case StoredAs::Integer:
        return query.integer(column);
      case StoredAs::Real:
        return query.number(column);
      case StoredAs::Null:
        return Null{};
      case StoredAs::Text:
      case StoredAs::Blob:
        break;
    }
    return std::string(query.bytes(column));
  }

  mutable Database database_;
};

/// A database file of the package itself.
class JetSource final : public AccountingSource {
 public:
  explicit JetSource(JetFile file) : file_(std::move(file)) {}
  Result<std::vector<AccountingRow>> rows(std::string_view table,
                                          const std::vector<std::string>& columns) const override {
    return file_.rows(table, columns);
  }

 private:
  JetFile file_;
};

Result<std::unique_ptr<AccountingSource>> openJet(const std::string& path) {
  auto file = JetFile::open(path);
  if (!file) return fail(file.error());
  return std::make_unique<JetSource>(std::move(*file));
}

Result<std::unique_ptr<AccountingSource>> openStore(const std::string& path) {
  auto database = Database::open(path, OpenMode::ReadOnly);
  if (!database) return fail(database.error());
  return std::make_unique<StoreSource>(std::move(*database));
}

}  // namespace

Result<std::unique_ptr<AccountingSource>> openAccountingSource(const std::string& path) {
  if (folderExists(path)) return openCsvSource(path);
  if (!fileExists(path)) return fail(ErrorKind::Missing, path, "no such file");
  const auto start = readStart(path, jetStartSize);
  if (!start) return fail(start.error());
  if (start->starts_with(storeMark)) return openStore(path);
  if (isJetStart(*start)) return openJet(path);
  return fail(ErrorKind::Malformed, path, "no database of a known kind");
}

bool isAccountingSource(const std::string& path) {
  const auto source = openAccountingSource(path);
  if (!source) return false;
  const auto holds = [&](std::string_view table, const std::vector<std::string>& columns) {
    const auto rows = (*source)->rows(table, columns);
    return rows || rows.error().kind == ErrorKind::Malformed;
  };
  return holds("Nomi", {"ID", "nome", "path"}) ||
         (holds("Categoria", {"Id", "Nome"}) && holds("Articoli", {"Id", "IdCategoria"}));
}

Result<std::vector<AccountingCompany>> readCompanies(const AccountingSource& source) {
  const auto rows = source.rows("Nomi", {"ID", "nome", "path"});
  if (!rows) return fail(rows.error());
  std::vector<AccountingCompany> companies;
  for (const AccountingRow& row : *rows) {
    companies.push_back({std::string(trim(asText(row[0]))), asText(row[1]), asText(row[2])});
  }
  return companies;
}

std::string companyPath(const std::string& path, const std::string& listPath) {
  const auto isThere = [](const std::string& at) { return fileExists(at) || folderExists(at); };
  if (path.empty() || isThere(path)) return path;
  std::string rest = replaceAll(path, "\\", "/");
  if (rest.size() > 1 && rest[1] == ':') rest.erase(0, 2);
  std::string at(folderOf(listPath));
  while (!rest.empty()) {
    const auto slash = rest.find('/');
    const std::string name = rest.substr(0, slash);
    rest = slash == std::string::npos ? std::string() : rest.substr(slash + 1);
    if (name.empty()) continue;
    const auto entry = findEntry(at, name);
    if (!entry) return path;
    at = *entry;
  }
  return at;
}

}  // namespace kv
