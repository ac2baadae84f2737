#include "sqlexport/full_export.h"

#include <algorithm>

#include "platform/files/files.h"
#include "platform/files/output_file.h"
#include "platform/text/text.h"
#include "sqlexport/sql_rows.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

Result<> writeDropFile(OutputFile& out, const std::vector<TableInfo>& tables, const DatabaseExport& job,
                       const SqlStyle& style) {
  ExportWarnings warnings;
  writeHead(out, job.sec, style);
  for (const TableInfo& table : tables) {
    if (!isExported(table, job.languageSuffix)) continue;
    auto name = SqlIdent(table.name, warnings);
    if (!name) return fail(name.error());
    out.append(toWindows1252("\r\nDROP TABLE " + *name + style.separator + "\r\n"));
  }
  return out.close();
}

Result<std::int64_t> writeLoadFile(OutputFile& out, Database& database, const std::vector<TableInfo>& tables,
                                   const DatabaseExport& job, const SqlStyle& style) {
  ExportWarnings warnings;
  std::int64_t rows = 0;
  writeHead(out, job.sec, style);
  for (const TableInfo& table : tables) {
    if (!isExported(table, job.languageSuffix)) continue;
    if (auto done = writeDefinition(out, table, style, warnings); !done) return fail(done.error());
    auto written = writeRows(out, database, table, style, warnings);
    if (!written) return written;
    rows += *written;
    if (out.failed()) break;
  }
  if (auto closed = out.close(); !closed) return fail(closed.error());
  return rows;
}

Result<std::int64_t> exportDatabase(const DatabaseExport& job, const SqlStyle& style) {
  auto database = Database::open(job.databasePath, OpenMode::ReadOnly);
  if (!database) return fail(database.error());
  const auto tables = database->tables();
  if (!tables) return fail(tables.error());
  auto drop = OutputFile::create(job.dropFilePath);
  if (!drop) return fail(drop.error());
  if (auto done = writeDropFile(*drop, *tables, job, style); !done) return fail(done.error());
  auto load = OutputFile::create(job.loadFilePath);
  if (!load) return fail(load.error());
  return writeLoadFile(*load, *database, *tables, job, style);
}

void exportLanguages(const ExportContext& context, const std::string& sec, double languages, ExportReport& report) {
  const SqlStyle style = sqlStyle(context.settings, context.lock);
  for (int i = 0; i < maxLanguages && i + 1 <= languages; ++i) {
    const std::string_view suffix = languageSuffixes[static_cast<std::size_t>(i)];
    const LanguageFiles files = languageFiles(ExportKind::Full, suffix, sec);
    const std::string load = suffix.empty() ? unfinishedLoad(ExportKind::Full, sec) : files.cachedLoad;
    const DatabaseExport job{joinPath(context.shopFolder, "db/sql.mdb"), joinPath(context.onlineFolder, load),
                             joinPath(context.onlineFolder, files.cachedDrop), std::string(suffix), sec};
    ignore(deleteFile(job.loadFilePath), "it is replaced anyway");
    ignore(deleteFile(job.dropFilePath), "it is replaced anyway");
    std::int64_t rows = 0;
    if (!ExportDatabaseSql(job, style, context.user, &rows)) report.failed = true;
    report.rows += rows;
    ++report.languages;
  }
  ignore(finishLoad(ExportKind::Full, context.onlineFolder, sec), "nothing was written, and the user knows why");
}

}  // namespace

bool ExportDatabaseSql(const DatabaseExport& job, const SqlStyle& style, UserPort& user, std::int64_t* rows) {
  const auto written = exportDatabase(job, style);
  if (!written) {
    user.message(written.error().what, Icon::Exclamation);
    return false;
  }
  if (rows != nullptr) *rows = *written;
  return true;
}

void ExportFullSql(const ExportContext& context, const std::string& sec, ExportReport* report) {
  ExportReport unasked;
  ExportReport& done = report != nullptr ? *report : unasked;
  const std::string cache = joinPath(context.onlineFolder, languageFiles(ExportKind::Full, "", sec).cachedLoad);
  if (fileExists(cache) && isStale(cache, context.settings))
    ignore(deleteFile(cache), "a stale dump that stays is published again");
  if (!fileExists(cache)) {
    const double languages = notedLanguages(context.onlineFolder, sec);
    if (languages == 0) return;
    exportLanguages(context, sec, languages, done);
  }
  publishCopies(ExportKind::Full, context.onlineFolder, sec, done);
}

}  // namespace kv
