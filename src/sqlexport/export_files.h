#pragma once
// The names of the files of an export: what it keeps for itself in the online folder (`<sec>db.sc`), and the copies of
// that which are published (`db.sql`). The difference between two builds has files of its own to keep and is
// published under the same names, so that the host needs one protocol alone.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// What the files hold.
enum class ExportKind {
  Full,        ///< all tables and all rows
  Incremental  ///< the rows that the host lacks, and the keys of those that it has to delete
};

/// The four names of one language.
struct LanguageFiles {
  std::string cachedLoad;  ///< "<sec>db.sc", "<sec>dbupd.sc"
  std::string cachedDrop;  ///< "<sec>dbdel.sc", "<sec>dbdelupd.sc"
  std::string load;        ///< "db.sql"
  std::string drop;        ///< "dbdel.sql"
};
/// The names for a language suffix ("" for language 1); `sec` is db_security of `generale`.
LanguageFiles languageFiles(ExportKind kind, std::string_view suffix, const std::string& sec);

/// The name under which the load file of language 1 is written. It gets its own name, by which the whole export counts
/// as made, when every language is done: an export that was killed leaves nothing that passes for one.
std::string unfinishedLoad(ExportKind kind, const std::string& sec);
/// Gives that file its name. Failures as renameFile; Missing when nothing was written.
Result<> finishLoad(ExportKind kind, const std::string& onlineFolder, const std::string& sec);

/// What an export did, for a report to the user.
struct ExportReport {
  int languages = 0;                   ///< exported now; 0 when the files of an earlier export were still valid
  std::int64_t rows = 0;               ///< written now
  bool incremental = false;            ///< the published files hold a difference
  bool failed = false;                 ///< a failure was shown to the user
  bool cancelled = false;              ///< the user has ended it: none of its files is there
  std::vector<std::string> published;  ///< names of the files copied, in order
  std::vector<std::string> unwritten;  ///< names of those that were to be copied and could not be written
};

/// Where the copies are made, and who is asked whether it goes on; false ends it.
struct CopyPlace {
  std::string onlineFolder;
  std::string sec;
  std::function<bool()> goOn{};
};
/// Copies the kept files of every language to their published names and enters them in the report. A language without
/// kept files is passed over. After a cancel, which is noted in the report, none of the copies is there.
void publishCopies(ExportKind kind, const CopyPlace& place, ExportReport& report);
/// Deletes the kept files of every language; those that aren't there are no failure. The first failure is returned, and
/// the others are tried all the same.
Result<> deleteCache(ExportKind kind, const std::string& onlineFolder, const std::string& sec);

}  // namespace kv
