#include "sqlexport/export_files.h"

#include <utility>

#include "platform/files/files.h"
#include "store/schema/schema.h"

namespace kv {

LanguageFiles languageFiles(ExportKind kind, std::string_view suffix, const std::string& sec) {
  const std::string load = "db", drop = "dbdel", language(suffix);
  const std::string kept = (kind == ExportKind::Incremental ? "upd" : "") + language + ".sc";
  const std::string published = language + ".sql";
  return {sec + load + kept, sec + drop + kept, load + published, drop + published};
}

// Its extension is that of the kept files: it is never sent, and a build sweeps it away with them.
std::string unfinishedLoad(ExportKind kind, const std::string& sec) {
  return sec + (kind == ExportKind::Incremental ? "updnew.sc" : "new.sc");
}

Result<> finishLoad(ExportKind kind, const std::string& onlineFolder, const std::string& sec) {
  return renameFile(joinPath(onlineFolder, unfinishedLoad(kind, sec)),
                    joinPath(onlineFolder, languageFiles(kind, "", sec).cachedLoad));
}

void publishCopies(ExportKind kind, const CopyPlace& place, ExportReport& report) {
  const auto publish = [&](const std::string& from, const std::string& to) {
    if (report.cancelled) return;
    const std::string source = joinPath(place.onlineFolder, from);
    const auto copied = copyFile(source, joinPath(place.onlineFolder, to), AtLink::Replace, place.goOn);
    report.cancelled = !copied && copied.error().kind == ErrorKind::Cancelled;
    // A language that the shop doesn't have has no file to copy.
    if (report.cancelled || (!copied && !fileExists(source))) return;
    (copied ? report.published : report.unwritten).push_back(to);
  };
  for (const std::string_view suffix : languageSuffixes) {
    const LanguageFiles files = languageFiles(kind, suffix, place.sec);
    publish(files.cachedLoad, files.load);
    publish(files.cachedDrop, files.drop);
  }
  if (!report.cancelled) return;
  for (const std::string& name : std::exchange(report.published, {})) {
    ignore(deleteFile(joinPath(place.onlineFolder, name)), "the next export replaces it");
  }
}

Result<> deleteCache(ExportKind kind, const std::string& onlineFolder, const std::string& sec) {
  Result<> outcome;
  ignore(deleteFile(joinPath(onlineFolder, unfinishedLoad(kind, sec))), "it is written over");
  for (const std::string_view suffix : languageSuffixes) {
    const LanguageFiles files = languageFiles(kind, suffix, sec);
    for (const std::string& name : {files.cachedLoad, files.cachedDrop}) {
      auto deleted = deleteFile(joinPath(onlineFolder, name));
      if (!deleted && deleted.error().kind != ErrorKind::Missing && outcome) outcome = std::move(deleted);
    }
  }
  return outcome;
}

}  // namespace kv
