#include "sqlexport/incremental_export.h"

#include <functional>

#include "platform/files/files.h"
#include "platform/files/output_file.h"
#include "platform/text/text.h"
#include "sqlexport/compare_databases.h"
#include "sqlexport/export_run.h"
#include "sqlexport/sql_rows.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

constexpr int keysOfLine = 50;
constexpr std::string_view keysMark = "del_";

bool isExportedAsDifference(const TableInfo& table, std::string_view languageSuffix) {
  return isExported(table, languageSuffix) && table.name.find(keysMark) == std::string::npos;
}

/// The deletions of one table.
Result<> writeDeletions(OutputFile& out, Database& database, const TableInfo& table, const SqlStyle& style) {
  ExportWarnings warnings;
  auto name = SqlIdent(table.name, warnings);
  if (!name) return fail(name.error());
  out.append("\r\n");
  auto row = database.prepare("SELECT ID FROM " + storeName(deletedKeysTable(table.name)) + " NOT INDEXED");
  if (!row) return fail(row.error());
  std::string list;
  int keys = 0;
  const auto writeLine = [&] {
    if (keys == 0) return;
    out.append(
        toWindows1252("DELETE FROM " + *name + " WHERE ID IN (" + list.substr(1) + ")" + style.separator + "\r\n"));
    list.clear();
    keys = 0;
  };
  auto more = row->step();
  for (; more && *more && !out.failed(); more = row->step()) {
    list += ",'" + replaceAll(row->text(0), "'", "\\'") + "'";
    if (++keys == keysOfLine) writeLine();
  }
  if (!more) return fail(more.error());
  writeLine();
  return {};
}

Result<> writeDeleteFile(OutputFile& out, Database& database, const std::vector<TableInfo>& tables,
                         const DatabaseExport& job, const SqlStyle& style) {
  writeHead(out, job.sec, style);
  for (const TableInfo& table : tables) {
    if (!isExportedAsDifference(table, job.languageSuffix)) continue;
    if (auto written = writeDeletions(out, database, table, style); !written) return written;
  }
  return out.close();
}

Result<std::int64_t> writeInsertFile(OutputFile& out, Database& database, const std::vector<TableInfo>& tables,
                                     const DatabaseExport& job, const SqlRun& run) {
  const SqlStyle& style = run.style;
  ExportWarnings warnings;
  std::int64_t rows = 0;
  writeHead(out, job.sec, style);
  for (const TableInfo& table : tables) {
    if (!isExportedAsDifference(table, job.languageSuffix)) continue;
    if (!run.user.yield()) return exportCancelled(job);
    out.append("\r\n");
    auto written = writeRows(out, database, table, style, warnings);
    if (!written) return written;
    rows += *written;
  }
  if (auto closed = out.close(); !closed) return fail(closed.error());
  return rows;
}

Result<std::int64_t> exportDifference(const DatabaseExport& job, const SqlRun& run) {
  auto database = Database::open(job.databasePath, OpenMode::ReadOnly);
  if (!database) return fail(database.error());
  database->askWhileRunning([&run] { return run.user.yield(); });
  const auto tables = database->tables();
  if (!tables) return fail(tables.error());
  auto deletions = OutputFile::create(job.dropFilePath);
  if (!deletions) return fail(deletions.error());
  if (auto done = writeDeleteFile(*deletions, *database, *tables, job, run.style); !done) return fail(done.error());
  auto insertions = OutputFile::create(job.loadFilePath);
  if (!insertions) return fail(insertions.error());
  return writeInsertFile(*insertions, *database, *tables, job, run);
}

/// The scratch copy that the comparison reduces; it is there only during the export.
class ScratchCopy {
 public:
  ScratchCopy(const std::string& shopFolder, const std::function<bool()>& goOn)
      : path_(entryPath(shopFolder, "db/upd.mdb")) {
    remove();
    made_ = copyFile(entryPath(shopFolder, "db/sql.mdb"), path_, AtLink::Follow, goOn).has_value();
  }
  ScratchCopy(const ScratchCopy&) = delete;
  ScratchCopy& operator=(const ScratchCopy&) = delete;
  ~ScratchCopy() { remove(); }

  bool isMade() const { return made_; }
  const std::string& path() const { return path_; }

 private:
  void remove() const { ignore(deleteFile(path_), "the next export replaces it"); }
  std::string path_;
  bool made_ = false;
};

/// Makes the files of every language; false after a failure, whether or not the user was told, and after a cancel.
bool makeDifference(const ExportContext& context, const std::string& sec, double languages, ExportReport& report) {
  const auto goOn = [&] {
    report.cancelled = report.cancelled || !context.user.yield();
    return !report.cancelled;
  };
  const ScratchCopy upd(context.shopFolder, goOn);
  if (!upd.isMade() || !CompareDatabases(upd.path(), lastDatabasePath(context.shopFolder), goOn)) return false;
  const SqlStyle style = sqlStyle(context.settings, context.lock);
  for (int i = 0; i < maxLanguages && i + 1 <= languages; ++i) {
    const std::string_view suffix = languageSuffixes[static_cast<std::size_t>(i)];
    const LanguageFiles files = languageFiles(ExportKind::Incremental, suffix, sec);
    const std::string load = suffix.empty() ? unfinishedLoad(ExportKind::Incremental, sec) : files.cachedLoad;
    const DatabaseExport job{upd.path(), joinPath(context.onlineFolder, load),
                             joinPath(context.onlineFolder, files.cachedDrop), std::string(suffix), sec};
    const auto written = exportDifference(job, {style, context.user});
    report.cancelled = isCancelled(written);
    if (!wasWritten(written, context.user)) return false;
    report.rows += *written;
    ++report.languages;
  }
  return finishLoad(ExportKind::Incremental, context.onlineFolder, sec).has_value();
}

/// ExportIncrementalSql, its report always wanted.
bool makeOrReuseDifference(const ExportContext& context, const std::string& sec, ExportReport& made) {
  const LanguageFiles first = languageFiles(ExportKind::Incremental, "", sec);
  const std::string cache = joinPath(context.onlineFolder, first.cachedLoad);
  if (fileExists(cache) && isStale(cache, context.settings) && !deleteFile(cache)) return false;
  if (!fileExists(cache)) {
    const double languages = notedLanguages(context.onlineFolder, sec);
    if (languages == 0) return false;
    ignore(deleteCache(ExportKind::Incremental, context.onlineFolder, sec), "they are written over");
    if (!makeDifference(context, sec, languages, made)) {
      // Half a difference must not pass for one at the next run.
      ignore(deleteCache(ExportKind::Incremental, context.onlineFolder, sec), "what stays is written over by the next");
      return false;
    }
  }
  publishCopies(ExportKind::Incremental, {context.onlineFolder, sec, [&] { return context.user.yield(); }}, made);
  made.incremental = !made.cancelled && made.unwritten.empty();
  return made.incremental;
}

}  // namespace

bool ExportChangedRows(const DatabaseExport& job, const SqlStyle& style, UserPort& user, std::int64_t* rows) {
  const auto written = exportDifference(job, {style, user});
  if (rows != nullptr) *rows = written.value_or(0);
  return wasWritten(written, user);
}

bool ExportIncrementalSql(const ExportContext& context, const std::string& sec, ExportReport* report) {
  ExportReport made;
  const bool isThere = makeOrReuseDifference(context, sec, made);
  if (report == nullptr) return isThere;
  if (isThere) *report = made;
  report->cancelled = made.cancelled;
  return isThere;
}

bool exportForPublishing(const ExportContext& context, const PublishedShop& shop, bool allRecords,
                         ExportReport* report) {
  const LastRunFolders folders{context.shopFolder, context.onlineFolder};
  ExportReport unasked;
  ExportReport& done = report != nullptr ? *report : unasked;
  const bool isWanted = !allRecords && CanUseIncremental(folders, shop, context.user, false);
  if (isWanted && ExportIncrementalSql(context, shop.db_security, &done)) return true;
  if (!done.cancelled) ExportFullSql(context, shop.db_security, &done);
  return !done.cancelled;
}

}  // namespace kv
