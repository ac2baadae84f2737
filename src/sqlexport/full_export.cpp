#include "sqlexport/full_export.h"

#include <algorithm>

#include "platform/files/files.h"
#include "platform/files/output_file.h"
#include "platform/text/text.h"
#include "sqlexport/export_run.h"
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
                                   const DatabaseExport& job, const SqlRun& run) {
  const SqlStyle& style = run.style;
  ExportWarnings warnings;
  std::int64_t rows = 0;
  writeHead(out, job.sec, style);
  for (const TableInfo& table : tables) {
    if (!isExported(table, job.languageSuffix)) continue;
    if (!run.user.yield()) return exportCancelled(job);
    if (auto done = writeDefinition(out, table, style, warnings); !done) return fail(done.error());
    auto written = writeRows(out, database, table, style, warnings);
    if (!written) return written;
    rows += *written;
    if (out.failed()) break;
  }
  if (auto closed = out.close(); !closed) return fail(closed.error());
  return rows;
}

Result<std::int64_t> exportDatabase(const DatabaseExport& job, const SqlRun& run) {
  auto database = Database::open(job.databasePath, OpenMode::ReadOnly);
  if (!database) return fail(database.error());
  database->askWhileRunning([&run] { return run.user.yield(); });
  const auto tables = database->tables();
  if (!tables) return fail(tables.error());
  auto drop = OutputFile::create(job.dropFilePath);
  if (!drop) return fail(drop.error());
  if (auto done = writeDropFile(*drop, *tables, job, run.style); !done) return fail(done.error());
  auto load = OutputFile::create(job.loadFilePath);
  if (!load) return fail(load.error());
  return writeLoadFile(*load, *database, *tables, job, run);
}

void exportLanguages(const ExportContext& context, const std::string& sec, double languages, ExportReport& report) {
  const SqlStyle style = sqlStyle(context.settings, context.lock);
  for (int i = 0; i < maxLanguages && i + 1 <= languages; ++i) {
    const std::string_view suffix = languageSuffixes[static_cast<std::size_t>(i)];
    const LanguageFiles files = languageFiles(ExportKind::Full, suffix, sec);
    const std::string load = suffix.empty() ? unfinishedLoad(ExportKind::Full, sec) : files.cachedLoad;
    const DatabaseExport job{entryPath(context.shopFolder, "db/sql.mdb"), joinPath(context.onlineFolder, load),
                             joinPath(context.onlineFolder, files.cachedDrop), std::string(suffix), sec};
    ignore(deleteFile(job.loadFilePath), "it is replaced anyway");
    ignore(deleteFile(job.dropFilePath), "it is replaced anyway");
    const auto written = exportDatabase(job, {style, context.user});
    report.cancelled = isCancelled(written);
    if (report.cancelled) return;
    if (!wasWritten(written, context.user)) report.failed = true;
    report.rows += written.value_or(0);
    ++report.languages;
  }
  ignore(finishLoad(ExportKind::Full, context.onlineFolder, sec), "nothing was written, and the user knows why");
}

}  // namespace

bool ExportDatabaseSql(const DatabaseExport& job, const SqlStyle& style, UserPort& user, std::int64_t* rows) {
  const auto written = exportDatabase(job, {style, user});
  if (rows != nullptr) *rows = written.value_or(0);
  return wasWritten(written, user);
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
    if (done.cancelled) {
      ignore(deleteCache(ExportKind::Full, context.onlineFolder, sec), "the next export writes over it");
      return;
    }
  }
  publishCopies(ExportKind::Full, {context.onlineFolder, sec, [&] { return context.user.yield(); }}, done);
}

}  // namespace kv
