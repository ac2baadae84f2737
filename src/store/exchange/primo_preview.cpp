#include "store/exchange/primo_preview.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "platform/ports/failure_text.h"
#include "platform/text/text.h"
#include "store/exchange/primo_rows.h"
#include "store/exchange/primo_settings.h"
#include "store/exchange/primo_source.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

/// Tables whose rows have a key, and the column that says what a row is called; the others have one row.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> titledTables{
    {{"articoli", "titolo"}, {"categorie", "titolo"}, {"paesi", "paese"}, {"opzioni", "nome"}}};

constexpr const char* sourceVersionLabel = "Versione del negozio di origine: ";
constexpr const char* versionField = "versione";  // where a source of another version fails

/// The source among the tables of the catalogue, for as long as this object.
class AttachedSource {
 public:
  static Result<AttachedSource> attach(Database& catalogue, const std::string& path) {
    if (auto attached = catalogue.attach(path, primoSchema); !attached) return fail(attached.error());
    return AttachedSource(catalogue);
  }
  AttachedSource(AttachedSource&& other) noexcept : catalogue_(std::exchange(other.catalogue_, nullptr)) {}
  AttachedSource(const AttachedSource&) = delete;
  AttachedSource& operator=(const AttachedSource&) = delete;
  AttachedSource& operator=(AttachedSource&&) = delete;
  ~AttachedSource() {
    if (catalogue_ != nullptr) ignore(catalogue_->detach(primoSchema), "it is closed with the catalogue");
  }

 private:
  explicit AttachedSource(Database& catalogue) : catalogue_(&catalogue) {}
  Database* catalogue_;
};

/// The failure with the text that the merchant reads.
tl::unexpected<Error> shownFailure(const Error& error, const std::string& folder) {
  return fail(error.kind, folder, error.where == versionField ? error.what : failureText(error, folder));
}

std::string titleColumn(std::string_view table) {
  const auto* found = std::ranges::find(titledTables, table, &std::pair<std::string_view, std::string_view>::first);
  return found == titledTables.end() ? std::string() : std::string(found->second);
}

/// Whether the rows `m` and `s` are equal in a column, as SQL. Upper and lower case differ here.
std::string sameColumn(const std::string& column) {
  return "m.\"" + column + "\" IS s.\"" + column + "\" COLLATE BINARY";
}

/// Whether a row of the shop is as the import would leave it, as SQL.
std::string sameRow(const TableInfo& ours, const SharedColumns& columns) {
  const bool isVariant = equalsIgnoringCase(ours.name, "opzioni");
  std::string all = "1";
  for (const ColumnInfo& column : ours.columns) {
    if (isVariant && isOptionText(column.name)) continue;  // compared as options below
    const bool shared = std::ranges::find(columns.shared, column.name) != columns.shared.end();
    all += " AND " + (shared ? sameColumn(column.name) : "m.\"" + column.name + "\" IS NULL");
  }
  return isVariant ? all + " AND " + sameOptions() : all;
}

struct RowQuery {
  std::string table, key, title, same;

  /// The rows of the source and what they become.
  std::string coming() const {
    const std::string match = key.empty() ? "1" : "m.\"" + key + "\" = s.\"" + key + "\"";
    return "SELECT CASE WHEN m.rowid IS NULL THEN 0 WHEN " + same + " THEN 2 ELSE 1 END, " + fields("s") + " FROM " +
           std::string(primoSchema) + "." + table + " s LEFT JOIN main." + table + " m ON " + match + order("s");
  }
  /// The rows that the source doesn't have.
  std::string going() const {
    const std::string match = key.empty() ? "1" : "s.\"" + key + "\" = m.\"" + key + "\"";
    return "SELECT 3, " + fields("m") + " FROM main." + table + " m WHERE NOT EXISTS (SELECT 1 FROM " +
           std::string(primoSchema) + "." + table + " s WHERE " + match + ")" + order("m");
  }

 private:
  std::string fields(const std::string& of) const {
    return key.empty() ? "'', ''" : of + ".\"" + key + "\", COALESCE(" + of + ".\"" + title + "\", '')";
  }
  std::string order(const std::string& of) const { return key.empty() ? "" : " ORDER BY " + of + ".\"" + key + "\""; }
};

Result<> addRows(Database& catalogue, const std::string& query, std::vector<PrimoRow>& rows) {
  auto statement = catalogue.prepare(query);
  if (!statement) return fail(statement.error());
  for (;;) {
    const auto row = statement->step();
    if (!row) return fail(row.error());
    if (!*row) return {};
    rows.push_back(
        {static_cast<PrimoFate>(statement->integer(0)), asText(statement->value(1)), std::string(statement->text(2))});
  }
}

/// What is known of a table before the source is attached: an attached file has no schema view.
struct TablePlan {
  RowQuery query;
  SharedColumns columns;
};

Result<TablePlan> planTable(Database& catalogue, Database& source, std::string_view name) {
  auto columns = sharedColumns(catalogue, source, name);
  if (!columns) return fail(columns.error());
  const auto ours = catalogue.table(name);
  if (!ours) return fail(ours.error());
  const std::string title = titleColumn(name);
  const bool hasTitle = std::ranges::find_if(columns->shared, [&](const std::string& column) {
                          return equalsIgnoringCase(column, title);
                        }) != columns->shared.end();
  RowQuery query{std::string(name), hasTitle ? "ID" : "", title, sameRow(*ours, *columns)};
  return TablePlan{std::move(query), std::move(*columns)};
}

struct SourcePlan {
  int version = 0;
  std::vector<TablePlan> tables;
  SharedColumns settings;
};

Result<SourcePlan> planSource(Database& catalogue, const std::string& path) {
  auto source = ApriDatabase(path, false);
  if (!source) return fail(source.error());
  const auto version = catalogueVersion(*source);
  if (!version) return fail(version.error());
  if (!isPrimoVersion(*version)) {
    return fail(ErrorKind::Malformed, versionField,
                std::string(otherPrimoVersion) + sourceVersionLabel + std::to_string(*version));
  }
  SourcePlan plan{*version, {}, {}};
  for (const std::string_view name : primoTables()) {
    auto table = planTable(catalogue, *source, name);
    if (!table) return fail(table.error());
    plan.tables.push_back(std::move(*table));
  }
  auto settings = sharedColumns(catalogue, *source, "generale");
  if (!settings) return fail(settings.error());
  plan.settings = std::move(*settings);
  return plan;
}

Result<PrimoTable> previewTable(Database& catalogue, const TablePlan& plan) {
  PrimoTable table{plan.query.table, {}, plan.columns.leftOut};
  Result<> added = addRows(catalogue, plan.query.coming(), table.rows);
  if (added) added = addRows(catalogue, plan.query.going(), table.rows);
  if (!added) return fail(added.error());
  return table;
}

/// The settings that take another value. The template and the discounts, which the import sets itself, are not asked.
Result<std::vector<std::string>> changedSettings(Database& catalogue, const SharedColumns& columns) {
  std::vector<std::string> changed;
  for (const std::string& column : columns.shared) {
    if (!isTakenOver(column)) continue;
    const auto isSame = catalogue.scalar("SELECT " + sameColumn(column) + " FROM main.generale m, " +
                                         std::string(primoSchema) + ".generale s LIMIT 1");
    if (!isSame) return fail(isSame.error());
    if (!isNull(*isSame) && !asFlag(*isSame)) changed.push_back(column);
  }
  return changed;
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

std::string leftOutText(const std::vector<std::string>& columns) {
  return columns.empty() ? "" : "; colonne tralasciate, perché questo negozio non le ha: " + joined(columns);
}

std::string totalsOf(const PrimoTable& table) {
  const auto count = [&](PrimoFate fate) { return std::to_string(table.count(fate)); };
  return table.name + ": " + count(PrimoFate::New) + " nuove, " + count(PrimoFate::Changed) + " modificate, " +
         count(PrimoFate::Same) + " invariate, " + count(PrimoFate::Removed) + " eliminate" +
         leftOutText(table.leftOut) + "\n";
}

const char* wordFor(PrimoFate fate) {
  constexpr const char* words[] = {"nuova", "modificata", "invariata", "eliminata"};
  return words[static_cast<std::size_t>(fate)];
}

}  // namespace

std::size_t PrimoTable::count(PrimoFate fate) const {
  return static_cast<std::size_t>(std::ranges::count(rows, fate, &PrimoRow::fate));
}

Result<PrimoPreview> previewPrimo(Database& catalogue, const std::string& path) {
  const auto source = PrimoSource::open(path);
  if (!source) return fail(source.error());
  auto plan = planSource(catalogue, source->path());
  if (!plan) return fail(plan.error());
  const auto attached = AttachedSource::attach(catalogue, source->path());
  if (!attached) return fail(attached.error());
  PrimoPreview preview;
  preview.version = plan->version;
  for (const TablePlan& one : plan->tables) {
    auto table = previewTable(catalogue, one);
    if (!table) return fail(table.error());
    preview.tables.push_back(std::move(*table));
  }
  auto changed = changedSettings(catalogue, plan->settings);
  if (!changed) return fail(changed.error());
  preview.changedSettings = std::move(*changed);
  std::ranges::copy_if(plan->settings.shared, std::back_inserter(preview.keptSettings), staysInImport);
  preview.leftOutSettings = std::move(plan->settings.leftOut);
  return preview;
}

std::string previewText(const PrimoPreview& preview) {
  std::string text = sourceVersionLabel + std::to_string(preview.version) + "\n";
  for (const PrimoTable& table : preview.tables) text += totalsOf(table);
  text += "Impostazioni modificate: " + joined(preview.changedSettings) + leftOutText(preview.leftOutSettings) + "\n";
  text += "Impostazioni che restano: " + joined(preview.keptSettings) + "\n";
  for (const PrimoTable& table : preview.tables) {
    for (const PrimoRow& row : table.rows) {
      text += std::string(wordFor(row.fate)) + "\t" + table.name;
      if (!row.key.empty()) text += "\t" + row.key + "\t" + row.title;
      text += "\n";
    }
  }
  return text;
}

Result<std::string> previewOfShop(Database& catalogue, const std::string& folder) {
  if (folder.empty()) return std::string();
  const std::string source = entryPath(folder, catalogueFile);
  if (!fileExists(source)) return fail(ErrorKind::Missing, folder, std::string(noPrimoShop));
  const auto preview = previewPrimo(catalogue, source);
  if (!preview) return shownFailure(preview.error(), folder);
  const auto pictures = readFileNames(entryPath(folder, "work"), "*");
  if (!pictures) return shownFailure(pictures.error(), folder);
  return previewText(*preview) + "Immagini che sostituiranno quelle attuali: " + std::to_string(pictures->size()) +
         "\n";
}

}  // namespace kv
