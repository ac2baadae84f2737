#include "store/exchange/primo_preview.h"

#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "store/exchange/primo_rows.h"
#include "store/exchange/primo_settings.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

Result<std::int64_t> rowsOf(Database& database, std::string_view table) {
  const auto count = database.scalar("SELECT COUNT(*) FROM " + std::string(table));
  if (!count) return fail(count.error());
  return asInteger(*count);
}

Result<PrimoTable> previewTable(Database& catalogue, Database& source, std::string_view name) {
  auto columns = sharedColumns(catalogue, source, name);
  if (!columns) return fail(columns.error());
  const auto present = rowsOf(catalogue, name), coming = rowsOf(source, name);
  if (!present) return fail(present.error());
  if (!coming) return fail(coming.error());
  return PrimoTable{std::string(name), *present, *coming, std::move(columns->leftOut)};
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

}  // namespace

Result<PrimoPreview> previewPrimo(Database& catalogue, const std::string& path) {
  auto source = ApriDatabase(path, false);
  if (!source) return fail(source.error());
  const auto version = catalogueVersion(*source);
  if (!version) return fail(version.error());
  if (!isPrimoVersion(*version)) return fail(ErrorKind::Malformed, path, "version " + std::to_string(*version));
  PrimoPreview preview;
  preview.version = *version;
  auto tables = primoTables();
  tables.emplace_back("generale");
  for (const std::string_view name : tables) {
    auto table = previewTable(catalogue, *source, name);
    if (!table) return fail(table.error());
    preview.tables.push_back(std::move(*table));
  }
  const auto settings = sharedColumns(catalogue, *source, "generale");
  if (!settings) return fail(settings.error());
  for (const std::string& column : settings->shared) {
    if (staysInImport(column)) preview.keptSettings.push_back(column);
  }
  return preview;
}

std::string previewText(const PrimoPreview& preview) {
  std::string text = "Versione del negozio di origine: " + std::to_string(preview.version) + "\n";
  for (const PrimoTable& table : preview.tables) {
    text += table.name + ": " + std::to_string(table.coming) + " righe al posto di " + std::to_string(table.present);
    if (!table.leftOut.empty()) text += "; colonne tralasciate: " + joined(table.leftOut);
    text += "\n";
  }
  return text + "Impostazioni che restano: " + joined(preview.keptSettings) + "\n";
}

std::string previewOfShop(Database& catalogue, const std::string& folder) {
  if (folder.empty()) return {};
  const auto preview = previewPrimo(catalogue, joinPath(folder, catalogueFile));
  return preview ? previewText(*preview) : failureText(preview.error(), folder);
}

}  // namespace kv
